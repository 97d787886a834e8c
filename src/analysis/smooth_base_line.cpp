#include "analysis/smooth_base_line.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace nmr {

namespace {

constexpr std::size_t kMostBlocks = 2048;
constexpr std::size_t kFewestPoints = 8;
constexpr int kRounds = 20;

double Median(std::vector<double> values)
{
    if (values.empty()) return 0.0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

struct Blocks {
    std::vector<double> mean, share; ///< of the points outside the mask; share of them
    std::size_t length = 1;          ///< points a block; the last one may be shorter
    double center(std::size_t k) const { return (static_cast<double>(k) + 0.5) * static_cast<double>(length) - 0.5; }
};

Blocks MeanBlocks(std::span<const float> row, std::span<const std::uint8_t> mask)
{
    Blocks blocks;
    blocks.length = (row.size() + kMostBlocks - 1) / kMostBlocks;
    for (std::size_t from = 0; from < row.size(); from += blocks.length) {
        const std::size_t to = std::min(from + blocks.length, row.size());
        double sum = 0, count = 0;
        for (std::size_t i = from; i < to; ++i)
            if (mask[i] == 0) {
                sum += static_cast<double>(row[i]);
                count += 1;
            }
        blocks.mean.push_back(count > 0 ? sum / count : 0.0);
        blocks.share.push_back(count / static_cast<double>(blocks.length));
    }
    return blocks;
}

/// The curve at every point from its values at the blocks.
std::vector<float> Spread(const Blocks& blocks, std::span<const double> z, std::size_t n)
{
    std::vector<float> curve(n);
    const double last = static_cast<double>(z.size() - 1);
    for (std::size_t i = 0; i < n; ++i) {
        const double at =
            std::clamp((static_cast<double>(i) - blocks.center(0)) / static_cast<double>(blocks.length), 0.0, last);
        const auto k = std::min(static_cast<std::size_t>(at), z.size() < 2 ? 0 : z.size() - 2);
        const double part = at - static_cast<double>(k);
        const double next = z[std::min(k + 1, z.size() - 1)];
        curve[i] = static_cast<float>(z[k] + part * (next - z[k]));
    }
    return curve;
}

/// Weight of a block by how far it stands above the curve: near 1 within the spread of the residuals, falling
/// to 0 beyond. With asymmetry 0 distance counts in both directions.
void Reweight(const Blocks& blocks, std::span<const double> z, double asymmetry, std::vector<double>& weights)
{
    std::vector<double> below;
    for (std::size_t k = 0; k < z.size(); ++k) {
        const double d = blocks.mean[k] - z[k];
        if (blocks.share[k] > 0.0 && d < 0.0) below.push_back(-d);
    }
    const double spread = 1.4826 * Median(below);
    if (spread <= 0.0) return;
    for (std::size_t k = 0; k < z.size(); ++k) {
        const double d = blocks.mean[k] - z[k];
        const double away = d >= 0.0 ? d : (1.0 - asymmetry) * -d;
        const double steep = std::clamp(2.0 * (away / spread - 3.0), -30.0, 30.0);
        weights[k] = blocks.share[k] / (1.0 + std::exp(steep));
    }
}

/// Repeats `solve` (weights to curve) until the weights rest.
template <class Solve>
std::vector<float> Settle(std::span<const float> row, const BaseLineShape& shape, Solve solve)
{
    if (row.size() < kFewestPoints) return std::vector<float>(row.size());
    const auto mask = Signal_Mask(row);
    const Blocks blocks = MeanBlocks(row, mask);
    std::vector<double> weights = blocks.share;
    if (std::ranges::count_if(weights, [](double w) { return w > 0.0; }) < 2) return std::vector<float>(row.size());
    std::vector<double> z = solve(blocks.mean, weights);
    for (int round = 0; round < kRounds; ++round) {
        const std::vector<double> before = weights;
        Reweight(blocks, z, shape.asymmetry, weights);
        double change = 0, total = 0;
        for (std::size_t k = 0; k < weights.size(); ++k) {
            change += std::abs(weights[k] - before[k]);
            total += before[k];
        }
        z = solve(blocks.mean, weights);
        if (change < 1e-3 * total) break;
    }
    return Spread(blocks, z, row.size());
}

/// The Bernstein polynomials of a degree at t.
std::vector<double> BernsteinAt(int degree, double t)
{
    std::vector<double> b(static_cast<std::size_t>(degree) + 1, 0.0);
    b[0] = 1.0;
    for (std::size_t k = 1; k < b.size(); ++k) {
        double carried = 0;
        for (std::size_t j = 0; j < k; ++j) {
            const double value = b[j];
            b[j] = carried + (1.0 - t) * value;
            carried = t * value;
        }
        b[k] = carried;
    }
    return b;
}

/// Solves a symmetric system in place by Cholesky; a direction that the data leave open gets 0.
void SolveSymmetric(std::vector<std::vector<double>>& a, std::vector<double>& x)
{
    const std::size_t n = x.size();
    std::vector<double> diagonal(n);
    for (std::size_t i = 0; i < n; ++i) diagonal[i] = a[i][i];
    for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t k = 0; k < j; ++k) a[j][j] -= a[j][k] * a[j][k];
        a[j][j] = a[j][j] > 1e-13 * diagonal[j] ? std::sqrt(a[j][j]) : 0.0;
        for (std::size_t i = j + 1; i < n; ++i) {
            for (std::size_t k = 0; k < j; ++k) a[i][j] -= a[i][k] * a[j][k];
            a[i][j] = a[j][j] > 0.0 ? a[i][j] / a[j][j] : 0.0;
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t k = 0; k < i; ++k) x[i] -= a[i][k] * x[k];
        x[i] = a[i][i] > 0.0 ? x[i] / a[i][i] : 0.0;
    }
    for (std::size_t i = n; i-- > 0;) {
        for (std::size_t k = i + 1; k < n; ++k) x[i] -= a[k][i] * x[k];
        x[i] = a[i][i] > 0.0 ? x[i] / a[i][i] : 0.0;
    }
}

