// The transform form as the operator of the instrument left the spectrum.

#include "fid/fft_pipeline.h"
#include "session/fft_form.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace nmr {
namespace {

constexpr double kLargestPhase1 = 1800.0; // of the controls
constexpr double kLargestDelay = 1e6;     // points

void StoreBell(ParamBlock& par, const VendorWindow& window)
{
    // From the widest range on: each limit depends on the other end.
    SetWindowField(par, WindowField::start, -100);
    SetWindowField(par, WindowField::end, window.end_percent);
    SetWindowField(par, WindowField::start, window.start_percent);
}

void StoreTrapezoid(ParamBlock& par, const VendorWindow& window)
{
    std::int32_t& off = par.WinFlags[static_cast<std::size_t>(par.WindowFunc)];
    off = window.trapezoid_percent ? 0 : 1;
    if (window.trapezoid_percent)
        std::ranges::transform(*window.trapezoid_percent, par.Trap.begin(),
                               [](double percent) { return static_cast<float>(percent); });
}

/// Whole points that the operator's software left away.
std::int32_t WholeShift(const VendorPhase& phase)
{
    return RoundHalfEven(std::clamp(phase.delay_points, -kLargestDelay, kLargestDelay));
}

/// What a start changes before the transform: window and shift.
void CopyStart(const ParamBlock& from, ParamBlock& to)
{
    to.WindowFunc = from.WindowFunc;
    to.BF1 = from.BF1;
    to.BF2 = from.BF2;
    to.GF = from.GF;
    for (const auto word : {&ParamBlock::WinStart1, &ParamBlock::WinEnd2, &ParamBlock::WinStart2,
                            &ParamBlock::WinStart3, &ParamBlock::WinEnd3, &ParamBlock::WinStart4, &ParamBlock::WinEnd4})
        to.*word = from.*word;
    to.WinFlags = from.WinFlags;
    to.Trap = from.Trap;
    to.FIDShift = from.FIDShift;
}

double Phase1At(const VendorPhase& phase, std::int32_t shift)
{
    return phase.phase1_deg + 360.0 * (phase.delay_points - shift);
}

} // namespace

bool FftForm::has_vendor_values() const
{
    const VendorProcessing& vendor = g_.Slots[0].vendor;
    return vendor.points > 0 || vendor.window || vendor.phase;
}

Status FftForm::SetVendorStart(bool on)
{
    g_.settings.vendor_start = on ? 1 : 0;
    g_.SettingsChanged = true;
    if (!has_vendor_values() || g_.NoFIDFile) return {};
    CopyStart(opened_, g_.Slots[0].par);
    // A window that can't be made for this length is reported when it is made for the preview.
    static_cast<void>(Set_Zero_Fill(g_, 0, 1));
    return StartOver();
}

bool FftForm::TakeVendorSize()
{
    const DataSet& set = g_.Slots[0];
    if (set.vendor.points < 1 || set.par.FIDPointsRaw < 1 || g_.NoFIDFile) return false;
    const auto wanted = static_cast<std::int32_t>(
        std::min(std::bit_ceil(static_cast<std::uint32_t>(set.vendor.points)), std::uint32_t{kMaxPoints}));
    const std::int32_t factor = std::max(wanted / set.par.FIDPointsRaw, 1);
    // A window that can't be made for this length is reported when it is made for the preview.
    static_cast<void>(Set_Zero_Fill(g_, 0, factor));
    return points() == set.par.FIDPointsRaw * factor;
}

bool FftForm::TakeVendorWindow()
{
    const auto& window = g_.Slots[0].vendor.window;
    if (!window) return false;
    ParamBlock& par = g_.Slots[0].par;
    par.WindowFunc = static_cast<std::int16_t>(window->shape);
    switch (window->shape) {
    case VendorShape::exponential:
        SetWindowField(par, WindowField::bf1, window->broadening_hz);
        break;
    case VendorShape::gaussian:
        SetWindowField(par, WindowField::bf2, window->broadening_hz);
        SetWindowField(par, WindowField::gf, window->gauss_hz);
        SetWindowField(par, WindowField::center, window->center_percent);
        break;
    case VendorShape::sine_bell:
    case VendorShape::hann:
        StoreBell(par, *window);
        break;
    }
    StoreTrapezoid(par, *window);
    return true;
}

bool FftForm::TakeVendorShift()
{
    const auto& phase = g_.Slots[0].vendor.phase;
    if (!phase) return false;
    const std::int32_t whole = WholeShift(*phase), kept = std::max(whole, 0);
    // Points in front only move the phase, which takes their place as long as it can.
    const std::int32_t shift = std::abs(Phase1At(*phase, kept)) <= kLargestPhase1 ? kept : whole;
    if (std::abs(shift) >= points()) return false;
    g_.Slots[0].par.FIDShift = shift;
    return true;
}

bool FftForm::TakeMissingPoints()
{
    const auto& phase = g_.Slots[0].vendor.phase;
    const bool missing = phase && WholeShift(*phase) < 0 && std::abs(Phase1At(*phase, 0)) > kLargestPhase1;
    return missing && TakeVendorShift();
}

bool FftForm::TakeVendorPhase()
{
    const auto& phase = g_.Slots[0].vendor.phase;
    if (!phase || points() < 2) return false;
    const double phase1 = Phase1At(*phase, g_.Slots[0].par.FIDShift);
    if (!(std::abs(phase1) <= kLargestPhase1) || !std::isfinite(phase->phase0_deg)) return false;
    g_.PivotPoint = points() / 2 - 1; // zero frequency
    g_.P2Point = -1;
    g_.Phase0Deg = static_cast<float>(std::remainder(phase->phase0_deg, 360.0));
    g_.Phase1Deg = static_cast<float>(phase1);
    auto_phase_here_ = false;
    return true;
}

} // namespace nmr
