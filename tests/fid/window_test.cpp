// Window curves against their formulas, and the limits of the dialog.

#include "fid/window.h"
#include "fid_support.h"

#include <limits>

namespace nmr::test {
namespace {

constexpr double kPiTest = std::numbers::pi;

/// 1000 measured points in a row of 1024, 1000 Hz wide: point i stands at i milliseconds.
std::unique_ptr<GlobalBlock> WindowBlock(WindowKind kind)
{
    auto g = MakeBlock(1024);
    ParamBlock& par = g->Slots[0].par;
    par.FREQU = 1000.0F;
    par.FIDPoints = 1000;
    par.WindowFunc = static_cast<std::int16_t>(kind);
    return g;
}

TEST(Window, EachFunctionFollowsItsFormulaAndEndsWithTheFid)
{
    struct Case {
        const char* name;
        WindowKind kind;
        double (*value)(int);
    };
    const Case cases[] = {
        {"exponential of 2 Hz", WindowKind::exponential, [](int i) { return std::exp(-kPiTest * 2.0 * i / 1000.0); }},
        {"sine bell from 10 % to 90 %", WindowKind::sine_bell,
         [](int i) { return i < 100 || i > 900 ? 0.0 : std::sin(kPiTest * (i - 100) / 800.0); }},
        {"squared sine bell from 20 % on", WindowKind::hann,
         [](int i) { return i < 200 ? 0.0 : std::pow(std::sin(kPiTest * (i - 200) / 800.0), 2); }},
        // exp(x), x = pi t (BF2 - t GF^2), t from 30 % on: top at t = BF2 / (2 GF^2) = 40 ms.
        {"gaussian of 2 and 5 Hz about 30 %", WindowKind::gaussian,
         [](int i) {
             const double t = (i - 300) / 1000.0;
             return std::exp(kPiTest * (t * 2.0 - t * t * 25.0) - kPiTest * (0.04 * 2.0 - 0.0016 * 25.0));
         }},
        // The four cosines of Harris (1978), which fall to 6e-5 at both ends.
        {"Blackman Harris over all", WindowKind::blackman_harris,
         [](int i) {
             const double a = kTwoPi * i / 1000.0;
             return 0.35875 - 0.48829 * std::cos(a) + 0.14128 * std::cos(2 * a) - 0.01168 * std::cos(3 * a);
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto g = WindowBlock(c.kind);
        ParamBlock& par = g->Slots[0].par;
        par.BF1 = 2.0F;
        par.BF2 = 2.0F;
        par.GF = 5.0F;
        par.WinStart1 = 30.0F;
        par.WinStart3 = 10.0F;
        par.WinEnd3 = 90.0F;
        par.WinStart4 = 20.0F;
        ASSERT_TRUE(Make_Window_Function(*g, 0));
        EXPECT_EQ(g->WindowCurve.first(), -5000);
        EXPECT_EQ(g->WindowCurve.last(), 1024);
        for (int i = 0; i < 1000; ++i) ASSERT_NEAR(g->WindowCurve[i], c.value(i), 2e-6) << i;
        for (int i = 1000; i <= 1024; ++i) ASSERT_EQ(g->WindowCurve[i], 0.0F) << i;
    }
}

TEST(Window, LinearPredictionFillCountsAsMeasured)
{
    auto g = WindowBlock(WindowKind::exponential);
    g->Slots[0].ProcMark2 = 2;
    ASSERT_TRUE(Make_Window_Function(*g, 0));
    EXPECT_EQ(g->WindowCurve[1023], 1.0F);
}

TEST(Window, ExponentialStaysOneAtTheFirstPointWhateverTheShift)
{
    for (const float bf : {0.0F, 0.3F, 100.0F, 1e6F})
        for (const int shift : {-3, 0, 70}) {
            auto g = WindowBlock(WindowKind::exponential);
            g->Slots[0].par.BF1 = bf;
            g->Slots[0].par.FIDShift = shift;
            ASSERT_TRUE(Make_Window_Function(*g, 0));
            EXPECT_EQ(g->WindowCurve[0], 1.0F) << bf;
            EXPECT_TRUE(std::isfinite(g->WindowCurve[-5000])) << bf;
            EXPECT_EQ(g->WindowCurve[999] == 1.0F, bf == 0.0F);
        }
}

TEST(Window, GaussianLeavesAHoleWhereSinglePrecisionWouldOverflow)
{
    // x = pi t BF2 with no Gauss factor: 85 is passed at t = 0.676 s for 40 Hz.
    auto g = WindowBlock(WindowKind::gaussian);
    g->Slots[0].par.BF2 = 40.0F;
    g->Slots[0].par.GF = 0.0F;
    ASSERT_TRUE(Make_Window_Function(*g, 0));
    EXPECT_EQ(g->WindowCurve[676], 1.0F); // the last before the hole is the top
    EXPECT_EQ(g->WindowCurve[677], 0.0F);
    EXPECT_EQ(g->WindowCurve[999], 0.0F);
}

TEST(Window, SineBellMayStartFarBeforeTheFid)
{
    auto g = WindowBlock(WindowKind::sine_bell);
    g->Slots[0].par.WinStart3 = -100.0F;
    ASSERT_TRUE(Make_Window_Function(*g, 0));
    EXPECT_NEAR(g->WindowCurve[0], 1.0, 1e-6); // the middle of -1000 .. 1000
    EXPECT_NEAR(g->WindowCurve[500], 0.7071068, 1e-6);
    EXPECT_EQ(g->WindowCurve[-1000], 0.0F);
}

TEST(Window, TrapezoidCutsAndSlopesByItsCorners)
{
    struct Case {
        const char* name;
        std::array<float, 4> corners;
        int shift;
        std::vector<std::pair<int, double>> points;
    };
    const Case cases[] = {
        {"falling edge from 80 %", {0, 0, 80, 100}, 0, {{0, 1}, {800, 1}, {900, 0.5}, {999, 0.005}, {1000, 0}}},
        {"rising edge", {10, 30, 80, 100}, 0, {{0, 0}, {99, 0}, {100, 0}, {200, 0.5}, {300, 1}, {301, 1}}},
        {"base shortened by a shift", {0, 0, 80, 100}, 100, {{720, 1}, {810, 0.5}, {899, 1.0 / 180}, {900, 0}}},
        {"negative shift does not lengthen it", {0, 0, 80, 100}, -100, {{800, 1}, {900, 0.5}}},
        {"no falling edge, only the cut", {0, 0, 60, 60}, 0, {{599, 1}, {600, 0}, {999, 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto g = WindowBlock(WindowKind::exponential);
        ParamBlock& par = g->Slots[0].par;
        par.WinFlags[0] = 0;
        par.Trap = c.corners;
        par.FIDShift = c.shift;
        ASSERT_TRUE(Make_Window_Function(*g, 0));
        for (const auto& [point, value] : c.points) EXPECT_NEAR(g->WindowCurve[point], value, 1e-6) << point;
    }
}

TEST(Window, TheTopIsOneAlsoUnderATrapezoidButForTheExponential)
{
    // The trapezoid ends at 30 %: the bell is cut before its top, then scaled up again.
    for (const WindowKind kind : {WindowKind::sine_bell, WindowKind::exponential}) {
        auto g = WindowBlock(kind);
        ParamBlock& par = g->Slots[0].par;
        par.WinFlags = {0, 0, 0, 0, 0};
        par.Trap = {10, 20, 20, 30};
        par.BF1 = 1.0F;
        ASSERT_TRUE(Make_Window_Function(*g, 0));
        float top = 0;
        for (int i = 0; i < 1000; ++i) top = std::max(top, g->WindowCurve[i]);
        // exp(-pi * 0.2) at the corner of the exponential
        EXPECT_NEAR(top, kind == WindowKind::exponential ? 0.5335 : 1.0, 1e-4);
    }
}

TEST(Window, ACurveThatCannotBeIsReportedAndZero)
{
    struct Case {
        const char* name;
        void (*spoil)(ParamBlock&);
    };
    const Case cases[] = {
        {"start equal to end", [](ParamBlock& p) { p.WinStart3 = p.WinEnd3 = 40; }},
        {"range behind the FID", [](ParamBlock& p) { p.WinStart3 = 150, p.WinEnd3 = 190; }},
        {"trapezoid before the FID",
         [](ParamBlock& p) {
             p.Trap = {-900, -900, -800, -700}, p.WinFlags[1] = 0;
         }},
        {"no spectral width", [](ParamBlock& p) { p.FREQU = 0; }},
        {"not a number", [](ParamBlock& p) { p.WinEnd3 = std::numeric_limits<float>::quiet_NaN(); }},
        {"unknown function", [](ParamBlock& p) { p.WindowFunc = 17; }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto g = WindowBlock(WindowKind::sine_bell);
        c.spoil(g->Slots[0].par);
        const Status status = Make_Window_Function(*g, 0);
        ASSERT_FALSE(status);
        EXPECT_EQ(status.error().code, ErrorCode::bad_value);
        for (std::ptrdiff_t i = g->WindowCurve.first(); i <= g->WindowCurve.last(); ++i)
            ASSERT_EQ(g->WindowCurve[i], 0.0F);
    }
}

TEST(WindowFields, AnEntryOutsideItsLimitsTakesTheNearestOne)
{
    struct Case {
        const char* name;
        WindowKind kind;
        WindowField field;
        double entry, stored;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Case cases[] = {
        {"broadening below 0", WindowKind::exponential, WindowField::bf1, -1, 0},
        {"gaussian broadening", WindowKind::gaussian, WindowField::bf2, 1234.5, 1234.5},
        {"gauss factor below 0", WindowKind::gaussian, WindowField::gf, -0.1, 0},
        {"centre", WindowKind::gaussian, WindowField::center, 111, 110},
        {"centre below 0", WindowKind::gaussian, WindowField::center, -1, 0},
        {"start near its end", WindowKind::sine_bell, WindowField::start, 95, 90},
        {"start too low", WindowKind::hann, WindowField::start, -101, -100},
        {"end near its start", WindowKind::blackman_harris, WindowField::end, 3, 10},
        {"end too high", WindowKind::hann, WindowField::end, 201, 200},
        {"corner 1 right of corner 2", WindowKind::hann, WindowField::trap1, 5, 0},
        {"corner 2 near corner 3", WindowKind::hann, WindowField::trap2, 75, 70},
        {"corner 3 near corner 2", WindowKind::hann, WindowField::trap3, 1, 10},
        {"corner 3 right of corner 4", WindowKind::hann, WindowField::trap3, 120, 100},
        {"corner 4 left of corner 3", WindowKind::hann, WindowField::trap4, 60, 80},
        {"corner 4 too high", WindowKind::hann, WindowField::trap4, 1e9, 200},
        {"no number", WindowKind::hann, WindowField::trap4, nan, 100},
        {"no start in an exponential", WindowKind::exponential, WindowField::start, 20, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ParamBlock par;
        par.WindowFunc = static_cast<std::int16_t>(c.kind);
        EXPECT_EQ(SetWindowField(par, c.field, c.entry), c.stored);
        EXPECT_EQ(GetWindowField(par, c.field), c.stored);
    }
}

TEST(WindowFields, StartAndEndBelongToTheSelectedFunction)
{
    ParamBlock par;
    par.WindowFunc = static_cast<std::int16_t>(WindowKind::blackman_harris);
    SetWindowField(par, WindowField::start, 20);
    SetWindowField(par, WindowField::end, 70);
    EXPECT_EQ(par.WinStart2, 20.0F);
    EXPECT_EQ(par.WinEnd2, 70.0F);
    EXPECT_EQ(par.WinStart3 + par.WinStart4, 0.0F);
    EXPECT_EQ(par.WinEnd3 + par.WinEnd4, 200.0F);
}

TEST(WindowFields, ArrowsReachEveryTenthOfAHertz)
{
    ParamBlock par;
    par.BF1 = 0.25F;
    EXPECT_NEAR(StepWindowField(par, WindowField::bf1, 1), 0.3, 1e-6); // cut to 0.2 first
    for (int k = 4; k <= 30; ++k) EXPECT_NEAR(StepWindowField(par, WindowField::bf1, 1), k / 10.0, 1e-6);
    for (int k = 29; k >= 0; --k) EXPECT_NEAR(StepWindowField(par, WindowField::bf1, -1), k / 10.0, 1e-6);
    EXPECT_EQ(StepWindowField(par, WindowField::bf1, -1), 0.0);
    EXPECT_EQ(StepWindowField(par, WindowField::trap3, 1), 81.0);
    EXPECT_EQ(StepWindowField(par, WindowField::trap4, -1), 99.0);
}

TEST(WindowFields, TheListHasEachFunctionOnceInItsOwnOrder)
{
    std::vector<WindowKind> kinds;
    for (const WindowRow& row : WindowRows()) {
        kinds.push_back(row.kind);
        EXPECT_TRUE(row.initial_expression.starts_with("\\<")) << row.caption;
        EXPECT_TRUE(row.initial_expression.ends_with("\\>")) << row.caption;
        EXPECT_NE(row.initial_expression.find("\u00b7"), std::string_view::npos) << row.caption;
    }
    EXPECT_EQ(kinds, (std::vector{WindowKind::exponential, WindowKind::gaussian, WindowKind::sine_bell,
                                  WindowKind::hann, WindowKind::blackman_harris}));
}

} // namespace
} // namespace nmr::test
