// The state machine of the tools, and the mouse.

#include "session/tools.h"

#include "analysis/base_line.h"
#include "analysis/phase.h"
#include "analysis/shown_row.h"
#include "core/list_values.h"
#include "core/undo_parts.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace nmr {
namespace {

constexpr char kFixPhase[] = "Will you Fix Phase Correction?";
constexpr char kFixReference[] = "Will you Fix Reference Setting?";
constexpr char kFixBaseLine[] = "Will you Fix Base Line Correction?";
constexpr char kAfterBaseLine[] = "Since BaseLine Correction has been executed,\n"
                                  "this Phase Correction will not give a correct result.\nContinue?";

/// The question of a tool that must be fixed or discarded; null for one that closes as it is.
const char* QuestionOf(Tool tool)
{
    switch (tool) {
    case Tool::phase:
        return kFixPhase;
    case Tool::reference:
        return kFixReference;
    case Tool::base_line:
        return kFixBaseLine;
    default:
        return nullptr;
    }
}

ToolAction FirstAction(Tool tool)
{
    switch (tool) {
    case Tool::phase:
        return ToolAction::pivot;
    case Tool::reference:
        return ToolAction::pick_reference;
    case Tool::base_line:
        return ToolAction::add_base_point;
    case Tool::peaks:
        return ToolAction::add_peak;
    case Tool::integrals:
        return ToolAction::add_integral;
    case Tool::regions:
        return ToolAction::add_region;
    case Tool::none:
        break;
    }
    return ToolAction::none;
}

/// The tool whose bar has the button of an action; they stand in the order of the bars.
Tool ToolOf(ToolAction action)
{
    constexpr std::pair<ToolAction, Tool> kLast[] = {{ToolAction::none, Tool::none},
                                                     {ToolAction::second, Tool::phase},
                                                     {ToolAction::pick_reference, Tool::reference},
                                                     {ToolAction::move_base_point, Tool::base_line},
                                                     {ToolAction::base_level, Tool::peaks},
                                                     {ToolAction::reference_integral, Tool::integrals},
                                                     {ToolAction::delete_region, Tool::regions}};
    const auto row = std::ranges::find_if(kLast, [&](const auto& last) { return action <= last.first; });
    return row == std::end(kLast) ? Tool::none : row->second;
}

struct StatusRow {
    ToolAction action;
    const char* text;
};
constexpr StatusRow kStatus[] = {
    {ToolAction::delete_integral, "Delete Integral"},       {ToolAction::divide_integral, "Divide Integral"},
    {ToolAction::move_integral, "Move Integral"},           {ToolAction::enlarge_integral, "Enlarge Integral"},
    {ToolAction::reference_integral, "Set Ref Value Here"}, {ToolAction::detect_level, "Move Threshold Level"},
    {ToolAction::noise_level, "Move Noise Level"},          {ToolAction::base_level, "Move Base Level"},
};

// Of levels that lie on each other the first goes up and the last goes down; the base takes the noise along.
constexpr ToolAction kUpwards[] = {ToolAction::detect_level, ToolAction::noise_level, ToolAction::base_level,
                                   ToolAction::pivot, ToolAction::second};
constexpr double kSameLine = 1.0 / 6; // of the reach: levels nearer to each other than this are one line to the eye

bool NeedsIntegral(ToolAction action)
{
    return action >= ToolAction::divide_integral && action <= ToolAction::reference_integral;
}

} // namespace

void Tools::Changed()
{
    if (s_.display_changed) s_.display_changed();
}

void Tools::Moved(ToolChange change)
{
    if (s_.tool_moved)
        s_.tool_moved(change);
    else
        Changed();
}

bool Tools::MayEnter(Tool tool)
{
    if (HeldPoints(set()) == 0 || set().par.SMODE != 1 || g_.NoSpectrumYet) return false;
    if (tool != Tool::phase || set().par.BaseLineDone != 1) return true;
    return s_.asker.Message({kAfterBaseLine, "", {Button::yes, Button::no}, Icon::question, true}) == Button::yes;
}

bool Tools::Enter(Tool tool)
{
    if (tool == Tool::none || tool == open()) {
        Close();
        return false;
    }
    if (!MayEnter(tool) || !Close()) return false;
    Start(tool);
    Changed();
    return true;
}

