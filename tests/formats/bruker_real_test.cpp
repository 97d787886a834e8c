// Published instrument data, against figures that were measured outside this program.

#include "formats/bruker_fixture.h"

#include "core/file_layer.h"

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

using namespace test;

constexpr double kAtCarrier = 1e9;
struct FidCase {
    const char* folder;
    const char* acqus;
    const char* fid;
    std::int32_t code;
    const char* nucleus;
    double obs_mhz, sweep_hz;
    std::int32_t values; ///< TD
    BrukerNumber number;
    bool big_endian;
    double group_delay;
    double reference_mhz;
    double line_ppm; ///< of the tallest line; kAtCarrier: the base line correction takes it away
    double first[8]; ///< four complex points as stored
};

constexpr BrukerNumber kI32 = BrukerNumber::int32, kF32 = BrukerNumber::float32, kF64 = BrukerNumber::float64;
// clang-format off
const FidCase kFids[] = {
    {"bruker-1h-fid-aspirin-300", "acqus", "fid", kFolderFid, "1H", 300.132251, 4789.272, 16384, kI32, true, 2929.0 / 48,
     300.13, 2.2942, {}},
    {"bruker-1h-fid-coffee-400", "acqus", "fid", kFolderFid, "1H", 400.131882, 8223.684, 65536, kI32, false, 76,
     400.13, 3.369, {-1, -1, 0, 0, -1, -1, 0, 0}},
    {"bruker-1h-noesy-coffee-400", "acqus", "fid", kFolderFid, "1H", 400.131882, 8223.684, 65536, kI32, false, 76,
     400.130005448358, 3.1769, {1, 1, -10, -3, 5, 5, -12, -4}},
    {"bruker-13c-fid-gaba-500", "acqus", "fid", kFolderFid, "13C", 125.776651, 27573.529, 32768, kI32, false, 76,
     125.764971327016, 37.18, {-2, 0, 16, -12, -15, 6, 21, -13}},
    {"bruker-31p-fid-600", "acqus", "fid", kFolderFid, "31P", 242.937185, 14619.883, 17542, kI32, true, 60.375,
     242.936849672479, 2.7724, {}},
    {"bruker-13c-fid-600", "acqus", "fid", kFolderFid, "13C", 150.917839, 30303.030, 36360, kI32, true, 709.0 / 12,
     150.902727693172, 76.6361, {0, 0, 0, 0, 0, 0, 1, 100}},
    {"bruker-1h-fid-strychnine-400", "acqus", "fid", kFolderFid, "1H", 400.132471, 9615.385, 80126, kI32, false,
     67.9842071533203, 400.129997502627, -0.0002, {}},
    // Analogue (DIGMOD 0): the FID starts at full height, whatever GRPDLY says.
    {"bruker-13c-fid-dspfvs-minus1-600", "acqus", "fid", kFolderFid, "13C", 150.919408, 36057.692, 107988, kI32,
     false, 0, 150.902807940278, 180.9825, {213267, 28831, 63373, 6597, -79047, -148137, -27137, -138961}},
    {"bruker-1h-noesy-urine-700-be", "acqus", "fid", kFolderFid, "1H", 699.873291, 14005.602, 65536, kI32, true,
     69.5, 699.869954580685, -0.0001, {}},
    {"bruker-25mg-fid-float64", "acqus", "fid", kFolderFid, "25MG", 48.981038, 250000, 102400, kF64, false, 68,
     48.981038, 4.8676, {}},
    {"bruker-1h-fid-odnp-labelled-15n", "acqus", "fid", kFolderFid, "15N", 14.831413, 75187.970, 16384, kI32, true,
     44.75, 14.83141327, kAtCarrier, {}},
    {"bruker-1h-fid-pulsecal", "acqus", "fid", kFolderFid, "1H", 400.131348, 5000, 4096, kI32, false, 0,
     400.131348157959, kAtCarrier, {-71, -1792, 148, -2497, 395, -1808, 439, -312}},
    {"bruker-flat-23na", "001001.AQS", "001001.FID", kFlatFid, "23NA", 79.3892260292969, 100000, 1024, kF32, false,
     0, 79.389247, -23.6337, {941.03906, -5514.8672, -2124.9609, -13806.867, -4632.9609, -12576.867, -6317.9609, -10954.867}},
};
// clang-format on

class RealBruker : public testing::Test {
protected:
    void SetUp() override { NMR1D_REAL_DATA(ignored, "bruker-1h-fid-coffee-400"); }
};

