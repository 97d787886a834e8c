#pragma once
// Integral regions in a plot: a curve that rises by what it passes over, and the value of each under the axis.

#include "core/integral_curve.h"
#include "core/settings.h"
#include "layout/plot.h"

#include <memory>
#include <string>
#include <vector>

namespace nmr {

struct IntegralMark {
    IntegralEntry entry;
    std::size_t index;       ///< in the list of the set
    std::int32_t start, end; ///< its points, held inside the row; the curve begins at the first
    double total;            ///< of the curve, in units of DispLeft
    std::string text;        ///< listed value; empty where there is none
};

struct IntegralMarks {
    std::vector<IntegralMark> marks;
    std::shared_ptr<const IntegralCurves> curves;
    double full = 0;        ///< DispLeft, the unit of base lines and sums
    bool show_base = false; ///< the level that each sum counts as zero, on the spectrum
    Pen curve;
    Rgba text;
    FontSpecD font;
    bool empty() const { return marks.empty(); }
};

/// The integrals of a row, by the switches of the settings; sums go over all points of the row. The values are
/// the listed ones. `curves` are those of the row; without them they are made here.
IntegralMarks MakeIntegralMarks(const DataSet& set, std::span<const float> row, const Settings& settings, Rgba text,
                                std::shared_ptr<const IntegralCurves> curves = nullptr);

/// Height that the values need below the axis; 0 when there are none.
double IntegralRowHeight(Canvas& canvas, const IntegralMarks& marks);

/// Where the curves stand in a plot: all of one scale, the tallest of them in the upper part.
struct IntegralPlaces {
    double foot = 0;  ///< where all start
    double scale = 0; ///< canvas units for a sum of 1; 0 when there is nothing to draw
    IntegralPlaces(const PlotFrame& frame, const IntegralMarks& marks);
    double Y(double sum) const { return foot - sum * scale; }
};

/// Draws the curves in the upper part of the frame, all in one scale and rising from the left, and the values from
/// row_y down.
void DrawIntegralMarks(Canvas& canvas, const PlotFrame& frame, const IntegralMarks& marks, double first_ppm,
                       double step_ppm, double row_y);

} // namespace nmr
