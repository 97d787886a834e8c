// The generated sample, read back: its lines stand where its table says.

#include "../../tools/sample_molecule.h"
#include "formats/bruker_fixture.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdlib>

namespace nmr {
namespace {

using namespace test;

std::string MakeSample(const TempFolder& folder, const char* name)
{
    const std::string target = folder / name;
    const std::string command = std::string("'" NMR1D_BINARY_DIR "/bin/make_sample_fid' '") + target + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return target;
}

double OffsetHz(const SampleConsole& console, double ppm)
{
    return (ppm - console.centre_ppm()) * console.sf_mhz();
}

/// The same from theory: complex Lorentzians of all lines at once, since the foot of one reaches the next.
std::complex<double> Theory(const SampleConsole& console, double offset_hz)
{
    std::complex<double> sum = 0;
    for (const SampleLine& line : SampleLines(console))
        sum +=
            line.area / std::complex<double>(kPi * line.width_hz, -2 * kPi * (OffsetHz(console, line.ppm) - offset_hz));
    return std::polar(1.0, console.phase_deg * kDegToRad) * sum;
}

TEST(BrukerSample, LinesStandWhereTheTableSays)
{
    const TempFolder folder;
    const SampleConsole console;
    const BrukerRead read(std::filesystem::path(MakeSample(folder, "sample")) / "1/fid", kFolderFid);
    ASSERT_TRUE(read.status) << read.status.error().text;
    const DataSet& set = read.set();
    EXPECT_TRUE(set.Warnings.empty());
    ASSERT_EQ(set.par.FIDPoints, console.points);
    EXPECT_EQ(set.par.GroupDelay, console.group_delay);
    EXPECT_EQ(set.par.FREQU, static_cast<float>(console.sweep_hz));
    EXPECT_NEAR(set.par.ObsCenter, console.sfo1_mhz(), 1e-9);
    EXPECT_NEAR(set.par.FileRefMHz, console.sf_mhz(), 1e-9);
    EXPECT_EQ(set.par.OBNUC, "1H");
    EXPECT_EQ(set.par.COMNT, "Ethyl vanillin in CDCl3");

    // The filter rises: weak at first, at its height one point from the delay.
    const auto size = [&](std::size_t i) { return std::hypot(set.spec.DataRe[0][i], set.spec.DataIm[0][i]); };
    EXPECT_LT(size(0), 1e-4);
    EXPECT_LT(size(40), 0.1 * size(68));
    EXPECT_LT(size(60), 0.1 * size(68));

    const auto place = [&](std::string_view name) {
        return OffsetHz(console, std::ranges::find(kSampleMultiplets, name, &SampleMultiplet::name)->shift_ppm);
    };
    const double top_hz = place("CH3");
    const double unit = std::abs(Amplitude(set, top_hz, console.group_delay)) / std::abs(Theory(console, top_hz));
    for (const SampleLine& line : SampleLines(console)) {
        SCOPED_TRACE(std::string(line.name) + " at " + std::to_string(line.ppm));
        const double hz = OffsetHz(console, line.ppm);
        const auto expected = Theory(console, hz);
        const auto found = Amplitude(set, hz, console.group_delay) / unit;
        EXPECT_LT(std::abs(found - expected), 0.02 * std::abs(expected)) << found << " instead of " << expected;
        EXPECT_LE(std::abs(found), 1.02 * std::abs(Theory(console, top_hz))) << "the middle of CH3 is the tallest";
    }
    const double point_hz = console.sweep_hz / console.points;
    for (std::string_view name : {"CHO", "TMS", "CHCl3"}) {
        SCOPED_TRACE(name);
        const double hz = place(name);
        const double top = std::abs(Amplitude(set, hz, 0));
        EXPECT_GT(top, std::abs(Amplitude(set, hz - point_hz, 0)));
        EXPECT_GT(top, std::abs(Amplitude(set, hz + point_hz, 0)));
    }
}

TEST(BrukerSample, TwoRunsGiveTheSameBytes)
{
    const TempFolder folder;
    const std::string one = MakeSample(folder, "one"), two = MakeSample(folder, "two");
    const std::string fid = ReadText(one + "/1/fid");
    EXPECT_EQ(fid.size(), 524288U);
    EXPECT_TRUE(fid == ReadText(two + "/1/fid"));
    EXPECT_TRUE(ReadText(one + "/1/acqus") == ReadText(two + "/1/acqus"));
}

} // namespace
} // namespace nmr
