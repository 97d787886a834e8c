#include "session/backup.h"

#include "core/file_layer.h"
#include "core/quiet_answers.h"
#include "core/undo_parts.h"
#include "formats/tavo4.h"
#include "session/read_flow.h"
#include "session/save_flow.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace nmr {
namespace {

namespace fs = std::filesystem;

using Slots = std::array<DataSet, kSlotCount>;

constexpr std::size_t kNoFidFile = 2; ///< among the switches of the step

/// What belongs to the work and stands in no set: every value of the block with its place in the step.
template <class Op>
void EachScalar(GlobalBlock& g, UndoExtra& extra, Op op)
{
    op(g.ViewLeft, extra.ViewLeft);
    op(g.ViewRight, extra.ViewRight);
    op(g.ShownHzLeft, extra.ShownHzLeft);
    op(g.ShownHzRight, extra.ShownHzRight);
    EachPhaseWord(g, extra, op);
    op(g.DEPTMode, extra.DEPTMode);
    op(g.DiffMode, extra.DiffMode);
    op(g.DiffCount, extra.DiffCount);
    op(g.ArrayMode, extra.ArrayMode);
    op(g.ArrayReverse, extra.ArrayReverse);
    op(g.CurrentRow, extra.switches[0]);
    op(g.NoSpectrumYet, extra.switches[1]);
    op(g.NoFIDFile, extra.switches[kNoFidFile]);
}

/// A copy of a set with its axis and without its points.
DataSet WithoutPoints(DataSet& set)
{
    SpecBuffer points = std::exchange(set.spec, {});
    DataSet copy = set;
    set.spec = std::move(points);
    copy.spec.XAxis = set.spec.XAxis;
    return copy;
}

/// Everything of the present work that its native file does not hold to the bit.
UndoStep Describe(GlobalBlock& g)
{
    UndoStep step;
    step.Kind = static_cast<std::int32_t>(UndoKind::data_read);
    step.DataFile = g.BackupFile;
    EachScalar(g, step.Extra, [](const auto& live, auto& kept) { kept = live; });
    for (std::int32_t slot = 0; slot < kSlotCount; ++slot) {
        DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
        if (IsEmpty(set)) continue;
        step.OldRows.push_back(slot);
        step.OldSets.push_back(WithoutPoints(set));
    }
    return step;
}

/// Gives the points of a backup their set again; false when they belong to another one.
bool Complete(DataSet& live, DataSet& kept)
{
    const auto points = static_cast<std::size_t>(kept.par.POINT);
    if (live.par.POINT != kept.par.POINT || live.RowCount != kept.RowCount || kept.spec.XAxis.size() < points)
        return false;
    SpecBuffer spec = std::move(live.spec);
    std::copy_n(kept.spec.XAxis.begin(), points, spec.XAxis.begin());
    live = std::move(kept);
    live.spec = std::move(spec);
    return true;
}

bool ReadBack(GlobalBlock& g, UndoStep& step)
{
    QuietAnswers quiet(Button::yes);
    if (!ReadDataTavo4(g, quiet, step.DataFile.string(), 0)) return false;
    for (std::size_t i = 0; i < step.OldRows.size(); ++i)
        if (!Complete(g.Slots[static_cast<std::size_t>(step.OldRows[i])], step.OldSets[i])) return false;
    return true;
}

Slots TakeSlots(GlobalBlock& g)
{
    Slots taken = std::exchange(g.Slots, {});
    NumberSlots(g);
    return taken;
}

/// Work arrays of the length of slot 0, which a read that failed may have changed.
void PutSlots(GlobalBlock& g, Slots slots)
{
    g.Slots[0].RowCount = slots[0].RowCount;
    static_cast<void>(AllocateSpecBuffer(g, slots[0].spec.AllocatedPoints, 0));
    g.Slots = std::move(slots);
}

/// The exchange of the step: the backup becomes the present work, and the present work the backup.
bool ExchangeBackup(GlobalBlock& g, UndoStep& step)
{
    UndoStep present = Describe(g);
    present.DataFile = step.DataFile;
    const auto bytes = EncodeTavo4(g, step.DataFile.string(), 0);
    Slots slots = TakeSlots(g);
    if (!ReadBack(g, step)) {
        PutSlots(g, std::move(slots));
        return false;
    }
    EachScalar(g, step.Extra, []<class Live>(Live& live, const auto& kept) { live = static_cast<Live>(kept); });
    if (g.OverwriteBackupName.empty())
        g.OverwriteBackupName = step.DataFile.string();
    else
        g.OverwriteBackupName.clear();
    ClaimFile(g, g.Slots[0].par.FileName);
    const bool can_redo = bytes && WriteWholeFile(step.DataFile, *bytes);
    step = std::move(present);
    return can_redo;
}

} // namespace

ReadBackup::ReadBackup(GlobalBlock& g) : g_(g)
{
    if (g.Slots[0].par.DataChanged != 1 || g.BackupFile.empty()) return;
    std::error_code failed;
    if (fs::exists(g.BackupFile, failed)) {
        earlier_ = BackupName(g.BackupFile, "$");
        fs::rename(g.BackupFile, earlier_, failed);
        if (failed) earlier_.clear();
    }
    UndoStep step = Describe(g);
    // The FID of this work gives way to that of the file.
    step.Extra.switches[kNoFidFile] = 1;
    const auto bytes = EncodeTavo4(g, g.BackupFile.string(), 0);
    if (bytes && WriteWholeFile(g.BackupFile, *bytes)) step_ = std::move(step);
}

void ReadBackup::Offer()
{
    std::error_code ignored;
    if (!earlier_.empty()) fs::remove(earlier_, ignored);
    g_.OverwriteBackupName.clear();
    if (!step_) return;
    g_.Undo.exchange_backup = ExchangeBackup;
    g_.OverwriteBackupName = step_->DataFile.string();
    g_.Undo.Push(g_, step_->Kind) = std::move(*step_);
}

void ReadBackup::Withdraw()
{
    std::error_code ignored;
    if (step_) fs::remove(step_->DataFile, ignored);
    if (!earlier_.empty()) fs::rename(earlier_, g_.BackupFile, ignored);
}

} // namespace nmr
