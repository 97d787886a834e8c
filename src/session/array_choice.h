#pragma once
// Files of several rows: what the user wants of them.

#include "core/result.h"
#include "session/session.h"

namespace nmr {

enum class ArrayUse { single = 0, by_file = 1, by_parameter = 2, multi = 3, dept = 4 };

/// Asks NMR1D_Form20, and NMR1D_Form21 for FIDs that stay rows, when slot 0 holds more than one; sets
/// ARRAY SORT, DEPT MODE, ReadAsArray and CurrentRow.
/// @return single without a question for one row; cancelled
Result<ArrayUse> AskArrayUse(Session& s);

/// For multi and dept: the rows of the spectrum in slot 0 become the spectra of slots 0 to 19, one row
/// each; what stood there is replaced. Three rows read as DEPT fill four slots, since the one for DEPT90
/// stands twice. The kept FID then fits slot 0 no more, so it can't be transformed again.
Status SpreadRows(GlobalBlock& g, ArrayUse use);

} // namespace nmr
