#include "session/display_scope.h"

#include "core/settings_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

namespace nmr {
namespace {

struct Shown {
    std::unique_ptr<GlobalBlock> block = std::make_unique<GlobalBlock>();
    GlobalBlock& g = *block;
    explicit Shown(const char* nucleus = "1H")
    {
        InitGlobals(g);
        g.Slots[0].par.OBNUC = nucleus;
        g.Slots[0].par.OBFRQ0PPM = 400.0;
        g.Slots[0].par.OBFRQ0PPMRead = 400.0;
        g.ViewLeft = 9.0F;
        g.ViewRight = 1.0F;
    }
};

TEST(DisplayScope, EveryUnitFollowsTheOneThatIsTyped)
{
    struct Case {
        const char* name;
        XUnit unit;
        double typed, ppm;
    };
    for (const Case& c : {Case{"ppm", XUnit::ppm, 7.25, 7.25}, Case{"Hz", XUnit::hz, 2900.0, 7.25},
                          Case{"kHz", XUnit::khz, 2.9, 7.25}}) {
        SCOPED_TRACE(c.name);
        Shown shown;
        DisplayScope scope(shown.g);
        EXPECT_TRUE(scope.Set(ScopeEdge::left, c.unit, c.typed));
        EXPECT_DOUBLE_EQ(scope.Get(ScopeEdge::left, XUnit::ppm), c.ppm);
        EXPECT_DOUBLE_EQ(scope.Get(ScopeEdge::left, XUnit::hz), c.ppm * 400.0);
        EXPECT_DOUBLE_EQ(scope.Get(ScopeEdge::left, XUnit::khz), c.ppm * 0.4);
        EXPECT_DOUBLE_EQ(scope.Get(ScopeEdge::right, XUnit::ppm), 1.0);
    }
}

TEST(DisplayScope, RefusesWhatIsNoRange)
{
    Shown shown;
    DisplayScope scope(shown.g);
    EXPECT_FALSE(scope.Set(ScopeEdge::left, XUnit::ppm, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_TRUE(scope.Set(ScopeEdge::left, XUnit::ppm, 1.0));
    EXPECT_FALSE(scope.IsUsable());
    EXPECT_FALSE(scope.Apply(shown.g));
    EXPECT_FLOAT_EQ(shown.g.ViewLeft, 9.0F);

    shown.g.Slots[0].par.OBFRQ0PPM = 0.0;
    EXPECT_FALSE(DisplayScope(shown.g).Set(ScopeEdge::left, XUnit::hz, 100.0)) << "no frequency, no Hz";
}

TEST(DisplayScope, TypedBackwardsTheLargerEndStillStandsLeft)
{
    Shown shown;
    DisplayScope scope(shown.g);
    scope.Set(ScopeEdge::left, XUnit::ppm, -1.0);
    scope.Set(ScopeEdge::right, XUnit::ppm, 4.0);
    ASSERT_TRUE(scope.Apply(shown.g));
    EXPECT_FLOAT_EQ(shown.g.ViewLeft, 4.0F);
    EXPECT_FLOAT_EQ(shown.g.ViewRight, -1.0F);
    EXPECT_DOUBLE_EQ(shown.g.ShownHzLeft, 1600.0);
    EXPECT_DOUBLE_EQ(shown.g.ShownHzRight, -400.0);
}

TEST(DisplayScope, PresetsAreThoseOfTheNucleusAndTheUnit)
{
    // The defaults of a first start.
    struct Case {
        const char* nucleus;
        int n;
        std::int32_t unit;
        double left, right;
    };
    const Case cases[] = {
        {"1H", 1, 0, 9.9, 0},    {"1H", 3, 0, 8, 0},       {"", 4, 0, 15, 0},
        {"NUL", 2, 0, 10, 0},    {"13C", 1, 0, 200, 0},    {"C13", 2, 0, 190, -10},
        {"13C", 4, 0, 240, -10}, {"31P", 2, 0, 300, -100}, {"1H", 2, 1, 3800.0 / 400, -0.5},
        {"19F", 4, 2, 125, 0},   {"13C", 3, 1, 62.5, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.nucleus << " " << c.n << " unit " << c.unit);
        Shown shown(c.nucleus);
        shown.g.settings.axis_mode_ppm = c.unit;
        DisplayScope scope(shown.g);
        scope.TakePreset(c.n);
        EXPECT_DOUBLE_EQ(scope.Get(ScopeEdge::left, XUnit::ppm), c.left);
        EXPECT_DOUBLE_EQ(scope.Get(ScopeEdge::right, XUnit::ppm), c.right);
    }
}

TEST(DisplayScope, ANewDefaultIsStoredWithOkOnly)
{
    Shown shown("13C");
    DisplayScope scope(shown.g);
    scope.SetDefaultValue();
    EXPECT_DOUBLE_EQ(shown.g.settings.x_left_preset_2, 200.0);
    ASSERT_TRUE(DisplayScope(scope.ToValues()).Apply(shown.g)); // through the form and back
    EXPECT_DOUBLE_EQ(shown.g.settings.x_left_preset_2, 9.0);
    EXPECT_DOUBLE_EQ(shown.g.settings.x_right_preset_2, 1.0);
    EXPECT_DOUBLE_EQ(shown.g.settings.x_l_preset_c1_hz, 3600.0);
    EXPECT_DOUBLE_EQ(shown.g.settings.x_left_preset, 9.9) << "the protons keep theirs";
    EXPECT_TRUE(shown.g.SettingsChanged);
}

TEST(DefaultAreas, HoldEveryPresetOnceAndRoundTripThroughTheForm)
{
    Shown shown;
    DefaultAreas areas(shown.g.settings);
    double next = 1000.0;
    for (int group = 0; group < 3; ++group)
        for (const XUnit unit : {XUnit::ppm, XUnit::hz})
            for (int n = 1; n <= kPresetCount; ++n) {
                ASSERT_TRUE(areas.Set(group, unit, n, ScopeEdge::left, next));
                ASSERT_TRUE(areas.Set(group, unit, n, ScopeEdge::right, next - 0.1));
                next += 1.0;
            }
    DefaultAreas(areas.ToValues()).Apply(shown.g.settings);
    next = 1000.0;
    for (int group = 0; group < 3; ++group)
        for (const XUnit unit : {XUnit::ppm, XUnit::hz})
            for (int n = 1; n <= kPresetCount; ++n) {
                EXPECT_EQ(GetPreset(shown.g.settings, group, n, unit).left, next);
                EXPECT_EQ(GetPreset(shown.g.settings, group, n, unit).right, next - 0.1);
                next += 1.0;
            }
}

TEST(GridChoice, RoundTripsAndRefusesStepsThatWouldNeverEnd)
{
    Shown shown;
    GridChoice grid = GridChoice::From(shown.g.settings);
    EXPECT_EQ(grid.x_inc_ppm, 1.0);
    EXPECT_EQ(grid.x_inc_hz, 100.0);
    EXPECT_EQ(grid.y_inc, 0.5);
    grid = {0.25, 50.0, 0.1, false, true, true, 2.0};
    ASSERT_TRUE(GridChoice::From(grid.ToValues()).Apply(shown.g.settings));
    EXPECT_EQ(GridChoice::From(shown.g.settings).ToValues(), grid.ToValues());

    for (const double bad : {0.0, -1.0, std::numeric_limits<double>::infinity()}) {
        GridChoice wrong = grid;
        wrong.x_inc_ppm = bad;
        EXPECT_FALSE(wrong.Apply(shown.g.settings));
        EXPECT_EQ(shown.g.settings.grid_x_inc, 0.25);
    }
}

TEST(FullScale, LetsTheHighestPointFillItsShareOfThePlot)
{
    struct Case {
        const char* name;
        std::int16_t smode, from_file;
        float magnitude, highest, lowest;
        double expected; ///< times the share of 0.95
    };
    const Case cases[] = {
        {"transform", 1, 0, 200, 150, -10, 200},    {"preview of a FID", 0, 0, 80, 0, 0, 80},
        {"as read", 1, 1, 200, 150, -10, 150},      {"as read, only negative", 1, 1, 0, -5, -40, 40},
        {"as read, no limits", 1, 1, 70, 0, 0, 70}, {"nothing at all", 1, 0, 0, 0, 0, 0.95},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        DataSet set;
        set.par.SMODE = c.smode;
        set.par.DataFromFile = c.from_file;
        set.par.DispLeft = c.magnitude;
        set.par.DataMax = c.highest;
        set.par.DataMin = c.lowest;
        set.par.YFill = 0.95F;
        EXPECT_NEAR(FullScale(set) * 0.95, c.expected, 1e-5 * c.expected);
    }
}

TEST(Magnification, UpAlwaysMakesPeaksTallerAndDownTakesItBack)
{
    for (const std::int32_t rows : {1, 4}) {
        SCOPED_TRACE(rows);
        DataSet set;
        set.RowCount = rows;
        set.par.SMODE = 1;
        set.par.DispLeft = 100.0F;
        set.par.YFill = 0.95F / static_cast<float>(rows);
        EXPECT_NEAR(Magnification(set), 1.0, 1e-6);
        const double before = FullScale(set);
        BasicYMag_Up(set);
        EXPECT_LT(FullScale(set), before);
        EXPECT_NEAR(Magnification(set), kMagnificationStep, 1e-6);
        BasicYMag_Down(set);
        EXPECT_NEAR(FullScale(set), before, 1e-5 * before);
        for (int i = 0; i < 1000; ++i) BasicYMag_Up(set);
        EXPECT_TRUE(std::isfinite(FullScale(set)));
        EXPECT_GT(FullScale(set), 0.0);
    }
}

} // namespace
} // namespace nmr
