#pragma once
// A block whose slot 0 holds one spectrum made from numbers.

#include "core/global_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace nmr::test {

struct AxisOf {
    double first_ppm = -1, step_ppm = 0.001;
    double mhz = 500;
};

/// Data and source hold `re` and `im` (zeros where it is shorter); DispLeft by the data unless they are all 0.
inline std::unique_ptr<GlobalBlock> BlockOf(const std::vector<double>& re, const AxisOf& axis = {},
                                            const std::vector<double>& im = {})
{
    auto g = std::make_unique<GlobalBlock>();
    EXPECT_TRUE(AllocateSpecBuffer(*g, static_cast<std::int32_t>(re.size()), 0));
    DataSet& set = g->Slots[0];
    set.par.POINT = static_cast<std::int32_t>(re.size());
    set.par.SMODE = 1;
    set.par.OBFRQ0PPM = set.par.ObsCenter = axis.mhz;
    set.par.OBNUC = "1H";
    set.par.Resolution2 = axis.step_ppm;
    for (std::size_t i = 0; i < re.size(); ++i) {
        set.spec.XAxis[i] = axis.first_ppm + axis.step_ppm * static_cast<double>(i);
        set.spec.SourceRe[0][i] = static_cast<float>(re[i]);
        set.spec.SourceIm[0][i] = static_cast<float>(i < im.size() ? im[i] : 0.0);
    }
    set.spec.DataRe = set.spec.SourceRe;
    set.spec.DataIm = set.spec.SourceIm;
    FillDisplayLimits(set);
    return g;
}

struct LineOf {
    double point, height, half_width; ///< points
};

/// Absorption (re) and dispersion (im) of Lorentzian lines, with noise on both.
struct LineRow {
    std::vector<double> re, im;
};
inline LineRow Lines(int n, const std::vector<LineOf>& lines, double noise = 0, unsigned seed = 1)
{
    std::mt19937 engine(seed);
    std::normal_distribution<double> normal(0.0, 1.0);
    LineRow row;
    for (int i = 0; i < n; ++i) {
        double re = noise * normal(engine), im = noise * normal(engine);
        for (const LineOf& l : lines) {
            const double x = (i - l.point) / l.half_width;
            re += l.height / (1 + x * x);
            im -= l.height * x / (1 + x * x);
        }
        row.re.push_back(re);
        row.im.push_back(im);
    }
    return row;
}

} // namespace nmr::test
