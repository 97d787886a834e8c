#include "core/rotation.h"

#include "core/numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>

namespace nmr {

namespace {

constexpr std::size_t kBlock = 64;

struct Turn {
    double cos = 1, sin = 0;
};

double Angle(const PhaseTerms& phase, std::int32_t n, std::int32_t i)
{
    const double ph0 = phase.ph0_deg, ph1 = phase.ph1_deg;
    return (ph0 + (static_cast<double>(i) - phase.pivot) * ph1 / n) * kDegToRad;
}

Turn TurnOf(double angle)
{
    return {std::cos(angle), std::sin(angle)};
}

/// Source and target of a row, which may be the same.
struct Rows {
    const float* source_re;
    const float* source_im;
    float* re;
    float* im;
};

void RotateConstant(const Rows& rows, std::size_t count, Turn turn)
{
    for (std::size_t i = 0; i < count; ++i) {
        const double x = rows.source_re[i], y = rows.source_im[i];
        rows.re[i] = static_cast<float>(x * turn.cos - y * turn.sin);
        rows.im[i] = static_cast<float>(x * turn.sin + y * turn.cos);
    }
}

using Steps = std::array<Turn, kBlock>;

/// How far the turn of a point, put together from the turn of its block and a step, may stand from
/// the turn of its own angle: roundings of the angles (9 units of the last place of the largest) and
/// of sine, cosine and products (16), both doubled for safety.
double TurnError(const PhaseTerms& phase, std::int32_t n)
{
    const double far =
        std::max(std::abs(static_cast<double>(phase.pivot)), std::abs(static_cast<double>(n) - phase.pivot));
    const double largest =
        (std::abs(static_cast<double>(phase.ph0_deg)) + far * std::abs(static_cast<double>(phase.ph1_deg)) / n) *
        kDegToRad;
    return 2e-15 * largest + 4e-15;
}

bool SameFloat(double low, double high)
{
    return std::bit_cast<std::uint32_t>(static_cast<float>(low)) ==
           std::bit_cast<std::uint32_t>(static_cast<float>(high));
}

/// Rotates a block by products of turns, four times as fast as by a sine and cosine for each point. Where
/// the error bound leaves the rounding to float open, the point is done again by its own angle, so
/// that the result is that of the plain formula to the bit.
void RotateBlock(const Rows& rows, std::size_t begin, std::size_t count, Turn start, const Steps& steps, double error,
                 const auto& turn_at)
{
    std::array<double, kBlock> x{}, y{};
    std::array<double, kBlock> new_re, new_im, room;
    for (std::size_t j = 0; j < count; ++j) {
        x[j] = rows.source_re[begin + j];
        y[j] = rows.source_im[begin + j];
    }
    for (std::size_t j = 0; j < kBlock; ++j) {
        const double c = start.cos * steps[j].cos - start.sin * steps[j].sin;
        const double s = start.sin * steps[j].cos + start.cos * steps[j].sin;
        new_re[j] = x[j] * c - y[j] * s;
        new_im[j] = x[j] * s + y[j] * c;
        // The small constant sends results of exactly 0, whose sign counts, the long way.
        room[j] = (std::abs(x[j]) + std::abs(y[j])) * error + 1e-300;
    }
    for (std::size_t j = 0; j < count; ++j) {
        if (!SameFloat(new_re[j] - room[j], new_re[j] + room[j]) ||
            !SameFloat(new_im[j] - room[j], new_im[j] + room[j])) {
            const Turn turn = turn_at(begin + j);
            new_re[j] = x[j] * turn.cos - y[j] * turn.sin;
            new_im[j] = x[j] * turn.sin + y[j] * turn.cos;
        }
        rows.re[begin + j] = static_cast<float>(new_re[j]);
        rows.im[begin + j] = static_cast<float>(new_im[j]);
    }
}

} // namespace

void RotateRow(std::span<const float> source_re, std::span<const float> source_im, std::span<float> re,
               std::span<float> im, std::int32_t n, const PhaseTerms& phase)
{
    if (n <= 0) return;
    const std::size_t count =
        std::min({static_cast<std::size_t>(n), source_re.size(), source_im.size(), re.size(), im.size()});
    const Rows rows{source_re.data(), source_im.data(), re.data(), im.data()};
    // A zero order of -0 keeps its sign only left of the pivot, so it can't be hoisted.
    if (phase.ph1_deg == 0.0F && !(phase.ph0_deg == 0.0F && std::signbit(phase.ph0_deg)))
        return RotateConstant(rows, count, TurnOf(Angle(phase, n, 0)));
    const auto turn_at = [&](std::size_t i) { return TurnOf(Angle(phase, n, static_cast<std::int32_t>(i))); };
    Steps steps;
    for (std::size_t j = 0; j < kBlock; ++j)
        steps[j] = TurnOf(static_cast<double>(j) * static_cast<double>(phase.ph1_deg) / n * kDegToRad);
    const double error = TurnError(phase, n);
    for (std::size_t begin = 0; begin < count; begin += kBlock)
        RotateBlock(rows, begin, std::min(kBlock, count - begin), turn_at(begin), steps, error, turn_at);
}

} // namespace nmr
