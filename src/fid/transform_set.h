#pragma once
// The set that transform and phase work on.

#include "core/global_block.h"

#include <algorithm>

namespace nmr {

/// Slot 0, or the slot under edit in the form of several spectra.
inline DataSet& TransformSet(GlobalBlock& g)
{
    const int slot = g.CurrentMultiSlot;
    return g.Slots[static_cast<std::size_t>(slot > 0 && slot < kSlotCount ? slot : 0)];
}

/// CurrentRow, held inside the rows that the set has.
inline std::size_t ShownRow(const GlobalBlock& g, const DataSet& set)
{
    return static_cast<std::size_t>(std::clamp<std::int32_t>(g.CurrentRow, 0, std::max(set.RowCount, 1) - 1));
}

/// True for lengths that the transform takes.
inline bool IsTransformLength(std::int32_t points)
{
    return points >= 1 && points <= kMaxPoints && (points & (points - 1)) == 0;
}

} // namespace nmr
