// A run is killed and the next one finds its journal. The dead run is a real process: it works in a child
// of the test and is killed there.

#include "session/recovery.h"

#include "core/snapshot.h"
#include "formats/tavo4.h"
#include "session/journal_records.h"
#include "session/menu.h"
#include "session/rig.h"
#include "session/save_flow.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace nmr {
namespace {

using test::Pressed;
using test::Rig;

constexpr char kRecover[] = "Recover", kLater[] = "Keep for Later", kDiscard[] = "Discard";

void BeginRun(Rig& rig, const std::filesystem::path& folder)
{
    Start_Batch(rig.g);
    rig.g.AppPath = folder;
    Claim_Work_File(rig.g);
    Begin_Journal(rig.s);
    Watch_Edits(rig.s);
}

void AddPeak(Rig& rig)
{
    PushUndoStep(rig.g, UndoKind::add_peak);
    rig.g.Slots[0].Peaks.push_back({5, 1, 2, 3, 0});
    rig.g.Slots[0].par.DataChanged = 1;
    rig.s.display_changed();
}

void ScalePoints(Rig& rig, float factor)
{
    UndoStep step = rig.g.Undo.Begin(rig.g, 6);
    for (float& value : rig.g.Slots[0].spec.DataRe.all()) value *= factor;
    CopyDataToSource(rig.g.Slots[0]);
    EXPECT_TRUE(rig.g.Undo.Commit(rig.g, std::move(step)));
    rig.g.Slots[0].par.DataChanged = 1;
    rig.s.display_changed();
}

/// Points of which a glance at some sees nothing.
void ChangeOnePoint(Rig& rig)
{
    UndoStep step = rig.g.Undo.Begin(rig.g, 8);
    rig.g.Slots[0].spec.DataIm[0][7] += 1;
    EXPECT_TRUE(rig.g.Undo.Commit(rig.g, std::move(step)));
    rig.s.display_changed();
}

void CopyToMulti(Rig& rig)
{
    const std::int32_t slots[] = {4};
    PushUndoStep(rig.g, UndoKind::change_multi, slots);
    rig.g.Slots[4] = rig.g.Slots[0];
    rig.g.Slots[4].par.COMNT = "copy";
    rig.g.Slots[0].par.DataChanged = 1;
    rig.s.display_changed();
}

std::uint64_t StateOf(const GlobalBlock& g)
{
    return ChecksumOf(TakeWholeImage(g));
}

using Work = std::function<void(Rig&)>;

/// Reads a spectrum in a run of its own, works on it, and is killed; the state that it had.
std::uint64_t KilledRun(const Rig& next, const std::string& data, const Work& work)
{
    int ends[2] = {};
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        Rig rig;
        BeginRun(rig, next.folder.path());
        if (!Read_Path(rig.s, data)) ::_exit(1);
        work(rig);
        const std::uint64_t state = StateOf(rig.g);
        if (::write(ends[1], &state, sizeof state) != sizeof state) ::_exit(1);
        std::filesystem::remove_all(rig.folder.path()); // nobody else will
        ::kill(::getpid(), SIGKILL);
    }
    ::close(ends[1]);
    std::uint64_t state = 0;
    EXPECT_EQ(::read(ends[0], &state, sizeof state), static_cast<ssize_t>(sizeof state));
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    return state;
}

std::vector<std::string> FilesOf(const Rig& rig)
{
    std::vector<std::string> names;
    for (const char* pattern : {"*.jnl", "*.wkf", "Journal_1D*_S*"})
        for (const std::string& name : ListFiles(rig.folder.path(), pattern)) names.push_back(name);
    return names;
}

struct Case {
    const char* name;
    Work work;
};

const Case kWork[] = {
    {"a peak", AddPeak},
    {"points and a peak", [](Rig& r) { ScalePoints(r, 1.5F), AddPeak(r); }},
    {"points twice, taken back once", [](Rig& r) { ScalePoints(r, 1.5F), ScalePoints(r, 0.3F), m20_Click(r.s); }},
    {"points taken back and done again", [](Rig& r) { ScalePoints(r, 2), m20_Click(r.s), ReDo_Click(r.s); }},
    {"one point", ChangeOnePoint},
    {"a multi spectrum", [](Rig& r) { CopyToMulti(r), AddPeak(r), ScalePoints(r, 3), CopyToMulti(r); }},
    {"points without a step",
     [](Rig& r) {
         AddPeak(r);
         for (float& value : r.g.Slots[0].spec.DataRe.all()) value += 1;
         CopyDataToSource(r.g.Slots[0]);
         r.s.display_changed();
     }},
    {"killed inside a step of points",
     [](Rig& r) {
         AddPeak(r);
         const DataSet before = r.g.Slots[0];
         UndoStep step = r.g.Undo.Begin(r.g, 6);
         for (float& value : r.g.Slots[0].spec.DataRe.all()) value *= 2;
         r.g.Undo.Commit(r.g, std::move(step));
         r.g.Slots[0] = before; // what the journal knows
     }},
};

