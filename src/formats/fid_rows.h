#pragma once
// FIDs on their way into a slot, in the form that families of plain numbers share.

#include "core/data_set.h"
#include "core/result.h"
#include "formats/byte_source.h"
#include "formats/word_block.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace nmr {

constexpr double kMaxFidValue = 1e30; ///< nothing an instrument writes comes near

/// How many points at the end of a row are taken for its base line.
inline std::size_t TailOf(std::size_t points)
{
    return static_cast<std::size_t>(0.4 * static_cast<double>(points));
}

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

/// Rows of plain words in a file: pairs, or real values alone.
struct WordRows {
    std::size_t rows = 1, points = 0; ///< complex points of each row
    WordKind kind = WordKind::int32;
    std::endian order = std::endian::big;
    std::size_t parts = 2;                                ///< 1: rows have no imaginary part
    double imaginary_sign = 1;                            ///< -1 turns the imaginary parts round
    std::function<std::uint64_t(std::size_t row)> offset; ///< of a row's first byte

    std::size_t PointBytes() const { return parts * BytesOf(kind); }
    /// Points that a source holds of a row.
    std::size_t Held(const ByteSource& source, std::size_t row) const;
};

/// Does what StoreFidRows does, to the same bits, at a fraction of its cost: every byte is read once, the words
/// wait in DataRe and DataIm for the largest value, and long files are shared out among processors. The arrays
/// must be zero.
///
/// @return how many values were no numbers or beyond 1E30; truncated when the file has become shorter or can
///         no longer be read
Result<std::uint64_t> StoreWordRows(const ByteSource& source, const WordRows& layout, SpecBuffer& spec);

} // namespace nmr
