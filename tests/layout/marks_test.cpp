// Peak labels and integral curves in a plot.

#include "support/recording_canvas.h"

#include "layout/spectrum_scene.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numeric>
#include <random>

namespace nmr {
namespace {

using test::RecordingCanvas;

constexpr RectD kPage{0, 0, 800, 400};

/// 2001 points over 0 to 10 ppm with lines at every 0.25 ppm, taller to the left.
struct Fixture {
    GlobalBlock g;
    DataSet& set = g.Slots[0];

    explicit Fixture(bool falling = false)
    {
        constexpr std::int32_t kPoints = 2001;
        EXPECT_TRUE(AllocateSpecBuffer(g, kPoints, 0));
        set.par.POINT = kPoints;
        set.par.SMODE = 1;
        set.par.OBFRQ0PPM = 500;
        set.par.DispLeft = 100;
        g.settings.peak_num_disp = 0;
        for (std::int32_t i = 0; i < kPoints; ++i) {
            const double ppm = 10.0 * i / (kPoints - 1);
            set.spec.XAxis[static_cast<std::size_t>(i)] = falling ? 10 - ppm : ppm;
        }
        for (int line = 1; line < 40; ++line) Pick(line * 0.25, 10 + 2 * line);
    }
    void Pick(double ppm, double height)
    {
        const std::int32_t point = PpmToPoint(set, ppm);
        set.spec.DataRe[0][static_cast<std::size_t>(point)] = static_cast<float>(height);
        PeakEntry peak;
        peak.Point = point;
        peak.Position = (ppm - set.spec.XAxis[0]) * set.par.OBFRQ0PPM;
        set.Peaks.push_back(peak);
    }
    void Integrate(double a, double b)
    {
        IntegralEntry entry;
        const auto [low, high] = std::minmax({PpmToPoint(set, a), PpmToPoint(set, b)});
        entry.StartPoint = high;
        entry.EndPoint = low;
        for (auto p = static_cast<std::size_t>(low); p <= static_cast<std::size_t>(high); ++p)
            entry.Value += set.spec.DataRe[0][p] / set.par.DispLeft;
        set.Integrals.push_back(entry);
    }
    RecordingCanvas Draw(const SceneOptions& options = {})
    {
        RecordingCanvas canvas;
        scene = MakeScene(set, g.settings, options);
        DrawSpectrumScene(canvas, kPage, scene);
        frame = SceneFrame(canvas, kPage, scene);
        return canvas;
    }
    SpectrumScene scene;
    PlotFrame frame;
};

std::vector<RecordingCanvas::TextItem> Labels(const RecordingCanvas& canvas)
{
    std::vector<RecordingCanvas::TextItem> labels;
    for (const auto& text : canvas.texts)
        if (text.angle == 90) labels.push_back(text);
    return labels;
}

TEST(PeakLabels, StandApartInOrderWhereverThePeaksAre)
{
    for (const bool falling : {false, true}) {
        Fixture f(falling);
        const auto canvas = f.Draw();
        const auto labels = Labels(canvas);
        ASSERT_EQ(labels.size(), 39U);
        EXPECT_EQ(labels.front().text, "9.750");
        EXPECT_EQ(labels.back().text, "0.250");
        for (std::size_t i = 1; i < labels.size(); ++i)
            EXPECT_GE(labels[i].at.x - labels[i - 1].at.x, 11) << "letters of 12 units side by side";
        EXPECT_NEAR(labels[20].at.x, f.frame.X(4.75), 8) << "near its line where there is room";
        EXPECT_LT(labels[0].at.y, f.frame.rect.y) << "above the plot";
        f.set.PeakFlags = 1;
        const auto below = Labels(f.Draw());
        EXPECT_GT(below[0].at.y, f.frame.rect.bottom());
        EXPECT_LT(below[0].at.y, kPage.bottom());
    }
}

TEST(PeakLabels, SwitchesAndRange)
{
    struct Case {
        const char* name;
        void (*change)(Settings&);
        double left, right;
        std::size_t labels;
        const char* first;
    };
    const Case cases[] = {
        {"numbers", [](Settings& s) { s.peak_num_disp = 1; }, 10, 0, 39, "39: 9.750"},
        {"hertz", [](Settings& s) { s.default_peak_unit = 1, s.default_peak_digit = 1; }, 10, 0, 39, "4875.0"},
        {"off", [](Settings& s) { s.peak_pick_disp = 0; }, 10, 0, 0, ""},
        {"a part", [](Settings&) {}, 3.1, 1.9, 5, "3.000"},
        {"of none", [](Settings&) {}, 0.2, 0.1, 0, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Fixture f;
        c.change(f.g.settings);
        const auto labels = Labels(f.Draw({.left_ppm = c.left, .right_ppm = c.right}));
        ASSERT_EQ(labels.size(), c.labels);
        if (c.labels > 0) {
            EXPECT_EQ(labels[0].text, c.first);
        }
    }
}

TEST(PeakLabels, OfTooManyTheTallestKeepTheirs)
{
    Fixture f;
    for (int i = 0; i < 300; ++i) f.Pick(5 + i * 0.01, 1);
    f.Pick(2.222, 99);
    const auto labels = Labels(f.Draw());
    EXPECT_LT(labels.size(), 100U);
    EXPECT_EQ(std::ranges::count(labels, "2.222", &RecordingCanvas::TextItem::text), 1);
    // A crowd at one place has the labels around it, and no farther than a line can be followed.
    f.set.Peaks.clear();
    for (int i = 0; i < 60; ++i) f.Pick(5 + i * 0.0001, i);
    f.Pick(9, 1);
    const auto crowd = Labels(f.Draw());
    EXPECT_EQ(crowd.front().text, "9.000") << "low, but with room of its own";
    EXPECT_GT(crowd.size(), 12U);
    for (std::size_t i = 1; i < crowd.size(); ++i) EXPECT_NEAR(crowd[i].at.x, f.frame.X(5), 10 * 15);
}

// Against a plain descent on the same sum of squares.
TEST(SpreadApart, MovesLeast)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        std::vector<double> wanted(12);
        for (double& place : wanted) place = std::uniform_real_distribution(0.0, 200.0)(random);
        std::ranges::sort(wanted);
        constexpr double kDistance = 10;
        const auto placed = SpreadApart(wanted, kDistance, -1000, 1000);
        // Alternating projections with Dykstra's corrections.
        std::vector<double> plain = wanted, corrections(wanted.size(), 0.0);
        for (int pass = 0; pass < 20000; ++pass) {
            for (std::size_t i = 1; i < plain.size(); ++i) {
                const double a = plain[i - 1] - corrections[i], b = plain[i] + corrections[i];
                const double lack = std::max(0.0, kDistance - (b - a)) / 2;
                plain[i - 1] = a - lack;
                plain[i] = b + lack;
                corrections[i] = -lack;
            }
        }
        for (std::size_t i = 0; i < plain.size(); ++i) EXPECT_NEAR(placed[i], plain[i], 0.05) << i;
    }
    EXPECT_THAT(SpreadApart({1, 2, 3}, 10, 0, 100), testing::ElementsAre(0, 10, 20));
    EXPECT_THAT(SpreadApart({98, 99}, 10, 0, 100), testing::ElementsAre(90, 100));
    EXPECT_TRUE(SpreadApart({}, 10, 0, 100).empty());
}

TEST(IntegralCurves, RiseByWhatTheyPassOverAndTellTheirValue)
{
    for (const bool falling : {false, true}) {
        Fixture f(falling);
        f.set.Peaks.clear();
        f.set.IntegralScale = 2;
        f.Integrate(9.6, 9.4); // one line of 86
        f.Integrate(1.6, 0.9); // lines of 22, 20 and 18: 1.5, 1.25, 1
        const auto canvas = f.Draw();
        const auto labels = Labels(canvas);
        ASSERT_EQ(labels.size(), 2U);
        EXPECT_EQ(labels[0].text, "2.00");
        EXPECT_EQ(labels[1].text, "1.40"); // 2 * 60 / 86
        ASSERT_EQ(canvas.polylines.size(), 2U);
        const auto rise = [](const std::vector<PointD>& line) { return std::abs(line.front().y - line.back().y); };
        EXPECT_NEAR(rise(canvas.polylines[1]) / rise(canvas.polylines[0]), 60.0 / 86, 1e-9);
        for (const auto& line : canvas.polylines) {
            const auto [left, right] =
                std::minmax({line.front(), line.back()}, [](auto l, auto r) { return l.x < r.x; });
            EXPECT_GT(left.y, right.y) << "from the left of the display up, whichever way the axis runs";
        }
        // The same picture of a part, whatever the zoom.
        const auto near = f.Draw({.left_ppm = 2, .right_ppm = 1});
        EXPECT_EQ(Labels(near).at(0).text, "1.40");
        f.g.settings.integral_disp = 0;
        EXPECT_TRUE(Labels(f.Draw()).empty());
    }
}

TEST(IntegralCurves, TheBaseLineIsPartOfTheSum)
{
    Fixture f;
    f.Integrate(9.6, 9.4);
    f.set.Integrals[0].B0 = 0.01F;
    f.set.Integrals[0].B1 = -2;
    const auto row = f.set.spec.DataRe[0].first(2001);
    const auto marks = MakeIntegralMarks(f.set, row, f.g.settings, {});
    ASSERT_EQ(marks.marks.size(), 1U);
    const IntegralMark& mark = marks.marks[0];
    const int points = mark.start - mark.end + 1;
    const double expected = 0.86 + static_cast<double>(0.01F) * points - 2.0 * (points - 1) * points / 2 / 2001;
    EXPECT_NEAR(mark.total, expected, 1e-9);
    // Where the magnitude is shown in place of the row, its value stays that of the row.
    const std::vector<float> magnitude(2001, 50.0F);
    f.Draw({.instead = magnitude});
    EXPECT_NEAR(f.scene.integrals.marks.at(0).total, expected, 1e-9);
    // It is drawn on the spectrum, at the level that it makes zero.
    const auto lines_drawn = [&] { return f.Draw().lines; };
    const auto without = lines_drawn();
    f.g.settings.integ_base_disp = 1;
    const auto with = lines_drawn();
    ASSERT_EQ(with.size(), without.size() + 1);
    const double ramp = 2.0 * (points - 1) / 2001, b0 = static_cast<double>(0.01F);
    EXPECT_EQ(std::ranges::count_if(with,
                                    [&](const Segment& line) {
                                        return std::abs(line.from.y - f.frame.Y(-100 * b0)) < 1e-6 &&
                                               std::abs(line.to.y - f.frame.Y(100 * (ramp - b0))) < 1e-6;
                                    }),
              1);
    f.set.par.DispLeft = 0;
    EXPECT_TRUE(MakeIntegralMarks(f.set, row, f.g.settings, {}).empty());
    f.set.par.DispLeft = 100;
    f.set.Integrals[0].StartPoint = 100000; // of a longer row
    EXPECT_EQ(MakeIntegralMarks(f.set, row, f.g.settings, {}).marks.at(0).start, 2000);
    f.set.Integrals[0].EndPoint = 100000;
    EXPECT_TRUE(MakeIntegralMarks(f.set, row, f.g.settings, {}).empty());
}

} // namespace
} // namespace nmr
