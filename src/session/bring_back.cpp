// What becomes of the journal of a run that is gone. Nothing of it is removed before its work stands in a
// journal of the present run, or the user has said that it may go.

#include "core/dates.h"
#include "core/error_report.h"
#include "core/file_layer.h"
#include "core/snapshot.h"
#include "core/undo_parts.h"
#include "session/display_scope.h"
#include "session/forms.h"
#include "session/journal_records.h"
#include "session/read_flow.h"
#include "session/recovery.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <set>
#include <system_error>

namespace nmr {
namespace {

namespace fs = std::filesystem;

constexpr char kWhere[] = "Recovery/1DF1";
constexpr char kTitle[] = "Recover Data";
constexpr char kRecover[] = "Recover", kLater[] = "Keep for Later", kDiscard[] = "Discard";
constexpr char kSnapshots[] = "UndoSpecData1.*";
constexpr char kLiveMark[] = ".00X";

/// A journal whose run is gone, held so that no other run takes it.
struct DeadRun {
    fs::path journal;
    LockedFile lock;
    HeadRecord head;
    StateImage image;
    double when = 0; ///< of the last edit
    std::size_t edits = 0;
    bool unsaved = false;
    std::vector<std::string> took_over; ///< names of runs whose work this one had
    Status state;                       ///< why it can't be read
};

Error Damaged(std::string text)
{
    return {ErrorCode::bad_format, kWhere, std::move(text)};
}

/// Of the data alone: what is shown of them is no work.
std::uint64_t DataChecksum(const StateImage& image)
{
    StateImage data;
    std::ranges::copy_if(image, std::inserter(data, data.end()), [](const auto& row) { return row.first.slot >= 0; });
    return ChecksumOf(data);
}

Status Replay(const JournalContents& contents, DeadRun& run)
{
    std::uint64_t saved_state = DataChecksum({});
    for (std::size_t i = 1; i < contents.records.size(); ++i) {
        const auto record = RecordOf<EditRecord>(contents.records[i].payload);
        if (contents.records[i].kind != kEditRecord || !record || !Apply(record->patches, run.image))
            return Damaged("A record of the journal does not fit its data");
        if (record->saved != 0) {
            saved_state = DataChecksum(run.image);
            run.edits = 0;
        } else {
            ++run.edits;
        }
        run.when = record->when;
        if (!record->took_over.empty()) run.took_over.push_back(record->took_over);
        run.unsaved = record->unsaved != 0;
    }
    run.unsaved = run.unsaved || DataChecksum(run.image) != saved_state;
    return {};
}

Status Load(const Bytes& bytes, DeadRun& run)
{
    const auto contents = ParseJournal(bytes, ImageLayout());
    if (!contents) return contents.error();
    if (contents->records.empty()) return Damaged("The journal has no whole record");
    const auto head = RecordOf<HeadRecord>(contents->records.front().payload);
    if (contents->records.front().kind != kHeadRecord || !head) return Damaged("The head of the journal is damaged");
    run.head = *head;
    return Replay(*contents, run);
}

std::string NameOf(const DeadRun& run)
{
    return fmt::format("{} {} {}", run.journal.filename().string(), run.head.run.process, run.head.run.start);
}

/// Nothing when the journal's run lives, or another run has taken it.
std::optional<DeadRun> Take(const fs::path& journal)
{
    DeadRun run;
    run.journal = journal;
    run.lock = LockJournal(journal, LockFor::take);
    if (!run.lock) return std::nullopt;
    const auto bytes = ReadWholeFile(journal.string());
    run.state = bytes ? Load(*bytes, run) : Status(bytes.error());
    if (IsAlive(run.head.run)) return std::nullopt;
    return run;
}

void Remove(const fs::path& file)
{
    std::error_code ignored;
    if (fs::is_regular_file(fs::symlink_status(file, ignored))) fs::remove(file, ignored);
}

fs::path FileOf(const DeadRun& run, const char* pattern)
{
    return run.journal.parent_path() /
           fmt::format(fmt::runtime(pattern), *WorkNumberOf(run.journal.filename().string()));
}

/// The journal goes last: as long as it is there, the rest is asked about again.
void Remove_Files(const DeadRun& run)
{
    const fs::path folder = run.journal.parent_path();
    for (const std::string& name : ListFiles(folder, PointsPattern(run.journal))) Remove(folder / name);
    Remove(FileOf(run, "UndoSpecData1.00X{:04}"));
    Remove(FileOf(run, "UndoSpecData1.00X{:04}$"));
    Remove(FileOf(run, "FID_Work_File_1D{:04}.dat"));
    Remove(FileOf(run, "Work_File_1D{:04}.wkf"));
    Remove(run.journal);
}

// --- Bringing back

/// Files that may hold points, live snapshots first.
std::vector<fs::path> Candidates(const DeadRun& run)
{
    const fs::path folder = run.journal.parent_path();
    std::vector<fs::path> files;
    for (const std::string& pattern : {std::string(kSnapshots), PointsPattern(run.journal)})
        for (const std::string& name : ListFiles(folder, pattern)) files.push_back(folder / name);
    std::stable_partition(files.begin(), files.end(), [](const fs::path& file) {
        return file.filename().string().find(kLiveMark) != std::string::npos;
    });
    return files;
}

/// Which file holds the points does not matter: a step may have moved them, and they are known by their
/// checksum.
bool FindPoints(DataSet& set, const PointsMark& mark, const std::vector<fs::path>& files)
{
    const auto length = static_cast<std::uintmax_t>(mark.rows) * static_cast<std::uintmax_t>(mark.points) * 8;
    return std::ranges::any_of(files, [&](const fs::path& file) {
        std::error_code failed;
        return fs::file_size(file, failed) == length && !failed && ReadSpcDataTemp(set, file) &&
               MarkPoints(set) == mark;
    });
}

Status Bring_Slot(GlobalBlock& g, const StateImage& image, std::int16_t slot, const std::vector<fs::path>& files)
{
    const auto section = image.find({slot, Section::points});
    const auto mark = section == image.end() ? std::nullopt : RecordOf<PointsMark>(section->second);
    DataSet& set = g.Slots[static_cast<std::size_t>(slot)];
    if (!mark || !PutSlot(image, slot, set)) return Damaged("The parameters in the journal are damaged");
    if (mark->rows != set.RowCount || mark->points != set.par.POINT)
        return Damaged("Points and parameters in the journal do not agree");
    std::vector<double> axis = std::move(set.spec.XAxis);
    if (axis.size() < static_cast<std::size_t>(std::max(set.par.POINT, 0)))
        return Damaged("Points and axis in the journal do not agree");
    if (Status made = AllocateSpecBuffer(g, set.par.POINT, slot); !made) return made;
    set.spec.XAxis = std::move(axis);
    if (!FindPoints(set, *mark, files)) return Damaged("The file with the points is missing or damaged");
    CopyDataToSource(set);
    return {};
}

Status Bring_All(GlobalBlock& g, const DeadRun& run)
{
    const auto files = Candidates(run);
    for (std::int16_t slot = 0; slot < kSlotCount; ++slot)
        if (run.image.contains({slot, Section::parameters}))
            if (Status brought = Bring_Slot(g, run.image, slot, files); !brought) return brought;
    if (!PutGlobals(run.image, g)) return Damaged("The settings in the journal are damaged");
    return {};
}

void Empty_Slots(GlobalBlock& g)
{
    for (std::int16_t slot = 0; slot < kSlotCount; ++slot) {
        ClearDataSet(g, slot);
        g.Slots[static_cast<std::size_t>(slot)].spec = SpecBuffer{};
    }
    static_cast<void>(AllocateSpecBuffer(g, g.DefaultPoints, 0));
}

/// The FID of the work comes along, so that it can be transformed again.
void Bring_Fid(GlobalBlock& g, const DeadRun& run)
{
    std::error_code failed;
    fs::copy_file(FileOf(run, "FID_Work_File_1D{:04}.dat"), g.FIDWorkFile, fs::copy_options::overwrite_existing,
                  failed);
    g.NoFIDFile = static_cast<bool>(failed);
    g.NoSpectrumYet = false;
}

/// @return whether the work is in this run and in its journal
bool Recover(Session& s, const DeadRun& run)
{
    GlobalBlock& g = s.g;
    Status brought = run.state ? Bring_All(g, run) : run.state;
    if (!brought) {
        Empty_Slots(g);
        s.asker.Message({"The work of the last run could not be recovered.\n" + brought.error().text +
                             "\nIts files are kept: " + run.journal.string(),
                         "Data Error",
                         {Button::ok},
                         Icon::warning,
                         true});
        return false;
    }
    Bring_Fid(g, run);
    const std::string& file = g.Slots[0].par.FileName;
    if (!file.empty() && !IsFileInUse(g, file)) ClaimFile(g, file);
    ShowFileTitle(s, file);
    s.recorder->TakeOver(NameOf(run));
    const bool noted = s.recorder->Note(s.asker);
    if (s.display_changed) s.display_changed();
    return noted;
}

/// Settings that a step can take back count as edits, though they are no work on data. The dead run had no
/// time to write them.
void Bring_Settings(GlobalBlock& g, const DeadRun& run)
{
    const UndoSettings before = TakeUndoSettings(g.settings);
    if (!PutSettings(run.image, g)) return;
    const UndoSettings now = TakeUndoSettings(g.settings);
    if (now.switches != before.switches || now.numbers != before.numbers) g.SettingsChanged = true;
}

// --- Asking

std::string Description(const DeadRun& run)
{
    const DateTime when{static_cast<std::int32_t>(std::floor(run.when)), run.when - std::floor(run.when)};
    std::string text = "The last run was not ended normally, and its data were not saved.\n";
    text += run.head.file.empty() ? run.journal.string() : run.head.file;
    if (run.when > 0) text += "\n" + FormatDate("yyyy/mm/dd hh:nn:ss", when);
    return text;
}

bool MayDiscard(Asker& asker)
{
    return asker.Message({"Do you really discard the data of the last run?",
                          kTitle,
                          {Button::yes, Button::no},
                          Icon::question,
                          true}) == Button::yes;
}

std::string Ask(Session& s, const DeadRun& run)
{
    for (;;) {
        const FormAnswer answer = s.asker.Form({forms::kQuestion,
                                                {{forms::kTitle, kTitle},
                                                 {forms::kText, Description(run)},
                                                 {forms::kCount, "3"},
                                                 {forms::Indexed(forms::kButton, 1), kRecover},
                                                 {forms::Indexed(forms::kButton, 2), kDiscard},
                                                 {forms::Indexed(forms::kButton, 3), kLater}}});
        if (answer.dialog_result != kDiscard || MayDiscard(s.asker)) return answer.dialog_result;
    }
}

/// @return whether the slots hold its work now
bool Settle(Session& s, const DeadRun& run)
{
    if (run.state && !run.unsaved) {
        Bring_Settings(s.g, run);
        Remove_Files(run);
        return false;
    }
    const std::string answer = Ask(s, run);
    if (answer == kDiscard) Remove_Files(run);
    if (answer != kRecover || !Recover(s, run)) return false;
    Remove_Files(run);
    return true;
}

std::vector<DeadRun> Dead_Runs(const GlobalBlock& g)
{
    const fs::path own = JournalPath(g.AppPath, g.WorkNumber).filename();
    std::vector<DeadRun> runs;
    for (const std::string& name : ListFiles(g.AppPath, kJournalPattern)) {
        if (name == own || !WorkNumberOf(name)) continue;
        if (auto run = Take(g.AppPath / name)) runs.push_back(std::move(*run));
    }
    return runs;
}

/// A run that was killed between taking work over and removing where it came from leaves it twice.
void Remove_Taken_Over(std::vector<DeadRun>& runs)
{
    std::set<std::string> taken;
    for (const DeadRun& run : runs) taken.insert(run.took_over.begin(), run.took_over.end());
    std::erase_if(runs, [&](const DeadRun& run) {
        const bool done = taken.contains(NameOf(run));
        if (done) Remove_Files(run);
        return done;
    });
}

} // namespace

void Offer_Recovery(Session& s)
{
    if (!s.recorder) return;
    std::vector<DeadRun> runs = Dead_Runs(s.g);
    Remove_Taken_Over(runs);
    // The newest first. What is not asked about comes with the next start: this run has room for one.
    std::ranges::stable_sort(runs, std::greater(), &DeadRun::when);
    for (const DeadRun& run : runs)
        if (Settle(s, run)) break;
    if (!OtherJournals(s.g) && !AnotherClaim(s.g)) s.g.Undo.RemoveOrphans(s.g);
}

bool IsDeadClaim(const fs::path& folder, const std::string& work_file)
{
    const auto number = WorkNumberOf(work_file);
    if (!number) return false;
    const fs::path journal = JournalPath(folder, *number);
    const LockedFile lock = LockJournal(journal, LockFor::look);
    if (!lock) return false;
    const auto bytes = ReadWholeFile(journal.string());
    if (!bytes) return false;
    const auto contents = ParseJournal(*bytes, ImageLayout());
    if (!contents || contents->records.empty()) return true; // nobody holds the lock
    const auto head = RecordOf<HeadRecord>(contents->records.front().payload);
    return !head || !IsAlive(head->run);
}

bool OtherJournals(const GlobalBlock& g)
{
    const fs::path own = JournalPath(g.AppPath, g.WorkNumber).filename();
    const auto names = ListFiles(g.AppPath, kJournalPattern);
    return std::ranges::any_of(names, [&](const std::string& name) { return name != own; });
}

} // namespace nmr
