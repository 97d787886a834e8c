#include "analysis/tail_phases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <optional>

namespace nmr {

namespace {

using Complex = std::complex<double>;

constexpr double kEdge = 0.15;     ///< of the top: where tails begin
constexpr double kGap = 0.5;       ///< of the group's half: so much below the edge parts it from the next
constexpr double kReach = 4.0;     ///< halves of the group: as far as the tails are looked at
constexpr std::size_t kCells = 24; ///< means on each side
constexpr std::size_t kFewest = 6; ///< points of a tail
constexpr double kBroadest = 10.0; ///< halves of groups in a row at least
constexpr int kRounds = 3;

struct Group {
    std::size_t left = 0, right = 0; ///< first and last point above the edge
};

/// From a top outwards by `step` as far as the group goes.
std::size_t EdgeOf(std::span<const float> m, std::size_t top, bool up, float edge)
{
    std::size_t last = top;
    const std::size_t limit = up ? m.size() - 1 - top : top;
    for (std::size_t k = 1; k <= limit; ++k) {
        const std::size_t at = up ? top + k : top - k;
        if (m[at] > edge) last = at;
        const std::size_t extent = up ? last - top : top - last, gap = k - extent;
        if (static_cast<double>(gap) > kGap * static_cast<double>(extent) + 4.0) break;
    }
    return last;
}

struct Cell {
    double u; ///< off the middle of the group, over its half
    Complex z;
};

/// Means of the tail that runs from `edge` until the reach, or until the row rises again.
void AddTail(std::vector<Cell>& cells, const ComplexRow& row, std::size_t edge, bool up, double middle, double half)
{
    const std::size_t limit = up ? row.re.size() - 1 - edge : edge;
    const std::size_t wanted = static_cast<std::size_t>((kReach - 1.0) * half);
    const std::size_t reach = std::min(wanted, limit);
    const float ceiling = row.magnitude[edge];
    std::size_t count = 0;
    while (count < reach && row.magnitude[up ? edge + count + 1 : edge - count - 1] < ceiling) ++count;
    if (count < kFewest) return;
    const std::size_t step = (count + kCells - 1) / kCells;
    for (std::size_t k = 0; k + step <= count; k += step) {
        Complex sum = 0;
        for (std::size_t i = k; i < k + step; ++i) {
            const std::size_t at = up ? edge + 1 + i : edge - 1 - i;
            sum += Complex(static_cast<double>(row.re[at]), static_cast<double>(row.im[at]));
        }
        const double off = static_cast<double>(k + 1) + static_cast<double>(step - 1) / 2.0;
        const double place = static_cast<double>(edge) + (up ? off : -off);
        cells.push_back({(place - middle) / half, sum / static_cast<double>(step)});
    }
}

constexpr std::size_t kTerms = 4; ///< 1/u, 1/u^2, 1, u
using Basis = std::array<double, kTerms>;

Basis BasisAt(double u)
{
    return {1.0 / u, 1.0 / (u * u), 1.0, u};
}

struct Fit {
    std::array<Complex, kTerms> c{};
    double variance = 0; ///< of the first, for cells of variance 1
};

/// Weighted least squares by elimination; nothing when singular.
std::optional<Fit> FitCells(const std::vector<Cell>& cells, const std::vector<double>& weights)
{
    std::array<Basis, kTerms> a{};
    std::array<Complex, kTerms> b{};
    Basis unit{1.0, 0.0, 0.0, 0.0};
    for (std::size_t s = 0; s < cells.size(); ++s) {
        const Basis f = BasisAt(cells[s].u);
        for (std::size_t r = 0; r < kTerms; ++r) {
            for (std::size_t k = 0; k < kTerms; ++k) a[r][k] += weights[s] * f[r] * f[k];
            b[r] += weights[s] * f[r] * cells[s].z;
        }
    }
    for (std::size_t k = 0; k < kTerms; ++k) { // positive definite: no pivots
        if (!(a[k][k] > 1e-12)) return std::nullopt;
        for (std::size_t r = k + 1; r < kTerms; ++r) {
            const double f = a[r][k] / a[k][k];
            for (std::size_t c = k; c < kTerms; ++c) a[r][c] -= f * a[k][c];
            b[r] -= f * b[k];
            unit[r] -= f * unit[k];
        }
    }
    for (std::size_t k = kTerms; k-- > 0;) {
        for (std::size_t c = k + 1; c < kTerms; ++c) {
            b[k] -= a[k][c] * b[c];
            unit[k] -= a[k][c] * unit[c];
        }
        b[k] /= a[k][k];
        unit[k] /= a[k][k];
    }
    return Fit{b, unit[0]};
}

/// What a fit leaves, weighted.
struct Rest {
    double variance = 0;    ///< of a cell's real or imaginary part
    double correlation = 0; ///< between neighbours, 0 to 1
};

Rest RestOf(const std::vector<Cell>& cells, const std::vector<double>& weights, const Fit& fit,
            std::vector<Complex>& off)
{
    double sum = 0, total = 0, next = 0;
    for (std::size_t s = 0; s < cells.size(); ++s) {
        off[s] = cells[s].z;
        const Basis f = BasisAt(cells[s].u);
        for (std::size_t k = 0; k < kTerms; ++k) off[s] -= f[k] * fit.c[k];
        sum += weights[s] * std::norm(off[s]);
        total += weights[s];
        if (s > 0) next += std::sqrt(weights[s - 1] * weights[s]) * (off[s - 1] * std::conj(off[s])).real();
    }
    return {sum / total / 2.0, sum > 0.0 ? std::clamp(next / sum, 0.0, 0.98) : 0.0};
}

std::optional<TailPhase> FitTails(const std::vector<Cell>& cells, double middle)
{
    std::vector<double> weights(cells.size(), 1.0), sorted(cells.size());
    std::vector<Complex> off(cells.size());
    std::optional<Fit> fit;
    Rest rest;
    for (int round = 0; round < kRounds; ++round) {
        fit = FitCells(cells, weights);
        if (!fit) return std::nullopt;
        rest = RestOf(cells, weights, *fit, off);
        // Lines that stand in the tails count little.
        std::ranges::transform(off, sorted.begin(), [](const Complex& z) { return std::norm(z); });
        const auto middle_one = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
        std::ranges::nth_element(sorted, middle_one);
        for (std::size_t s = 0; s < cells.size(); ++s)
            weights[s] = 1.0 / (1.0 + std::norm(off[s]) / (8.0 * *middle_one + 1e-30));
    }
    TailPhase phase;
    // In phase the tail is -i times the size over the distance.
    const Complex size = fit->c[0] * Complex(0.0, 1.0);
    phase.point = middle;
    phase.angle_deg = std::arg(size) * 180.0 / std::numbers::pi;
    // Cells that are off alike, as in a smoothed row, tell less than they are many.
    const double fewer = (1.0 + rest.correlation) / (1.0 - rest.correlation);
    phase.error_deg = std::sqrt(rest.variance * fit->variance * fewer) / std::abs(size) * 180.0 / std::numbers::pi;
    if (!std::isfinite(phase.angle_deg) || !std::isfinite(phase.error_deg)) return std::nullopt;
    return phase;
}

std::optional<TailPhase> TailsOf(const ComplexRow& row, const Group& g)
{
    double moment = 0, sum = 0;
    for (std::size_t i = g.left; i <= g.right; ++i) {
        const double m = static_cast<double>(row.magnitude[i]) * static_cast<double>(row.magnitude[i]);
        sum += m;
        moment += m * static_cast<double>(i);
    }
    const double middle = moment / sum;
    const double half = std::max({middle - static_cast<double>(g.left), static_cast<double>(g.right) - middle, 2.0});
    if (half * kBroadest > static_cast<double>(row.re.size())) return std::nullopt;
    std::vector<Cell> cells;
    AddTail(cells, row, g.left, false, middle, half);
    const std::size_t left = cells.size();
    AddTail(cells, row, g.right, true, middle, half);
    // One side alone can't tell a tail from a base line.
    if (left < kFewest || cells.size() - left < kFewest) return std::nullopt;
    return FitTails(cells, middle);
}

} // namespace

std::vector<TailPhase> Find_Tail_Phases(const ComplexRow& row, double least, std::size_t most)
{
    const std::span<const float> m = row.magnitude;
    std::vector<TailPhase> phases;
    std::vector<std::uint8_t> taken(m.size());
    for (const std::size_t top : Tops_Of(m, least)) {
        if (phases.size() == most) break;
        if (taken[top] != 0) continue;
        const float edge = static_cast<float>(kEdge) * m[top];
        const Group g{EdgeOf(m, top, false, edge), EdgeOf(m, top, true, edge)};
        std::fill(taken.begin() + static_cast<std::ptrdiff_t>(g.left),
                  taken.begin() + static_cast<std::ptrdiff_t>(g.right) + 1, std::uint8_t{1});
        if (const auto phase = TailsOf(row, g)) {
            phases.push_back(*phase);
            phases.back().height = static_cast<double>(m[top]);
        }
    }
    return phases;
}

} // namespace nmr
