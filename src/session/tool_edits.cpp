// What the tools change: each edit one undo step.

#include "analysis/base_line.h"
#include "analysis/phase.h"
#include "analysis/robust_phase.h"
#include "analysis/shown_row.h"
#include "analysis/smooth_base_line.h"
#include "core/list_values.h"
#include "core/undo_parts.h"
#include "session/color_regions.h"
#include "session/cursor_distance.h"
#include "session/display_scope.h"
#include "session/instrument_table.h"
#include "session/tools.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace nmr {
namespace {

void MarkChanged(DataSet& set)
{
    set.par.DataChanged = 1;
    set.par.DataFromFile = 0;
}

/// Whether a set differs from its file. Lists may be edited while a tool is open, so a step or state of its
/// entry knows less of that than the set does when it ends.
void CopyFlags(const DataSet& from, DataSet& to)
{
    to.par.DataChanged = from.par.DataChanged;
    to.par.DataFromFile = from.par.DataFromFile;
}

/// What the list kinds keep of a set.
struct Lists {
    std::vector<PeakEntry> peaks;
    std::vector<IntegralEntry> integrals;
    std::int16_t reference;
    float scale;

    explicit Lists(const DataSet& set) :
        peaks(set.Peaks), integrals(set.Integrals), reference(set.IntegralRef), scale(set.IntegralScale)
    {
    }
    void Swap(DataSet& set)
    {
        std::swap(peaks, set.Peaks);
        std::swap(integrals, set.Integrals);
        std::swap(reference, set.IntegralRef);
        std::swap(scale, set.IntegralScale);
    }
};

/// The largest index first, so that those before keep theirs; whether any was erased.
template <class Erase>
bool EraseEach(std::vector<std::size_t> indices, Erase erase)
{
    std::ranges::sort(indices, std::ranges::greater{});
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    bool any = false;
    for (const std::size_t index : indices) any = erase(index) || any;
    return any;
}

/// A phase and a turn as one phase from -180 to 180 degrees.
float Turned(float deg, double by_deg)
{
    return static_cast<float>(std::remainder(static_cast<double>(deg) + by_deg, 360.0));
}

} // namespace

template <class Edit>
bool Tools::EditLists(UndoKind kind, Edit edit)
{
    StopDrag(); // an edit by key under a drag; the end of a drag is none any more
    Lists lists(set());
    if (!edit()) return false;
    lists.Swap(set()); // the step keeps what stood before
    PushUndoStep(g_, kind);
    lists.Swap(set());
    MarkChanged(set());
    Changed();
    return true;
}

template <class Edit>
bool Tools::EditBasePoints(PointUndoKind kind, Edit edit)
{
    StopDrag();
    std::vector<BasePointEntry> before = g_.BasePoints;
    if (!edit()) return false;
    SetPreview(false);
    std::swap(before, g_.BasePoints);
    PushPointUndoStep(g_, kind);
    std::swap(before, g_.BasePoints);
    on_lines_.reset();
    Changed();
    return true;
}

void Tools::Click(const PlotPoint& at)
{
    const std::int32_t point = PpmToPoint(set(), at.ppm);
    const std::int32_t average = g_.settings.average_point;
    switch (action_) {
    case ToolAction::pivot:
        return SetPivot(point);
    case ToolAction::second:
        return SetSecond(point);
    case ToolAction::pick_reference:
        return PickReference(at);
    case ToolAction::add_base_point:
        EditBasePoints(PointUndoKind::add_point, [&] { return Add_Base_Point(g_, point, average) >= 0; });
        return;
    case ToolAction::delete_base_point: {
        const std::int32_t reach = std::abs(PpmToPoint(set(), at.ppm + at.reach_ppm) - point);
        EditBasePoints(PointUndoKind::delete_point,
                       [&] { return Delete_Base_Point(g_, Find_Base_Point(g_, point, reach)); });
        return;
    }
    case ToolAction::add_peak:
        EditLists(UndoKind::add_peak,
                  [&] { return Add_Peak_At(g_, at.ppm, at.reach_ppm, g_.settings.negative_peaks == 1); });
        return;
    case ToolAction::delete_peak:
        EditLists(UndoKind::delete_peak, [&] { return Delete_Peak_At(set(), at.ppm, at.reach_ppm); });
        return;
    case ToolAction::divide_integral:
        EditLists(UndoKind::divide_integral, [&] { return Divide_Integral(g_, dragged_, at.ppm); });
        return;
    case ToolAction::delete_integral:
        if (EditLists(UndoKind::delete_integral, [&] { return Delete_Integral(g_, dragged_); })) SelectIntegral(-1);
        return;
    case ToolAction::reference_integral:
        MakeReference(dragged_);
        return;
    case ToolAction::add_integral: // a click between two drags
        SelectIntegral(Find_Integral(set(), at.ppm));
        return;
    case ToolAction::add_region: // a click between two drags
    case ToolAction::delete_region:
        if (ResetColorRegion(g_, at.ppm)) Changed();
        return;
    default:
        return;
    }
}

