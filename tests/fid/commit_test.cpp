// From FID to spectrum of the slot, and the shift that a FID starts with.

#include "core/rotation.h"
#include "fid/filter.h"
#include "fid/shift_memory.h"
#include "fid/window.h"
#include "fid_support.h"

#include <algorithm>
#include <cstring>

namespace nmr::test {
namespace {

bool SameBits(std::span<const float> a, std::span<const float> b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size_bytes()) == 0;
}

TEST(Commit, GivesTheBitsOfThePreview)
{
    struct Case {
        const char* name;
        WindowKind window;
        int shift, zero_fill;
        float ph0, ph1;
        int pivot;
    };
    const Case cases[] = {
        {"plain", WindowKind::exponential, 0, 1, 0, 0, 0},
        {"phased", WindowKind::exponential, 0, 2, 123.4F, -456.7F, 300},
        {"shifted and filtered", WindowKind::gaussian, 70, 4, -10.0F, 90.0F, 511},
        {"shifted back", WindowKind::blackman_harris, -5, 1, 0.5F, 0, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto g = MakeBlock(1024, 2);
        ParamBlock& par = g->Slots[0].par;
        for (const std::size_t row : {0U, 1U}) Fill(*g, Noise(static_cast<unsigned>(row)), row);
        par.BF1 = 5.0F;
        par.WinFlags = {0, 0, 0, 0, 0};
        par.WindowFunc = static_cast<std::int16_t>(c.window);
        par.FIDShift = c.shift;
        Keep(*g);
        ASSERT_TRUE(Set_Zero_Fill(*g, 0, c.zero_fill));
        g->CurrentRow = 1;
        g->Phase0Deg = c.ph0;
        g->Phase1Deg = c.ph1;
        g->PivotPoint = c.pivot;
        FFT_Preview(*g, c.shift);
        const auto n = static_cast<std::size_t>(par.POINT);
        std::vector<float> re(n), im(n);
        RotateRow(g->Slots[0].spec.SourceRe[1].first(n), g->Slots[0].spec.SourceIm[1].first(n), re, im, par.POINT,
                  {c.ph0, c.ph1, c.pivot});
        ASSERT_TRUE(Commit_Transform(*g));
        const SpecBuffer& spec = g->Slots[0].spec;
        EXPECT_TRUE(SameBits(spec.DataRe[1].first(n), re));
        EXPECT_TRUE(SameBits(spec.DataIm[1].first(n), im));
        EXPECT_TRUE(SameBits(spec.SourceRe[1].first(n), re));
        EXPECT_TRUE(SameBits(spec.SourceIm[1].first(n), im));
        EXPECT_FALSE(SameBits(spec.DataRe[0].first(n), re));
    }
}

/// Two rows with a line 40 bins above the carrier, the second twice as high and upside down.
std::unique_ptr<GlobalBlock> TwoRows()
{
    auto g = MakeBlock(512, 2);
    for (const std::size_t row : {0U, 1U})
        Fill(
            *g,
            [row](int i) { return (row == 0 ? 1.0 : -2.0) * std::polar(std::exp(-i / 50.0), -kTwoPi * 40 * i / 512); },
            row);
    g->DataScale = 0.1F;
    Keep(*g);
    return g;
}

TEST(Commit, LeavesASpectrumWithItsScalesAndMarks)
{
    auto g = TwoRows();
    DataSet& set = g->Slots[0];
    set.par.BaseLineDone = 1;
    set.par.DataFromFile = 1;
    set.par.Instrument = "";
    set.par.OBFRQ0PPMRead = 0.0;
    g->ViewLeft = 10.0F;
    g->ViewRight = -1.0F;
    g->Phase0Deg = 30.0F;
    ASSERT_TRUE(Set_Zero_Fill(*g, 0, 4));
    std::vector<int> percents;
    ASSERT_TRUE(Commit_Transform(*g, [&](int p) { percents.push_back(p); }));

    EXPECT_EQ(percents, (std::vector{0, 50, 100}));
    EXPECT_EQ(set.par.SMODE, 1);
    EXPECT_EQ(set.par.DataChanged, 1);
    EXPECT_EQ(set.par.DataFromFile, 0);
    EXPECT_EQ(set.par.BaseLineDone, 0);
    EXPECT_EQ(set.par.Instrument, "NULL");
    EXPECT_EQ(set.par.InstrumentID, "NULL");
    EXPECT_DOUBLE_EQ(set.par.RESOL, 10.0 / 4.0);
    EXPECT_FLOAT_EQ(set.par.YFill, 0.475F);
    EXPECT_FLOAT_EQ(g->ArrayRowOffset, 0.5F);
    EXPECT_EQ(g->Phase0Deg, 0.0F);
    EXPECT_TRUE(g->WorkRe.empty() && g->WorkIm.empty() && g->WindowCurve.empty());
    EXPECT_TRUE(set.FFTUser.starts_with("COMMON "));

    // 0 ppm at the first point, centre 2560 Hz above it.
    EXPECT_NEAR(set.par.OBFRQ0PPM, 400.0 - 0.00256, 1e-9);
    EXPECT_EQ(set.par.OBFRQ0PPMRead, set.par.OBFRQ0PPM);
    EXPECT_EQ(g->LastObsCenter, 400.0);
    EXPECT_EQ(g->LastCentre, set.spec.XAxis[1024]);
    EXPECT_EQ(g->GroupCentre[0], g->LastCentre);
    EXPECT_EQ(g->GroupCentre[1], 0.0);
    EXPECT_DOUBLE_EQ(g->ShownHzLeft, 10.0 * set.par.OBFRQ0PPMRead);
    EXPECT_DOUBLE_EQ(g->ShownHzRight, -set.par.OBFRQ0PPMRead);

    // A line of decay 50 points is 50.5 high; the line of row 1 is the largest and points down.
    const std::size_t line = 1023 + 4 * 40;
    EXPECT_NEAR(std::hypot(set.spec.DataRe[1][line], set.spec.DataIm[1][line]), 0.1 * 2 * 50.5, 0.01);
    EXPECT_NEAR(set.par.DispLeft, 10.1, 0.01);
    float largest = 0, smallest = 0;
    for (const std::size_t row : {0U, 1U})
        for (std::size_t i = 0; i < 2048; ++i) {
            largest = std::max(largest, std::hypot(set.spec.DataRe[row][i], set.spec.DataIm[row][i]));
            smallest = std::min(smallest, set.spec.DataRe[row][i]);
        }
    EXPECT_FLOAT_EQ(set.par.DispLeft, largest);
    EXPECT_FLOAT_EQ(set.par.YMag, largest);
    // Points on the way up to the first top don't count for the minimum, but the line turned by 30
    // degrees goes on falling behind its magnitude's top.
    EXPECT_FLOAT_EQ(set.par.DispRight, smallest);
    EXPECT_EQ(set.par.YOffset, set.par.DispRight);
}

TEST(Commit, ASecondTransformOfTheSameFidGivesTheSameSpectrum)
{
    auto g = TwoRows();
    ASSERT_TRUE(Set_Zero_Fill(*g, 0, 2));
    ASSERT_TRUE(Commit_Transform(*g));
    const auto first = g->Slots[0].spec.DataRe;
    const double resolution = g->Slots[0].par.RESOL;
    const double centre = g->LastCentre;
    ASSERT_TRUE(Commit_Transform(*g));
    EXPECT_TRUE(SameBits(first.all(), g->Slots[0].spec.DataRe.all()));
    EXPECT_EQ(g->Slots[0].par.RESOL, resolution);
    EXPECT_NEAR(g->LastCentre, centre, 1e-6);
}

TEST(Commit, AnImpossibleWindowLeavesTheFid)
{
    auto g = TwoRows();
    g->Slots[0].par.WindowFunc = 1;
    g->Slots[0].par.WinStart3 = g->Slots[0].par.WinEnd3;
    EXPECT_FALSE(Commit_Transform(*g));
    EXPECT_EQ(g->Slots[0].par.SMODE, 0);
    EXPECT_TRUE(Load_FID_Work(*g));
}

/// Degrees of the previewed row after the phases that stand, at a bin from zero frequency.
double PhaseAt(const GlobalBlock& g, int bins, int zero_fill)
{
    const int n = g.Slots[0].par.POINT;
    const int i = n / 2 - 1 + bins * zero_fill;
    const double turn = g.Phase0Deg + static_cast<double>(i - g.PivotPoint) * g.Phase1Deg / n;
    return std::arg(SourceAt(g, i) * std::polar(1.0, turn / 360.0 * kTwoPi)) * 360.0 / kTwoPi;
}

TEST(InitialShift, ADelayedFidComesOutInPhaseAtEveryFrequency)
{
    constexpr int kPoints = 4096;
    for (const double delay : {0.0, 2.875, 59.0833, 67.98, 70.25, 70.4697265625, 71.5})
        for (const int zero_fill : {1, 4}) {
            SCOPED_TRACE(delay);
            auto g = MakeBlock(kPoints);
            const int bins[] = {-1700, -600, 0, 300, 900, 1650};
            Fill(*g, [&](int i) {
                Complex sum = 0.0;
                const double t = i - delay;
                if (t < 0) return sum;
                for (const int b : bins) sum += std::polar(std::exp(-t / 800.0), -kTwoPi * b * t / kPoints);
                return sum;
            });
            g->Slots[0].par.GroupDelay = delay;
            g->FormatIndex = 4;
            Keep(*g);
            Set_Initial_Shift(*g);
            EXPECT_NEAR(g->Slots[0].par.FIDShift, delay, 0.5);
            if (zero_fill > 1) {
                ASSERT_TRUE(Set_Zero_Fill(*g, 0, zero_fill));
            }
            FFT_Preview(*g, g->Slots[0].par.FIDShift);
            // The filter of large shifts turns the outer lines by up to 1.9 degrees.
            for (const int b : bins) EXPECT_NEAR(PhaseAt(*g, b, zero_fill), 0.0, 2.0) << b;
        }
}

TEST(InitialShift, ARememberedShiftCountsForDataOfTheSameDelayOnly)
{
    struct Case {
        const char* name;
        void (*next)(GlobalBlock&);
        int shift;
        double phase1; ///< 360 degrees for each point that is left of the delay
    };
    // Remembered: 60 points for a delay of 60.25.
    const Case cases[] = {
        {"same experiment", [](GlobalBlock&) {}, 60, 90.0},
        {"nearly the same delay", [](GlobalBlock& g) { g.Slots[0].par.GroupDelay = 61.0; }, 60, 360.0},
        {"another delay", [](GlobalBlock& g) { g.Slots[0].par.GroupDelay = 70.75; }, 71, -90.0},
        {"another delay, not to be used",
         [](GlobalBlock& g) {
             g.Slots[0].par.GroupDelay = 70.75;
             g.settings.auto_fid_shift = 0;
         },
         0, 0.0},
        {"another experiment of family and nucleus",
         [](GlobalBlock& g) {
             g.Slots[0].par.PulseProg = "cosy";
             g.Slots[0].par.GroupDelay = 60.75;
         },
         60, 270.0},
        {"another family",
         [](GlobalBlock& g) {
             g.Slots[0].par.PulseProg = "cosy";
             g.FormatIndex = 6;
             g.Slots[0].par.GroupDelay = 60.75;
         },
         61, -90.0},
        {"no delay known", [](GlobalBlock& g) { g.Slots[0].par.GroupDelay = 0.0; }, 0, 0.0},
        {"a delay longer than the FID", [](GlobalBlock& g) { g.Slots[0].par.GroupDelay = 1e12; }, 0, 0.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto g = MakeBlock(256);
        ParamBlock& par = g->Slots[0].par;
        g->FormatIndex = 4;
        par.PulseProg = "zg30";
        par.Instrument = "Console";
        par.GroupDelay = 60.25;
        Fill(*g, Noise(5));
        Keep(*g);
        Set_Initial_Shift(*g);
        EXPECT_EQ(par.FIDShift, 60);
        ASSERT_TRUE(Commit_Transform(*g));
        EXPECT_EQ(g->settings.fid_shft_h1_bru, 60);
        par.FIDShift = 0;
        c.next(*g);
        Set_Initial_Shift(*g);
        EXPECT_EQ(par.FIDShift, c.shift);
        EXPECT_EQ(g->Phase1Deg, static_cast<float>(c.phase1));
    }
}

TEST(InitialShift, EachFamilyAndNucleusHasItsSetting)
{
    struct Case {
        int family;
        const char* nucleus;
        std::int32_t Settings::*member;
    };
    for (const Case& c : {Case{4, "13C", &Settings::fid_shft_c13_bru}, Case{8, "31P", &Settings::fid_shft_x_bru},
                          Case{6, "H1", &Settings::fid_shft_h1_var}, Case{3, "C13", &Settings::fid_shft_c13_jeol},
                          Case{0, "19F", &Settings::fid_shft_x_jeol}, Case{13, "1H", &Settings::fid_shift_h1}}) {
        auto g = MakeBlock(16);
        g->FormatIndex = c.family;
        g->Slots[0].par.OBNUC = c.nucleus;
        g->Slots[0].par.FIDShift = 7;
        RememberShift(*g, g->Slots[0]);
        EXPECT_EQ(g->settings.*c.member, 7) << c.family << c.nucleus;
        EXPECT_EQ(std::ranges::count(g->settings.fid_shift_delay, -1.0), 11);
    }
}

TEST(InitialShift, AFullTableTakesNoNewExperiment)
{
    auto g = MakeBlock(16);
    ParamBlock& par = g->Slots[0].par;
    for (int k = 0; k < 101; ++k) {
        par.PulseProg = std::to_string(k);
        par.FIDShift = k;
        RememberShift(*g, g->Slots[0]);
    }
    EXPECT_EQ(g->ExpShiftTable[99].FIDShift, 99);
    EXPECT_EQ(RememberedShift(*g, g->Slots[0]), 100); // by family and nucleus
    par.PulseProg = std::to_string(5);
    EXPECT_EQ(RememberedShift(*g, g->Slots[0]), 5);
}

} // namespace
} // namespace nmr::test
