#include "support/recording_canvas.h"

#include "layout/plot.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>

namespace nmr {
namespace {

using test::RecordingCanvas;
using testing::ElementsAre;

AxisStyle Style(XUnit unit = XUnit::ppm, double hz_per_ppm = 400)
{
    AxisStyle style;
    style.unit = unit;
    style.hz_per_ppm = hz_per_ppm;
    style.title = "unit";
    return style;
}

std::vector<std::string> Numbers(const RecordingCanvas& canvas)
{
    std::vector<std::string> numbers;
    for (const auto& text : canvas.texts)
        if (text.text != "unit") numbers.push_back(text.text);
    return numbers;
}

TEST(XAxis, KeepsItsProportionsToTheLetterHeight)
{
    RecordingCanvas canvas;
    AxisStyle style = Style();
    style.font.size = 20;
    DrawXAxis(canvas, {100, 50, 1000, 60}, 10, 0, style);
    const double letter = 22; // ascent 18, descent 4
    std::set<double> lengths;
    for (const Segment& line : canvas.lines) {
        if (line.from.x != line.to.x) continue;
        EXPECT_EQ(line.from.y, 50);
        lengths.insert(line.to.y - line.from.y);
    }
    EXPECT_THAT(lengths, ElementsAre(0.5 * letter, testing::DoubleEq(0.6 * letter)));
    for (const auto& text : canvas.texts) EXPECT_DOUBLE_EQ(text.box.y, 50 + 0.6 * letter);
    EXPECT_LE(canvas.texts[0].box.bottom(), 50 + XAxisHeight(canvas, style));
    EXPECT_THAT(Numbers(canvas), ElementsAre("10", "9", "8", "7", "6", "5", "4", "3", "2", "1", "0"));
}

TEST(XAxis, NumbersStandAtTheirValuesAndNeverTouch)
{
    struct Case {
        const char* name;
        double left, right, width;
        AxisStyle style;
    };
    AxisStyle own = Style();
    own.individual = true;
    own.step_ppm = 0.01; // far too fine for the range
    const Case cases[] = {
        {"proton", 12.3, -1.7, 900, Style()},
        {"narrow window", 12.3, -1.7, 150, Style()},
        {"tiny window", 12.3, -1.7, 30, Style()},
        {"carbon", 220, -20, 900, Style(XUnit::ppm, 100)},
        {"hertz", 12.3, -1.7, 900, Style(XUnit::hz)},
        {"hertz above 10000", 220, -20, 500, Style(XUnit::hz, 151)},
        {"kilohertz", 220, -20, 500, Style(XUnit::khz, 151)},
        {"one line", 7.2604, 7.2591, 900, Style()},
        {"between two points", 7.2600004, 7.2600001, 900, Style()},
        {"reversed", 0, 10, 900, Style()},
        {"below zero", -113, -114.5, 900, Style()},
        {"own steps", 10, 0, 600, own},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RecordingCanvas canvas;
        DrawXAxis(canvas, {40, 0, c.width, 40}, c.left, c.right, c.style);
        const double unit = c.style.unit == XUnit::ppm  ? 1
                            : c.style.unit == XUnit::hz ? c.style.hz_per_ppm
                                                        : c.style.hz_per_ppm / 1000;
        const PlotFrame frame{{40, 0, c.width, 40}, c.left, c.right, 0, 1};
        double end = -1e9;
        for (const auto& text : canvas.texts) {
            EXPECT_GT(text.box.x, end) << text.text;
            end = text.box.right();
            if (text.text == "unit") continue;
            // The printed digits, not the tick, decide where the number belongs.
            EXPECT_NEAR(text.at.x, frame.X(std::strtod(text.text.c_str(), nullptr) / unit), 0.01) << text.text;
        }
        EXPECT_EQ(canvas.texts.back().text, "unit");
        EXPECT_LE(end - canvas.texts.back().box.width, 40 + c.width + 60);
        EXPECT_GE(Numbers(canvas).size(), c.width > 400 ? 3U : 0U);
    }
}

TEST(XAxis, ShowsATickInAnyRange)
{
    struct Case {
        const char* name;
        double left, right, step;
    };
    const Case cases[] = {
        {"own step far larger than the range", 7.31, 7.3, 5},
        {"own step just larger", 7.9, 7.1, 1},
        {"own step far too small", 200, 0, 1e-9},
        {"own step 0 falls back to automatic", 10, 0, 0},
        {"own step without a number", 10, 0, std::nan("")},
        {"huge range", 1e9, -1e9, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        AxisStyle style = Style();
        style.individual = true;
        style.step_ppm = c.step;
        const AxisTicks ticks = FindAxisTicks(c.left, c.right, style, 200);
        EXPECT_GE(ticks.count, 1);
        EXPECT_LE(ticks.count, 201);
        for (const auto index : {ticks.first, ticks.first + ticks.count - 1}) {
            const double value = static_cast<double>(index) * ticks.step;
            EXPECT_LE(value, c.left + 1e-6 * std::abs(c.left));
            EXPECT_GE(value, c.right - 1e-6 * std::abs(c.left));
        }
    }
}

TEST(XAxis, EndsOnRangesWithoutTicks)
{
    for (const double right : {7.0, std::nan(""), 7.0 - 1e-16 * 7}) {
        RecordingCanvas canvas;
        DrawXAxis(canvas, {0, 0, 100, 30}, 7.0, right, Style());
        EXPECT_TRUE(Numbers(canvas).size() <= 1);
    }
    EXPECT_EQ(FindAxisTicks(1e18, 1e18 + 512, Style(), 100).count, 0) << "finer than the numbers' precision";
}

TEST(Grid, LinesLieOnTheTicksOfTheAxisAndOnTheLevels)
{
    RecordingCanvas canvas;
    const PlotFrame frame{{0, 0, 1000, 500}, 10, 0, -0.1, 1.1};
    GridStyle style;
    style.y_auto = false;
    style.y_step = 0.5;
    style.y_full = 1;
    DrawGrid(canvas, frame, Style(), style);
    std::set<double> upright, level;
    for (const Segment& line : canvas.lines) {
        if (line.from.x == line.to.x)
            upright.insert(std::round(frame.Ppm(line.from.x) * 1e6) / 1e6);
        else
            level.insert(std::round(frame.Value(line.from.y) * 1e6) / 1e6);
    }
    EXPECT_THAT(upright, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10));
    EXPECT_THAT(level, ElementsAre(0, 0.5, 1));
}

TEST(StepList, FallsFromTheLargestToTheSmallest)
{
    double before = 1e99;
    for (const auto step : StepList()) {
        const double value = std::strtod(std::string(step).c_str(), nullptr);
        EXPECT_LT(value, before) << step;
        before = value;
    }
    EXPECT_EQ(StepList().front(), "5E+6");
    EXPECT_EQ(StepList().back(), "0.00001");
}

} // namespace
} // namespace nmr
