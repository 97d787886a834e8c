// Published sets of Varian, CMX and JEOL Delta, against figures that were measured outside this program.

#include "formats/reader_fixture.h"

#include <algorithm>
#include <span>

namespace nmr::test {
namespace {

constexpr std::int32_t kVarianFid = 0x1006, kCmxFid = 0x1009, kDeltaFid = 0x1003, kDeltaSpectrum = 0x1103;
constexpr double kNoLine = 1e9;

struct FidCase {
    const char* path;
    std::int32_t code;
    const char* tag;
    const char* nucleus;
    double obs_mhz, sweep_hz;
    std::int32_t points, rows;
    double line_ppm, tolerance_ppm;
    double first[8]; ///< four complex points as stored
    double group_delay = 0;
    const char* warning = nullptr;
};
// clang-format off
const FidCase kFids[] = {
    {"varian-13c-fid-600-float", kVarianFid, "VAR1", "13C", 150.8341007, 37878.788, 32768, 1, 77.0037, 0.05,
     {320.91119, 1.9009585, 321.13306, -371.64334, 272.15433, 83.339813, 357.15762, -572.74445}},
    {"varian-1h-fid-ketobutyrate-int32", kVarianFid, "VAR1", "1H", 599.4094446, 7200.072, 28800, 1, 1.0462, 0.005,
     {11451, 130669, -130998, 94153, 21825, -47254, 55810, 71840}},
    {"varian-1h-fid-ethylindanone", kVarianFid, "VAR1", "1H", 499.6961869, 8012.821, 16384, 1, 1.0218, 0.005,
     {-5746.7783, -139331.34, 84288.648, -28014.23, -42012.305, 74011.266, -96442.781, -4194.6509}},
    {"varian-31p-fid-float-600", kVarianFid, "VAR1", "31P", 242.8758083, 12143.291, 16384, 1, 1.5627, 0.05,
     {-164781.45, 70041.648, -38504.559, 166211.72, 113477.94, 121473.45, 168176.91, -22664.111}, 0, "lsfid is -3"},
    {"varian-1h-fid-status-4104", kVarianFid, "VAR1", "1H", 14.6045652, 50000, 2048, 1, -1375.2235, 0.2,
     {665310, -1039965, -65528, 1199501, -305567, 299146, 349361, 328273}, 0, "lsfid is -2"},
    {"varian-31p-fid-array-kinetics", kVarianFid, "VAR1", "31P", 161.8947806, 9713.453, 15542, 24, 0.5692, 0.05,
     {-94, -246, -550, 55, -398, 167, -110, 245}},
    {"varian-1h-fid-array-4rows", kVarianFid, "VAR1", "1H", 499.4091680, 9000.900, 16384, 4, 3.3176, 0.005,
     {12873.592, 2492.2654, -35.701061, 7402.9287, -5092.3994, -1574.1967, 2890.3501, -3944.0149}, 0, "rows are numbered"},
    {"varian-87rb-t1-saturation-recovery", kVarianFid, "VAR1", "87RB", 196.3444528, 192307.692, 1923, 12, -74.1730, 0.2,
     {146.16864, -125.80531, -1601.9928, -475.453, -1376.8391, 565.93103, 608.43176, -658.41443}},
    {"cmx-1d-fid", kCmxFid, "CMX1", "??", 143.865544, 4000, 256, 1, kNoLine, 0,
     {-100, -92, 31700, 47788, 596, 180, 1108, 952}, 0, "no nucleus"},
    {"jeol-1h-fid-rutin-400/Rutin_3080ug200uL_DMSOd6_qHNMR_400MHz_Jeol.jdf", kDeltaFid, "ECP1", "1H", 399.782198378,
     10016.026, 32768, 1, 2.4615, 0.005, {1.0030292e-05, 5.2598309e-06, -0.0015331216, -0.00077747158, 0.048049177,
     0.042609142, -0.023175246, 0.096218525}, 19.65625},
    {"jeol-13c-fid-rutin-400/Rutin_3080ug200uL_DMSOd6_13CNMR_400MHz_Jeol.jdf", kDeltaFid, "ECP1", "13C", 100.525303325,
     31565.657, 32768, 1, 40.0387, 0.05, {1.0346708e-08, -2.5246874e-08, -2.9071742e-06, 4.0140149e-06, 0.00014134931,
     -0.00014419977, 0.00037354728, 6.1795444e-05}, 19.65625},
    {"jeol-19f-fid-500/fluorine.jdf", kDeltaFid, "ECP1", "19F", 470.363508372, 120192.308, 32768, 1, -53.5813, 0.05,
     {7.6201454e-06, 1.1279324e-05, -0.0011015384, -0.0017284137, 0.047588651, 0.061658724, 0.073935125, 0.020477577},
     19.65625},
    {"jeol-1h-fid-chloroform-600/50percCHCL3.jdf", kDeltaFid, "ECP1", "1H", 600.172304604, 62500, 16384, 1, 7.6781, 0.005,
     {-0.0019764646, 0.0049707102, -0.030425146, 0.12546542, 0.072126385, -0.013258614, -0.0062032137, 0.1368167}, 17},
    {"derived-jeol-big-endian/chloroform-big-endian.jdf", kDeltaFid, "ECP1", "1H", 600.172304604, 62500, 16384, 1, 7.6781,
     0.005, {-0.0019764646, 0.0049707102, -0.030425146, 0.12546542, 0.072126385, -0.013258614, -0.0062032137, 0.1368167},
     17},
};
// clang-format on

class RealSets : public testing::Test {
protected:
    void SetUp() override { NMR1D_REAL_DATA(ignored, "varian-1h-fid-ethylindanone"); }
};

/// Two families take off a mean and divide: what is left of the stored numbers are the ratios of
/// their differences.
void ExpectStoredPoints(const DataSet& set, std::span<const double, 8> first)
{
    const auto slot = [&](std::size_t i) {
        return static_cast<double>(i % 2 == 0 ? set.spec.DataRe[0][i / 2] : set.spec.DataIm[0][i / 2]);
    };
    std::size_t widest = 2;
    for (std::size_t i = 2; i < 8; ++i)
        if (std::fabs(first[i] - first[i % 2]) > std::fabs(first[widest] - first[widest % 2])) widest = i;
    const double scale = (slot(widest) - slot(widest % 2)) / (first[widest] - first[widest % 2]);
    EXPECT_GT(scale, 0);
    for (std::size_t i = 2; i < 8; ++i)
        EXPECT_NEAR(slot(i) - slot(i % 2), scale * (first[i] - first[i % 2]), 3e-7) << i;
}

TEST_F(RealSets, FidsAreRead)
{
    for (const FidCase& c : kFids) {
        SCOPED_TRACE(c.path);
        const AnyRead read(RealData(c.path));
        ASSERT_TRUE(read.status) << read.status.error().text;
        const ParamBlock& par = read.par();
        EXPECT_EQ(read.type.code, c.code);
        EXPECT_EQ(read.type.tag, c.tag);
        EXPECT_EQ(par.OBNUC, c.nucleus);
        EXPECT_NEAR(par.ObsCenter, c.obs_mhz, 1e-9 * c.obs_mhz);
        EXPECT_NEAR(par.FREQU, c.sweep_hz, 1e-6 * c.sweep_hz);
        EXPECT_EQ(par.POINT, c.points);
        EXPECT_EQ(par.FIDPoints, c.points);
        EXPECT_EQ(read.set().RowCount, c.rows);
        EXPECT_EQ(read.set().spec.DataRe.rows(), static_cast<std::size_t>(c.rows));
        EXPECT_EQ(par.SMODE, 0);
        EXPECT_DOUBLE_EQ(par.GroupDelay, c.group_delay);
        EXPECT_GT(par.DateSerial, 38000);
        ExpectStoredPoints(read.set(), c.first);
        EXPECT_EQ(read.set().Warnings.size(), c.warning == nullptr ? 0U : 1U);
        EXPECT_TRUE(c.warning == nullptr || read.Warned(c.warning));
        if (c.line_ppm == kNoLine) continue;
        const auto [ppm, height] = StrongestLine(read.set(), 0, FindFormat(FamilyOf(c.code))->sense);
        EXPECT_NEAR(ppm, c.line_ppm, c.tolerance_ppm);
    }
}

/// Both edges of the axes that the parameters of the consoles give.
TEST_F(RealSets, VarianReferences)
{
    struct Case {
        const char* folder;
        double left_ppm, right_ppm;
    };
    const Case cases[] = {
        {"varian-13c-fid-600-float", 235.5784, -15.5780},
        {"varian-1h-fid-ketobutyrate-int32", 10.7689, -1.2431},
        {"varian-1h-fid-ethylindanone", 14.0178, -2.0176},
        {"varian-31p-fid-float-600", 19.9990, -29.9986},
        {"varian-1h-fid-status-4104", -784.0919, -4199.1486},
        {"varian-31p-fid-array-kinetics", 29.9990, -29.9995},
        {"varian-87rb-t1-saturation-recovery", 621.2829, -358.2864},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.folder);
        const AnyRead read(RealData(c.folder));
        ASSERT_TRUE(read.status);
        const double centre = (read.par().ObsCenter - read.par().FileRefMHz) * 1e6;
        const auto width = static_cast<double>(read.par().FREQU);
        const double step_ppm = width / read.par().FIDPoints / read.par().FileRefMHz;
        EXPECT_NEAR((centre + width / 2) / read.par().FileRefMHz, c.left_ppm, 1.01 * step_ppm + 1e-4);
        EXPECT_NEAR((centre - width / 2) / read.par().FileRefMHz, c.right_ppm, 1.01 * step_ppm + 1e-4);
    }
}

TEST_F(RealSets, RowsOfAnArrayCarryTheirValues)
{
    const AnyRead recovery(RealData("varian-87rb-t1-saturation-recovery"));
    ASSERT_TRUE(recovery.status);
    const float delays[] = {0.001F, 0.002F, 0.005F, 0.01F, 0.02F, 0.05F, 0.1F, 0.2F, 0.5F, 1, 2, 5};
    EXPECT_TRUE(std::equal(std::begin(delays), std::end(delays), recovery.set().RowValueA.begin()));
    EXPECT_EQ(recovery.set().RowParamName + " " + recovery.set().RowParamUnit, "tau_recovery s");
    EXPECT_EQ(recovery.set().RowHeading, "t(s)");
    // Saturation recovery: what comes later is higher, up to the plateau.
    double before = 0;
    for (std::size_t row : {0U, 3U, 6U, 9U}) {
        const double height = StrongestLine(recovery.set(), row, FidSense::as_transformed).second;
        EXPECT_GT(height, before) << row;
        before = height;
    }
    const AnyRead kinetics(RealData("varian-31p-fid-array-kinetics"));
    ASSERT_TRUE(kinetics.status);
    EXPECT_EQ(kinetics.set().RowParamName, "nt");
    EXPECT_EQ(kinetics.set().RowValueA[23], 12);
    const AnyRead unnamed(RealData("varian-1h-fid-array-4rows"));
    ASSERT_TRUE(unnamed.status);
    EXPECT_EQ(unnamed.set().RowValueA[3], 4);
}

TEST_F(RealSets, DeltaFidsTellHowTheyAreProcessed)
{
    // "sexp : 2[Hz];trapezoid : 0[%] : 0[%] : 80[%] : 100[%];zerofill : 1;..." in the first three.
    for (const FidCase& c : kFids) {
        if (c.code != kDeltaFid || std::string_view(c.path).starts_with("derived")) continue;
        SCOPED_TRACE(c.path);
        const AnyRead read(RealData(c.path));
        const VendorProcessing& told = read.set().vendor;
        const bool has_list = std::string_view(c.path).find("chloroform") == std::string_view::npos;
        EXPECT_EQ(told.points, has_list ? 32768 : 0);
        EXPECT_FALSE(told.phase);
        ASSERT_EQ(told.window.has_value(), has_list);
        if (!has_list) continue;
        EXPECT_EQ(told.window->broadening_hz, 2);
        EXPECT_EQ(told.window->trapezoid_percent, (std::array<double, 4>{0, 0, 80, 100}));
    }
}

struct SpectrumCase {
    const char* path;
    const char* nucleus;
    double obs_mhz;
    std::int32_t points;
    double left_ppm, right_ppm;
    double strongest[6]; ///< ppm, height of three lines
};
const SpectrumCase kSpectra[] = {
    {"jeol-1h-spectrum-ppm-400/PM032220_3000U200U_Bin_180218_qH-1-4.jdf",
     "1H",
     399.782198378,
     104858,
     12.49812,
     -2.49797,
     {4.8131, 0.45979, 3.2833, 0.078261, 3.3220, 0.076743}},
    {"jeol-1h-spectrum-hz-ethanol-90/proton-NMR-spectrumHz-1.jdf",
     "1H",
     89.5624045287,
     16384,
     11.12900,
     -0.30306,
     {1.2265, 1e5, 3.6521, 46915, 1.3033, 43035}},
};

TEST_F(RealSets, DeltaSpectraStandWhereTheirLinesAre)
{
    for (const SpectrumCase& c : kSpectra) {
        SCOPED_TRACE(c.path);
        const AnyRead read(RealData(c.path));
        ASSERT_TRUE(read.status) << read.status.error().text;
        const DataSet& set = read.set();
        EXPECT_EQ(read.type.code, kDeltaSpectrum);
        EXPECT_EQ(set.par.OBNUC, c.nucleus);
        EXPECT_NEAR(set.par.ObsCenter, c.obs_mhz, 1e-9 * c.obs_mhz);
        ASSERT_EQ(set.par.POINT, c.points);
        const auto points = static_cast<std::size_t>(c.points);
        EXPECT_NEAR(set.spec.XAxis[0], c.right_ppm, 5e-6);
        EXPECT_NEAR(set.spec.XAxis[points - 1], c.left_ppm, 5e-6);
        EXPECT_NEAR(set.par.FREQU, (c.left_ppm - c.right_ppm) * set.par.OBFRQ0PPM,
                    0.01 * static_cast<double>(set.par.FREQU));
        const auto re = set.spec.DataRe[0].first(points);
        const double top = *std::ranges::max_element(re);
        EXPECT_NEAR(top, c.strongest[1], 1e-4 * c.strongest[1]);
        for (std::size_t i = 0; i < 6; i += 2) {
            const auto around = static_cast<std::size_t>(PpmToPoint(set, c.strongest[i]));
            const auto near = re.subspan(around - 2, 5);
            EXPECT_NEAR(*std::ranges::max_element(near), c.strongest[i + 1], 1e-4 * c.strongest[i + 1]);
        }
    }
}

TEST_F(RealSets, WhatIsNoWholeOneDimensionalSetIsRefusedOrMarked)
{
    struct Case {
        const char* path;
        std::int32_t code; ///< -1: no family has it
        const char* warning;
    };
    const Case cases[] = {
        {"varian-2d-hsqc", 0x2006, nullptr},
        {"varian-odd-procpar-only", -1, nullptr},
        {"jeol-2d-hsqc/indanone_hsqc_std-1.jdf", 0x2003, nullptr},
        {"derived-truncated/jeol-head-only.jdf", -1, nullptr},
        {"derived-truncated/empty.jdf", -1, nullptr},
        {"derived-truncated/jeol.jdf", kDeltaFid, "cut short: 10452 of 32768 values"},
        {"derived-truncated/varian", kVarianFid, "cut short: 1117 of 2048 points of row 1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        const AnyRead read(RealData(c.path));
        EXPECT_EQ(read.type.code, c.code);
        EXPECT_EQ(static_cast<bool>(read.status), c.warning != nullptr);
        if (IsTwoDimensional(c.code)) {
            EXPECT_EQ(read.status.error().code, ErrorCode::two_dimensional);
        }
        EXPECT_TRUE(c.warning == nullptr || read.Warned(c.warning));
    }
}

} // namespace
} // namespace nmr::test
