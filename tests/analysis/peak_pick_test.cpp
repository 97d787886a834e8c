// Picking against a plain reading of its rules, and on rows whose tops are known.

#include "analysis/peak_pick.h"
#include "core/list_values.h"
#include "support/row_block.h"

#include <cmath>
#include <limits>
#include <set>

namespace nmr::test {
namespace {

/// The rules word by word, on a list of its own.
std::vector<std::size_t> PlainTops(const std::vector<float>& y, std::size_t first, std::size_t last, float d, float t)
{
    enum { searching, rising } state = searching;
    float top = y[first], valley = y[first];
    std::size_t at = first;
    std::vector<std::size_t> tops;
    for (std::size_t i = first; i <= last; ++i) {
        const float v = y[i];
        if (!(v > top)) {
            if (v < top && top - v >= d && top >= t && state == rising) {
                tops.push_back(at);
                valley = v;
                state = searching;
            }
            if (state == searching && valley >= v) {
                valley = v;
                top = v;
                at = i;
            }
        } else if (state == searching) {
            if (v - valley >= d) {
                top = v;
                at = i;
                state = rising;
            } else if (v < valley) {
                valley = v;
            }
        } else {
            top = v;
            at = i;
        }
    }
    return tops;
}

void SetLevels(GlobalBlock& g, double noise, double detect, double base)
{
    DataSet& set = g.Slots[0];
    EXPECT_TRUE(Set_Base_Level(set, base) && Set_Noise_Level(set, noise) && Set_Detect_Level(set, detect));
    EXPECT_NEAR(Noise_Level(set), noise, 1e-6);
    EXPECT_NEAR(Base_Level(set), base, 1e-6);
}

TEST(PeakPick, AgreesWithItsRulesOnNoisyRows)
{
    for (unsigned seed = 1; seed <= 12; ++seed) {
        const int n = 500 + 300 * static_cast<int>(seed);
        const auto row =
            Lines(n, {{100, 50, 3}, {n / 2.0, 100, 5}, {n / 2.0 + 14, 60, 5}, {n - 30.0, 20, 2}}, 1.5, seed);
        const auto g = BlockOf(row.re, {.step_ppm = seed % 2 != 0 ? 0.002 : -0.002});
        DataSet& set = g->Slots[0];
        const double noise = 0.01 * (seed % 5), detect = 0.02 * (seed % 4);
        SetLevels(*g, noise, detect, 0.003 * (seed % 3));
        const auto data = set.spec.DataRe[0].first(static_cast<std::size_t>(n));
        const std::size_t first = 7 * seed, last = static_cast<std::size_t>(n) - 5 * seed;
        // The words of the set, as the scan reads them.
        const float full = set.par.DispLeft, d = std::abs(full * set.PeakThreshold - full * set.PeakWidth);
        const auto expected = PlainTops({data.begin(), data.end()}, first, last, d, full * set.PeakNoise);
        Peak_Pick(*g, static_cast<std::int32_t>(last), static_cast<std::int32_t>(first)); // ends in either order
        std::set<std::size_t> wanted(expected.begin(), expected.end()), found;
        for (const PeakEntry& e : set.Peaks) found.insert(static_cast<std::size_t>(PeakIndex(set, e)));
        EXPECT_EQ(found, wanted) << seed;
        EXPECT_EQ(set.Peaks.size(), expected.size());
        EXPECT_TRUE(std::ranges::is_sorted(set.Peaks, {}, &PeakEntry::Position));
        const std::size_t count = set.Peaks.size();
        Peak_Pick(*g, static_cast<std::int32_t>(first), static_cast<std::int32_t>(last));
        EXPECT_EQ(set.Peaks.size(), count) << "a second run knows them";
        SetLevels(*g, 0, 0, 0);
        Peak_Pick(*g, 0, n - 1);
        EXPECT_GT(set.Peaks.size(), count) << "a lower level adds";
        EXPECT_TRUE(std::ranges::is_sorted(set.Peaks, {}, &PeakEntry::Position));
    }
}

TEST(PeakPick, StoresHzFromTheFirstPointAndAnIndexOfTheWholeRow)
{
    std::vector<double> re(1001);
    re[250] = re[900] = 10;
    for (const double step : {0.01, -0.01}) {
        const auto g = BlockOf(re, {.first_ppm = 2, .step_ppm = step, .mhz = 400});
        DataSet& set = g->Slots[0];
        Peak_Pick(*g, 0, 1000);
        ASSERT_EQ(set.Peaks.size(), 2U);
        const PeakEntry &first = set.Peaks[step > 0 ? 0 : 1], &second = set.Peaks[step > 0 ? 1 : 0];
        EXPECT_NEAR(first.Position, 250 * step * 400, 2e-3);
        EXPECT_NEAR(PeakPpm(set, first), 2 + 250 * step, 1e-5);
        EXPECT_EQ(first.Point, 250);
        EXPECT_EQ(second.Point, 901); // of 1001 points, though the last one is 1000
        EXPECT_EQ(first.Height, 0);
        EXPECT_EQ(first.Amplitude, 0);
        // A new reference leaves the list valid.
        for (double& x : set.spec.XAxis) x += 1.5;
        EXPECT_NEAR(PeakPpm(set, second), 3.5 + 900 * step, 1e-5);
        EXPECT_EQ(PeakIndex(set, second), 900);
    }
}

TEST(PeakPick, ClosesOnlyWhatHasRisenAndFallen)
{
    struct Case {
        const char* name;
        std::vector<double> re;
        double noise, detect;
        std::vector<int> tops;
    };
    const Case cases[] = {
        {"monotonic", {1, 2, 3, 4, 5, 6}, 0.1, 0, {}},
        {"constant", {3, 3, 3, 3}, 0, 0, {}},
        {"all zero", {0, 0, 0, 0}, 0, 0, {}},
        {"not yet fallen at the end", {0, 10, 9.8}, 0.05, 0, {}},
        {"fallen by the step exactly", {0, 10, 9}, 0.1, 0, {1}},
        {"plateau: its first point", {0, 10, 10, 0}, 0.1, 0, {1}},
        {"a shoulder below the step", {0, 10, 9.5, 10.5, 0}, 0.1, 0, {3}},
        {"below the detect level", {0, 2, 0, 10, 0}, 0.1, 0.3, {3}},
        {"no step: each local maximum", {0, 1, 0.5, 1.5, 1.4, 1.6, 0}, 0, 0.1, {1, 3, 5}},
        {"two points", {1, 0}, 0, 0, {}},
        {"one point", {1}, 0, 0, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto g = BlockOf(c.re);
        g->Slots[0].par.DispLeft = 10;
        SetLevels(*g, c.noise, c.detect, 0);
        Peak_Pick(*g, -5, 1000);
        std::vector<int> tops;
        for (const PeakEntry& e : g->Slots[0].Peaks) tops.push_back(PeakIndex(g->Slots[0], e));
        EXPECT_EQ(tops, c.tops);
    }
    auto nothing = std::make_unique<GlobalBlock>();
    Peak_Pick(*nothing, 0, 10);
    EXPECT_TRUE(nothing->Slots[0].Peaks.empty());
}

TEST(PeakPick, NegativeTopsAreAskedForSeparately)
{
    const auto row = Lines(2000, {{400, 100, 4}, {900, -60, 4}, {1500, 40, 4}});
    const auto g = BlockOf(row.re);
    DataSet& set = g->Slots[0];
    Peak_Pick(*g, 0, 1999);
    ASSERT_EQ(set.Peaks.size(), 2U);
    Peak_Pick_Negative(*g, 0, 1999);
    ASSERT_EQ(set.Peaks.size(), 3U);
    EXPECT_EQ(PeakIndex(set, set.Peaks[1]), 900);
    EXPECT_NEAR(PeakHeightPercent(set, 0, set.Peaks[1]), -60, 1);
}

TEST(PeakPick, AClickTakesTheTopThatIsMeantAndNeverTwice)
{
    const auto row = Lines(2000, {{400, 100, 4}, {420, 30, 2}, {1200, -80, 4}});
    const auto g = BlockOf(row.re, {.first_ppm = 0, .step_ppm = 0.01});
    DataSet& set = g->Slots[0];
    const auto index = [&] { return PeakIndex(set, set.Peaks.back()); };
    EXPECT_TRUE(Would_Add_Peak(*g, 4.19, 0.05, false));
    EXPECT_TRUE(Add_Peak_At(*g, 4.19, 0.05, false)); // within reach: the small line beside the big one
    EXPECT_EQ(index(), 420);
    EXPECT_FALSE(Add_Peak_At(*g, 4.21, 0.05, false)) << "known";
    EXPECT_TRUE(Add_Peak_At(*g, 4.1, 0.15, false)); // both in reach: the higher
    EXPECT_EQ(PeakIndex(set, set.Peaks.front()), 400);
    EXPECT_TRUE(Add_Peak_At(*g, 11.9, 0.2, true));
    EXPECT_EQ(index(), 1200);
    Peak_Pick(*g, 0, 1999);
    EXPECT_EQ(set.Peaks.size(), 3U) << "the scan knows peaks of a click";
    EXPECT_EQ(Find_Peak(set, 12.02, 0.05), 2);
    EXPECT_EQ(Find_Peak(set, 12.2, 0.05), -1);
    EXPECT_FALSE(Delete_Peak_At(set, 8, 0.05));
    EXPECT_TRUE(Delete_Peak_At(set, 12.02, 0.05));
    EXPECT_EQ(Delete_Peaks_Between(set, 4.3, 4.15), 1U);
    EXPECT_EQ(PeakIndex(set, set.Peaks[0]), 400);
    const auto flat = BlockOf(std::vector<double>(100, 5.0));
    EXPECT_FALSE(Add_Peak_At(*flat, -0.95, 0.01, true));
    EXPECT_FALSE(Set_Detect_Level(set, std::numeric_limits<double>::quiet_NaN()));
}

} // namespace
} // namespace nmr::test
