// The generated sample, read back: its lines stand where its table says.

#include "../../tools/sample_molecule.h"
#include "formats/bruker_fixture.h"

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

/// Sum of z exp(-2 pi i f t), turned back by the group delay.
std::complex<double> Amplitude(const DataSet& set, double offset_hz, double group_delay)
{
    const double turn = 2 * kPi * offset_hz / set.par.FREQU;
    const std::complex<double> step = std::polar(1.0, -turn);
    std::complex<double> phase = std::polar(1.0, turn * group_delay), sum = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(set.par.FIDPoints); ++i, phase *= step)
        sum += phase * std::complex<double>(set.spec.DataRe[0][i], set.spec.DataIm[0][i]);
    return sum;
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

    const double reference_hz = -console.centre_ppm() * console.sf_mhz(); // of 0 ppm, from the carrier
    const auto lines = SampleLines(console);
    const auto height = [](const SampleLine& line) { return line.area / line.width_hz; };
    const auto tallest = *std::ranges::max_element(lines, {}, height);
    EXPECT_NEAR(tallest.ppm, 1.48, 1e-9);
    const double unit =
        std::abs(Amplitude(set, tallest.ppm * console.sf_mhz() + reference_hz, console.group_delay)) / height(tallest);
    const double point_hz = console.sweep_hz / console.points;
    int checked = 0;
    for (const SampleLine& line : lines) {
        const bool alone = std::ranges::none_of(lines, [&](const SampleLine& other) {
            const double distance = std::fabs(other.ppm - line.ppm) * console.sf_mhz();
            return distance > 0 && distance < 5;
        });
        if (!alone) continue; // the foot of a neighbour moves its top
        SCOPED_TRACE(std::string(line.name) + " at " + std::to_string(line.ppm));
        ++checked;
        const double hz = line.ppm * console.sf_mhz() + reference_hz;
        const auto top = Amplitude(set, hz, console.group_delay);
        EXPECT_GT(std::abs(top), std::abs(Amplitude(set, hz - 2 * point_hz, console.group_delay)));
        EXPECT_GT(std::abs(top), std::abs(Amplitude(set, hz + 2 * point_hz, console.group_delay)));
        EXPECT_NEAR(std::abs(top) / unit, height(line), 0.03 * height(line));
        EXPECT_NEAR(std::arg(top) * 180 / kPi, console.phase_deg, 3);
    }
    EXPECT_GE(checked, 14);
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
