#pragma once
// What the entries of the peak and integral lists say, for every place that shows them: lists, plot, files,
// command line. Positions are stored relative to the first point of the axis, so that a new reference
// moves them along; sizes of a picked peak are not stored at all, since a later phase or base line changes
// them. Positions of peaks themselves: PeakPpm and PeakHz in core/data_set.h.

#include "core/data_set.h"

#include <optional>
#include <span>
#include <vector>

namespace nmr {

/// Index of the row that a peak stands on: the sample nearest to its Position. An entry whose Position lies
/// more than one point from its Point (or outside the row) goes by Point, which the picking leaves up to
/// one too high. Always inside 0..POINT-1; 0 for a set without points.
std::int32_t PeakIndex(const DataSet& set, const PeakEntry& peak);

/// Height of a peak in the units of DataRe: the Amplitude that a file gave, else the sample of the row.
double PeakAmplitude(const DataSet& set, std::size_t row, const PeakEntry& peak);
/// 100 * amplitude / DispLeft, the unit of all levels; 0 where DispLeft is.
double PeakHeightPercent(const DataSet& set, std::size_t row, const PeakEntry& peak);

/// Top of the parabola through a point of a row and its two neighbours. At an end of the row, or where the
/// sample is no local extremum, the sample itself.
struct PeakTop {
    double ppm = 0, hz = 0, amplitude = 0;
};
PeakTop TopBetween(const DataSet& set, std::span<const float> row, std::int32_t point);
/// The same at a peak of the list.
PeakTop InterpolatedTop(const DataSet& set, std::size_t row, const PeakEntry& peak);

/// Ends of a region, ppm.
double IntegralStartPpm(const DataSet& set, const IntegralEntry& entry);
double IntegralEndPpm(const DataSet& set, const IntegralEntry& entry);

/// The value that lists show: Value / Value of the reference entry * IntegralScale. Nothing for an index
/// outside the list, without a reference, or where the reference's value is 0.
std::optional<double> ListedIntegral(const DataSet& set, std::size_t index);

/// A line of the peak list. Its number is that of the plot's labels too: lists are kept from the small shift up.
struct PeakLine {
    std::int32_t number = 0; ///< from 1
    std::int32_t point = 0;
    double ppm = 0, hz = 0, amplitude = 0, height_percent = 0;
    PeakTop top; ///< between the samples
};
PeakLine PeakLineOf(const DataSet& set, std::size_t row, std::size_t index);
std::vector<PeakLine> PeakLines(const DataSet& set, std::size_t row);

/// A line of the integral list.
struct IntegralLine {
    std::int32_t number = 0;     ///< from 1
    std::optional<double> value; ///< relative to the reference
    double sum = 0;              ///< of the points, in units of DispLeft
    double start_ppm = 0, end_ppm = 0;
    double b0 = 0, b1 = 0;
    bool reference = false;
};
IntegralLine IntegralLineOf(const DataSet& set, std::size_t index);
std::vector<IntegralLine> IntegralLines(const DataSet& set);

} // namespace nmr
