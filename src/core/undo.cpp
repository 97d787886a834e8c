#include "core/undo.h"

#include "core/file_layer.h"
#include "core/global_block.h"
#include "core/snapshot.h"
#include "core/undo_parts.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <system_error>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kData = kUndoPoints | kUndoPhase;

// A tool that is new adds its row here. Captions are texts that users and their notes know.
constexpr UndoKindRow kKinds[] = {
    {1, "UnDo(Delete Peak)", kUndoPeaks},
    {2, "UnDo(Add Peak)", kUndoPeaks},
    {3, "UnDo(Add Peak,Auto)", kUndoPeaks},
    {4, "UnDo(Delete All Peaks)", kUndoPeaks},
    {6, "UnDo(Phase Correction)", kData},
    {8, "UnDo(Base Line Correction)", kData},
    {11, "UnDo(Property of Array Data Display)", kUndoArrayDisplay},
    {16, "UnDo(Change Parameter)", kUndoParameters},
    {33, "UnDo(Change Grid)", kUndoGrid},
    {51, "UnDo(Delete Integral)", kUndoIntegrals},
    {52, "UnDo(Divide Integral)", kUndoIntegrals},
    {53, "UnDo(Move Integral)", kUndoIntegrals},
    {54, "UnDo(Enlarge Integral)", kUndoIntegrals},
    {55, "UnDo(Add Integral)", kUndoIntegrals},
    {56, "UnDo(Delete All Integral)", kUndoIntegrals},
    {57, "UnDo(Adjust Integral)", kUndoIntegrals},
    {58, "UnDo(Set Integral Reference)", kUndoIntegrals},
    {59, "UnDo(Change B0,B1)", kUndoIntegrals},
    {61, "UnDo(Delete View)", kUndoViews},
    {62, "UnDo(Move View)", kUndoViews},
    {63, "UnDo(Delete View)", kUndoViews},
    {64, "UnDo(Add View)", kUndoViews},
    {65, "UnDo(Property of View)", kUndoViews},
    {66, "UnDo(Move Spec. in View)", kUndoViews},
    {67, "UnDo(Change View\u3000Width)", kUndoViews},
    {68, "UnDo(Change View\u3000Height)", kUndoViews},
    {69, "UnDo(Change View\u3000Offset)", kUndoViews},
    {71, "UnDo(Change View)", kUndoViews},
    {81, "UnDo(Move Multi Spec)", kUndoMulti},
    {91, "UnDo(Set Reference)", kUndoReference},
    {105, "UnDo(Axis Label)", kUndoLabels},
    {141, "UnDo(Set Color Region)", kUndoRegions},
    {142, "UnDo(ReSet Color Region)", kUndoRegions},
    {201, "UnDo(Change Multi Specrum)", kUndoMulti},
    {205, "UnDo(Change DEPT Parameter)", kUndoDept},
    {291, "UnDo(Inversion of Spectrum)", kData | kUndoReference | kUndoPeaks | kUndoIntegrals},
    {5001, "UnDo(Data Read/OverWrite) ", kUndoBackup},
};

constexpr UndoKindRow kPointKinds[] = {
    {1, "UnDo(Delete Point)", kUndoBasePoints},
    {2, "UnDo(Add Point)", kUndoBasePoints},
    {3, "UnDo(Add Points,Auto)", kUndoBasePoints},
    {4, "UnDo(Delete All Points)", kUndoBasePoints},
};

constexpr char kWorkFiles[] = "Work_File_1D*.wkf";
constexpr char kLiveExtension[] = "00X";
constexpr char kLastLive[] = "$";

DataSet& SetOf(GlobalBlock& g, const UndoStep& step)
{
    return g.Slots[static_cast<std::size_t>(step.Slot)];
}

void Remove(const fs::path& file)
{
    std::error_code ignored;
    if (!file.empty() && fs::is_regular_file(fs::symlink_status(file, ignored))) fs::remove(file, ignored);
}

} // namespace

bool AnotherClaim(const GlobalBlock& g)
{
    const std::string own = g.WorkFile.filename().string();
    const auto names = ListFiles(g.AppPath, kWorkFiles);
    return std::ranges::any_of(names, [&](const std::string& name) { return name != own; });
}

