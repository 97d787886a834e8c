#include "session/fft_form.h"

#include "analysis/robust_phase.h"
#include "core/error_report.h"
#include "core/history.h"
#include "core/log.h"
#include "core/operators.h"
#include "fid/fft_pipeline.h"
#include "session/read_flow.h"

#include <algorithm>
#include <cmath>

namespace nmr {
namespace {

constexpr double kPhase0Limit = 360.0;
constexpr double kPhase1Limit = 1800.0;

/// A phase as typed or given on a command line; the scroll bars show the nearest tenth of it.
float Limited(double deg, double limit)
{
    return static_cast<float>(std::clamp(deg, -limit, limit));
}

void CopyRows(const RowArray<float>& from, RowArray<float>& to, std::int32_t points)
{
    const std::size_t rows = std::min(from.rows(), to.rows());
    const auto wanted = static_cast<std::size_t>(std::max(points, 0));
    const std::size_t count = std::min({from.columns(), to.columns(), wanted});
    for (std::size_t row = 0; row < rows; ++row) std::copy_n(from[row].begin(), count, to[row].begin());
}

/// A window that begins far below its top makes lines sharper, with wings of the other sign and hardly an area:
/// no criterion finds their phase.
bool Sharpens(const OffsetLine<float>& window)
{
    constexpr float kHead = 0.75F;
    return !window.empty() && window[0] < kHead;
}

OffsetLine<float> FlatWindow(const OffsetLine<float>& like)
{
    OffsetLine<float> flat = like;
    for (std::ptrdiff_t i = flat.first(); i <= flat.last(); ++i) flat[i] = 1.0F;
    return flat;
}

} // namespace

Status FftForm::Open()
{
    user_ = OfferedOperator(g_);
    opened_ = g_.Slots[0].par;
    return StartOver();
}

Status FftForm::StartOver()
{
    const bool as_vendor = vendor_start();
    if (!as_vendor || !TakeVendorSize()) Auto_ZeroFill(g_, 0);
    if (Status loaded = Load_FID_Work(g_); !loaded) return loaded;
    auto_phase_here_.reset();
    // Behind the fill, which changes where zero frequency stands.
    Set_Initial_Shift(g_);
    delay_phase1_deg_ = g_.Phase1Deg;
    delay_shift_ = g_.Slots[0].par.FIDShift;
    if (as_vendor) {
        TakeVendorWindow();
        if (TakeVendorShift()) TakeVendorPhase();
    }
    if (const Status window = Make_Window_Function(g_, 0); !window) ErrorReport(asker_, window.error());
    Command2_Click();
    return {};
}

void FftForm::Command2_Click()
{
    FFT_Preview(g_, g_.Slots[0].par.FIDShift);
    if (auto_phase())
        PhaseAfterTransform();
    else
        RotateShownRow();
}

void FftForm::PhaseAfterTransform()
{
    if (robust())
        AutoRobust();
    else
        RunAutoPhase(PhaseMode::full);
}

void FftForm::AutoRobust()
{
    // No window turns a phase, so that of the FID as it was measured is the one wanted.
    const bool sharpens = Sharpens(g_.WindowCurve);
    OffsetLine<float> other = sharpens ? FlatWindow(g_.WindowCurve) : OffsetLine<float>(0);
    if (sharpens) {
        std::swap(g_.WindowCurve, other);
        FFT_Preview(g_, g_.Slots[0].par.FIDShift);
    }
    quality_ = Auto_Phase_Robust(g_, points(), known_phase1());
    if (!sharpens) return;
    std::swap(g_.WindowCurve, other);
    FFT_Preview(g_, g_.Slots[0].par.FIDShift);
    Phase_Apply(g_, g_.Phase0Deg, g_.Phase1Deg, points());
}

void FftForm::RotateShownRow()
{
    quality_.reset();
    Phase_Apply(g_, g_.Phase0Deg, g_.Phase1Deg, points());
}

void FftForm::RunAutoPhase(PhaseMode mode)
{
    quality_.reset();
    Auto_Phase(g_, mode, points());
    // A single line tells no first order. What the group delay is known to leave is then better than
    // nothing; it turns about the pivot, so the line that was phased stays as it is.
    if (g_.Phase1Deg != 0.0F || known_phase1() == 0.0) return;
    g_.Phase1Deg = static_cast<float>(known_phase1());
    RotateShownRow();
}

double FftForm::known_phase1() const
{
    return g_.Slots[0].par.FIDShift == delay_shift_ ? static_cast<double>(delay_phase1_deg_) : 0.0;
}

Status FftForm::Command1()
{
    if (g_.NoFIDFile || !Zero_Fill_Double(g_, 0)) return {};
    return WindowChanged();
}

Status FftForm::Command4()
{
    g_.Slots[0].ProcMark2 = 1;
    return SetZeroFill(1);
}

Status FftForm::SetZeroFill(std::int32_t factor)
{
    if (g_.NoFIDFile) {
        if (factor == 1) return WindowChanged();
        return Error{ErrorCode::unreadable, "Command1/F11", "The FID could not be kept, so it can't be filled"};
    }
    // A window that can't be made is reported by WindowChanged, which also gives the preview.
    if (Status set = Set_Zero_Fill(g_, 0, factor); !set && points() != g_.Slots[0].par.FIDPointsRaw * factor)
        return set;
    return WindowChanged();
}

Status FftForm::SetWindowKind(WindowKind kind)
{
    g_.Slots[0].par.WindowFunc = static_cast<std::int16_t>(kind);
    return WindowChanged();
}

Status FftForm::WindowChanged()
{
    Status window = Make_Window_Function(g_, 0);
    if (!window) ErrorReport(asker_, window.error());
    Command2_Click();
    return window;
}

void FftForm::SetShift(std::int32_t shift)
{
    const std::int32_t limit = std::max(points() - 1, 0);
    g_.Slots[0].par.FIDShift = std::clamp(shift, -limit, limit);
    static_cast<void>(WindowChanged()); // the trapezoid spans what the shift leaves
}

void FftForm::SetPhase0(double deg)
{
    if (!std::isfinite(deg)) return;
    g_.Phase0Deg = Limited(deg, kPhase0Limit);
    RotateShownRow();
}

void FftForm::SetPhase1(double deg)
{
    if (!std::isfinite(deg)) return;
    g_.Phase1Deg = Limited(deg, kPhase1Limit);
    RotateShownRow();
}

void FftForm::SetPivot(std::int32_t point)
{
    const std::int32_t n = points();
    if (n < 1) return;
    const std::int32_t moved = std::clamp(point, 0, n - 1);
    const double turn = static_cast<double>(moved - g_.PivotPoint) * static_cast<double>(g_.Phase1Deg) / n;
    double phase0 = static_cast<double>(g_.Phase0Deg) + turn;
    if (std::abs(phase0) > kPhase0Limit) phase0 = std::remainder(phase0, 360.0);
    g_.PivotPoint = moved;
    g_.Phase0Deg = static_cast<float>(phase0);
    RotateShownRow();
}

void FftForm::SetSecond(std::int32_t point)
{
    g_.P2Point = std::clamp(point, -1, std::max(points() - 1, -1));
}

void FftForm::Command8()
{
    RunAutoPhase(PhaseMode::full);
}

void FftForm::Command7()
{
    RunAutoPhase(PhaseMode::semi);
}

void FftForm::SetRow(std::int16_t row)
{
    const std::int32_t last = std::max(g_.Slots[0].RowCount - 1, 0);
    g_.CurrentRow = static_cast<std::int16_t>(std::clamp<std::int32_t>(row, 0, last));
    Command2_Click();
}

// The setting holds the box the other way round: 0 is ticked.
bool FftForm::auto_phase() const
{
    return auto_phase_here_.value_or(g_.settings.auto_phase_on == 0);
}

void FftForm::SetAutoPhase(bool on)
{
    auto_phase_here_.reset();
    g_.settings.auto_phase_on = on ? 0 : 1;
}

void FftForm::SetRobust(bool on)
{
    g_.settings.robust_phase = on ? 1 : 0;
    g_.SettingsChanged = true;
}

Status FftForm::Command3(const std::function<void(int)>& progress)
{
    if (Status committed = Commit_Transform(g_, progress); !committed) {
        ErrorReport(asker_, committed.error());
        return committed;
    }
    if (quality_) Remember_Phased_Row(g_, points(), *quality_);
    ParamBlock& par = g_.Slots[0].par;
    if (par.OBFRQ0PPMRead == 0) par.OBFRQ0PPMRead = par.OBFRQ0PPM;
    Set_Display_Range(g_);
    RecordTransform();
    g_.DialogResult = "OK";
    return {};
}

/// The commit has put the user of the run in front of the date; an operator who was chosen takes that place.
void FftForm::RecordTransform()
{
    DataSet& set = g_.Slots[0];
    if (!user_.empty() && set.FFTUser.starts_with(g_.CurrentUser)) set.FFTUser.replace(0, g_.CurrentUser.size(), user_);
    AppendHistory(set, user_.empty() ? g_.CurrentUser : user_, kHistoryTransform);
    WriteLog(g_, asker_, kLogTransform, set.par.FileName);
}

bool FftForm::Close()
{
    const MessageBox box{"Exit without FFT", "FT end", {Button::ok, Button::cancel}, Icon::question, true};
    if (asker_.Message(box) != Button::ok) return false;
    // The preview has overwritten the slot's rows: the FID goes back into them, at its own length.
    DataSet& set = g_.Slots[0];
    set.par.POINT = std::min(set.par.POINT, std::max(set.par.FIDPointsRaw, 1));
    set.ProcMark1 = set.ProcMark2 = 1;
    CopyRows(g_.WorkRe, set.spec.DataRe, set.par.POINT);
    CopyRows(g_.WorkIm, set.spec.DataIm, set.par.POINT);
    CopyDataToSource(set);
    g_.WorkRe.Release();
    g_.WorkIm.Release();
    g_.WindowCurve.Release();
    g_.DialogResult = "CANCEL";
    return true;
}

} // namespace nmr
