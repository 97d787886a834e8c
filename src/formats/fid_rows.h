#pragma once
// FIDs on their way into a slot, in the form that families of plain numbers share.

#include "core/data_set.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace nmr {

/// Where the rows come from.
struct FidRows {
    std::size_t rows = 1, points = 0; ///< complex points of each row
    /// Fills real and imaginary parts of a row with the stored numbers and returns how many points the
    /// file holds of it. It is called twice for every row of several.
    std::function<std::size_t(std::size_t row, std::span<double> re, std::span<double> im)> decode;
};

/// Stores all rows in DataRe and DataIm, which must have room: the mean of the last 40 % of a row's
/// points, of each part, is taken off, and everything is divided by the one largest value of all rows
/// and parts, found before the means go, so that the heights of rows keep their ratios. Points that
/// the file lacks stay exactly 0.
///
/// @return how many values were no numbers or beyond 1E30; they read as 0
std::uint64_t StoreFidRows(const FidRows& source, SpecBuffer& spec);

} // namespace nmr
