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

PeakTop InterpolatedTop(const DataSet& set, std::size_t row, const PeakEntry& peak)
{
    const std::int32_t i = PeakIndex(set, peak);
    PeakTop top{PeakPpm(set, peak), PeakHz(set, peak), PeakAmplitude(set, row, peak)};
    if (i < 1 || i >= LastIndex(set) || row >= set.spec.DataRe.rows()) return top;
    const double before = Sample(set, row, i - 1), here = Sample(set, row, i), after = Sample(set, row, i + 1);
    const double bend = before - 2.0 * here + after;
    const bool extremum = (here >= before && here >= after) || (here <= before && here <= after);
    if (!extremum || bend == 0.0) return top;
    const double offset = 0.5 * (before - after) / bend; // points, within half a point of the sample
    const double step_ppm = (PointToPpm(set, i + 1) - PointToPpm(set, i - 1)) / 2.0;
    top.ppm = PointToPpm(set, i) + offset * step_ppm;
    top.hz = PpmToHz(set, top.ppm);
    top.amplitude = here - 0.25 * (before - after) * offset;
    return top;
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

} // namespace nmr