void Tools::PickReference(const PlotPoint& at)
{
    reference_line_ = NearestTop(set(), g_.CurrentRow, at.ppm, at.reach_ppm);
    referenced_ = true;
    const std::vector<std::uint8_t> signal =
        Signal_Mask(set().spec.DataRe[ShownRowIndex(g_, set())].first(HeldPoints(set())));
    const auto [first, last] =
        std::minmax({PpmToPoint(set(), at.ppm - at.reach_ppm), PpmToPoint(set(), at.ppm + at.reach_ppm)});
    reference_in_noise_ =
        std::none_of(signal.begin() + first, signal.begin() + last + 1, [](auto s) { return s != 0; });
}

void Tools::DragEnd(const PlotPoint& at)
{
    switch (action_) {
    case ToolAction::pick_range:
        return PickBetween(start_.ppm, at.ppm);
    case ToolAction::delete_peak:
        EditLists(UndoKind::delete_peak, [&] { return Delete_Peaks_Between(set(), start_.ppm, at.ppm) > 0; });
        return;
    case ToolAction::add_integral:
        if (PpmToPoint(set(), start_.ppm) == PpmToPoint(set(), at.ppm)) return;
        EditLists(UndoKind::add_integral, [&] {
            const std::int32_t index = Add_Integral(g_, start_.ppm, at.ppm);
            if (index >= 0) selected_ = index;
            return index >= 0;
        });
        return;
    case ToolAction::move_integral:
    case ToolAction::enlarge_integral: {
        // The drag has changed the list already: the step is made of what stood before it.
        std::vector<IntegralEntry> now = std::exchange(set().Integrals, integrals_before_);
        const auto index = static_cast<std::size_t>(std::max(dragged_, 0));
        const bool same = dragged_ < 0 || (now[index].StartPoint == integrals_before_[index].StartPoint &&
                                           now[index].EndPoint == integrals_before_[index].EndPoint);
        const bool move = action_ == ToolAction::move_integral;
        EditLists(move ? UndoKind::move_integral : UndoKind::enlarge_integral, [&] {
            if (!same) set().Integrals = std::move(now);
            return !same;
        });
        return;
    }
    case ToolAction::move_base_point: {
        std::vector<BasePointEntry> now = std::exchange(g_.BasePoints, base_before_);
        EditBasePoints(PointUndoKind::add_point, [&] {
            if (dragged_ >= 0) g_.BasePoints = std::move(now);
            return dragged_ >= 0;
        });
        return;
    }
    case ToolAction::add_region: {
        const ShownRange axis = AxisEnds(set()); // the plot may show more than there is
        const auto inside = [&](double ppm) { return std::clamp(ppm, axis.right, axis.left); };
        if (SetColorRegion(g_, inside(start_.ppm), inside(at.ppm), g_.settings.def_region_color)) Changed();
        return;
    }
    default:
        // What works by clicks takes a shaky one too.
        if (action_ != ToolAction::pivot && action_ != ToolAction::second && action_ < ToolAction::noise_level)
            Click(at);
        else if (action_ > ToolAction::base_level)
            Click(start_);
    }
}

// Phase.

double Tools::phase0() const
{
    return static_cast<double>(g_.Phase0Deg);
}

double Tools::phase1() const
{
    return static_cast<double>(g_.Phase1Deg);
}

void Tools::TakePhases()
{
    const std::size_t row = ShownRowIndex(g_, set());
    // The pivot is one for all rows, and the phases of the others must go on saying how those are turned.
    const std::int32_t before = std::exchange(pivot_of_rows_, g_.PivotPoint);
    const double moved = static_cast<double>(g_.PivotPoint - before) / std::max(set().par.POINT, 1);
    for (std::size_t i = 0; i < g_.RowPhase0.size() && moved != 0; ++i)
        g_.RowPhase0[i] = Turned(g_.RowPhase0[i], moved * static_cast<double>(g_.RowPhase1[i]));
    if (row < g_.RowPhase0.size()) g_.RowPhase0[row] = g_.Phase0Deg;
    if (row < g_.RowPhase1.size()) g_.RowPhase1[row] = g_.Phase1Deg;
    Moved(ToolChange::points);
}

