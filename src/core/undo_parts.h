#pragma once
// Which members belong to a part of a step: one list for keeping and for exchanging them.

#include "core/global_block.h"
#include "core/undo.h"

#include <cstdint>
#include <vector>

namespace nmr {

/// The phase of the work, which stands in no set: every value of the block with its place in a step.
template <class Op>
void EachPhaseWord(GlobalBlock& g, UndoExtra& extra, Op op)
{
    op(g.Phase0Deg, extra.Phase0Deg);
    op(g.Phase1Deg, extra.Phase1Deg);
    op(g.MaxMagnitude, extra.MaxMagnitude);
    op(g.PivotPoint, extra.PivotPoint);
    op(g.P2Point, extra.P2Point);
    op(g.RowPhase0, extra.RowPhase0);
    op(g.RowPhase1, extra.RowPhase1);
}

/// The live values of a kind's parts into the step; points and backups are files and not among them.
void KeepParts(GlobalBlock& g, UndoStep& step, std::uint32_t parts);
/// Live and kept values change places.
void ExchangeParts(GlobalBlock& g, UndoStep& step, std::uint32_t parts);

/// The settings that steps bring back, in the order of the kinds.
struct UndoSettings {
    std::vector<std::int32_t> switches;
    std::vector<double> numbers;
};
UndoSettings TakeUndoSettings(const Settings& settings);
/// False when the values are not as many as there are settings; none is taken then.
bool PutUndoSettings(Settings& settings, const UndoSettings& values);

} // namespace nmr
