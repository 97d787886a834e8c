// Recording. The other half, bringing back, is bring_back.cpp.

#include "session/recovery.h"

#include "core/dates.h"
#include "core/run_identity.h"
#include "core/snapshot.h"
#include "session/journal_records.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace nmr {

namespace fs = std::filesystem;

namespace {

void Remove(const fs::path& file)
{
    std::error_code ignored;
    if (!file.empty()) fs::remove(file, ignored);
}

bool AnyUnsaved(const GlobalBlock& g)
{
    return std::ranges::any_of(g.Slots, [](const DataSet& set) { return IsKept(set) && set.par.DataChanged == 1; });
}

/// A FID in slot 0 is on its way to a spectrum: what stands there is not yet what the user has.
bool Transforming(const GlobalBlock& g)
{
    return !IsEmpty(g.Slots[0]) && g.Slots[0].par.SMODE != 1;
}

} // namespace

struct Recorder::Change {
    bool anew = false;
    StateImage fresh; ///< sections that were looked at
    EditRecord record;
    std::array<SlotMark, kSlotCount> marks{};
    std::vector<fs::path> written, obsolete;
};

Recorder::Recorder(GlobalBlock& g) : g_(g)
{
    const auto head = Head();
    const JournalRecord record{kHeadRecord, head};
    static_cast<void>(journal_.Begin(JournalPath(g.AppPath, g.WorkNumber), ImageLayout(), std::span(&record, 1)));
    reads_ = g.Undo.reads();
    saves_ = g.Undo.saves();
}

std::vector<std::byte> Recorder::Head() const
{
    return PayloadOf(DescribeRun(g_.Slots[0].par.FileName));
}

/// Axis and points, when they have changed.
void Recorder::TakeSlot(Change& change, std::int16_t slot)
{
    const DataSet& set = g_.Slots[static_cast<std::size_t>(slot)];
    SlotMark& mark = change.marks[static_cast<std::size_t>(slot)];
    const bool known = !change.anew && image_.contains({slot, Section::points});
    if (const std::uint64_t axis = GlanceAxis(set); !known || axis != mark.axis) {
        change.fresh[{slot, Section::axis}] = AxisImage(set);
        mark.axis = axis;
    }
    const std::uint64_t glance = GlancePoints(set), changes = g_.Undo.point_changes(slot);
    if (known && glance == mark.glance && changes == mark.changes) return;
    mark.glance = glance;
    mark.changes = changes;
    const PointsMark points = MarkPoints(set);
    if (known && points == mark.points) return;
    mark.points = points;
    change.fresh[{slot, Section::points}] = PayloadOf(points);
}

/// The points into a file, where the record that is about to be written will find them.
Status Recorder::TakePoints(Change& change, std::int16_t slot)
{
    if (!change.fresh.contains({slot, Section::points})) return {};
    SlotMark& mark = change.marks[static_cast<std::size_t>(slot)];
    if (slot == 0) {
        const fs::path live = g_.Undo.KeepLive(g_);
        if (live.empty()) return Error{ErrorCode::unwritable, "Journal/1DF1", "The points could not be written."};
        change.written.push_back(live);
        return {};
    }
    change.obsolete.push_back(std::exchange(mark.own_file, PointsPath(journal_.path(), slot, ++next_file_)));
    change.written.push_back(mark.own_file);
    return WriteSpcDataTemp(g_.Slots[static_cast<std::size_t>(slot)], mark.own_file);
}

bool Recorder::Write(Change& change)
{
    for (std::int16_t slot = 0; slot < kSlotCount; ++slot)
        if (!TakePoints(change, slot)) return false;
    change.record.when = NowAsNumber();
    change.record.unsaved = AnyUnsaved(g_) ? 1 : 0;
    const auto payload = PayloadOf(change.record);
    if (!change.anew) return static_cast<bool>(journal_.Append(kEditRecord, payload));
    const auto head = Head();
    const JournalRecord records[] = {{kHeadRecord, head}, {kEditRecord, payload}};
    return static_cast<bool>(journal_.Begin(journal_.path(), ImageLayout(), records));
}

bool Recorder::Note(Asker& asker)
{
    if (!journal_.is_open() || Transforming(g_)) return false;
    Change change;
    change.anew = g_.Undo.reads() != reads_ || image_.empty();
    change.fresh = TakeImage(g_);
    change.marks = marks_;
    std::array<bool, kSlotCount> kept{};
    for (std::int16_t slot = 0; slot < kSlotCount; ++slot) {
        const auto at = static_cast<std::size_t>(slot);
        kept[at] = IsKept(g_.Slots[at]);
        if (kept[at])
            TakeSlot(change, slot);
        else
            change.obsolete.push_back(std::exchange(change.marks[at], {}).own_file);
    }
    const StateImage none;
    change.record.patches = Differences(change.anew ? none : image_, change.fresh, kept);
    const bool saved = g_.Undo.reads() != reads_ || g_.Undo.saves() != saves_;
    change.record.saved = saved ? 1 : 0;
    change.record.took_over = took_over_;
    if (change.record.patches.empty() && !saved && took_over_.empty()) return true;
    if (!Write(change)) {
        if (!std::exchange(told_, true))
            asker.Notice("The work can't be kept for the case of a crash: " + g_.AppPath.string() +
                         " is full or can't be written.");
        return false;
    }
    if (change.anew) image_.clear();
    std::erase_if(image_, [&](const auto& section) {
        return section.first.slot >= 0 && !kept[static_cast<std::size_t>(section.first.slot)];
    });
    for (auto& [key, bytes] : change.fresh) image_[key] = std::move(bytes);
    marks_ = std::move(change.marks);
    reads_ = g_.Undo.reads();
    saves_ = g_.Undo.saves();
    took_over_.clear();
    for (const fs::path& file : change.obsolete) Remove(file);
    change.written.push_back(journal_.path());
    for (const fs::path& file : change.written) flusher_.Wrote(file);
    return true;
}

void Recorder::End()
{
    if (!journal_.is_open()) return;
    for (const SlotMark& mark : marks_) Remove(mark.own_file);
    Remove(journal_.path());
    journal_.Close();
}

void Begin_Journal(Session& s)
{
    if (s.g.AppPath.empty() || s.g.WorkFile.empty()) return;
    s.recorder = std::make_shared<Recorder>(s.g);
}

void Watch_Edits(Session& s)
{
    s.display_changed = [&s, shown = std::move(s.display_changed)] {
        if (s.recorder) static_cast<void>(s.recorder->Note(s.asker));
        if (shown) shown();
    };
}

void End_Journal(Session& s)
{
    if (s.recorder) s.recorder->End();
    s.recorder.reset();
}

} // namespace nmr
