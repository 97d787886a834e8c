// The phase of single lines, and the slow part of a row, against the formulas that made them.

#include "analysis/line_phases.h"
#include "analysis/robust_phase.h"
#include "analysis/slow_part.h"
#include "analysis/tail_phases.h"
#include "support/row_block.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace nmr::test {
namespace {

using Complex = std::complex<double>;

struct Row {
    std::vector<float> re, im, magnitude;
    explicit Row(const std::vector<Complex>& z)
    {
        for (const Complex& v : z) {
            re.push_back(static_cast<float>(v.real()));
            im.push_back(static_cast<float>(v.imag()));
            magnitude.push_back(static_cast<float>(std::abs(v)));
        }
    }
};

Complex Turned(double degrees)
{
    return std::polar(1.0, degrees * std::numbers::pi / 180);
}

TEST(LinePhases, FindEachLineWhateverItStandsOn)
{
    struct Case {
        const char* name;
        double half_width;
        Complex base, slope; ///< over the height; slope over the row
        double split;        ///< two lines in one, half widths apart
        double side, noise;
        double tolerance; ///< degrees
    };
    const Case cases[] = {
        {"narrow", 1.5, 0, 0, 0, 1, 0, 0.1},
        {"broad", 150, 0, 0, 0, 1, 0, 0.1},
        {"on a base line", 5, {0.2, -0.3}, 0, 0, 1, 0, 0.1},
        {"on a slope", 40, {-0.1, 0.1}, {3, -2}, 0, 1, 0, 0.5},
        {"not a Lorentzian, but even", 8, 0.1, 0, 1.2, 1, 0, 3},
        {"mirrored", 6, {0.1, 0.1}, 0, 0, -1, 0, 0.1},
        {"noisy", 6, 0, 0, 0, 1, 0.01, 4},
    };
    constexpr int n = 8192;
    for (const Case& c : cases)
        for (const double angle : {0.0, 37.0, 90.0, 179.0, -120.0}) {
            SCOPED_TRACE(testing::Message() << c.name << " at " << angle);
            std::mt19937 engine(3);
            std::normal_distribution<double> normal(0.0, 1.0);
            const double at = 3000.37;
            std::vector<Complex> z;
            for (int i = 0; i < n; ++i) {
                Complex line = 0;
                for (const double off : {-c.split / 2, c.split / 2})
                    line += 0.5 / Complex(1, c.side * ((i - at) / c.half_width - off));
                const double re = c.noise * normal(engine);
                z.push_back(Turned(angle) * line + c.base + c.slope * ((i - at) / n) +
                            Complex(re, c.noise * normal(engine)));
            }
            const Row row(z);
            const auto lines = Find_Line_Phases({row.re, row.im, row.magnitude}, 0.5, c.noise, 10);
            ASSERT_EQ(lines.size(), 1U);
            EXPECT_NEAR(lines[0].point, at, 0.1 * c.half_width);
            EXPECT_NEAR(std::remainder(lines[0].angle_deg - angle, 360.0), 0, c.tolerance);
            EXPECT_EQ(lines[0].side, c.side);
            if (c.split != 0 || c.noise != 0) continue;
            EXPECT_NEAR(lines[0].half_width, c.half_width, 0.02 * c.half_width);
            EXPECT_NEAR(lines[0].height, 1, 0.02);
            EXPECT_LT(lines[0].misfit, 0.01);
        }
}

TEST(TailPhases, TellTheGroupWhateverItsShape)
{
    struct Part {
        double off, height, half_width; ///< points
    };
    struct Case {
        const char* name;
        std::vector<Part> parts;
        double cut = 0; ///< share of the row's time that was recorded; 0: all of it
        Complex base = 0, slope = 0;
        double noise = 0;
        double tolerance = 0.5; ///< degrees
    };
    const Case cases[] = {
        {"line", {{0, 1, 5}}},
        {"pointing down", {{0, -1, 5}}},
        {"doublet", {{-12, 1, 5}, {12, 0.9, 5}}},
        {"uneven shim", {{0, 1, 5}, {6, 0.5, 5}, {11, 0.2, 5}}, 0, 0, 0, 0, 1.5},
        {"sharp on broad", {{0, 1, 3}, {20, 0.4, 30}}, 0, 0, 0, 0, 4},
        {"ringing", {{0, 1, 2}}, 0.25, 0, 0, 0, 1.5},
        {"on a slope", {{0, 1, 5}}, 0, {0.04, -0.06}, {0.2, -0.4}, 0, 1},
        {"noisy", {{0, 1, 5}}, 0, 0, 0, 0.01, 4},
    };
    constexpr int n = 8192;
    for (const Case& c : cases)
        for (const double angle : {0.0, 37.0, 90.0, -120.0}) {
            SCOPED_TRACE(testing::Message() << c.name << " at " << angle);
            std::mt19937 engine(5);
            std::normal_distribution<double> normal(0.0, 1.0);
            std::vector<Complex> z;
            for (int i = 0; i < n; ++i) {
                Complex group = 0;
                for (const Part& p : c.parts) {
                    const double off = i - 3000.37 - p.off, time = 2 * std::numbers::pi * c.cut;
                    const Complex end = c.cut > 0 ? std::polar(std::exp(-p.half_width * time), -off * time) : 0;
                    group += p.height * (1.0 - end) / Complex(1, off / p.half_width);
                }
                const double re = c.noise * normal(engine);
                z.push_back(Turned(angle) * group + c.base + c.slope * ((i - 3000.0) / n) +
                            Complex(re, c.noise * normal(engine)));
            }
            const Row row(z);
            const auto groups = Find_Tail_Phases({row.re, row.im, row.magnitude}, 0.5, 1);
            ASSERT_EQ(groups.size(), 1U);
            const double expected = c.parts[0].height < 0 ? angle + 180 : angle;
            EXPECT_NEAR(std::remainder(groups[0].angle_deg - expected, 360.0), 0, c.tolerance);
            EXPECT_LT(groups[0].error_deg, 2 * c.tolerance + 1);
        }
}

TEST(LinePhases, OddRowsGiveNoFault)
{
    for (const std::size_t n : {0U, 1U, 2U, 3U, 5U, 100U})
        for (const float value : {0.0F, 1.0F, INFINITY, NAN, 3e38F}) {
            std::vector<float> row(n, 0.0F);
            for (std::size_t i = 1; i < n; i += 2) row[i] = value;
            for (const LinePhase& l : Find_Line_Phases({row, row, row}, 0.5, 0.0, 10))
                EXPECT_TRUE(std::isfinite(l.angle_deg) && std::isfinite(l.misfit));
            for (const TailPhase& t : Find_Tail_Phases({row, row, row}, 0.5, 10))
                EXPECT_TRUE(std::isfinite(t.angle_deg) && std::isfinite(t.error_deg));
            std::vector<float> other = row;
            Subtract_Slow_Part(row, other, {});
        }
}

TEST(SlowPart, GoesAndLeavesTheLines)
{
    constexpr std::size_t n = 32768;
    const std::vector<LinePhase> lines{{.point = 9000, .half_width = 4, .height = 1, .angle_deg = 70},
                                       {.point = 20000, .half_width = 300, .height = 0.5, .angle_deg = -20}};
    std::vector<Complex> alone, rolling;
    for (std::size_t i = 0; i < n; ++i) {
        const auto x = static_cast<double>(i);
        Complex z = 0;
        for (const LinePhase& l : lines) z += l.height * Turned(l.angle_deg) / Complex(1, (x - l.point) / l.half_width);
        alone.push_back(z);
        rolling.push_back(z + Complex(0.3 * std::cos(x / 6000), 0.2 + 0.1 * std::sin(x / 5000)));
    }
    Row row(rolling);
    Subtract_Slow_Part(row.re, row.im, lines);
    double squares = 0;
    for (std::size_t i = 0; i < n; ++i) squares += std::norm(Complex(row.re[i], row.im[i]) - alone[i]);
    EXPECT_LT(std::sqrt(squares / n), 0.01); // 0.35 before
}

TEST(RobustPhase, TheQualityTellsWhatToBelieve)
{
    struct Case {
        const char* name;
        std::vector<LineOf> lines;
        double noise, least, most;
    };
    const Case cases[] = {
        {"sharp lines over the row", {{3000, 60, 4}, {8000, 90, 4}, {12000, 100, 5}, {14000, 50, 5}}, 0.1, 70, 100},
        {"noise alone", {}, 1, 0, 20},
        {"lines half lost in noise", {{3000, 3, 4}, {12000, 4, 5}}, 1, 0, 60},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const LineRow row = Lines(16384, c.lines, c.noise);
        const auto g = BlockOf(row.re, {}, row.im);
        const double quality = Auto_Phase_Robust(*g, 16384);
        EXPECT_GE(quality, c.least);
        EXPECT_LE(quality, c.most);
    }
}

} // namespace
} // namespace nmr::test
