#include "core/data_set.h"

#include "core/numbers.h"

#include <algorithm>

namespace nmr {

namespace {

double FirstPpm(const DataSet& set)
{
    return set.spec.XAxis.empty() ? 0.0 : set.spec.XAxis[0];
}

/// Index of the last point of a row that the axis really holds, -1 without points.
std::int32_t LastPoint(const DataSet& set)
{
    constexpr std::size_t kMost = static_cast<std::size_t>(kMaxPoints) + 1;
    return std::min(set.par.POINT, static_cast<std::int32_t>(std::min(set.spec.XAxis.size(), kMost))) - 1;
}

} // namespace

double PeakPpm(const DataSet& set, const PeakEntry& peak)
{
    if (set.par.OBFRQ0PPM == 0.0) return FirstPpm(set);
    return FirstPpm(set) + peak.Position / set.par.OBFRQ0PPM;
}

double PeakHz(const DataSet& set, const PeakEntry& peak)
{
    return FirstPpm(set) * set.par.OBFRQ0PPM + peak.Position;
}

double PointToPpm(const DataSet& set, std::int32_t point)
{
    const std::int32_t last = LastPoint(set);
    if (last < 0) return 0.0;
    return set.spec.XAxis[static_cast<std::size_t>(std::clamp(point, 0, last))];
}

std::int32_t PpmToPoint(const DataSet& set, double ppm)
{
    const std::int32_t last = LastPoint(set);
    if (last < 1) return 0;
    const double first_ppm = set.spec.XAxis[0];
    const double range = set.spec.XAxis[static_cast<std::size_t>(last)] - first_ppm;
    if (range == 0.0) return 0;
    return std::clamp(RoundHalfEven((ppm - first_ppm) / range * last), 0, last);
}

double PpmToHz(const DataSet& set, double ppm)
{
    return ppm * set.par.OBFRQ0PPM;
}

} // namespace nmr
