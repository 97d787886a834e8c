#pragma once
// "Inversion of Spectrum": turning a spectrum round that was measured or read in the wrong sense.

#include "core/global_block.h"
#include "core/result.h"

namespace nmr {

/// Its row in the table of UndoKinds.
inline constexpr std::int32_t kInversionKind = 291;

/// Mirrors every row about the middle of the spectrum (the carrier, where the data tell it), with the
/// imaginary part changing its sign so that phases still turn the right way. Axis, peaks, integrals and
/// regions go along. One undo step; a second inversion gives the first picture back.
/// @return bad_value without a spectrum
Status Invert_Spectrum(GlobalBlock& g);

} // namespace nmr
