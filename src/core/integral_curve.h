#pragma once
// What the points of a region sum up to: the one place that knows the base line of a region, for the stored
// values and for the curves of screen and page alike.

#include "core/data_set.h"

#include <span>
#include <vector>

namespace nmr {

/// Base line of a region, added at each point p: B0 + B1 * (s - p) / n with s its StartPoint, as a - p * b.
/// The ramp goes by the length of the whole row, n.
struct IntegralRamp {
    double a, b;
    IntegralRamp(const IntegralEntry& entry, std::int32_t n) :
        a(static_cast<double>(entry.B0) + static_cast<double>(entry.B1) * entry.StartPoint / n),
        b(static_cast<double>(entry.B1) / n)
    {
    }
};

/// Running sums of a row: any point of any region's curve at full data in constant time. Built once for a
/// row; a drag or a repaint only asks it again.
class IntegralCurves {
public:
    IntegralCurves() = default;
    /// @param full  DispLeft, the unit of all sums; 0 makes them 0
    IntegralCurves(std::span<const float> row, double full);
    /// The sum from the start of the region to point p (held inside it), in the units of Value.
    double At(const IntegralEntry& entry, std::int32_t p) const;
    double Total(const IntegralEntry& entry) const { return At(entry, entry.EndPoint); }
    std::size_t size() const { return before_.empty() ? 0 : before_.size() - 1; }

private:
    std::vector<double> before_; ///< before_[p]: sum of the points below p, in units of DispLeft
};

} // namespace nmr
