#pragma once
// The tools of the main form as one state machine, without a window: which tool stands open, what its panel
// shows, what is drawn over the plot, and what mouse and keys do. Positions are ppm of the axis, heights are
// intensities of the points; a window only converts pixels.
//
// One tool is open at a time. Entering one closes another first, with its question. Enter (Fix) keeps what was
// done as one undo step, Esc (Cancel) puts everything back. A drag is one step, made when the button is released.

#include "analysis/integrals.h"
#include "analysis/peak_pick.h"
#include "analysis/smooth_base_line.h"
#include "session/session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nmr {

/// The numbers are those of ToolMode.
enum class Tool : std::int32_t {
    none = 0,
    phase = 1,     ///< m22
    reference = 2, ///< m21
    base_line = 3, ///< m23
    peaks = 4,     ///< m24
    integrals = 5, ///< m25
    regions = 7,   ///< m242
};

/// What the mouse does in the plot while a tool is open: the pressed button of its tool bar.
enum class ToolAction : std::int32_t {
    none,
    pivot,              ///< phase: drags "PP"
    second,             ///< phase: drags "P2"
    pick_reference,     ///< reference: takes the line under the click
    add_base_point,     ///< base line
    delete_base_point,  ///< base line
    move_base_point,    ///< base line: up and down
    pick_range,         ///< peaks: picks in the dragged range
    add_peak,           ///< peaks: the top that the click means
    delete_peak,        ///< peaks: a click, or a dragged range
    noise_level,        ///< peaks: "Move Noise Level"
    detect_level,       ///< peaks: "Move Threshold Level"
    base_level,         ///< peaks: "Move Base Level"
    add_integral,       ///< integrals
    divide_integral,    ///< integrals
    move_integral,      ///< integrals
    enlarge_integral,   ///< integrals: the nearer end
    delete_integral,    ///< integrals
    reference_integral, ///< integrals
    add_region,         ///< coloured regions
    delete_region,      ///< coloured regions
};

/// A place in the plot. What a few pixels around it are worth: `reach_ppm`, `reach_height`.
struct PlotPoint {
    double ppm = 0;
    double height = 0;
    double reach_ppm = 0;
    double reach_height = 0;
};

/// What a tool draws over the spectrum.
struct ToolMarks {
    struct Vertical {
        double ppm;
        std::string label; ///< "PP", "P2"; empty for the ends of a dragged range
    };
    struct Level {
        double height;
        ToolAction action; ///< which level: noise_level, detect_level, base_level
    };
    struct Point {
        double ppm, height;
        bool on_line = false; ///< of a base point that seems to stand on a line
    };
    std::vector<Vertical> verticals;
    std::vector<Level> levels;
    std::vector<Point> points;                          ///< base points, the line between them straight
    std::vector<float> base_line;                       ///< a smooth one: one level a point of the row
    std::optional<std::pair<double, double>> range_ppm; ///< under the mouse while it is dragged
};

class Tools {
public:
    explicit Tools(Session& s) : s_(s), g_(s.g) {}

    // The state machine.
    Tool open() const { return static_cast<Tool>(g_.ToolMode); }
    ToolAction action() const { return action_; }
    /// Opens a tool; closes what stands open first. Asks its own questions. False when nothing was opened: no
    /// spectrum, or a question was answered so. The open tool again closes it.
    bool Enter(Tool tool);
    /// Before another command, a read or the exit: fixes or discards what stands open, by question. False: the
    /// command that asked is to end.
    bool Close();
    void Fix();    ///< Enter: "Fix", "OK", "Close" of the panel
    void Cancel(); ///< Esc: "Cancel"
    /// A drag under way is taken back, as by Esc; before what changes the lists under it. Whether there was one.
    bool StopDrag();
    void SetAction(ToolAction action);
    ToolMarks Marks() const;
    /// Text of the status line for the place under the mouse: "Delete Integral".
    std::string StatusText(const PlotPoint& at) const;
    /// Row selector while a tool is open. Base points stay where they are, at the level of the new row.
    void SetRow(std::int16_t row);

    // The left button in the plot. A press and release at one place is a click.
    /// Whether a press does anything; a smooth base line has no points to click.
    bool UsesMouse() const;
    void MouseDown(const PlotPoint& at);
    void MouseMove(const PlotPoint& at);
    void MouseUp(const PlotPoint& at);

    // Phase.
    static constexpr double kPhase0Limit = 180.0; ///< of the scroll bar, degrees
    static constexpr double kPhase1Limit = 1800.0;
    double phase0() const;
    double phase1() const;
    void SetPhase0(double deg); ///< a value beyond the limits is put back to them
    void SetPhase1(double deg);
    void TurnPhase0(double by_deg); ///< a step; past the limits it goes on at the other end of the circle
    std::string PhaseText1() const; ///< "####0.0#"
    std::string PhaseText2() const;
    void AutoPhase();     ///< PhaseCommand4
    void SemiAutoPhase(); ///< PhaseCommand3, by the marks "PP" and "P2"
    void AutoPhaseRobust();
    std::optional<double> phase_quality() const { return quality_; } ///< of the last robust phase, percent
    void SetPivot(std::int32_t point);                               ///< the spectrum keeps its look
    void SamePhaseToAllRows();                                       ///< the shown row's; one step with Fix
    void SetSecond(std::int32_t point);

