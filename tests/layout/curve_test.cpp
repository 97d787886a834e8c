#include "support/recording_canvas.h"

#include "layout/plot.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace nmr {
namespace {

using test::RecordingCanvas;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

std::vector<float> Noise(std::size_t size, unsigned seed = 1)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> value(-1, 1);
    std::vector<float> row(size);
    for (float& v : row) v = value(random);
    return row;
}

RecordingCanvas Draw(const std::vector<float>& row, const PlotFrame& frame, double first_ppm, double step_ppm,
                     double pen_width = 1, bool stripes = true, double resolution = 1)
{
    RecordingCanvas canvas(resolution, stripes);
    MinMaxPyramid pyramid;
    pyramid.Build(row);
    DrawCurve(canvas, frame, pyramid, row, first_ppm, step_ppm, {{}, pen_width, PenStyle::solid});
    return canvas;
}

TEST(MinMaxPyramid, AgreesWithALookAtEveryPoint)
{
    for (const std::size_t size : {1U, 2U, 7U, 8U, 9U, 63U, 64U, 1000U, 4097U}) {
        SCOPED_TRACE(size);
        auto row = Noise(size, static_cast<unsigned>(size));
        if (size > 20) row[11] = kNaN;
        MinMaxPyramid pyramid;
        pyramid.Build(row);
        std::mt19937 random(7);
        for (int trial = 0; trial < 300; ++trial) {
            auto a = random() % size, b = random() % size;
            if (a > b) std::swap(a, b);
            float low = std::numeric_limits<float>::infinity(), high = -low;
            for (auto i = a; i <= b; ++i) {
                if (std::isnan(row[i])) continue;
                low = std::min(low, row[i]);
                high = std::max(high, row[i]);
            }
            const auto range = pyramid.Over(a, b);
            ASSERT_EQ(range.low, low) << a << ".." << b;
            ASSERT_EQ(range.high, high) << a << ".." << b;
        }
    }
}

TEST(DrawCurve, LosesNoPointOfADenseRow)
{
    // One spike, anywhere in 100,000 points on 300 columns, must reach its full height.
    const PlotFrame frame{{10, 20, 300, 200}, 9, -1, -1, 1};
    std::mt19937 random(3);
    for (int trial = 0; trial < 40; ++trial) {
        std::vector<float> row(100000, 0.0F);
        const auto spike = random() % row.size();
        row[spike] = 1;
        const bool rising = trial % 2 == 0; // axes of both directions
        const double step = (rising ? 10.0 : -10.0) / 99999;
        const auto canvas = Draw(row, frame, rising ? -1 : 9, step);
        const auto top = std::ranges::min_element(canvas.stripes, {}, &Stripe::top);
        EXPECT_NEAR(static_cast<double>(top->top), 20, 0.51);
        const double ppm = (rising ? -1 : 9) + step * static_cast<double>(spike);
        const double x = canvas.stripes_x + canvas.stripes_width * static_cast<double>(top - canvas.stripes.begin());
        EXPECT_NEAR(x, frame.X(ppm), 1.0);
    }
}

TEST(DrawCurve, LeavesNoGapBetweenNeighboursAtAnyZoom)
{
    const auto row = Noise(20000);
    for (const double span : {10.0, 1.0, 0.1, 0.01, 0.001, 0.0001}) {
        for (const double pen : {1.0, 3.0}) {
            SCOPED_TRACE(testing::Message() << "span " << span << " pen " << pen);
            const PlotFrame frame{{0, 0, 400, 300}, 5 + span / 2, 5 - span / 2, -1.2, 1.2};
            const auto canvas = Draw(row, frame, 0, 10.0 / 19999, pen);
            ASSERT_EQ(canvas.stripes.size(), 1600U);
            for (std::size_t i = 1; i < canvas.stripes.size(); ++i) {
                const Stripe &a = canvas.stripes[i - 1], &b = canvas.stripes[i];
                ASSERT_LT(b.top, b.bottom) << i;
                ASSERT_LE(std::max(a.top, b.top), std::min(a.bottom, b.bottom)) << i;
                ASSERT_GE(static_cast<double>(b.bottom - b.top), pen * 0.99) << i;
            }
        }
    }
}