void Tools::RotateRow()
{
    Phase_Apply(g_, g_.Phase0Deg, g_.Phase1Deg, set().par.POINT);
    quality_.reset();
    TakePhases();
}

void Tools::SetPhase0(double deg)
{
    if (open() != Tool::phase || !std::isfinite(deg)) return;
    g_.Phase0Deg = static_cast<float>(std::clamp(deg, -kPhase0Limit, kPhase0Limit));
    RotateRow();
}

void Tools::TurnPhase0(double by_deg)
{
    if (std::isfinite(by_deg)) SetPhase0(static_cast<double>(Turned(g_.Phase0Deg, by_deg)));
}

void Tools::SetPhase1(double deg)
{
    if (open() != Tool::phase || !std::isfinite(deg)) return;
    g_.Phase1Deg = static_cast<float>(std::clamp(deg, -kPhase1Limit, kPhase1Limit));
    RotateRow();
}

std::string Tools::PhaseText1() const
{
    return FormatNumber("####0.0#", ShortestDouble(g_.Phase0Deg));
}

std::string Tools::PhaseText2() const
{
    return FormatNumber("####0.0#", ShortestDouble(g_.Phase1Deg));
}

void Tools::AutoPhase()
{
    if (open() != Tool::phase) return;
    Auto_Phase(g_, PhaseMode::full, set().par.POINT);
    quality_.reset();
    TakePhases();
}

void Tools::SemiAutoPhase()
{
    if (open() != Tool::phase) return;
    Auto_Phase(g_, PhaseMode::semi, set().par.POINT);
    quality_.reset();
    TakePhases();
}

void Tools::AutoPhaseRobust()
{
    if (open() != Tool::phase) return;
    quality_ = Auto_Phase_Robust(g_, set().par.POINT);
    TakePhases();
}

void Tools::SetPivot(std::int32_t point)
{
    const std::int32_t n = set().par.POINT;
    if (open() != Tool::phase || n < 1) return;
    const std::int32_t moved = std::clamp(point, 0, n - 1);
    const double turn = static_cast<double>(moved - g_.PivotPoint) * static_cast<double>(g_.Phase1Deg) / n;
    g_.PivotPoint = moved;
    g_.Phase0Deg = Turned(g_.Phase0Deg, turn);
    RotateRow();
}

void Tools::SamePhaseToAllRows()
{
    if (open() != Tool::phase) return;
    const std::int16_t shown = g_.CurrentRow;
    for (std::size_t row = 0; row < set().spec.DataRe.rows(); ++row) {
        g_.CurrentRow = static_cast<std::int16_t>(row);
        Phase_Apply(g_, g_.Phase0Deg, g_.Phase1Deg, set().par.POINT);
    }
    g_.CurrentRow = shown;
    std::ranges::fill(g_.RowPhase0, g_.Phase0Deg);
    std::ranges::fill(g_.RowPhase1, g_.Phase1Deg);
    Changed();
}

void Tools::SetSecond(std::int32_t point)
{
    if (open() != Tool::phase) return;
    g_.P2Point = std::clamp(point, -1, set().par.POINT - 1);
    Moved(ToolChange::marks);
}

void Tools::FixPhase()
{
    const auto none = [](const std::vector<float>& v) {
        return std::ranges::all_of(v, [](float x) { return x == 0; });
    };
    if (none(g_.RowPhase0) && none(g_.RowPhase1)) return CancelPhase();
    // The next session starts from the rotated rows: Cancel must not undo this one.
    CopyDataToSource(set());
    std::ranges::fill(g_.RowPhase0, 0.0F);
    std::ranges::fill(g_.RowPhase1, 0.0F);
    g_.Phase0Deg = g_.Phase1Deg = 0.0F;
    CopyFlags(set(), points_before_.Extra.set);
    MarkChanged(set());
    Calc_All_Integrals(g_);
    g_.Undo.Commit(g_, std::exchange(points_before_, {}));
}

