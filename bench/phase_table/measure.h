#pragma once
// How near an automatic phase comes to a known truth, and whether it stays there.

#include "core/global_block.h"

#include <span>

namespace nmr::bench {

/// A phase that turns as Phase_Apply does, degrees.
struct Turn {
    double p0 = 0, p1 = 0, pivot = 0;
    double At(double i, double n) const { return p0 + (i - pivot) * p1 / n; }
};

/// What the block's phases are.
Turn PresentTurn(const GlobalBlock& g);

/// Degrees left at the points above 5 % of the tallest: root mean square weighted by magnitude, the better of the
/// phase and its half turn.
double LeftDegrees(std::span<const float> re, std::span<const float> im, const Turn& truth, const Turn& found);

struct Score {
    double plain = 0, robust = 0, quality = 0, plain_ms = 0, robust_ms = 0;
    double again = 0; ///< largest turn of a point above 5 % by a second and a third press, each on the fixed result
    double back = 0;  ///< farthest that such a point is from the result after a press on it turned 20 degrees by hand
};

/// Both automatic phases on the source of the shown row, which is then no longer what it was.
Score Measure(GlobalBlock& g, std::int32_t n, const Turn& truth, double known_p1);

} // namespace nmr::bench
