#pragma once
// Chemagnetics CMX data sets: a folder with data and the parameter files acq, acq_2 and proc.
//
// What it rests on: what other readers make of such folders, and one published FID of 256 points. That
// all real values stand before all imaginary ones is taken from those readers: the short FID does not
// prove it. Arrays were not among the samples.
// - Numbers may end in a unit letter: s, m (1E-3), u (1E-6), n (1E-9), k (1024); 0x... is hexadecimal.
// - ch1 is the number of the channel that observes: ch1=2 means that sf2 is its frequency.
// - The nucleus stands nowhere; it follows from the frequency when that is one of protons.

#include "formats/key_values.h"
#include "formats/registry.h"

#include <optional>
#include <string_view>

namespace nmr {

/// A value with its unit letter; nothing for what is no number.
std::optional<double> ParseCmxNumber(std::string_view text);

/// The parameter files of one set; a missing one is empty.
struct CmxFiles {
    KeyValues acq, acq_2, proc;
};

// Each copies what it has into the slot.
Status ReadParaCMX(GlobalBlock& g, std::int16_t slot, const CmxFiles& files); ///< acq: bad_value when unusable
void ReadParaCMX2(ParamBlock& par, const KeyValues& acq_2);
void ReadParaCMXProc(DataSet& set, const KeyValues& proc);

/// Points of a FID whose parameters stand in the slot: int32 (float32 when proc says so), big-endian.
/// Rows of an array that was used get their values.
/// @return truncated when the file ends before the imaginary values, too_large above 128 rows
Status ReadDataCMX(GlobalBlock& g, std::int16_t slot, const CmxFiles& files, ByteSpan data);

/// Family 9.
Status ReadCmx(const ReadRequest& request);

} // namespace nmr