std::vector<double> BernsteinFit(std::span<const double> y, std::span<const double> weights, int degree)
{
    const auto terms = static_cast<std::size_t>(degree) + 1;
    const double last = static_cast<double>(std::max<std::size_t>(y.size() - 1, 1));
    std::vector<std::vector<double>> a(terms, std::vector<double>(terms, 0.0)), basis;
    std::vector<double> x(terms, 0.0), z(y.size(), 0.0);
    for (std::size_t k = 0; k < y.size(); ++k) {
        basis.push_back(BernsteinAt(degree, static_cast<double>(k) / last));
        const std::vector<double>& b = basis.back();
        for (std::size_t i = 0; i < terms; ++i) {
            for (std::size_t j = 0; j <= i; ++j) a[i][j] += weights[k] * b[i] * b[j];
            x[i] += weights[k] * b[i] * y[k];
        }
    }
    SolveSymmetric(a, x);
    for (std::size_t k = 0; k < y.size(); ++k)
        for (std::size_t i = 0; i < terms; ++i) z[k] += x[i] * basis[k][i];
    return z;
}

} // namespace

double Noise_Deviation(std::span<const float> row)
{
    constexpr std::size_t kPieces = 256, kShortest = 16;
    const std::size_t length = std::max(row.size() / kPieces, std::min(row.size(), kShortest));
    std::vector<double> deviations;
    for (std::size_t from = 0; from + length <= row.size(); from += length) {
        const double middle = 0.5 * static_cast<double>(length - 1), first = static_cast<double>(row[from]);
        double sy = 0, sxy = 0, sxx = 0, syy = 0;
        for (std::size_t i = 0; i < length; ++i) {
            const double x = static_cast<double>(i) - middle, y = static_cast<double>(row[from + i]) - first;
            sy += y;
            sxy += x * y;
            sxx += x * x;
            syy += y * y;
        }
        const auto count = static_cast<double>(length);
        const double rest = syy - sy * sy / count - (sxx > 0.0 ? sxy * sxy / sxx : 0.0);
        deviations.push_back(std::sqrt(std::max(rest, 0.0) / count));
    }
    if (deviations.empty()) return 0.0;
    std::ranges::sort(deviations);
    return deviations[deviations.size() / 4];
}

