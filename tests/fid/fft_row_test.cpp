// One row from FID to spectrum.

#include "fid/filter.h"
#include "fid/window.h"
#include "fid_support.h"

#include <algorithm>
#include <cstring>

namespace nmr::test {
namespace {

TEST(FftRow, AnImpulseAtTheStartGivesAFlatRealSpectrum)
{
    for (const std::int32_t n : {1, 2, 8, 4096}) {
        SCOPED_TRACE(n);
        auto g = MakeBlock(n);
        Fill(*g, [](int i) { return i == 0 ? 1.0 : 0.0; });
        Keep(*g);
        FFT_Preview(*g, 0);
        for (int i = 0; i < n; ++i) ASSERT_EQ(SourceAt(*g, i), Complex(1.0, 0.0)) << i;
        EXPECT_EQ(g->Slots[0].par.DispLeft, 1.0F);
        EXPECT_EQ(g->Slots[0].par.DispRight, 0.0F);
    }
}

TEST(FftRow, AFrequencyOfTheFidStandsLeftOfTheBinOfZeroByItsNumberOfBins)
{
    constexpr int kPoints = 256;
    for (const int bins : {0, 1, 5, -1, -60, 127, -128}) {
        SCOPED_TRACE(bins);
        auto g = MakeBlock(kPoints);
        Fill(*g, [bins](int i) { return std::polar(1.0, kTwoPi * bins * i / kPoints); });
        Keep(*g);
        FFT_Preview(*g, 0);
        const int expected = kPoints / 2 - 1 - bins;
        const auto row = SourceRow(*g);
        const auto top = std::ranges::max_element(row, {}, [](Complex c) { return std::abs(c); }) - row.begin();
        EXPECT_EQ(top, expected);
        EXPECT_NEAR(std::abs(SourceAt(*g, expected) - Complex(kPoints, 0.0)), 0.0, 1e-3);
        EXPECT_NEAR(g->Slots[0].par.DispLeft, kPoints, 1e-3);
    }
}

TEST(FftRow, EqualsTheDirectSumOverTheWindowedConjugate)
{
    constexpr int kPoints = 64;
    auto g = MakeBlock(kPoints);
    Fill(*g, Noise(1));
    g->Slots[0].par.BF1 = 30.0F;
    ASSERT_TRUE(Make_Window_Function(*g, 0));
    Keep(*g);
    FFT_Preview(*g, 0);
    for (int i = 0; i < kPoints; ++i) {
        Complex sum = 0.0;
        for (int j = 0; j < kPoints; ++j) {
            const auto at = static_cast<std::size_t>(j);
            const Complex fid(g->WorkRe[0][at], g->WorkIm[0][at]);
            // 640 Hz wide, 30 Hz broadened: exp(-pi * 30 * j / 640).
            const double window = std::exp(-std::numbers::pi * 30.0 * j / 640.0);
            sum += std::conj(fid) * window * std::polar(1.0, -kTwoPi * j * (i + kPoints / 2 + 1) / kPoints);
        }
        ASSERT_NEAR(std::abs(sum - SourceAt(*g, i)), 0.0, 2e-5) << i;
    }
}

TEST(FftRow, AShiftMovesTheFidAndFillsWithZeros)
{
    constexpr int kPoints = 32;
    for (const int shift : {1, 5, 10, 31, 32, 1000, -1, -7, -31, -32, -1000}) {
        SCOPED_TRACE(shift);
        auto g = MakeBlock(kPoints);
        auto moved = MakeBlock(kPoints);
        const auto noise = Noise(2);
        std::vector<Complex> fid;
        for (int i = 0; i < kPoints; ++i) fid.push_back(noise(i));
        const auto at = [&fid](int i) { return i < 0 || i >= kPoints ? Complex() : fid[static_cast<std::size_t>(i)]; };
        Fill(*g, at);
        Fill(*moved, [&](int i) { return at(i + shift); });
        Keep(*g);
        Keep(*moved);
        // Kind 0 for both: the filter of large shifts is another matter.
        g->FilterKind = moved->FilterKind = kFilterNone;
        FFT_Row(*g, 0, shift);
        FFT_Row(*moved, 0, 0);
        for (std::size_t i = 0; i < kPoints; ++i) {
            ASSERT_EQ(g->WorkRe[0][i], moved->WorkRe[0][i]) << i;
            ASSERT_EQ(g->WorkIm[0][i], moved->WorkIm[0][i]) << i;
        }
    }
}

TEST(FftRow, OnlyShiftsAboveTenAreFiltered)
{
    struct Case {
        int shift, kind;
    };
    for (const Case& c : {Case{-20, kFilterNone}, Case{0, kFilterNone}, Case{10, kFilterNone},
                          Case{11, kFilterFirstOrder}, Case{70, kFilterFirstOrder}}) {
        SCOPED_TRACE(c.shift);
        auto g = MakeBlock(256);
        Fill(*g, [](int) { return Complex(1.0, 1.0); });
        Keep(*g);
        FFT_Preview(*g, c.shift);
        EXPECT_EQ(g->FilterKind, c.kind);
        if (c.kind == kFilterNone) continue;
        EXPECT_EQ(g->FilterRe[0], 0.0F);
        EXPECT_EQ(g->FilterIm[0], 0.0F);
        EXPECT_GT(g->FilterRe[1], 0.9F);
    }
}

class Filters : public testing::Test {
protected:
    std::vector<float> Run(std::int32_t kind, std::int32_t length = 1)
    {
        std::vector<float> re(x.size()), im(x.size());
        Filter_Fid(kind, {x, y}, {re, im}, length);
        for (std::size_t i = 0; i < x.size(); ++i) EXPECT_EQ(re[i], -im[i]); // both lines alike
        return re;
    }
    void SetInput(const std::function<double(int)>& value)
    {
        for (int i = 0; i < 600; ++i) {
            x.push_back(static_cast<float>(value(i)));
            y.push_back(-x.back());
        }
    }
    std::vector<float> x, y;
};

TEST_F(Filters, FirstOrderIsTheSumOfItsFadingSteps)
{
    SetInput([n = Noise(3)](int i) { return n(i).real(); });
    const auto f = Run(kFilterFirstOrder);
    const double c = std::tan(3.14159265358979 / 2.01), a = c / (1 + c), b = (1 - c) / (1 + c);
    for (const std::size_t i : {0, 1, 2, 17, 599}) {
        double sum = 0;
        for (std::size_t j = 1; j <= i; ++j) sum += std::pow(b, static_cast<double>(i - j)) * a * (x[j] + x[j - 1]);
        EXPECT_NEAR(f[i], sum, 2e-6) << i;
    }
}

TEST_F(Filters, MovingAverageIsTheMeanOfTheLastPoints)
{
    SetInput([n = Noise(4)](int i) { return n(i).real(); });
    for (const std::int32_t length : {1, 2, 10}) {
        const auto f = Run(kFilterMovingAverage, length);
        const auto reach = static_cast<std::ptrdiff_t>(length);
        for (std::ptrdiff_t i = 0; i < 600; ++i) {
            const auto end = x.begin() + i + 1;
            const double mean = i + 1 < reach ? 0.0 : std::accumulate(end - reach, end, 0.0) / length;
            ASSERT_NEAR(f[static_cast<std::size_t>(i)], mean, 1e-6) << length << " " << i;
        }
    }
}

TEST_F(Filters, TwoPoleHasTheGainOfItsTransferFunction)
{
    const double w = 2 * 3.14159265358979 / 2.1, al = std::sin(w) / 2.2;
    for (const double turn : {0.0, 0.4, 1.5, 2.9}) {
        x.clear();
        y.clear();
        SetInput([turn](int i) { return std::cos(turn * i); });
        const auto f = Run(kFilterTwoPole);
        const Complex z = std::polar(1.0, -turn);
        const double b1 = 1 - std::cos(w);
        const Complex gain = b1 * (0.5 + z + 0.5 * z * z) / (1 + al - 2 * std::cos(w) * z + (1 - al) * z * z);
        for (int i = 560; i < 600; ++i)
            ASSERT_NEAR(f[static_cast<std::size_t>(i)], (gain * std::polar(1.0, turn * i)).real(), 1e-4) << turn;
    }
}

TEST(FftRow, RefusesToTransformWhatItCannot)
{
    auto g = MakeBlock(48); // no power of two
    Fill(*g, [](int) { return 1.0; });
    Keep(*g);
    FFT_Preview(*g, 0);
    EXPECT_EQ(SourceAt(*g, 0), Complex());
    FFT_Row(*g, 0, 0);
    EXPECT_EQ(g->WorkRe[0][0], 1.0F);
    FFT_Row(*g, 5, 0); // a row that is not there
    auto empty = std::make_unique<GlobalBlock>();
    FFT_Preview(*empty, 3);
    EXPECT_FALSE(Commit_Transform(*empty));
    EXPECT_EQ(empty->Slots[0].par.SMODE, 0);
}

} // namespace
} // namespace nmr::test
