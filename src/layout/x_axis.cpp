// The axis below a plot and the grid that hangs on its ticks.

#include "core/axis_ticks.h"
#include "layout/code_text.h"
#include "layout/plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

// All lengths of the axis are shares of the letter height, so that it keeps its look in any font.
constexpr double kMinorTick = 0.5;
constexpr double kNumbersBelow = 0.6; ///< from the line to the top of the numbers; major ticks end here
constexpr double kGap = 0.3;
constexpr double kNumberSpacing = 1.2; ///< least room between two numbers
constexpr double kMinorSpacing = 0.35, kMajorSpacing = 0.5;
constexpr std::uint8_t kMinorAlpha = 150; ///< minor ticks stand back behind the major ones

double UnitPpm(const AxisStyle& style)
{
    if (style.unit == XUnit::ppm || !(style.hz_per_ppm > 0)) return 1;
    return (style.unit == XUnit::khz ? 1000 : 1) / style.hz_per_ppm;
}

/// The user's own step in the unit of the axis, made to fit the range: 0 when there is none.
double OwnStep(double span, const AxisStyle& style, std::int64_t max_count)
{
    double step = style.unit == XUnit::ppm ? style.step_ppm : style.step_hz;
    if (style.unit == XUnit::khz) step *= 0.001;
    step = std::abs(step);
    if (step == 0 || !std::isfinite(step)) return 0;
    while (step > std::abs(span)) step /= 10;
    while (std::abs(span) / step > static_cast<double>(max_count)) step *= 10;
    return std::copysign(step, span);
}

struct Labels {
    std::int64_t every = 1; ///< ticks from number to number
    int decimals = 0;
};

std::string NumberText(double value, int decimals)
{
    auto text = fmt::format("{:.{}f}", value, decimals);
    const bool zero = text.find_first_of("123456789") == std::string::npos;
    return zero && text.front() == '-' ? text.substr(1) : text;
}

double TickValue(const AxisTicks& ticks, std::int64_t index)
{
    return static_cast<double>(ticks.first + index) * ticks.step;
}

/// 1, 2, 5, 10, 20 ...: the first at which the widest number has its room.
Labels ChooseLabels(Canvas& canvas, const AxisTicks& ticks, double tick_distance, double letter)
{
    constexpr int kSteps[] = {1, 2, 5};
    Labels labels;
    for (std::int64_t power = 1; power <= ticks.count * 10; power *= 10) {
        for (const int step : kSteps) {
            labels.every = step * power;
            labels.decimals = TickDecimals(ticks.step * static_cast<double>(labels.every));
            const double width =
                std::max(canvas.Measure(NumberText(TickValue(ticks, 0), labels.decimals)).width,
                         canvas.Measure(NumberText(TickValue(ticks, ticks.count - 1), labels.decimals)).width);
            if (static_cast<double>(labels.every) * tick_distance >= width + kNumberSpacing * letter) return labels;
        }
    }
    return labels;
}

int MinorDivisions(int divisions, double tick_distance, double letter)
{
    for (int parts = divisions; parts > 1; --parts)
        if (divisions % parts == 0 && tick_distance / parts >= kMinorSpacing * letter) return parts;
    return 1;
}

/// Everything that drawing needs, worked out once.
struct Axis {
    const RectD& rect;
    double left_ppm, right_ppm;
    AxisTicks ticks;
    Labels labels;
    double letter, tick_distance;
    int minor;

    double X(double ppm) const { return rect.x + (left_ppm - ppm) / (left_ppm - right_ppm) * rect.width; }
    double TickX(std::int64_t index, double share = 0) const
    {
        const double position = static_cast<double>(ticks.first + index) + share;
        return X(position * ticks.step * ticks.unit_ppm);
    }
    bool HasNumber(std::int64_t index) const { return (ticks.first + index) % labels.every == 0; }
};

