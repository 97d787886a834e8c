// Base points and the curves through them.

#include "analysis/base_line.h"
#include "analysis/smooth_base_line.h"
#include "support/row_block.h"

#include <cmath>

namespace nmr::test {
namespace {

using Row = std::vector<float>;

Row Floats(const std::vector<double>& values)
{
    return {values.begin(), values.end()};
}

/// The search for points, by its rules, without anything carried along.
std::vector<BasePointEntry> PlainPoints(const std::vector<float>& x, const std::vector<float>& y, int a)
{
    const int n = static_cast<int>(x.size()), step = static_cast<int>(std::nearbyint(n / 50.0));
    const auto at = [](const std::vector<float>& v, int i) { return double(v[static_cast<std::size_t>(i)]); };
    const auto flag = [&](int i) {
        if (i < 1 || i > n - 2) return false;
        return (at(x, i + 1) - at(x, i)) * (at(y, i) - at(y, i - 1)) -
                   (at(x, i) - at(x, i - 1)) * (at(y, i + 1) - at(y, i)) >
               0;
    };
    const auto fit = [&](int i, double& ratio) {
        double s = 0, sx = 0, sxx = 0, sy = 0, sxy = 0, s1 = 0, s2 = 0;
        for (int j = std::max(i - a, 0); j <= std::min(i + a, n - 1); ++j) {
            s += 1;
            sx += j - i;
            sxx += (j - i) * (j - i);
            sy += at(x, j);
            sxy += at(x, j) * (j - i);
        }
        const double d = sx * sx - s * sxx, slope = (sx * sy - s * sxy) / d, level = (sx * sxy - sy * sxx) / d;
        for (int j = i - a; j <= i + a; ++j) s2 += std::pow(at(x, j) - (slope * (j - i) + level), 2);
        for (int j = i - a; j < i + a; ++j) s1 += std::pow(at(x, j + 1) - at(x, j), 2);
        ratio = s2 == 0 ? 4 : s1 / s2;
        return level;
    };
    std::vector<BasePointEntry> list;
    double ratio = 0;
    for (int i = a; i < n - a;) {
        int c = 0;
        for (int j = i - a; j <= i + a; ++j) c += flag(j) ? 1 : 0;
        if (!flag(i) || a / 5.0 >= c) {
            ++i;
            continue;
        }
        const double level = fit(i, ratio);
        if (ratio > 1.4) list.push_back({i, float(level)});
        i += step;
    }
    if (list.empty())
        for (int i = a; i <= n - a - 1; i += step) {
            const double level = fit(i, ratio);
            if (ratio > 1.2) list.push_back({i, float(level)});
        }
    return list;
}

TEST(BasePoints, AreFoundByTheRules)
{
    struct Case {
        const char* name;
        int n;
        std::vector<LineOf> lines;
        double noise;
        int average;
    };
    const Case cases[] = {
        {"noise and lines", 8192, {{2000, 100, 5}, {6000, 50, 30}}, 0.5, 5},
        {"wide fit", 8192, {{2000, 100, 5}, {6000, 50, 30}}, 0.5, 20},
        {"one crowded hump", 4096, {{2000, 100, 500}}, 0.2, 7},
        {"no noise: lines only", 2048, {{500, 100, 5}}, 0, 5},
        {"nothing quiet in the first pass", 1000, {}, 0, 5},
        {"half the row is too short", 100, {{50, 1, 3}}, 0.1, 60},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const LineRow row = Lines(c.n, c.lines, c.noise);
        const auto g = BlockOf(row.re, {}, row.im);
        Auto_Base_Points(*g, c.average);
        const auto expected = PlainPoints(Floats(row.re), Floats(row.im), c.average);
        ASSERT_EQ(g->BasePoints.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(g->BasePoints[i].Point, expected[i].Point);
            EXPECT_FLOAT_EQ(g->BasePoints[i].Value, expected[i].Value);
        }
    }
    for (const int n : {0, 1, 2, 10, 24, 60}) // a step below one point, and a fit of one point
        for (const int average : {0, -4, 3}) {
            const auto g = BlockOf(std::vector<double>(static_cast<std::size_t>(n), 2.0));
            Auto_Base_Points(*g, average);
            for (const BasePointEntry& e : g->BasePoints) EXPECT_NEAR(e.Value, 2, 1e-6);
            EXPECT_LE(g->BasePoints.size(), kMaxBasePoints);
        }
    const auto flat = BlockOf(std::vector<double>(1000, 0.0));
    Auto_Base_Points(*flat, 5);
    ASSERT_EQ(flat->BasePoints.size(), 50U); // exact lines are quiet, at the step distance
    EXPECT_EQ(flat->BasePoints[1].Point, 25);
}

TEST(BasePoints, TheToolKeepsThemAscendingAndDistinct)
{
    std::vector<double> re(500);
    for (std::size_t i = 0; i < re.size(); ++i) re[i] = 3 + 0.5 * static_cast<double>(i);
    const auto g = BlockOf(re);
    for (const int point : {300, 100, 400, 0, 499}) EXPECT_GE(Add_Base_Point(*g, point, 5), 0);
    EXPECT_TRUE(std::ranges::is_sorted(g->BasePoints, {}, &BasePointEntry::Point));
    for (const BasePointEntry& e : g->BasePoints) EXPECT_NEAR(e.Value, 3 + 0.5 * e.Point, 1e-4);
    EXPECT_TRUE(Set_Base_Level_Of(*g, 1, -8));
    EXPECT_EQ(Add_Base_Point(*g, 100, 5), 1); // again: its own level
    EXPECT_NEAR(g->BasePoints[1].Value, 53, 1e-4);
    EXPECT_EQ(g->BasePoints.size(), 5U);
    EXPECT_EQ(Find_Base_Point(*g, 303, 5), 2);
    EXPECT_EQ(Find_Base_Point(*g, 200, 5), -1);
    EXPECT_TRUE(Delete_Base_Point(*g, 2));
    EXPECT_EQ(g->BasePoints[2].Point, 400);
    for (const int bad : {-1, 500, 99999}) EXPECT_EQ(Add_Base_Point(*g, bad, 5), -1);
    EXPECT_FALSE(Delete_Base_Point(*g, 4));
    EXPECT_FALSE(Set_Base_Level_Of(*g, 0, std::nanf("")));
}

TEST(BasePoints, ThoseOnLinesAreTold)
{
    LineRow row = Lines(8192, {{2000, 100, 20}, {6000, 50, 30}}, 0.1);
    for (std::size_t i = 0; i < row.re.size(); ++i) row.re[i] += 3e-4 * static_cast<double>(i); // a slope is no line
    const auto g = BlockOf(row.re, {}, row.im);
    for (const int quiet : {400, 1000, 4000, 5000, 7900}) Add_Base_Point(*g, quiet, 20);
    EXPECT_TRUE(Base_Points_On_Lines(*g).empty());
    for (const int loud : {1985, 2030, 6040}) Add_Base_Point(*g, loud, 20);
    EXPECT_EQ(Drop_Base_Points_On_Lines(*g), 3U);
    EXPECT_EQ(g->BasePoints.size(), 5U);
    EXPECT_TRUE(Base_Points_On_Lines(*g).empty());
    g->BasePoints = {{9000, 5}, {-1, 5}};
    EXPECT_TRUE(Base_Points_On_Lines(*g).empty()) << "outside the row";
}

TEST(BaseLine, IsStraightBetweenThePointsAndLevelOutside)
{
    std::vector<double> re(200), im(200, 7.0);
    for (std::size_t i = 0; i < re.size(); ++i) re[i] = std::sin(0.1 * static_cast<double>(i)) + 5;
    const auto g = BlockOf(re, {}, im);
    SpecBuffer& spec = g->Slots[0].spec;
    Subtract_Straight_Base_Line(*g);
    EXPECT_EQ(spec.DataRe[0][77], spec.SourceRe[0][77]) << "no points, no change";
    g->BasePoints = {{50, 4}};
    Subtract_Straight_Base_Line(*g);
    for (std::size_t i = 0; i < 200; ++i) EXPECT_FLOAT_EQ(spec.DataRe[0][i], spec.SourceRe[0][i] - 4);
    g->BasePoints = {{20, 1}, {60, 3}, {160, -2}};
    Subtract_Straight_Base_Line(*g);
    const auto curve = Straight_Base_Line(*g);
    const auto level = [&](int i) {
        if (i < 20) return 1.0;
        if (i < 60) return 1 + (i - 20) / 20.0;
        return i < 160 ? 3 - (i - 60) / 20.0 : -2.0;
    };
    for (int i = 0; i < 200; ++i) {
        const auto at = static_cast<std::size_t>(i);
        ASSERT_NEAR(spec.DataRe[0][at], double(spec.SourceRe[0][at]) - level(i), 1e-5);
        ASSERT_NEAR(curve[at], level(i), 1e-5);
        ASSERT_EQ(spec.DataIm[0][at], 7);
    }
    g->BasePoints = {{0, 2}, {199, 2}};
    Subtract_Straight_Base_Line(*g);
    for (std::size_t i = 0; i < 200; ++i) ASSERT_FLOAT_EQ(spec.DataRe[0][i], spec.SourceRe[0][i] - 2);
}

TEST(WhittakerSolve, SolvesTheFullSystem)
{
    for (const std::size_t n : {3U, 4U, 9U, 60U})
        for (const double lambda : {1e-2, 10.0, 1e5}) {
            std::mt19937 engine(static_cast<unsigned>(n));
            std::uniform_real_distribution<double> any(0.0, 1.0);
            std::vector<double> y(n), w(n);
            for (std::size_t i = 0; i < n; ++i) {
                y[i] = any(engine);
                w[i] = any(engine) < 0.3 && i > 1 ? 0.0 : any(engine) + 0.01;
            }
            const auto z = Whittaker_Solve(y, w, lambda);
            // The gradient of the sum that it minimises.
            std::vector<double> gradient(n);
            for (std::size_t i = 0; i < n; ++i) gradient[i] = w[i] * (z[i] - y[i]);
            for (std::size_t i = 0; i + 2 < n; ++i) {
                const double d = z[i] - 2 * z[i + 1] + z[i + 2];
                gradient[i] += lambda * d;
                gradient[i + 1] -= 2 * lambda * d;
                gradient[i + 2] += lambda * d;
            }
            for (const double v : gradient) EXPECT_NEAR(v, 0, 1e-8 * (1 + lambda * 1e-2)) << n << " " << lambda;
        }
}

TEST(SmoothBaseLines, FindARollingBaseLineUnderLines)
{
    struct Case {
        const char* name;
        std::vector<LineOf> lines;
        double asymmetry;
    };
    const Case cases[] = {
        {"few lines", {{9000, 100, 6}, {30000, 60, 6}, {30100, 60, 6}}, 1},
        {"lines of both signs", {{9000, 100, 6}, {20000, -80, 6}, {50000, 50, 6}}, 0},
        {"a broad line", {{9000, 100, 6}, {40000, 20, 300}}, 1},
        {"no line", {}, 1},
    };
    constexpr int n = 65536;
    for (const Case& c : cases)
        for (const bool whittaker : {true, false}) {
            SCOPED_TRACE(testing::Message() << c.name << (whittaker ? ", Whittaker" : ", Bernstein"));
            const LineRow lines = Lines(n, c.lines, 0.1);
            Row row;
            std::vector<double> base;
            for (int i = 0; i < n; ++i) {
                const double t = double(i) / n;
                base.push_back(1 + 2 * t * t - 1.5 * std::sin(3 * t));
                row.push_back(static_cast<float>(lines.re[static_cast<std::size_t>(i)] + base.back()));
            }
            const BaseLineShape shape{.asymmetry = c.asymmetry};
            const Row curve = whittaker ? Whittaker_Base_Line(row, shape) : Bernstein_Base_Line(row, shape);
            double squares = 0;
            for (int i = 0; i < n; ++i)
                squares += std::pow(double(curve[static_cast<std::size_t>(i)]) - base[static_cast<std::size_t>(i)], 2);
            // Feet of lines remain; the base line itself spans more than 1.
            EXPECT_LT(std::sqrt(squares / n), c.lines.size() == 2 ? 0.25 : 0.05);
        }
}

TEST(SmoothBaseLines, OddRowsGiveALevelAndNoFault)
{
    for (const int n : {0, 1, 7, 8, 9, 100, 2049})
        for (const double value : {0.0, 5.0}) {
            const Row row(static_cast<std::size_t>(n), static_cast<float>(value));
            for (const Row& curve : {Whittaker_Base_Line(row), Bernstein_Base_Line(row)}) {
                ASSERT_EQ(curve.size(), row.size());
                for (const float v : curve) ASSERT_NEAR(v, n < 8 ? 0 : value, 1e-3) << n;
            }
        }
}

} // namespace
} // namespace nmr::test
