#pragma once
// Arrays of a slot for a reader that fills them whole.

#include "core/global_block.h"

namespace nmr {

/// AllocateSpecBuffer for a caller that overwrites every row of data and source and the axis: those arrays,
/// the integral curve and the work arrays of slot 0 hold anything where they have the right size already. At the
/// largest length zeroing them costs as much as reading a file. The element behind the last point is 0.
Status AllocateToOverwrite(GlobalBlock& g, std::int32_t points, std::int16_t slot);

} // namespace nmr
