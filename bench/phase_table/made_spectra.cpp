#include "made_spectra.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>

namespace nmr::bench {
namespace {

struct Kind {
    const char *name, *nucleus;
    int fewest, most;         ///< multiplets
    double narrowest, widest; ///< half widths, points
    int couplings;            ///< at most
    double noise;             ///< over the highest line
    double phase1;            ///< largest first order, degrees
    double roll;              ///< of the base line, over the highest line
    double solvent;           ///< a line that many times the highest; 0: none
    bool both_signs;
};

constexpr std::array kKinds{
    Kind{"1H small molecule", "1H", 4, 14, 2, 6, 3, 5e-4, 120, 0, 0, false},
    Kind{"1H crowded", "1H", 40, 120, 2, 10, 3, 1e-3, 120, 0.002, 0, false},
    Kind{"1H broad", "1H", 4, 12, 60, 500, 1, 2e-3, 60, 0.002, 0, false},
    Kind{"1H solvent", "1H", 6, 30, 2, 8, 3, 2e-5, 120, 0, 30, false},
    Kind{"1H large first order", "1H", 8, 30, 2, 8, 3, 1e-3, 900, 0.002, 0, false},
    Kind{"1H rolling base line", "1H", 6, 30, 2, 8, 3, 1e-3, 120, 0.02, 0, false},
    Kind{"1H low signal to noise", "1H", 3, 8, 3, 10, 2, 0.03, 90, 0, 0, false},
    Kind{"13C", "13C", 5, 30, 2, 6, 0, 5e-3, 180, 0.001, 0, false},
    Kind{"13C low signal to noise", "13C", 4, 15, 2, 6, 0, 0.05, 120, 0, 0, false},
    Kind{"19F wide", "19F", 1, 5, 4, 20, 2, 3e-3, 700, 0.005, 0, false},
    Kind{"DEPT", "13C", 4, 16, 2, 6, 0, 5e-3, 180, 0.001, 0, true},
    Kind{"APT", "13C", 8, 25, 2, 6, 0, 0.01, 180, 0.001, 0, true},
};

using Complex = std::complex<double>;

struct Maker {
    std::mt19937 engine;
    double Any(double a, double b) { return std::uniform_real_distribution<double>(a, b)(engine); }
    double Normal() { return std::normal_distribution<double>(0.0, 1.0)(engine); }
};

void AddLine(std::vector<Complex>& row, double at, double height, double half_width)
{
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] += height / Complex(1.0, (static_cast<double>(i) - at) / half_width);
}

void AddMultiplet(std::vector<Complex>& row, Maker& m, const Kind& kind, double at, double height)
{
    const double half_width = kind.narrowest * std::pow(kind.widest / kind.narrowest, m.Any(0, 1));
    std::vector<double> places{at};
    const int couplings = static_cast<int>(m.Any(0, kind.couplings + 0.999));
    for (int c = 0; c < couplings; ++c) {
        const double j = m.Any(8, 60);
        std::vector<double> split;
        for (const double p : places) {
            split.push_back(p - j / 2);
            split.push_back(p + j / 2);
        }
        places = split;
    }
    for (const double p : places) AddLine(row, p, height / std::sqrt(static_cast<double>(places.size())), half_width);
}

} // namespace

int MadeKinds()
{
    return static_cast<int>(kKinds.size());
}

MadeSpectrum MakeSpectrum(int kind_number, unsigned seed, int points)
{
    const Kind& kind = kKinds[static_cast<std::size_t>(kind_number)];
    Maker m{std::mt19937(seed * 1009 + static_cast<unsigned>(kind_number))};
    const double n = points;
    std::vector<Complex> row(static_cast<std::size_t>(points));
    const int count = static_cast<int>(m.Any(kind.fewest, kind.most + 0.999));
    for (int k = 0; k < count; ++k) {
        const double height = std::pow(10.0, m.Any(-1.2, 0)) * (kind.both_signs && m.Any(0, 1) < 0.4 ? -1 : 1);
        AddMultiplet(row, m, kind, n * m.Any(0.12, 0.88), height);
    }
    double top = 0;
    for (const Complex& z : row) top = std::max(top, std::abs(z));
    if (kind.solvent > 0) AddLine(row, n * m.Any(0.3, 0.7), kind.solvent * top, m.Any(3, 12));
    MadeSpectrum made{kind.name,       {},          {}, m.Any(-180, 180), m.Any(-kind.phase1, kind.phase1),
                      kind.both_signs, kind.nucleus};
    std::array<Complex, 4> roll{};
    for (Complex& c : roll) c = std::polar(kind.roll * top * m.Any(0, 1), m.Any(-3.14, 3.14));
    const double noise = kind.noise * top * m.Any(0.3, 1.0);
    for (int i = 0; i < points; ++i) {
        const double share = i / n;
        Complex z = row[static_cast<std::size_t>(i)] *
                    std::polar(1.0, -(made.p0_deg + share * made.p1_deg) * std::numbers::pi / 180);
        for (std::size_t k = 0; k < roll.size(); ++k)
            z += roll[k] * std::polar(1.0, 2 * std::numbers::pi * static_cast<double>(k) * share);
        const double re = noise * m.Normal();
        z += Complex(re, noise * m.Normal());
        made.re.push_back(static_cast<float>(z.real()));
        made.im.push_back(static_cast<float>(z.imag()));
    }
    return made;
}

} // namespace nmr::bench