void DrawTicks(Canvas& canvas, const Axis& axis, const Pen& pen)
{
    std::vector<Segment> major{{{axis.rect.x, axis.rect.y}, {axis.rect.right(), axis.rect.y}}}, minor;
    const auto add = [&](std::vector<Segment>& to, double x, double length) {
        if (x < axis.rect.x - 1e-6 || x > axis.rect.right() + 1e-6) return;
        to.push_back({{x, axis.rect.y}, {x, axis.rect.y + length * axis.letter}});
    };
    for (std::int64_t i = -1; i < axis.ticks.count; ++i) {
        if (i >= 0 && axis.HasNumber(i))
            add(major, axis.TickX(i), kNumbersBelow);
        else if (i >= 0)
            add(minor, axis.TickX(i), kMinorTick);
        for (int part = 1; part < axis.minor; ++part) add(minor, axis.TickX(i, double(part) / axis.minor), kMinorTick);
    }
    Pen light = pen;
    light.color.alpha = static_cast<std::uint8_t>(pen.color.alpha * kMinorAlpha / 255);
    canvas.SetPen(light);
    canvas.Lines(minor);
    canvas.SetPen(pen);
    canvas.Lines(major);
}

/// Returns where the last number ends.
double DrawNumbers(Canvas& canvas, const Axis& axis, double base_line)
{
    double end = axis.rect.right();
    for (std::int64_t i = 0; i < axis.ticks.count; ++i) {
        if (!axis.HasNumber(i)) continue;
        const auto text = NumberText(TickValue(axis.ticks, i), axis.labels.decimals);
        const double x = axis.TickX(i);
        canvas.Text({x, base_line}, text, TextAlign::centre);
        end = std::max(end, x + canvas.Measure(text).width / 2);
    }
    return end;
}

FontSpec TitleFont(const AxisStyle& style)
{
    FontSpec font;
    font.Name = style.font.family;
    font.Size = static_cast<float>(style.font.size);
    font.Bold = style.font.bold ? -1 : 0;
    font.Italic = style.font.italic ? -1 : 0;
    font.Color = ToSetting(style.text);
    return font;
}

/// @param at left end of the base line
void DrawTitle(Canvas& canvas, PointD at, const AxisStyle& style)
{
    const FontSpec font = TitleFont(style);
    CodeTextPlace place{.x = at.x, .y = at.y - Measure_Run(canvas, "X", font, 1).ascent};
    static_cast<void>(Draw_CodeText(canvas, style.title, font, place));
}

} // namespace

AxisTicks FindAxisTicks(double left_ppm, double right_ppm, const AxisStyle& style, std::int64_t max_count)
{
    AxisTicks ticks;
    ticks.unit_ppm = UnitPpm(style);
    const double a = left_ppm / ticks.unit_ppm, b = right_ppm / ticks.unit_ppm;
    if (a == b || !std::isfinite(b - a) || max_count < 1) return ticks;
    double step = style.individual ? OwnStep(b - a, style, max_count) : 0;
    ticks.divisions = std::clamp(style.divisions, 1, 100);
    if (step == 0) {
        const Ticks automatic = AutoTic(a, b);
        step = automatic.step;
        ticks.divisions = automatic.factor == 1 ? 10 : static_cast<int>(automatic.factor);
    }
    // Beyond this a range is narrower than the numbers' own precision.
    if (step == 0 || std::abs(a / step) > 1e15 || std::abs(b / step) > 1e15) return ticks;
    ticks.step = step;
    ticks.first = static_cast<std::int64_t>(std::floor(a / step - 0.0001)) + 1;
    ticks.count = static_cast<std::int64_t>(std::floor(b / step + 0.0001)) - ticks.first + 1;
    return ticks;
}

void DrawXAxis(Canvas& canvas, const RectD& rect, double left_ppm, double right_ppm, const AxisStyle& style)
{
    canvas.BeginGroup("x-axis");
    canvas.SetFont(style.font);
    const TextExtent extent = canvas.Measure("X");
    const double letter = extent.height();
    const auto most = static_cast<std::int64_t>(rect.width / (kMajorSpacing * letter));
    Axis axis{rect, left_ppm, right_ppm, FindAxisTicks(left_ppm, right_ppm, style, std::max<std::int64_t>(1, most)),
              {},   letter,   0,         1};
    const double base_line = rect.y + kNumbersBelow * letter + extent.ascent;
    if (axis.ticks.count > 0) {
        axis.tick_distance = std::abs(axis.TickX(1) - axis.TickX(0));
        axis.labels = ChooseLabels(canvas, axis.ticks, axis.tick_distance, letter);
        axis.minor = MinorDivisions(axis.ticks.divisions, axis.tick_distance, letter);
    }
    DrawTicks(canvas, axis, style.pen);
    canvas.SetPen({style.text, 1, PenStyle::solid});
    const double end = DrawNumbers(canvas, axis, base_line);
    DrawTitle(canvas, {end + 2 * kGap * letter, base_line}, style);
    canvas.EndGroup();
}

