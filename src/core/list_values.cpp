#include "core/list_values.h"

#include "core/numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace nmr {

namespace {

/// Last index of the row that axis and data both hold, -1 without points.
std::int32_t LastIndex(const DataSet& set)
{
    const std::size_t held = std::min(set.spec.XAxis.size(), set.spec.DataRe.columns());
    return std::min(set.par.POINT, static_cast<std::int32_t>(std::min<std::size_t>(held, kMaxPoints + 1))) - 1;
}

/// The point of a position, which may lie outside the row; nothing when the axis tells none.
std::optional<double> PointOf(const DataSet& set, const PeakEntry& peak, std::int32_t last)
{
    if (last < 1 || set.par.OBFRQ0PPM == 0.0) return std::nullopt;
    const double range = set.spec.XAxis[static_cast<std::size_t>(last)] - set.spec.XAxis[0];
    const double point = peak.Position / set.par.OBFRQ0PPM / range * last;
    return std::isfinite(point) ? std::optional(point) : std::nullopt;
}

double Sample(const DataSet& set, std::size_t row, std::int32_t point)
{
    if (row >= set.spec.DataRe.rows() || point < 0 || point > LastIndex(set)) return 0.0;
    return static_cast<double>(set.spec.DataRe[row][static_cast<std::size_t>(point)]);
}

double FirstPpm(const DataSet& set)
{
    return set.spec.XAxis.empty() ? 0.0 : set.spec.XAxis[0];
}

} // namespace

std::int32_t PeakIndex(const DataSet& set, const PeakEntry& peak)
{
    const std::int32_t last = LastIndex(set);
    if (last < 0) return 0;
    const std::int32_t stored = std::clamp(peak.Point, 0, last);
    const auto by_position = PointOf(set, peak, last);
    if (!by_position) return stored;
    const std::int32_t nearest = RoundHalfEven(*by_position);
    const bool inside = nearest >= 0 && nearest <= last;
    return inside && std::abs(nearest - stored) <= 1 ? nearest : stored;
}

double PeakAmplitude(const DataSet& set, std::size_t row, const PeakEntry& peak)
{
    if (peak.Amplitude != 0.0F) return static_cast<double>(peak.Amplitude);
    return Sample(set, row, PeakIndex(set, peak));
}

double PeakHeightPercent(const DataSet& set, std::size_t row, const PeakEntry& peak)
{
    if (set.par.DispLeft == 0.0F) return 0.0;
    return 100.0 * PeakAmplitude(set, row, peak) / static_cast<double>(set.par.DispLeft);
}

PeakTop TopBetween(const DataSet& set, std::span<const float> row, std::int32_t point)
{
    const auto at = [&](std::int32_t p) { return static_cast<double>(row[static_cast<std::size_t>(p)]); };
    const auto last = std::min(LastIndex(set), static_cast<std::int32_t>(row.size()) - 1);
    if (point < 0 || point > last) return {};
    const double here = at(point);
    PeakTop top{PointToPpm(set, point), PpmToHz(set, PointToPpm(set, point)), here};
    if (point < 1 || point >= last) return top;
    const double before = at(point - 1), after = at(point + 1), bend = before - 2.0 * here + after;
    const bool extremum = (here >= before && here >= after) || (here <= before && here <= after);
    if (!extremum || bend == 0.0) return top;
    const double offset = 0.5 * (before - after) / bend; // points, within half a point of the sample
    const double step_ppm = (PointToPpm(set, point + 1) - PointToPpm(set, point - 1)) / 2.0;
    top.ppm += offset * step_ppm;
    top.hz = PpmToHz(set, top.ppm);
    top.amplitude = here - 0.25 * (before - after) * offset;
    return top;
}

PeakTop InterpolatedTop(const DataSet& set, std::size_t row, const PeakEntry& peak)
{
    if (row >= set.spec.DataRe.rows()) return {PeakPpm(set, peak), PeakHz(set, peak), PeakAmplitude(set, row, peak)};
    return TopBetween(set, set.spec.DataRe[row], PeakIndex(set, peak));
}

double IntegralStartPpm(const DataSet& set, const IntegralEntry& entry)
{
    return FirstPpm(set) + static_cast<double>(entry.Start);
}

double IntegralEndPpm(const DataSet& set, const IntegralEntry& entry)
{
    return FirstPpm(set) + static_cast<double>(entry.End);
}

std::optional<double> ListedIntegral(const DataSet& set, std::size_t index)
{
    const auto reference = static_cast<std::size_t>(std::max<std::int16_t>(set.IntegralRef, 0));
    if (index >= set.Integrals.size() || set.IntegralRef < 0 || reference >= set.Integrals.size()) return std::nullopt;
    const auto unit = static_cast<double>(set.Integrals[reference].Value);
    const double listed =
        static_cast<double>(set.Integrals[index].Value) / unit * static_cast<double>(set.IntegralScale);
    return unit != 0.0 && std::isfinite(listed) ? std::optional(listed) : std::nullopt;
}

PeakLine PeakLineOf(const DataSet& set, std::size_t row, std::size_t index)
{
    const PeakEntry& peak = set.Peaks[index];
    return {static_cast<std::int32_t>(index) + 1,
            PeakIndex(set, peak),
            PeakPpm(set, peak),
            PeakHz(set, peak),
            PeakAmplitude(set, row, peak),
            PeakHeightPercent(set, row, peak),
            InterpolatedTop(set, row, peak)};
}

std::vector<PeakLine> PeakLines(const DataSet& set, std::size_t row)
{
    std::vector<PeakLine> lines;
    for (std::size_t i = 0; i < set.Peaks.size(); ++i) lines.push_back(PeakLineOf(set, row, i));
    return lines;
}

IntegralLine IntegralLineOf(const DataSet& set, std::size_t index)
{
    const IntegralEntry& entry = set.Integrals[index];
    return {static_cast<std::int32_t>(index) + 1,
            ListedIntegral(set, index),
            static_cast<double>(entry.Value),
            IntegralStartPpm(set, entry),
            IntegralEndPpm(set, entry),
            ShortestDouble(entry.B0),
            ShortestDouble(entry.B1),
            static_cast<std::int32_t>(index) == set.IntegralRef};
}

std::vector<IntegralLine> IntegralLines(const DataSet& set)
{
    std::vector<IntegralLine> lines;
    for (std::size_t i = 0; i < set.Integrals.size(); ++i) lines.push_back(IntegralLineOf(set, i));
    return lines;
}

} // namespace nmr