TEST(DrawCurve, JoinsPointsByStraightLinesFarBeyondTheirSpacing)
{
    const std::vector<float> row{0, 1, 0, -1};
    // Half a point's distance fills the frame: from the second point half way to the third.
    const PlotFrame frame{{0, 0, 100, 100}, 1.5, 1.0, 0, 1};
    const auto canvas = Draw(row, frame, 0, 1);
    for (std::size_t i = 8; i + 8 < canvas.stripes.size(); ++i) {
        const double x = canvas.stripes_width * (static_cast<double>(i) + 0.5);
        const double expected = frame.Y(1 - (frame.Ppm(x) - 1));
        const double middle = static_cast<double>(canvas.stripes[i].top + canvas.stripes[i].bottom) / 2;
        ASSERT_NEAR(middle, expected, 0.05) << i;
    }
}

TEST(DrawCurve, StaysInsideItsFrame)
{
    auto row = Noise(5000);
    row[100] = 1e30F;
    row[200] = -std::numeric_limits<float>::infinity();
    row[300] = kNaN;
    const PlotFrame frame{{30, 40, 200, 100}, 4, 1, -0.3, 0.3};
    const auto stripes = Draw(row, frame, 0, 5.0 / 4999, 5);
    EXPECT_EQ(stripes.stripes.size(), 800U);
    for (const Stripe& s : stripes.stripes) {
        if (s.top >= s.bottom) continue;
        EXPECT_GE(s.top, 40);
        EXPECT_LE(s.bottom, 140);
    }
    for (const double span : {3.0, 0.03}) {
        PlotFrame zoomed = frame;
        zoomed.left_ppm = 1 + span;
        const auto paper = Draw(row, zoomed, 0, 5.0 / 4999, 1, false, 4);
        ASSERT_FALSE(paper.polylines.empty());
        for (const auto& line : paper.polylines) {
            for (const PointD& p : line) {
                EXPECT_TRUE(p.x >= 30 - 1e-9 && p.x <= 230 + 1e-9 && p.y >= 40 - 1e-9 && p.y <= 140 + 1e-9)
                    << p.x << "," << p.y;
            }
        }
    }
}

TEST(DrawCurve, GivesPaperAtMostTwoPointsAColumn)
{
    const auto row = Noise(200000);
    const PlotFrame frame{{0, 0, 500, 300}, 10, 0, -1, 1};
    const auto canvas = Draw(row, frame, 0, 10.0 / 199999, 1, false, 4);
    ASSERT_EQ(canvas.polylines.size(), 1U);
    EXPECT_LE(canvas.polylines[0].size(), 4000U);
    // And the line goes from the lowest to the highest in every column, as the noise does.
    double travel = 0;
    for (std::size_t i = 1; i < canvas.polylines[0].size(); ++i)
        travel += std::abs(canvas.polylines[0][i].y - canvas.polylines[0][i - 1].y);
    EXPECT_GT(travel, 2000 * 250.0);
}

TEST(DrawCurve, DrawsNothingWhereThereIsNothing)
{
    const auto row = Noise(1000);
    struct Case {
        const char* name;
        std::vector<float> row;
        PlotFrame frame;
        double first, step;
    };
    const PlotFrame good{{0, 0, 100, 100}, 10, 0, 0, 1};
    const Case cases[] = {
        {"empty row", {}, good, 0, 0.01},
        {"step 0", row, good, 0, 0},
        {"NaN axis", row, good, std::nan(""), 0.01},
        {"range of no width", row, {{0, 0, 100, 100}, 5, 5, 0, 1}, 0, 0.01},
        {"range of no height", row, {{0, 0, 100, 100}, 10, 0, 1, 1}, 0, 0.01},
        {"frame of no width", row, {{0, 0, 0, 100}, 10, 0, 0, 1}, 0, 0.01},
        {"row beyond the range", row, good, 20, 0.01},
        {"all NaN", std::vector<float>(1000, kNaN), good, 0, 0.01},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (const bool stripes : {true, false}) {
            const auto canvas = Draw(c.row, c.frame, c.first, c.step, 1, stripes);
            EXPECT_TRUE(canvas.polylines.empty());
            EXPECT_TRUE(std::ranges::none_of(canvas.stripes, [](const Stripe& s) { return s.top < s.bottom; }));
        }
    }
}

} // namespace
} // namespace nmr