std::span<const UndoKindRow> UndoKinds()
{
    return kKinds;
}

std::span<const UndoKindRow> PointUndoKinds()
{
    return kPointKinds;
}

const UndoKindRow* UndoStack::Row(std::int32_t kind) const
{
    const auto row = std::ranges::find(kinds_, kind, &UndoKindRow::kind);
    return row == kinds_.end() ? nullptr : &*row;
}

UndoStep& UndoStack::Push(GlobalBlock& g, std::int32_t kind, std::span<const std::int32_t> slots, std::int16_t slot)
{
    UndoStep step;
    step.Kind = kind;
    step.Slot = slot;
    step.OldRows.assign(slots.begin(), slots.end());
    step.OldSets.resize(slots.size());
    // The tool may put other points there, which no snapshot tells of.
    for (const std::int32_t changed : slots) ++point_changes_[static_cast<std::size_t>(changed)];
    if (const UndoKindRow* row = Row(kind)) KeepParts(g, step, row->parts);
    PushStep(std::move(step));
    return *stack_.newest();
}

void UndoStack::PushStep(UndoStep step)
{
    // What was taken back and is not done again gives its number back; steps that fall out keep theirs.
    for (const UndoStep& lost : stack_.Push(std::move(step)))
        if (std::erase(files_, lost.DataFile) > 0) Remove(lost.DataFile);
}

fs::path UndoStack::Live(const GlobalBlock& g, std::int16_t slot)
{
    if (g.AppPath.empty() || snapshots_.empty()) return {};
    if (live_name_.empty()) {
        live_name_ = snapshots_ + kLiveExtension;
        if (AnotherClaim(g)) live_name_ += fmt::format("{:04}", g.WorkNumber);
    }
    return g.AppPath / (slot == 0 ? live_name_ : fmt::format("{}S{:02}", live_name_, slot));
}

/// What the file held stays beside it under another name: the journal may count on it until its next
/// record, and a run that is killed while it writes has lost nothing.
bool UndoStack::WriteLive(GlobalBlock& g, std::int16_t slot)
{
    const fs::path live = Live(g, slot);
    if (live.empty()) return false;
    const fs::path last = live.string() + kLastLive;
    live_files_.insert({live, last});
    std::error_code ignored;
    fs::rename(live, last, ignored);
    return static_cast<bool>(WriteSpcDataTemp(g.Slots[static_cast<std::size_t>(slot)], live));
}

/// The live snapshot is compared rather than trusted: a tool that keeps no steps may have changed the
/// points since, and reading costs less than a step that brings the wrong data back.
bool UndoStack::EnsureLive(GlobalBlock& g, std::int16_t slot)
{
    const fs::path live = Live(g, slot);
    if (live.empty()) return false;
    return HoldsSnapshotOf(g.Slots[static_cast<std::size_t>(slot)], live) || WriteLive(g, slot);
}

fs::path UndoStack::KeepLive(GlobalBlock& g)
{
    return EnsureLive(g, 0) ? Live(g, 0) : fs::path();
}

UndoStep UndoStack::Begin(GlobalBlock& g, std::int32_t kind, std::int16_t slot)
{
    UndoStep step;
    step.Kind = kind;
    step.Slot = slot;
    const DataSet& set = SetOf(g, step);
    step.Extra.rows = set.RowCount;
    step.Extra.points = set.par.POINT;
    if (const UndoKindRow* row = Row(kind)) KeepParts(g, step, row->parts);
    if (EnsureLive(g, slot)) step.DataFile = Live(g, slot);
    step.open = std::make_shared<const char>('\0');
    open_ = step.open;
    return step;
}

bool UndoStack::Commit(GlobalBlock& g, UndoStep step)
{
    const std::int16_t slot = step.Slot;
    ++point_changes_[static_cast<std::size_t>(slot)];
    step.open.reset();
    if (!step.DataFile.empty()) step.DataFile = MoveToFreeNumber(step.DataFile, g.AppPath / snapshots_);
    const bool kept = !step.DataFile.empty();
    if (kept) {
        files_.push_back(step.DataFile);
        PushStep(std::move(step));
    }
    // Without it the next step writes it anew.
    static_cast<void>(WriteLive(g, slot));
    return kept;
}

