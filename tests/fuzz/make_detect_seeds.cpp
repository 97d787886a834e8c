// make_detect_seeds FOLDER: writes the made-up files of all families as inputs of fuzz_detect: each
// for its own probe, for the sniffing and for the line reader.

#include "formats/probes.h"
#include "samples/family_samples.h"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace {

using namespace nmr::test;

struct Seed {
    std::string_view probe;
    std::string content;
};

std::vector<Seed> Seeds()
{
    return {
        {"ReadModeAls", AliceFile().str()},
        {"ReadModeAls", AliceFile({.newer = true, .dimensions = 2}).str()},
        {"ReadModeEX", ExHeader()},
        {"ReadModeEX", PackedExHeader("COSY", 2, 1)},
        {"ReadModeLambda", LambdaFile(2).str()},
        {"ReadModeECP", DeltaFile().str()},
        {"ReadModeECP", DeltaFile({.little_sections = false, .dimensions = 2}).str()},
        {"ReadModeBruker", Acqus()},
        {"ReadModeBrukerProc", Procs()},
        {"ReadModeAlpha", AlphaFile(1).str()},
        {"ReadModeVarian", Procpar({.array = "phase", .rows = 64})},
        {"ReadModeNut", NutsFile(2).str()},
        {"ReadModeNut", NutsText()},
        {"ReadModeCMX", CmxAcq()},
        {"ReadModeGEOmega", GeHeader()},
        {"ReadModeTavo3", Tavo3File().str()},
        {"ReadModeTavo4", Tavo4File().str()},
        {"ReadModeJCAMP", Jcamp("NMR FID", "$$ Bruker specific parameters\n##$PULPROG= <zg>\n")},
        {"ReadModeJCAMP", "##DATA TYPE= LINK\n" + Jcamp("NMR PEAK TABLE") + Jcamp()},
        {"ReadModeCSV", CsvRows()},
        {"ReadModeMSL", MslFile().str()},
        {"ReadModeMac", MacFile().str()},
    };
}

char ChoiceOf(std::string_view probe)
{
    const auto rows = nmr::Probes();
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const auto& r) { return r.name == probe; });
    return static_cast<char>(row - rows.begin());
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "make_detect_seeds FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    int number = 0;
    for (const Seed& seed : Seeds()) {
        for (const char choice : {ChoiceOf(seed.probe), char{126}, char{127}}) {
            std::ofstream file(folder / ("seed" + std::to_string(number++)), std::ios::binary);
            file << choice << seed.content;
        }
    }
    return 0;
}
