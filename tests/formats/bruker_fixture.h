#pragma once
// A Bruker data set on the disk, and its reading without the detection.

#include "core/asker.h"
#include "core/numbers.h"
#include "formats/bruker.h"
#include "support/files.h"
#include "support/scripted_asker.h"

#include <algorithm>
#include <array>
#include <bit>
#include <complex>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace nmr::test {

inline constexpr std::int32_t kFolderFid = 0x1004, kFolderSpectrum = 0x1104, kFlatFid = 0x1008, kFlatSpectrum = 0x1108;

/// What the detection would say of a data file.
inline FileType TypeOf(const std::filesystem::path& file, std::int32_t code)
{
    FileType type;
    type.code = code;
    type.tag = FamilyOf(code) == 4 ? "BRU1" : IsSpectrum(code) ? "BRUX1D" : "BRUX1F";
    type.path = file.string();
    type.directory = file.parent_path().string();
    return type;
}

/// One read into slot 0 of a block of its own (which is large, so it stands on the heap).
struct BrukerRead {
    std::unique_ptr<GlobalBlock> g = std::make_unique<GlobalBlock>();
    ScriptedAsker asker;
    Status status;

    BrukerRead(const std::filesystem::path& file, std::int32_t code)
    {
        g->nuclides = NuclearTable::BuiltIn();
        const FileType type = TypeOf(file, code);
        status = ReadBruker({*g, asker, type, 0});
    }
    const DataSet& set() const { return g->Slots[0]; }
    const ParamBlock& par() const { return set().par; }
};

/// Sum of z exp(-2 pi i f t), turned back by a group delay.
inline std::complex<double> Amplitude(const DataSet& set, double offset_hz, double group_delay)
{
    const double turn = 2 * kPi * offset_hz / set.par.FREQU;
    const std::complex<double> step = std::polar(1.0, -turn);
    std::complex<double> phase = std::polar(1.0, turn * group_delay), sum = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(set.par.FIDPoints); ++i, phase *= step)
        sum += phase * std::complex<double>(set.spec.DataRe[0][i], set.spec.DataIm[0][i]);
    return sum;
}

inline BrukerParameters Parsed(const std::string& text)
{
    const auto parameters = BrukerParameters::Parse(std::as_bytes(std::span(text)));
    EXPECT_TRUE(parameters) << (parameters ? "" : parameters.error().text);
    return parameters ? *parameters : BrukerParameters();
}

/// Values as a console writes them.
template <class T>
std::string Encode(const std::vector<double>& values, bool big_endian)
{
    std::string bytes;
    for (double value : values) {
        auto raw = std::bit_cast<std::array<char, sizeof(T)>>(static_cast<T>(value));
        if (big_endian) std::ranges::reverse(raw);
        bytes.append(raw.data(), raw.size());
    }
    return bytes;
}

inline const std::string kOrigin = "##TITLE= Parameter file, TOPSPIN\t\tVersion 3.2\n##ORIGIN= Bruker BioSpin GmbH\n";
/// The least that a FID needs; further records come behind `more`.
inline std::string Acqus(const std::string& more)
{
    return kOrigin + "##$BF1= 400.13\n##$SFO1= 400.132\n##$SW_h= 8000\n##$NUC1= <1H>\n" + more + "##END=\n";
}
inline std::string Procs(const std::string& more)
{
    return kOrigin + "##$SF= 400.13\n##$SW_p= 8000\n##$OFFSET= 15.0\n" + more + "##END=\n";
}

} // namespace nmr::test
