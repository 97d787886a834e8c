#include "layout/integral_marks.h"

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

/// A value without its text, inside the row.
bool Usable(const IntegralMark& mark, std::size_t points)
{
    return mark.start >= 0 && mark.end >= 0 && mark.start != mark.end &&
           static_cast<std::size_t>(std::max(mark.start, mark.end)) < points;
}

void WriteValues(IntegralMarks& integrals, const DataSet& set, const Settings& settings)
{
    if (set.IntegralRef < 0 || static_cast<std::size_t>(set.IntegralRef) >= integrals.marks.size()) return;
    const double reference = integrals.marks[static_cast<std::size_t>(set.IntegralRef)].total;
    if (reference == 0) return;
    const int digits = std::clamp(settings.default_integ_digit, 0, kMostDigits);
    for (IntegralMark& mark : integrals.marks)
        mark.text = fmt::format("{:.{}f}", mark.total / reference * static_cast<double>(set.IntegralScale), digits);
}

/// Points of the axis as places of the canvas.
struct Places {
    const PlotFrame& frame;
    double first_ppm, step_ppm;
    double X(double point) const { return frame.X(first_ppm + step_ppm * point); }
};

void DrawIntegral(Canvas& canvas, const Places& places, const IntegralMark& mark, const std::vector<double>& sums,
                  double scale, bool base)
{
    const RectD& rect = places.frame.rect;
    const double foot = rect.bottom() - kFoot * rect.height;
    const int step = mark.end > mark.start ? 1 : -1;
    std::vector<PointD> line;
    for (std::size_t i = 0; i < sums.size(); ++i) {
        const double x = places.X(mark.start + step * static_cast<double>(i));
        const bool ends = i == 0 || i + 1 == sums.size();
        if (!ends && std::abs(x - line.back().x) < kLeastStep) continue;
        line.push_back({x, foot - sums[i] * scale});
    }
    canvas.Polyline(line);
    if (base) canvas.Lines(std::vector<Segment>{{{line.front().x, foot}, {line.back().x, foot}}});
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

std::vector<double> RunningSums(std::span<const float> row, const IntegralMark& mark, double unit)
{
    const int step = mark.end > mark.start ? 1 : -1;
    const auto n = static_cast<double>(row.size());
    const double share = 1 / unit;
    std::vector<double> sums;
    sums.reserve(static_cast<std::size_t>(std::abs(mark.start - mark.end)) + 1);
    double sum = 0;
    for (std::int32_t p = mark.start;; p += step) {
        sum += static_cast<double>(row[static_cast<std::size_t>(p)]) * share + mark.b0 + mark.b1 * (mark.start - p) / n;
        sums.push_back(sum);
        if (p == mark.end) return sums;
    }
}

IntegralMarks MakeIntegralMarks(const DataSet& set, std::span<const float> row, const Settings& settings, Rgba text)
{
    IntegralMarks integrals;
    if (settings.integral_disp == 0 || set.par.DispLeft == 0 || row.empty()) return integrals;
    integrals.unit = static_cast<double>(set.par.DispLeft);
    const auto last = static_cast<std::int32_t>(row.size()) - 1;
    for (const IntegralEntry& entry : set.Integrals) {
        // A file may hold regions of a longer row.
        IntegralMark mark{std::min(entry.StartPoint, last),
                          std::max(entry.EndPoint, 0),
                          static_cast<double>(entry.B0),
                          static_cast<double>(entry.B1),
                          0,
                          {}};
        if (!Usable(mark, row.size())) mark.start = mark.end = 0; // keeps its number in the list
        mark.total = RunningSums(row, mark, integrals.unit).back();
        integrals.marks.push_back(std::move(mark));
    }
    WriteValues(integrals, set, settings);
    std::erase_if(integrals.marks, [](const IntegralMark& mark) { return mark.start == mark.end; });
    integrals.show_base = settings.integ_base_disp != 0;
    integrals.text = text;
    integrals.curve.width = std::clamp(settings.disp_integ_width, 1.0, 20.0);
    integrals.font = {"Liberation Sans", 12};
    return integrals;
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

void DrawIntegralMarks(Canvas& canvas, const PlotFrame& frame, const IntegralMarks& marks, std::span<const float> row,
                       double first_ppm, double step_ppm, double row_y)
{
    const Places places{frame, first_ppm, step_ppm};
    double largest = 0;
    for (const IntegralMark& mark : marks.marks) largest = std::max(largest, std::abs(mark.total));
    if (largest == 0) return;
    const double scale = kRise * frame.rect.height / largest;
    canvas.PushClip(frame.rect);
    canvas.SetPen(marks.curve);
    for (const IntegralMark& mark : marks.marks)
        DrawIntegral(canvas, places, mark, RunningSums(row, mark, marks.unit), scale, marks.show_base);
    canvas.PopClip();
    DrawValues(canvas, places, marks, row_y);
}

} // namespace nmr
