// What lists show of peaks and integrals.

#include "core/list_values.h"
#include "support/row_block.h"

namespace nmr::test {
namespace {

TEST(ListValues, APeakStandsOnTheSampleOfItsPosition)
{
    std::vector<double> re(1000);
    for (std::size_t i = 0; i < re.size(); ++i) re[i] = 1.0 + static_cast<double>(i);
    for (const double step : {0.001, -0.001}) {
        const auto g = BlockOf(re, {.first_ppm = 3, .step_ppm = step});
        const DataSet& set = g->Slots[0];
        const auto hz = [&](double point) { return point * step * 500; };
        struct Case {
            const char* name;
            PeakEntry peak;
            std::int32_t index;
        };
        const Case cases[] = {
            {"stored index one too high", {.Point = 801, .Position = hz(800)}, 800},
            {"stored index equal to the number of points", {.Point = 1000, .Position = hz(999)}, 999},
            {"position between samples", {.Point = 10, .Position = hz(10.4)}, 10},
            {"only the index is filled", {.Point = 300}, 300},
            {"position outside the row", {.Point = 5, .Position = hz(-40)}, 5},
            {"index below the row", {.Point = -7, .Position = hz(-40)}, 0},
        };
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << c.name << ", step " << step);
            EXPECT_EQ(PeakIndex(set, c.peak), c.index);
            EXPECT_EQ(PeakAmplitude(set, 0, c.peak), c.index + 1.0);
            EXPECT_NEAR(PeakHeightPercent(set, 0, c.peak), (c.index + 1.0) / 10.0, 1e-9); // DispLeft is 1000
        }
        EXPECT_EQ(PeakAmplitude(set, 0, {.Point = 3, .Amplitude = 42}), 42); // as a file gave it
        EXPECT_EQ(PeakAmplitude(set, 7, {.Point = 3}), 0);                   // no such row
    }
    const DataSet empty;
    EXPECT_EQ(PeakIndex(empty, {.Point = 9}), 0);
    EXPECT_EQ(PeakHeightPercent(empty, 0, {.Point = 9}), 0);
    EXPECT_FALSE(ListedIntegral(empty, 0));
}

TEST(ListValues, TheTopOfAParabolaIsFound)
{
    for (const double sign : {1.0, -1.0})
        for (const double offset : {-0.5, -0.2, 0.0, 0.4}) {
            std::vector<double> re(21);
            for (std::size_t i = 0; i < re.size(); ++i) re[i] = sign * (50 - std::pow(double(i) - 10 - offset, 2));
            const auto g = BlockOf(re, {.first_ppm = 5, .step_ppm = -0.01});
            const PeakTop top = InterpolatedTop(g->Slots[0], 0, {.Point = 10, .Position = -0.1 * 500});
            EXPECT_NEAR(top.ppm, 5 - 0.01 * (10 + offset), 1e-7);
            EXPECT_NEAR(top.hz, 500 * top.ppm, 1e-9);
            EXPECT_NEAR(top.amplitude, sign * 50, 1e-4);
            // At an end and on a slope the sample stands for itself.
            EXPECT_NEAR(InterpolatedTop(g->Slots[0], 0, {.Point = 0}).ppm, 5, 1e-9);
            EXPECT_NEAR(InterpolatedTop(g->Slots[0], 0, {.Point = 4, .Position = -0.04 * 500}).ppm, 4.96, 1e-9);
        }
}

TEST(ListValues, IntegralsRelateToTheReference)
{
    DataSet set;
    set.spec.XAxis = {10.0, 10.5};
    for (const float value : {4.0F, 2.0F, -1.0F})
        set.Integrals.push_back({.Start = 0.5F, .End = -1.5F, .Value = value, .Label = {}});
    set.IntegralRef = 1;
    set.IntegralScale = 3;
    EXPECT_DOUBLE_EQ(*ListedIntegral(set, 0), 6);
    EXPECT_DOUBLE_EQ(*ListedIntegral(set, 1), 3);
    EXPECT_DOUBLE_EQ(*ListedIntegral(set, 2), -1.5);
    EXPECT_DOUBLE_EQ(IntegralStartPpm(set, set.Integrals[0]), 10.5);
    EXPECT_DOUBLE_EQ(IntegralEndPpm(set, set.Integrals[0]), 8.5);
    set.Integrals[1].Value = 0;
    EXPECT_FALSE(ListedIntegral(set, 0));
    for (const int reference : {-1, 3}) {
        set.IntegralRef = static_cast<std::int16_t>(reference);
        EXPECT_FALSE(ListedIntegral(set, 0));
    }
}

} // namespace
} // namespace nmr::test
