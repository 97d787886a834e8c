#pragma once
// Records and private blocks of a JCAMP-DX block into the fields of a data set.

#include "formats/jcamp.h"

namespace nmr {

/// What the fields need to know that the record does not hold.
struct JcampHead {
    std::optional<BrukerParameters> bruker;
    std::optional<double> sweep_hz; ///< of the key FREQU
};

/// Fields from the records, the JEOL or NMR block, and the Bruker block.
JcampHead FillJcampFields(const JcampBlock& block, const NuclearTable& nuclides, DataSet& set);

} // namespace nmr
