#pragma once
// How the instrument's own software made the spectrum of a FID, as far as the files tell.

#include <array>
#include <cstdint>
#include <optional>

namespace nmr {

/// The numbers are those of WindowFunc.
enum class VendorShape : std::int16_t { exponential = 0, sine_bell = 1, hann = 2, gaussian = 3 };

/// A window in the terms of ParamBlock.
struct VendorWindow {
    VendorShape shape = VendorShape::exponential;
    double broadening_hz = 0;                                 ///< BF1 of the exponential, BF2 of the Gaussian
    double gauss_hz = 0;                                      ///< GF
    double center_percent = 0;                                ///< of the Gaussian
    double start_percent = 0;                                 ///< of a bell
    double end_percent = 100;                                 ///< likewise
    std::optional<std::array<double, 4>> trapezoid_percent{}; ///< Trap1..Trap4; nothing for no trapezoid
};

/// The phases hold for a FID from whose head `delay_points` complex points are dropped, fraction
/// included; below zero, points were put in front. They turn as ours do: in degrees, counterclockwise,
/// zero order at zero frequency, first order over the whole width and rising with ppm.
struct VendorPhase {
    double phase0_deg = 0, phase1_deg = 0;
    double delay_points = 0;
};

struct VendorProcessing {
    std::int32_t points = 0;            ///< of the spectrum; 0 when not told
    std::optional<VendorWindow> window; ///< nothing when not told, or when none of ours has its shape
    std::optional<VendorPhase> phase;   ///< nothing when not told, or when the spectrum was not phased
};

} // namespace nmr
