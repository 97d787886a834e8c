#pragma once
// Picked peaks in a plot: their positions above or below the spectrum, with lines to the tops, and marks on
// the tops themselves.

#include "core/list_values.h"
#include "core/settings.h"
#include "layout/plot.h"

#include <optional>
#include <string>
#include <vector>

namespace nmr {

struct PeakLabel {
    double ppm = 0, top = 0; ///< of the sample, in the units of the row
    std::string text;
    std::optional<PeakTop> between; ///< the top between the samples, where it is to be marked
};

struct PeakMarks {
    std::vector<PeakLabel> labels; ///< the larger shift first; empty texts leave their row out
    bool at_bottom = false;        ///< the row of labels stands below the axis
    bool show_tops = true;
    Pen line, top;
    double top_height = 0.3; ///< of the mark on a top, in letter heights
    Rgba text;
    FontSpecD font;
    bool empty() const { return labels.empty(); }
};

/// The peaks of a row, by the switches of the settings. `show_text` of a peak: its number and its position.
PeakMarks MakePeakMarks(const DataSet& set, std::span<const float> row, const Settings& settings, Rgba text);

/// Height that the row of labels needs above the plot, or below its axis; 0 when there is none.
double PeakRowHeight(Canvas& canvas, const PeakMarks& marks);

/// Draws the marks inside the frame's shown range; `row_y` is the foot of the row of labels, or its head when
/// it stands below. Labels never touch nor stand far off: where there are too many, those of the lowest
/// peaks are left out.
void DrawPeakMarks(Canvas& canvas, const PlotFrame& frame, const PeakMarks& marks, double row_y);

/// Positions as near as possible to the wanted ones (ascending) that keep a distance and stay inside of two
/// limits; the sum of the squares of the moves is the least. The limits must leave room for all.
std::vector<double> SpreadApart(const std::vector<double>& wanted, double distance, double low, double high);

} // namespace nmr