TEST(Recovery, TheWorkOfAKilledRunComesBackToTheBit)
{
    for (const Case& c : kWork) {
        SCOPED_TRACE(c.name);
        Rig next({Pressed(kRecover)});
        const std::string data = test::WriteBrukerSpectrum(next.folder / "exp", 256, 100);
        const std::uint64_t state = KilledRun(next, data, c.work);
        BeginRun(next, next.folder.path());
        EXPECT_EQ(next.g.WorkNumber, 1) << "the dead run keeps its number until its work is settled";
        Offer_Recovery(next.s);
        EXPECT_EQ(StateOf(next.g), state);
        EXPECT_EQ(next.g.Slots[0].spec.SourceRe.all()[3], next.g.Slots[0].spec.DataRe.all()[3]);
        EXPECT_TRUE(next.asker.boxes.empty());
        // The work is in this run's journal now, and only there.
        for (const std::string& name : FilesOf(next)) EXPECT_EQ(WorkNumberOf(name), 1) << name;
        EXPECT_FALSE(IsFileInUse(next.g, data));
    }
}

TEST(Recovery, ARunThatRecoveredAndIsKilledTooLosesNothing)
{
    Rig third({Pressed(kRecover)});
    const std::string data = test::WriteBrukerSpectrum(third.folder / "exp", 256, 100);
    KilledRun(third, data, [](Rig& r) { ScalePoints(r, 2); });
    // The second run answers the question, works on, and dies.
    int status = 0;
    const pid_t child = ::fork();
    if (child == 0) {
        Rig second({Pressed(kRecover)});
        BeginRun(second, third.folder.path());
        Offer_Recovery(second.s);
        AddPeak(second);
        std::filesystem::remove_all(second.folder.path());
        ::kill(::getpid(), SIGKILL);
    }
    ::waitpid(child, &status, 0);
    BeginRun(third, third.folder.path());
    Offer_Recovery(third.s);
    EXPECT_EQ(third.g.Slots[0].Peaks.size(), 1U);
    EXPECT_EQ(third.g.Slots[0].par.DataChanged, 1);
}

TEST(Recovery, KeptForLaterItBlocksNothingAndIsAskedAboutAgain)
{
    Rig next({Pressed(kLater), Pressed(kDiscard), Button::no, Pressed(kDiscard), Button::yes});
    const std::string data = test::WriteBrukerSpectrum(next.folder / "exp", 256, 100);
    KilledRun(next, data, AddPeak);
    BeginRun(next, next.folder.path());
    EXPECT_FALSE(IsFileInUse(next.g, data)) << "the claim of a dead run";
    Offer_Recovery(next.s);
    EXPECT_TRUE(IsEmpty(next.g.Slots[0]));
    const auto kept = FilesOf(next);
    // An exit of a run that is alone leaves what was kept.
    next.s.another_run_present = [] { return false; };
    EXPECT_TRUE(OtherJournals(next.g));
    Offer_Recovery(next.s); // discard, not really, discard
    EXPECT_TRUE(IsEmpty(next.g.Slots[0]));
    EXPECT_EQ(FilesOf(next).size() + 2, kept.size());
    EXPECT_FALSE(OtherJournals(next.g));
}

TEST(Recovery, AnExitLeavesWhatIsKeptAndNothingOfItsOwn)
{
    Rig next({Pressed(kLater)});
    const std::string data = test::WriteBrukerSpectrum(next.folder / "exp", 256, 100);
    KilledRun(next, data, AddPeak);
    BeginRun(next, next.folder.path());
    next.s.another_run_present = [] { return false; };
    Offer_Recovery(next.s);
    EXPECT_TRUE(m19_Click(next.s));
    for (const std::string& name : FilesOf(next)) EXPECT_EQ(WorkNumberOf(name), 0) << name;
    EXPECT_FALSE(ListFiles(next.folder.path(), "UndoSpecData1.*").empty()) << "the points of the kept work";
}