double XAxisHeight(Canvas& canvas, const AxisStyle& style)
{
    canvas.SetFont(style.font);
    return (kNumbersBelow + 1 + kGap) * canvas.Measure("X").height();
}

double XAxisTitleWidth(Canvas& canvas, const AxisStyle& style)
{
    CodeTextPlace place{.direction = 0};
    static_cast<void>(Draw_CodeText(canvas, style.title, TitleFont(style), place));
    canvas.SetFont(style.font);
    return place.right_limit;
}

double XAxisOverhang(Canvas& canvas, const AxisStyle& style)
{
    canvas.SetFont(style.font);
    const double half_number = canvas.Measure("-0.0000").width / 2;
    const double letter = canvas.Measure("X").height();
    return half_number + 3 * kGap * letter + XAxisTitleWidth(canvas, style);
}

void DrawGrid(Canvas& canvas, const PlotFrame& frame, const AxisStyle& axis, const GridStyle& style)
{
    AxisStyle steps = axis;
    steps.individual = !style.x_auto || axis.individual;
    if (!style.x_auto) {
        steps.step_ppm = style.x_step_ppm;
        steps.step_hz = style.x_step_hz;
    }
    canvas.SetFont(axis.font);
    const double closest = kMajorSpacing * canvas.Measure("X").height();
    const auto most = [closest](double length) { return std::max<std::int64_t>(1, std::int64_t(length / closest)); };
    const RectD& rect = frame.rect;
    std::vector<Segment> lines;
    const AxisTicks x = FindAxisTicks(frame.left_ppm, frame.right_ppm, steps, most(rect.width));
    for (std::int64_t i = 0; i < x.count; ++i) {
        const double at = frame.X(TickValue(x, i) * x.unit_ppm);
        if (at >= rect.x && at <= rect.right()) lines.push_back({{at, rect.y}, {at, rect.bottom()}});
    }
    AxisStyle levels;
    levels.individual = !style.y_auto;
    levels.step_ppm = style.y_step * style.y_full;
    const AxisTicks y = FindAxisTicks(frame.low, frame.high, levels, most(rect.height));
    for (std::int64_t i = 0; i < y.count; ++i) {
        const double at = frame.Y(TickValue(y, i));
        if (at >= rect.y && at <= rect.bottom()) lines.push_back({{rect.x, at}, {rect.right(), at}});
    }
    canvas.BeginGroup("grid");
    canvas.SetPen(style.pen);
    canvas.Lines(lines);
    canvas.EndGroup();
}

std::span<const std::string_view> StepList()
{
    static constexpr std::string_view kSteps[] = {
        "5E+6",   "4E+6",   "2.5E+6",  "2E+6",    "1E+6",    "8E+5",     "5E+5",    "4E+5",   "2.5E+5",
        "2E+5",   "1E+5",   "80000",   "50000",   "40000",   "25000",    "20000",   "10000",  "8000",
        "5000",   "4000",   "2500",    "2000",    "1000",    "800",      "500",     "400",    "250",
        "200",    "100",    "80",      "50",      "40",      "25",       "20",      "10",     "8",
        "5",      "4",      "2.5",     "2",       "1",       "0.8",      "0.5",     "0.4",    "0.25",
        "0.2",    "0.1",    "0.08",    "0.05",    "0.04",    "0.025",    "0.02",    "0.01",   "0.008",
        "0.005",  "0.004",  "0.0025",  "0.002",   "0.001",   "0.0008",   "0.0005",  "0.0004", "0.00025",
        "0.0002", "0.0001", "0.00008", "0.00005", "0.00004", "0.000025", "0.00002", "0.00001"};
    return kSteps;
}

} // namespace nmr
