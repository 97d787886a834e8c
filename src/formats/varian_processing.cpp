// The processing parameters of the Varian family in our terms.
//
// What it rests on: the console's command reference (lb, gf, gfs, sb, sbs, fn, rp, lp, lsfid, dmg), and eight
// published FIDs whose strongest lines its phases put upright within 10 degrees, one of them with lsfid -3
// and lp 749: rp is the phase at the right edge, lp the further phase up to the left one, both with our
// sign, and lsfid is an ordinary shift, counted from zero frequency.

#include "formats/varian.h"

#include <algorithm>
#include <cmath>

namespace nmr {

namespace {

/// Seconds of the measured FID.
double Duration(const VarianParameters& parameters)
{
    const double width = parameters.Number("sw").value_or(0);
    return width > 0 ? parameters.Number("np").value_or(0) / 2 / width : 0;
}

/// sin(pi (t - sbs) / (2 sb)), squared for a negative sb.
std::optional<VendorWindow> Bell(double sb, double sbs, double seconds)
{
    VendorWindow window;
    window.shape = sb > 0 ? VendorShape::sine_bell : VendorShape::hann;
    window.start_percent = 100 * sbs / seconds;
    window.end_percent = 100 * (sbs + 2 * std::fabs(sb)) / seconds;
    const bool ours = window.start_percent >= -100 && window.end_percent <= 200;
    return ours && window.end_percent - window.start_percent >= 10 ? std::optional(window) : std::nullopt;
}

/// exp(-((t - gfs) / gf)^2), sharpened by a negative lb.
std::optional<VendorWindow> Gauss(double lb, double gf, double gfs, double seconds)
{
    VendorWindow window;
    window.shape = VendorShape::gaussian;
    window.broadening_hz = -lb;
    window.gauss_hz = 1 / (gf * std::sqrt(kPi));
    window.center_percent = 100 * gfs / seconds;
    const bool ours = lb <= 0 && window.center_percent >= 0 && window.center_percent <= 110;
    return ours ? std::optional(window) : std::nullopt;
}

/// The console multiplies all windows that are switched on; ours is one.
std::optional<VendorWindow> FindWindow(const VarianParameters& parameters)
{
    const auto active = [&](std::string_view name) { return parameters.ActiveNumber(name).value_or(0); };
    const double lb = active("lb"), gf = active("gf"), sb = active("sb"), seconds = Duration(parameters);
    if (!parameters.Find("lb") || !(seconds > 0) || active("awc") != 0) return std::nullopt;
    if (sb != 0) return lb == 0 && gf == 0 ? Bell(sb, active("sbs"), seconds) : std::nullopt;
    if (gf > 0) return Gauss(lb, gf, active("gfs"), seconds);
    return lb >= 0 ? std::optional(VendorWindow{.broadening_hz = lb}) : std::nullopt;
}

std::optional<VendorPhase> FindPhase(const VarianParameters& parameters)
{
    const double rp = parameters.Number("rp").value_or(0), lp = parameters.Number("lp").value_or(0);
    const std::string mode = parameters.Text("dmg").value_or("ph");
    if ((rp == 0 && lp == 0) || !mode.starts_with("ph")) return std::nullopt;
    return VendorPhase{std::remainder(rp + 0.5 * lp, 360.0), lp, parameters.ActiveNumber("lsfid").value_or(0)};
}

} // namespace

VendorProcessing FindVarianProcessing(const VarianParameters& parameters)
{
    VendorProcessing found;
    if (const double fn = parameters.ActiveNumber("fn").value_or(0); fn >= 2 && fn <= 2.0 * kMaxPoints)
        found.points = static_cast<std::int32_t>(fn / 2);
    found.window = FindWindow(parameters);
    found.phase = FindPhase(parameters);
    return found;
}

} // namespace nmr
