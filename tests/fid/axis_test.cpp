// The ppm axis of a transformed slot. All numbers worked by hand: 1000 points over 4000 Hz about
// 400.002 MHz, so 4 Hz or 0.01 ppm a point where 400 MHz is 0 ppm.

#include "fid_support.h"

#include <limits>

namespace nmr::test {
namespace {

std::unique_ptr<GlobalBlock> AxisBlock()
{
    auto g = MakeBlock(1000);
    ParamBlock& par = g->Slots[0].par;
    par.FREQU = 4000.0F;
    par.ObsCenter = 400.002;
    par.InstrumentID = "Alpha";
    par.Probe = "TXI";
    g->settings.ref_initital = 1;
    g->settings.ref_fine_set = 0;
    return g;
}

void UseInstrument(GlobalBlock& g, double frequency)
{
    g.Slots[0].par.OBFRQ0PPM = 1.0;
    g.Instruments = {{"other", "TXI", "1H", 400.002, 300.0, "-"},
                     {"ALPHA", "txi", "1h", frequency, 400.0, "old"},
                     {"ALPHA", "TXI", "1H", 400.002, 200.0, "-"}};
}

TEST(Axis, ComesFromTheFirstSourceThatKnowsTheReference)
{
    struct Case {
        const char* name;
        void (*prepare)(GlobalBlock&);
        double ppm0_mhz;      ///< factor from ppm to Hz
        double first, centre; ///< ppm at points 0 and 500
        int reference_point;
    };
    const Case cases[] = {
        // (400.002 - 400) / 400 = 5 ppm at the middle point.
        {"instrument table", [](GlobalBlock& g) { UseInstrument(g, 400.002); }, 400.0, 0.0, 5.0, 500},
        {"0.05 MHz away still counts", [](GlobalBlock& g) { UseInstrument(g, 400.052); }, 400.0, 0.0, 5.0, 500},
        {"as it does below", [](GlobalBlock& g) { UseInstrument(g, 399.952); }, 400.0, 0.0, 5.0, 500},
        // The third row takes over: (400.002 - 200) / 200 = 1000010 ppm.
        {"0.0501 MHz does not", [](GlobalBlock& g) { UseInstrument(g, 400.0521); }, 200.0, 1000000.0, 1000010.0, 500},
        {"table unused while the set has no 0 ppm frequency",
         [](GlobalBlock& g) {
             UseInstrument(g, 400.002);
             g.Slots[0].par.OBFRQ0PPM = 0.0;
         },
         400.0, 0.0, 5.0, 0},
        // The carrier's bin is the one below the middle: (400.002 - 400) / 400 = 5 ppm at point 499.
        {"the file's own", [](GlobalBlock& g) { g.Slots[0].par.FileRefMHz = 400.0; }, 400.0, 0.01, 5.01, 499},
        {"the table before the file's own",
         [](GlobalBlock& g) {
             UseInstrument(g, 400.0);
             g.Slots[0].par.FileRefMHz = 399.0;
         },
         400.0, 0.0, 5.0, 500},
        // 5 ppm at 400 MHz is 5 + 0.002 / 400.002 = 9.999975 ppm at 400.002 MHz;
        // 400.002 / 1.000009999975 = 399.99800003, so the first point is 500 * 4 Hz lower.
        {"the last transform",
         [](GlobalBlock& g) {
             g.LastObsCenter = 400.0;
             g.LastCentre = 5.0;
         },
         399.99800003, 9.999975 - 2000.0 / 399.998, 9.999975, 500},
        {"the file's own before the last transform",
         [](GlobalBlock& g) {
             g.Slots[0].par.FileRefMHz = 400.0;
             g.LastObsCenter = 400.0;
             g.LastCentre = 77.0;
         },
         400.0, 0.01, 5.01, 499},
        {"the last transform when the file's own is switched off",
         [](GlobalBlock& g) {
             g.Slots[0].par.FileRefMHz = 399.0;
             g.settings.ref_initital = 0;
             g.LastObsCenter = 400.002;
             g.LastCentre = 5.0;
         },
         400.0, 0.0, 5.0, 500},
        // 404 is 1 % off 400: not near enough. The first point is 0 ppm: 400 - 0.002 MHz.
        {"one percent off",
         [](GlobalBlock& g) {
             g.Slots[0].par.ObsCenter = 400.0;
             g.LastObsCenter = 404.0;
             g.LastCentre = 77.0;
         },
         399.998, 0.0, 2000.0 / 399.998, 0},
        {"nothing known", [](GlobalBlock&) {}, 400.0, 0.0, 5.0, 0},
        {"no frequency at all: hertz", [](GlobalBlock& g) { g.Slots[0].par.ObsCenter = 0.0; }, 1.0, 0.0, 2000.0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto g = AxisBlock();
        c.prepare(*g);
        Set_Frequency_Axis(*g, 0);
        const DataSet& set = g->Slots[0];
        EXPECT_NEAR(set.par.OBFRQ0PPM, c.ppm0_mhz, 1e-8);
        // The reference is held in single precision.
        const double tolerance = 1e-6 + std::abs(c.centre) * 1e-7;
        EXPECT_NEAR(set.spec.XAxis[0], c.first, tolerance);
        EXPECT_NEAR(set.spec.XAxis[500], c.centre, tolerance);
        EXPECT_NEAR(set.spec.XAxis[999] - set.spec.XAxis[500], 4.0 * 499 / c.ppm0_mhz, 1e-6);
        EXPECT_EQ(set.par.SMTMS, c.reference_point);
        EXPECT_NEAR(set.par.Resolution2, 4.0 / c.ppm0_mhz, 1e-12);
        EXPECT_EQ(set.par.SMEXR, set.par.RefX);
    }
}

TEST(Axis, AUsedInstrumentRowTakesTodaysDateAndNoOtherDoes)
{
    auto g = AxisBlock();
    UseInstrument(*g, 400.002);
    Set_Frequency_Axis(*g, 0);
    EXPECT_EQ(g->Instruments[0].date, "-");
    EXPECT_NE(g->Instruments[1].date, "old");
    EXPECT_EQ(g->Instruments[1].date.size(), std::string("05/Jan/2024 13:45:10").size());
    EXPECT_EQ(g->Slots[0].par.SpanOrg, 400.0);
}

TEST(Axis, OnePointAndNoPointsAreHarmless)
{
    for (const int points : {0, 1}) {
        auto g = AxisBlock();
        g->Slots[0].par.POINT = points;
        g->settings.ref_fine_set = 1;
        Set_Frequency_Axis(*g, 0);
        EXPECT_TRUE(std::isfinite(g->Slots[0].spec.XAxis[0]));
    }
}

// Lines on noise: 16384 points over 8192 Hz, 0.5 Hz a point, at 400 MHz; 0 ppm at point 2000.
struct SyntheticLine {
    double hz; ///< from point 2000
    double height, width_hz;
};

std::unique_ptr<GlobalBlock> Spectrum(const std::vector<SyntheticLine>& lines, double phase = 0.0)
{
    auto g = MakeBlock(16384);
    ParamBlock& par = g->Slots[0].par;
    par.FREQU = 8192.0F;
    par.OBFRQ0PPM = 400.0;
    const auto noise = Noise(7, 0.01);
    Fill(*g, [&](int i) {
        Complex sum = 0.0;
        for (const SyntheticLine& l : lines)
            sum += l.height / Complex(1.0, ((i - 2000) * 0.5 - l.hz) * 2.0 / l.width_hz);
        return std::polar(1.0, phase) * sum + noise(i);
    });
    return g;
}

TEST(SearchTms, TellsTheTmsLineOrNone)
{
    using Lines = std::vector<SyntheticLine>;
    struct Case {
        const char* name;
        Lines lines;
        double phase;
        const char* nucleus;
        int expected;
    };
    const SyntheticLine tms{0, 1, 1.2}, solvent{2900, 40, 2}, proton{500, 8, 1.5};
    const Case cases[] = {
        {"small beside solvent and sample", {tms, solvent, proton}, 0, "1H", 2000},
        {"with its 29Si and 13C satellites",
         {{0, 30, 1.2}, {-3.3, 0.7, 1.2}, {3.3, 0.7, 1.2}, {-59, 0.17, 1.2}, {59, 0.17, 1.2}, solvent},
         0,
         "1H",
         2000},
        {"carbon", {tms, {7700, 2, 3}}, 0, "13C", 2000},
        {"no lines", {}, 0, "1H", -1},
        {"a broad line is none", {{0, 1, 60}, solvent}, 0, "1H", -1},
        {"a doublet is none", {{-3.5, 1, 1.2}, {3.5, 1, 1.2}, solvent}, 0, "1H", -1},
        {"nor is a line out of phase", {tms, solvent}, 1.2, "1H", -1},
        {"fluorine has no TMS", {tms, solvent}, 0, "19F", -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto g = Spectrum(c.lines, c.phase);
        g->Slots[0].par.OBNUC = c.nucleus;
        g->settings.ref_fine_set = 1;
        Set_Frequency_Axis(*g, 0);
        const int found = Search_TMS(g->Slots[0], 0, 16383);
        EXPECT_LE(std::abs(found - c.expected), c.expected < 0 ? 0 : 1) << found;
        EXPECT_EQ(found, Search_TMS(g->Slots[0], 16383, 0));
        if (c.expected >= 0) {
            EXPECT_NEAR(PointToPpm(g->Slots[0], c.expected), 0.0, 0.0015);
        }
    }
}

TEST(SearchTms, TheWindowAroundZeroKeepsOtherLinesOut)
{
    // The last transform says that point 2100 is 0 ppm: 50 Hz off. A line at -300 Hz is not TMS.
    auto g = Spectrum({{0, 1, 1.2}, {-300, 5, 1.2}, {2900, 40, 2}});
    g->settings.ref_fine_set = 1;
    g->LastObsCenter = g->Slots[0].par.ObsCenter;
    g->LastCentre = (8192 - 2100) * 0.5 / 400.0;
    Set_Frequency_Axis(*g, 0);
    EXPECT_NEAR(PointToPpm(g->Slots[0], 2000), 0.0, 0.0015);
    EXPECT_NEAR(g->Slots[0].par.SMTMS, 2000, 1);
}

TEST(SearchTms, SurvivesRowsOfNonsense)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (const float value : {0.0F, 1.0F, nan, inf, -inf}) {
        auto g = Spectrum({});
        Set_Frequency_Axis(*g, 0);
        auto& set = g->Slots[0];
        Fill(*g, [value](int i) { return i % 3 == 0 ? value : 0.0F; });
        g->settings.ref_fine_set = 1;
        Set_Frequency_Axis(*g, 0);
        EXPECT_EQ(Search_TMS(set, -70000, 70000), -1) << value;
        EXPECT_EQ(Search_TMS(set, 5, 5), -1);
    }
    EXPECT_EQ(Search_TMS(DataSet{}, 0, 100), -1);
}

} // namespace
} // namespace nmr::test
