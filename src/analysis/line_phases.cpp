#include "analysis/line_phases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <optional>

namespace nmr {

namespace {

using Complex = std::complex<double>;

constexpr std::size_t kParts = 64;       ///< of a row
constexpr int kMostInPart = 6;           ///< lines of one part: the first order lives on lines far apart
constexpr double kEdge = 0.3;            ///< of the top: as far as the fit reaches, some three half widths
constexpr std::size_t kMostSamples = 40; ///< to each side of the top; more points are taken as means
constexpr int kRounds = 4;
constexpr double kBroadest = 48.0; ///< half widths of a row at least

/// Points from a top to where the line has sunk to its edge or the next one begins, the shorter of both sides.
struct Reach {
    std::size_t points = 0;
    double edge = 0; ///< magnitude there over that of the top, the higher side
};

Reach ReachOf(std::span<const float> m, std::size_t top, double noise)
{
    const auto height = static_cast<double>(m[top]);
    const double rise = std::max(0.03 * height, 3.0 * noise);
    const auto side = [&](auto at, std::size_t limit) {
        double lowest = height;
        std::size_t valley = 0;
        for (std::size_t k = 1; k <= limit; ++k) {
            const auto y = static_cast<double>(m[at(k)]);
            if (y > lowest + rise) return valley;
            if (y < lowest) {
                lowest = y;
                valley = k;
            }
            if (y < kEdge * height) return k;
        }
        return limit;
    };
    const std::size_t left = side([&](std::size_t k) { return top - k; }, top);
    const std::size_t right = side([&](std::size_t k) { return top + k; }, m.size() - 1 - top);
    const std::size_t reach = std::min(left, right);
    return {reach, static_cast<double>(std::max(m[top - reach], m[top + reach])) / height};
}

struct Sample {
    double u; ///< off the top, over the reach
    Complex z;
};

std::vector<Sample> SamplesAround(const ComplexRow& row, std::size_t top, std::size_t reach)
{
    // Odd, so that the middle sample sits on the top.
    const std::size_t half_step = reach / kMostSamples / 2, step = 2 * half_step + 1;
    const auto count = static_cast<std::ptrdiff_t>((reach - std::min(reach, half_step)) / step);
    std::vector<Sample> samples;
    for (std::ptrdiff_t k = -count; k <= count; ++k) {
        const std::ptrdiff_t off = k * static_cast<std::ptrdiff_t>(step);
        const std::size_t from = top + static_cast<std::size_t>(off) - half_step;
        double re = 0, im = 0;
        for (std::size_t i = from; i < from + step; ++i) {
            re += static_cast<double>(row.re[i]);
            im += static_cast<double>(row.im[i]);
        }
        const auto points = static_cast<double>(step);
        samples.push_back({static_cast<double>(off) / static_cast<double>(reach), Complex(re, im) / points});
    }
    return samples;
}

constexpr std::size_t kMostTerms = 4;
using Vector = std::array<Complex, kMostTerms>;

/// Solves the first `terms` equations by elimination with pivots; nothing when they are singular.
std::optional<Vector> Solve(std::array<Vector, kMostTerms> a, Vector b, std::size_t terms)
{
    for (std::size_t k = 0; k < terms; ++k) {
        std::size_t best = k;
        for (std::size_t r = k + 1; r < terms; ++r)
            if (std::abs(a[r][k]) > std::abs(a[best][k])) best = r;
        if (!(std::abs(a[best][k]) > 0.0)) return std::nullopt;
        std::swap(a[k], a[best]);
        std::swap(b[k], b[best]);
        for (std::size_t r = k + 1; r < terms; ++r) {
            const Complex f = a[r][k] / a[k][k];
            for (std::size_t c = k; c < terms; ++c) a[r][c] -= f * a[k][c];
            b[r] -= f * b[k];
        }
    }
    for (std::size_t k = terms; k-- > 0;) {
        for (std::size_t c = k + 1; c < terms; ++c) b[k] -= a[k][c] * b[c];
        b[k] /= a[k][k];
    }
    return b;
}

/// z(u) = (c0 + c1 u + c2 u^2) / (u + d).
struct Pole {
    Vector c{}; ///< c0, c1, c2, and d last
    std::size_t terms = 0;

