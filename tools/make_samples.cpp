// make_samples FOLDER: writes a small data set of every form that is read, each into a folder of its own,
// with a README.md of what they are.

#include "core/file_layer.h"
#include "formats/tavo4.h"
#include "samples/samples.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <memory>

namespace {

namespace fs = std::filesystem;
using namespace nmr::samples;

bool Write(const fs::path& path, const std::string& bytes)
{
    std::error_code failed;
    fs::create_directories(path.parent_path(), failed);
    if (!failed && nmr::WriteWholeFile(path, std::string_view(bytes))) return true;
    fmt::print(stderr, "cannot write {}\n", path.string());
    return false;
}

/// The spectrum of the lines, ppm rising as after a transform.
void FillSpectrum(nmr::GlobalBlock& g)
{
    nmr::DataSet& set = g.Slots[0];
    nmr::ClearDataSet(g, 0);
    nmr::ParamBlock& par = set.par;
    par.POINT = par.FIDPoints = kSpectrumPoints;
    par.SMODE = 1;
    par.OBNUC = "1H";
    par.ObsCenter = kObserveMhz;
    par.OBFRQ = static_cast<float>(kObserveMhz);
    par.OBFRQ0PPM = kMhz0;
    par.FREQU = static_cast<float>(kSweepHz);
    par.RESOL = kSweepHz / kSpectrumPoints;
    par.Resolution2 = par.RESOL / kMhz0;
    set.RowCount = 1;
    if (!nmr::AllocateSpecBuffer(g, kSpectrumPoints, 0)) return;
    for (int i = 0; i < kSpectrumPoints; ++i) {
        const auto at = static_cast<std::size_t>(kSpectrumPoints - 1 - i);
        const auto z = SpectrumPoint(FallingPpm(i));
        set.spec.XAxis[at] = FallingPpm(i);
        set.spec.DataRe[0][at] = static_cast<float>(z.real());
        set.spec.DataIm[0][at] = static_cast<float>(z.imag());
    }
    par.RefX = par.SMEXR = static_cast<float>(set.spec.XAxis[0]);
    nmr::CopyDataToSource(set);
    nmr::FillDisplayLimits(set);
}

bool WriteNative(const fs::path& folder)
{
    const auto g = std::make_unique<nmr::GlobalBlock>(); // large
    FillSpectrum(*g);
    std::error_code failed;
    fs::create_directories(folder / "native", failed);
    return !failed && nmr::WriteDataTavo4(*g, (folder / "native" / "sample.tvo1").string(), 0);
}

std::string Readme(const std::vector<Sample>& samples)
{
    std::string lines;
    for (const KnownLine& line : kLines)
        lines += fmt::format("{}{} ppm ({})", lines.empty() ? "" : ", ", line.ppm, line.height);
    std::string text = fmt::format(
        "# Samples\n\nComputed by `make_samples` from one set of lines, under the licence of the program: shift and "
        "relative height\n{}. Width {} Hz, 1H at {:.3f} MHz, 0 ppm at {} MHz, {} Hz wide; FIDs of {} complex points, "
        "spectra of {}.\n\n| Folder | Open | What it is |\n| --- | --- | --- |\n",
        lines, kWidthHz, kObserveMhz, kMhz0, kSweepHz, kFidPoints, kSpectrumPoints);
    for (const Sample& sample : samples)
        text += fmt::format("| `{}` | `{}` | {} |\n", sample.name, sample.entry, sample.what);
    return text + "| `native` | `sample.tvo1` | spectrum in the native form |\n";
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        fmt::print(stderr, "usage: make_samples FOLDER\n");
        return 2;
    }
    const fs::path folder = arguments[1];
    const std::vector<Sample> samples = AllSamples();
    bool written = WriteNative(folder) && Write(folder / "README.md", Readme(samples));
    for (const Sample& sample : samples)
        for (const SampleFile& file : sample.files)
            written = Write(folder / sample.name / file.path, file.bytes) && written;
    return written ? 0 : 1;
}
