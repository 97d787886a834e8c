// The transform against its plain loops, bit for bit, and against what any Fourier transform must do.

#include "fid/fft.h"

#include "core/numbers.h"
#include "fid/fft_paths.h"
#include "fid/fft_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <random>
#include <regex>
#include <string>

namespace nmr {
namespace {

const std::vector<double>& SineTable()
{
    static const std::vector<double> table = [] {
        std::vector<double> made;
        Make_Sine_Table(made);
        return made;
    }();
    return table;
}

struct Row {
    std::vector<float> re, im;
    explicit Row(std::size_t n) : re(n), im(n) {}
};

bool SameBits(const std::vector<float>& a, const std::vector<float>& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

using Generator = std::mt19937;

float Uniform(Generator& random)
{
    return std::uniform_real_distribution<float>(-1.0F, 1.0F)(random);
}

/// Exponents from the denormals up, each as likely as the next, far enough from the top not to overflow.
float AnyExponent(Generator& random)
{
    return std::ldexp(Uniform(random), std::uniform_int_distribution<int>(-148, 60)(random));
}

float Denormal(Generator& random)
{
    return std::ldexp(Uniform(random), std::uniform_int_distribution<int>(-149, -124)(random));
}

struct RowKind {
    const char* name;
    float (*value)(Generator&);
};

constexpr RowKind kRowKinds[] = {
    {"random", Uniform},
    {"every exponent", AnyExponent},
    {"sparse", [](Generator& random) { return random() % 37 == 0 ? Uniform(random) : 0.0F; }},
    {"denormal", Denormal},
    {"small integers of both signs", [](Generator& random) { return static_cast<float>(random() % 3) - 1.0F; }},
    {"zeros of both signs", [](Generator& random) { return random() % 2 == 0 ? 0.0F : -0.0F; }},
    {"mostly zeros of both signs",
     [](Generator& random) { return random() % 11 == 0 ? Denormal(random) : (random() % 2 == 0 ? 0.0F : -0.0F); }},
};

Row MakeRow(const RowKind& kind, std::size_t n, unsigned seed)
{
    Generator random(seed);
    Row row(n);
    std::ranges::generate(row.re, [&] { return kind.value(random); });
    std::ranges::generate(row.im, [&] { return kind.value(random); });
    return row;
}

std::vector<FFT_Path> AvailablePaths()
{
    std::vector<FFT_Path> paths;
    for (const FFT_Path path : {FFT_Path::plain, FFT_Path::avx2, FFT_Path::avx512})
        if (FFT_Path_Available(path)) paths.push_back(path);
    return paths;
}

TEST(Fft, EveryPathGivesTheBitsOfThePlainLoopsAtEveryLength)
{
    for (std::size_t n = 1; n <= kSineTableSize; n *= 2) {
        for (const RowKind& kind : kRowKinds) {
            const Row input = MakeRow(kind, n, static_cast<unsigned>(n) + 7);
            Row expected = input;
            test::ReferenceTransform(expected.re, expected.im, SineTable());
            for (const FFT_Path path : AvailablePaths()) {
                SCOPED_TRACE(std::string(FFT_Path_Name(path)) + ", " + kind.name + ", n = " + std::to_string(n));
                Row row = input;
                FFT_Transform_By(path, row.re, row.im, SineTable());
                ASSERT_TRUE(SameBits(row.re, expected.re));
                ASSERT_TRUE(SameBits(row.im, expected.im));
            }
        }
    }
}

TEST(Fft, TheWidestVectorsOfTheMachineAreTaken)
{
    EXPECT_EQ(FFT_Vector_Set(), FFT_Path_Name(AvailablePaths().back()));
}

TEST(Fft, ARowMayBeginAnywhereInMemory)
{
    constexpr std::size_t n = 2048;
    for (const FFT_Path path : AvailablePaths()) {
        for (std::size_t start = 1; start < 16; start += 3) {
            SCOPED_TRACE(std::string(FFT_Path_Name(path)) + ", start " + std::to_string(start));
            Row whole = MakeRow(kRowKinds[0], n + 32, 11);
            const Row before = whole;
            Row expected(n);
            std::copy_n(whole.re.begin() + static_cast<std::ptrdiff_t>(start), n, expected.re.begin());
            std::copy_n(whole.im.begin() + static_cast<std::ptrdiff_t>(start), n, expected.im.begin());
            test::ReferenceTransform(expected.re, expected.im, SineTable());
            const auto re = std::span(whole.re).subspan(start, n);
            const auto im = std::span(whole.im).subspan(start, n);
            FFT_Transform_By(path, re, im, SineTable());
            EXPECT_EQ(std::memcmp(re.data(), expected.re.data(), n * sizeof(float)), 0);
            EXPECT_EQ(std::memcmp(im.data(), expected.im.data(), n * sizeof(float)), 0);
            std::ranges::copy(std::span(before.re).subspan(start, n), re.begin());
            std::ranges::copy(std::span(before.im).subspan(start, n), im.begin());
            EXPECT_TRUE(SameBits(whole.re, before.re) && SameBits(whole.im, before.im)) << "touched its neighbours";
        }
    }
}

TEST(Fft, OneFaultyPointSpoilsEveryPointOnEveryPath)
{
    for (const float fault : {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        for (const FFT_Path path : AvailablePaths()) {
            Row row = MakeRow(kRowKinds[0], 1024, 5);
            row.re[77] = fault;
            FFT_Transform_By(path, row.re, row.im, SineTable());
            for (std::size_t i = 0; i < row.re.size(); ++i)
                ASSERT_FALSE(std::isfinite(row.re[i]) && std::isfinite(row.im[i])) << FFT_Path_Name(path) << " " << i;
        }
    }
}

// One rounding fewer than in the plain loops would show only on some machines and in some rows.
TEST(Fft, TheObjectCodeHoldsNoFusedMultiplyAdd)
{
    if (std::system("objdump --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "objdump is not installed";
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
    FILE* const listing = popen(("objdump -d -C --no-show-raw-insn '" + program + "'").c_str(), "r");
    ASSERT_NE(listing, nullptr);
    const std::regex fused("\\sv?f(n?m(add|sub)|ml[as])\\w*\\s");
    std::string function;
    std::size_t vector_products = 0;
    char text[4096];
    while (std::fgets(text, sizeof text, listing) != nullptr) {
        const std::string_view line = text;
        if (line.ends_with(">:\n")) function = line;
        if (function.find("nmr::") == std::string::npos) continue;
        if (line.find("vmulpd") != std::string_view::npos) ++vector_products;
        EXPECT_FALSE(std::regex_search(text, fused)) << function << text;
    }
    EXPECT_EQ(pclose(listing), 0);
#if defined(__x86_64__)
    EXPECT_GT(vector_products, 0U) << "the vector code was not looked at";
#endif
}

TEST(Fft, SineTableHoldsTheSineOfEachProduct)
{
    const auto& table = SineTable();
    ASSERT_EQ(table.size(), 1'310'721U);
    for (std::size_t i = 0; i < table.size(); ++i)
        ASSERT_EQ(table[i], std::sin(static_cast<double>(i) * (2 * 3.14159265358979 / 1048576.0))) << i;
}

TEST(Fft, APartOfTheSineTableServesAsTheWhole)
{
    std::vector<double> part;
    for (const std::size_t n : {8192U, 2U, 256U, 4U, 1U, 32768U}) {
        SCOPED_TRACE(n);
        Ready_Sine_Table(part, static_cast<std::int32_t>(n));
        Row row(n), whole(n);
        for (std::size_t i = 0; i < n; ++i) {
            row.re[i] = whole.re[i] = static_cast<float>(i % 7);
            row.im[i] = whole.im[i] = static_cast<float>(i % 5);
        }
        FFT_Transform(row.re, row.im, part);
        FFT_Transform(whole.re, whole.im, SineTable());
        EXPECT_EQ(row.re, whole.re);
        EXPECT_EQ(row.im, whole.im);
    }
    EXPECT_TRUE(std::isnan(part[1])) << "no more is made than is read";
}

TEST(Fft, ImpulseGivesAFlatSpectrum)
{
    for (const std::size_t n : {1U, 2U, 16U, 4096U}) {
        Row row(n);
        row.re[0] = 1.0F;
        FFT_Transform(row.re, row.im, SineTable());
        FFT_Rotate_And_Swap(row.re, row.im);
        EXPECT_TRUE(std::ranges::all_of(row.re, [](float x) { return x == 1.0F; })) << n;
        EXPECT_TRUE(std::ranges::all_of(row.im, [](float x) { return x == 0.0F; })) << n;
    }
}

double Energy(const Row& row)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < row.re.size(); ++i)
        sum += static_cast<double>(row.re[i]) * row.re[i] + static_cast<double>(row.im[i]) * row.im[i];
    return sum;
}

TEST(Fft, EnergyIsKept)
{
    for (const std::size_t n : {8U, 1024U, 65536U, 1048576U}) {
        Row row = MakeRow(kRowKinds[0], n, 3);
        const double before = Energy(row);
        FFT_Transform(row.re, row.im, SineTable());
        EXPECT_NEAR(Energy(row) / (before * static_cast<double>(n)), 1.0, 1e-6) << n;
    }
}

/// exp(2 pi i k t / n), t = 0 .. n-1.
Row Exponential(std::size_t n, std::size_t bin)
{
    Row row(n);
    for (std::size_t t = 0; t < n; ++t) {
        const double angle = 2 * kPi * static_cast<double>(bin * t % n) / static_cast<double>(n);
        row.re[t] = static_cast<float>(std::cos(angle));
        row.im[t] = static_cast<float>(std::sin(angle));
    }
    return row;
}

TEST(Fft, AnExponentialStandsAloneAtItsPlace)
{
    struct Case {
        const char* name;
        std::size_t n, bin, index;
    };
    constexpr Case cases[] = {
        {"zero frequency stands one below the middle", 1024, 0, 511},
        {"one step up", 1024, 1, 512},
        {"one step down", 1024, 1023, 510},
        {"highest", 1024, 512, 1023},
        {"lowest", 1024, 513, 0},
        {"two points", 2, 1, 1},
        {"longest row", 1048576, 300000, 824287},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Row row = Exponential(c.n, c.bin);
        FFT_Transform(row.re, row.im, SineTable());
        FFT_Rotate_And_Swap(row.re, row.im);
        const auto size = static_cast<float>(c.n);
        EXPECT_NEAR(row.re[c.index] / size, 1.0F, 1e-6F);
        row.re[c.index] = 0.0F;
        const auto far = [&](float x) { return std::abs(x) / size > 1e-6F; };
        EXPECT_TRUE(std::ranges::none_of(row.re, far));
        EXPECT_TRUE(std::ranges::none_of(row.im, far));
    }
}

TEST(Fft, RotationAndSwapMoveEveryPointToItsIndex)
{
    for (std::size_t n = 1; n <= 256; n *= 2) {
        Row row(n);
        for (std::size_t i = 0; i < n; ++i) row.re[i] = row.im[n - 1 - i] = static_cast<float>(i);
        const Row before = row;
        FFT_Rotate_And_Swap(row.re, row.im);
        for (std::size_t i = 0; i < n; ++i) {
            ASSERT_EQ(row.re[i], before.re[(i + n / 2 + 1) % n]) << n << " " << i;
            ASSERT_EQ(row.im[i], before.im[(i + n / 2 + 1) % n]) << n << " " << i;
        }
    }
}

TEST(Fft, BlockTransformsTheFirstPointsOfEveryRowAndDividesByTheirNumber)
{
    constexpr std::size_t rows = 3;
    constexpr std::size_t columns = 80;
    constexpr std::size_t n = 64;
    for (const Conjugate conjugate : {Conjugate::no, Conjugate::yes}) {
        RowArray<float> re, im;
        re.Resize(rows, columns);
        im.Resize(rows, columns);
        for (std::size_t r = 0; r < rows; ++r) {
            const Row line = Exponential(columns, 0);
            std::ranges::copy(line.re, re[r].begin());
            const Row wave = Exponential(n, r + 5);
            std::ranges::copy(wave.re, re[r].begin());
            std::ranges::copy(wave.im, im[r].begin());
        }
        FFT_Block(re, im, n, conjugate, SineTable());
        for (std::size_t r = 0; r < rows; ++r) {
            // The conjugate runs backwards, so it stands at the mirrored bin.
            const std::size_t line = conjugate == Conjugate::yes ? n - (r + 5) : r + 5;
            for (std::size_t i = 0; i < n; ++i) {
                EXPECT_NEAR(re[r][i], i == line ? 1.0F : 0.0F, 1e-6F) << r << " " << i;
                EXPECT_NEAR(im[r][i], 0.0F, 1e-6F) << r << " " << i;
            }
            EXPECT_EQ(re[r][n], 1.0F) << "points behind the transform stay";
        }
    }
}

} // namespace
} // namespace nmr
