#include "fid/filter.h"

#include "core/numbers.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace nmr {

namespace {

double At(std::span<const float> line, std::size_t i)
{
    return static_cast<double>(line[i]);
}

void FirstOrder(const FidLines& fid, const FilteredLines& out)
{
    const double c = std::tan(kPi / 2.01);
    const double a = c / (1.0 + c);
    const double b = (1.0 - c) / (1.0 + c);
    const auto next = [a, b](std::span<const float> x, std::span<float> f, std::size_t i) {
        f[i] = static_cast<float>(b * static_cast<double>(f[i - 1]) + a * (At(x, i) + At(x, i - 1)));
    };
    // Point 0 is lost on purpose. Both lines in one loop: each waits for its own last point.
    for (std::size_t i = 1; i < fid.re.size(); ++i) {
        next(fid.re, out.re, i);
        next(fid.im, out.im, i);
    }
}

void MovingAverage(std::span<const float> x, std::span<float> f, std::size_t length)
{
    for (std::size_t i = length - 1; i < x.size(); ++i) {
        double sum = 0.0;
        for (std::size_t k = 0; k < length; ++k) sum += At(x, i - k);
        f[i] = static_cast<float>(sum / static_cast<double>(length));
    }
}

struct TwoPole {
    std::array<double, 3> in;  ///< b0/a0, b1/a0, b2/a0
    std::array<double, 2> out; ///< a1/a0, a2/a0
};

TwoPole TwoPoleTerms()
{
    const double w = 2.0 * kPi / 2.1;
    const double q = 1.1;
    const double al = std::sin(w) / (2.0 * q);
    const double a0 = 1.0 + al;
    const double half = (1.0 - std::cos(w)) / 2.0;
    return {{half / a0, (1.0 - std::cos(w)) / a0, half / a0}, {-2.0 * std::cos(w) / a0, (1.0 - al) / a0}};
}

void TwoPoleLine(const TwoPole& t, std::span<const float> x, std::span<float> f)
{
    for (std::size_t i = 2; i < x.size(); ++i)
        f[i] = static_cast<float>(t.in[0] * At(x, i) + t.in[1] * At(x, i - 1) + t.in[2] * At(x, i - 2) -
                                  t.out[0] * At(f, i - 1) - t.out[1] * At(f, i - 2));
}

} // namespace

void Filter_Fid(std::int32_t kind, const FidLines& fid, const FilteredLines& out, std::int32_t average_points)
{
    switch (kind) {
    case kFilterMovingAverage: {
        const auto length = static_cast<std::size_t>(std::max(average_points, 1));
        MovingAverage(fid.re, out.re, length);
        MovingAverage(fid.im, out.im, length);
        break;
    }
    case kFilterFirstOrder:
        FirstOrder(fid, out);
        break;
    case kFilterTwoPole: {
        const TwoPole terms = TwoPoleTerms();
        TwoPoleLine(terms, fid.re, out.re);
        TwoPoleLine(terms, fid.im, out.im);
        break;
    }
    default:
        std::ranges::copy(fid.re, out.re.begin());
        std::ranges::copy(fid.im, out.im.begin());
    }
}

} // namespace nmr
