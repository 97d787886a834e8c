#include "session/cursor_distance.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

std::string InBothUnits(const DataSet& set, double ppm)
{
    if (!(set.par.OBFRQ0PPM > 0)) return fmt::format("{:.4f} ppm", ppm);
    return fmt::format("{:.4f} ppm   {:.2f} Hz", ppm, ppm * set.par.OBFRQ0PPM);
}

} // namespace

double NearestTop(const DataSet& set, std::int32_t row, double ppm, double reach_ppm)
{
    if (row < 0 || static_cast<std::size_t>(row) >= set.spec.DataRe.rows() || set.par.POINT < 1) return ppm;
    const std::int32_t a = PpmToPoint(set, ppm - reach_ppm), b = PpmToPoint(set, ppm + reach_ppm);
    const auto values = set.spec.DataRe[static_cast<std::size_t>(row)];
    const auto height = [&](std::int32_t point) { return std::abs(values[static_cast<std::size_t>(point)]); };
    // On the flank of a taller line the edge of the reach is higher than the top that was meant.
    const std::int32_t last = set.par.POINT - 1;
    const auto is_top = [&](std::int32_t point) {
        return (point == 0 || height(point) >= height(point - 1)) &&
               (point == last || height(point) >= height(point + 1));
    };
    std::int32_t top = -1;
    for (std::int32_t point = std::min(a, b); point <= std::max(a, b); ++point)
        if (is_top(point) && (top < 0 || height(point) > height(top))) top = point;
    if (top < 0) return ppm;
    const double found = PointToPpm(set, top);
    return std::abs(found - ppm) <= reach_ppm ? found : ppm;
}

void CursorDistance::PlaceIn(double left_ppm, double right_ppm)
{
    ppm_ = {left_ppm + (right_ppm - left_ppm) / 3, left_ppm + (right_ppm - left_ppm) * 2 / 3};
}

void CursorDistance::Move(std::size_t cursor, double ppm)
{
    if (std::isfinite(ppm)) ppm_.at(cursor) = ppm;
}

std::string CursorDistance::Position(const DataSet& set, std::size_t cursor) const
{
    return InBothUnits(set, ppm_.at(cursor));
}

std::string CursorDistance::Distance(const DataSet& set) const
{
    return InBothUnits(set, std::abs(ppm_[0] - ppm_[1]));
}

} // namespace nmr
