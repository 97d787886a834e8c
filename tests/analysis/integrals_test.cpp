// Sums of regions, their edits, and the curves drawn from them.

#include "analysis/integrals.h"
#include "core/list_values.h"
#include "support/row_block.h"

#include <cmath>
#include <limits>

namespace nmr::test {
namespace {

/// One sum by its definition.
double PlainSum(const DataSet& set, const IntegralEntry& e)
{
    double sum = 0;
    for (int p = e.StartPoint; p >= e.EndPoint; --p)
        sum += double(set.spec.DataRe[0][static_cast<std::size_t>(p)]) / double(set.par.DispLeft) + double(e.B0) +
               double(e.B1) * (e.StartPoint - p) / set.par.POINT;
    return sum;
}

std::unique_ptr<GlobalBlock> Sample(double step = 0.01)
{
    // 1000 points of 0.01 ppm from 0 to 9.99 (or down from 0).
    return BlockOf(Lines(1000, {{200, 10, 3}, {500, 30, 4}, {520, 20, 3}}, 0.05).re,
                   {.first_ppm = 0, .step_ppm = step});
}

TEST(Integrals, AreSumsOfPointsWithTheirBaseLine)
{
    for (const double step : {0.01, -0.01}) {
        const auto g = Sample(step);
        DataSet& set = g->Slots[0];
        const double sign = step > 0 ? 1 : -1;
        ASSERT_EQ(Add_Integral(*g, sign * 4.5, sign * 5.5), 0);
        IntegralEntry& e = set.Integrals[0];
        EXPECT_EQ(e.StartPoint, 550); // the larger index whatever the direction
        EXPECT_EQ(e.EndPoint, 450);
        EXPECT_NEAR(IntegralStartPpm(set, e), sign * 5.5, 1e-5);
        EXPECT_NEAR(e.Value, PlainSum(set, e), 1e-5);
        double plain = 0;
        for (std::size_t p = 450; p <= 550; ++p) plain += double(set.spec.DataRe[0][p]);
        EXPECT_NEAR(e.Value, plain / double(set.par.DispLeft), 1e-5);
        const float before = e.Value;
        EXPECT_TRUE(Set_B0_B1(*g, 0, 0.25F, -0.5F));
        EXPECT_NEAR(e.Value, PlainSum(set, e), 1e-5);
        // The ramp ends at B1 * width / n: a closed sum.
        EXPECT_NEAR(e.Value - before, 101 * 0.25 - 0.5 / 1000 * (100 * 101 / 2), 1e-4);
        EXPECT_NEAR(Calc_Integral(*g, 0, 7.0F), PlainSum(set, e) + 7, 1e-5);
        EXPECT_FALSE(Set_B0_B1(*g, 0, 0.25F, -0.5F));
        EXPECT_FALSE(Set_B0_B1(*g, 0, std::numeric_limits<float>::infinity(), 0));
        // A reference on the axis moves the region along.
        for (double& x : set.spec.XAxis) x += 1;
        EXPECT_NEAR(IntegralStartPpm(set, e), sign * 5.5 + 1, 1e-5);
    }
}

TEST(Integrals, ADivisionKeepsTheSumAndTheBaseLine)
{
    const auto g = Sample();
    DataSet& set = g->Slots[0];
    Add_Integral(*g, 4.5, 5.5);
    Set_B0_B1(*g, 0, 0.125F, 4.0F);
    const float whole = set.Integrals[0].Value;
    EXPECT_FALSE(Divide_Integral(*g, 0, 4.5)) << "nothing left on one side";
    EXPECT_FALSE(Divide_Integral(*g, 0, 7));
    EXPECT_TRUE(Divide_Integral(*g, 0, 5.1));
    ASSERT_EQ(set.Integrals.size(), 2U);
    EXPECT_EQ(set.Integrals[1].EndPoint, set.Integrals[0].StartPoint + 1);
    EXPECT_NEAR(set.Integrals[0].Value + set.Integrals[1].Value, whole, 1e-4);
    EXPECT_EQ(set.IntegralRef, 1) << "the reference stays with the start";
}

TEST(Integrals, MovesAndEndsStayInTheRow)
{
    const auto g = Sample();
    DataSet& set = g->Slots[0];
    Add_Integral(*g, 4.5, 5.5);
    EXPECT_TRUE(Move_Integral(*g, 0, 1.0));
    EXPECT_EQ(set.Integrals[0].StartPoint, 650);
    EXPECT_NEAR(set.Integrals[0].Value, PlainSum(set, set.Integrals[0]), 1e-5);
    EXPECT_TRUE(Move_Integral(*g, 0, 100));
    EXPECT_EQ(set.Integrals[0].StartPoint, 999);
    EXPECT_EQ(set.Integrals[0].EndPoint, 899);
    EXPECT_FALSE(Move_Integral(*g, 0, 1));
    EXPECT_TRUE(Enlarge_Integral(*g, 0, IntegralEnd::end, 4));
    EXPECT_EQ(set.Integrals[0].EndPoint, 400);
    EXPECT_NEAR(set.Integrals[0].Value, PlainSum(set, set.Integrals[0]), 1e-5);
    EXPECT_TRUE(Enlarge_Integral(*g, 0, IntegralEnd::start, 3)); // beyond the other end
    EXPECT_EQ(set.Integrals[0].StartPoint, 400);
    EXPECT_EQ(set.Integrals[0].EndPoint, 300);
    EXPECT_FALSE(Move_Integral(*g, 5, 1));
    EXPECT_EQ(Add_Integral(*g, 12, 14), -1) << "beyond the axis";
    EXPECT_EQ(Add_Integral(*g, 9, 14), 1);
    EXPECT_EQ(set.Integrals[1].StartPoint, 999);
}

TEST(Integrals, TheReferenceFollowsItsRegion)
{
    const auto g = Sample();
    DataSet& set = g->Slots[0];
    for (const double ppm : {5.0, 3.0, 7.0}) Add_Integral(*g, ppm, ppm + 0.5);
    EXPECT_EQ(set.IntegralRef, 1) << "the first one added, behind the one at 3 ppm";
    EXPECT_TRUE(Set_Integral_Reference(set, 2, 3.0));
    const float value = set.Integrals[2].Value;
    const auto reference = [&] { return set.Integrals[static_cast<std::size_t>(set.IntegralRef)].Value; };
    Add_Integral(*g, 1, 2);
    EXPECT_EQ(reference(), value);
    Divide_Integral(*g, 1, 3.2);
    EXPECT_EQ(reference(), value);
    EXPECT_TRUE(Delete_Integral(*g, 0));
    EXPECT_EQ(reference(), value);
    EXPECT_NEAR(*ListedIntegral(set, static_cast<std::size_t>(set.IntegralRef)), 3, 1e-6);
    EXPECT_TRUE(Delete_Integral(*g, set.IntegralRef));
    EXPECT_EQ(set.IntegralRef, 0);
    EXPECT_FALSE(Delete_Integral(*g, 9));
    for (const double bad : {0.0, -1.0, std::nan("")}) EXPECT_FALSE(Set_Integral_Reference(set, 0, bad));
    EXPECT_EQ(set.IntegralScale, 3);
    Delete_All_Integrals(set);
    for (int i = 0; i < 200; ++i) EXPECT_GE(Add_Integral(*g, 1 + 0.01 * i, 1.005 + 0.01 * i), 0);
    EXPECT_EQ(Add_Integral(*g, 1, 2), -1);
    EXPECT_FALSE(Divide_Integral(*g, 5, 1.05));
    EXPECT_EQ(set.Integrals.size(), kMaxIntegrals);
}

TEST(Integrals, CurvesAreTheRunningSums)
{
    const auto g = Sample();
    DataSet& set = g->Slots[0];
    Add_Integral(*g, 4, 6);
    Set_B0_B1(*g, 0, 0.01F, -2.0F);
    const IntegralCurves curves = CurvesOf(*g);
    for (const int p : {600, 555, 500, 401, 400}) {
        IntegralEntry part = set.Integrals[0];
        part.EndPoint = p;
        EXPECT_NEAR(curves.At(set.Integrals[0], p), PlainSum(set, part), 1e-9);
    }
    EXPECT_NEAR(curves.Total(set.Integrals[0]), double(set.Integrals[0].Value), 1e-5);
    EXPECT_EQ(Find_Integral(set, 5), 0);
    EXPECT_EQ(Find_Integral(set, 7), -1);
    Add_Integral(*g, 4.9, 5.1);
    EXPECT_EQ(Find_Integral(set, 5), 0) << "the narrower";
    EXPECT_EQ(Find_Integral(set, 4.5), 1);
}

TEST(Integrals, BadRegionsGiveNoFault)
{
    const auto g = Sample();
    DataSet& set = g->Slots[0];
    set.Integrals.push_back({.StartPoint = 5000, .EndPoint = -3, .Label = {}}); // of a longer row
    set.Integrals.push_back({.StartPoint = 3, .EndPoint = 30, .Label = {}});
    Calc_All_Integrals(*g);
    EXPECT_TRUE(std::isfinite(set.Integrals[0].Value));
    EXPECT_EQ(set.Integrals[1].Value, 0);
    EXPECT_EQ(CurvesOf(*g).Total(set.Integrals[1]), 0);
    set.par.DispLeft = 0;
    Calc_All_Integrals(*g);
    EXPECT_EQ(set.Integrals[0].Value, 0);
    auto empty = std::make_unique<GlobalBlock>();
    EXPECT_EQ(Add_Integral(*empty, 1, 2), -1);
    EXPECT_EQ(Find_Integral(empty->Slots[0], 1), -1);
    EXPECT_EQ(Calc_Integral(*empty, 0, 3), 3);
}

} // namespace
} // namespace nmr::test
