#pragma once
// Which members belong to a part of a step: one list for keeping and for exchanging them.

#include "core/undo.h"

#include <cstdint>
#include <vector>

namespace nmr {

struct Settings;

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
