#include "session/fft_form.h"

#include "analysis/robust_phase.h"
#include "fid/fft_pipeline.h"
#include "session/rig.h"

#include <cmath>
#include <complex>
#include <functional>

namespace nmr {
namespace {

using test::BrukerSpec;
using test::Rig;

/// Runs `check` on the form that a read opens; the form is left without a commit unless it says so.
void WithForm(Rig& rig, const BrukerSpec& spec, const std::function<void(FftForm&)>& check)
{
    if (rig.g.AppPath.empty()) {
        rig.Boot();
        rig.g.settings.auto_zerofill = 0;
    }
    bool opened = false;
    rig.s.run_fft_form = [&](FftForm& form) {
        opened = true;
        check(form);
        return std::string("CANCEL");
    };
    static_cast<void>(Read_Path(rig.s, test::WriteBrukerFid(rig.folder.path() / "exp", spec)));
    EXPECT_TRUE(opened);
}

std::complex<double> At(const DataSet& set, std::int32_t point)
{
    const auto i = static_cast<std::size_t>(point);
    return {static_cast<double>(set.spec.DataRe[0][i]), static_cast<double>(set.spec.DataIm[0][i])};
}

double Degrees(const std::complex<double>& value)
{
    return std::arg(value) * 57.29577951308232;
}

std::vector<float> Shown(const FftForm&, const GlobalBlock& g)
{
    const auto row = g.Slots[0].spec.DataRe[0].first(static_cast<std::size_t>(g.Slots[0].par.POINT));
    return {row.begin(), row.end()};
}

double LargestDifference(const std::vector<float>& a, const std::vector<float>& b)
{
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) largest = std::max<double>(largest, std::abs(a[i] - b.at(i)));
    return largest;
}

TEST(FftForm, ASharpeningWindowHidesNoPhase)
{
    Rig rig;
    BrukerSpec spec;
    spec.decay_hz = 30.0;
    WithForm(rig, spec, [&](FftForm& form) {
        const auto phase = [&] {
            return std::array{static_cast<double>(rig.g.Phase0Deg), static_cast<double>(rig.g.Phase1Deg)};
        };
        SetWindowField(rig.g.Slots[0].par, WindowField::bf1, 0);
        ASSERT_TRUE(form.SetWindowKind(WindowKind::exponential));
        const auto plain = phase();
        const std::vector<float> before = Shown(form, rig.g);
        ASSERT_TRUE(form.SetWindowKind(WindowKind::sine_bell)); // 0 at the head of the FID
        for (const std::size_t order : {0, 1}) EXPECT_NEAR(phase()[order], plain[order], 0.01);
        const std::vector<float> sharp = Shown(form, rig.g);
        EXPECT_GT(LargestDifference(sharp, before), 0.1 * static_cast<double>(rig.g.Slots[0].par.DispLeft));
        form.SetPhase1(phase()[1]); // turns what is there anew
        EXPECT_EQ(Shown(form, rig.g), sharp) << "what is shown is the spectrum of the window";
    });
}

TEST(FftForm, OpensOnAPhasedPreview)
{
    Rig rig;
    BrukerSpec spec;
    spec.decay_hz = 30.0; // a line of several points
    WithForm(rig, spec, [&](FftForm& form) {
        EXPECT_EQ(form.points(), 1024);
        EXPECT_NEAR(Degrees(At(rig.g.Slots[0], rig.g.PivotPoint)), 0.0, 3.0) << "the line had 20 degrees";
        EXPECT_GT(rig.g.Slots[0].par.DispLeft, 0.0F);
        EXPECT_EQ(rig.g.Slots[0].par.SMODE, 0);
        EXPECT_TRUE(rig.g.NoSpectrumYet);
        EXPECT_TRUE(form.can_transform_again());
    });
}

TEST(FftForm, PhasesKeepWhatWasGivenWithinTheLimitsOfTheBars)
{
    struct Case {
        double typed;
        float phase0, phase1;
    };
    const Case cases[] = {{12.34, 12.34F, 12.34F},
                          {-0.05, -0.05F, -0.05F},
                          {361.0, 360.0F, 361.0F},
                          {-99999.0, -360.0F, -1800.0F},
                          {1800.4, 360.0F, 1800.0F}};
    Rig rig;
    WithForm(rig, {}, [&](FftForm& form) {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.typed);
            form.SetPhase0(c.typed);
            form.SetPhase1(c.typed);
            EXPECT_FLOAT_EQ(rig.g.Phase0Deg, c.phase0);
            EXPECT_FLOAT_EQ(rig.g.Phase1Deg, c.phase1);
        }
        form.SetPhase0(std::nan(""));
        EXPECT_FLOAT_EQ(rig.g.Phase0Deg, 360.0F);
        form.SetPhase0(1.0);
        for (int i = 0; i < 7; ++i) form.AddPhase0(-0.1);
        EXPECT_NEAR(rig.g.Phase0Deg, 0.3F, 1e-6F);
    });
}

