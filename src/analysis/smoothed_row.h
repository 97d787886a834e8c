#pragma once
// A row as the robust phase looks at it: smoothed as far as its noise asks for, thinned where its lines are broad,
// without its slow part where that is a base line.

#include "analysis/line_phases.h"
#include "analysis/tail_phases.h"

#include <cstddef>
#include <span>
#include <vector>

namespace nmr {

constexpr std::size_t kMostSignal = 12288; ///< of signal that are looked at

/// Spectra with much noise are smoothed first, evenly to both sides, which turns no line.
struct Smoothed {
    std::vector<float> re, im, magnitude;
    double noise = 0;
    float top = 0;
};

/// Smooths while lines lose less height than the noise does. The row must have a point.
Smoothed SmoothToNoise(std::span<const float> re, std::span<const float> im);

/// Lowest height that counts.
float Threshold(const Smoothed& row);

std::size_t CountAbove(const Smoothed& row, float threshold);

/// Halves a row of broad lines until it has few enough points of signal; how many points became one.
std::size_t Thin(Smoothed& row);

/// The phases of its highest lines.
std::vector<LinePhase> LinesOf(const Smoothed& row);

/// The phases of its highest groups of lines, by their tails.
std::vector<TailPhase> TailsOf(const Smoothed& row);

/// Turns point 0 by `at0_deg` and the row's end by `over_deg` more.
void Turn(Smoothed& row, double at0_deg, double over_deg);

constexpr double kQuieter = 0.4;

/// Takes the slow part away where less than kQuieter of the row's median magnitude is left without it: then it was a
/// base line, not feet of lines. What is left, or would be.
double Flatten(Smoothed& row);

} // namespace nmr
