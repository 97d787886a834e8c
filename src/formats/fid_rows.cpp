#include "formats/fid_rows.h"

#include <algorithm>
#include <array>
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

/// In four strands, which do not wait for each other.
double Largest(std::span<const double> values)
{
    std::array<double, 4> largest{};
    const std::size_t whole = values.size() / 4 * 4;
    const auto take = [](double& so_far, double value) {
        so_far = std::fabs(value) <= so_far ? so_far : std::fabs(value);
    };
    for (std::size_t i = 0; i < whole; i += 4)
        for (std::size_t k = 0; k < 4; ++k) take(largest[k], values[i + k]);
    for (std::size_t i = whole; i < values.size(); ++i) take(largest[0], values[i]);
    for (std::size_t k = 1; k < 4; ++k) take(largest[0], largest[k]);
    return largest[0];
}

double MeanOfTail(std::span<const double> values)
{
    const auto last = values.last(static_cast<std::size_t>(kTailShare * static_cast<double>(values.size())));
    return last.empty() ? 0 : std::accumulate(last.begin(), last.end(), 0.0) / static_cast<double>(last.size());
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
            damaged += Mend(part);
            largest = std::max(largest, Largest(part));
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
