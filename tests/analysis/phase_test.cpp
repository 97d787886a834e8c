// Phase by hand and automatic phase, on lines made from their formula.

#include "analysis/phase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <memory>
#include <numbers>
#include <random>

namespace nmr::test {
namespace {

using Complex = std::complex<double>;

struct Line {
    double point, height, half_width; ///< points
};

struct Recipe {
    std::vector<Line> lines;
    double ph0_deg = 0, ph1_deg = 0, noise = 0;
    int zero_point = 0; ///< where ph1 turns nothing
    unsigned seed = 1;
};

/// A row of Lorentzian lines, absorption positive, turned by the phases: i turns by
/// ph0 + (i - zero_point) * ph1 / n.
std::unique_ptr<GlobalBlock> Spectrum(int n, const Recipe& recipe)
{
    auto g = std::make_unique<GlobalBlock>();
    EXPECT_TRUE(AllocateSpecBuffer(*g, n, 0));
    DataSet& set = g->Slots[0];
    set.par.POINT = n;
    set.par.OBNUC = "13C";
    std::mt19937 engine(recipe.seed);
    std::normal_distribution<double> noise(0.0, 1.0);
    for (int i = 0; i < n; ++i) {
        Complex value = 0;
        for (const Line& l : recipe.lines) value += l.height / Complex(1.0, (i - l.point) / l.half_width);
        const double turn = recipe.ph0_deg + (i - recipe.zero_point) * recipe.ph1_deg / n;
        value *= std::polar(1.0, turn * std::numbers::pi / 180.0);
        const double re = recipe.noise * noise(engine);
        value += Complex(re, recipe.noise * noise(engine));
        const auto at = static_cast<std::size_t>(i);
        set.spec.SourceRe[0][at] = static_cast<float>(value.real());
        set.spec.SourceIm[0][at] = static_cast<float>(value.imag());
    }
    Phase_Apply(*g, 0, 0, n);
    return g;
}

double Wrapped(double degrees)
{
    return std::remainder(degrees, 360.0);
}

/// Phase that is left at a point after the correction.
double LeftAt(const GlobalBlock& g, const Recipe& recipe, double point)
{
    const int n = g.Slots[0].par.POINT;
    return Wrapped(recipe.ph0_deg + (point - recipe.zero_point) * recipe.ph1_deg / n +
                   static_cast<double>(g.Phase0Deg) + (point - g.PivotPoint) * static_cast<double>(g.Phase1Deg) / n);
}

double Median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

TEST(AngleOf, CoversAllQuadrantsAndAxes)
{
    struct Case {
        float re, im, degrees;
    };
    const Case cases[] = {{0, 0, 0},       {0, 1, 90},         {0, -1, -90},       {1, 0, 0},           {-1, 0, 180},
                          {1, 1, 45},      {-1, 1, 135},       {-1, -1, -135},     {1, -1, -45},        {-0.0F, 0, 0},
                          {1e-30F, 1, 90}, {3, 4, 53.130102F}, {-4, 3, 143.1301F}, {-3, -4, -126.8699F}};
    for (const Case& c : cases) EXPECT_NEAR(Angle_Of(c.re, c.im), c.degrees, 1e-4) << c.re << " " << c.im;
}

TEST(PhaseApply, TurnsThePivotByZeroOrderAloneAndKeepsTheSource)
{
    constexpr int kPoints = 512;
    const Recipe recipe{.lines = {{100, 10, 3}, {400, 5, 3}}};
    auto g = Spectrum(kPoints, recipe);
    const auto source = g->Slots[0].spec.SourceRe;
    SpecBuffer& spec = g->Slots[0].spec;
    g->PivotPoint = 137;
    for (const float ph1 : {0.0F, 90.0F, -1800.0F}) {
        Phase_Apply(*g, 90.0F, ph1, kPoints);
        // A quarter turn: re' = -im, im' = re.
        EXPECT_NEAR(spec.DataRe[0][137], -spec.SourceIm[0][137], 1e-6);
        EXPECT_NEAR(spec.DataIm[0][137], spec.SourceRe[0][137], 1e-6);
    }
    Phase_Apply(*g, 47.0F, 33.0F, kPoints);
    const auto once = spec.DataRe;
    Phase_Apply(*g, 47.0F + 360.0F, 33.0F, kPoints);
    for (std::size_t i = 0; i < kPoints; ++i) ASSERT_NEAR(spec.DataRe[0][i], once[0][i], 1e-4);
    EXPECT_TRUE(std::ranges::equal(source.all(), spec.SourceRe.all()));
}

TEST(FindMainPeak, TakesTheFirstOfEqualTops)
{
    auto g = Spectrum(64, {});
    for (const std::size_t i : {20U, 40U}) g->Slots[0].spec.SourceIm[0][i] = -3.0F;
    g->Slots[0].spec.SourceRe[0][40] = 4.0F;
    g->Slots[0].spec.SourceIm[0][50] = 5.0F;
    std::int32_t point = -1;
    float top = 0;
    Find_Main_Peak(*g, point, top, 64);
    EXPECT_EQ(point, 40);
    EXPECT_EQ(top, 5.0F);
    EXPECT_EQ(g->WorkLine[20], 3.0F);
}

/// Automatic phase told over again in plain loops over doubles, without work lines or ranges of its own.
struct PlainPhase {
    std::vector<Complex> source;
    int p = 0, second = -1;
    double ph0 = 0, ph1 = 0, noise = 0;

