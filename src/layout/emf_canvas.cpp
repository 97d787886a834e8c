#include "layout/emf_canvas.h"

#include "core/numbers.h"
#include "layout/code_tokens.h"
#include "layout/shapes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace nmr {
namespace {

constexpr double kStepsPerMillimetre = 100;
constexpr double kMostSteps = 32000; // a side of the picture, of 32767
constexpr std::int32_t kNullBrush = static_cast<std::int32_t>(0x80000005), kNullPen = kNullBrush + 3,
                       kSystemFont = kNullBrush + 8;
constexpr std::int32_t kHandles = 7; // two of each kind, and the reserved one
constexpr std::int32_t kAnisotropic = 8, kTransparent = 1, kWinding = 2, kBaseLine = 24, kCompatible = 1;
constexpr std::int32_t kGeometric = 0x10000, kFlatCap = 0x200;
constexpr std::int32_t kTextHead = 76, kDibHead = 80, kInfoHead = 40, kBitsPerPixel = 24, kCopy = 0x00CC0020;
// A sans serif face of varying widths: what a player takes when it lacks the face.
constexpr std::int32_t kSwissVariable = 0x22;
constexpr std::size_t kFaceUnits = 32, kNameUnits = 64 + 32, kPanoseBytes = 332 - 12 - 92 - 192;
constexpr std::int32_t kPublicComment = 0x43494447, kBeginGroup = 2, kEndGroup = 3; // "GDIC"

/// On white paper.
std::int32_t ColorOf(Rgba color)
{
    const auto mixed = [&](std::uint8_t part) { return 255 - (255 - part) * color.alpha / 255; };
    return mixed(color.red) | mixed(color.green) << 8 | mixed(color.blue) << 16;
}

void PutName(EmfRecords& out, std::u16string_view text, std::size_t units)
{
    for (std::size_t i = 0; i < units; ++i) out.Put16(i + 1 < units && i < text.size() ? text[i] : 0);
}

template <class Points>
EmfRect BoundsOf(const Points& points)
{
    EmfRect box{points[0].x, points[0].y, points[0].x, points[0].y};
    for (const auto& point : points) {
        box.left = std::min(box.left, point.x);
        box.top = std::min(box.top, point.y);
        box.right = std::max(box.right, point.x);
        box.bottom = std::max(box.bottom, point.y);
    }
    return box;
}

} // namespace

EmfCanvas::EmfCanvas(Canvas& metrics, double width, double height) :
    VectorCanvas(metrics),
    steps_(std::min(kStepsPerMillimetre / kUnitsPerMillimetre, kMostSteps / std::max({width, height, 1.0}))),
    width_hmm_(static_cast<std::int32_t>(std::lround(width / kUnitsPerMillimetre * kStepsPerMillimetre))),
    height_hmm_(static_cast<std::int32_t>(std::lround(height / kUnitsPerMillimetre * kStepsPerMillimetre))),
    pen_tool_{1, kNullPen}, brush_tool_{3, kNullBrush}, font_tool_{5, kSystemFont}
{
    out_.Add(EmfType::set_map_mode, {kAnisotropic});
    out_.Add(EmfType::set_window_org, {0, 0});
    out_.Add(EmfType::set_window_ext, {Length(width), Length(height)});
    out_.Add(EmfType::set_viewport_org, {0, 0});
    out_.Add(EmfType::set_viewport_ext, {width_hmm_, height_hmm_});
    out_.Add(EmfType::set_bk_mode, {kTransparent});
    out_.Add(EmfType::set_poly_fill_mode, {kWinding});
    out_.Add(EmfType::set_text_align, {kBaseLine});
    DropTools();
}

std::int32_t EmfCanvas::Length(double units) const
{
    const double steps = units * steps_;
    return std::isfinite(steps) ? static_cast<std::int32_t>(std::lround(std::clamp(steps, -32767.0, 32767.0))) : 0;
}

std::vector<EmfCanvas::Step> EmfCanvas::Steps(std::span<const PointD> points) const
{
    std::vector<Step> steps;
    steps.reserve(points.size());
    for (const PointD& point : points)
        if (const Step step = At(point); steps.empty() || steps.back() != step) steps.push_back(step);
    if (steps.size() == 1) steps.push_back(steps.front());
    return steps;
}

