#pragma once
// Parts of the Delta reader that stand in files of their own.

#include "formats/delta.h"

namespace nmr {

inline constexpr std::string_view kDeltaWhere = "ReadData ECP/1DDRW";

/// Fields of the slot; bad_value without an observe frequency.
Status FillParaDelta(GlobalBlock& g, std::int16_t slot, const DeltaHeader& header, const DeltaParameters& parameters);

/// X_OFFSET, which stands in ppm or in Hz; nothing when it is missing or has another unit.
std::optional<double> DeltaCentrePpm(const DeltaParameters& parameters, double obs_mhz);

} // namespace nmr
