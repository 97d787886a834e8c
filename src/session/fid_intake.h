#pragma once
// What happens to a FID between its reader and the transform.

#include "core/global_block.h"
#include "formats/registry.h"

namespace nmr {

/// Zero-pads every row to a power of two, which the transform needs, and keeps the measured count in
/// FIDPoints and the padded length in FIDPointsRaw.
/// @return too_large when no power of two up to kMaxPoints holds the row
Status PadToPowerOfTwo(GlobalBlock& g);

/// Moves imaginary parts that were taken half a point after the real ones (sequential quadrature) to the
/// times of these: a shift by half a point, exact for what lies within the width. Rows are padded before.
void AlignSequential(GlobalBlock& g);

/// Turns a FID stored in the opposite sense of rotation, so that after the transform a line above
/// the carrier stands at higher ppm.
void ApplySense(DataSet& set, FidSense sense);

enum class ArraySort : std::int32_t { none = 0, ascending = 1, descending = 2 };
/// Rows of an array and their values in the order of RowValueA; equal values keep the file's order.
void SortRows(DataSet& set, ArraySort order);

/// Largest and smallest real value of a row into DataMax and DataMin.
void FillDataLimits(DataSet& set, std::int16_t row);

} // namespace nmr
