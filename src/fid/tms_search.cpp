// The search of the TMS line.
//
// TMS is one narrow line at the low-ppm end of a 1H, 13C or 29Si spectrum. The search works on the
// real part of the shown row (IntegralCurve, with its ppm axis in IntegralSum), between two points:
//
// 1. Noise is the lower quartile of the standard deviations of 64 blocks of the whole row: lines fill
//    the upper blocks, the lower quartile is free of them. The base level is the median of the range.
//    The outer hundredth of the row is not looked at, where filters fold their artefacts.
// 2. From the low-ppm end upwards, every local maximum above 12 times the noise is a candidate.
// 3. A candidate within 150 Hz of a line more than 12 times as high is that line's satellite (13C,
//    29Si) or a part of its foot, and the search goes on with the next.
// 4. The first candidate left decides: it is TMS when it is narrow at half height (at most 6 Hz, or
//    4 points where points are coarse), when no line of at least a quarter of its height stands within
//    15 Hz of it (TMS is no multiplet), and when no dip of a third of its depth stands beside it (the
//    row is then not phased). Otherwise the answer is -1: a wrong reference is worse than none.

#include "core/text.h"
#include "fid/fft_pipeline.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace nmr {

namespace {

constexpr std::size_t kBlocks = 64;
constexpr double kSignificance = 12.0; ///< times the noise
constexpr double kSatelliteHz = 150.0; ///< half of the largest coupling to 13C, and some room
constexpr double kSatelliteShare = 1.0 / 12.0;
constexpr double kWidestHz = 6.0;
constexpr std::int32_t kWidestPoints = 4;
constexpr double kNeighbourHz = 15.0;
constexpr double kNeighbourShare = 0.25;
constexpr double kDipShare = 1.0 / 3.0;

bool HasTms(std::string_view nucleus)
{
    return NucleusGroup(nucleus) < 2 || EqualsNoCase(nucleus, "29SI") || EqualsNoCase(nucleus, "SI29");
}

struct Line {
    std::span<const float> y;
    double level = 0;
    double threshold = 0; ///< above the level
    double hz_per_point = 0;

    double At(std::int32_t i) const { return static_cast<double>(y[static_cast<std::size_t>(i)]) - level; }
    std::int32_t size() const { return static_cast<std::int32_t>(y.size()); }
    std::int32_t Points(double hz) const
    {
        return std::clamp(RoundHalfEven(hz / hz_per_point), 1, std::max(size() - 1, 1));
    }
    std::int32_t Low(std::int32_t i, double hz) const { return std::max(0, i - Points(hz)); }
    std::int32_t High(std::int32_t i, double hz) const { return std::min(size() - 1, i + Points(hz)); }
};

double BlockDeviation(std::span<const float> block)
{
    double sum = 0, squares = 0;
    for (const float value : block) {
        sum += static_cast<double>(value);
        squares += static_cast<double>(value) * static_cast<double>(value);
    }
    const auto count = static_cast<double>(block.size());
    const double variance = squares / count - sum / count * (sum / count);
    return variance > 0.0 ? std::sqrt(variance) : 0.0; // NaN gives 0: a block that says nothing
}

double NoiseOf(std::span<const float> row)
{
    const std::size_t size = row.size() / kBlocks;
    std::vector<double> deviations;
    for (std::size_t k = 0; k < kBlocks; ++k) deviations.push_back(BlockDeviation(row.subspan(k * size, size)));
    const auto quartile = deviations.begin() + kBlocks / 4;
    std::ranges::nth_element(deviations, quartile);
    return *quartile;
}

double MedianOf(std::span<const float> range)
{
    std::vector<float> values(range.begin(), range.end());
    std::ranges::replace_if(
        values, [](float v) { return std::isnan(v); }, 0.0F); // the selection needs an order
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return static_cast<double>(*middle);
}

bool IsTop(const Line& line, std::int32_t i)
{
    return line.At(i) > line.threshold && line.At(i) > line.At(i - 1) && line.At(i) >= line.At(i + 1);
}

/// Largest value within `reach` points of each point, in one pass: the queue holds falling values,
/// the largest of the window in front.
std::vector<float> LargestAround(std::span<const float> y, std::size_t reach)
{
    std::vector<float> largest(y.size());
    std::deque<std::size_t> falling;
    for (std::size_t i = 0; i < y.size() + reach; ++i) {
        if (i < y.size()) {
            while (!falling.empty() && y[falling.back()] <= y[i]) falling.pop_back();
            falling.push_back(i);
        }
        if (i < reach) continue;
        while (falling.front() + 2 * reach < i) falling.pop_front();
        largest[i - reach] = y[falling.front()];
    }
    return largest;
}

/// First and last point above half of the height of a top.
struct HalfHeight {
    std::int32_t first, last;
};

HalfHeight HalfHeightOf(const Line& line, std::int32_t top)
{
    HalfHeight range{top, top};
    const double half = line.At(top) / 2.0;
    while (range.first > 0 && line.At(range.first - 1) > half) --range.first;
    while (range.last < line.size() - 1 && line.At(range.last + 1) > half) ++range.last;
    return range;
}

bool IsSingleNarrowLine(const Line& line, std::int32_t top)
{
    const HalfHeight half = HalfHeightOf(line, top);
    const std::int32_t widest = std::max(line.Points(kWidestHz), kWidestPoints);
    if (half.last - half.first + 1 > widest) return false;
    const double height = line.At(top);
    for (std::int32_t k = line.Low(top, kNeighbourHz); k <= line.High(top, kNeighbourHz); ++k) {
        if (line.At(k) < -kDipShare * height) return false;
        const bool outside = k < half.first || k > half.last;
        if (outside && k > 0 && k < line.size() - 1 && line.At(k) > kNeighbourShare * height && IsTop(line, k))
            return false;
    }
    return true;
}

/// The highest point of the line whose foot begins at a point: noise may put a small top on the foot.
std::int32_t Climb(const Line& line, std::int32_t foot, std::int32_t direction, std::int32_t last)
{
    const std::int32_t room = std::min(std::abs(last - foot), std::max(line.Points(kWidestHz), kWidestPoints));
    std::int32_t top = foot;
    for (std::int32_t k = 1; k <= room; ++k)
        if (line.At(foot + k * direction) > line.At(top)) top = foot + k * direction;
    return top;
}

} // namespace

