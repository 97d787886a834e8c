// The processing parameters of the Bruker family in our terms.
//
// Learnt from nine pairs of a FID and the complex spectrum 1r, 1i that the instrument's software made of
// it (line by line, within 1 degree):
// - The stored spectrum is the complex conjugate of ours, so its phases turn the other way: the phase at
//   point j of SI, counted from the left edge, is -(PHC0 + PHC1 * j / SI).
// - The delay of the digital filter is removed as a whole, but counted from the left edge: beside a FID
//   shifted by the delay there remain 180 degrees for each point of it. An odd number of points turns the
//   spectrum upside down, a fraction adds its share.
// - TDoff counts stored values dropped at the head before the transform, or, when negative, put in front
//   by backward prediction; these are counted from the middle, as an ordinary shift.
// - DSPFVS 12 works with the exact fractions of its delays.

#include "formats/bruker.h"

#include "core/text.h"

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

enum VendorWindowNumber { kNone = 0, kExponential = 1, kGauss = 2, kSine = 3, kSquaredSine = 4, kTrapezoid = 5 };
constexpr double kPhased = 1; // PH_mod: 2 and 3 are magnitude and power spectra

double Value(const BrukerParameters& procs, std::string_view name)
{
    return procs.Number(name).value_or(0);
}

/// exp(-pi LB t) exp(pi LB t^2 / (2 GB AQ)) with LB below 0.
std::optional<VendorWindow> Gauss(double lb, double gb, double seconds)
{
    if (!(lb < 0) || !(gb > 0) || !(seconds > 0)) return std::nullopt;
    return VendorWindow{
        .shape = VendorShape::gaussian, .broadening_hz = -lb, .gauss_hz = std::sqrt(-lb / (2 * gb * seconds))};
}

/// sin((pi - phi) t / AQ + phi) with phi = pi / SSB from 2 on, else 0: a bell that begins before the FID.
VendorWindow Bell(VendorShape shape, double ssb)
{
    return {.shape = shape, .start_percent = ssb >= 2 ? -100 / (ssb - 1) : 0};
}

std::optional<VendorWindow> FindWindow(const BrukerParameters& procs, double seconds)
{
    const auto number = procs.Number("WDW");
    if (!number) return std::nullopt;
    const double lb = Value(procs, "LB"), ssb = Value(procs, "SSB");
    const double rise = 100 * Value(procs, "TM1"), fall = 100 * Value(procs, "TM2");
    switch (static_cast<int>(std::clamp(*number, -1.0, 99.0))) {
    case kNone:
        return VendorWindow{};
    case kExponential:
        return lb >= 0 ? std::optional(VendorWindow{.broadening_hz = lb}) : std::nullopt;
    case kGauss:
        return Gauss(lb, Value(procs, "GB"), seconds);
    case kSine:
        return Bell(VendorShape::sine_bell, ssb);
    case kSquaredSine:
        return Bell(VendorShape::hann, ssb);
    case kTrapezoid:
        if (rise < 0 || fall > 100 || !(rise < fall)) return std::nullopt;
        return VendorWindow{.trapezoid_percent = {{0, rise, fall, 100}}};
    default:
        return std::nullopt;
    }
}

std::optional<VendorPhase> FindPhase(const BrukerParameters& procs, double group_delay)
{
    const double p0 = Value(procs, "PHC0"), p1 = Value(procs, "PHC1");
    if ((p0 == 0 && p1 == 0) || Value(procs, "PH_mod") > kPhased) return std::nullopt;
    const double si = Value(procs, "SI"), strip = Value(procs, "STSI");
    if (strip != 0 && strip != si) return std::nullopt; // the phases count along a part of the spectrum
    if (EqualsNoCase(procs.Text("REVERSE").value_or("no"), "yes")) return std::nullopt;
    VendorPhase phase;
    phase.phase0_deg = std::remainder(-p0 - 0.5 * p1 - 180 * group_delay, 360);
    phase.phase1_deg = p1;
    phase.delay_points = group_delay + 0.5 * Value(procs, "TDoff");
    return phase;
}

} // namespace

VendorProcessing FindBrukerProcessing(const BrukerParameters& procs, const ParamBlock& par)
{
    VendorProcessing found;
    if (const double si = Value(procs, "SI"); si >= 1 && si <= kMaxPoints) found.points = static_cast<std::int32_t>(si);
    if (par.FREQU > 0) found.window = FindWindow(procs, par.FIDPoints / static_cast<double>(par.FREQU));
    found.phase = FindPhase(procs, par.GroupDelay);
    return found;
}

} // namespace nmr
