#pragma once
// Parts of the Delta reader that stand in files of their own.

#include "core/vendor_processing.h"
#include "formats/delta.h"

namespace nmr {

inline constexpr std::string_view kDeltaWhere = "ReadData ECP/1DDRW";

/// Fields of the slot; bad_value without an observe frequency.
Status FillParaDelta(GlobalBlock& g, std::int16_t slot, const DeltaHeader& header, const DeltaParameters& parameters);

/// How the instrument's software processes the FID: the list of commands at the end of the context, as
/// "sexp : 2[Hz];trapezoid : 0[%] : 0[%] : 80[%] : 100[%];zerofill : 1;fft : 1;machinephase;ppm;". Its phases
/// are found anew each time ("machinephase"), so none are told.
VendorProcessing FindDeltaProcessing(ByteSpan file, const DeltaHeader& header, std::int32_t points);

/// X_OFFSET, which stands in ppm or in Hz; nothing when it is missing or has another unit.
std::optional<double> DeltaCentrePpm(const DeltaParameters& parameters, double obs_mhz);

} // namespace nmr
