// Bruker reader: one byte of choices, the text of the parameter file up to a zero byte, the data file.

#include "formats/bruker.h"

#include <algorithm>
#include <cstdlib>

using namespace nmr;

namespace {

void Require(bool holds)
{
    if (!holds) std::abort();
}

void ReadAsFid(GlobalBlock& g, const BrukerParameters& parameters, BrukerFamily family, ByteSpan data)
{
    if (!FillParaBruker(g, 0, parameters)) return;
    if (!ReadDataBruker(g, 0, parameters, &parameters, family, data)) return;
    const DataSet& set = g.Slots[0];
    Require(set.par.FIDPoints > 0 && set.par.FIDPoints <= set.par.POINT && set.par.POINT <= kMaxPoints);
    for (float value : set.spec.DataRe.all()) Require(value >= -2.5F && value <= 2.5F); // false for NaN
}

void ReadAsSpectrum(GlobalBlock& g, const BrukerParameters& parameters, BrukerFamily family, ByteSpan data)
{
    ApplyBrukerRecords(parameters, BrukerUse::spectrum, g.nuclides, g.Slots[0].par);
    if (!FillParaBrukerProcs(g, 0, parameters)) return;
    const std::size_t half = data.size() / 2;
    if (!ReadDataBrukerProc(g, 0, parameters, family, data.first(half), data.subspan(half))) return;
    Require(g.Slots[0].spec.XAxis[0] > g.Slots[0].spec.XAxis.back());
}

void ReadAsRows(GlobalBlock& g, const BrukerParameters& parameters, BrukerFamily family, ByteSpan data)
{
    if (!FillParaBruker(g, 0, parameters)) return;
    if (!ReadBrukerArray(g, 0, parameters, &parameters, family, "/nowhere", data)) return;
    const DataSet& set = g.Slots[0];
    Require(set.RowCount >= 1 && set.RowCount <= kMaxRows);
    for (float value : set.spec.DataRe.all()) Require(value >= -2.5F && value <= 2.5F);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size)
{
    static GlobalBlock g;
    if (g.nuclides.rows().empty()) g.nuclides = NuclearTable::BuiltIn();
    if (size == 0) return 0;
    const auto bytes = std::as_bytes(std::span(input, size));
    const auto rest = bytes.subspan(1);
    const auto zero = std::ranges::find(rest, std::byte{0});
    const auto text_size = static_cast<std::size_t>(zero - rest.begin());
    const auto parameters = BrukerParameters::Parse(rest.first(text_size));
    if (!parameters) return 0;
    const ByteSpan data = rest.subspan(std::min(text_size + 1, rest.size()));
    const BrukerFamily family = (input[0] & 1) != 0 ? BrukerFamily::flat : BrukerFamily::directory;
    ClearDataSet(g, 0);
    if ((input[0] & 4) != 0)
        ReadAsRows(g, *parameters, family, data);
    else if ((input[0] & 2) != 0)
        ReadAsSpectrum(g, *parameters, family, data);
    else
        ReadAsFid(g, *parameters, family, data);
    return 0;
}
