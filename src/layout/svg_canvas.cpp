#include "layout/svg_canvas.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kSteps = 100; // in one canvas unit

std::int64_t Steps(double value)
{
    constexpr double kFar = 1e6; // readers compute in single precision
    return std::isnan(value) ? 0 : std::llround(std::clamp(value, -kFar, kFar) * kSteps);
}

/// A number of steps as units: "12.5", ".25", "-3".
void AppendNumber(std::string& text, std::int64_t steps)
{
    if (steps < 0) text += '-';
    const auto size = static_cast<std::uint64_t>(std::abs(steps));
    const auto whole = size / 100, rest = size % 100;
    if (whole > 0 || rest == 0) text += fmt::format_int(whole).c_str();
    if (rest == 0) return;
    text += '.';
    text += static_cast<char>('0' + rest / 10);
    if (rest % 10 != 0) text += static_cast<char>('0' + rest % 10);
}

std::string Number(double value)
{
    std::string text;
    AppendNumber(text, Steps(value));
    return text;
}

/// Two numbers of a path; the first is set off from what stands before it only where it must be.
void AppendPair(std::string& text, std::int64_t x, std::int64_t y)
{
    const char before = text.back();
    if (x >= 0 && before >= '0' && before <= '9') text += ' ';
    AppendNumber(text, x);
    if (y >= 0) text += ' ';
    AppendNumber(text, y);
}

/// "M" with the first point and "l" with the ways between the rounded points, so that errors don't add up.
std::string PathData(std::span<const PointD> points)
{
    std::string data = "M";
    std::int64_t x = Steps(points[0].x), y = Steps(points[0].y);
    AppendPair(data, x, y);
    data += 'l';
    for (const PointD& point : points.subspan(1)) {
        const std::int64_t to_x = Steps(point.x), to_y = Steps(point.y);
        if (to_x == x && to_y == y) continue;
        AppendPair(data, to_x - x, to_y - y);
        x = to_x, y = to_y;
    }
    if (data.back() == 'l') data += "0 0";
    return data;
}

std::string ColorText(Rgba color)
{
    return fmt::format("#{:02x}{:02x}{:02x}", color.red, color.green, color.blue);
}

std::string Opacity(std::string_view name, Rgba color)
{
    return color.alpha == 255 ? std::string() : fmt::format(" {}=\"{:.3g}\"", name, color.alpha / 255.0);
}

/// Markup characters as entities; control characters, which no XML may hold, as blanks.
std::string Escaped(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
        }
    }
    return out;
}

/// The face itself, then faces of the same widths that other systems have.
std::string FamilyList(std::string_view family)
{
    const bool own = family.starts_with("Liberation Sans");
    return Escaped(family) + (own ? ",Arial,Helvetica,sans-serif" : ",sans-serif");
}

std::string Base64(std::string_view bytes)
{
    constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t word = 0;
        for (std::size_t k = 0; k < 3; ++k)
            word = word << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k) text += i + k <= bytes.size() ? kLetters[word >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

} // namespace

std::string SvgCanvas::LineStyle(std::string_view join) const
{
    if (!HasLine()) return " stroke=\"none\"";
    const double width = pen().width > 0 ? pen().width : 1 / Resolution();
    std::string style = fmt::format(" stroke=\"{}\" stroke-width=\"{:.4g}\"", ColorText(pen().color), width);
    style += Opacity("stroke-opacity", pen().color);
    if (join != "miter") style += fmt::format(" stroke-linejoin=\"{}\"", join);
    std::string dashes;
    for (const double length : DashesOf(pen())) dashes += (dashes.empty() ? "" : " ") + Number(length);
    if (!dashes.empty()) style += " stroke-dasharray=\"" + dashes + '"';
    return style;
}

std::string SvgCanvas::FillStyle() const
{
    if (!HasFill()) return " fill=\"none\"";
    return fmt::format(" fill=\"{}\"", ColorText(brush())) + Opacity("fill-opacity", brush());
}

void SvgCanvas::Path(const std::string& data, const std::string& style)
{
    body_ += "<path d=\"" + data + '"' + style + "/>\n";
}

/// Lines alike in a row are one path: a curve that is cut at its frame comes in hundreds of pieces.
void SvgCanvas::OpenPath(const std::string& data, const std::string& style)
{
    const std::string tail = '"' + style + "/>\n";
    if (body_.size() == open_end_ && style == open_style_ && pen().color.alpha == 255)
        body_.replace(body_.size() - tail.size(), tail.size(), data + tail);
    else
        Path(data, style);
    open_end_ = body_.size();
    open_style_ = style;
}