    Complex Shift() const { return c[terms - 1]; }
    Complex Numerator(Complex u) const { return c[0] + u * (c[1] + (terms == 4 ? u * c[2] : 0.0)); }
    Complex At(double u) const { return Numerator(u) / (u + Shift()); }
};

std::optional<Pole> FitRound(const std::vector<Sample>& samples, std::size_t terms, const Complex& shift)
{
    std::array<Vector, kMostTerms> a{};
    Vector b{};
    for (const auto& [u, z] : samples) {
        const double weight = 1.0 / std::norm(u + shift);
        Vector basis{1.0, u, u * u, 0.0};
        basis[terms - 1] = -z;
        const Complex right = z * u;
        for (std::size_t r = 0; r < terms; ++r) {
            const Complex left = weight * std::conj(basis[r]);
            for (std::size_t k = 0; k < terms; ++k) a[r][k] += left * basis[k];
            b[r] += left * right;
        }
    }
    const auto c = Solve(a, b, terms);
    if (!c) return std::nullopt;
    return Pole{*c, terms};
}

std::optional<Pole> FitPole(const std::vector<Sample>& samples, std::size_t terms)
{
    Complex shift(0.0, 1.0 / 3.0);
    std::optional<Pole> pole;
    for (int round = 0; round < kRounds; ++round) {
        pole = FitRound(samples, terms, shift);
        if (!pole || !std::isfinite(std::abs(pole->Shift()))) return std::nullopt;
        // A pole on the real axis would weigh one sample without bound.
        shift = pole->Shift();
        if (std::abs(shift.imag()) < 0.02) shift.imag(std::copysign(0.02, shift.imag()));
    }
    return pole;
}

std::optional<LinePhase> FitLine(const ComplexRow& row, std::size_t top, double noise)
{
    const auto [reach, edge] = ReachOf(row.magnitude, top, noise);
    if (reach < 2) return std::nullopt;
    const std::vector<Sample> samples = SamplesAround(row, top, reach);
    const auto pole = FitPole(samples, samples.size() >= 9 ? 4 : 3);
    if (!pole) return std::nullopt;
    const Complex at = -pole->Shift();
    const double width = std::abs(at.imag());
    // Off the top, or broader than what was looked at: not this line.
    if (std::abs(at.real()) > 0.7 || width < 0.03 || width > 1.5) return std::nullopt;
    // 1 / (1 + i u / w) has the residue -i w at i w; mirrored, with the sign turned.
    const Complex amplitude = pole->Numerator(at) * Complex(0.0, std::copysign(1.0, at.imag())) / width;
    double left = 0;
    for (const auto& [u, z] : samples) left += std::norm(z - pole->At(u));
    LinePhase line;
    line.point = static_cast<double>(top) + at.real() * static_cast<double>(reach);
    line.half_width = width * static_cast<double>(reach);
    line.height = std::abs(amplitude);
    line.side = std::copysign(1.0, at.imag());
    line.angle_deg = std::arg(amplitude) * 180.0 / std::numbers::pi;
    line.misfit = std::sqrt(left / static_cast<double>(samples.size())) / line.height;
    line.overlap = std::max(0.0, edge - kEdge);
    // More of base line than of line, or as broad as one.
    const bool believable = line.height < 2.0 * static_cast<double>(row.magnitude[top]) &&
                            line.half_width * kBroadest < static_cast<double>(row.re.size());
    if (!believable || !std::isfinite(line.angle_deg) || !std::isfinite(line.misfit)) return std::nullopt;
    return line;
}

} // namespace

std::vector<std::size_t> Tops_Of(std::span<const float> m, double least)
{
    std::vector<std::size_t> tops;
    for (std::size_t i = 1; i + 1 < m.size(); ++i)
        if (static_cast<double>(m[i]) > least && m[i] >= m[i - 1] && m[i] > m[i + 1]) tops.push_back(i);
    std::ranges::sort(tops, [&](std::size_t a, std::size_t b) { return m[a] > m[b]; });
    return tops;
}

std::vector<LinePhase> Find_Line_Phases(const ComplexRow& row, double least, double noise, std::size_t most)
{
    std::vector<LinePhase> lines;
    std::array<int, kParts> tried{};
    const auto taken = [&](double at) {
        return std::ranges::any_of(lines, [&](const LinePhase& l) { return std::abs(l.point - at) < l.half_width; });
    };
    for (const std::size_t top : Tops_Of(row.magnitude, least)) {
        if (lines.size() == most) break;
        int& here = tried[top * kParts / row.magnitude.size()];
        if (here == kMostInPart || taken(static_cast<double>(top))) continue;
        ++here;
        // Noise on a broad line has tops whose fits all come to that line.
        const auto line = FitLine(row, top, noise);
        if (line && !taken(line->point)) lines.push_back(*line);
    }
    return lines;
}

} // namespace nmr
