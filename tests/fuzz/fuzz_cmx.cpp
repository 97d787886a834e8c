// CMX reader: acq, acq_2 and proc, each up to a zero byte, then the data file.

#include "formats/cmx.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace nmr;

namespace {

void Require(bool holds)
{
    if (!holds) std::abort();
}

KeyValues TakeKeys(ByteSpan& rest)
{
    const auto size = static_cast<std::size_t>(std::ranges::find(rest, std::byte{0}) - rest.begin());
    KeyValues keys = KeyValues::Parse(rest.first(size));
    rest = rest.subspan(std::min(size + 1, rest.size()));
    return keys;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size)
{
    static GlobalBlock g;
    ByteSpan rest = std::as_bytes(std::span(input, size));
    CmxFiles files;
    files.acq = TakeKeys(rest);
    files.acq_2 = TakeKeys(rest);
    files.proc = TakeKeys(rest);
    ClearDataSet(g, 0);
    if (!ReadParaCMX(g, 0, files) || !ReadDataCMX(g, 0, files, rest)) return 0;
    DataSet& set = g.Slots[0];
    ReadParaCMX2(set.par, files.acq_2);
    ReadParaCMXProc(set, files.proc);
    Require(set.par.POINT > 0 && set.par.POINT <= kMaxPoints && set.RowCount > 0 && set.RowCount <= kMaxRows);
    for (const float value : set.spec.DataIm.all()) Require(std::isfinite(value));
    Require(std::isfinite(set.par.FileRefMHz) && set.par.OBFRQ0PPM > 0);
    return 0;
}