TEST(FftForm, APhaseOnlyTurnsWhatIsThereWhileAShiftTransformsAnew)
{
    Rig rig;
    WithForm(rig, {}, [&](FftForm& form) {
        form.SetAutoPhase(false);
        const std::int32_t top = rig.g.PivotPoint;
        // Without a FID a transform would give nothing.
        for (float& x : rig.g.WorkRe.all()) x = 0.0F;
        for (float& x : rig.g.WorkIm.all()) x = 0.0F;
        const std::complex<double> before = At(rig.g.Slots[0], top);
        form.AddPhase0(90.0);
        const std::complex<double> turned = At(rig.g.Slots[0], top);
        EXPECT_NEAR(std::abs(turned), std::abs(before), 1e-4 * std::abs(before));
        EXPECT_NEAR(std::remainder(Degrees(turned) - Degrees(before) - 90.0, 360.0), 0.0, 0.1);
        form.SetShift(1);
        EXPECT_EQ(std::abs(At(rig.g.Slots[0], top)), 0.0);
    });
}

TEST(FftForm, AMovedPivotKeepsThePicture)
{
    Rig rig;
    WithForm(rig, {}, [&](FftForm& form) {
        form.SetPhase0(30.0);
        form.SetPhase1(400.0);
        const std::vector<float> before = Shown(form, rig.g);
        const double top = rig.g.Slots[0].par.DispLeft;
        for (const std::int32_t pivot : {0, 5, 600, 1023, 5000, -3}) {
            SCOPED_TRACE(pivot);
            form.SetPivot(pivot);
            EXPECT_LT(LargestDifference(Shown(form, rig.g), before), 1e-4 * top);
            EXPECT_LE(std::abs(rig.g.Phase0Deg), 360.0F);
            EXPECT_EQ(rig.g.PivotPoint, std::clamp(pivot, 0, 1023));
        }
    });
}

TEST(FftForm, TheBoxOfTheAutomaticPhaseIsStoredTheOtherWayRound)
{
    Rig rig;
    WithForm(rig, {}, [&](FftForm& form) {
        rig.g.settings.auto_phase_on = 0;
        EXPECT_TRUE(form.auto_phase());
        form.SetAutoPhase(false);
        EXPECT_EQ(rig.g.settings.auto_phase_on, 1);
        form.SetPhase0(77.0);
        form.SetShift(0);
        EXPECT_FLOAT_EQ(rig.g.Phase0Deg, 77.0F) << "kept through a new transform";
        form.SetAutoPhase(true);
        form.Command2_Click();
        EXPECT_NE(rig.g.Phase0Deg, 77.0F);
    });
}

TEST(FftForm, TheFractionOfTheGroupDelayStaysWhereOneLineTellsNoFirstOrder)
{
    Rig rig;
    BrukerSpec spec;
    spec.group_delay = 30.4;
    spec.points = 4096;
    // The second line is too weak for the automatic phase, and shows whether the slope is right.
    spec.tones = {{1000.0, 1.0, 40.0}, {-1800.0, 0.02, 40.0}};
    spec.decay_hz = 10.0;
    WithForm(rig, spec, [&](FftForm& form) {
        rig.g.settings.robust_phase = 0; // which would see the second line
        form.Command2_Click();
        EXPECT_EQ(rig.g.Slots[0].par.FIDShift, 30);
        EXPECT_NEAR(rig.g.Phase1Deg, 0.4F * 360.0F, 0.01F);
        EXPECT_NEAR(Degrees(At(rig.g.Slots[0], rig.g.PivotPoint)), 0.0, 10.0);
        const auto weak = static_cast<std::int32_t>(form.points() / 2 - 1 - 1800.0 * form.points() / 8000.0);
        std::int32_t best = weak;
        for (std::int32_t i = weak - 4; i <= weak + 4; ++i)
            if (std::abs(At(rig.g.Slots[0], i)) > std::abs(At(rig.g.Slots[0], best))) best = i;
        EXPECT_NEAR(Degrees(At(rig.g.Slots[0], best)), 0.0, 25.0) << "50 degrees off without the slope";
        form.SetShift(31);
        EXPECT_FLOAT_EQ(rig.g.Phase1Deg, 0.0F) << "another shift leaves another rest";
    });
}