    // Base line. Points, the average and the method of the settings make the curve.
    void AutoBasePoints();
    void DeleteAllBasePoints();
    /// Those that seem to stand on lines, of the points as the last edit left them; ascending indices.
    const std::vector<std::size_t>& BasePointsOnLines() const;
    void DeleteBasePointsOnLines();
    void SetAveragePoints(std::int32_t points);
    void SetBaseLineMethod(std::int32_t method); ///< 0 straight lines, 1 Whittaker, 2 Bernstein
    // Bend and degree are kept in the settings, as the method is.
    void SetBaseLineBend(double percent);        ///< Whittaker: length over which the curve may bend, of the row
    void SetBaseLineDegree(std::int32_t degree); ///< Bernstein, 1 to 20
    void PreviewBaseLine();                      ///< BaseCorCommand1
    std::vector<float> BaseLineCurve() const;    ///< empty when there is none
    /// Shows the row with the curve taken off, or as it was; a change of the points shows it as it was.
    void SetPreview(bool on);
    bool previewed() const { return previewed_; }
    bool UndoBasePoint();
    bool RedoBasePoint();

    // Peaks.
    void PickShown(); ///< button 0: the whole shown range
    void PickBetween(double a_ppm, double b_ppm);
    void DeleteAllPeaks(); ///< PeakCommand3
    /// Those of a list's rows, as one step; the tool need not be open. Indices beyond the list are left out.
    void DeletePeaks(std::vector<std::size_t> indices);
    bool SetLevel(ToolAction level, double fraction);
    double LevelOf(ToolAction level) const; ///< fraction of DispLeft, as the field shows it

    // Integrals.
    std::int32_t selected() const { return selected_; } ///< SelectedIntegral
    void SelectIntegral(std::int32_t index);
    void DeleteAllIntegrals();                              ///< IntegralCommand2
    void DeleteIntegrals(std::vector<std::size_t> indices); ///< likewise
    void MakeReference(std::int32_t index);                 ///< of a list's row
    bool SetIntegralScale(double value);                    ///< IntegralText1; false for 0 and below
    bool SetB0(double value);                               ///< IntegralText2
    bool SetB1(double value);                               ///< IntegralText3
    bool PressB0B1();       ///< a fine button goes down: one undo step; false when it does nothing
    void StepB0(int steps); ///< while it is held
    void StepB1(int steps);
    static constexpr double kB0Step = 1e-5, kB1Step = 1e-3; ///< of a fine button

    // Reference.
    /// Gives the line at a position its shift; shown at once, kept by Fix.
    bool SetReference(double line_ppm, double shift_ppm);
    /// The line that was clicked, or the top that was near the click, ppm.
    double reference_line() const { return reference_line_; }
    bool has_reference_line() const { return open() == Tool::reference && referenced_; }
    /// Whether there is nothing but noise where the click was.
    bool reference_in_noise() const { return reference_in_noise_; }
    /// After Fix the instrument table takes the new 0 ppm frequency too.
    void SetUpdateInstrument(bool on) { update_instrument_ = on; }

    // Coloured regions.
    void ResetRegions();

private:
    bool MayEnter(Tool tool);
    void Start(Tool tool);
    void End();
    void Changed();
    void Moved(ToolChange change);
    /// The marks under a press, of which a drag takes one whatever button is down: the nearest, and with it those
    /// that lie on it, the one that moves upwards first.
    std::vector<ToolAction> MarksAt(const PlotPoint& at) const;
    void TakeMark(const PlotPoint& at);
    void ChooseMark(const PlotPoint& at);
    /// Fraction of the full height that a dragged level is to have.
    double DraggedLevel(const PlotPoint& at) const;
    DataSet& set() { return g_.Slots[0]; }
    const DataSet& set() const { return g_.Slots[0]; }

    void RotateRow();
    void FixPhase();
    void CancelPhase();
    void TakePhases();
    void FixBaseLine();
    void CancelBaseLine();
    void FixReference();
    void CancelReference();
    bool ReferenceMoved() const;

    /// Runs an edit of the lists as one step; nothing is kept of one that changes nothing.
    template <class Edit>
    bool EditLists(UndoKind kind, Edit edit);
    template <class Edit>
    bool EditBasePoints(PointUndoKind kind, Edit edit);
    void PickReference(const PlotPoint& at);
    void DragTo(const PlotPoint& at);
    void TakeDragBack();
    void Click(const PlotPoint& at);
    void DragEnd(const PlotPoint& at);

    Session& s_;
    GlobalBlock& g_;
    ToolAction action_ = ToolAction::none;
    UndoStep points_before_; ///< of phase and base line, kept at entry
    UndoStep reference_before_;
    std::optional<double> quality_;
    std::int32_t pivot_of_rows_ = 0; ///< to which the phases of all rows count
    double reference_line_ = 0;
    bool referenced_ = false, reference_in_noise_ = false, update_instrument_ = false;
    std::int32_t selected_ = -1;
    bool previewed_ = false;
    mutable std::optional<std::vector<std::size_t>> on_lines_; ///< found when it is asked for

    // A drag under way.
    bool down_ = false, moved_ = false;
    PlotPoint start_, now_;
    ToolAction pressed_ = ToolAction::none; ///< the action that comes back with the release
    std::vector<ToolAction> stacked_;       ///< levels on each other: the way of the drag tells which is meant
    double grip_ = 0;                       ///< height of the level above the place where it was taken hold of
    struct DragStart {
        std::int32_t pivot, second;
        float phase0;
        double noise, detect, base;
    } before_{};
    std::int32_t dragged_ = -1; ///< index in its list
    IntegralEnd dragged_end_ = IntegralEnd::start;
    std::vector<IntegralEntry> integrals_before_;
    std::int16_t reference_index_before_ = 0;
    std::vector<BasePointEntry> base_before_;
};

/// Moves the axis so that the line at a position gets a shift: frequencies, coloured regions and shown range go
/// along; peaks and integrals are relative and follow by themselves. False without a spectrum or for no number.
bool Shift_Reference(GlobalBlock& g, double line_ppm, double shift_ppm);

} // namespace nmr
