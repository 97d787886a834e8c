#pragma once
// Taking edits back, and doing them again. Every tool has its kind: a row with a caption and the parts
// of the data that the tool changes. A step keeps those parts as they were; points lie in a snapshot
// file. What a step brings back is what stood there, bit for bit.

#include "core/data_set.h"
#include "core/result.h"
#include "core/step_stack.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nmr {

struct GlobalBlock;

/// Kinds of the main form.
enum class UndoKind : std::int32_t {
    delete_peak = 1,
    add_peak = 2,
    add_peak_auto = 3,
    delete_all_peaks = 4,
    phase = 6,
    base_line = 8,
    array_display = 11,
    change_parameter = 16,
    change_grid = 33,
    delete_integral = 51,
    divide_integral = 52,
    move_integral = 53,
    enlarge_integral = 54,
    add_integral = 55,
    delete_all_integrals = 56,
    adjust_integral = 57,
    set_integral_reference = 58,
    change_b0_b1 = 59,
    delete_view = 61,
    move_view = 62,
    delete_all_views = 63,
    add_view = 64,
    property_of_view = 65,
    move_spectrum_in_view = 66,
    view_width = 67,
    view_height = 68,
    view_offset = 69,
    change_view = 71,
    move_multi = 81,
    set_reference = 91,
    axis_label = 105,
    set_color_region = 141,
    reset_color_region = 142,
    change_multi = 201,
    change_dept = 205,
    data_read = 5001,
};
/// Kinds of the point tool of the base line, on a stack of its own.
enum class PointUndoKind : std::int32_t { delete_point = 1, add_point = 2, add_points_auto = 3, delete_all_points = 4 };

/// What a kind brings back; a kind may have several.
enum UndoPart : std::uint32_t {
    kUndoPoints = 1U << 0,       ///< DataRe/DataIm by a snapshot file, and what was computed from them
    kUndoPhase = 1U << 1,        ///< phases of all rows, pivot, phase words
    kUndoPeaks = 1U << 2,        ///< the list
    kUndoIntegrals = 1U << 3,    ///< list, reference and its value
    kUndoViews = 1U << 4,        ///< enlarged views
    kUndoRegions = 1U << 5,      ///< coloured regions
    kUndoReference = 1U << 6,    ///< axis, its parameters, shown range
    kUndoParameters = 1U << 7,   ///< all that the parameter editor may change, the date, the reference position
    kUndoGrid = 1U << 8,         ///< settings of the grid
    kUndoArrayDisplay = 1U << 9, ///< settings of the array display
    kUndoMulti = 1U << 10,       ///< shift of the multi spectra, display modes, and whole sets but for their points
    kUndoDept = 1U << 11,        ///< factors of the DEPT calculation
    kUndoBasePoints = 1U << 12,  ///< points of the base line
    kUndoBackup = 1U << 13,      ///< slot 0 by a backup file
    kUndoLabels = 1U << 14,      ///< labels of the axis, and those of the settings for data to come
};

struct UndoKindRow {
    std::int32_t kind;
    std::string_view caption; ///< "UnDo(Delete Peak)"
    std::uint32_t parts;      ///< of UndoPart
};
std::span<const UndoKindRow> UndoKinds();
std::span<const UndoKindRow> PointUndoKinds();

struct BasePointEntry {
    std::int32_t Point = 0;
    float Value = 0; ///< base level there
};

/// The scalars of a step; only those of the kind's parts are filled.
struct UndoExtra {
    DataSet set; ///< without points; XAxis only for the reference
    std::int32_t rows = 0, points = 0;
    float Phase0Deg = 0, Phase1Deg = 0, MaxMagnitude = 0;
    std::int32_t PivotPoint = 0, P2Point = -1;
    std::vector<float> RowPhase0, RowPhase1;
    float ViewLeft = 0, ViewRight = 0;
    double ShownHzLeft = 0, ShownHzRight = 0;
    double LastObsCenter = 0, LastCentre = 0;
    std::array<double, 3> GroupObsCenter{}, GroupCentre{};
    std::array<std::int32_t, 4> switches{}; ///< settings of the kind
    std::array<double, 9> numbers{};        ///< likewise
    std::array<std::string, 3> labels{};    ///< likewise
    std::int16_t DEPTMode = 0, DiffMode = 0, DiffCount = 0, ArrayMode = 0, ArrayReverse = 0;
    std::vector<BasePointEntry> BasePoints;
};

struct UndoStep {
    std::int32_t Kind = 0;
    std::filesystem::path DataFile; ///< snapshot, or backup of a replaced set; empty when the step has none
    UndoExtra Extra;
    std::vector<DataSet> OldSets;      ///< without their points
    std::vector<std::int32_t> OldRows; ///< slots of OldSets
    std::vector<PeakEntry> OldPeaks;
    std::vector<IntegralEntry> OldIntegrals;
    std::string Name;                 ///< caption in place of the kind's, "UnDo(Change Difference Specrum)"
    std::int16_t Slot = 0;            ///< whose parts these are
    std::shared_ptr<const char> open; ///< from Begin to Commit, or to the end of a step that is dropped
};

