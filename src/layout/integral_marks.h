#pragma once
// Integral regions in a plot: a curve that rises by what it passes over, and the value of each under the axis.

#include "core/data_set.h"
#include "core/settings.h"
#include "layout/plot.h"

#include <string>
#include <vector>

namespace nmr {

struct IntegralMark {
    std::int32_t start = 0, end = 0; ///< points of the row; the curve starts at the first
    double b0 = 0, b1 = 0;           ///< base line: b0 + b1 * (start - p) / points of the row
    double total = 0;                ///< of the curve, in units of DispLeft
    std::string text;                ///< listed value; empty where there is none
};

struct IntegralMarks {
    std::vector<IntegralMark> marks;
    double unit = 1; ///< DispLeft
    bool show_base = false;
    Pen curve;
    Rgba text;
    FontSpecD font;
    bool empty() const { return marks.empty(); }
};

/// The integrals of a row, by the switches of the settings; sums go over all points of the row.
IntegralMarks MakeIntegralMarks(const DataSet& set, std::span<const float> row, const Settings& settings, Rgba text);

/// The sums of a region from its start to each of its points, the start first.
std::vector<double> RunningSums(std::span<const float> row, const IntegralMark& mark, double unit);

/// Height that the values need below the axis; 0 when there are none.
double IntegralRowHeight(Canvas& canvas, const IntegralMarks& marks);

/// Draws the curves in the upper part of the frame, all in one scale, and the values from row_y down.
void DrawIntegralMarks(Canvas& canvas, const PlotFrame& frame, const IntegralMarks& marks, std::span<const float> row,
                       double first_ppm, double step_ppm, double row_y);

} // namespace nmr