TEST_F(RealBruker, FidsAreDecodedAsStored)
{
    for (const FidCase& c : kFids) {
        SCOPED_TRACE(c.folder);
        const auto folder = RealData(c.folder);
        const auto acqus = BrukerParameters::Read((folder / c.acqus).string());
        const auto bytes = ReadWholeFile((folder / c.fid).string());
        ASSERT_TRUE(acqus && bytes);
        EXPECT_EQ(acqus->Number("TD"), c.values);
        const auto td = static_cast<std::uint64_t>(c.values);
        const BrukerFamily family = c.code == kFlatFid ? BrukerFamily::flat : BrukerFamily::directory;
        const BrukerCode code = FindBrukerCode(*acqus, "DTYPA", "BYTORDA", family, *bytes, td);
        EXPECT_EQ(code.number, c.number);
        EXPECT_EQ(code.big_endian, c.big_endian);
        std::uint64_t damaged = 0;
        const auto values = DecodeBruker(*bytes, code, td, damaged);
        ASSERT_EQ(values.size(), td);
        EXPECT_EQ(damaged, 0U);
        for (std::size_t i = 0; i < 8; ++i) EXPECT_NEAR(values[i], c.first[i], 5e-8 * std::fabs(c.first[i])) << i;
        // What the instrument noted itself; 0 in the files of old programs, and no more true of converted ones.
        const auto noted = acqus->Number("YMAX_a");
        if (family == BrukerFamily::directory && noted && *noted > 0) {
            const double largest = *std::ranges::max_element(values);
            EXPECT_NEAR(largest, *noted, c.number == kI32 ? 0 : 1e-6 * largest);
        }
    }
}

double TallestNear(const DataSet& set, double offset_hz)
{
    double tallest = 0;
    for (int step = -4; step <= 4; ++step)
        tallest =
            std::max(tallest, std::abs(Amplitude(set, offset_hz + 0.5 * step * set.par.FREQU / set.par.FIDPoints, 0)));
    return tallest;
}

TEST_F(RealBruker, FidsAreRead)
{
    for (const FidCase& c : kFids) {
        SCOPED_TRACE(c.folder);
        const BrukerRead read(RealData(c.folder) / c.fid, c.code);
        ASSERT_TRUE(read.status) << read.status.error().text;
        const ParamBlock& par = read.par();
        EXPECT_EQ(par.FIDPoints, c.values / 2);
        EXPECT_EQ(par.POINT, static_cast<std::int32_t>(std::bit_ceil(static_cast<std::uint32_t>(c.values / 2))));
        EXPECT_NEAR(par.ObsCenter, c.obs_mhz, 5.1e-7);
        EXPECT_NEAR(par.FREQU, c.sweep_hz, 5.1e-4 + 1e-7 * c.sweep_hz);
        EXPECT_EQ(par.GroupDelay, c.group_delay);
        EXPECT_EQ(par.FileRefMHz, c.reference_mhz);
        EXPECT_EQ(par.OBNUC, c.nucleus);
        EXPECT_GT(par.DateSerial, 35000);
        EXPECT_TRUE(read.set().Warnings.empty()) << read.set().Warnings.front();
        const auto re = read.set().spec.DataRe[0], im = read.set().spec.DataIm[0];
        float largest = 0;
        for (std::size_t i = 0; i < re.size(); ++i) largest = std::max({largest, std::fabs(re[i]), std::fabs(im[i])});
        EXPECT_NEAR(largest, 1, 0.15) << "divided by the largest value before the mean went";
        if (c.line_ppm == kAtCarrier) continue;
        const double centre_ppm = (par.ObsCenter - par.FileRefMHz) * 1e6 / par.FileRefMHz;
        const double hz = (c.line_ppm - centre_ppm) * par.FileRefMHz;
        EXPECT_GT(TallestNear(read.set(), hz), 1.5 * TallestNear(read.set(), -hz)) << "not mirrored";
    }
}