EmfRect EmfCanvas::RectOf(const RectD& rect) const
{
    return {Length(rect.x), Length(rect.y), Length(rect.right()), Length(rect.bottom())};
}

void EmfCanvas::PutPoints(EmfType type, const std::vector<Step>& points)
{
    out_.Begin(type);
    out_.PutRect(BoundsOf(points));
    out_.Put32(static_cast<std::int32_t>(points.size()));
    for (const Step& point : points) {
        out_.Put16(point.x);
        out_.Put16(point.y);
    }
    out_.End();
}

// ---- objects

template <class Create>
void EmfCanvas::Use(Tool& tool, const std::string& key, Create create)
{
    if (tool.made && tool.key == key) return;
    const std::int32_t old = tool.first + (tool.upper ? 1 : 0);
    const bool had = tool.made;
    tool.upper = had && !tool.upper;
    const std::int32_t index = tool.first + (tool.upper ? 1 : 0);
    create(index);
    out_.Add(EmfType::select_object, {index});
    if (had) out_.Add(EmfType::delete_object, {old});
    tool.made = true;
    tool.key = key;
}

void EmfCanvas::UseStock(Tool& tool)
{
    if (!tool.made && tool.key == "stock") return;
    out_.Add(EmfType::select_object, {tool.stock});
    if (tool.made) out_.Add(EmfType::delete_object, {tool.first + (tool.upper ? 1 : 0)});
    tool.made = false;
    tool.key = "stock";
}

void EmfCanvas::DropTools()
{
    for (Tool* tool : {&pen_tool_, &brush_tool_, &font_tool_}) {
        UseStock(*tool);
    }
}

void EmfCanvas::UsePen(Join join)
{
    if (!HasLine()) return UseStock(pen_tool_);
    const std::int32_t width = std::max(1, Length(pen().width)), color = ColorOf(pen().color);
    Use(pen_tool_, fmt::format("{} {} {}", width, color, static_cast<int>(join)), [&](std::int32_t index) {
        const std::int32_t style = kGeometric | kFlatCap | static_cast<std::int32_t>(join);
        // No dashes are counted, but players read one.
        out_.Add(EmfType::ext_create_pen, {index, 0, 0, 0, 0, style, width, 0, color, 0, 0, 0});
    });
}

void EmfCanvas::UseBrush()
{
    if (!HasFill()) return UseStock(brush_tool_);
    const std::int32_t color = ColorOf(brush());
    Use(brush_tool_, fmt::format("{}", color), [&](std::int32_t index) {
        out_.Add(EmfType::create_brush, {index, 0, color, 0});
    });
}

void EmfCanvas::UseFont(double angle_deg)
{
    const auto tenths = static_cast<std::int32_t>(std::lround(std::fmod(angle_deg, 360.0) * 10));
    const FontSpecD& f = font();
    const auto key =
        fmt::format("{} {} {} {} {} {} {}", f.family, f.size, f.bold, f.italic, f.underline, f.strikeout, tenths);
    Use(font_tool_, key, [&](std::int32_t index) { PutFont(index, tenths); });
}

void EmfCanvas::PutFont(std::int32_t index, std::int32_t tenths)
{
    constexpr std::int32_t kNormal = 400, kBold = 700, kDefaultCharset = 1;
    const FontSpecD& f = font();
    const std::u16string face = ToUtf16(f.family);
    out_.Begin(EmfType::create_font);
    for (const std::int32_t word : {index, -std::max(1, Length(f.size)), 0, tenths, tenths, f.bold ? kBold : kNormal})
        out_.Put32(word);
    const auto two = [](bool first, bool second) { return (first ? 1 : 0) | (second ? 0x100 : 0); };
    out_.Put16(two(f.italic, f.underline));
    out_.Put16(two(f.strikeout, false) | kDefaultCharset << 8);
    out_.Put16(0); // precision of output and clipping
    out_.Put16(kSwissVariable << 8);
    PutName(out_, face, kFaceUnits);
    // Full and style name, which players don't need, and no hints of the face's looks.
    PutName(out_, face, kNameUnits);
    out_.PutBytes(std::string(kPanoseBytes, '\0'));
    out_.End();
}

