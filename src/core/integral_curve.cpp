#include "core/integral_curve.h"

#include <algorithm>

namespace nmr {

IntegralCurves::IntegralCurves(std::span<const float> row, double full) : before_(row.size() + 1, 0.0)
{
    if (full == 0.0) return;
    const double unit = 1.0 / full;
    double sum = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
        sum += static_cast<double>(row[i]);
        before_[i + 1] = sum * unit;
    }
}

double IntegralCurves::At(const IntegralEntry& entry, std::int32_t p) const
{
    const auto n = static_cast<std::int32_t>(size());
    // A file may hold regions of a longer row.
    const std::int32_t start = std::min(entry.StartPoint, n - 1), end = std::max(entry.EndPoint, 0);
    if (n < 1 || start < end) return 0.0;
    p = std::clamp(p, end, start);
    const double points = static_cast<double>(start - p) + 1.0;
    const IntegralRamp ramp(entry, n);
    // The sum of q from p to start.
    const double indices = points * (static_cast<double>(start) + p) / 2.0;
    const double sum = before_[static_cast<std::size_t>(start) + 1] - before_[static_cast<std::size_t>(p)];
    return sum - indices * ramp.b + points * ramp.a;
}

} // namespace nmr