struct SpectrumCase {
    const char* folder;
    const char* file;
    std::int32_t code;
    std::int32_t points;
    double first_ppm, last_ppm;
    int nc_proc;
    bool has_imaginary;
    double strongest[6]; ///< ppm, height as stored, of three lines
};
// clang-format off
const SpectrumCase kSpectra[] = {
    {"bruker-1h-fid-aspirin-300", "pdata/1/1r", kFolderSpectrum, 32768, 15.47866, -0.47818, -2, true, {2.2942,
     4.406e8, 7.2804, 5.6042e7, 7.0822, 4.9295e7}},
    {"bruker-1h-fid-coffee-400", "pdata/1/1r", kFolderSpectrum, 32768, 14.98061, -5.57129, -8, true, {3.3703,
     4.5924e8, 4.9044, 1.8205e8, 3.5421, 3.355e7}},
    {"bruker-1h-noesy-coffee-400", "pdata/1/1r", kFolderSpectrum, 131072, 14.967, -5.58537, -3, true, {3.177,
     4.9972e8, 3.5282, 4.7098e8, 0.0, 2.5596e8}},
    {"bruker-13c-fid-gaba-500", "pdata/1/1r", kFolderSpectrum, 32768, 202.4913, -16.74851, -3, true, {37.1799,
     4.9113e8, 26.4478, 4.2499e8, 42.1512, 3.1261e8}},
    {"bruker-31p-fid-600", "pdata/1/1r", kFolderSpectrum, 65536, 31.47019, -28.70866, -2, true, {2.777, 3.4237e8,
     0.4391, 1.6995e8, 4.1966, 1.0036e8}},
    {"bruker-13c-fid-600", "pdata/1/1r", kFolderSpectrum, 32768, 200.547, -0.25855, 0, true, {76.6269, 2.8128e8,
     70.419, 2.0776e8, 61.4226, 1.3829e8}},
    {"bruker-1h-fid-strychnine-400", "pdata/1/1r", kFolderSpectrum, 131072, 18.19698, -5.83349, -6, true, {3.8463,
     4.6094e8, 0.0, 4.2677e8, 1.9012, 4.1417e8}},
    {"bruker-13c-fid-dspfvs-minus1-600", "pdata/1/1r", kFolderSpectrum, 262144, 229.4803, -9.46525, -6, true,
     {180.9853, 3.7932e8, 77.0196, 1.919e8, 172.7079, 4.9873e7}},
    {"bruker-1h-noesy-urine-700-be", "pdata/1/1r", kFolderSpectrum, 65536, 14.77234, -5.23908, 0, true, {-0.0001,
     2.7694e8, 3.0476, 2.2968e8, 4.7671, 1.7458e8}},
    {"bruker-1h-fid-odnp-labelled-15n", "pdata/1/1r", kFolderSpectrum, 16384, 2534.754, -2534.4447, -13, false,
     {4.0224, 4.2139e8, 1340.0903, 1.738e8, 1468.8082, 1.5932e8}},
    {"bruker-1h-fid-odnp-labelled-15n", "pdata/999/1r", kFolderSpectrum, 16384, 2534.754, -2534.4447, -13, true,
     {1644.8672, 3.5722e8, 1844.442, 3.3917e8, 2044.945, 2.8447e8}},
    {"bruker-1h-fid-pulsecal", "pdata/1/1r", kFolderSpectrum, 16384, 6.24795, -6.24719, -14, false, {-1.565,
     4.2936e8, 1.5658, 4.2936e8, 2.1729, 6.0069e7}},
    {"bruker-1h-processed-only-aspirin", "pdata/1/1r", kFolderSpectrum, 32768, 15.47866, -0.47818, -2, true, {2.2942,
     4.406e8, 7.2804, 5.6042e7, 7.0822, 4.9295e7}},
    {"bruker-flat-23na", "001001.1R", kFlatSpectrum, 4096, 629.54633, -629.76258, 0, true, {-23.6337, 16402, -47.313,
     15440, -37.7798, 11090}},
    {"bruker-flat-23na", "001002.1R", kFlatSpectrum, 4096, 629.54633, -629.76258, 0, false, {-23.9412, 16573,
     -47.6205, 15078, 247.6021, 7.7468}},
};
// clang-format on

TEST_F(RealBruker, SpectraStandWhereTheirLinesAre)
{
    for (const SpectrumCase& c : kSpectra) {
        SCOPED_TRACE(std::string(c.folder) + "/" + c.file);
        const BrukerRead read(RealData(c.folder) / c.file, c.code);
        ASSERT_TRUE(read.status) << read.status.error().text;
        const DataSet& set = read.set();
        ASSERT_EQ(set.par.POINT, c.points);
        const auto points = static_cast<std::size_t>(c.points);
        EXPECT_NEAR(set.spec.XAxis[0], c.first_ppm, 1e-5);
        EXPECT_NEAR(set.spec.XAxis[points - 1], c.last_ppm, 1e-5);
        EXPECT_LT(set.par.Resolution2, 0);
        EXPECT_EQ(set.Warnings.empty(), c.has_imaginary);
        const auto im = set.spec.DataIm[0];
        EXPECT_EQ(std::ranges::any_of(im, [](float v) { return v != 0; }), c.has_imaginary);
        const auto re = set.spec.DataRe[0].first(points);
        for (std::size_t i = 0; i < 6; i += 2) {
            const auto around = static_cast<std::size_t>(PpmToPoint(set, c.strongest[i]));
            const auto near = re.subspan(around - 2, 5);
            const double height = std::ldexp(c.strongest[i + 1], c.nc_proc);
            EXPECT_NEAR(*std::ranges::max_element(near), height, 1e-3 * height) << c.strongest[i] << " ppm";
        }
        EXPECT_NEAR(*std::ranges::max_element(re), std::ldexp(c.strongest[1], c.nc_proc),
                    1e-3 * std::ldexp(c.strongest[1], c.nc_proc));
        EXPECT_GE(set.par.DispLeft, *std::ranges::max_element(re));
    }
}

TEST_F(RealBruker, WhatIsNoWholeOneDimensionalSetIsRefusedOrMarked)
{
    const BrukerRead cut(RealData("derived-truncated/bruker") / "fid", kFolderFid);
    ASSERT_TRUE(cut.status);
    ASSERT_EQ(cut.set().Warnings.size(), 1U);
    EXPECT_EQ(cut.set().Warnings.front(), "fid is cut short: 10000 of 16384 values are there, the rest is zero.");
    EXPECT_EQ(BrukerRead(RealData("bruker-odd-parameters-only") / "fid", kFolderFid).status.error().code,
              ErrorCode::not_found);
    EXPECT_EQ(BrukerRead(RealData("bruker-2d-hsqc") / "ser", 0x2004).status.error().code, ErrorCode::two_dimensional);
}

} // namespace
} // namespace nmr