    int n() const { return static_cast<int>(source.size()); }
    Complex At(int i) const
    {
        const double turn = (ph0 + (i - p) * ph1 / n()) * 0.0174532925199433;
        return source[static_cast<std::size_t>(i)] * std::polar(1.0, turn);
    }
    double Magnitude(int i) const { return std::abs(source[static_cast<std::size_t>(i)]); }

    double Fit(int center, double fallback)
    {
        const auto round = [](double x) { return static_cast<int>(std::nearbyint(x)); };
        int lo = round(center - n() / 64.0), hi = round(center + n() / 64.0);
        if (lo < 1) {
            lo = 1;
            hi = round(n() / 32.0);
        } else if (hi >= n() - 1) {
            hi = n() - 2;
            lo = round(n() * 31.0 / 32.0 - 1);
        }
        std::vector<Complex> z;
        for (int i = 0; i < n(); ++i) z.push_back(At(i));
        const auto at = [&](int i) { return z[static_cast<std::size_t>(i)]; };
        std::vector<double> d(z.size(), 0.0);
        std::vector<bool> turns(z.size(), false);
        for (int i = lo; i < hi; ++i) {
            const Complex before = at(i) - at(i - 1), after = at(i + 1) - at(i);
            d[static_cast<std::size_t>(i)] = std::abs(before);
            turns[static_cast<std::size_t>(i)] = after.real() * before.imag() - before.real() * after.imag() > 0;
        }
        Complex offset = 0;
        int quiet = 0;
        for (int i = round(n() * 0.1); i <= round(n() * 0.9); ++i)
            if (!turns[static_cast<std::size_t>(i)]) {
                offset += at(i);
                ++quiet;
            }
        offset /= quiet;
        double sum = 0, squares = 0;
        const int tail = round(n() * 0.9);
        for (int i = tail; i < n(); ++i) {
            sum += at(i).real() / (n() - tail);
            squares += at(i).real() * at(i).real() / (n() - tail);
        }
        noise = std::sqrt(std::max(squares - sum * sum, 0.0));
        std::vector<int> kept;
        for (int i = lo; i < hi; ++i)
            if (turns[static_cast<std::size_t>(i)]) kept.push_back(i);
        for (auto before = static_cast<std::size_t>(hi - 2);;) {
            double mean = 0, square = 0;
            for (const int i : kept) mean += d[static_cast<std::size_t>(i)] / double(kept.size());
            for (const int i : kept) square += std::pow(d[static_cast<std::size_t>(i)] - mean, 2) / double(kept.size());
            const double limit = mean + 2 * std::sqrt(square);
            const std::size_t removed = std::erase_if(kept, [&](int i) {
                const auto k = static_cast<std::size_t>(i);
                return d[k] > limit || d[k + 1] > limit || !turns[k - 1];
            });
            if (removed == before) break;
            before = removed;
        }
        double q_mean = 0;
        for (const int i : kept) q_mean += (at(i) - offset).imag() / double(kept.size());
        double s1 = 0, s2 = 0, s3 = 0, r1 = 0, r2 = 0;
        for (const int i : kept) {
            const double x = (at(i) - offset).real(), q = (at(i) - offset).imag() - q_mean;
            s1 += q * q;
            s2 += q * q * q;
            s3 += q * q * q * q;
            r1 += x * q * q;
            r2 += x * q * q * q;
        }
        // The straight line through the points, each weighing Q^2: its slope.
        return s2 * s2 == s3 * s1 ? fallback
                                  : std::atan((s1 * r2 - s2 * r1) / (s1 * s3 - s2 * s2)) / 0.0174532925199433;
    }