TEST(Recovery, NothingUnsavedIsNotAskedAbout)
{
    const Case cases[] = {
        {"only read", [](Rig&) {}},
        {"saved",
         [](Rig& r) {
             AddPeak(r);
             EXPECT_TRUE(Save_Ver4(r.s, r.Path("mine.tvo1")));
         }},
        {"the grid",
         [](Rig& r) {
             PushUndoStep(r.g, UndoKind::change_grid);
             r.g.settings.grid_width = 9;
             r.s.display_changed();
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Rig next; // no answers
        const std::string data = test::WriteBrukerSpectrum(next.folder / "exp", 256, 100);
        KilledRun(next, data, c.work);
        BeginRun(next, next.folder.path());
        Offer_Recovery(next.s);
        EXPECT_FALSE(OtherJournals(next.g));
        EXPECT_EQ(next.g.settings.grid_width == 9, std::string(c.name) == "the grid");
    }
}

// A live run: its journal is locked, and its process is there.
TEST(Recovery, ARunThatLivesIsLeftAlone)
{
    Rig first, second;
    const std::string data = test::WriteBrukerSpectrum(first.folder / "exp", 256, 100);
    BeginRun(first, first.folder.path());
    ASSERT_TRUE(Read_Path(first.s, data));
    AddPeak(first);
    BeginRun(second, first.folder.path());
    EXPECT_EQ(second.g.WorkNumber, 1);
    EXPECT_TRUE(IsFileInUse(second.g, data));
    const std::uint64_t state = StateOf(first.g);
    Offer_Recovery(second.s);
    EXPECT_TRUE(IsEmpty(second.g.Slots[0]));
    // Without the lock the process number tells; this very process wrote it.
    first.s.recorder.reset();
    EXPECT_TRUE(IsFileInUse(second.g, data));
    Offer_Recovery(second.s);
    EXPECT_TRUE(IsEmpty(second.g.Slots[0]));
    EXPECT_EQ(StateOf(first.g), state);
}

TEST(Recovery, WhatIsDamagedIsToldAndKept)
{
    struct Damage {
        const char* name;
        void (*spoil)(const std::filesystem::path& folder);
    };
    const Damage damages[] = {
        {"no snapshot",
         [](const auto& folder) {
             for (const std::string& name : ListFiles(folder, "UndoSpecData1.*"))
                 std::filesystem::remove(folder / name);
         }},
        {"a changed point",
         [](const auto& folder) {
             for (const std::string& name : ListFiles(folder, "UndoSpecData1.*")) {
                 auto bytes = *ReadWholeFile((folder / name).string());
                 bytes[99] ^= std::byte{1};
                 EXPECT_TRUE(WriteWholeFile(folder / name, bytes));
             }
         }},
        {"a journal of another version",
         [](const auto& folder) {
             auto bytes = *ReadWholeFile((folder / "Journal_1D0000.jnl").string());
             bytes[17] ^= std::byte{1};
             EXPECT_TRUE(WriteWholeFile(folder / "Journal_1D0000.jnl", bytes));
         }},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.name);
        Rig next({Pressed(kRecover)});
        const std::string data = test::WriteBrukerSpectrum(next.folder / "exp", 256, 100);
        KilledRun(next, data, AddPeak);
        damage.spoil(next.folder.path());
        BeginRun(next, next.folder.path());
        const std::size_t files = FilesOf(next).size();
        Offer_Recovery(next.s);
        ASSERT_EQ(next.asker.boxes.size(), 1U);
        EXPECT_TRUE(IsEmpty(next.g.Slots[0]));
        EXPECT_EQ(FilesOf(next).size(), files);
        EXPECT_TRUE(OtherJournals(next.g));
    }
}

// A tail that was not written whole is no edit; everything before it is.
TEST(Recovery, ACutTailCostsNoMoreThanItsRecord)
{
    Rig next({Pressed(kRecover)});
    const std::string data = test::WriteBrukerSpectrum(next.folder / "exp", 256, 100);
    KilledRun(next, data, [](Rig& r) { AddPeak(r), AddPeak(r), AddPeak(r); });
    const auto journal = next.folder.path() / "Journal_1D0000.jnl";
    std::filesystem::resize_file(journal, std::filesystem::file_size(journal) - 1);
    BeginRun(next, next.folder.path());
    Offer_Recovery(next.s);
    EXPECT_EQ(next.g.Slots[0].Peaks.size(), 2U);
}

} // namespace
} // namespace nmr
