#pragma once
// The plot of a spectrum or FID: reduction of the curve, axis with ticks, grid.

#include "core/data_set.h"
#include "core/settings.h"
#include "layout/canvas.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nmr {

/// Smallest and largest value of blocks of 8, 16, 32 ... points, so that any range of a row of a
/// million points is reduced to one pair a pixel column in time of the columns alone. NaNs do not count.
class MinMaxPyramid {
public:
    struct Range {
        float low = 0, high = 0;
    };
    /// Keeps a view on the row: it must outlive the pyramid or the next Build.
    void Build(std::span<const float> row);
    /// Over indices first..last, both inside the row, first <= last; low > high when all are NaN.
    Range Over(std::size_t first, std::size_t last) const;
    std::size_t size() const { return row_.size(); }

private:
    std::span<const float> row_;
    std::vector<std::vector<Range>> levels_;
};

enum class XUnit : std::int16_t { ppm = 0, hz = 1, khz = 2 };

/// What stands where: a ppm range (left the larger, as on the display) and an intensity range over a
/// rectangle.
struct PlotFrame {
    RectD rect;
    double left_ppm = 10, right_ppm = 0;
    double low = 0, high = 1; ///< intensity at the bottom and the top
    double X(double ppm) const { return rect.x + (left_ppm - ppm) / (left_ppm - right_ppm) * rect.width; }
    double Y(double value) const { return rect.bottom() - (value - low) / (high - low) * rect.height; }
    double Ppm(double x) const { return left_ppm - (x - rect.x) / rect.width * (left_ppm - right_ppm); }
    double Value(double y) const { return low + (rect.bottom() - y) / rect.height * (high - low); }
};

/// A row over its ppm axis of either direction, clipped to the frame. The points are joined by straight
/// lines. Rasters get it as stripes, four a device column, in a time that the number of points hardly
/// touches; other canvases as a polyline of at most two points a column where the row is dense.
void DrawCurve(Canvas& canvas, const PlotFrame& frame, const MinMaxPyramid& pyramid, std::span<const float> row,
               double first_ppm, double step_ppm, const Pen& pen);

struct AxisStyle {
    XUnit unit = XUnit::ppm;
    double hz_per_ppm = 1;   ///< OBFRQ0PPM
    bool individual = false; ///< AXIS TIC MODE not 0: the steps below instead of AutoTic
    double step_ppm = 1, step_hz = 100;
    int divisions = 10;        ///< minor ticks between numbers in individual mode
    std::string title = "ppm"; ///< a text of layout/code_text.h
    Pen pen;
    Rgba text;
    FontSpecD font;
};
/// Axis line at the top of `rect`, ticks and numbers below it, title right of its end. Numbers never
/// touch: where they would, every second, fifth, tenth ... is left. Numbers at the ends reach half their
/// width out of the rectangle.
void DrawXAxis(Canvas& canvas, const RectD& rect, double left_ppm, double right_ppm, const AxisStyle& style);
/// Height that DrawXAxis needs.
double XAxisHeight(Canvas& canvas, const AxisStyle& style);
/// Width of the title as it is drawn.
double XAxisTitleWidth(Canvas& canvas, const AxisStyle& style);
/// Room that the title and half a number need right of the axis; half a number left of it.
double XAxisOverhang(Canvas& canvas, const AxisStyle& style);

/// Where an axis has its ticks, in its unit.
struct AxisTicks {
    double step = 0;        ///< between major ticks, with the sign of the direction; 0: no ticks
    std::int64_t first = 0; ///< major ticks stand at first * step, (first + 1) * step, ...
    std::int64_t count = 0;
    int divisions = 1;   ///< minor intervals between two major ticks
    double unit_ppm = 1; ///< ppm of one unit
};
/// Major ticks from left to right; automatic, or by the style's own steps. At least one tick for any
/// range that isn't empty, at most max_count.
AxisTicks FindAxisTicks(double left_ppm, double right_ppm, const AxisStyle& style, std::int64_t max_count);

struct GridStyle {
    bool x_auto = true, y_auto = true;
    double x_step_ppm = 1, x_step_hz = 100;
    double y_step = 0.5; ///< share of y_full between two lines
    double y_full = 1;   ///< intensity of the highest point
    Pen pen;
};
/// Lines at the major ticks of the axis or at own steps, and level lines.
void DrawGrid(Canvas& canvas, const PlotFrame& frame, const AxisStyle& axis, const GridStyle& style);

/// Steps offered by the display-scope and grid forms: "5E+6" ... "0.00001".
std::span<const std::string_view> StepList();

} // namespace nmr