    int FirstLine(int from, int to, int step, double highest, double threshold) const
    {
        int found = -1;
        for (int i = from; i != to; i += step) {
            if (found >= 0 && Magnitude(i) < highest - threshold) break;
            if (Magnitude(i) > threshold && Magnitude(i) > highest) {
                highest = Magnitude(i);
                found = i;
            }
        }
        return found;
    }

    void Run()
    {
        for (int i = 0; i < n(); ++i)
            if (Magnitude(i) > Magnitude(p)) p = i;
        ph0 = -std::arg(source[static_cast<std::size_t>(p)]) * 57.2957795130823;
        ph0 += Fit(p, 90);
        const double threshold = noise > 0 ? 10 * noise : 0.05 * Magnitude(p);
        const int left = FirstLine(1, p, 1, Magnitude(0), threshold), right = FirstLine(n() - 1, p, -1, -1, threshold);
        second = left >= 0 && (right < 0 || right - p <= p - left) ? left : right;
        if (second < 0 || std::abs(second - p) < 100) return;
        ph1 -= std::arg(At(second)) * 57.2957795130823 * n() / (second - p);
        ph1 += Fit(second, -90) * n() / (second - p);
    }
};

TEST(AutoPhase, AgreesWithPlainLoops)
{
    int first_orders = 0;
    for (unsigned trial = 0; trial < 60; ++trial) {
        std::mt19937 engine(trial);
        std::uniform_real_distribution<double> any(0.0, 1.0);
        const int n = trial % 3 == 0 ? 5000 : 16384; // also no power of two
        Recipe recipe{.lines = {},
                      .ph0_deg = 360 * any(engine) - 180,
                      .ph1_deg = 300 * any(engine) - 150,
                      .noise = trial % 4 == 0 ? 0.0 : std::pow(10.0, -2 * any(engine)),
                      .seed = trial + 7};
        for (int k = 0; k < 2 + static_cast<int>(trial % 7); ++k)
            recipe.lines.push_back({n * (0.01 + 0.98 * any(engine)), 100 * any(engine), 2 + 10 * any(engine)});
        const auto g = Spectrum(n, recipe);
        PlainPhase plain;
        for (int i = 0; i < n; ++i) {
            const auto at = static_cast<std::size_t>(i);
            plain.source.emplace_back(g->Slots[0].spec.SourceRe[0][at], g->Slots[0].spec.SourceIm[0][at]);
        }
        plain.Run();
        Auto_Phase(*g, PhaseMode::full, n);
        SCOPED_TRACE(trial);
        ASSERT_EQ(g->PivotPoint, plain.p);
        ASSERT_EQ(g->P2Point, plain.second);
        // Rows and work lines are float.
        EXPECT_NEAR(Wrapped(double(g->Phase0Deg) - plain.ph0), 0, 0.05);
        EXPECT_NEAR(double(g->Phase1Deg), plain.ph1, 0.01 * std::abs(plain.ph1) + 0.5);
        first_orders += plain.ph1 != 0.0 ? 1 : 0;
    }
    EXPECT_GT(first_orders, 20);
}

TEST(AutoPhase, FindsZeroOrderOfOneLine)
{
    // Height 100; the fit keeps the flanks of a line, so noise tells on it early.
    struct Case {
        double noise, median_limit;
    };
    for (const int n : {8192, 65536})
        for (const double half_width : {4.0, 20.0})
            for (const auto& [noise, median_limit] :
                 {Case{0.0, 0.5}, Case{0.03, 1.5}, Case{0.1, 3.5}, Case{1.0, 8.0}}) {
                SCOPED_TRACE(testing::Message() << n << " points, half width " << half_width << ", noise " << noise);
                std::vector<double> errors;
                for (unsigned trial = 0; trial < 25; ++trial) {
                    std::mt19937 engine(trial);
                    std::uniform_real_distribution<double> any(0.0, 1.0);
                    const double point = n * (0.1 + 0.8 * any(engine));
                    const Recipe recipe{.lines = {{point, 100, half_width}},
                                        .ph0_deg = 360.0 * any(engine) - 180.0,
                                        .noise = noise,
                                        .seed = trial + 100};
                    auto g = Spectrum(n, recipe);
                    Auto_Phase(*g, PhaseMode::full, n);
                    EXPECT_NEAR(g->PivotPoint, point, 1.0 + half_width / 4);
                    errors.push_back(std::abs(LeftAt(*g, recipe, point)));
                }
                EXPECT_LE(Median(errors), median_limit);
            }
}

TEST(AutoPhase, FindsBothOrdersFromTwoDistantLines)
{
    constexpr int kPoints = 65536;
    const std::vector<Line> lines{{9000, 60, 10}, {21000, 20, 8}, {40000, 100, 12}, {47000, 50, 9}, {58000, 70, 9}};
    for (const double noise : {0.0, 0.2}) {
        std::vector<double> errors;
        for (unsigned trial = 0; trial < 15; ++trial) {
            std::mt19937 engine(trial);
            std::uniform_real_distribution<double> any(-1.0, 1.0);
            const Recipe recipe{.lines = lines,
                                .ph0_deg = 180.0 * any(engine),
                                .ph1_deg = 170.0 * any(engine),
                                .noise = noise,
                                .zero_point = kPoints / 2,
                                .seed = trial + 1};
            auto g = Spectrum(kPoints, recipe);
            Auto_Phase(*g, PhaseMode::full, kPoints);
            EXPECT_NEAR(g->PivotPoint, 40000, 2);
            EXPECT_NEAR(g->P2Point, 9000, 3); // the outermost line on the farther side
            for (const Line& l : lines) errors.push_back(std::abs(LeftAt(*g, recipe, l.point)));
        }
        EXPECT_LE(Median(errors), 2.4) << noise;
        EXPECT_LE(*std::ranges::max_element(errors), 10.0) << noise;
    }
}

TEST(AutoPhase, SemiAutoUsesTheMarksOfTheUser)
{
    constexpr int kPoints = 16384;
    const Recipe recipe{.lines = {{3000, 100, 6}, {9000, 40, 6}, {13000, 50, 6}}, .ph0_deg = 60, .ph1_deg = -120};
    auto g = Spectrum(kPoints, recipe);
    g->PivotPoint = 9000;
    g->P2Point = 13000;
    // The user is near the phase at the pivot already.
    g->Phase0Deg = static_cast<float>(-Wrapped(recipe.ph0_deg + 9000 * recipe.ph1_deg / kPoints) + 15.0);
    Phase_Apply(*g, g->Phase0Deg, 0, kPoints);
    Auto_Phase(*g, PhaseMode::semi, kPoints);
    EXPECT_EQ(g->PivotPoint, 9000);
    EXPECT_EQ(g->P2Point, 13000);
    EXPECT_EQ(g->Slots[0].par.PhaseP0, 3000); // only recorded
    EXPECT_NEAR(LeftAt(*g, recipe, 9000), 0.0, 2.4);
    EXPECT_NEAR(LeftAt(*g, recipe, 13000), 0.0, 2.4);
}

TEST(AutoPhase, TheSecondPeakIsTheFartherOneAndNeverNear)
{
    struct Case {
        const char* name;
        std::vector<Line> lines;
        int second;
        double noise;
    };
    const Case cases[] = {
        {"left only", {{8000, 100, 4}, {2000, 50, 4}}, 2000, 0},
        {"right only", {{8000, 100, 4}, {14000, 50, 4}}, 14000, 0},
        {"both: the farther", {{8000, 100, 4}, {3000, 50, 4}, {14000, 50, 4}}, 14000, 0},
        {"equally far: the left", {{8000, 100, 4}, {3000, 50, 4}, {13000, 50, 4}}, 3000, 0},
        {"within ten times the noise: none", {{8000, 100, 4}, {3000, 2, 4}}, -1, 0.3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Recipe recipe{.lines = c.lines, .ph0_deg = 20, .ph1_deg = 50, .noise = c.noise};
        auto g = Spectrum(16384, recipe);
        Auto_Phase(*g, PhaseMode::full, 16384);
        EXPECT_EQ(g->PivotPoint, 8000);
        if (c.second >= 0) {
            EXPECT_NEAR(g->P2Point, c.second, 1);
            EXPECT_NEAR(LeftAt(*g, recipe, c.second), 0.0, 3.0);
        } else {
            EXPECT_EQ(g->Phase1Deg, 0.0F);
        }
    }
    auto near = Spectrum(16384, {.lines = {{8000, 100, 2}, {8099, 90, 2}}, .ph1_deg = 300});
    Auto_Phase(*near, PhaseMode::full, 16384);
    EXPECT_EQ(near->Phase1Deg, 0.0F);
}

TEST(AutoPhase, WorksAtBothEndsOfTheRow)
{
    for (const double point : {40.0, 130.0, 8192.0 - 130.0, 8192.0 - 40.0}) {
        SCOPED_TRACE(point);
        const Recipe recipe{.lines = {{point, 100, 5}}, .ph0_deg = -77};
        auto g = Spectrum(8192, recipe);
        Auto_Phase(*g, PhaseMode::full, 8192);
        EXPECT_NEAR(LeftAt(*g, recipe, point), 0.0, 5.0);
    }
}

TEST(AutoPhase, NeverGivesAPhaseThatIsNoNumber)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    const float huge = std::numeric_limits<float>::max(), tiny = std::numeric_limits<float>::denorm_min();
    for (const int n : {1, 2, 3, 4, 8, 63, 64, 1000})
        for (const float value : {0.0F, 1.0F, nan, inf, -inf, huge, tiny})
            for (const PhaseMode mode : {PhaseMode::full, PhaseMode::semi}) {
                auto g = Spectrum(n, {});
                auto re = g->Slots[0].spec.SourceRe[0];
                for (std::size_t i = 0; i < re.size(); i += 3) re[i] = value;
                g->PivotPoint = g->P2Point = 5000; // marks of a longer row
                Phase_Apply(*g, 0, 0, n);
                Auto_Phase(*g, mode, n);
                ASSERT_TRUE(std::isfinite(g->Phase0Deg) && std::isfinite(g->Phase1Deg)) << n << " " << value;
                ASSERT_LE(std::abs(g->Phase0Deg), 360.0F);
            }
    auto empty = std::make_unique<GlobalBlock>();
    Auto_Phase(*empty, PhaseMode::full, 100);
    EXPECT_EQ(empty->Phase0Deg, 0.0F);
}

TEST(CircleFit, FallsBackWhereThereIsNoCircle)
{
    auto g = Spectrum(1024, {});
    EXPECT_EQ(Circle_Fit_Phase(*g, 500, 1024, 90.0F), 90.0F);
    EXPECT_EQ(Circle_Fit_Phase(*g, 500, 1024, -90.0F), -90.0F);
}

} // namespace
} // namespace nmr::test
