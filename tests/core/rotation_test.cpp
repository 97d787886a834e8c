#include "core/rotation.h"

#include "core/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <random>
#include <vector>

using namespace nmr;

namespace {

struct Row {
    std::vector<float> re, im;
    bool operator==(const Row& other) const // by bits: the sign of 0 and the kind of NaN count
    {
        const auto same = [](const std::vector<float>& a, const std::vector<float>& b) {
            return a.size() == b.size() &&
                   (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
        };
        return same(re, other.re) && same(im, other.im);
    }
};

/// The formula as it is told, point by point.
Row PlainRotation(const Row& source, std::int32_t n, const PhaseTerms& phase)
{
    Row row = source;
    const double ph0 = phase.ph0_deg, ph1 = phase.ph1_deg;
    for (std::int32_t i = 0; i < n; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const double t = (ph0 + (static_cast<double>(i) - phase.pivot) * ph1 / n) * kDegToRad;
        const double re = source.re[at], im = source.im[at];
        row.re[at] = static_cast<float>(re * std::cos(t) - im * std::sin(t));
        row.im[at] = static_cast<float>(re * std::sin(t) + im * std::cos(t));
    }
    return row;
}

Row RandomRow(std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<float> noise(0, 1000);
    Row row{std::vector<float>(count), std::vector<float>(count)};
    for (auto* part : {&row.re, &row.im})
        for (std::size_t i = 0; i < count; ++i) {
            switch (random() % 16) {
            case 0:
                (*part)[i] = 0.0F;
                break;
            case 1:
                (*part)[i] = -0.0F;
                break;
            case 2:
                (*part)[i] = std::bit_cast<float>(static_cast<std::uint32_t>(random() & 0x807FFFFFU));
                break; // denormal
            case 3:
                (*part)[i] = noise(random) * 1e30F;
                break;
            default:
                (*part)[i] = noise(random);
            }
        }
    return row;
}

Row Rotate(const Row& source, std::int32_t n, const PhaseTerms& phase)
{
    Row row = source;
    RotateRow(source.re, source.im, row.re, row.im, n, phase);
    return row;
}

} // namespace

TEST(Rotation, GivesTheBitsOfThePlainFormula)
{
    struct Case {
        const char* name;
        PhaseTerms phase;
    };
    const Case cases[] = {
        {"nothing", {0, 0, 0}},
        {"zero order", {37.25F, 0, 100}},
        {"right angle", {90, 0, 0}},
        {"negative zero", {-0.0F, 0, 50}},
        {"half turn", {-180, -0.0F, 700}},
        {"both orders", {12.3F, -45.6F, 333}},
        {"first order alone", {0, 1, 0}},
        {"delay of 70 points", {5, 25200, 512}},
        {"pivot outside", {-71, 360, 5000}},
        {"pivot before the row", {3, -90, -1}},
        {"wild", {1e6F, 1e7F, 10}},
    };
    for (const Case& c : cases)
        for (const std::int32_t n : {1, 2, 63, 64, 65, 1000, 4096}) {
            SCOPED_TRACE(testing::Message() << c.name << ", " << n << " points");
            const Row source = RandomRow(static_cast<std::size_t>(n), static_cast<unsigned>(n));
            const Row expected = PlainRotation(source, n, c.phase);
            EXPECT_TRUE(Rotate(source, n, c.phase) == expected);
            Row in_place = source;
            RotateRow(in_place.re, in_place.im, in_place.re, in_place.im, n, c.phase);
            EXPECT_TRUE(in_place == expected) << "in place";
        }
}

TEST(Rotation, GivesTheBitsOfThePlainFormulaOnARowOfFullLength)
{
    std::mt19937 random(5);
    const Row source = RandomRow(131072, 6);
    for (int trial = 0; trial < 6; ++trial) {
        const PhaseTerms phase{static_cast<float>(random() % 3600) / 10 - 180,
                               static_cast<float>(random() % 72000) / 10 - 3600,
                               static_cast<std::int32_t>(random() % 131072)};
        EXPECT_TRUE(Rotate(source, 131072, phase) == PlainRotation(source, 131072, phase)) << trial;
    }
}

TEST(Rotation, LeavesPointsBeyondTheRowAndUnusableRowsAlone)
{
    const Row source = RandomRow(100, 7);
    Row row = Rotate(source, 60, {30, 20, 0});
    EXPECT_TRUE(std::equal(row.re.begin() + 60, row.re.end(), source.re.begin() + 60));
    EXPECT_TRUE(Rotate(source, 0, {30, 20, 0}) == source);
    EXPECT_TRUE(Rotate(source, -5, {30, 20, 0}) == source);
    RotateRow({}, {}, {}, {}, 1000, {30, 20, 0}); // spans shorter than n are not run over
    Row odd = RandomRow(3, 8);
    odd.re = {INFINITY, NAN, 1};
    odd.im = {1, 1, INFINITY};
    EXPECT_TRUE(std::isnan(Rotate(odd, 3, {30, 20, 0}).re[1]));
}
