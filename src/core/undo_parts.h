#pragma once
// Which members belong to a part of a step: one list for keeping and for exchanging them.

#include "core/undo.h"

namespace nmr {

/// The live values of a kind's parts into the step; points and backups are files and not among them.
void KeepParts(GlobalBlock& g, UndoStep& step, std::uint32_t parts);
/// Live and kept values change places.
void ExchangeParts(GlobalBlock& g, UndoStep& step, std::uint32_t parts);

} // namespace nmr
