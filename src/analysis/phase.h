#pragma once
// Zero- and first-order phase, by hand and by a circle fit in the Argand plane.

#include "core/global_block.h"

namespace nmr {

/// Degrees of (re, im), -180 < a <= 180; 0 for (0, 0).
float Angle_Of(float re, float im);

/// Rotates SourceRe/SourceIm of CurrentRow into DataRe/DataIm about PivotPoint.
void Phase_Apply(GlobalBlock& g, float ph0, float ph1, std::int32_t n);

/// Fills WorkLine with the magnitudes of CurrentRow's source; index and value of the first maximum.
void Find_Main_Peak(GlobalBlock& g, std::int32_t& point, float& max, std::int32_t n);

enum class PhaseMode { full, semi };
/// Sets Phase0Deg and Phase1Deg (and in full mode PivotPoint and P2Point) and applies them.
void Auto_Phase(GlobalBlock& g, PhaseMode mode, std::int32_t n);

/// The fit around a point of the phased data; degrees, or `fallback` when the sums are singular.
float Circle_Fit_Phase(GlobalBlock& g, std::int32_t center, std::int32_t n, float fallback);

} // namespace nmr
