// Delta reader: a whole file.

#include "formats/delta.h"

#include <cmath>
#include <cstdlib>

using namespace nmr;

namespace {

void Require(bool holds)
{
    if (!holds) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size)
{
    static GlobalBlock g;
    if (g.nuclides.rows().empty()) g.nuclides = NuclearTable::BuiltIn();
    ClearDataSet(g, 0);
    if (!ReadDataDelta(g, 0, std::as_bytes(std::span(input, size)))) return 0;
    const DataSet& set = g.Slots[0];
    Require(set.par.POINT > 0 && set.par.POINT <= kMaxPoints && set.RowCount == 1);
    for (const float value : set.spec.DataRe.all()) Require(std::isfinite(value));
    for (const double ppm : set.spec.XAxis) Require(std::isfinite(ppm));
    Require(set.par.ObsCenter > 0 && set.par.OBFRQ0PPM > 0 && set.par.GroupDelay >= 0);
    if (set.par.SMODE == 1) Require(set.par.Resolution2 > 0);
    return 0;
}