bool UndoStack::ExchangePoints(GlobalBlock& g, UndoStep& step)
{
    DataSet& set = SetOf(g, step);
    if (set.RowCount != step.Extra.rows || set.par.POINT != step.Extra.points) return false;
    const fs::path live = Live(g, step.Slot);
    const bool can_redo = EnsureLive(g, step.Slot);
    if (!ReadSpcDataTemp(set, step.DataFile)) return false;
    ++point_changes_[static_cast<std::size_t>(step.Slot)];
    // The next rotation starts from the source, so it must not bring the change back.
    CopyDataToSource(set);
    if (can_redo && ExchangeFiles(live, step.DataFile)) return true;
    std::error_code ignored;
    fs::rename(step.DataFile, live, ignored);
    step.DataFile.clear();
    return true;
}

/// Whether the step can be done again.
bool UndoStack::Exchange(GlobalBlock& g, UndoStep& step)
{
    const UndoKindRow* row = Row(step.Kind);
    if (row == nullptr) return false;
    if ((row->parts & kUndoBackup) != 0) {
        for (std::uint64_t& changes : point_changes_) ++changes; // a backup holds every slot
        return exchange_backup && exchange_backup(g, step);
    }
    const bool points = (row->parts & kUndoPoints) != 0;
    if (points && !ExchangePoints(g, step)) return false;
    ExchangeParts(g, step, row->parts);
    if ((row->parts & (kUndoGrid | kUndoArrayDisplay | kUndoMulti | kUndoDept | kUndoLabels)) != 0)
        g.SettingsChanged = true;
    return !points || !step.DataFile.empty();
}

bool UndoStack::UnDo(GlobalBlock& g)
{
    return stack_.Undo([&](UndoStep& step) { return Exchange(g, step); });
}

bool UndoStack::ReDo(GlobalBlock& g)
{
    return stack_.Redo([&](UndoStep& step) { return Exchange(g, step); });
}

std::string UndoStack::CaptionOf(const UndoStep* step) const
{
    if (step == nullptr) return "UnDo";
    if (!step->Name.empty()) return step->Name;
    const UndoKindRow* row = Row(step->Kind);
    return row == nullptr ? "UnDo" : std::string(row->caption);
}

std::string UndoStack::Caption() const
{
    return CaptionOf(stack_.newest());
}

std::string UndoStack::RedoCaption() const
{
    std::string caption = CaptionOf(stack_.next_redo());
    if (caption.starts_with("UnDo")) caption.replace(0, 4, "ReDo");
    return caption;
}

void UndoStack::Empty()
{
    stack_.Clear();
    ++reads_;
}

void UndoStack::NoteSaved()
{
    ++saves_;
    const auto differs = [](DataSet& set) {
        set.par.DataChanged = 1;
        set.par.DataFromFile = 0;
    };
    stack_.ForEach([&](UndoStep& step) {
        differs(step.Extra.set);
        for (DataSet& set : step.OldSets) differs(set);
    });
}

void UndoStack::RemoveFiles(const GlobalBlock& g, bool alone)
{
    stack_.Clear();
    if (g.AppPath.empty() || snapshots_.empty()) return;
    if (alone)
        for (const std::string& name : ListFiles(g.AppPath, snapshots_ + "*")) Remove(g.AppPath / name);
    for (const fs::path& file : files_) Remove(file);
    for (const fs::path& file : live_files_) Remove(file);
    files_.clear();
    live_files_.clear();
}

void UndoStack::RemoveOrphans(const GlobalBlock& g)
{
    if (g.AppPath.empty() || snapshots_.empty()) return;
    for (const std::string& name : ListFiles(g.AppPath, snapshots_ + "*")) {
        const fs::path file = g.AppPath / name;
        if (!live_files_.contains(file) && std::ranges::find(files_, file) == files_.end()) Remove(file);
    }
}

UndoStep& PushUndoStep(GlobalBlock& g, UndoKind kind, std::span<const std::int32_t> slots)
{
    return g.Undo.Push(g, static_cast<std::int32_t>(kind), slots);
}

UndoStep& PushPointUndoStep(GlobalBlock& g, PointUndoKind kind)
{
    return g.PointUndo.Push(g, static_cast<std::int32_t>(kind));
}

} // namespace nmr