void Tools::Start(Tool tool)
{
    g_.ToolMode = static_cast<std::int32_t>(tool);
    action_ = FirstAction(tool);
    down_ = false;
    quality_.reset();
    if (tool == Tool::phase || tool == Tool::base_line) {
        // What is shown is where the tool starts from and what Cancel brings back.
        CopyDataToSource(set());
        const UndoKind kind = tool == Tool::phase ? UndoKind::phase : UndoKind::base_line;
        points_before_ = g_.Undo.Begin(g_, static_cast<std::int32_t>(kind));
    }
    if (tool == Tool::phase) {
        g_.RowPhase0.assign(set().spec.DataRe.rows(), 0.0F);
        g_.RowPhase1 = g_.RowPhase0;
        g_.Phase0Deg = g_.Phase1Deg = 0.0F;
        float top = 0;
        Find_Main_Peak(g_, g_.PivotPoint, top, set().par.POINT);
        g_.P2Point = -1;
        pivot_of_rows_ = g_.PivotPoint;
    }
    if (tool == Tool::base_line) {
        g_.BasePoints.clear();
        g_.PointUndo.Empty();
        on_lines_.reset();
        previewed_ = false;
    }
    // What is coloured is to be seen.
    if (tool == Tool::regions) g_.settings.r_color_disp = 1;
    if (tool == Tool::reference) {
        KeepParts(g_, reference_before_, kUndoReference);
        referenced_ = false;
    }
    if (tool == Tool::integrals) {
        Calc_All_Integrals(g_);
        SelectIntegral(set().Integrals.empty() ? -1 : 0);
    }
}

bool Tools::Close()
{
    const char* question = QuestionOf(open());
    if (question == nullptr) {
        Fix();
        return true;
    }
    const MessageBox box{question, "", {Button::yes, Button::no, Button::cancel}, Icon::question, false};
    switch (s_.asker.Message(box)) {
    case Button::yes:
        Fix();
        return true;
    case Button::no:
        StopDrag(); // which alone would be what Cancel takes back
        Cancel();
        return true;
    default:
        return false;
    }
}

void Tools::End()
{
    g_.ToolMode = 0;
    action_ = ToolAction::none;
    down_ = false;
    selected_ = -1;
    points_before_ = {};
    Changed();
}

void Tools::Fix()
{
    if (down_) MouseUp(now_);
    if (open() == Tool::none) return;
    if (open() == Tool::phase) FixPhase();
    if (open() == Tool::base_line) FixBaseLine();
    if (open() == Tool::reference) FixReference();
    End();
}

bool Tools::StopDrag()
{
    if (open() == Tool::none || !down_) return false;
    TakeDragBack();
    down_ = false;
    action_ = pressed_;
    Changed();
    return true;
}

void Tools::Cancel()
{
    if (open() == Tool::none || StopDrag()) return; // Esc during a drag takes back the drag alone
    if (open() == Tool::phase) CancelPhase();
    if (open() == Tool::base_line) CancelBaseLine();
    if (open() == Tool::reference) CancelReference();
    End();
}

void Tools::SetAction(ToolAction action)
{
    if (open() == Tool::none || down_ || ToolOf(action) != open()) return;
    const std::size_t count = set().Integrals.size();
    if (action == ToolAction::add_integral && count >= kMaxIntegrals) return;
    if (action == ToolAction::divide_integral && (count < 1 || count >= kMaxIntegrals)) return;
    action_ = action;
    Changed();
}

void Tools::SetRow(std::int16_t row)
{
    StopDrag(); // a drag belongs to its row
    std::vector<BasePointEntry> base_points;
    if (open() == Tool::base_line) {
        base_points = g_.BasePoints;
        CancelBaseLine(); // a preview stays with its row
    }
    const auto last = static_cast<std::int32_t>(set().spec.DataRe.rows()) - 1;
    g_.CurrentRow = static_cast<std::int16_t>(std::clamp<std::int32_t>(row, 0, std::max(last, 0)));
    for (const BasePointEntry& point : base_points) Add_Base_Point(g_, point.Point, g_.settings.average_point);
    if (open() == Tool::phase) {
        const std::size_t shown = ShownRowIndex(g_, set());
        g_.Phase0Deg = shown < g_.RowPhase0.size() ? g_.RowPhase0[shown] : 0.0F;
        g_.Phase1Deg = shown < g_.RowPhase1.size() ? g_.RowPhase1[shown] : 0.0F;
        quality_.reset();
    }
    Calc_All_Integrals(g_);
    Changed();
}

