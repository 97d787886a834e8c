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

/// Smallest and largest value of blocks of 2, 4, 8 ... points, so that any range of a row of a
/// million points is reduced to one pair a pixel column in time of the columns alone.
class MinMaxPyramid {
public:
    struct Range {
        float low = 0, high = 0;
    };
    /// Keeps a view on the row: it must outlive the pyramid or the next Build.
    void Build(std::span<const float> row);
    /// Over indices first..last, both inside the row, first <= last.
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

/// A row over its ppm axis of either direction, clipped to the frame. Dense ranges become one vertical
/// line a device column, sparse ones a polyline.
void DrawCurve(Canvas& canvas, const PlotFrame& frame, const MinMaxPyramid& pyramid, std::span<const float> row,
               double first_ppm, double step_ppm, const Pen& pen);

struct AxisStyle {
    XUnit unit = XUnit::ppm;
    double hz_per_ppm = 1;   ///< OBFRQ0PPM
    bool individual = false; ///< AXIS TIC MODE not 0: the steps below instead of AutoTic
    double step_ppm = 1, step_hz = 100;
    int divisions = 10; ///< minor ticks between numbers in individual mode
    std::string title = "ppm";
    Pen pen;
    Rgba text;
    FontSpecD font;
};
/// Axis line at the top of `rect`, ticks and numbers below it, title at its right end.
void DrawXAxis(Canvas& canvas, const RectD& rect, double left_ppm, double right_ppm, const AxisStyle& style);
/// Height that DrawXAxis needs.
double XAxisHeight(Canvas& canvas, const AxisStyle& style);

/// Steps offered by the display-scope and grid forms: "5E+6" ... "0.00001".
std::span<const std::string_view> StepList();

} // namespace nmr