// ---- shapes

void EmfCanvas::PutParts(const std::vector<std::vector<PointD>>& parts)
{
    std::vector<std::vector<Step>> lines;
    std::vector<Step> all;
    for (const auto& part : parts) {
        lines.push_back(Steps(part));
        all.insert(all.end(), lines.back().begin(), lines.back().end());
    }
    if (all.empty()) return;
    out_.Begin(EmfType::poly_polyline16);
    out_.PutRect(BoundsOf(all));
    out_.Put32(static_cast<std::int32_t>(lines.size()));
    out_.Put32(static_cast<std::int32_t>(all.size()));
    for (const auto& line : lines) out_.Put32(static_cast<std::int32_t>(line.size()));
    for (const Step& point : all) {
        out_.Put16(point.x);
        out_.Put16(point.y);
    }
    out_.End();
}

void EmfCanvas::Polyline(std::span<const PointD> points)
{
    if (points.empty() || !HasLine()) return;
    UsePen(Join::bevel);
    if (IsDashed())
        PutParts(DashPieces(points, DashesOf(pen())));
    else
        PutPoints(EmfType::polyline16, Steps(points));
}

void EmfCanvas::Lines(std::span<const Segment> segments)
{
    if (segments.empty() || !HasLine()) return;
    UsePen(Join::miter);
    const auto dashes = DashesOf(pen());
    std::vector<std::vector<PointD>> parts;
    for (const Segment& segment : segments) {
        const PointD ends[] = {segment.from, segment.to};
        auto pieces = DashPieces(ends, dashes);
        std::ranges::move(pieces, std::back_inserter(parts));
    }
    PutParts(parts);
}

template <class Put>
void EmfCanvas::Shape(std::span<const PointD> outline, Put put)
{
    if (HasFill() || (HasLine() && !IsDashed())) {
        if (IsDashed())
            UseStock(pen_tool_);
        else
            UsePen(Join::miter);
        UseBrush();
        put();
    }
    if (IsDashed()) Polyline(outline);
}

void EmfCanvas::Polygon(std::span<const PointD> points)
{
    if (points.empty()) return;
    std::vector<PointD> outline(points.begin(), points.end());
    outline.push_back(points[0]);
    Shape(outline, [&] { PutPoints(EmfType::polygon16, Steps(points)); });
}

void EmfCanvas::Rectangle(const RectD& rect)
{
    const EmfRect box = RectOf(rect);
    Shape(CornersOf(rect), [&] { out_.Add(EmfType::rectangle, {box.left, box.top, box.right, box.bottom}); });
}

void EmfCanvas::Ellipse(const RectD& rect)
{
    const EmfRect box = RectOf(rect);
    Shape(ArcPoints(rect, 0, 360), [&] { out_.Add(EmfType::ellipse, {box.left, box.top, box.right, box.bottom}); });
}

void EmfCanvas::Picture(const RectD& rect, const Raster& raster)
{
    if (!raster.valid()) return;
    const EmfRect to = RectOf(rect);
    const auto row_bytes = (static_cast<std::size_t>(raster.width) * 3 + 3) / 4 * 4;
    const auto bytes = static_cast<std::int32_t>(row_bytes * static_cast<std::size_t>(raster.height));
    const std::int32_t wide = to.right - to.left, high = to.bottom - to.top;
    out_.Begin(EmfType::stretch_dibits);
    out_.PutRect(to);
    for (const std::int32_t word : {to.left, to.top, 0, 0, raster.width, raster.height, kDibHead, kInfoHead,
                                    kDibHead + kInfoHead, bytes, 0, kCopy, wide, high})
        out_.Put32(word);
    for (const std::int32_t word :
         {kInfoHead, raster.width, raster.height, 1 | kBitsPerPixel << 16, 0, bytes, 0, 0, 0, 0})
        out_.Put32(word);
    for (int y = raster.height - 1; y >= 0; --y) { // from the bottom up
        std::string row;
        row.reserve(row_bytes);
        for (int x = 0; x < raster.width; ++x) {
            const std::int32_t color = ColorOf(
                raster.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(raster.width) + std::size_t(x)]);
            for (const int shift : {16, 8, 0}) row += static_cast<char>(color >> shift & 0xFF);
        }
        row.resize(row_bytes, '\0');
        out_.PutBytes(row);
    }
    out_.End();
}