ToolMarks Tools::Marks() const
{
    ToolMarks marks;
    const auto full = static_cast<double>(set().par.DispLeft);
    if (open() == Tool::phase) {
        marks.verticals.push_back({PointToPpm(set(), g_.PivotPoint), "PP"});
        if (g_.P2Point >= 0) marks.verticals.push_back({PointToPpm(set(), g_.P2Point), "P2"});
    }
    if (open() == Tool::reference && referenced_) marks.verticals.push_back({reference_line_, ""});
    if (open() == Tool::base_line) {
        const bool straight = g_.settings.base_line_method == 0;
        // On a row whose base line is off, the points lie where they will lie. A drag asks at each step, so the lines
        // between them are left to the one who draws.
        for (const BasePointEntry& e : g_.BasePoints)
            if (straight)
                marks.points.push_back({PointToPpm(set(), e.Point), previewed_ ? 0.0 : static_cast<double>(e.Value)});
        if (straight)
            for (const std::size_t index : BasePointsOnLines())
                if (index < marks.points.size()) marks.points[index].on_line = true;
        if (!straight && !previewed_) marks.base_line = BaseLineCurve();
    }
    if (open() == Tool::peaks) {
        marks.levels = {{full * static_cast<double>(set().PeakThreshold), ToolAction::noise_level},
                        {full * Detect_Level(set()), ToolAction::detect_level},
                        {full * Base_Level(set()), ToolAction::base_level}};
    }
    const bool ranged = action_ == ToolAction::pick_range || action_ == ToolAction::delete_peak ||
                        action_ == ToolAction::add_integral || action_ == ToolAction::add_region;
    if (down_ && moved_ && ranged) marks.range_ppm = {start_.ppm, now_.ppm};
    return marks;
}

std::string Tools::StatusText(const PlotPoint& at) const
{
    if (NeedsIntegral(action_) && Find_Integral(set(), at.ppm) < 0) return {};
    const auto marks = down_ ? std::vector<ToolAction>() : MarksAt(at);
    const ToolAction meant = marks.empty() ? action_ : marks.front();
    for (const StatusRow& row : kStatus)
        if (row.action == meant) return row.text;
    return {};
}

void Tools::MouseDown(const PlotPoint& at)
{
    if (open() == Tool::none) return;
    down_ = true;
    moved_ = false;
    start_ = now_ = at;
    dragged_ = -1;
    pressed_ = action_;
    TakeMark(at);
    before_ = {g_.PivotPoint, g_.P2Point, g_.Phase0Deg, Noise_Level(set()), Detect_Level(set()), Base_Level(set())};
    integrals_before_ = set().Integrals;
    reference_index_before_ = set().IntegralRef;
    base_before_ = g_.BasePoints;
    if (action_ == ToolAction::move_base_point) {
        const std::int32_t point = PpmToPoint(set(), at.ppm);
        dragged_ = Find_Base_Point(g_, point, std::abs(PpmToPoint(set(), at.ppm + at.reach_ppm) - point));
    }
    if (dragged_ >= 0) SetPreview(false);
    if (NeedsIntegral(action_)) {
        dragged_ = Find_Integral(set(), at.ppm);
        SelectIntegral(dragged_);
    }
    if (action_ == ToolAction::enlarge_integral && dragged_ < 0) {
        // The ends may be taken from outside too.
        for (const double side : {-1.0, 1.0})
            if (dragged_ < 0) dragged_ = Find_Integral(set(), at.ppm + side * at.reach_ppm);
        SelectIntegral(dragged_);
    }
    if (action_ == ToolAction::enlarge_integral && dragged_ >= 0) {
        const IntegralEntry& e = set().Integrals[static_cast<std::size_t>(dragged_)];
        const double to_start = std::abs(IntegralStartPpm(set(), e) - at.ppm);
        dragged_end_ = to_start <= std::abs(IntegralEndPpm(set(), e) - at.ppm) ? IntegralEnd::start : IntegralEnd::end;
    }
}

void Tools::MouseMove(const PlotPoint& at)
{
    if (!down_) return;
    now_ = at;
    if (at.ppm != start_.ppm || at.height != start_.height) moved_ = true;
    if (!moved_) return;
    ChooseMark(at);
    DragTo(at);
    Moved(ToolChange::marks);
}

