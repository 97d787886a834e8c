// Dispatch, plain path and the small steps around the transform.

#include "fid/fft.h"

#include "core/numbers.h"
#include "fid/fft_paths.h"
#include "fid/fft_plan.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

namespace nmr {
namespace {

constexpr std::size_t kSineTableLength = kSineTableSize / 4 * 5 + 1;

void FillSines(std::vector<double>& table, std::size_t stride)
{
    constexpr double step = 2 * kPi / kSineTableSize;
    for (std::size_t i = 0; i < table.size(); i += stride) table[i] = std::sin(static_cast<double>(i) * step);
}

/// One pass over the row: all butterflies whose legs are `leg` points apart.
void ButterflyPass(std::span<float> re, std::span<float> im, std::span<const double> sine, std::size_t leg)
{
    const std::size_t step = kSineTableSize / (2 * leg);
    for (std::size_t base = 0; base < re.size(); base += 2 * leg) {
        for (std::size_t p = base, q = base + leg, i = 0; p < base + leg; ++p, ++q, i += step) {
            const double real = static_cast<double>(re[p]) - static_cast<double>(re[q]);
            const double imag = static_cast<double>(im[p]) - static_cast<double>(im[q]);
            const double sin_value = sine[i];
            const double cos_value = sine[i + kSineTableSize / 4];
            re[p] += re[q]; // the float sum is the rounded double sum: 53 bits are more than 2 * 24 + 1
            im[p] += im[q];
            re[q] = static_cast<float>(imag * sin_value + real * cos_value);
            im[q] = static_cast<float>(imag * cos_value - real * sin_value);
        }
    }
}

void ReverseBits(std::span<float> re, std::span<float> im)
{
    const std::size_t n = re.size();
    std::size_t j = 0;
    for (std::size_t i = 1; i < n; ++i) {
        std::size_t bit = n / 2;
        for (; (j & bit) != 0; bit /= 2) j ^= bit;
        j ^= bit;
        if (j < i) {
            std::swap(re[i], re[j]);
            std::swap(im[i], im[j]);
        }
    }
}

void TransformPlain(std::span<float> re, std::span<float> im, std::span<const double> sine)
{
    for (std::size_t leg = re.size() / 2; leg > 0; leg /= 2) ButterflyPass(re, im, sine, leg);
    ReverseBits(re, im);
}

void RotateAndSwap(std::span<float> row)
{
    if (row.size() < 2) return;
    const std::size_t half = row.size() / 2;
    const float first = row[0];
    const float middle = row[half];
    for (std::size_t i = 0; i + 1 < half; ++i) {
        const float low = row[i + 1];
        row[i] = row[half + i + 1];
        row[half + i] = low;
    }
    row[half - 1] = first;
    row[row.size() - 1] = middle;
}

FFT_Path BestPath()
{
    static const FFT_Path best = FFT_Path_Available(FFT_Path::avx512) ? FFT_Path::avx512
                                 : FFT_Path_Available(FFT_Path::avx2) ? FFT_Path::avx2
                                                                      : FFT_Path::plain;
    return best;
}

} // namespace

void Make_Sine_Table(std::vector<double>& table)
{
    table.resize(kSineTableLength);
    FillSines(table, 1);
}

void Ready_Sine_Table(std::vector<double>& table, std::int32_t n)
{
    if (table.empty()) table.assign(kSineTableLength, std::numeric_limits<double>::quiet_NaN());
    // The cosines of the shortest rows stand a quarter turn on.
    const auto stride = static_cast<std::size_t>(kSineTableSize / std::max(n, 4));
    if (std::isnan(table[stride])) FillSines(table, stride);
}

std::string_view FFT_Path_Name(FFT_Path path)
{
    constexpr std::string_view names[] = {"plain", "avx2", "avx512"};
    return names[static_cast<std::size_t>(path)];
}

bool FFT_Path_Available(FFT_Path path)
{
#if defined(__x86_64__)
    switch (path) {
    case FFT_Path::plain:
        return true;
    case FFT_Path::avx2:
        return __builtin_cpu_supports("avx2") != 0;
    case FFT_Path::avx512:
        return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
               __builtin_cpu_supports("avx512vl");
    }
#endif
    return path == FFT_Path::plain;
}

void FFT_Transform_By(FFT_Path path, std::span<float> re, std::span<float> im, std::span<const double> sine_table)
{
    assert(std::has_single_bit(re.size()) && re.size() <= kSineTableSize && im.size() == re.size());
    assert(FFT_Path_Available(path));
    if (re.size() < kFftShortest) path = FFT_Path::plain;
#if defined(__x86_64__)
    if (path == FFT_Path::avx512) return FFT_Run_Avx512(FFT_Plan_For(re.size(), sine_table), re.data(), im.data());
    if (path == FFT_Path::avx2) return FFT_Run_Avx2(FFT_Plan_For(re.size(), sine_table), re.data(), im.data());
#endif
    TransformPlain(re, im, sine_table);
}

void FFT_Transform(std::span<float> re, std::span<float> im, std::span<const double> sine_table)
{
    FFT_Transform_By(BestPath(), re, im, sine_table);
}

void FFT_Rotate_And_Swap(std::span<float> re, std::span<float> im)
{
    RotateAndSwap(re);
    RotateAndSwap(im);
}

void FFT_Block(RowArray<float>& re, RowArray<float>& im, std::int32_t n, Conjugate conjugate,
               std::span<const double> sine_table)
{
    const auto points = static_cast<std::size_t>(n);
    const auto scale = static_cast<float>(n);
    for (std::size_t row = 0; row < re.rows(); ++row) {
        const auto u = re[row].first(points);
        const auto v = im[row].first(points);
        if (conjugate == Conjugate::yes) std::ranges::transform(v, v.begin(), std::negate{});
        FFT_Transform(u, v, sine_table);
        for (float& value : u) value /= scale;
        for (float& value : v) value /= scale;
    }
}

std::string_view FFT_Vector_Set()
{
    return FFT_Path_Name(BestPath());
}

} // namespace nmr