void SvgCanvas::Polyline(std::span<const PointD> points)
{
    if (!points.empty() && HasLine()) OpenPath(PathData(points), " fill=\"none\"" + LineStyle("bevel"));
}

void SvgCanvas::Polygon(std::span<const PointD> points)
{
    if (!points.empty() && (HasLine() || HasFill())) Path(PathData(points) + 'z', FillStyle() + LineStyle("miter"));
}

void SvgCanvas::Lines(std::span<const Segment> segments)
{
    if (segments.empty() || !HasLine()) return;
    std::string data;
    for (const Segment& segment : segments) {
        const PointD ends[] = {segment.from, segment.to};
        data += PathData(ends);
    }
    OpenPath(data, LineStyle("miter"));
}

void SvgCanvas::Rectangle(const RectD& rect)
{
    if (!HasLine() && !HasFill()) return;
    body_ += fmt::format("<rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\"", Number(rect.x), Number(rect.y),
                         Number(rect.width), Number(rect.height)) +
             FillStyle() + LineStyle("miter") + "/>\n";
}

void SvgCanvas::Ellipse(const RectD& rect)
{
    if (!HasLine() && !HasFill()) return;
    body_ += fmt::format("<ellipse cx=\"{}\" cy=\"{}\" rx=\"{}\" ry=\"{}\"", Number(rect.x + rect.width / 2),
                         Number(rect.y + rect.height / 2), Number(rect.width / 2), Number(rect.height / 2)) +
             FillStyle() + LineStyle("miter") + "/>\n";
}

void SvgCanvas::Picture(const RectD& rect, const Raster& raster)
{
    if (!png_ || !raster.valid()) return;
    body_ += fmt::format("<image x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" preserveAspectRatio=\"none\" "
                         "xlink:href=\"data:image/png;base64,{}\"/>\n",
                         Number(rect.x), Number(rect.y), Number(rect.width), Number(rect.height), Base64(png_(raster)));
}

void SvgCanvas::Text(PointD at, std::string_view utf8, TextAlign align, double angle_deg)
{
    if (utf8.empty()) return;
    const std::string x = Number(at.x), y = Number(at.y);
    body_ += fmt::format("<text x=\"{}\" y=\"{}\" font-family=\"{}\" font-size=\"{:.4g}\" fill=\"{}\"", x, y,
                         FamilyList(font().family), font().size, ColorText(pen().color));
    body_ += Opacity("fill-opacity", pen().color);
    if (font().bold) body_ += " font-weight=\"bold\"";
    if (font().italic) body_ += " font-style=\"italic\"";
    if (font().underline || font().strikeout)
        body_ += fmt::format(" text-decoration=\"{}{}{}\"", font().underline ? "underline" : "",
                             font().underline && font().strikeout ? " " : "", font().strikeout ? "line-through" : "");
    if (align != TextAlign::left)
        body_ += fmt::format(" text-anchor=\"{}\"", align == TextAlign::centre ? "middle" : "end");
    if (angle_deg != 0) body_ += fmt::format(" transform=\"rotate({:.6g} {} {})\"", -angle_deg, x, y);
    body_ += '>' + Escaped(utf8) + "</text>\n";
}

void SvgCanvas::PushClip(const RectD& rect)
{
    ++clips_;
    body_ += fmt::format("<clipPath id=\"clip{0}\"><rect x=\"{1}\" y=\"{2}\" width=\"{3}\" height=\"{4}\"/></clipPath>"
                         "<g clip-path=\"url(#clip{0})\">\n",
                         clips_, Number(rect.x), Number(rect.y), Number(rect.width), Number(rect.height));
}

void SvgCanvas::BeginGroup(std::string_view name)
{
    // A name may come twice, an id must not: it goes into the class.
    body_ += fmt::format("<g class=\"{}\">\n", Escaped(name));
}

std::string SvgCanvas::Finish(double width, double height, std::string_view title) const
{
    std::string file = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    file += fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" "
                        "version=\"1.1\" width=\"{:.6g}mm\" height=\"{:.6g}mm\" viewBox=\"0 0 {} {}\" "
                        "xml:space=\"preserve\" style=\"font-kerning:none\">\n",
                        width / kUnitsPerMillimetre, height / kUnitsPerMillimetre, Number(width), Number(height));
    if (!title.empty()) file += "<title>" + Escaped(title) + "</title>\n";
    return file + body_ + "</svg>\n";
}

} // namespace nmr
