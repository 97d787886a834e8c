#include "analysis/slow_part.h"

#include <algorithm>
#include <complex>
#include <numbers>

namespace nmr {

namespace {

using Complex = std::complex<double>;

constexpr std::size_t kCells = 1024; ///< of a row; a median of each is all that is looked at
constexpr std::size_t kWindow = 32;  ///< cells of a running median
constexpr std::size_t kStep = 8;     ///< cells between knots
constexpr std::size_t kKnots = kCells / kStep;

double MedianOf(std::vector<double>& values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

std::vector<Complex> LinesAt(const std::vector<LinePhase>& lines, std::size_t cell)
{
    std::vector<Complex> sums(kCells);
    for (const LinePhase& l : lines) {
        const Complex amplitude = std::polar(l.height, l.angle_deg * std::numbers::pi / 180.0);
        for (std::size_t k = 0; k < kCells; ++k) {
            const double middle = (static_cast<double>(k) + 0.5) * static_cast<double>(cell) - 0.5;
            const double u = l.side * (middle - l.point) / l.half_width;
            sums[k] += amplitude * Complex(1.0, -u) / (1.0 + u * u);
        }
    }
    return sums;
}

/// Of each cell, without the lines.
std::vector<double> CellMedians(std::span<const float> row, std::size_t cell)
{
    constexpr std::size_t kLooked = 24; // of a cell, from here on by steps
    const std::size_t step = std::max<std::size_t>(cell / kLooked, 1);
    std::vector<double> medians, values;
    for (std::size_t k = 0; k < kCells; ++k) {
        values.clear();
        for (std::size_t i = k * cell; i < (k + 1) * cell; i += step) values.push_back(static_cast<double>(row[i]));
        medians.push_back(MedianOf(values));
    }
    return medians;
}

std::vector<double> KnotsOf(const std::vector<double>& cells)
{
    std::vector<double> knots, values;
    for (std::size_t k = 0; k < kKnots; ++k) {
        const std::size_t middle = k * kStep + kStep / 2;
        const std::size_t half = std::min({kWindow / 2, middle, kCells - middle});
        const auto at = cells.begin() + static_cast<std::ptrdiff_t>(middle);
        const auto reach = static_cast<std::ptrdiff_t>(half);
        values.assign(at - reach, at + reach);
        knots.push_back(MedianOf(values));
    }
    return knots;
}

void SubtractKnots(std::span<float> row, const std::vector<double>& knots, std::size_t cell)
{
    const auto apart = static_cast<double>(kStep * cell);
    for (std::size_t i = 0; i < row.size(); ++i) {
        const double place = std::clamp(static_cast<double>(i) / apart - 0.5, 0.0, static_cast<double>(kKnots - 1));
        const std::size_t k = std::min(static_cast<std::size_t>(place), kKnots - 2);
        const double part = place - static_cast<double>(k);
        row[i] -= static_cast<float>(knots[k] + part * (knots[k + 1] - knots[k]));
    }
}

} // namespace

void Subtract_Slow_Part(std::span<float> re, std::span<float> im, const std::vector<LinePhase>& lines)
{
    const std::size_t cell = re.size() / kCells;
    if (cell < 2 || im.size() != re.size()) return;
    const std::vector<Complex> known = LinesAt(lines, cell);
    std::vector<double> x = CellMedians(re, cell), y = CellMedians(im, cell);
    for (std::size_t k = 0; k < kCells; ++k) {
        x[k] -= known[k].real();
        y[k] -= known[k].imag();
    }
    SubtractKnots(re, KnotsOf(x), cell);
    SubtractKnots(im, KnotsOf(y), cell);
}

} // namespace nmr
