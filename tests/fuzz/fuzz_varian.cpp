// Varian reader: one byte of choices, the text of the parameter file up to a zero byte, the data file.

#include "formats/varian.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace nmr;

namespace {

void Require(bool holds)
{
    if (!holds) std::abort();
}

void Check(const DataSet& set)
{
    Require(set.par.POINT > 0 && set.par.POINT <= kMaxPoints && set.RowCount > 0 && set.RowCount <= kMaxRows);
    Require(set.spec.DataRe.rows() == static_cast<std::size_t>(set.RowCount));
    for (const float value : set.spec.DataRe.all()) Require(std::isfinite(value));
    for (const float value : set.RowValueA) Require(!std::isnan(value));
    Require(std::isfinite(set.par.FileRefMHz) && set.par.FIDShift >= 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size)
{
    static GlobalBlock g;
    if (g.nuclides.rows().empty()) g.nuclides = NuclearTable::BuiltIn();
    if (size == 0) return 0;
    const auto rest = std::as_bytes(std::span(input, size)).subspan(1);
    const auto text_size = static_cast<std::size_t>(std::ranges::find(rest, std::byte{0}) - rest.begin());
    const auto parameters = VarianParameters::Parse(rest.first(text_size));
    if (!parameters) return 0;
    const ByteSpan data = rest.subspan(std::min(text_size + 1, rest.size()));
    ClearDataSet(g, 0);
    if (!FillParaVarian(g, 0, *parameters)) return 0;
    const auto read = (input[0] & 1) != 0 ? ReadDataVarianProc : ReadDataVarian;
    if (read(g, 0, *parameters, data)) Check(g.Slots[0]);
    return 0;
}
