// The reduction of a row to what a canvas can show of it.

#include "layout/plot.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace nmr {
namespace {

// Fine enough to make steep flanks smooth, coarse enough to cost nothing.
constexpr int kStripesPerPixel = 4;

/// The row as a line over a real-valued index, and how indices lie over the frame.
struct Trace {
    const PlotFrame& frame;
    const MinMaxPyramid& pyramid;
    std::span<const float> row;
    double index_at_left; // index of the frame's left edge
    double per_unit;      // indices in one canvas unit, negative for a rising axis

    double Index(double x) const { return index_at_left + (x - frame.rect.x) * per_unit; }
    double X(double index) const { return frame.rect.x + (index - index_at_left) / per_unit; }
    double last() const { return static_cast<double>(row.size() - 1); }
};

std::optional<Trace> MakeTrace(const PlotFrame& frame, const MinMaxPyramid& pyramid, std::span<const float> row,
                               double first_ppm, double step_ppm)
{
    const double shown = frame.right_ppm - frame.left_ppm;
    const double index = (frame.left_ppm - first_ppm) / step_ppm;
    const double per_unit = shown / frame.rect.width / step_ppm;
    const bool drawable = !row.empty() && pyramid.size() == row.size() && frame.rect.width > 0 &&
                          frame.rect.height > 0 && std::isfinite(index) && std::isfinite(per_unit) && per_unit != 0 &&
                          frame.high > frame.low && std::isfinite(frame.high - frame.low);
    if (!drawable) return std::nullopt;
    return Trace{frame, pyramid, row, index, per_unit};
}

double ValueAt(const Trace& trace, double index)
{
    const auto i = static_cast<std::size_t>(index);
    const double share = index - static_cast<double>(i);
    if (share == 0 || i + 1 >= trace.row.size()) return static_cast<double>(trace.row[i]);
    return static_cast<double>(trace.row[i]) * (1 - share) + static_cast<double>(trace.row[i + 1]) * share;
}

struct Values {
    double low = std::numeric_limits<double>::infinity(), high = -std::numeric_limits<double>::infinity();
    void Take(double value)
    {
        if (value < low) low = value;
        if (value > high) high = value;
    }
    bool empty() const { return low > high; }
};

/// All that the line covers between two indices: its ends, so that neighbours always meet, and the
/// points between them.
Values Covered(const Trace& trace, double from, double to)
{
    Values values;
    if (from > to) std::swap(from, to);
    from = std::max(from, 0.0);
    to = std::min(to, trace.last());
    if (!(from <= to)) return values;
    values.Take(ValueAt(trace, from));
    values.Take(ValueAt(trace, to));
    const double first = std::ceil(from), last = std::floor(to);
    if (first > last) return values;
    const auto range = trace.pyramid.Over(static_cast<std::size_t>(first), static_cast<std::size_t>(last));
    if (range.low > range.high) return values;
    values.Take(static_cast<double>(range.low));
    values.Take(static_cast<double>(range.high));
    return values;
}

/// Heights far outside would only overflow the number formats of paper and pictures.
double LimitedY(const PlotFrame& frame, double value)
{
    const double margin = 10 * frame.rect.height;
    return std::clamp(frame.Y(value), frame.rect.y - margin, frame.rect.bottom() + margin);
}

/// Grows every stripe by a round pen: a neighbour d away reaches in by the pen's half chord there.
std::vector<Stripe> Thicken(const std::vector<Stripe>& thin, double stripe_width, double pen_width)
{
    const double radius = pen_width / 2;
    const auto reach = static_cast<std::ptrdiff_t>(radius / stripe_width);
    const auto size = static_cast<std::ptrdiff_t>(thin.size());
    constexpr float kFar = std::numeric_limits<float>::infinity();
    std::vector<Stripe> thick(thin.size(), Stripe{kFar, -kFar});
    for (std::ptrdiff_t offset = -reach; offset <= reach; ++offset) {
        const double across = static_cast<double>(offset) * stripe_width;
        const auto grow = static_cast<float>(std::sqrt(std::max(0.0, radius * radius - across * across)));
        const auto begin = std::max<std::ptrdiff_t>(0, -offset), end = std::min(size, size - offset);
        for (auto i = begin; i < end; ++i) {
            const Stripe& from = thin[static_cast<std::size_t>(i + offset)];
            Stripe& to = thick[static_cast<std::size_t>(i)];
            to.top = std::min(to.top, from.top - grow);
            to.bottom = std::max(to.bottom, from.bottom + grow);
        }
    }
    return thick;
}

void DrawStripes(Canvas& canvas, const Trace& trace, double pen_width)
{
    const RectD& rect = trace.frame.rect;
    const double pixels = canvas.Resolution(), width = 1 / (pixels * kStripesPerPixel);
    const double left = std::floor(rect.x * pixels + 1e-6) / pixels;
    const auto count = static_cast<std::size_t>(std::ceil((rect.right() - left) * pixels - 1e-6)) * kStripesPerPixel;
    constexpr float kFar = std::numeric_limits<float>::infinity();
    std::vector<Stripe> thin(count, Stripe{kFar, -kFar});
    double from = trace.Index(left);
    for (std::size_t i = 0; i < count; ++i) {
        const double to = trace.Index(left + static_cast<double>(i + 1) * width);
        const Values values = Covered(trace, from, to);
        if (!values.empty())
            thin[i] = {static_cast<float>(LimitedY(trace.frame, values.high)),
                       static_cast<float>(LimitedY(trace.frame, values.low))};
        from = to;
    }
    auto stripes = Thicken(thin, width, std::max(pen_width, 1 / pixels));
    for (Stripe& stripe : stripes) {
        stripe.top = std::max(stripe.top, static_cast<float>(rect.y));
        stripe.bottom = std::min(stripe.bottom, static_cast<float>(rect.bottom()));
    }
    canvas.Stripes(left, width, stripes);
}

/// The part of a segment inside a rectangle; false when there is none. (Liang and Barsky's way.)
bool ClipSegment(const RectD& rect, PointD& a, PointD& b)
{
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double steps[] = {-dx, dx, -dy, dy};
    const double rooms[] = {a.x - rect.x, rect.right() - a.x, a.y - rect.y, rect.bottom() - a.y};
    double enter = 0, leave = 1;
    for (int side = 0; side < 4; ++side) {
        if (steps[side] == 0 && rooms[side] < 0) return false;
        if (steps[side] == 0) continue;
        const double at = rooms[side] / steps[side];
        if (steps[side] < 0)
            enter = std::max(enter, at);
        else
            leave = std::min(leave, at);
    }
    if (enter > leave) return false;
    const PointD start = a;
    a = enter > 0 ? PointD{start.x + enter * dx, start.y + enter * dy} : start;
    b = leave < 1 ? PointD{start.x + leave * dx, start.y + leave * dy} : b;
    return true;
}

/// Cut by geometry: not every picture format knows clipping.
void DrawClipped(Canvas& canvas, const RectD& rect, std::span<const PointD> points)
{
    std::vector<PointD> run;
    const auto flush = [&] {
        if (run.size() > 1) canvas.Polyline(run);
        run.clear();
    };
    for (std::size_t i = 1; i < points.size(); ++i) {
        PointD a = points[i - 1], b = points[i];
        if (!ClipSegment(rect, a, b)) {
            flush();
            continue;
        }
        if (run.empty() || run.back().x != a.x || run.back().y != a.y) {
            flush();
            run.push_back(a);
        }
        run.push_back(b);
    }
    flush();
}

/// The points themselves, with one more at each side so that the line leaves the frame.
void DrawPoints(Canvas& canvas, const Trace& trace)
{
    double from = trace.Index(trace.frame.rect.x), to = trace.Index(trace.frame.rect.right());
    if (from > to) std::swap(from, to);
    if (from > trace.last() || to < 0) return;
    const auto first = static_cast<std::size_t>(std::max(0.0, std::floor(from)));
    const auto last = static_cast<std::size_t>(std::min(trace.last(), std::ceil(to)));
    std::vector<PointD> points;
    const auto flush = [&] {
        DrawClipped(canvas, trace.frame.rect, points);
        points.clear();
    };
    for (std::size_t i = first; i <= last; ++i) {
        if (std::isnan(trace.row[i]))
            flush();
        else
            points.push_back(
                {trace.X(static_cast<double>(i)), LimitedY(trace.frame, static_cast<double>(trace.row[i]))});
    }
    flush();
}

/// Down and up through every column, from the side that is nearer to where the line comes from.
void DrawZigzag(Canvas& canvas, const Trace& trace)
{
    const RectD& rect = trace.frame.rect;
    const double width = 1 / canvas.Resolution();
    const auto columns = static_cast<std::size_t>(std::ceil(rect.width / width));
    std::vector<PointD> points;
    points.reserve(2 * columns);
    for (std::size_t i = 0; i < columns; ++i) {
        const double x = rect.x + static_cast<double>(i) * width;
        const Values values = Covered(trace, trace.Index(x), trace.Index(x + width));
        if (values.empty()) continue;
        double near = LimitedY(trace.frame, values.low), far = LimitedY(trace.frame, values.high);
        const double before = points.empty() ? near : points.back().y;
        if (std::abs(far - before) < std::abs(near - before)) std::swap(near, far);
        points.push_back({x + width / 2, near});
        if (std::abs(far - near) > width / 4) points.push_back({x + width / 2, far});
    }
    DrawClipped(canvas, rect, points);
}

} // namespace

void DrawCurve(Canvas& canvas, const PlotFrame& frame, const MinMaxPyramid& pyramid, std::span<const float> row,
               double first_ppm, double step_ppm, const Pen& pen)
{
    const auto trace = MakeTrace(frame, pyramid, row, first_ppm, step_ppm);
    if (!trace) return;
    canvas.SetPen(pen);
    if (canvas.PrefersStripes()) {
        DrawStripes(canvas, *trace, pen.width);
        return;
    }
    const double per_column = std::abs(trace->per_unit) / canvas.Resolution();
    if (per_column > 2)
        DrawZigzag(canvas, *trace);
    else
        DrawPoints(canvas, *trace);
}

} // namespace nmr
