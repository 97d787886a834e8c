#include "formats/fid_rows.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace nmr {
namespace {

constexpr double kMaxValue = 1e30; // nothing an instrument writes comes near
constexpr double kTailShare = 0.4; // of a row, at its end, taken for the base line

std::uint64_t Mend(std::span<double> values)
{
    std::uint64_t damaged = 0;
    for (double& value : values) {
        if (std::fabs(value) <= kMaxValue) continue; // false for NaN
        value = 0;
        ++damaged;
    }
    return damaged;
}

double Largest(std::span<const double> values)
{
    double largest = 0;
    for (double value : values) largest = std::max(largest, std::fabs(value));
    return largest;
}

void StorePart(std::span<const double> values, double divisor, std::span<float> row)
{
    const auto tail = static_cast<std::size_t>(kTailShare * static_cast<double>(values.size()));
    const auto last = values.last(tail);
    const double mean = tail == 0 ? 0 : std::accumulate(last.begin(), last.end(), 0.0) / static_cast<double>(tail);
    for (std::size_t i = 0; i < values.size(); ++i) row[i] = static_cast<float>((values[i] - mean) / divisor);
}

} // namespace

std::uint64_t StoreFidRows(const FidRows& source, SpecBuffer& spec)
{
    std::vector<double> re(source.points), im(source.points);
    std::uint64_t damaged = 0;
    double largest = 0;
    for (std::size_t row = 0; row < source.rows; ++row) {
        const std::size_t present = source.decode(row, re, im);
        for (auto part : {std::span(re).first(present), std::span(im).first(present)}) {
            damaged += Mend(part);
            largest = std::max(largest, Largest(part));
        }
    }
    if (largest == 0) return damaged;
    for (std::size_t row = 0; row < source.rows; ++row) {
        const std::size_t present = source.decode(row, re, im);
        const auto re_part = std::span(re).first(present), im_part = std::span(im).first(present);
        Mend(re_part);
        Mend(im_part);
        StorePart(re_part, largest, spec.DataRe[row]);
        StorePart(im_part, largest, spec.DataIm[row]);
    }
    return damaged;
}

} // namespace nmr
