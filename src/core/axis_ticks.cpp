#include "core/axis_ticks.h"

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

constexpr double kLogOfE = 0.434294481903252;
// What logarithm and power lose: without it a range of exactly 0.5 counts as a little less.
constexpr double kGuard = 1e-9;

struct Limit {
    double least, factor;
};
constexpr Limit kFactors[] = {{5, 10}, {2.5, 5}, {2, 4}, {1.5, 2}};

double Factor(double mantissa)
{
    for (const Limit& limit : kFactors)
        if (mantissa >= limit.least - kGuard) return limit.factor;
    return 1;
}

/// factor times 10^exponent; a negative power is divided by, which gives the double nearest to the
/// decimal number (0.3 and not 0.30000000000000004).
double Scaled(double factor, double exponent)
{
    return exponent < 0 ? factor / std::pow(10.0, -exponent) : factor * std::pow(10.0, exponent);
}

} // namespace

Ticks AutoTic(double a, double b)
{
    Ticks ticks;
    const double span = b - a;
    if (span == 0.0 || !std::isfinite(span)) return ticks;
    ticks.span = span;
    const double log_span = std::log(std::abs(span)) * kLogOfE;
    const double exponent = std::floor(log_span + kGuard);
    ticks.factor = Factor(std::pow(10.0, log_span - exponent));
    ticks.step = std::copysign(Scaled(ticks.factor, exponent - 1), span);
    const double index = std::floor(a / ticks.step - 0.0001) + 1;
    ticks.first = index == 0.0 ? 0.0 : index * ticks.step;
    return ticks;
}

int Digits(double x)
{
    if (x == 0.0 || !std::isfinite(x)) return 0;
    return static_cast<int>(std::floor(std::log10(std::abs(x)) + 0.00001));
}

int TickDecimals(double step)
{
    if (step == 0.0 || !std::isfinite(step)) return 0;
    const int digits = Digits(step);
    const double mantissa = std::abs(step) / std::pow(10.0, digits);
    const bool second_digit = std::abs(mantissa - std::round(mantissa)) > 1e-6;
    return std::max(0, -digits + (second_digit ? 1 : 0));
}

} // namespace nmr
