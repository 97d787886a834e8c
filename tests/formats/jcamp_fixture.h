#pragma once
// JCAMP-DX texts, and their reading without the detection.

#include "core/numbers.h"
#include "formats/jcamp.h"
#include "support/files.h"
#include "support/scripted_asker.h"

#include <filesystem>
#include <memory>
#include <string>

namespace nmr::test {

inline constexpr std::int32_t kJcampFid = 0x100D, kJcampSpectrum = 0x110D;

struct FromFile {
    std::filesystem::path path;
};

/// One read into slot 0 of a block of its own.
struct JcampRead {
    std::unique_ptr<GlobalBlock> g = std::make_unique<GlobalBlock>();
    ScriptedAsker asker;
    Status status;

    explicit JcampRead(std::string_view text, std::initializer_list<ScriptedAsker::Answer> answers = {}) :
        asker(answers)
    {
        status = ReadJcampBytes(Request(), text);
    }
    explicit JcampRead(FromFile file, std::initializer_list<ScriptedAsker::Answer> answers = {}) : asker(answers)
    {
        type.path = file.path.string();
        status = ReadDataJCAMP(Request());
    }
    const DataSet& set() const { return g->Slots[0]; }
    const ParamBlock& par() const { return set().par; }
    std::string Warnings() const
    {
        std::string all;
        for (const std::string& warning : set().Warnings) all += warning + "\n";
        return all;
    }

private:
    ReadRequest Request()
    {
        g->nuclides = NuclearTable::BuiltIn();
        return {*g, asker, type, 0};
    }
    FileType type;
};

/// A spectrum of 8 points, 100 to 107 as stored, falling from 8 to 1 ppm at 400 MHz; `more` comes behind the
/// head, so that its records stand in place of those of the same name when `head` leaves them out.
inline std::string Spectrum(const std::string& axis, const std::string& more = "",
                            const std::string& table = "7 100 101 102 103\n3 104 105 106 107\n")
{
    return "##TITLE=small\n##JCAMP-DX=5.00\n##DATA TYPE=NMR SPECTRUM\n##DATA CLASS=XYDATA\n"
           "##.OBSERVE FREQUENCY=400\n##.OBSERVE NUCLEUS=^1H\n" +
           more + axis + "##XFACTOR=1\n##YFACTOR=0.5\n##NPOINTS=8\n##FIRSTY=50\n##XYDATA=(X++(Y..Y))\n" + table +
           "##END=\n";
}
inline const std::string kHertz = "##XUNITS=HZ\n##FIRSTX=3200\n##LASTX=400\n##DELTAX=-400\n";
inline const std::string kPpm = "##XUNITS=PPM\n##FIRSTX=8\n##LASTX=1\n##DELTAX=-1\n";

/// A FID of 4 points, 1 ms apart.
inline std::string Fid(const std::string& more = "", const std::string& system = "Bruker A3000")
{
    return "##TITLE=fid\n##JCAMP-DX=5.00\n##DATA TYPE=NMR FID\n##DATA CLASS=NTUPLES\n##.OBSERVE FREQUENCY=400\n"
           "##.OBSERVE NUCLEUS=^1H\n##SPECTROMETER/DATA SYSTEM=" +
           system + "\n" + more +
           "##NTUPLES=NMR FID\n##VAR_NAME=TIME, FID/REAL, FID/IMAG, PAGE NUMBER\n##SYMBOL=X, R, I, N\n"
           "##VAR_DIM=4, 4, 4, 2\n##UNITS=SECONDS, ARBITRARY UNITS, ARBITRARY UNITS,\n##FIRST=0, 10, 1, 1\n"
           "##LAST=0.003, 13, 4, 2\n##FACTOR=0.001, 2, 3, 1\n##PAGE=N=1\n##DATA TABLE=(X++(R..R)), XYDATA\n"
           "0 10 11 12 13\n##PAGE=N=2\n##DATA TABLE=(X++(I..I)), XYDATA\n0 1 2 3 4\n##END NTUPLES=NMR FID\n##END=\n";
}

} // namespace nmr::test