// ---- text

/// Steps from each UTF-16 unit to the next; rounded from the left end, so that errors don't add up.
std::vector<std::int32_t> EmfCanvas::Advances(std::string_view utf8)
{
    std::vector<std::int32_t> advances;
    double width = 0;
    std::int32_t reached = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t begin = at;
        const char32_t letter = TakeUtf8(utf8, at);
        width += Measure(utf8.substr(begin, at - begin)).width;
        const std::int32_t end = Length(width);
        advances.push_back(end - reached);
        if (letter >= 0x10000) advances.push_back(0);
        reached = end;
    }
    return advances;
}

void EmfCanvas::Text(PointD at, std::string_view utf8, TextAlign align, double angle_deg)
{
    if (utf8.empty()) return;
    UseFont(angle_deg);
    if (text_color_ != pen().color) {
        text_color_ = pen().color;
        out_.Add(EmfType::set_text_color, {ColorOf(*text_color_)});
    }
    const std::u16string text = ToUtf16(utf8);
    const auto advances = Advances(utf8);
    double width = 0;
    for (const std::int32_t advance : advances) width += advance / steps_;
    // Always from the left end: players disagree on what centred means for turned text.
    const double back = align == TextAlign::left ? 0 : align == TextAlign::centre ? width / 2 : width;
    const double angle = angle_deg * kDegToRad;
    const Step place = At({at.x - back * std::cos(angle), at.y + back * std::sin(angle)});
    const auto count = static_cast<std::int32_t>(text.size());
    const std::int32_t advances_at = (kTextHead + 2 * count + 3) / 4 * 4;
    const auto scale = static_cast<float>(kStepsPerMillimetre / kUnitsPerMillimetre / steps_);
    out_.Begin(EmfType::ext_text_out);
    out_.PutRect({0, 0, -1, -1}); // no bounds, which nobody reads
    out_.Put32(kCompatible);
    out_.PutFloat(scale);
    out_.PutFloat(scale);
    for (const std::int32_t word : {place.x, place.y, count, kTextHead, 0, 0, 0, -1, -1, advances_at}) out_.Put32(word);
    for (const char16_t unit : text) out_.Put16(unit);
    if (count % 2 != 0) out_.Put16(0);
    for (const std::int32_t advance : advances) out_.Put32(advance);
    out_.End();
}

// ---- clips and groups

void EmfCanvas::PushClip(const RectD& rect)
{
    // What is saved must not name objects that are gone when it comes back.
    DropTools();
    out_.Add(EmfType::save_dc, {});
    const EmfRect clip = RectOf(rect);
    out_.Add(EmfType::intersect_clip_rect, {clip.left, clip.top, clip.right, clip.bottom});
}

void EmfCanvas::PopClip()
{
    DropTools();
    out_.Add(EmfType::restore_dc, {-1});
    text_color_.reset();
}

void EmfCanvas::BeginGroup(std::string_view name)
{
    const std::u16string text = ToUtf16(name);
    const auto units = static_cast<std::int32_t>(text.size()) + 1;
    out_.Begin(EmfType::gdi_comment);
    for (const std::int32_t word :
         {28 + 2 * units, kPublicComment, kBeginGroup, 0, 0, width_hmm_ - 1, height_hmm_ - 1, units})
        out_.Put32(word);
    PutName(out_, text, static_cast<std::size_t>(units));
    out_.End();
}

void EmfCanvas::EndGroup()
{
    out_.Add(EmfType::gdi_comment, {8, kPublicComment, kEndGroup});
}

std::string EmfCanvas::Finish(std::string_view title)
{
    DropTools();
    return out_.File(width_hmm_, height_hmm_, kHandles, ToUtf16(title));
}

} // namespace nmr