bool Tools::UsesMouse() const
{
    return open() != Tool::none && (open() != Tool::base_line || g_.settings.base_line_method == 0);
}

std::vector<ToolAction> Tools::MarksAt(const PlotPoint& at) const
{
    struct Mark {
        double away;
        ToolAction action;
    };
    std::vector<Mark> near;
    const auto add = [&](double away, double reach, ToolAction action) {
        if (away <= reach && reach > 0) near.push_back({away, action});
    };
    const ToolMarks marks = open() == Tool::base_line ? ToolMarks{} : Marks();
    if (open() == Tool::phase)
        for (const auto& mark : marks.verticals)
            add(std::abs(mark.ppm - at.ppm), at.reach_ppm, mark.label == "P2" ? ToolAction::second : ToolAction::pivot);
    for (const auto& level : marks.levels) add(std::abs(level.height - at.height), at.reach_height, level.action);
    if (near.empty()) return {};
    const double least = std::ranges::min(near, {}, &Mark::away).away;
    const double same = kSameLine * (marks.levels.empty() ? at.reach_ppm : at.reach_height);
    std::vector<ToolAction> found;
    for (const ToolAction action : kUpwards)
        for (const Mark& mark : near)
            if (mark.action == action && mark.away <= least + same) found.push_back(action);
    return found;
}

void Tools::TakeMark(const PlotPoint& at)
{
    stacked_ = MarksAt(at);
    grip_ = 0;
    if (stacked_.empty()) return;
    action_ = stacked_.front();
    if (open() != Tool::peaks) return stacked_.clear();
    for (const auto& level : Marks().levels)
        if (level.action == action_) grip_ = level.height - at.height;
}

/// Of levels on each other the upper one goes up and the lower one down, so that a drag always parts them.
void Tools::ChooseMark(const PlotPoint& at)
{
    if (stacked_.size() < 2 || at.height == start_.height) return;
    action_ = at.height > start_.height ? stacked_.front() : stacked_.back();
    stacked_.clear();
}

double Tools::DraggedLevel(const PlotPoint& at) const
{
    const double height = (at.height + grip_) / static_cast<double>(set().par.DispLeft);
    // The drawn line of the noise is noise plus base.
    return action_ == ToolAction::noise_level ? height - Base_Level(set()) : height;
}

void Tools::TakeDragBack()
{
    switch (action_) {
    case ToolAction::pivot:
        g_.PivotPoint = before_.pivot;
        g_.Phase0Deg = before_.phase0;
        return RotateRow();
    case ToolAction::second:
        return SetSecond(before_.second);
    case ToolAction::noise_level:
        SetLevel(action_, before_.noise);
        return;
    case ToolAction::detect_level:
        SetLevel(action_, before_.detect);
        return;
    case ToolAction::base_level:
        SetLevel(action_, before_.base);
        return;
    default:
        DragTo(start_);
    }
}

void Tools::DragTo(const PlotPoint& at)
{
    switch (action_) {
    case ToolAction::pivot:
        return SetPivot(PpmToPoint(set(), at.ppm));
    case ToolAction::second:
        return SetSecond(PpmToPoint(set(), at.ppm));
    case ToolAction::move_base_point:
        if (dragged_ < 0) return;
        g_.BasePoints = base_before_;
        Set_Base_Level_Of(
            g_, dragged_,
            static_cast<float>(static_cast<double>(base_before_[static_cast<std::size_t>(dragged_)].Value) + at.height -
                               start_.height));
        return;
    case ToolAction::noise_level:
    case ToolAction::detect_level:
    case ToolAction::base_level:
        if (set().par.DispLeft != 0.0F) SetLevel(action_, DraggedLevel(at));
        return;
    case ToolAction::move_integral:
    case ToolAction::enlarge_integral:
        if (dragged_ < 0) return;
        set().Integrals = integrals_before_;
        if (action_ == ToolAction::move_integral)
            Move_Integral(g_, dragged_, at.ppm - start_.ppm);
        else if (at.ppm != start_.ppm)
            Enlarge_Integral(g_, dragged_, dragged_end_, at.ppm);
        return;
    default:
        return;
    }
}

void Tools::MouseUp(const PlotPoint& at)
{
    if (!down_) return;
    MouseMove(at);
    down_ = false;
    if (moved_) DragEnd(at);
    action_ = pressed_; // a click on a mark is the button's
    if (!moved_) Click(at);
    Changed();
}

} // namespace nmr
