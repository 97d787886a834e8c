#include "core/axis_ticks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace nmr;

TEST(AxisTicks, StepsOfKnownRanges)
{
    struct Case {
        double a, b, first, step, factor;
    };
    const Case cases[] = {
        {0, 10, 0, 1, 1},        {10, 0, 10, -1, 1},           {0, 5, 0, 1, 10},         {0, 0.5, 0, 0.1, 10},
        {0, 0.25, 0, 0.05, 5},   {0, 2.5, 0, 0.5, 5},          {0, 2, 0, 0.4, 4},        {0, 1.5, 0, 0.2, 2},
        {0, 1.4, 0, 0.1, 1},     {0, 1000, 0, 100, 1},         {12.5, -0.5, 12, -1, 1},  {-0.75, 0.05, -0.7, 0.1, 10},
        {200, -10, 200, -40, 4}, {-3.2, -4.1, -3.2, -0.1, 10}, {0, 0.001, 0, 0.0001, 1}, {4000, 0, 4000, -500, 5},
        {7.3, 7.3, 0, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.a << " to " << c.b);
        const Ticks ticks = AutoTic(c.a, c.b);
        EXPECT_DOUBLE_EQ(ticks.first, c.first);
        EXPECT_EQ(ticks.step, c.step);
        EXPECT_EQ(ticks.factor, c.factor);
    }
    EXPECT_EQ(AutoTic(0, INFINITY).step, 0);
    EXPECT_EQ(AutoTic(NAN, 1).step, 0);
}

TEST(AxisTicks, AnyRangeGetsFiveToFifteenTicksWithTheFirstInside)
{
    std::mt19937 random(4);
    std::uniform_real_distribution<double> end(-1, 1), scale(-8, 8);
    for (int i = 0; i < 20000; ++i) {
        const double size = std::pow(10.0, scale(random));
        const double a = end(random) * size, b = end(random) * size;
        const Ticks ticks = AutoTic(a, b);
        ASSERT_GT(ticks.step * (b - a), 0);
        const double count = (b - a) / ticks.step;
        EXPECT_GE(count, 4.99);
        EXPECT_LE(count, 15.01);
        const double offset = (ticks.first - a) / ticks.step;
        EXPECT_GE(offset, -0.00011);
        EXPECT_LE(offset, 1.0);
    }
}

TEST(AxisTicks, DigitsFloorAndDecimalsTellNeighboursApart)
{
    struct Case {
        double step;
        int digits, decimals;
    };
    for (const Case& c : {Case{1000, 3, 0},
                          {999, 2, 0},
                          {1, 0, 0},
                          {0.5, -1, 1},
                          {0.25, -1, 2},
                          {-0.1, -1, 1},
                          {2.5, 0, 1},
                          {25, 1, 0},
                          {0.001, -3, 3},
                          {0.00025, -4, 5},
                          {0, 0, 0},
                          {0.00001, -5, 5}}) {
        EXPECT_EQ(Digits(c.step), c.digits) << c.step;
        EXPECT_EQ(TickDecimals(c.step), c.decimals) << c.step;
    }
}
