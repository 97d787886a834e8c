// Saving: what stands on the disk after every outcome, and that work is never lost.

#include "session/save_flow.h"

#include "analysis/integrals.h"
#include "core/file_layer.h"
#include "core/log.h"
#include "formats/tavo4.h"
#include "session/menu.h"
#include "session/rig.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fmt/format.h>

#include <csignal>
#include <map>
#include <set>

namespace nmr {
namespace {

namespace fs = std::filesystem;

using test::Chosen;
using test::NothingChosen;
using test::Pressed;
using test::Rig;
using test::TempFolder;
using Answers = std::initializer_list<test::ScriptedAsker::Answer>;

ByteSpan AsBytes(std::string_view text)
{
    return std::as_bytes(std::span(text.data(), text.size()));
}

/// Names and contents of a folder.
std::map<std::string, std::string> Contents(const fs::path& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder))
        files[entry.path().filename().string()] = entry.is_regular_file() ? test::ReadText(entry.path()) : "a folder";
    return files;
}

using Files = std::map<std::string, std::string>;

void Lay(const fs::path& folder, const Files& files)
{
    for (const auto& [name, text] : files) test::WriteText(folder / name, text);
}

/// A disk of 64 kB: a memory file system where that may be made, else a limit of the file size.
class SmallDisk {
public:
    SmallDisk()
    {
        mounted_ = Mount() || (EnterNamespace() && Mount());
        if (mounted_) return;
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &before_);
        rlimit small = before_;
        small.rlim_cur = 64 * 1024;
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk()
    {
        if (mounted_)
            ::umount(folder_.path().c_str());
        else
            ::setrlimit(RLIMIT_FSIZE, &before_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    const fs::path& path() const { return folder_.path(); }
    bool is_real() const { return mounted_; }
    bool MakeReadOnly() const
    {
        return mounted_ && ::mount("tmpfs", folder_.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

private:
    bool Mount() const { return ::mount("tmpfs", folder_.path().c_str(), "tmpfs", 0, "size=64k") == 0; }
    /// Where only an administrator may mount, a user may still do so in a name space of his own.
    static bool EnterNamespace()
    {
        const std::string self = "0 " + std::to_string(::getuid()) + " 1\n";
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        test::WriteText("/proc/self/uid_map", self);
        return true;
    }

    TempFolder folder_;
    bool mounted_ = false;
    rlimit before_{};
};

TEST(SafeSave, LeavesTheFilesThatItPromises)
{
    struct Case {
        const char* name;
        const char* file;
        Files before;
        OldVersion rule;
        Files after;
    };
    const Case cases[] = {
        {"new file", "x.tvo", {}, OldVersion::keep, {{"x.tvo", "new"}}},
        {"first backup", "x.tvo", {{"x.tvo", "one"}}, OldVersion::keep, {{"x.tvo", "new"}, {"x.$tvo", "one"}}},
        {"second save",
         "x.tvo",
         {{"x.tvo", "two"}, {"x.$tvo", "one"}},
         OldVersion::keep,
         {{"x.tvo", "new"}, {"x.$tvo", "two"}}},
        {"left-over of a killed run",
         "x.tvo",
         {{"x.tvo", "two"}, {"x.$tvo", "one"}, {"x.$$tvo", "old"}},
         OldVersion::keep,
         {{"x.tvo", "new"}, {"x.$tvo", "two"}}},
        {"left-over that has no first",
         "x.tvo",
         {{"x.tvo", "two"}, {"x.$$tvo", "old"}},
         OldVersion::keep,
         {{"x.tvo", "new"}, {"x.$tvo", "two"}}},
        {"no backup wanted", "x.tvo", {{"x.tvo", "two"}, {"x.$tvo", "one"}}, OldVersion::remove, {{"x.tvo", "new"}}},
        {"no extension", "x", {{"x", "one"}}, OldVersion::keep, {{"x", "new"}, {"x.$", "one"}}},
        {"several dots",
         "a.b.tvo1",
         {{"a.b.tvo1", "one"}},
         OldVersion::keep,
         {{"a.b.tvo1", "new"}, {"a.b.$tvo1", "one"}}},
        {"neighbours",
         "x.tvo",
         {{"X.tvo", "other"}, {"x.tvo1", "other"}},
         OldVersion::remove,
         {{"X.tvo", "other"}, {"x.tvo1", "other"}, {"x.tvo", "new"}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempFolder folder;
        Lay(folder.path(), c.before);
        ASSERT_TRUE(Safe_Save(folder.path() / c.file, AsBytes("new"), c.rule));
        EXPECT_EQ(Contents(folder.path()), c.after);
    }
}

TEST(SafeSave, AFailureLeavesEverythingAsItWas)
{
    const std::string large(200 * 1024, 'x');
    const Files states[] = {{}, {{"x.tvo", "two"}}, {{"x.tvo", "two"}, {"x.$tvo", "one"}}};
    for (const Files& before : states) {
        SCOPED_TRACE(before.size());
        SmallDisk disk;
        Lay(disk.path(), before);
        const Status saved = Safe_Save(disk.path() / "x.tvo", AsBytes(large), OldVersion::remove);
        ASSERT_FALSE(saved);
        EXPECT_EQ(saved.error().system_error, disk.is_real() ? ENOSPC : EFBIG);
        EXPECT_EQ(Contents(disk.path()), before);
        ASSERT_TRUE(Safe_Save(disk.path() / "x.tvo", AsBytes("small"), OldVersion::remove)) << "and it works again";
        EXPECT_EQ(Contents(disk.path()), (Files{{"x.tvo", "small"}}));
    }
    TempFolder folder;
    Lay(folder.path(), {{"x.tvo/inside", ""}});
    EXPECT_FALSE(Safe_Save(folder.path() / "x.tvo", AsBytes("new"), OldVersion::keep)) << "a folder of that name";
    EXPECT_EQ(Contents(folder.path()), (Files{{"x.tvo", "a folder"}}));
    EXPECT_FALSE(Safe_Save(folder.path() / "gone/x.tvo", AsBytes("new"), OldVersion::keep));
}

TEST(SafeSave, AReadOnlyDiskKeepsItsFiles)
{
    SmallDisk disk;
    const Files before{{"x.tvo", "two"}, {"x.$tvo", "one"}};
    Lay(disk.path(), before);
    if (!disk.MakeReadOnly()) GTEST_SKIP() << "no disk can be made read-only here";
    for (const char* name : {"x.tvo", "new.tvo"}) {
        const Status saved = Safe_Save(disk.path() / name, AsBytes("new"), OldVersion::keep);
        ASSERT_FALSE(saved);
        EXPECT_EQ(saved.error().system_error, EROFS);
    }
    EXPECT_EQ(Contents(disk.path()), before);
}

TEST(SafeSave, AFileBehindALinkIsReplacedAndTheLinkStays)
{
    TempFolder folder;
    Lay(folder.path(), {{"real/x.tvo", "one"}});
    fs::create_symlink(folder.path() / "real" / "x.tvo", folder.path() / "link.tvo");
    fs::permissions(folder.path() / "real" / "x.tvo", fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_TRUE(Safe_Save(folder.path() / "link.tvo", AsBytes("new"), OldVersion::keep));
    EXPECT_TRUE(fs::is_symlink(folder.path() / "link.tvo"));
    EXPECT_EQ(Contents(folder.path() / "real"), (Files{{"x.tvo", "new"}, {"x.$tvo", "one"}}));
    EXPECT_EQ(fs::status(folder.path() / "real" / "x.tvo").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

// The name always leads to the old or the new version, whole, however often another run looks.
TEST(SafeSave, TheNameIsNeverWithoutAFile)
{
    TempFolder folder;
    const fs::path file = folder.path() / "x.tvo1";
    const std::string versions[] = {std::string(300000, 'a'), std::string(200000, 'b')};
    ASSERT_TRUE(Safe_Save(file, AsBytes(versions[0]), OldVersion::keep));
    const pid_t saver = ::fork();
    ASSERT_GE(saver, 0);
    if (saver == 0) {
        for (int i = 1;; ++i)
            if (!Safe_Save(file, AsBytes(versions[i % 2]), OldVersion::keep)) ::_exit(1);
    }
    for (int i = 0; i < 2000; ++i) {
        const auto bytes = ReadWholeFile(file.string());
        EXPECT_TRUE(bytes) << "the file was gone in look " << i;
        if (!bytes) break;
        const std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
        EXPECT_TRUE(text == versions[0] || text == versions[1]) << "half a file in look " << i;
        if (testing::Test::HasFailure()) break;
    }
    ::kill(saver, SIGKILL);
    int status = 0;
    ::waitpid(saver, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "no save failed";
}

/// A run with one transformed FID, which no file holds.
struct Unsaved {
    Rig rig;
    explicit Unsaved(Answers answers = {}) : rig(answers)
    {
        rig.Boot();
        rig.g.settings.auto_zerofill = 0;
        rig.g.BackupFile = rig.Path("BackUp1_1.tvo1");
        rig.g.CurrentUser = "Sato";
        fs::create_directories(rig.folder.path() / "out");
        raw = test::WriteBrukerFid(rig.folder.path() / "exp");
        EXPECT_TRUE(Read_Path(rig.s, raw));
        rig.titles.clear();
    }
    std::string Out(const std::string& name) const { return rig.Path("out/" + name); }
    DataSet& set() { return rig.g.Slots[0]; }
    std::string raw;
};

std::vector<float> Points(const DataSet& set)
{
    const auto row = set.spec.DataRe[0];
    return {row.begin(), row.end()};
}

TEST(SaveVer4, WhatIsSavedComesBackAsItWasAndSavesTheSameAgain)
{
    Unsaved run;
    run.set().Peaks.push_back({17, 0, 0, 12.5, 1});
    const std::vector<double>& axis = run.set().spec.XAxis;
    ASSERT_EQ(Add_Integral(run.rig.g, axis[100], axis[900]), 0);
    run.set().par.EXMOD.clear();
    const std::vector<float> points = Points(run.set());
    ASSERT_TRUE(Save_Ver4(run.rig.s, run.Out("a.tvo1")));
    const ParamBlock& par = run.set().par;
    EXPECT_EQ(par.DataChanged, 0);
    EXPECT_EQ(par.DataFromFile, 1);
    EXPECT_EQ(par.EXMOD, "NON");
    EXPECT_EQ(par.OrgFile, run.raw) << "the first file of the data stays";
    EXPECT_EQ(par.FileName, run.Out("a.tvo1"));
    EXPECT_EQ(run.rig.titles, std::vector<std::string>{"NMR 1D              " + run.Out("a.tvo1")});
    EXPECT_EQ(run.rig.g.RecentFiles, (std::vector<std::string>{run.Out("a.tvo1"), run.raw}));
    EXPECT_EQ(run.rig.g.LastDirs[1], run.rig.Path("out"));
    ASSERT_EQ(run.set().HistoryA, (std::vector<std::string>{"Sato", "Sato"}));
    EXPECT_TRUE(run.set().HistoryB[0].ends_with(" FFT") && run.set().HistoryB[1].ends_with(" Saved"));
    const auto saved = EncodeTavo4(run.rig.g, run.Out("a.tvo1"), 0);
    const auto logs = ListFiles(LogFolder(run.rig.g), "1D*.log");
    ASSERT_EQ(logs.size(), 1U);
    EXPECT_TRUE(test::ReadText(LogFolder(run.rig.g) / logs[0]).ends_with(",Sato,Save," + run.Out("a.tvo1") + "\n"));

    // The whole road: dialog to disk to reader to dialog.
    Rig other;
    other.Boot();
    ASSERT_TRUE(Read_Path(other.s, run.Out("a.tvo1")));
    const DataSet& read = other.g.Slots[0];
    EXPECT_EQ(Points(read), points);
    EXPECT_EQ(read.par.YMag, par.YMag) << "its own display range";
    EXPECT_EQ(read.par.DTYPE, par.DTYPE);
    EXPECT_EQ(read.Peaks.size(), 1U);
    ASSERT_EQ(read.Integrals.size(), 1U);
    EXPECT_EQ(read.Integrals[0].Value, run.set().Integrals[0].Value) << "summed again";
    EXPECT_NE(read.Integrals[0].Value, 0.0F);
    EXPECT_EQ(read.par.DataChanged, 0);
    EXPECT_EQ(read.HistoryB, run.set().HistoryB);
    EXPECT_NEAR(test::HighestPpm(read), test::HighestPpm(run.set()), 1e-6);
    const auto again = EncodeTavo4(other.g, run.Out("a.tvo1"), 0);
    ASSERT_TRUE(saved && again);
    EXPECT_TRUE(*saved == *again);
    EXPECT_TRUE(other.asker.boxes.empty());
}

TEST(SaveVer4, AnotherSlotIsSavedAlone)
{
    Unsaved run;
    GlobalBlock& g = run.rig.g;
    g.Slots[4] = run.set();
    g.Slots[4].par.COMNT = "fourth";
    ASSERT_TRUE(Save_Ver4(run.rig.s, run.Out("four.tvo1"), 4));
    EXPECT_EQ(g.Slots[4].par.DataChanged, 0);
    EXPECT_EQ(run.set().par.DataChanged, 1);
    EXPECT_EQ(run.set().par.FileName, run.raw);
    EXPECT_TRUE(run.rig.titles.empty());
    EXPECT_EQ(run.set().HistoryB.size() + 1, g.Slots[4].HistoryB.size());
    Rig other;
    other.Boot();
    ASSERT_TRUE(Read_Path(other.s, run.Out("four.tvo1")));
    EXPECT_EQ(other.g.Slots[0].par.COMNT, "fourth");
    EXPECT_TRUE(IsEmpty(other.g.Slots[4]));
}

TEST(SaveVer4, TheSettingDecidesAboutTheBackup)
{
    for (const int setting : {0, 1, 2}) {
        SCOPED_TRACE(setting);
        Unsaved run;
        run.rig.g.settings.make_file_backup = setting;
        ASSERT_TRUE(Save_Ver4(run.rig.s, run.Out("a.tvo1")));
        ASSERT_TRUE(Save_Ver4(run.rig.s, run.Out("a.tvo1")));
        EXPECT_EQ(fs::exists(run.Out("a.$tvo1")), setting != 1);
        EXPECT_EQ(Contents(run.rig.folder.path() / "out").size(), setting != 1 ? 2U : 1U);
    }
}

TEST(SaveVer4, EveryFaultIsToldAndLosesNothing)
{
    struct Case {
        const char* name;
        std::function<std::string(Unsaved&, const SmallDisk&)> target;
        ErrorCode code;
        std::string message;
    };
    const Case cases[] = {
        {"full disk",
         [](Unsaved&, const SmallDisk& disk) {
             test::WriteText(disk.path() / "a.tvo1", "old");
             return (disk.path() / "a.tvo1").string();
         },
         ErrorCode::unwritable, "Disk Error: Disk is full(WriteDataTavo4/1DDRW)"},
        {"read-only disk",
         [](Unsaved&, const SmallDisk& disk) {
             test::WriteText(disk.path() / "a.tvo1", "old");
             disk.MakeReadOnly();
             return (disk.path() / "a.tvo1").string();
         },
         ErrorCode::unwritable, "Disk Error: Can not Open File in this Mode(WriteDataTavo4/1DDRW)"},
        {"vanished folder",
         [](Unsaved& run, const SmallDisk&) {
             fs::remove_all(run.rig.folder.path() / "out");
             return run.Out("a.tvo1");
         },
         ErrorCode::unwritable, "Disk Error: Path is not found or Invalid path name(WriteDataTavo4/1DDRW)"},
        {"file of another run",
         [](Unsaved& run, const SmallDisk&) {
             test::WriteText(run.rig.Path("Work_File_1D0007.wkf"), run.Out("A.TVO1") + "\n");
             test::WriteText(run.Out("a.tvo1"), "old");
             return run.Out("a.tvo1");
         },
         ErrorCode::in_use, "File Warning: This File is under using by other application"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Unsaved run;
        SmallDisk disk;
        if (!disk.is_real()) GTEST_SKIP() << "no small disk can be made here";
        const std::string target = c.target(run, disk);
        // Larger than the disk.
        if (c.message.find("full") != std::string::npos) run.set().SimComment = std::string(200000, 'x');
        const std::vector<float> points = Points(run.set());
        const std::string name = run.set().par.FileName;
        const Status saved = Save_Ver4(run.rig.s, target);
        ASSERT_FALSE(saved);
        EXPECT_EQ(saved.error().code, c.code);
        ASSERT_EQ(run.rig.Texts().size(), 1U);
        EXPECT_EQ(run.rig.Texts()[0], c.message);
        EXPECT_EQ(Points(run.set()), points);
        EXPECT_EQ(run.set().par.DataChanged, 1);
        EXPECT_EQ(run.set().par.FileName, name);
        EXPECT_EQ(run.set().HistoryB.size(), 1U) << "the save that did not happen is not in the history";
        EXPECT_EQ(run.rig.g.RecentFiles, std::vector<std::string>{run.raw});
        const bool gone = !fs::exists(fs::path(target).parent_path());
        EXPECT_TRUE(gone || test::ReadText(target) == "old");
        EXPECT_TRUE(gone || Contents(fs::path(target).parent_path()).size() == 1U) << "no half file, no backup";
    }
}

TEST(SaveDialog, NamesAndExtensions)
{
    struct Case {
        const char* name;
        int setting;
        std::vector<test::ScriptedAsker::Answer> answers;
        std::set<std::string> existing;
        std::string saved; ///< empty: nothing is
        std::size_t boxes;
    };
    const auto typed = [](const char* name) { return Chosen(std::string("OUT/") + name); };
    const Case cases[] = {
        {"no extension", 0, {typed("a")}, {}, "a.tvo1", 0},
        {"as set", 1, {typed("a.tvo")}, {}, "a.tvo", 0},
        {"in capitals", 1, {typed("a.TVO")}, {}, "a.TVO", 0},
        {"another of ours", 0, {typed("a.tvo")}, {}, "a.tvo1", 0},
        {"another of ours, third", 2, {typed("a.b.tvo1")}, {}, "a.b.tv1", 0},
        {"overwriting, which the dialog has asked about", 0, {typed("a.tvo1")}, {"a.tvo1"}, "a.tvo1", 0},
        {"name made of the typed one exists: yes", 0, {typed("a"), Button::yes}, {"a.tvo1"}, "a.tvo1", 1},
        {"name made of the typed one exists: no, then another",
         0,
         {typed("a"), Button::no, typed("b")},
         {"a.tvo1"},
         "b.tvo1",
         1},
        {"foreign extension, then a good one", 0, {typed("a.jdf"), Button::retry, typed("a")}, {}, "a.tvo1", 1},
        {"foreign extension, given up", 0, {typed("a.als"), Button::cancel}, {}, "", 1},
        {"dialog closed", 0, {NothingChosen()}, {}, "", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<test::ScriptedAsker::Answer> answers(c.answers);
        Unsaved run;
        for (auto& answer : answers)
            if (auto* choice = std::get_if<std::optional<FileChoice>>(&answer); choice != nullptr && *choice)
                (*choice)->path.replace(0, 3, run.rig.Path("out"));
        run.rig.asker.Expect(answers);
        for (const std::string& name : c.existing) test::WriteText(run.Out(name), "old");
        run.rig.g.settings.tvo_extension = c.setting;
        m10_4_Click(run.rig.s);
        EXPECT_EQ(run.rig.asker.boxes.size(), c.boxes);
        for (const MessageBox& box : run.rig.asker.boxes)
            if (box.buttons.front() == Button::retry) {
                EXPECT_EQ(box.text, "Invalid File, or\nExtension of File is not TVO1/.TVO/.TV1/ALS");
                EXPECT_EQ(box.title, "File Name Error");
            }
        EXPECT_EQ(run.set().par.DataChanged, c.saved.empty() ? 1 : 0);
        if (!c.saved.empty()) {
            EXPECT_TRUE(test::ReadText(run.Out(c.saved)).starts_with("TA NMR Ver.4.01"));
        }
        const FileDialog& dialog = run.rig.asker.dialogs.at(0);
        EXPECT_EQ(dialog.title, "Save Data(Ver.4)");
        EXPECT_EQ(dialog.extension, Ver4Extension(run.rig.g.settings));
        EXPECT_EQ(dialog.filters.at(0).expression, "*" + dialog.extension);
        EXPECT_EQ(dialog.name, "fid" + dialog.extension);
        EXPECT_EQ(dialog.folder, run.rig.Path("exp"));
    }
}

TEST(SaveQuestions, SaveAndExitAndReadGoOnOnlyWhenTheWorkIsSafe)
{
    struct Case {
        const char* name;
        const char* answer;
        const char* file; ///< nullptr: the dialog is not reached; "": closed
        bool goes_on, saved;
    };
    const Case cases[] = {{"saved", "Save", "a.tvo1", true, true},
                          {"dialog closed", "Save", "", false, false},
                          {"folder gone", "Save", "none/a.tvo1", false, false},
                          {"given up", "Do not Save", nullptr, true, false},
                          {"cancelled", "Cancel", nullptr, false, false}};
    for (const bool exit : {true, false})
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(exit ? "exit, " : "read, ") + c.name);
            Unsaved run;
            std::vector<test::ScriptedAsker::Answer> answers{Pressed(c.answer)};
            if (c.file != nullptr) answers.emplace_back(*c.file == '\0' ? NothingChosen() : Chosen(run.Out(c.file)));
            run.rig.asker.Expect(answers);
            run.rig.g.UserIniFile = run.rig.Path("NMRCOL.INI");
            run.rig.s.another_run_present = [] { return true; };
            const std::string next = test::WriteBrukerSpectrum(run.rig.folder.path() / "next", 256, 100);
            const bool went_on = exit ? m19_Click(run.rig.s) : static_cast<bool>(Read_Path(run.rig.s, next));
            EXPECT_EQ(went_on, c.goes_on);
            EXPECT_EQ(fs::exists(run.Out("a.tvo1")), c.saved);
            const forms::Values& question = run.rig.asker.forms.at(0).values;
            EXPECT_EQ(question.at(forms::kCount), "3");
            EXPECT_EQ(question.at(forms::Indexed(forms::kButton, 1)), "Save");
            EXPECT_EQ(question.at(forms::kText), exit ? "Before End, Data is" : "Data was Changed");
            if (exit) {
                EXPECT_EQ(run.rig.g.DialogResult, c.goes_on ? "END" : "CANCEL");
            }
            if (!c.goes_on) {
                EXPECT_EQ(run.set().par.DataChanged, 1);
            }
        }
}

/// What stands in the slots and on the display; points and axes to the bit.
std::vector<std::string> State(const GlobalBlock& g)
{
    std::vector<std::string> state{fmt::format("{} {} {}", g.ViewLeft, g.ViewRight, g.CurrentRow)};
    for (const DataSet& set : g.Slots) {
        if (IsEmpty(set)) continue;
        const auto points = static_cast<std::size_t>(set.par.POINT);
        const std::span axis(set.spec.XAxis.data(), points);
        state.push_back(fmt::format("{} {} {} {} {} {} {}", set.par.SlotNumber, set.par.SubKind, set.par.DTYPE,
                                    set.par.FileName, set.par.DataChanged, set.Peaks.size(), set.par.DataMax));
        for (const auto values : {std::as_bytes(axis), std::as_bytes(set.spec.DataRe[0].first(points)),
                                  std::as_bytes(set.spec.SourceIm[0].first(points))})
            state.emplace_back(reinterpret_cast<const char*>(values.data()), values.size());
    }
    return state;
}

TEST(Backup, UndoAndRedoOfAReadGoFromOneWorkToTheOtherToTheBit)
{
    Unsaved run({Pressed("Do not Save"), Pressed(forms::kDeleteAll)});
    GlobalBlock& g = run.rig.g;
    run.set().par.DTYPE = "LONGER THAN EIGHT"; // a native file cuts it
    run.set().Peaks.push_back({17});
    for (double& ppm : run.set().spec.XAxis) ppm += 1e-9; // no float is so fine
    g.Slots[3] = run.set();
    g.Slots[3].par.SlotNumber = 3;
    const auto before = State(g);
    ASSERT_TRUE(Read_Path(run.rig.s, test::WriteBrukerSpectrum(run.rig.folder.path() / "next", 256, 100)));
    EXPECT_EQ(g.OverwriteBackupName, g.BackupFile.string());
    EXPECT_EQ(g.Undo.Caption(), "UnDo(Data Read/OverWrite) ");
    const auto after = State(g);
    EXPECT_NE(after, before);
    for (int round = 0; round < 2; ++round) {
        m20_Click(run.rig.s);
        EXPECT_TRUE(State(g) == before) << "with the multi spectra that the read deleted";
        EXPECT_EQ(run.rig.titles.back(), WindowTitle(run.raw));
        EXPECT_EQ(g.OverwriteBackupName, "");
        EXPECT_TRUE(g.NoFIDFile) << "the FID that is kept is another one's";
        EXPECT_EQ(g.Undo.RedoCaption(), "ReDo(Data Read/OverWrite) ");
        ReDo_Click(run.rig.s);
        EXPECT_TRUE(State(g) == after);
        EXPECT_FALSE(g.NoFIDFile);
        EXPECT_EQ(g.OverwriteBackupName, g.BackupFile.string());
    }
    EXPECT_TRUE(run.rig.asker.boxes.empty());
    // A file that has gone leaves the data as they are, and the step is over.
    fs::remove(g.BackupFile);
    m20_Click(run.rig.s);
    EXPECT_TRUE(State(g) == after);
    EXPECT_TRUE(g.Undo.empty());
}

TEST(Backup, AReadThatDoesNotComeAboutLeavesWorkAndStepsAsTheyWere)
{
    Unsaved run({Pressed("Do not Save"), Pressed("Do not Save"), Pressed(forms::kDeleteAll), Pressed("Do not Save"),
                 Pressed("CANCEL")});
    GlobalBlock& g = run.rig.g;
    const auto first = State(g);
    ASSERT_TRUE(Read_Path(run.rig.s, test::WriteBrukerSpectrum(run.rig.folder.path() / "next", 256, 100)));
    run.set().par.DataChanged = 1;
    g.Slots[3] = run.set();
    const auto second = State(g);
    test::WriteText(run.Out("cut.tvo1"), test::ReadText(g.BackupFile).substr(0, 6000)); // its points are cut
    for (const char* how : {"points cut", "cancelled at the multi spectra"}) {
        SCOPED_TRACE(how);
        ASSERT_FALSE(Read_Path(run.rig.s, run.Out("cut.tvo1")));
        EXPECT_TRUE(State(g) == second);
        EXPECT_EQ(g.Undo.Caption(), "UnDo(Data Read/OverWrite) ");
        EXPECT_EQ(g.OverwriteBackupName, g.BackupFile.string());
    }
    m20_Click(run.rig.s);
    EXPECT_TRUE(State(g) == first) << "the backup of the first read was not lost to the second";
}

TEST(Backup, NothingIsKeptOfSavedWorkNorAfterAFailedRead)
{
    Unsaved saved;
    ASSERT_TRUE(Save_Ver4(saved.rig.s, saved.Out("a.tvo1")));
    ASSERT_TRUE(Read_Path(saved.rig.s, test::WriteBrukerSpectrum(saved.rig.folder.path() / "next", 256, 100)));
    EXPECT_EQ(saved.rig.g.OverwriteBackupName, "");

    Unsaved failed({Pressed("Do not Save")});
    const auto bytes = EncodeTavo4(failed.rig.g, "x", 0);
    ASSERT_TRUE(bytes);
    std::string cut(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    cut.resize(6000); // detected, but its points are cut
    test::WriteText(failed.Out("cut.tvo1"), cut);
    const std::vector<float> points = Points(failed.set());
    ASSERT_FALSE(Read_Path(failed.rig.s, failed.Out("cut.tvo1")));
    EXPECT_EQ(failed.rig.Texts(),
              std::vector<std::string>{"Data Error: 0th Spectrum Data is invalid\nPress OK to continue."});
    EXPECT_EQ(Points(failed.set()), points);
    EXPECT_EQ(failed.set().par.DataChanged, 1);
    EXPECT_EQ(failed.rig.g.OverwriteBackupName, "");
}

TEST(Backup, AnUnwritableBackupStopsNoRead)
{
    Unsaved run({Pressed("Do not Save")});
    run.rig.g.BackupFile = run.rig.Path("none/BackUp1_1.tvo1");
    ASSERT_TRUE(Read_Path(run.rig.s, test::WriteBrukerSpectrum(run.rig.folder.path() / "next", 256, 100)));
    EXPECT_EQ(run.rig.g.OverwriteBackupName, "");
}

TEST(SaveMenu, StandsInTheFileMenuAndFollowsTheState)
{
    std::map<std::string_view, const MenuRow*> rows;
    for (const MenuRow& row : MenuRows()) rows[row.control] = &row;
    ASSERT_TRUE(rows.contains("m10") && rows.contains("m10_4"));
    EXPECT_EQ(rows["m10"]->parent, "NMR_m1");
    EXPECT_EQ(rows["m10_4"]->parent, "m10");
    Unsaved run({NothingChosen()});
    EXPECT_TRUE(SetMenuActivateForm1(run.rig.g).at("m10_4").enabled);
    rows["m10_4"]->handler(run.rig.s);
    EXPECT_EQ(run.rig.asker.dialogs.size(), 1U);
}

} // namespace
} // namespace nmr
