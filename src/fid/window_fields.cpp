// The list of window functions and the numbers of the window dialog.

#include "fid/window.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace nmr {

const std::array<WindowRow, 5>& WindowRows()
{
    // The expressions are display text in the layout's own text codes; the curve never depends on them.
    static constexpr std::array<WindowRow, 5> kRows{{
        {WindowKind::exponential, "Exponential", "Exponential",
         R"(\<   f(\i1 t\i0 ) = exp( \g1 - p\f0  ·BF · \i1 t\i0  )\>)"},
        {WindowKind::gaussian, "Gaussian", "Gauss Function",
         R"(\<   f(\i1 t\i0 ) = exp( \g1 - p \f0 · \f0 (\g1 -\f0  BF) \f0 ·\f0  (\i1 t\i0  )"
         R"(\g1 -\f0  WS) \g1 - p \f0 ·\f0  GF\+1 2\+0  \f0 ·\f0  (\i1 t\i0  \g1 -\f0  )"
         R"(WS)\+1 2\+0 )\>)"},
        {WindowKind::sine_bell, "SineBell", "Sine Bell",
         R"(\<   f(\i1 t\i0  ) = sin( \g1 p \f0 ·\f0  (\i1 t\i0  \g1 -\f0  WS) / (WE \g1 )"
         R"(-\f0  WS) )\>)"},
        {WindowKind::hann, "Hann (SqrSineBell)", "Squared Sine Bell",
         R"(\<   f(\i1 t\i0 ) = sin\+1 2\+0 ( \g1 p  \f0 ·\f0  (\i1 t\i0  \g1 -\f0  WS) / )"
         R"((WE \g1 -\f0  WS) )\>)"},
        {WindowKind::blackman_harris, "BlackmanHarris", "Blackman Harris",
         R"(\<   f(\i1 t\i0 ) = 0.35875 \g1 -\f0  0.48829 · cos( 2\g1 p\f0  · (\i1 t\i0  )"
         R"(\g1 -\f0  WS) / (WE \g1 -\f0  WS) ))"
         R"(\cr                       \g1 +\f0  0.14128 · cos( 4\g1 p\f0  · (\i1 t\i0  \g1 )"
         R"(-\f0  WS) / (WE \g1 -\f0  WS) ))"
         R"(\cr                       \g1 -\f0  0.01168 · cos( 6\g1 p\f0  · (\i1 t\i0  \g1 )"
         R"(-\f0  WS) / (WE \g1 -\f0  WS) )\>)"},
    }};
    return kRows;
}

namespace {

constexpr double kNoLimit = std::numeric_limits<float>::max();
constexpr double kGap = 10.0; ///< percent that must stay between a start and its end

struct Range {
    float ParamBlock::*start;
    float ParamBlock::*end;
};

/// Start and end of the selected function; null for the functions that have none.
Range RangeOf(const ParamBlock& par)
{
    switch (static_cast<WindowKind>(par.WindowFunc)) {
    case WindowKind::sine_bell:
        return {&ParamBlock::WinStart3, &ParamBlock::WinEnd3};
    case WindowKind::hann:
        return {&ParamBlock::WinStart4, &ParamBlock::WinEnd4};
    case WindowKind::blackman_harris:
        return {&ParamBlock::WinStart2, &ParamBlock::WinEnd2};
    default:
        return {nullptr, nullptr};
    }
}

/// The member of a field, null when the selected function has none; of a const block, a const one.
template <class Par>
auto FieldOf(Par& par, WindowField field) -> decltype(&par.BF1)
{
    const Range range = RangeOf(par);
    switch (field) {
    case WindowField::bf1:
        return &par.BF1;
    case WindowField::bf2:
        return &par.BF2;
    case WindowField::gf:
        return &par.GF;
    case WindowField::center:
        return &par.WinStart1;
    case WindowField::start:
        return range.start != nullptr ? &(par.*range.start) : nullptr;
    case WindowField::end:
        return range.end != nullptr ? &(par.*range.end) : nullptr;
    case WindowField::trap1:
        return &par.Trap[0];
    case WindowField::trap2:
        return &par.Trap[1];
    case WindowField::trap3:
        return &par.Trap[2];
    case WindowField::trap4:
        return &par.Trap[3];
    }
    return nullptr;
}

bool IsHz(WindowField field)
{
    return field == WindowField::bf1 || field == WindowField::bf2 || field == WindowField::gf;
}

} // namespace

WindowLimits LimitsOf(const ParamBlock& par, WindowField field)
{
    const auto trap = [&par](std::size_t corner) { return static_cast<double>(par.Trap[corner]); };
    switch (field) {
    case WindowField::bf1:
    case WindowField::bf2:
    case WindowField::gf:
        return {0.0, kNoLimit};
    case WindowField::center:
        return {0.0, 110.0};
    case WindowField::start:
        return {-100.0, GetWindowField(par, WindowField::end) - kGap};
    case WindowField::end:
        return {GetWindowField(par, WindowField::start) + kGap, 200.0};
    case WindowField::trap1:
        return {-100.0, trap(1)};
    case WindowField::trap2:
        return {trap(0), trap(2) - kGap};
    case WindowField::trap3:
        return {trap(1) + kGap, trap(3)};
    case WindowField::trap4:
        return {trap(2), 200.0};
    }
    return {};
}

double GetWindowField(const ParamBlock& par, WindowField field)
{
    const float* value = FieldOf(par, field);
    return value != nullptr ? static_cast<double>(*value) : 0.0;
}

double SetWindowField(ParamBlock& par, WindowField field, double value)
{
    float* stored = FieldOf(par, field);
    if (stored == nullptr || !std::isfinite(value)) return GetWindowField(par, field);
    const WindowLimits limits = LimitsOf(par, field);
    // Not std::clamp: values of a file may leave no room between the limits.
    *stored = static_cast<float>(std::max(limits.low, std::min(value, limits.high)));
    return static_cast<double>(*stored);
}

double StepWindowField(ParamBlock& par, WindowField field, int direction)
{
    const double now = GetWindowField(par, field);
    if (!IsHz(field)) return SetWindowField(par, field, now + direction);
    // 0.7 is stored as 0.69999999: without the allowance an arrow would be caught at such a value.
    const double tenths = std::trunc(now * 10.0 + 1e-5 * std::max(1.0, now));
    return SetWindowField(par, field, (tenths + direction) / 10.0);
}

} // namespace nmr
