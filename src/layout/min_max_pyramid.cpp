#include "layout/plot.h"

#include <algorithm>
#include <limits>

namespace nmr {
namespace {

using Range = MinMaxPyramid::Range;
constexpr std::size_t kBlock = 8; // values of one entry of the lowest level
constexpr Range kNothing{std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()};

// A NaN fails both comparisons and so never gets in.
void Take(Range& range, float value)
{
    range.low = value < range.low ? value : range.low;
    range.high = value > range.high ? value : range.high;
}

void Take(Range& range, const Range& other)
{
    range.low = std::min(range.low, other.low);
    range.high = std::max(range.high, other.high);
}

} // namespace

// Only full blocks get an entry: what is left over at the end is read from the row itself.
void MinMaxPyramid::Build(std::span<const float> row)
{
    row_ = row;
    levels_.clear();
    std::vector<Range> level(row.size() / kBlock);
    const float* value = row.data();
    for (Range& entry : level) {
        Range range = kNothing;
        for (std::size_t i = 0; i < kBlock; ++i) Take(range, value[i]);
        entry = range;
        value += kBlock;
    }
    while (!level.empty()) {
        std::vector<Range> next(level.size() / 2);
        for (std::size_t i = 0; i < next.size(); ++i) {
            next[i] = level[2 * i];
            Take(next[i], level[2 * i + 1]);
        }
        levels_.push_back(std::move(level));
        level = std::move(next);
    }
}

MinMaxPyramid::Range MinMaxPyramid::Over(std::size_t first, std::size_t last) const
{
    Range range = kNothing;
    const std::size_t end = last + 1;
    std::size_t from = (first + kBlock - 1) / kBlock, to = end / kBlock;
    if (from >= to) {
        for (std::size_t i = first; i < end; ++i) Take(range, row_[i]);
        return range;
    }
    for (std::size_t i = first; i < from * kBlock; ++i) Take(range, row_[i]);
    for (std::size_t i = to * kBlock; i < end; ++i) Take(range, row_[i]);
    // Odd ends at this level, the rest one level up.
    for (const auto& level : levels_) {
        if (from >= to) break;
        if (from % 2 != 0) Take(range, level[from++]);
        if (from < to && to % 2 != 0) Take(range, level[--to]);
        from /= 2;
        to /= 2;
    }
    return range;
}

} // namespace nmr
