#pragma once
// Coloured regions of the spectrum: parts of the axis whose curve has a colour of its own.

#include "core/global_block.h"

namespace nmr {

/// A region counts when it has a colour and two different ends.
bool IsColored(const RegionColor& region);

/// Colours the axis between two positions (absolute ppm, in any order). What other regions had of it becomes
/// part of the new one: they are cut, parted or taken away. One undo step.
/// @return false, and nothing changed, for equal or non-finite ends, or when all places are taken
bool SetColorRegion(GlobalBlock& g, double a_ppm, double b_ppm, std::int32_t color);

/// Takes the region at a position away. One undo step. @return false when there is none
bool ResetColorRegion(GlobalBlock& g, double ppm);
/// Takes all away, in one undo step. @return false when there is none
bool ResetAllColorRegions(GlobalBlock& g);

} // namespace nmr