TEST(FftForm, ZeroFillDoublesToTheLimitAndBack)
{
    Rig rig;
    WithForm(rig, {}, [&](FftForm& form) {
        const double ppm_share = (rig.g.PivotPoint + 1.0) / form.points();
        ASSERT_TRUE(form.Command1());
        EXPECT_EQ(form.points(), 2048);
        EXPECT_EQ(rig.g.Slots[0].ProcMark1, 2);
        EXPECT_NEAR((rig.g.PivotPoint + 1.0) / form.points(), ppm_share, 1.0 / 1024);
        ASSERT_TRUE(form.SetZeroFill(kMaxPoints / 1024));
        EXPECT_EQ(form.points(), kMaxPoints);
        ASSERT_TRUE(form.Command1()) << "at the limit it does nothing and says nothing";
        EXPECT_EQ(form.points(), kMaxPoints);
        EXPECT_FALSE(form.SetZeroFill(3));
        ASSERT_TRUE(form.Command4());
        EXPECT_EQ(form.points(), 1024);
    });
}

TEST(FftForm, AnImpossibleWindowIsReportedAndTheFormStays)
{
    Rig rig;
    WithForm(rig, {}, [&](FftForm& form) {
        ParamBlock& par = rig.g.Slots[0].par;
        par.WinStart3 = par.WinEnd3 = 40.0F;
        const Status window = form.SetWindowKind(WindowKind::sine_bell);
        ASSERT_FALSE(window);
        EXPECT_EQ(window.error().code, ErrorCode::bad_value);
        EXPECT_EQ(rig.asker.boxes.size(), 1U);
        EXPECT_TRUE(form.SetWindowKind(WindowKind::hann));
    });
}

TEST(FftForm, LeavingAsksOnceAndGivesTheFidBack)
{
    BrukerSpec spec;
    Rig rig{Button::cancel, Button::ok};
    WithForm(rig, spec, [&](FftForm& form) {
        const std::vector<float> fid(rig.g.WorkRe[0].begin(), rig.g.WorkRe[0].begin() + 1024);
        ASSERT_TRUE(form.Command1());
        EXPECT_FALSE(form.Close());
        EXPECT_TRUE(form.Close());
        EXPECT_EQ(rig.g.DialogResult, "CANCEL");
        EXPECT_EQ(rig.Texts().at(0), "FT end: Exit without FFT");
        EXPECT_EQ(rig.g.Slots[0].par.SMODE, 0);
        EXPECT_EQ(rig.g.Slots[0].par.POINT, 1024);
        EXPECT_EQ(Shown(form, rig.g), fid);
        EXPECT_TRUE(rig.g.WorkRe.empty());
    });
}

TEST(FftForm, CompleteMakesTheSpectrumOfThePreview)
{
    Rig rig;
    BrukerSpec spec;
    WithForm(rig, spec, [&](FftForm& form) {
        form.SetPhase1(120.0);
        const std::vector<float> preview = Shown(form, rig.g);
        ASSERT_TRUE(form.Command3());
        EXPECT_EQ(rig.g.DialogResult, "OK");
        const std::vector<float> spectrum = Shown(form, rig.g);
        const double scale = rig.g.DataScale;
        double largest = 0;
        for (std::size_t i = 0; i < preview.size(); ++i)
            largest = std::max(largest, std::abs(spectrum[i] - scale * static_cast<double>(preview[i])));
        EXPECT_LT(largest, 1e-5 * rig.g.Slots[0].par.DispLeft);
        EXPECT_GT(rig.g.Slots[0].par.OBFRQ0PPMRead, 399.0);
    });
}

TEST(FftForm, ThePhaseThatWasCompletedStaysUnderAnotherPress)
{
    Rig rig;
    BrukerSpec spec;
    spec.tones = {{1000, 1, 20}, {-500, 0.7, 160}, {2200, 0.8, -70}}; // no line agrees with another
    WithForm(rig, spec, [&](FftForm& form) {
        form.AutoRobust();
        const auto quality = form.quality();
        ASSERT_TRUE(form.Command3());
        EXPECT_EQ(Auto_Phase_Robust(rig.g, form.points()), quality);
        EXPECT_EQ(rig.g.Phase0Deg, 0);
        EXPECT_EQ(rig.g.Phase1Deg, 0);
    });
}

TEST(FftForm, AFidThatCouldNotBeKeptIsTransformedOnce)
{
    Rig rig;
    rig.Boot();
    rig.g.settings.auto_zerofill = 1;
    rig.g.FIDWorkFile = rig.folder.path() / "no such folder" / "fid.dat";
    WithForm(rig, {}, [&](FftForm& form) {
        EXPECT_FALSE(form.can_transform_again());
        EXPECT_EQ(form.points(), 1024) << "no fill without the kept FID";
        ASSERT_TRUE(form.Command1());
        EXPECT_FALSE(form.SetZeroFill(2));
        EXPECT_EQ(form.points(), 1024);
        EXPECT_GT(rig.g.Slots[0].par.DispLeft, 0.0F);
        EXPECT_TRUE(form.Command3());
    });
}

} // namespace
} // namespace nmr
