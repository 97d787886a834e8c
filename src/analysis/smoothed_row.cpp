#include "analysis/smoothed_row.h"

#include "analysis/slow_part.h"
#include "core/rotation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace nmr {

namespace {

double LowerQuartile(std::vector<double> values)
{
    if (values.empty()) return 0.0;
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 4);
    std::ranges::nth_element(values, at);
    return *at;
}

std::vector<float> Magnitudes(std::span<const float> re, std::span<const float> im)
{
    std::vector<float> m(re.size());
    for (std::size_t i = 0; i < m.size(); ++i) m[i] = std::sqrt(re[i] * re[i] + im[i] * im[i]);
    return m;
}

double NoiseOf(std::span<const float> magnitude)
{
    const std::size_t length = std::max<std::size_t>(magnitude.size() / 128, 1);
    std::vector<double> means;
    for (std::size_t from = 0; from + length <= magnitude.size(); from += length) {
        double sum = 0;
        for (std::size_t i = from; i < from + length; ++i) sum += static_cast<double>(magnitude[i]);
        means.push_back(sum / static_cast<double>(length));
    }
    return LowerQuartile(std::move(means));
}

void Take(Smoothed& s)
{
    s.magnitude = Magnitudes(s.re, s.im);
    s.noise = NoiseOf(s.magnitude);
    s.top = *std::ranges::max_element(s.magnitude);
}

std::vector<float> SmoothedOnce(const std::vector<float>& from, std::size_t reach)
{
    std::vector<float> row = from;
    for (std::size_t i = reach; i + reach < row.size(); ++i)
        row[i] = 0.25F * from[i - reach] + 0.5F * from[i] + 0.25F * from[i + reach];
    return row;
}

/// Every second point as the mean of two; an odd one at the end falls away.
std::vector<float> Halved(std::span<const float> row)
{
    std::vector<float> half(row.size() / 2);
    for (std::size_t i = 0; i < half.size(); ++i) half[i] = 0.5F * (row[2 * i] + row[2 * i + 1]);
    return half;
}

float MedianMagnitude(const Smoothed& row)
{
    const std::size_t step = std::max<std::size_t>(row.magnitude.size() / 8192, 1);
    std::vector<float> m;
    for (std::size_t i = 0; i < row.magnitude.size(); i += step) m.push_back(row.magnitude[i]);
    const auto middle = m.begin() + static_cast<std::ptrdiff_t>(m.size() / 2);
    std::ranges::nth_element(m, middle);
    return *middle;
}

} // namespace

Smoothed SmoothToNoise(std::span<const float> re, std::span<const float> im)
{
    constexpr double kQuiet = 150.0;
    Smoothed best{{re.begin(), re.end()}, {im.begin(), im.end()}, {}, 0, 0};
    Take(best);
    for (std::size_t reach = 1; reach <= 8; reach *= 2) {
        if (!(best.noise > 0.0) || static_cast<double>(best.top) > kQuiet * best.noise) break;
        Smoothed next{SmoothedOnce(best.re, reach), SmoothedOnce(best.im, reach), {}, 0, 0};
        Take(next);
        // As long as lines lose less height than the noise does.
        if (static_cast<double>(next.top) * best.noise <= 1.05 * static_cast<double>(best.top) * next.noise) break;
        best = std::move(next);
    }
    return best;
}

float Threshold(const Smoothed& row)
{
    const auto top = static_cast<double>(row.top);
    return static_cast<float>(std::max(std::min(4.0 * row.noise, 0.4 * top), 0.004 * top));
}

std::size_t CountAbove(const Smoothed& row, float threshold)
{
    return static_cast<std::size_t>(std::ranges::count_if(row.magnitude, [&](float m) { return m > threshold; }));
}

std::size_t Thin(Smoothed& row)
{
    std::size_t factor = 1;
    while (row.re.size() > 4096 && CountAbove(row, Threshold(row)) > kMostSignal) {
        Smoothed next{Halved(row.re), Halved(row.im), {}, 0, 0};
        Take(next);
        if (next.top < 0.98F * row.top) break;
        row = std::move(next);
        factor *= 2;
    }
    return factor;
}

std::vector<LinePhase> LinesOf(const Smoothed& row)
{
    constexpr std::size_t kMostLines = 64;
    const double least = std::max(0.01 * static_cast<double>(row.top), 4.0 * row.noise);
    return Find_Line_Phases({row.re, row.im, row.magnitude}, least, row.noise, kMostLines);
}

std::vector<TailPhase> TailsOf(const Smoothed& row)
{
    constexpr std::size_t kMostGroups = 40;
    const double least = std::max(0.01 * static_cast<double>(row.top), 8.0 * row.noise);
    return Find_Tail_Phases({row.re, row.im, row.magnitude}, least, kMostGroups);
}

void Turn(Smoothed& row, double at0_deg, double over_deg)
{
    RotateRow(row.re, row.im, row.re, row.im, static_cast<std::int32_t>(row.re.size()),
              {static_cast<float>(at0_deg), static_cast<float>(over_deg), 0});
}

double Flatten(Smoothed& row)
{
    Smoothed flat{row.re, row.im, {}, 0, 0};
    Subtract_Slow_Part(flat.re, flat.im, LinesOf(row));
    Take(flat);
    if (!(flat.top > 0.0F)) return 1.0;
    const auto left = static_cast<double>(MedianMagnitude(flat)) / static_cast<double>(MedianMagnitude(row));
    if (left < kQuieter) row = std::move(flat);
    return left;
}

} // namespace nmr
