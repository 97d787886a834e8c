#include "support/recording_canvas.h"

#include "layout/spectrum_scene.h"

#include <gmock/gmock.h>

#include <cmath>

namespace nmr {
namespace {

using test::RecordingCanvas;

struct Fixture {
    GlobalBlock g;
    DataSet& set = g.Slots[0];

    /// `points` of zero with a line of height 100 at 7 ppm; the axis runs from first to last.
    explicit Fixture(double first = 0, double last = 10, std::int32_t points = 1001)
    {
        EXPECT_TRUE(AllocateSpecBuffer(g, points, 0));
        set.par.POINT = points;
        set.par.SMODE = 1;
        set.par.OBFRQ0PPM = 500;
        set.par.DispLeft = 100;
        set.par.YFill = 0.95F;
        set.par.DispBase = 0;
        for (std::int32_t i = 0; i < points; ++i)
            set.spec.XAxis[static_cast<std::size_t>(i)] = first + (last - first) * i / (points - 1);
        set.spec.DataRe[0][static_cast<std::size_t>(PpmToPoint(set, 7))] = 100;
    }
};

double Luminance(Rgba color)
{
    const auto linear = [](int byte) {
        const double c = byte / 255.0;
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double Contrast(Rgba a, Rgba b)
{
    const double x = Luminance(a), y = Luminance(b);
    return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

TEST(SpectrumScene, ShowsTheWholeAxisOfEitherDirection)
{
    for (const bool rising : {true, false}) {
        const Fixture f(rising ? -2 : 12, rising ? 12 : -2);
        const auto scene = MakeScene(f.set, f.g.settings);
        EXPECT_DOUBLE_EQ(scene.left_ppm, 12);
        EXPECT_DOUBLE_EQ(scene.right_ppm, -2);
        RecordingCanvas canvas;
        DrawSpectrumScene(canvas, {0, 0, 800, 400}, scene);
        const auto top = std::ranges::min_element(canvas.stripes, {}, &Stripe::top);
        const double x = canvas.stripes_x + canvas.stripes_width * static_cast<double>(top - canvas.stripes.begin());
        const PlotFrame frame = SceneFrame(canvas, {0, 0, 800, 400}, scene);
        EXPECT_NEAR(x, frame.X(7), 2);
        EXPECT_NEAR(static_cast<double>(top->top), frame.Y(100), 1) << "the highest point reaches 95 % of the height";
        EXPECT_NEAR((frame.Y(0) - frame.Y(100)) / (frame.Y(0) - frame.rect.y), 0.95, 0.001);
    }
}

TEST(SpectrumScene, PaperHasLinesInTenthsOfAMillimetreAndItsOwnGround)
{
    Fixture f;
    f.g.settings.draw_width_spec = 3;
    f.g.settings.draw_width_axis = 2;
    f.g.settings.disp_spec_width = 7;
    f.g.settings.col_bg_print = 0x00FFFF;
    for (const int clear : {1, 0}) {
        f.g.settings.col_bg_print_trans = clear;
        const auto scene = MakeScene(f.set, f.g.settings, {.paper = true});
        EXPECT_NEAR(scene.curves[0].pen.width / kUnitsPerMillimetre, 0.3, 1e-9);
        EXPECT_NEAR(scene.axis.pen.width / kUnitsPerMillimetre, 0.2, 1e-9);
        RecordingCanvas canvas;
        DrawSpectrumScene(canvas, {0, 0, 800, 400}, scene);
        EXPECT_EQ(canvas.log.starts_with("rectangle 0.00,0.00 800.00x400.00"), clear == 0);
    }
    EXPECT_EQ(MakeScene(f.set, f.g.settings).curves[0].pen.width, 7) << "the display counts in pixels";
}

TEST(SpectrumScene, MagnificationKeepsTheBaseLineInPlace)
{
    const Fixture f;
    const auto once = MakeScene(f.set, f.g.settings);
    const auto much = MakeScene(f.set, f.g.settings, {.magnification = 50});
    EXPECT_NEAR(once.low / once.high, much.low / much.high, 1e-12);
    EXPECT_NEAR(once.high / much.high, 50, 1e-9);
}

TEST(SpectrumScene, NegativeSignalsAreInSight)
{
    Fixture f;
    f.set.spec.DataRe[0][100] = -60;
    const auto scene = MakeScene(f.set, f.g.settings);
    EXPECT_LT(scene.low, -60);
    EXPECT_GT(scene.low, -80);
}

TEST(SpectrumScene, NothingToShowIsNoFault)
{
    struct Case {
        const char* name;
        void (*spoil)(DataSet&);
        std::int32_t row;
    };
    const Case cases[] = {
        {"no points", [](DataSet& s) { s.par.POINT = 0; }, 0},
        {"more points than the arrays hold", [](DataSet& s) { s.par.POINT = 5000; }, 0},
        {"a row that is not there", [](DataSet&) {}, 3},
        {"no axis", [](DataSet& s) { s.spec.XAxis.clear(); }, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Fixture f;
        c.spoil(f.set);
        const auto scene = MakeScene(f.set, f.g.settings, {.row = c.row});
        EXPECT_TRUE(scene.curves.empty());
        RecordingCanvas canvas;
        DrawSpectrumScene(canvas, {0, 0, 800, 400}, scene);
        EXPECT_TRUE(canvas.texts.empty());
    }
    Fixture f;
    f.set.spec.DataRe[0][3] = std::numeric_limits<float>::infinity();
    const auto scene = MakeScene(f.set, f.g.settings);
    EXPECT_TRUE(std::isfinite(scene.low) && std::isfinite(scene.high) && scene.low < scene.high);
}

TEST(SpectrumScene, UnitsFollowTheSettingOnlyWithAFrequency)
{
    Fixture f;
    f.g.settings.axis_mode_ppm = 1;
    EXPECT_EQ(MakeScene(f.set, f.g.settings).axis.title, "Hz");
    f.set.XLabelHz = "\\< \\g1 n\\g0 /Hz\\>";
    EXPECT_EQ(MakeScene(f.set, f.g.settings).axis.title, f.set.XLabelHz);
    f.set.par.OBFRQ0PPM = 0;
    EXPECT_EQ(MakeScene(f.set, f.g.settings).axis.title, "ppm");
}

TEST(PlotColors, StayReadableOnBothGrounds)
{
    const Settings settings;
    for (const bool dark : {false, true}) {
        SCOPED_TRACE(dark ? "dark" : "light");
        const PlotColors c = ColorsOf(settings, dark);
        EXPECT_EQ(Luminance(c.background) < 0.05, dark);
        // 4.5 and 3: what WCAG 2.1 asks of text and of graphics.
        EXPECT_GE(Contrast(c.text, c.background), 4.5);
        EXPECT_GE(Contrast(c.curve, c.background), 3);
        EXPECT_LT(Contrast(c.grid, c.background), 3) << "the grid stands back";
    }
    EXPECT_EQ(FromSetting(ToSetting({12, 34, 56})), (Rgba{12, 34, 56}));
}

// Every device column is drawn once, in the colour of its region or the curve's own.
TEST(SpectrumScene, ColouredRegionsPartTheCurve)
{
    struct Case {
        const char* name;
        double left, right; ///< shown
        std::size_t parts, coloured;
    };
    const Case cases[] = {{"both inside", 10, 0, 5, 2},
                          {"one inside", 10, 5.5, 3, 1},
                          {"beside them", 2, 0, 1, 0},
                          {"inside of one", 7.5, 6.5, 1, 1},
                          {"from the middle of one on", 7, 3.5, 4, 2}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Fixture f;
        f.set.Regions[3] = {255, 4, 5};
        f.set.Regions[7] = {65280, 8, 6};
        f.set.Regions[8] = {-1, 2, 1}; // without a colour
        const auto scene = MakeScene(f.set, f.g.settings, {.left_ppm = c.left, .right_ppm = c.right});
        RecordingCanvas canvas(2);
        DrawSpectrumScene(canvas, {0, 0, 801, 400}, scene);
        const PlotFrame frame = SceneFrame(canvas, {0, 0, 801, 400}, scene);
        double x = frame.rect.x;
        std::size_t coloured = 0;
        for (const auto& strip : canvas.strips) {
            EXPECT_NEAR(strip.x, x, 1e-6) << "no gap and no column twice";
            x = strip.x + strip.width;
            coloured += strip.pen.color == Rgba{255, 0, 0} || strip.pen.color == Rgba{0, 255, 0} ? 1 : 0;
        }
        EXPECT_NEAR(x, frame.rect.right(), 0.51);
        EXPECT_EQ(canvas.strips.size(), c.parts);
        EXPECT_EQ(coloured, c.coloured);
    }
    Fixture array;
    array.set.Regions[0] = {255, 4, 5};
    array.set.RowCount = 2;
    EXPECT_TRUE(MakeScene(array.set, array.g.settings).regions.empty());
}

} // namespace
} // namespace nmr
