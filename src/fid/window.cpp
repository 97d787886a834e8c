// The multiplier of the FID. Each value is computed in double and stored as float; the order of
// every formula is fixed, so that a curve repeats to the bit.

#include "fid/window.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace nmr {

namespace {

using Index = std::ptrdiff_t;

/// An exponent at or above it would leave the range of float: the Gaussian keeps a hole there.
constexpr double kLargestExponent = 85.0;

struct Curve {
    OffsetLine<float>& w;
    const ParamBlock& par;
    Index measured; ///< points of the FID that the curve spans
    Index points;   ///< points of the row, filled ones included
    double sweep_hz;

    Index first() const { return w.first(); }
};

std::int32_t PercentOf(double percent, double length)
{
    return RoundHalfEven(length * percent / 100.0);
}

void Exponential(const Curve& c)
{
    // The far negative side leaves the range of float; no shift ever reaches it, so it saturates.
    const double limit = std::numeric_limits<float>::max();
    const double decay = -static_cast<double>(c.par.BF1);
    for (Index i = c.first(); i < c.measured; ++i) {
        const double value = std::exp(decay * static_cast<double>(i) * kPi / c.sweep_hz);
        c.w[i] = static_cast<float>(std::min(value, limit));
    }
}

void Gaussian(const Curve& c)
{
    const double bf = static_cast<double>(c.par.BF2);
    const double gf = static_cast<double>(c.par.GF);
    const Index center = PercentOf(static_cast<double>(c.par.WinStart1), static_cast<double>(c.measured));
    for (Index i = c.first(); i < c.measured; ++i) {
        const double t = static_cast<double>(i - center) / c.sweep_hz;
        const double x = t * bf * kPi - t * t * kPi * gf * gf;
        if (x < kLargestExponent) c.w[i] = static_cast<float>(std::exp(x));
    }
}

struct Span {
    float start_percent, end_percent;
};

/// Calls `value` with (i - start) / (end - start) * pi for the points of a range in percent.
template <class Function>
Status OverRange(const Curve& c, Span span, Function value)
{
    const Index start = PercentOf(static_cast<double>(span.start_percent), static_cast<double>(c.measured));
    const Index end = PercentOf(static_cast<double>(span.end_percent), static_cast<double>(c.measured));
    if (start == end) return Error{ErrorCode::bad_value, "Make_Window_Function", "The window starts at its end."};
    const Index last = std::min(end, c.measured - 1);
    for (Index i = std::max(start, c.first()); i <= last; ++i) {
        const double angle = static_cast<double>(i - start) / static_cast<double>(end - start) * kPi;
        c.w[i] = static_cast<float>(value(angle));
    }
    return {};
}

double BlackmanHarris(double half_angle)
{
    // Angle and constants are single precision, the sum is double.
    const auto a = static_cast<double>(static_cast<float>(2.0 * half_angle));
    return static_cast<double>(0.35875F) - static_cast<double>(0.48829F) * std::cos(a) +
           static_cast<double>(0.14128F) * std::cos(2.0 * a) - static_cast<double>(0.01168F) * std::cos(3.0 * a);
}

Status Shape(const Curve& c)
{
    const auto squared_sine = [](double angle) {
        const double s = std::sin(angle);
        return s * s;
    };
    switch (static_cast<WindowKind>(c.par.WindowFunc)) {
    case WindowKind::exponential:
        Exponential(c);
        return {};
    case WindowKind::gaussian:
        Gaussian(c);
        return {};
    case WindowKind::sine_bell:
        return OverRange(c, {c.par.WinStart3, c.par.WinEnd3}, [](double angle) { return std::sin(angle); });
    case WindowKind::hann:
        return OverRange(c, {c.par.WinStart4, c.par.WinEnd4}, squared_sine);
    case WindowKind::blackman_harris:
        return OverRange(c, {c.par.WinStart2, c.par.WinEnd2}, BlackmanHarris);
    }
    return Error{ErrorCode::bad_value, "Make_Window_Function", "There is no such window function."};
}

/// Multiplies by a straight edge that is 0 at `zero` and 1 at `one`, from `from` to `to`.
void Edge(const Curve& c, Index from, Index to, Index zero, Index one)
{
    const Index last = std::min(to, c.points - 1);
    for (Index i = std::max(from, c.first()); i <= last; ++i)
        c.w[i] = static_cast<float>(static_cast<double>(c.w[i]) * static_cast<double>(i - zero) /
                                    static_cast<double>(one - zero));
}

void Trapezoid(const Curve& c)
{
    // A shift to the left takes points from the end of the FID.
    const Index base = c.par.FIDShift < 1 ? c.measured : c.measured - c.par.FIDShift;
    std::array<Index, 4> p{};
    for (std::size_t k = 0; k < p.size(); ++k)
        p[k] = PercentOf(static_cast<double>(c.par.Trap[k]), static_cast<double>(base));
    for (Index i = c.first(); i < std::min(p[0], c.points); ++i) c.w[i] = 0.0F;
    if (p[1] > p[0]) Edge(c, p[0], p[1], p[0], p[1]);
    if (p[2] < p[3]) Edge(c, p[2], p[3], p[3], p[2]);
    for (Index i = std::max(p[3], c.first()); i < c.points; ++i) c.w[i] = 0.0F;
}

/// Scales the top to 1. The exponential is 1 at point 0 by itself and is left as it is.
bool Normalise(const Curve& c)
{
    float top = 0.0F;
    for (Index i = c.first(); i < c.measured; ++i) top = c.w[i] > top ? c.w[i] : top;
    if (!(top > 0.0F) || !std::isfinite(top)) return false;
    if (static_cast<WindowKind>(c.par.WindowFunc) == WindowKind::exponential) return true;
    for (Index i = c.first(); i < c.measured; ++i) c.w[i] /= top;
    return true;
}

Index MeasuredPoints(const DataSet& set)
{
    const std::int32_t points = set.par.POINT;
    // Points added by linear prediction count as measured.
    const bool filled_by_prediction = set.ProcMark2 != 1;
    if (filled_by_prediction || set.par.FIDPoints <= 0) return points;
    return std::min(set.par.FIDPoints, points);
}

} // namespace

Status Make_Window_Function(GlobalBlock& g, std::int16_t slot)
{
    if (slot < 0 || slot >= kSlotCount) return Error{ErrorCode::bad_value, "Make_Window_Function", "No such slot."};
    const DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    const std::int32_t points = std::max(set.par.POINT, 0);
    g.WindowCurve.Resize(points);
    if (!(set.par.FREQU > 0.0F))
        return Error{ErrorCode::bad_value, "Make_Window_Function", "The spectral width is missing."};

    const Curve curve{g.WindowCurve, set.par, MeasuredPoints(set), points, static_cast<double>(set.par.FREQU)};
    const std::int32_t trapezoid_off = set.par.WindowFunc >= 0 && set.par.WindowFunc < 5
                                           ? set.par.WinFlags[static_cast<std::size_t>(set.par.WindowFunc)]
                                           : 1;
    Status status = Shape(curve);
    if (status && trapezoid_off == 0) Trapezoid(curve);
    if (status && !Normalise(curve))
        status = Error{ErrorCode::bad_value, "Make_Window_Function", "The window function is zero everywhere."};
    if (!status) g.WindowCurve.Resize(points);
    return status;
}

} // namespace nmr
