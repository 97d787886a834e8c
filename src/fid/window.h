#pragma once
// Window functions.

#include "core/global_block.h"

#include <array>
#include <string_view>

namespace nmr {

enum class WindowKind : std::int16_t { exponential = 0, sine_bell = 1, hann = 2, gaussian = 3, blackman_harris = 4 };

/// Recomputes g.WindowCurve from the slot's parameters: bounds -5000 .. POINT, 1 at its top.
/// @return bad_value for an all-zero curve or a start equal to its end; the curve is then all zero
Status Make_Window_Function(GlobalBlock& g, std::int16_t slot);

/// The rows of the window list of the transform form, in its order, with the value each stands for.
struct WindowRow {
    WindowKind kind;
    std::string_view caption;     ///< of the list
    std::string_view dialog_name; ///< head of the window dialog
    std::string_view initial_expression;
};
const std::array<WindowRow, 5>& WindowRows();

/// The numbers of the window dialog with the limits that depend on one another; setters put back the
/// nearest limit.
struct WindowLimits {
    double low = 0, high = 0;
};
enum class WindowField { bf1, bf2, gf, center, start, end, trap1, trap2, trap3, trap4 };
WindowLimits LimitsOf(const ParamBlock& par, WindowField field);
double GetWindowField(const ParamBlock& par, WindowField field);
/// Clamps to the limits and stores; returns what was stored. Start and end are those of par.WindowFunc.
double SetWindowField(ParamBlock& par, WindowField field, double value);
/// One press of an arrow: 1 percent, or 0.1 Hz from a multiple of 0.1.
double StepWindowField(ParamBlock& par, WindowField field, int direction);

} // namespace nmr
