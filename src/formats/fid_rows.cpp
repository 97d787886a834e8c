#include "formats/fid_rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <vector>

namespace nmr {
namespace {

std::uint64_t Mend(std::span<double> values)
{
    std::uint64_t damaged = 0;
    for (double& value : values) {
        if (std::fabs(value) <= kMaxFidValue) continue; // false for NaN
        value = 0;
        ++damaged;
    }
    return damaged;
}

/// Largest absolute value, by the bits: without the sign they rise with the value, and infinity and what
/// is no number stand above all others. In four strands, which do not wait for each other.
std::uint64_t LargestBits(std::span<const double> values)
{
    std::array<std::uint64_t, 4> largest{};
    const std::size_t whole = values.size() / 4 * 4;
    const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value) << 1; };
    for (std::size_t i = 0; i < whole; i += 4)
        for (std::size_t k = 0; k < 4; ++k) largest[k] = std::max(largest[k], bits(values[i + k]));
    for (std::size_t i = whole; i < values.size(); ++i) largest[0] = std::max(largest[0], bits(values[i]));
    return std::max({largest[0], largest[1], largest[2], largest[3]}) >> 1;
}

/// Mends the values and returns the largest that is left.
double Largest(std::span<double> values, std::uint64_t& damaged)
{
    std::uint64_t bits = LargestBits(values);
    if (bits > std::bit_cast<std::uint64_t>(kMaxFidValue)) {
        damaged += Mend(values);
        bits = LargestBits(values);
    }
    return std::bit_cast<double>(bits);
}

double MeanOfTail(std::span<const double> values)
{
    const auto last = values.last(TailOf(values.size()));
    if (last.empty()) return 0;
    std::array<double, 4> sum{};
    const std::size_t whole = last.size() / 4 * 4;
    for (std::size_t i = 0; i < whole; i += 4)
        for (std::size_t k = 0; k < 4; ++k) sum[k] += last[i + k];
    for (std::size_t i = whole; i < last.size(); ++i) sum[0] += last[i];
    return (sum[0] + sum[1] + sum[2] + sum[3]) / static_cast<double>(last.size());
}

void StorePart(std::span<const double> values, double largest, std::span<float> row)
{
    const double mean = MeanOfTail(values), factor = 1 / largest;
    if (std::isnormal(factor)) {
        for (std::size_t i = 0; i < values.size(); ++i) row[i] = static_cast<float>((values[i] - mean) * factor);
        return;
    }
    for (std::size_t i = 0; i < values.size(); ++i) row[i] = static_cast<float>((values[i] - mean) / largest);
}

} // namespace

std::uint64_t StoreFidRows(const FidRows& source, SpecBuffer& spec)
{
    std::vector<double> re(source.points), im(source.points);
    std::uint64_t damaged = 0;
    double largest = 0;
    std::size_t present = 0;
    for (std::size_t row = 0; row < source.rows; ++row) {
        present = source.decode(row, re, im);
        for (auto part : {std::span(re).first(present), std::span(im).first(present)}) {
            largest = std::max(largest, Largest(part, damaged));
        }
    }
    if (largest == 0) return damaged;
    for (std::size_t row = 0; row < source.rows; ++row) {
        // The only row stands in the buffers already.
        if (source.rows > 1) present = source.decode(row, re, im);
        const auto re_part = std::span(re).first(present), im_part = std::span(im).first(present);
        if (damaged > 0) {
            Mend(re_part);
            Mend(im_part);
        }
        StorePart(re_part, largest, spec.DataRe[row]);
        StorePart(im_part, largest, spec.DataIm[row]);
    }
    return damaged;
}

} // namespace nmr
