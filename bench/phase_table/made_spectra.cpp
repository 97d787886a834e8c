#include "made_spectra.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <span>

namespace nmr::bench {
namespace {

/// What a kind draws its spectra from.
struct Kind {
    const char *name, *nucleus;
    int fewest, most;         ///< multiplets
    double narrowest, widest; ///< half widths, points
    int couplings;            ///< at most
    double noise;             ///< over the highest line
    double phase1;            ///< largest first order, degrees
    double roll;              ///< of the base line, over the highest line
    double solvent;           ///< a line that many times the highest; 0: none
    double negative;          ///< share of lines that point down
    bool told;                ///< by the pulse program
    double solvent_turn = 0;  ///< largest phase of the solvent's own, degrees, as suppression leaves it
    double hump = 0;          ///< of the probe, over the highest line: far broader than any line, of any phase
};

constexpr std::array kKinds{
    Kind{"1H small molecule", "1H", 4, 14, 2, 6, 3, 5e-4, 120, 0, 0, 0, false},
    Kind{"1H few lines", "1H", 1, 3, 2, 8, 2, 1e-3, 120, 0.001, 0, 0, false},
    Kind{"1H crowded", "1H", 40, 120, 2, 10, 3, 1e-3, 120, 0.002, 0, 0, false},
    Kind{"1H broad", "1H", 4, 12, 60, 500, 1, 2e-3, 60, 0.002, 0, 0, false},
    Kind{"1H broad and sharp", "1H", 5, 20, 3, 600, 2, 1e-3, 120, 0.002, 0, 0, false},
    Kind{"1H solvent", "1H", 6, 30, 2, 8, 3, 2e-5, 120, 0, 30, 0, false},
    Kind{"1H solvent suppressed", "1H", 8, 40, 2, 8, 3, 1e-3, 120, 0.003, 1, 0, false, 90},
    Kind{"1H large first order", "1H", 8, 30, 2, 8, 3, 1e-3, 900, 0.002, 0, 0, false},
    Kind{"1H rolling base line", "1H", 6, 30, 2, 8, 3, 1e-3, 120, 0.02, 0, 0, false},
    Kind{"1H strongly rolling base line", "1H", 6, 30, 2, 8, 3, 1e-3, 90, 0.08, 0, 0, false},
    Kind{"1H low signal to noise", "1H", 3, 8, 3, 10, 2, 0.03, 90, 0, 0, 0, false},
    Kind{"1H some negative", "1H", 8, 25, 2, 8, 2, 2e-3, 90, 0.001, 0, 0.3, false},
    Kind{"13C", "13C", 5, 30, 2, 6, 0, 5e-3, 180, 0.001, 0, 0, false},
    Kind{"13C low signal to noise", "13C", 4, 15, 2, 6, 0, 0.05, 120, 0, 0, 0, false},
    Kind{"13C large first order", "13C", 8, 30, 2, 6, 0, 0.01, 900, 0.001, 0, 0, false},
    Kind{"13C solvent", "13C", 8, 30, 2, 6, 0, 1e-3, 180, 0.001, 8, 0, false},
    Kind{"19F wide", "19F", 1, 5, 4, 20, 2, 3e-3, 700, 0.005, 0, 0, false},
    Kind{"19F on a hump", "19F", 2, 6, 4, 20, 2, 3e-3, 300, 0.005, 0, 0, false, 0, 0.3},
    Kind{"31P", "31P", 1, 4, 5, 40, 1, 0.01, 180, 0.003, 0, 0, false},
    Kind{"DEPT", "13C", 4, 16, 2, 6, 0, 5e-3, 180, 0.001, 0, 0.4, true},
    Kind{"DEPT low signal to noise", "13C", 4, 12, 2, 6, 0, 0.03, 120, 0, 0, 0.4, true},
    Kind{"DEPT not told", "13C", 4, 16, 2, 6, 0, 5e-3, 120, 0.001, 0, 0.4, false},
    Kind{"APT", "13C", 8, 25, 2, 6, 0, 0.01, 180, 0.001, 0, 0.4, true},
    Kind{"APT solvent", "13C", 6, 25, 2, 6, 0, 3e-3, 180, 0.002, 4, 0.4, true},
    Kind{"13C on a hump", "13C", 6, 20, 2, 6, 0, 5e-3, 180, 0.001, 0, 0, false, 0, 0.3},
    Kind{"15N negative", "15N", 1, 6, 3, 8, 0, 0.01, 180, 0.001, 0, 1, false},
    Kind{"1H one line", "1H", 1, 1, 2, 20, 0, 2e-3, 120, 0.001, 0, 0, false},
    Kind{"1H paramagnetic", "1H", 5, 15, 40, 1500, 0, 2e-3, 300, 0.002, 0, 0, false},
    Kind{"1H polymer", "1H", 3, 8, 150, 900, 0, 1e-3, 90, 0.002, 2, 0, false},
    Kind{"1H two lines", "1H", 2, 2, 2, 20, 0, 2e-3, 120, 0.001, 0, 0, false},
    Kind{"1H urine", "1H", 150, 250, 2, 12, 3, 3e-4, 120, 0.003, 2, 0, false, 60},
};

using Complex = std::complex<double>;

struct Maker {
    std::mt19937 engine;
    double Any(double a, double b) { return std::uniform_real_distribution<double>(a, b)(engine); }
    double Normal() { return std::normal_distribution<double>(0.0, 1.0)(engine); }
};

/// What the lines of one spectrum have in common beside their phase.
struct Shape {
    bool cut = false;             ///< the FID ends early and is filled with zeros: ringing feet
    std::array<double, 3> shim{}; ///< places of parts of each line, half widths, as a bad shim leaves them
};

Shape AnyShape(Maker& m)
{
    Shape shape;
    const double kind = m.Any(0, 1);
    shape.cut = kind > 0.8;
    if (kind < 0.3)
        for (double& place : shape.shim) place = m.Any(-0.5, 2.5);
    return shape;
}

void AddLine(std::vector<Complex>& row, const Shape& shape, double at, double height, double half_width)
{
    constexpr double kPart = std::numbers::pi / 2.0; // a quarter of the row's time was recorded
    const bool whole = shape.shim[0] == 0.0;         // all parts at one place
    const double parts = whole ? 1.0 : 3.0;
    for (const double place : std::span(shape.shim).first(whole ? 1 : 3)) {
        const double center = at + place * half_width;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const double off = static_cast<double>(i) - center;
            Complex line = height / parts / Complex(1.0, off / half_width);
            if (shape.cut) line *= 1.0 - std::polar(std::exp(-half_width * kPart), -off * kPart);
            row[i] += line;
        }
    }
}

void AddMultiplet(std::vector<Complex>& row, Maker& m, const Kind& kind, const Shape& shape, double at, double height)
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
    for (const double p : places)
        AddLine(row, shape, p, height / std::sqrt(static_cast<double>(places.size())), half_width);
}

