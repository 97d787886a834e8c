// The robust automatic phase on lines of known phase.

#include "analysis/phase.h"
#include "analysis/robust_phase.h"
#include "support/row_block.h"

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>

namespace nmr::test {
namespace {

/// Lines out of phase: i turns by -(p0 + i * p1 / n) degrees; dispersion as the transform gives it; a base line rolls
/// below them.
std::unique_ptr<GlobalBlock> OutOfPhase(const LineRow& row, double p0, double p1, double roll)
{
    std::vector<double> re, im;
    const auto n = static_cast<double>(row.re.size());
    for (std::size_t i = 0; i < row.re.size(); ++i) {
        const double turn = -(p0 + static_cast<double>(i) * p1 / n) * std::numbers::pi / 180;
        const auto z = std::complex(row.re[i], row.im[i]) * std::polar(1.0, turn) +
                       std::polar(roll, 5 * static_cast<double>(i) / n);
        re.push_back(z.real());
        im.push_back(z.imag());
    }
    return BlockOf(re, {}, im);
}

double LeftAt(const GlobalBlock& g, double p0, double p1, double point)
{
    const double n = g.Slots[0].par.POINT;
    return std::remainder(p0 + point * p1 / n - double(g.Phase0Deg) - (point - g.PivotPoint) * double(g.Phase1Deg) / n,
                          360.0);
}

struct Sample {
    const char* name;
    std::vector<LineOf> lines;
    double noise;
    double p0, p1;
    const char* program;
    double tolerance;
    double roll = 0; ///< height of a base line of no phase
};

const Sample kSamples[] = {
    {"few lines", {{3000, 60, 4}, {9000, 20, 4}, {12000, 100, 5}}, 0.1, 140, -90, "zg30", 3},
    {"large first order", {{2000, 60, 4}, {5000, 90, 4}, {9000, 20, 4}, {14000, 70, 5}}, 0.1, -20, 700, "zg30", 4},
    {"both signs", {{3000, 60, 4}, {7000, -80, 4}, {10000, 30, 4}, {13000, -50, 5}}, 0.3, 70, 120, "dept135", 4},
    {"both signs, seen from the row",
     {{2000, 60, 4},
      {3700, -40, 4},
      {7000, -80, 4},
      {7700, 50, 4},
      {10000, 90, 4},
      {11900, -60, 4},
      {13000, -50, 5},
      {14500, 70, 4}},
     0.3,
     70,
     60,
     "",
     4},
    {"rolling base line", {{3000, 60, 4}, {6000, 90, 4}, {9000, 20, 4}, {13000, 100, 5}}, 0.1, 50, 60, "zg30", 4, 8},
    {"broad", {{3000, 60, 40}, {8000, 40, 60}, {11000, 100, 60}}, 0.5, -100, 40, "", 8},
    {"solvent", {{8000, 3000, 5}, {3000, 60, 4}, {5000, 80, 4}, {13000, 100, 5}}, 0.1, 100, 80, "zgpr", 6},
    {"uneven shim",
     {{3000, 60, 4},
      {3006, 30, 4},
      {3009, 10, 4},
      {7000, 80, 4},
      {7006, 40, 4},
      {7009, 13, 4},
      {13000, 90, 4},
      {13006, 45, 4},
      {13009, 15, 4}},
     0.1,
     80,
     -110,
     "",
     3},
    {"noise", {{3000, 60, 5}, {5000, 90, 5}, {9000, 70, 5}, {13000, 100, 5}}, 4, 30, -60, "", 8},
};

TEST(RobustPhase, PhasesLinesOfAllKinds)
{
    for (const Sample& s : kSamples) {
        SCOPED_TRACE(s.name);
        const auto g = OutOfPhase(Lines(16384, s.lines, s.noise), s.p0, s.p1, s.roll);
        g->Slots[0].par.PulseProg = s.program;
        const double quality = Auto_Phase_Robust(*g, 16384);
        EXPECT_GT(quality, 35); // lines of an uneven shim disagree
        EXPECT_LE(quality, 100);
        const double half = std::abs(LeftAt(*g, s.p0, s.p1, s.lines[0].point)) > 90 ? 180 : 0; // signs of DEPT are free
        if (std::string(s.program) != "dept135" && std::string(s.name).find("signs") == std::string::npos) {
            EXPECT_EQ(half, 0) << "lines point up";
        }
        for (const LineOf& line : s.lines)
            EXPECT_NEAR(std::remainder(LeftAt(*g, s.p0, s.p1, line.point) - half, 360.0), 0, s.tolerance) << line.point;
    }
}

TEST(RobustPhase, LaterPressesChangeNothingAndComeBack)
{
    for (const Sample& s : kSamples) {
        SCOPED_TRACE(s.name);
        const auto g = OutOfPhase(Lines(16384, s.lines, s.noise), s.p0, s.p1, s.roll);
        g->Slots[0].par.PulseProg = s.program;
        Auto_Phase_Robust(*g, 16384);
        const float first0 = g->Phase0Deg, first1 = g->Phase1Deg;
        Auto_Phase_Robust(*g, 16384); // from the same source
        EXPECT_EQ(g->Phase0Deg, first0);
        EXPECT_EQ(g->Phase1Deg, first1);
        for (const char* press : {"second", "third"}) {
            SCOPED_TRACE(press);
            CopyDataToSource(g->Slots[0]); // fixed
            g->PhasedRows.clear();         // the search itself is asked
            Auto_Phase_Robust(*g, 16384);
            EXPECT_EQ(g->Phase0Deg, 0);
            EXPECT_EQ(g->Phase1Deg, 0);
        }
        g->PivotPoint = 8192;
        Phase_Apply(*g, 20, 0, 16384); // by hand
        CopyDataToSource(g->Slots[0]);
        Auto_Phase_Robust(*g, 16384);
        for (const LineOf& line : s.lines) EXPECT_NEAR(LeftAt(*g, -20, 0, line.point), 0, 1) << line.point;
    }
}

TEST(RobustPhase, KnowsWhatItHasPhased)
{
    // Lines that lie over each other: two phases cost about the same, and searches alone wander between them.
    std::mt19937 engine(3);
    std::uniform_real_distribution<double> any(0, 1);
    for (int kind = 0; kind < 40; ++kind) {
        SCOPED_TRACE(kind);
        std::vector<LineOf> lines;
        for (int k = 0; k < 6; ++k)
            lines.push_back({2000 + 12000 * any(engine), 100 * any(engine), 50 + 500 * any(engine)});
        const auto g = OutOfPhase(Lines(16384, lines, 1.0), 360 * any(engine), 300 * any(engine), 0);
        const double quality = Auto_Phase_Robust(*g, 16384);
        for (int press = 2; press < 4; ++press) {
            CopyDataToSource(g->Slots[0]);
            EXPECT_EQ(Auto_Phase_Robust(*g, 16384), quality);
            EXPECT_EQ(g->Phase0Deg, 0);
            EXPECT_EQ(g->Phase1Deg, 0);
        }
    }
}

TEST(RobustPhase, NeverGivesAPhaseThatIsNoNumber)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (const int n : {0, 1, 2, 3, 8, 15, 16, 100, 5000})
        for (const float value :
             {0.0F, 1.0F, -2.0F, nan, inf, std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min()})
            for (const std::size_t step : {1U, 3U, 100U, 5000U}) { // the last a single spike
                const auto g = BlockOf(std::vector<double>(static_cast<std::size_t>(n)));
                auto re = g->Slots[0].spec.SourceRe[0];
                for (std::size_t i = 0; i < re.size(); i += step) re[i] = value;
                const double quality = Auto_Phase_Robust(*g, n);
                ASSERT_TRUE(std::isfinite(g->Phase0Deg) && std::isfinite(g->Phase1Deg) && std::isfinite(quality));
            }
    auto empty = std::make_unique<GlobalBlock>();
    EXPECT_EQ(Auto_Phase_Robust(*empty, 100), 0);
}

TEST(RobustPhase, KnowsTheExperimentsOfBothSigns)
{
    struct Case {
        const char* text;
        LineSigns signs;
    };
    for (const Case& c : {Case{"dept135.jxp", LineSigns::alternate}, Case{"DEPTQ", LineSigns::alternate},
                          Case{"jmod", LineSigns::alternate}, Case{"apt_13c", LineSigns::alternate},
                          Case{"zgpg30", LineSigns::by_evidence}, Case{"", LineSigns::by_evidence}}) {
        ParamBlock program, mode;
        program.PulseProg = mode.EXMOD = c.text;
        EXPECT_EQ(Expected_Signs(program), c.signs) << c.text;
        EXPECT_EQ(Expected_Signs(mode), c.signs) << c.text;
    }
}

} // namespace
} // namespace nmr::test