void Tools::CancelPhase()
{
    set().spec.DataRe = set().spec.SourceRe;
    set().spec.DataIm = set().spec.SourceIm;
    std::ranges::fill(g_.RowPhase0, 0.0F);
    std::ranges::fill(g_.RowPhase1, 0.0F);
    g_.Phase0Deg = g_.Phase1Deg = 0.0F;
    set().par.PhaseP0 = points_before_.Extra.set.par.PhaseP0; // an automatic phase has looked for the strongest line
    Calc_All_Integrals(g_);                                   // lists may have been edited over the turned points
}

// Base line.

void Tools::AutoBasePoints()
{
    if (open() != Tool::base_line) return;
    EditBasePoints(PointUndoKind::add_points_auto, [&] {
        Auto_Base_Points(g_, g_.settings.average_point);
        return true;
    });
}

void Tools::DeleteAllBasePoints()
{
    if (open() != Tool::base_line) return;
    EditBasePoints(PointUndoKind::delete_all_points, [&] {
        const bool any = !g_.BasePoints.empty();
        g_.BasePoints.clear();
        return any;
    });
}

const std::vector<std::size_t>& Tools::BasePointsOnLines() const
{
    if (!on_lines_) on_lines_ = g_.BasePoints.empty() ? std::vector<std::size_t>() : Base_Points_On_Lines(g_);
    return *on_lines_;
}

void Tools::DeleteBasePointsOnLines()
{
    if (open() != Tool::base_line) return;
    EditBasePoints(PointUndoKind::delete_point, [&] { return Drop_Base_Points_On_Lines(g_) > 0; });
}

void Tools::SetAveragePoints(std::int32_t points)
{
    g_.settings.average_point = std::clamp(points, 0, 10000);
    g_.SettingsChanged = true;
}

void Tools::SetBaseLineMethod(std::int32_t method)
{
    SetPreview(false);
    g_.settings.base_line_method = std::clamp(method, 0, 2);
    g_.SettingsChanged = true;
    Changed();
}

void Tools::SetBaseLineBend(double percent)
{
    if (!std::isfinite(percent)) return;
    SetPreview(false);
    g_.settings.base_line_bend = std::clamp(percent, 0.1, 100.0);
    g_.SettingsChanged = true;
    Changed();
}

void Tools::SetBaseLineDegree(std::int32_t degree)
{
    SetPreview(false);
    g_.settings.base_line_degree = std::clamp(degree, 1, 20);
    g_.SettingsChanged = true;
    Changed();
}

std::vector<float> Tools::BaseLineCurve() const
{
    const DataSet& data = set();
    const std::size_t row = ShownRowIndex(g_, data), n = HeldPoints(data);
    if (open() != Tool::base_line || row >= data.spec.SourceRe.rows()) return {};
    const auto source = data.spec.SourceRe[row].first(n);
    const BaseLineShape shape{.stiffness = g_.settings.base_line_bend / 100,
                              .asymmetry = Expected_Signs(data.par) == LineSigns::alternate ? 0.0 : 1.0,
                              .degree = g_.settings.base_line_degree};
    if (g_.settings.base_line_method == 1) return Whittaker_Base_Line(source, shape);
    if (g_.settings.base_line_method == 2) return Bernstein_Base_Line(source, shape);
    return g_.BasePoints.empty() ? std::vector<float>() : Straight_Base_Line(g_);
}

void Tools::SetPreview(bool on)
{
    if (on) return PreviewBaseLine();
    if (open() != Tool::base_line || !std::exchange(previewed_, false)) return;
    const std::size_t row = ShownRowIndex(g_, set());
    std::ranges::copy(set().spec.SourceRe[row], set().spec.DataRe[row].begin());
    Calc_All_Integrals(g_);
    Changed();
}

void Tools::PreviewBaseLine()
{
    const std::vector<float> curve = BaseLineCurve();
    if (curve.empty()) return;
    previewed_ = true;
    if (g_.settings.base_line_method == 0)
        Subtract_Straight_Base_Line(g_);
    else
        Subtract_Base_Line(g_, curve);
    Calc_All_Integrals(g_);
    Changed();
}

void Tools::FixBaseLine()
{
    PreviewBaseLine();
    if (!previewed_) return CancelBaseLine();
    previewed_ = false;
    const std::size_t row = ShownRowIndex(g_, set());
    std::ranges::copy(set().spec.DataRe[row], set().spec.SourceRe[row].begin());
    CopyFlags(set(), points_before_.Extra.set);
    MarkChanged(set());
    g_.Undo.Commit(g_, std::exchange(points_before_, {}));
    set().par.BaseLineDone = 1;
    g_.BasePoints.clear();
    g_.PointUndo.Empty();
    on_lines_.reset();
}

