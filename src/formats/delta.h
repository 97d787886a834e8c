#pragma once
// JEOL Delta files (*.jdf): FIDs, complex or real, and spectra on a ppm or a Hz axis.
//
// What it rests on: the vendor's format text as quoted in public, and seven published files (ECZ 400 to
// 600 MHz and one converted from a 90 MHz archive). Learnt from them:
// - Only the points from the first to the last valid index carry data, and start and stop belong to them.
// - A section holds all real values, the next all imaginary ones; axis type 1 has no imaginary section.
// - Spectra run from high to low ppm; they are stored the other way round, so that ppm rise.
// - X_OFFSET is the shift of the centre; X_SWEEP is the sampling width, with the edges of the filter.
// - The digital filter delays the FID by what its stages ("orders", "factors") add up to; published
//   FIDs begin to decay at the next point.

#include "formats/delta_header.h"
#include "formats/registry.h"

#include <string_view>

namespace nmr {

/// Complex points of delay of a cascade of symmetric filters: half the sum over the stages of
/// (order - 1) / (product of the factors of this and all later stages).
///
/// @param orders  count of stages, then one order each: "2 54 73"
/// @param factors  one factor for each stage: "8  2"
/// @return nothing when the two lists don't fit each other
std::optional<double> DeltaGroupDelay(std::string_view orders, std::string_view factors);

/// How the points lie in the file.
struct DeltaLayout {
    std::size_t value_bytes = 8;       ///< 8 float64, 4 float32
    std::size_t sections = 2;          ///< real and imaginary, or real alone
    std::size_t stored = 0;            ///< points of a section
    std::size_t first = 0, points = 0; ///< the valid ones
    std::size_t start = 0;             ///< of the first section
};

/// Checks the counts of the head; what had to be decided or mended goes into `warnings`.
/// @return bad_value or too_large for counts that can't be
Result<DeltaLayout> FindDeltaLayout(const DeltaHeader& header, std::vector<std::string>& warnings);

/// Family 3, from the whole file. two_dimensional for data of more than one dimension.
Status ReadDataDelta(GlobalBlock& g, std::int16_t slot, ByteSpan file);

Status ReadDelta(const ReadRequest& request);

} // namespace nmr
