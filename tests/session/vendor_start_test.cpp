// The transform form begins as the operator of the instrument left the spectrum.

#include "fid/fft_pipeline.h"
#include "formats/bruker.h"
#include "formats/varian.h"
#include "session/rig.h"

#include <cmath>
#include <functional>
#include <span>

namespace nmr::test {
namespace {

constexpr double kSweep = 8000, kSeconds = 1024 / kSweep; ///< of the FID that the rig writes

ByteSpan AsBytes(const std::string& text)
{
    return std::as_bytes(std::span(text));
}

VendorProcessing Bruker(const std::string& procs, double group_delay = 0)
{
    const std::string text = "##TITLE= p\n##ORIGIN= Bruker\n" + procs + "##END=\n";
    const auto parsed = BrukerParameters::Parse(AsBytes(text));
    EXPECT_TRUE(parsed);
    ParamBlock par;
    par.FREQU = static_cast<float>(kSweep);
    par.FIDPoints = 1024;
    par.GroupDelay = group_delay;
    return parsed ? FindBrukerProcessing(*parsed, par) : VendorProcessing{};
}

std::string Real(const char* name, double value, bool active = true)
{
    return std::string(name) + " 1 1 1e9 -1e9 0 1 1 0 " + (active ? "1" : "0") + " 64\n1 " + std::to_string(value) +
           "\n0\n";
}

VendorProcessing Varian(const std::string& procpar)
{
    const auto parsed = VarianParameters::Parse(AsBytes(Real("sw", kSweep) + Real("np", 2048) + procpar));
    EXPECT_TRUE(parsed);
    return parsed ? FindVarianProcessing(*parsed) : VendorProcessing{};
}

/// Opens the form on a FID and lets `check` look at it.
void OnForm(const VendorProcessing& vendor, const std::function<void(FftForm&, GlobalBlock&)>& check)
{
    Rig rig;
    rig.Boot();
    rig.g.settings.auto_zerofill = 0;
    rig.s.run_fft_form = [&](FftForm& form) {
        rig.g.Slots[0].vendor = vendor;
        EXPECT_TRUE(form.Open());
        check(form, rig.g);
        return std::string("CANCEL");
    };
    EXPECT_EQ(Read_Path(rig.s, WriteBrukerFid(rig.folder.path() / "exp")).error().code, ErrorCode::cancelled);
}

// The formulas are those of the instruments' manuals, t in seconds; ours is scaled to a top of 1.
TEST(VendorStart, WindowsHaveTheShapeOfTheManuals)
{
    struct Case {
        const char* name;
        VendorProcessing vendor;
        std::function<double(double)> shape;
    };
    const auto exponent = [](double lb) { return [lb](double t) { return std::exp(-kPi * lb * t); }; };
    const Case cases[] = {
        {"Bruker none", Bruker("##$WDW= 0\n##$LB= 3\n"), exponent(0)},
        {"Bruker EM", Bruker("##$WDW= 1\n##$LB= 3\n"), exponent(3)},
        {"Bruker GM", Bruker("##$WDW= 2\n##$LB= -4\n##$GB= 0.3\n"),
         [](double t) { return std::exp(kPi * 4 * t - kPi * 4 * t * t / (2 * 0.3 * kSeconds)); }},
        {"Bruker SINE 0", Bruker("##$WDW= 3\n##$SSB= 0\n"), [](double t) { return std::sin(kPi * t / kSeconds); }},
        {"Bruker SINE 3", Bruker("##$WDW= 3\n##$SSB= 3\n"),
         [](double t) { return std::sin((kPi - kPi / 3) * t / kSeconds + kPi / 3); }},
        {"Bruker QSINE 2", Bruker("##$WDW= 4\n##$SSB= 2\n"),
         [](double t) { return std::pow(std::cos(kPi / 2 * t / kSeconds), 2); }},
        {"Bruker TRAP", Bruker("##$WDW= 5\n##$TM1= 0.1\n##$TM2= 0.8\n"),
         [](double t) {
             return std::min({1.0, t / kSeconds / 0.1, (1 - t / kSeconds) / 0.2});
         }},
        {"Varian lb", Varian(Real("lb", 2.5)), exponent(2.5)},
        {"Varian lb off", Varian(Real("lb", 2.5, false)), exponent(0)},
        {"Varian gf, lb below 0", Varian(Real("lb", -3) + Real("gf", 0.05) + Real("gfs", 0.02)),
         [](double t) { return std::exp(kPi * 3 * t) * std::exp(-std::pow((t - 0.02) / 0.05, 2)); }},
        {"Varian sb", Varian(Real("lb", 0, false) + Real("sb", 0.06)),
         [](double t) { return t > 0.12 ? 0 : std::sin(kPi * t / (2 * 0.06)); }},
        {"Varian sb below 0, shifted", Varian(Real("lb", 0, false) + Real("sb", -0.1) + Real("sbs", -0.1)),
         [](double t) { return t > 0.1 ? 0 : std::pow(std::sin(kPi * (t + 0.1) / 0.2), 2); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(c.vendor.window.has_value());
        OnForm(c.vendor, [&](FftForm&, GlobalBlock& g) {
            double top = 0;
            for (int i = 0; i < 1024; ++i) top = std::max(top, c.shape(i / kSweep));
            // Starts and centres are whole points, hence the tolerance.
            for (int i = 8; i < 1016; i += 9)
                EXPECT_NEAR(static_cast<double>(g.WindowCurve[i]), c.shape(i / kSweep) / top, 0.01) << i;
        });
    }
}

TEST(VendorStart, WhatHasNoLikeHereIsNotOffered)
{
    struct Case {
        const char* name;
        VendorProcessing found;
        bool window, phase;
    };
    const std::string phases = "##$PHC0= 10\n##$PHC1= 20\n";
    const Case cases[] = {
        {"nothing told", Bruker(""), false, false},
        {"phases of 0", Bruker("##$PHC0= 0\n##$PHC1= 0\n"), false, false},
        {"phased", Bruker(phases + "##$PH_mod= 1\n"), false, true},
        {"phased by hand", Bruker(phases + "##$PH_mod= 0\n"), false, true},
        {"magnitude", Bruker(phases + "##$PH_mod= 2\n"), false, false},
        {"part of the spectrum", Bruker(phases + "##$SI= 1024\n##$STSI= 512\n"), false, false},
        {"whole spectrum", Bruker(phases + "##$SI= 1024\n##$STSI= 1024\n"), false, true},
        {"mirrored", Bruker(phases + "##$REVERSE= yes\n"), false, false},
        {"narrowing exponential", Bruker("##$WDW= 1\n##$LB= -1\n"), false, false},
        {"Gauss without GB", Bruker("##$WDW= 2\n##$LB= -1\n##$GB= 0\n"), false, false},
        {"sinc", Bruker("##$WDW= 7\n"), false, false},
        {"trapezoid turned round", Bruker("##$WDW= 5\n##$TM1= 0.9\n##$TM2= 0.1\n"), false, false},
        {"two windows at once", Varian(Real("lb", 1) + Real("sb", 0.1)), false, false},
        {"broadening Gauss", Varian(Real("lb", 1) + Real("gf", 0.1)), false, false},
        {"Varian phases", Varian(Real("rp", 10) + Real("lp", 0)), false, true},
        {"Varian magnitude", Varian(Real("rp", 10) + "dmg 2 2 8 0 0 4 1 0 1 64\n1 \"av\"\n0\n"), false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.found.window.has_value(), c.window);
        EXPECT_EQ(c.found.phase.has_value(), c.phase);
    }
}

TEST(VendorStart, ShiftAndFirstOrderAreOneWithinTheLimitsOfTheControls)
{
    struct Case {
        const char* name;
        double delay, phase1;
        std::int32_t shift;
        double phase1_shown;
    };
    for (const Case& c :
         {Case{"whole delay", 76, 5, 76, 5}, Case{"fraction", 67.75, 0, 68, -90}, Case{"none", 0, -30, 0, -30},
          Case{"points in front as phase", -3, 749, 0, -331}, Case{"too many in front", -22, -343, -22, -343}}) {
        SCOPED_TRACE(c.name);
        VendorProcessing vendor;
        vendor.phase = VendorPhase{40, c.phase1, c.delay};
        OnForm(vendor, [&](FftForm& form, GlobalBlock& g) {
            EXPECT_EQ(g.Slots[0].par.FIDShift, c.shift);
            EXPECT_NEAR(g.Phase1Deg, c.phase1_shown, 1e-3);
            EXPECT_NEAR(g.Phase0Deg, 40, 1e-4);
            EXPECT_EQ(g.PivotPoint, form.points() / 2 - 1);
            EXPECT_FALSE(form.auto_phase());
            EXPECT_EQ(g.settings.auto_phase_on, 0) << "the setting holds for other data";
            form.SetAutoPhase(true);
            EXPECT_TRUE(form.auto_phase()) << "the operator of today has the last word";
        });
    }
}

TEST(VendorStart, TheSizeIsThatOfTheVendorAndTheSettingDecides)
{
    VendorProcessing vendor;
    vendor.points = 5000;
    vendor.phase = VendorPhase{40, 0, 0};
    OnForm(vendor, [&](FftForm& form, GlobalBlock& g) {
        EXPECT_EQ(form.points(), 8192);
        g.settings.vendor_start = 0;
        g.Slots[0].vendor.points = 16384;
        FftForm plain(g, form.asker());
        EXPECT_TRUE(plain.Open());
        EXPECT_EQ(plain.points(), 8192);
        EXPECT_TRUE(plain.auto_phase());
    });
}

TEST(VendorStart, TheFormStartsOverWhenTheSettingChanges)
{
    VendorProcessing vendor = Bruker("##$WDW= 1\n##$LB= 7\n");
    vendor.points = 4096;
    vendor.phase = VendorPhase{40, 30, 3};
    OnForm(vendor, [&](FftForm& form, GlobalBlock& g) {
        const ParamBlock& par = g.Slots[0].par;
        const float own_width = ParamBlock{}.BF1;
        for (const bool on : {false, true, false}) {
            SCOPED_TRACE(on);
            EXPECT_TRUE(form.SetVendorStart(on));
            EXPECT_EQ(g.settings.vendor_start, on ? 1 : 0);
            EXPECT_EQ(form.points(), on ? 4096 : par.FIDPointsRaw);
            EXPECT_EQ(par.BF1, on ? 7.0F : own_width);
            EXPECT_EQ(par.FIDShift, on ? 3 : 0);
            EXPECT_EQ(form.auto_phase(), !on);
            EXPECT_EQ(on, std::abs(g.Phase0Deg - 40) < 1e-4);
        }
    });
}

} // namespace
} // namespace nmr::test