void Tools::CancelBaseLine()
{
    const std::size_t row = ShownRowIndex(g_, set());
    std::ranges::copy(set().spec.SourceRe[row], set().spec.DataRe[row].begin());
    std::ranges::copy(set().spec.SourceIm[row], set().spec.DataIm[row].begin());
    g_.BasePoints.clear();
    g_.PointUndo.Empty();
    on_lines_.reset();
    previewed_ = false;
    Calc_All_Integrals(g_);
}

bool Tools::UndoBasePoint()
{
    const bool done = open() == Tool::base_line && g_.PointUndo.UnDo(g_);
    on_lines_.reset();
    if (done) SetPreview(false);
    if (done) Changed();
    return done;
}

bool Tools::RedoBasePoint()
{
    const bool done = open() == Tool::base_line && g_.PointUndo.ReDo(g_);
    on_lines_.reset();
    if (done) SetPreview(false);
    if (done) Changed();
    return done;
}

// Peaks.

void Tools::PickBetween(double a_ppm, double b_ppm)
{
    if (open() != Tool::peaks) return;
    const std::int32_t a = PpmToPoint(set(), a_ppm), b = PpmToPoint(set(), b_ppm);
    EditLists(UndoKind::add_peak_auto, [&] {
        const std::size_t before = set().Peaks.size();
        Peak_Pick(g_, a, b);
        if (g_.settings.negative_peaks == 1) Peak_Pick_Negative(g_, a, b);
        return set().Peaks.size() != before;
    });
}

void Tools::PickShown()
{
    PickBetween(static_cast<double>(g_.ViewLeft), static_cast<double>(g_.ViewRight));
}

void Tools::DeleteAllPeaks()
{
    EditLists(UndoKind::delete_all_peaks, [&] {
        const bool any = !set().Peaks.empty();
        set().Peaks.clear();
        return any;
    });
}

void Tools::DeletePeaks(std::vector<std::size_t> indices)
{
    EditLists(UndoKind::delete_peak, [&] {
        return EraseEach(indices, [&](std::size_t index) {
            auto& peaks = set().Peaks;
            if (index >= peaks.size()) return false;
            peaks.erase(peaks.begin() + static_cast<std::ptrdiff_t>(index));
            return true;
        });
    });
}

bool Tools::SetLevel(ToolAction level, double fraction)
{
    bool taken = false;
    if (level == ToolAction::noise_level) taken = Set_Noise_Level(set(), fraction);
    if (level == ToolAction::detect_level) taken = Set_Detect_Level(set(), fraction);
    if (level == ToolAction::base_level) taken = Set_Base_Level(set(), fraction);
    if (taken && down_) Moved(ToolChange::marks);
    if (taken && !down_) Changed();
    return taken;
}

double Tools::LevelOf(ToolAction level) const
{
    if (level == ToolAction::noise_level) return Noise_Level(set());
    return level == ToolAction::detect_level ? Detect_Level(set()) : Base_Level(set());
}

// Integrals.

void Tools::SelectIntegral(std::int32_t index)
{
    const auto count = static_cast<std::int32_t>(set().Integrals.size());
    selected_ = index >= 0 && index < count ? index : -1;
}

void Tools::DeleteAllIntegrals()
{
    EditLists(UndoKind::delete_all_integrals, [&] {
        const bool any = !set().Integrals.empty();
        Delete_All_Integrals(set());
        return any;
    });
    SelectIntegral(-1);
}

void Tools::DeleteIntegrals(std::vector<std::size_t> indices)
{
    const auto erase = [&](std::size_t index) { return Delete_Integral(g_, static_cast<std::int32_t>(index)); };
    if (EditLists(UndoKind::delete_integral, [&] { return EraseEach(indices, erase); })) SelectIntegral(-1);
}

void Tools::MakeReference(std::int32_t index)
{
    EditLists(UndoKind::set_integral_reference,
              [&] { return index != set().IntegralRef && Set_Integral_Reference(set(), index); });
}

bool Tools::SetIntegralScale(double value)
{
    if (!IsIntegralScale(value)) return false;
    if (static_cast<float>(value) == set().IntegralScale) return true;
    return EditLists(UndoKind::set_integral_reference, [&] {
        set().IntegralScale = static_cast<float>(value);
        return true;
    });
}

namespace {
const IntegralEntry* Selected(const DataSet& set, std::int32_t index)
{
    const auto at = static_cast<std::size_t>(std::max(index, 0));
    return index >= 0 && at < set.Integrals.size() ? &set.Integrals[at] : nullptr;
}
} // namespace

