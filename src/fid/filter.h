#pragma once
// The low-pass filters that a FID may pass before the transform.

#include <cstdint>
#include <span>

namespace nmr {

/// Two quadratures of one FID, as long as each other.
struct FidLines {
    std::span<const float> re, im;
};
struct FilteredLines {
    std::span<float> re, im; ///< zeros on entry; the first points that a filter skips stay so
};

inline constexpr std::int32_t kFilterNone = 0;
inline constexpr std::int32_t kFilterMovingAverage = 1;
inline constexpr std::int32_t kFilterFirstOrder = 2; ///< for data with a large group delay
inline constexpr std::int32_t kFilterTwoPole = 3;

/// Filters both lines. Every point is computed in double from the stored floats, the fed-back points
/// included, and stored as float: the recursion sees what was stored.
/// @param average_points  length of the moving average, at least 1
void Filter_Fid(std::int32_t kind, const FidLines& fid, const FilteredLines& out, std::int32_t average_points);

} // namespace nmr