class UndoStack {
public:
    /// @param kinds     table that outlives the stack
    /// @param snapshots name before the number of a snapshot file, "UndoSpecData1."
    UndoStack(std::span<const UndoKindRow> kinds, std::string_view snapshots) : kinds_(kinds), snapshots_(snapshots) {}

    /// A step of lists and scalars: call it before the change. `slots` names the sets that a kind with
    /// kUndoMulti keeps.
    /// @return the step, for a name of its own; it stays valid until the next change of the stack
    UndoStep& Push(GlobalBlock& g, std::int32_t kind, std::span<const std::int32_t> slots = {}, std::int16_t slot = 0);

    /// A step of points is taken in two halves: Begin before the first change keeps scalars and points,
    /// Commit after the last one pushes the step; nothing may be taken back between the two. A tool that
    /// is left without a change drops the step.
    UndoStep Begin(GlobalBlock& g, std::int32_t kind, std::int16_t slot = 0);
    /// @return false when no snapshot could be kept (all numbers taken, disk full, no data folder): the
    ///         change then stands without a step; an earlier step of points takes it back as well
    bool Commit(GlobalBlock& g, UndoStep step);

    /// Between the two: the points are those of a tool that is at work, and the live snapshot must stay
    /// what it is.
    bool InStep() const { return !open_.expired(); }

    bool UnDo(GlobalBlock& g);
    bool ReDo(GlobalBlock& g);

    std::string Caption() const;     ///< "UnDo" when there is nothing to take back
    std::string RedoCaption() const; ///< "ReDo(Delete Peak)", or "ReDo"
    bool empty() const { return stack_.newest() == nullptr; }
    bool can_redo() const { return stack_.next_redo() != nullptr; }
    const StepStack<UndoStep>& steps() const { return stack_; }

    /// After a read. The files stay until the exit, so that their numbers are used once in a run.
    void Empty();
    /// After a save: every state but the present one differs from the file.
    void NoteSaved();

    /// The live snapshot with the points of slot 0 as they are now; empty when it can't be written. What it
    /// held before stays in some snapshot file at least until the next call.
    std::filesystem::path KeepLive(GlobalBlock& g);
    // What the journal of the run watches: how often points of a slot were changed by a step, in either
    // direction, and how often the data were read and saved.
    std::uint64_t point_changes(std::int16_t slot) const { return point_changes_[static_cast<std::size_t>(slot)]; }
    std::uint64_t reads() const { return reads_; }
    std::uint64_t saves() const { return saves_; }
    /// At exit: the snapshots of this run, or, when it is alone, of all that were killed before.
    void RemoveFiles(const GlobalBlock& g, bool alone);

    /// The snapshots of runs that are gone, when this run is alone: their numbers are free again.
    void RemoveOrphans(const GlobalBlock& g);

    /// Brings the set of a kUndoBackup step back and leaves in the step what stood in its place; answers
    /// whether that can be done again. Set by the read flow, which knows the readers.
    std::function<bool(GlobalBlock&, UndoStep&)> exchange_backup;

private:
    const UndoKindRow* Row(std::int32_t kind) const;
    bool Exchange(GlobalBlock& g, UndoStep& step);
    bool ExchangePoints(GlobalBlock& g, UndoStep& step);
    std::filesystem::path Live(const GlobalBlock& g, std::int16_t slot);
    bool EnsureLive(GlobalBlock& g, std::int16_t slot);
    bool WriteLive(GlobalBlock& g, std::int16_t slot);
    void PushStep(UndoStep step);
    std::string CaptionOf(const UndoStep* step) const;

    std::span<const UndoKindRow> kinds_;
    std::string snapshots_;
    std::string live_name_;                    ///< chosen at the first use
    std::vector<std::filesystem::path> files_; ///< snapshots of this run
    std::set<std::filesystem::path> live_files_;
    std::array<std::uint64_t, kSlotCount> point_changes_{};
    std::uint64_t reads_ = 0, saves_ = 0;
    std::weak_ptr<const char> open_;
    StepStack<UndoStep> stack_;
};

/// A claim of another run in the folder; one of a run that was killed counts too, which harms nothing.
bool AnotherClaim(const GlobalBlock& g);

/// A step of the main form, before its change; see UndoStack::Push.
UndoStep& PushUndoStep(GlobalBlock& g, UndoKind kind, std::span<const std::int32_t> slots = {});
/// The same for the point tool.
UndoStep& PushPointUndoStep(GlobalBlock& g, PointUndoKind kind);

} // namespace nmr
