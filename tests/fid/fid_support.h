#pragma once
// A slot 0 with a FID in it.

#include "core/global_block.h"
#include "fid/fft.h"
#include "fid/fft_pipeline.h"
#include "fid/window.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <functional>
#include <memory>
#include <numbers>
#include <numeric>
#include <random>

namespace nmr::test {

using Complex = std::complex<double>;
inline constexpr double kTwoPi = 2.0 * std::numbers::pi;

/// A block whose slot 0 holds rows of n zeros, 400 MHz, 10 Hz a point, and a flat window.
inline std::unique_ptr<GlobalBlock> MakeBlock(std::int32_t n, std::int32_t rows = 1)
{
    auto g = std::make_unique<GlobalBlock>();
    static const std::vector<double> sine_table = [] {
        std::vector<double> table;
        Make_Sine_Table(table);
        return table;
    }();
    g->SineTable = sine_table;
    DataSet& set = g->Slots[0];
    set.RowCount = rows;
    EXPECT_TRUE(AllocateSpecBuffer(*g, n, 0));
    set.par.POINT = set.par.FIDPoints = set.par.FIDPointsRaw = n;
    set.par.FREQU = 10.0F * static_cast<float>(n);
    set.par.ObsCenter = 400.0;
    set.par.OBNUC = "1H";
    set.par.BF1 = 0.0F;
    set.par.WinFlags = {1, 1, 1, 1, 1};
    g->settings.auto_zerofill = 0;
    return g;
}

/// Fills one row of the FID from a function of the point.
inline void Fill(GlobalBlock& g, const std::function<Complex(int)>& value, std::size_t row = 0)
{
    DataSet& set = g.Slots[0];
    for (int i = 0; i < set.par.POINT; ++i) {
        set.spec.DataRe[row][static_cast<std::size_t>(i)] = static_cast<float>(value(i).real());
        set.spec.DataIm[row][static_cast<std::size_t>(i)] = static_cast<float>(value(i).imag());
    }
}

/// Window, kept FID and work rows, as the read flow makes them.
inline void Keep(GlobalBlock& g)
{
    ASSERT_TRUE(Make_Window_Function(g, 0));
    ASSERT_TRUE(Write_FID_Work(g));
    ASSERT_TRUE(Load_FID_Work(g));
}

inline std::function<Complex(int)> Noise(unsigned seed, double level = 1.0)
{
    auto engine = std::make_shared<std::mt19937>(seed);
    auto normal = std::make_shared<std::normal_distribution<double>>(0.0, level);
    return [=](int) {
        const double re = (*normal)(*engine);
        return Complex(re, (*normal)(*engine));
    };
}

inline Complex SourceAt(const GlobalBlock& g, int i, std::size_t row = 0)
{
    const SpecBuffer& spec = g.Slots[0].spec;
    const auto at = static_cast<std::size_t>(i);
    return {spec.SourceRe[row][at], spec.SourceIm[row][at]};
}

inline std::vector<Complex> SourceRow(const GlobalBlock& g, std::size_t row = 0)
{
    std::vector<Complex> values;
    for (int i = 0; i < g.Slots[0].par.POINT; ++i) values.push_back(SourceAt(g, i, row));
    return values;
}

} // namespace nmr::test