double Top(const std::vector<Complex>& row)
{
    double top = 0;
    for (const Complex& z : row) top = std::max(top, std::abs(z));
    return top;
}

} // namespace

int MadeKinds()
{
    return static_cast<int>(kKinds.size());
}

std::string KindName(int kind)
{
    return kKinds[static_cast<std::size_t>(kind)].name;
}

MadeSpectrum MakeSpectrum(int kind_number, unsigned seed, int points)
{
    const Kind& kind = kKinds[static_cast<std::size_t>(kind_number)];
    Maker m{std::mt19937(seed * 1009 + static_cast<unsigned>(kind_number))};
    const double n = points;
    std::vector<Complex> row(static_cast<std::size_t>(points));
    const Shape shape = AnyShape(m);
    const int count = static_cast<int>(m.Any(kind.fewest, kind.most + 0.999));
    for (int k = 0; k < count; ++k) {
        const double height = std::pow(10.0, m.Any(-1.2, 0)) * (m.Any(0, 1) < kind.negative ? -1 : 1);
        AddMultiplet(row, m, kind, shape, n * m.Any(0.12, 0.88), height);
    }
    const double top = Top(row);
    const auto add_apart = [&](double at, double height, double half_width, double turn_deg) {
        std::vector<Complex> apart(row.size());
        AddLine(apart, shape, at, height, half_width);
        const Complex turn = std::polar(1.0, turn_deg * std::numbers::pi / 180);
        for (std::size_t i = 0; i < row.size(); ++i) row[i] += turn * apart[i];
    };
    if (kind.solvent > 0)
        add_apart(n * m.Any(0.3, 0.7), kind.solvent * top, m.Any(3, 12), m.Any(-1, 1) * kind.solvent_turn);
    if (kind.hump > 0) add_apart(n * m.Any(0.2, 0.8), kind.hump * top * m.Any(0.2, 1), n / 12, m.Any(-180, 180));
    MadeSpectrum made{kind.name, {}, {}, m.Any(-180, 180), m.Any(-kind.phase1, kind.phase1), kind.told, kind.nucleus};
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
