#include "core/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <limits>
#include <random>

using namespace nmr;

TEST(Numbers, PatternsGiveTheTextThatFilesAndListsShow)
{
    struct Case {
        const char* pattern;
        double value;
        const char* text;
    };
    const Case cases[] = {
        {"####0.0###", 7.26, "7.26"},
        {"####0.0###", 12345.67894, "12345.6789"},
        {"####0.0###", 0.99996, "1.0"},
        {"####0.0###", 7, "7.0"},
        {"#####0.0############", 400.1324710093, "400.1324710093"},
        {"###0.00", 8002.6, "8002.60"},
        {"###0.00", 0.005, "0.01"},
        {"###0.00", 1.005, "1.01"}, // the binary value lies below: the decimal text decides
        {"###0.00", -1.005, "-1.01"},
        {"###0.00", -0.001, "0.00"},
        {"########0", 131072, "131072"},
        {"########0", 2.5, "3"},
        {"########0", -0.5, "-1"},
        {"########0", 0.4999999, "0"},
        {"##0", 1234567, "1234567"}, // places to the left never cut
        {"#####", 0, ""},
        {"#####", 16, "16"},
        {"###.", 4, "4."},
        {"###.", 0, "."},
        {"##0.", 4, "4."},
        {"####.##########", 400, "400."},
        {"####.##########", 0.25, ".25"},
        {"#0.000", 0.0005, "0.001"},
        {"0000", 17, "0017"},
        {"########0.00000", 1e15, "1000000000000000.00000"},
        {"##########0.0#####", 1e-7, "0.0"},
        {"#.#####E+##", 0.001234567, "1.23457E-3"},
        {"#.#####E+##", 9.999999, "1.E+1"},
        {"#.#####E+##", 0, "0.E+0"},
        {"0.0##E+##", 12345, "1.235E+4"}, // half away from zero
        {"0.0##E+##", -1, "-1.0E+0"},
        {"0.000E+00", 6.02214076e23, "6.022E+23"},
        {"0.0E-00", 1500, "1.5E03"},
        {"####0.0### ppm", 7.26, "7.26 ppm"},
        {"Start=####0.0## s", -1.5, "Start=-1.5 s"},
        {"Ver. @", 4.25, "Ver. 4.25"},
        {"0.0", std::numeric_limits<double>::quiet_NaN(), "NaN"},
        {"0.0", -std::numeric_limits<double>::infinity(), "-Inf"},
        {"", 0.1, "0.1"},
        {"none", 3, "none"},
    };
    for (const Case& c : cases) EXPECT_EQ(FormatNumber(c.pattern, c.value), c.text) << c.pattern << " of " << c.value;
}

TEST(Numbers, AFormattedNumberStandsWithinHalfAPlaceOfTheValue)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> mantissa(-1, 1);
    std::uniform_int_distribution<int> exponent(-6, 9);
    for (int i = 0; i < 20000; ++i) {
        const double value = mantissa(random) * std::pow(10.0, exponent(random));
        const auto fixed = ParseNumber(FormatNumber("#####0.0###", value));
        const auto scientific = ParseNumber(FormatNumber("0.0####E+##", value));
        ASSERT_TRUE(fixed && scientific) << value;
        EXPECT_LE(std::abs(*fixed - value), 0.5e-4 + std::abs(value) * 1e-15) << value;
        EXPECT_LE(std::abs(*scientific - value), std::abs(value) * 0.5001e-5) << value;
    }
}

TEST(Numbers, RoundsHalvesToTheEvenNeighbourAndSaturates)
{
    struct Case {
        double value;
        std::int32_t whole;
    };
    const double inf = std::numeric_limits<double>::infinity();
    for (const Case& c : {Case{0.5, 0},
                          {1.5, 2},
                          {2.5, 2},
                          {-0.5, 0},
                          {-1.5, -2},
                          {2.4999999, 2},
                          {1e10, INT32_MAX},
                          {-inf, INT32_MIN},
                          {std::nan(""), 0},
                          {2147483646.5, 2147483646}})
        EXPECT_EQ(RoundHalfEven(c.value), c.whole) << c.value;
}

TEST(Numbers, ReadsOneNumberOrNothing)
{
    struct Case {
        const char* text;
        std::optional<double> number;
        std::optional<std::int64_t> integer;
    };
    const Case cases[] = {
        {"42", 42, 42},
        {" +42\r\n", 42, 42},
        {"-7", -7, -7},
        {"1e3", 1000, {}},
        {".5", 0.5, {}},
        {"4.", 4, {}},
        {"1e-400", 0, {}},
        {"1e400", {}, {}},
        {"1D3", {}, {}},
        {"1,5", {}, {}},
        {"1 2", {}, {}},
        {"+-1", {}, {}},
        {"++1", {}, {}},
        {"nan", {}, {}},
        {"inf", {}, {}},
        {"0x10", {}, {}},
        {"", {}, {}},
        {"+", {}, {}},
        {"9223372036854775807", 9223372036854775807.0, INT64_MAX},
        {"9223372036854775808", 9223372036854775808.0, {}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ParseNumber(c.text), c.number) << '"' << c.text << '"';
        EXPECT_EQ(ParseInteger(c.text), c.integer) << '"' << c.text << '"';
    }
}

TEST(Numbers, AFloatPrintsWithoutItsBinaryTailAndComesBackTheSame)
{
    EXPECT_EQ(FormatNumber("####.##########", ShortestDouble(0.1F)), ".1");
    std::mt19937 random(2);
    for (int i = 0; i < 5000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (!std::isfinite(value)) continue;
        EXPECT_EQ(static_cast<float>(ShortestDouble(value)), value);
    }
}
