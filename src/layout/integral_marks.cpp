#include "layout/integral_marks.h"

#include "core/list_values.h"
#include "layout/peak_marks.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kFoot = 0.52;     // of the height: where the curves start
constexpr double kRise = 0.38;     // of the height: what the largest rises
constexpr double kLeastStep = 0.5; // canvas units between two points of a curve
constexpr double kBracket = 0.5;   // height of the bracket over a value, in letter heights
constexpr double kPitch = 1.1;     // of values side by side, likewise
constexpr int kMostDigits = 9;

std::string ValueText(const DataSet& set, std::size_t index, const Settings& settings)
{
    const auto value = ListedIntegral(set, index);
    const int digits = std::clamp(settings.default_integ_digit, 0, kMostDigits);
    return value ? fmt::format("{:.{}f}", *value, digits) : std::string();
}

/// Points of the axis as places of the canvas.
struct Places {
    const PlotFrame& frame;
    double first_ppm, step_ppm;
    double X(double point) const { return frame.X(first_ppm + step_ppm * point); }
    double Point(double x) const { return step_ppm != 0 ? (frame.Ppm(x) - first_ppm) / step_ppm : 0; }
};

/// The sum at a point of a curve that rises from the left of the display, whichever way the axis runs.
double Rise(const IntegralMark& mark, const IntegralCurves& curves, bool starts_right, std::int32_t p)
{
    if (!starts_right) return curves.At(mark.entry, p);
    return p == mark.start ? mark.total : mark.total - curves.At(mark.entry, p + 1);
}

/// Drawn from every point in sight that can be told apart, at full data.
void DrawIntegral(Canvas& canvas, const Places& places, const IntegralMark& mark, const IntegralCurves& curves,
                  const IntegralPlaces& heights)
{
    const RectD& rect = places.frame.rect;
    const double unit = std::abs(places.X(1) - places.X(0));
    const bool starts_right = places.X(1) > places.X(0);
    const auto stride = static_cast<std::int32_t>(std::clamp(kLeastStep / std::max(unit, 1e-9), 1.0, 1e6));
    // Of a region that is longer than what is shown, the steps out of sight are left out: there may be a million.
    const auto [low, high] = std::minmax({places.Point(rect.x - unit), places.Point(rect.right() + unit)});
    const double unseen = std::floor(std::clamp(mark.start - high, 0.0, double(mark.start - mark.end)) / stride);
    const auto end = static_cast<std::int32_t>(std::clamp(std::floor(low), double(mark.end), double(mark.start)));
    std::vector<PointD> line;
    for (auto p = std::max(mark.start - static_cast<std::int32_t>(unseen) * stride, end);;
         p = std::max(p - stride, end)) {
        line.push_back({places.X(p), heights.Y(Rise(mark, curves, starts_right, p))});
        if (p == end) break;
    }
    canvas.Polyline(line);
}

/// What B0 and B1 add is what lies between zero and a line through the spectrum: a sum over that line is 0.
void DrawBaseLine(Canvas& canvas, const Places& places, const IntegralMark& mark, const IntegralMarks& integrals)
{
    const IntegralRamp ramp(mark.entry, static_cast<std::int32_t>(integrals.curves->size()));
    const auto end = [&](std::int32_t p) -> PointD {
        return {places.X(p), places.frame.Y(-(ramp.a - p * ramp.b) * integrals.full)};
    };
    canvas.Lines(std::vector<Segment>{{end(mark.start), end(mark.end)}});
}

