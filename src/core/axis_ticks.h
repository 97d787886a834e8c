#pragma once
// Tick computation of axes.

namespace nmr {

struct Ticks {
    double first = 0, span = 0, step = 0;
    double factor = 0; ///< k: 10, 5, 4, 2 or 1; 0 when the range is empty
};

/// Step and first tick of an automatic axis from a to b, either direction; a == b gives step 0.
Ticks AutoTic(double a, double b);

/// The integer part (floor) of log10(|x|) + 0.00001; 0 for x = 0.
int Digits(double x);

/// Decimals that a label needs so that neighbouring ticks differ: max(0, -Digits(step)), one more
/// where the step has a second significant digit (0.25).
int TickDecimals(double step);

} // namespace nmr