std::vector<std::uint8_t> Signal_Mask(std::span<const float> row)
{
    const std::size_t n = row.size();
    std::vector<std::uint8_t> mask(n, 0);
    if (n < kFewestPoints) return mask;
    const double noise = Noise_Deviation(row);
    // Coarse level of the surroundings: medians of pieces, which a few lines do not move.
    const std::size_t pieces = std::min<std::size_t>(64, n / 4), length = (n + pieces - 1) / pieces;
    std::vector<double> level;
    for (std::size_t from = 0; from < n; from += length) {
        const std::size_t to = std::min(from + length, n), step = std::max<std::size_t>((to - from) / 256, 1);
        std::vector<double> part;
        for (std::size_t i = from; i < to; i += step) part.push_back(static_cast<double>(row[i]));
        level.push_back(Median(std::move(part)));
    }
    // Broad humps of lines lift the medians of their pieces: a running low median over five pieces takes them out.
    std::vector<double> calm(level.size());
    for (std::size_t k = 0; k < level.size(); ++k) {
        const std::size_t from = k < 2 ? 0 : k - 2, to = std::min(k + 3, level.size());
        calm[k] = Median(
            {level.begin() + static_cast<std::ptrdiff_t>(from), level.begin() + static_cast<std::ptrdiff_t>(to)});
    }
    const std::size_t reach = std::max<std::size_t>(n / 2048, 1);
    std::size_t marked = 0; // points below are settled
    for (std::size_t i = 0; i < n; ++i) {
        const double place = std::clamp((static_cast<double>(i) + 0.5) / static_cast<double>(length) - 0.5, 0.0,
                                        static_cast<double>(calm.size() - 1));
        const auto k = std::min(static_cast<std::size_t>(place), calm.size() - 1);
        const double next = calm[std::min(k + 1, calm.size() - 1)];
        const double here = calm[k] + (place - static_cast<double>(k)) * (next - calm[k]);
        if (std::abs(static_cast<double>(row[i]) - here) <= 4.0 * noise) continue;
        const std::size_t from = std::max(marked, i < reach ? 0 : i - reach), to = std::min(i + reach + 1, n);
        for (std::size_t j = from; j < to; ++j) mask[j] = 1;
        marked = to;
    }
    return mask;
}

std::vector<double> Whittaker_Solve(std::span<const double> y, std::span<const double> weights, double lambda)
{
    const std::size_t n = y.size();
    std::vector<double> diagonal(n), first(n, 0.0), second(n, 0.0), z(n);
    // Rows of D'D: 1 5 6 ... 6 5 1 on the diagonal, -2 -4 ... -4 -2 beside it, 1 beyond.
    std::array<double, 3> difference{1.0, -2.0, 1.0};
    for (std::size_t i = 0; i < n; ++i) {
        diagonal[i] = weights[i];
        z[i] = weights[i] * y[i];
    }
    for (std::size_t i = 0; i + 2 < n; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            diagonal[i + j] += lambda * difference[j] * difference[j];
            if (j < 2) first[i + j] += lambda * difference[j] * difference[j + 1];
            if (j < 1) second[i] += lambda * difference[0] * difference[2];
        }
    // LDL' with two bands; then forward, and backward.
    for (std::size_t i = 0; i < n; ++i) {
        const double d1 = i >= 1 ? diagonal[i - 1] : 0.0, l1 = i >= 1 ? first[i - 1] : 0.0;
        const double d2 = i >= 2 ? diagonal[i - 2] : 0.0, l2 = i >= 2 ? second[i - 2] : 0.0;
        diagonal[i] -= l1 * l1 * d1 + l2 * l2 * d2;
        if (diagonal[i] <= 0.0) diagonal[i] = 1e-300;
        first[i] = (first[i] - (i >= 1 ? l1 * d1 * second[i - 1] : 0.0)) / diagonal[i];
        second[i] /= diagonal[i];
        z[i] -= l1 * (i >= 1 ? z[i - 1] : 0.0) + l2 * (i >= 2 ? z[i - 2] : 0.0);
    }
    for (std::size_t i = 0; i < n; ++i) z[i] /= diagonal[i];
    for (std::size_t i = n; i-- > 0;)
        z[i] -= (i + 1 < n ? first[i] * z[i + 1] : 0.0) + (i + 2 < n ? second[i] * z[i + 2] : 0.0);
    return z;
}

std::vector<float> Whittaker_Base_Line(std::span<const float> row, const BaseLineShape& shape)
{
    return Settle(row, shape, [&](std::span<const double> y, std::span<const double> weights) {
        const double bend = std::clamp(shape.stiffness, 1e-3, 10.0) * static_cast<double>(y.size());
        return Whittaker_Solve(y, weights, std::max(bend * bend * bend * bend, 1e-3));
    });
}

std::vector<float> Bernstein_Base_Line(std::span<const float> row, const BaseLineShape& shape)
{
    return Settle(row, shape, [&](std::span<const double> y, std::span<const double> weights) {
        return BernsteinFit(y, weights, std::clamp(shape.degree, 1, 20));
    });
}

} // namespace nmr