/// Brackets under the axis, and the values below them.
void DrawValues(Canvas& canvas, const Places& places, const IntegralMarks& integrals, double row_y)
{
    canvas.SetFont(integrals.font);
    const TextExtent letter = canvas.Measure("X");
    const RectD& rect = places.frame.rect;
    struct Value {
        double left, right;
        const IntegralMark* mark;
    };
    std::vector<Value> values;
    for (const IntegralMark& mark : integrals.marks) {
        const auto [left, right] = std::minmax({places.X(mark.start), places.X(mark.end)});
        const double middle = (left + right) / 2;
        if (!mark.text.empty() && middle >= rect.x && middle <= rect.right()) values.push_back({left, right, &mark});
    }
    std::ranges::sort(values, {}, [](const Value& value) { return value.left + value.right; });
    const double pitch = kPitch * letter.height(), half = pitch / 2;
    const auto room = static_cast<std::size_t>(std::max(1.0, std::floor(rect.width / pitch)));
    if (values.size() > room) values.resize(room);
    std::vector<double> wanted;
    for (const Value& value : values) wanted.push_back((value.left + value.right) / 2);
    const auto at = SpreadApart(wanted, pitch, rect.x + half, std::max(rect.right() - half, rect.x + half));
    const double bracket = kBracket * letter.height();
    std::vector<Segment> lines;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double left = std::max(values[i].left, rect.x), right = std::min(values[i].right, rect.right());
        lines.push_back({{left, row_y}, {left, row_y + bracket / 2}});
        lines.push_back({{right, row_y}, {right, row_y + bracket / 2}});
        lines.push_back({{left, row_y + bracket / 2}, {right, row_y + bracket / 2}});
        lines.push_back({{wanted[i], row_y + bracket / 2}, {at[i], row_y + 2 * bracket}});
    }
    canvas.SetPen({integrals.text, 1, PenStyle::solid});
    canvas.Lines(lines);
    for (std::size_t i = 0; i < values.size(); ++i)
        canvas.Text({at[i] + (letter.ascent - letter.descent) / 2, row_y + 2.4 * bracket}, values[i].mark->text,
                    TextAlign::right, 90);
}

} // namespace

IntegralMarks MakeIntegralMarks(const DataSet& set, std::span<const float> row, const Settings& settings, Rgba text,
                                std::shared_ptr<const IntegralCurves> curves)
{
    IntegralMarks integrals;
    if (settings.integral_disp == 0 || set.par.DispLeft == 0 || row.empty() || set.Integrals.empty()) return integrals;
    if (!curves || curves->size() != row.size())
        curves = std::make_shared<IntegralCurves>(row, static_cast<double>(set.par.DispLeft));
    integrals.curves = std::move(curves);
    const auto last = static_cast<std::int32_t>(row.size()) - 1;
    for (std::size_t i = 0; i < set.Integrals.size(); ++i) {
        // A file may hold regions of a longer row.
        const IntegralEntry& entry = set.Integrals[i];
        const std::int32_t start = std::min(entry.StartPoint, last), end = std::max(entry.EndPoint, 0);
        if (start <= end) continue;
        integrals.marks.push_back({entry, i, start, end, integrals.curves->Total(entry), ValueText(set, i, settings)});
    }
    integrals.full = static_cast<double>(set.par.DispLeft);
    integrals.show_base = settings.integ_base_disp != 0;
    integrals.text = text;
    integrals.curve.width = std::clamp(settings.disp_integ_width, 1.0, 20.0);
    integrals.font = {"Liberation Sans", 12};
    return integrals;
}

IntegralPlaces::IntegralPlaces(const PlotFrame& frame, const IntegralMarks& marks) :
    foot(frame.rect.bottom() - kFoot * frame.rect.height)
{
    double largest = 0;
    for (const IntegralMark& mark : marks.marks) largest = std::max(largest, std::abs(mark.total));
    if (largest > 0) scale = kRise * frame.rect.height / largest;
}

double IntegralRowHeight(Canvas& canvas, const IntegralMarks& marks)
{
    const auto longest =
        std::ranges::max_element(marks.marks, {}, [](const IntegralMark& mark) { return mark.text.size(); });
    if (longest == marks.marks.end() || longest->text.empty()) return 0;
    canvas.SetFont(marks.font);
    const double widest = canvas.Measure(longest->text).width;
    return widest + 3 * kBracket * canvas.Measure("X").height();
}

void DrawIntegralMarks(Canvas& canvas, const PlotFrame& frame, const IntegralMarks& marks, double first_ppm,
                       double step_ppm, double row_y)
{
    const Places places{frame, first_ppm, step_ppm};
    const IntegralPlaces heights(frame, marks);
    if (heights.scale == 0) return;
    canvas.PushClip(frame.rect);
    canvas.SetPen(marks.curve);
    for (const IntegralMark& mark : marks.marks) {
        const double left = places.X(mark.start), right = places.X(mark.end);
        if (std::max(left, right) < frame.rect.x || std::min(left, right) > frame.rect.right()) continue;
        DrawIntegral(canvas, places, mark, *marks.curves, heights);
        if (marks.show_base) DrawBaseLine(canvas, places, mark, marks);
    }
    canvas.PopClip();
    DrawValues(canvas, places, marks, row_y);
}

} // namespace nmr