bool Tools::SetB0(double value)
{
    const IntegralEntry* e = Selected(set(), selected_);
    return e != nullptr && EditLists(UndoKind::adjust_integral, [&, b1 = e->B1] {
               return Set_B0_B1(g_, selected_, static_cast<float>(value), b1);
           });
}

bool Tools::SetB1(double value)
{
    const IntegralEntry* e = Selected(set(), selected_);
    return e != nullptr && EditLists(UndoKind::adjust_integral, [&, b0 = e->B0] {
               return Set_B0_B1(g_, selected_, b0, static_cast<float>(value));
           });
}

bool Tools::PressB0B1()
{
    StopDrag();
    if (Selected(set(), selected_) == nullptr) return false;
    PushUndoStep(g_, UndoKind::change_b0_b1);
    MarkChanged(set());
    return true;
}

void Tools::StepB0(int steps)
{
    const IntegralEntry* e = Selected(set(), selected_);
    if (e == nullptr) return;
    Set_B0_B1(g_, selected_, static_cast<float>(static_cast<double>(e->B0) + steps * kB0Step), e->B1);
    Changed();
}

void Tools::StepB1(int steps)
{
    const IntegralEntry* e = Selected(set(), selected_);
    if (e == nullptr) return;
    Set_B0_B1(g_, selected_, e->B0, static_cast<float>(static_cast<double>(e->B1) + steps * kB1Step));
    Changed();
}

// Reference and regions.

bool Tools::SetReference(double line_ppm, double shift_ppm)
{
    if (open() != Tool::reference || !Shift_Reference(g_, line_ppm, shift_ppm)) return false;
    reference_line_ = shift_ppm;
    referenced_ = true;
    Changed();
    return true;
}

void Tools::FixReference()
{
    if (!ReferenceMoved()) return;
    // The step is made of what stood before.
    CopyFlags(set(), reference_before_.Extra.set);
    ExchangeParts(g_, reference_before_, kUndoReference);
    PushUndoStep(g_, UndoKind::set_reference);
    ExchangeParts(g_, reference_before_, kUndoReference);
    MarkChanged(set());
    if (update_instrument_) StoreInstrument(g_);
}

bool Tools::ReferenceMoved() const
{
    return reference_before_.Extra.set.spec.XAxis != set().spec.XAxis;
}

void Tools::CancelReference()
{
    // Where the axis still stands, a zoom since the entry stays.
    if (!ReferenceMoved()) return;
    CopyFlags(set(), reference_before_.Extra.set);
    ExchangeParts(g_, reference_before_, kUndoReference);
}

void Tools::ResetRegions()
{
    if (ResetAllColorRegions(g_)) Changed();
}

bool Shift_Reference(GlobalBlock& g, double line_ppm, double shift_ppm)
{
    DataSet& set = g.Slots[0];
    const std::size_t n = HeldPoints(set);
    const double from = 1.0 + line_ppm * 1e-6, to = 1.0 + shift_ppm * 1e-6;
    if (n == 0 || !(from > 0.0) || !(to > 0.0) || !std::isfinite(from) || !std::isfinite(to)) return false;
    // Frequencies stay: a shift counts from another 0 ppm frequency.
    const auto moved = [&](double ppm) { return ((1.0 + ppm * 1e-6) * to / from - 1.0) * 1e6; };
    const std::int32_t point = PpmToPoint(set, line_ppm);
    for (double& x : set.spec.XAxis) x = moved(x);
    ParamBlock& par = set.par;
    par.OBFRQ0PPM *= from / to;
    par.Resolution2 *= to / from;
    par.SMTMS = point;
    par.SMEXR = par.RefX = static_cast<float>(shift_ppm);
    for (RegionColor& r : set.Regions)
        if (r.Start != 0.0F || r.End != 0.0F)
            for (float* end : {&r.Start, &r.End}) *end = static_cast<float>(moved(static_cast<double>(*end)));
    for (float* end : {&g.ViewLeft, &g.ViewRight}) *end = static_cast<float>(moved(static_cast<double>(*end)));
    g.ShownHzLeft = PpmToHz(set, static_cast<double>(g.ViewLeft));
    g.ShownHzRight = PpmToHz(set, static_cast<double>(g.ViewRight));
    g.LastObsCenter = par.ObsCenter;
    g.LastCentre = set.spec.XAxis[n / 2];
    return true;
}

} // namespace nmr