std::int32_t Search_TMS(const DataSet& set, std::int32_t from, std::int32_t to)
{
    const auto n = static_cast<std::size_t>(std::max(set.par.POINT, 0));
    const SpecBuffer& spec = set.spec;
    if (n < 2 * kBlocks || spec.IntegralCurve.rows() < 1 || spec.IntegralCurve.columns() < n ||
        spec.IntegralSum.size() < n || !HasTms(set.par.OBNUC))
        return -1;
    const double ppm = static_cast<double>(spec.IntegralSum[n - 1]) - static_cast<double>(spec.IntegralSum[0]);
    Line line{spec.IntegralCurve[0].first(n)};
    line.hz_per_point = std::abs(ppm) * set.par.OBFRQ0PPM / static_cast<double>(n - 1);
    if (!(line.hz_per_point > 0.0) || !std::isfinite(line.hz_per_point)) return -1;

    const auto edge = static_cast<std::int32_t>(n / 100 + 1);
    const std::int32_t first = std::max(std::min(from, to), edge);
    const std::int32_t last = std::min(std::max(from, to), line.size() - 1 - edge);
    if (last - first < 2) return -1;
    line.level = MedianOf(line.y.first(static_cast<std::size_t>(last) + 1).subspan(static_cast<std::size_t>(first)));
    line.threshold = kSignificance * NoiseOf(line.y);
    if (!(line.threshold > 0.0)) return -1;

    const std::vector<float> around = LargestAround(line.y, static_cast<std::size_t>(line.Points(kSatelliteHz)));
    const auto is_satellite = [&](std::int32_t i) {
        return (static_cast<double>(around[static_cast<std::size_t>(i)]) - line.level) * kSatelliteShare > line.At(i);
    };
    const bool rising = ppm > 0.0;
    for (std::int32_t step = 0; step <= last - first; ++step) {
        const std::int32_t i = rising ? first + step : last - step;
        if (!IsTop(line, i) || is_satellite(i)) continue;
        const std::int32_t top = Climb(line, i, rising ? 1 : -1, rising ? last : first);
        return IsSingleNarrowLine(line, top) ? top : -1;
    }
    return -1;
}

} // namespace nmr
