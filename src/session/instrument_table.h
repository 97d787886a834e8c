#pragma once
// The table of instruments with their 0 ppm frequencies: the transform takes the axis from it, the reference
// tool puts rows into it, m44 arranges it. Changes are saved at exit, after a question.

#include "session/session.h"

#include <optional>

namespace nmr {

/// The row of the data in slot 0 with their present 0 ppm frequency; nothing without frequencies.
std::optional<InstrumentRow> PresentInstrument(const GlobalBlock& g);
/// Index of the row that is for the same instrument, probe, nucleus and frequency; nothing when none is.
std::optional<std::size_t> SameInstrument(const GlobalBlock& g, const InstrumentRow& row);
/// The present row into the table, in place of the same or as a new one. False at 2001 rows or without
/// frequencies.
bool StoreInstrument(GlobalBlock& g);

void m44_Click(Session& s); ///< Arrange Instrumental Data for Reference Setting

} // namespace nmr
