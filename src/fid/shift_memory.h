#pragma once
// What the last transforms of an experiment and of a kind of data used as FID shift.

#include "core/global_block.h"

#include <optional>
#include <string>

namespace nmr {

/// The key of the set's experiment: instrument, nucleus and pulse program, since the delay of a FID
/// depends on how it was taken.
std::string ExperimentKey(const ParamBlock& par);

/// Stores FIDShift, the group delay it was for, LastObsCenter and LastCentre under the experiment's
/// key (a full table stores no new key), and FIDShift in the setting of family and nucleus.
void RememberShift(GlobalBlock& g, const DataSet& set);

/// The shift remembered for the experiment, else for family and nucleus; only one that came from data
/// of the same group delay within one point.
std::optional<std::int32_t> RememberedShift(const GlobalBlock& g, const DataSet& set);

} // namespace nmr
