#include "session/startup.h"

#include "core/settings_file.h"
#include "session/instrument_table.h"
#include "session/rig.h"

#include <algorithm>
#include <filesystem>

namespace nmr {
namespace {

namespace fs = std::filesystem;
using test::Pressed;
using test::Rig;
using Answers = std::initializer_list<test::ScriptedAsker::Answer>;

const FormAnswer kCommonUser = Pressed("OK", {{forms::kName, "COMMON"}, {forms::kDoNotOpen, "0"}});

StartOptions Options(const Rig& rig, std::string command_line = {})
{
    StartOptions options;
    options.command_line = std::move(command_line);
    options.app_path = rig.folder.path();
    options.sibling = rig.folder.path() / "tavo2d4";
    return options;
}

TEST(Startup, TakesItsStepsInOrder)
{
    Rig rig{kCommonUser};
    std::vector<std::string> order;
    StartOptions options = Options(rig);
    options.app_path = rig.folder.path() / ""; // with a separator at its end
    options.show_splash = [&] {
        order.emplace_back(rig.g.WorkFile.empty() ? "splash, then the claim" : "claimed before the splash");
    };
    options.hide_splash = [&] { order.emplace_back(rig.asker.forms.empty() ? "too early" : "hidden after the form"); };
    ASSERT_EQ(Start(rig.s, options), StartResult::run);
    EXPECT_EQ(order, (std::vector<std::string>{"splash, then the claim", "hidden after the form"}));
    EXPECT_EQ(rig.g.AppPath, rig.folder.path());
    EXPECT_EQ(rig.asker.beeps, 1);
    ASSERT_EQ(rig.asker.forms.size(), 1U);
    EXPECT_EQ(rig.asker.forms[0].form, "NMR1D_Form01");
    EXPECT_EQ(rig.asker.forms[0].values.at(forms::kUsers), "COMMON");
    EXPECT_EQ(rig.g.ScratchSet.par.SlotNumber, 100);
    EXPECT_EQ(rig.g.Slots[19].par.SlotNumber, 19);
    EXPECT_EQ(rig.g.Slots[20].par.SlotNumber, 0);
    EXPECT_EQ(rig.g.SineTable.size(), 1'048'576U * 5 / 4 + 1);
    EXPECT_EQ(rig.g.Slots[0].spec.AllocatedPoints, 8192);
    EXPECT_EQ(rig.g.LastRecent, -1);
    EXPECT_EQ(rig.g.nuclides.rows().size(), 140U);
    EXPECT_TRUE(fs::exists(rig.Path("1DCommon.ini")));
    EXPECT_TRUE(fs::exists(rig.Path("NMRCOL.INI")));
    EXPECT_TRUE(fs::exists(rig.g.WorkFile));
}

TEST(Startup, ANewUserGetsAFileAndTheFormCanBeSwitchedOff)
{
    Rig rig{Pressed("OK", {{forms::kName, " bob "}, {forms::kDoNotOpen, "1"}})};
    ASSERT_EQ(Start(rig.s, Options(rig)), StartResult::run);
    EXPECT_EQ(rig.g.CurrentUser, "BOB");
    EXPECT_EQ(rig.g.common.LatestUser, "BOB");
    EXPECT_EQ(rig.g.UserIniFile.filename().string(), "NMRCOL0001.ini");
    EXPECT_TRUE(m19_Click(rig.s));

    Rig next; // answers nothing: no form may come
    StartOptions options = Options(next);
    options.app_path = rig.folder.path();
    ASSERT_EQ(Start(next.s, options), StartResult::run);
    EXPECT_EQ(next.g.UserIniFile.filename().string(), "NMRCOL.INI");
    EXPECT_EQ(next.asker.beeps, 0);
}

TEST(Startup, QuitEndsBeforeAnySettingIsWritten)
{
    Rig rig{Pressed("CLOSE")};
    test::WriteText(rig.Path("Temp"), "x");
    test::WriteText(rig.Path("Work_File_1D0005.wkf"), "");
    test::WriteText(rig.Path("keep.me"), "");
    bool splash_gone = false;
    StartOptions options = Options(rig);
    options.hide_splash = [&] { splash_gone = true; };
    EXPECT_EQ(Start(rig.s, options), StartResult::ended);
    EXPECT_TRUE(splash_gone);
    EXPECT_FALSE(fs::exists(rig.Path("Temp")));
    EXPECT_FALSE(fs::exists(rig.Path("Work_File_1D0005.wkf")));
    EXPECT_FALSE(fs::exists(rig.Path("Work_File_1D0000.wkf")));
    EXPECT_FALSE(fs::exists(rig.Path("NMRCOL.INI")));
    EXPECT_TRUE(fs::exists(rig.Path("keep.me")));
}

TEST(Startup, AFileThatAnotherRunHasOpenEndsTheRun)
{
    Rig rig;
    const std::string path = test::WriteBrukerFid(rig.folder.path() / "exp");
    test::WriteText(rig.Path("Work_File_1D0000.wkf"), path + "\n");
    bool splash = false;
    StartOptions options = Options(rig, path);
    options.show_splash = [&] { splash = true; };
    EXPECT_EQ(Start(rig.s, options), StartResult::ended);
    EXPECT_FALSE(splash);
    EXPECT_EQ(rig.titles, std::vector<std::string>{""});
    EXPECT_EQ(rig.Texts(), std::vector<std::string>{"File Warning: This File is under using by other application"});
    EXPECT_TRUE(rig.asker.boxes[0].beep);
    EXPECT_FALSE(fs::exists(rig.Path("Work_File_1D0001.wkf"))) << "nothing claimed";
}

TEST(Startup, TwoDimensionalDataGoToTheSiblingProgram)
{
    struct Case {
        const char* name;
        bool installed, handed_over_before;
        StartResult result;
        std::vector<std::string> texts; ///< up to the main form and the read that follows
    };
    const Case cases[] = {
        {"installed", true, false, StartResult::ended, {}},
        {"missing",
         false,
         false,
         StartResult::run,
         {"Data Error: Two-dimensional data: the program tavo2d4 is not installed beside this one"}},
        {"came from there", true, true, StartResult::run, {"Data Error: 2D Data !\nRetry"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const bool goes_on = c.result == StartResult::run;
        const auto owner = goes_on ? std::make_unique<Rig>(Answers{kCommonUser}) : std::make_unique<Rig>();
        Rig& rig = *owner;
        rig.sibling_installed = c.installed;
        const std::string path = test::WriteBruker2D(rig.folder.path() / "my exp");
        const std::string line = CommandLineFromArgument((c.handed_over_before ? "$" : "") + path);
        EXPECT_EQ(Start(rig.s, Options(rig, line)), c.result);
        if (goes_on) Read_Command_Line_File(rig.s);
        const std::string expected = rig.Path("tavo2d4") + " \"" + path + "\"$";
        EXPECT_EQ(rig.started, goes_on ? std::vector<std::string>{} : std::vector<std::string>{expected});
        EXPECT_EQ(rig.Texts(), c.texts);
    }
}

TEST(Startup, TheFileOfTheCommandLineIsReadAfterwards)
{
    Rig rig{kCommonUser};
    const auto folder = rig.folder.path() / "my exp";
    const std::string path = test::WriteBrukerFid(folder);
    ASSERT_EQ(Start(rig.s, Options(rig, CommandLineFromArgument(folder.string()))), StartResult::run);
    Read_Command_Line_File(rig.s);
    EXPECT_EQ(rig.g.Slots[0].par.FileName, path) << "a folder stands for the data in it";
}

TEST(Startup, TheWorkNumberIsTheSmallestFreeOne)
{
    struct Case {
        std::vector<std::string> files;
        int number;
    };
    const Case cases[] = {{{}, 0},
                          {{"Work_File_1D0000.wkf"}, 1},
                          {{"Work_File_1D0001.wkf", "Work_File_1D0002.wkf"}, 0},
                          {{"Work_File_1D0000.wkf", "work_file_1d0001.WKF", "Work_File_1D0003.wkf"}, 2},
                          {{"Work_File_1Dabcd.wkf", "FID_Work_File_1D0000.dat"}, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.number);
        Rig rig;
        rig.g.AppPath = rig.folder.path();
        for (const std::string& name : c.files) test::WriteText(rig.Path(name), "");
        Claim_Work_File(rig.g);
        EXPECT_EQ(rig.g.WorkNumber, c.number);
        EXPECT_EQ(rig.g.WorkFile.filename().string(), "Work_File_1D000" + std::to_string(c.number) + ".wkf");
        EXPECT_EQ(rig.g.FIDWorkFile.filename().string(), "FID_Work_File_1D000" + std::to_string(c.number) + ".dat");
        EXPECT_TRUE(fs::exists(rig.g.WorkFile));
    }
}

TEST(Startup, ABatchRunTouchesNoDisk)
{
    Rig rig;
    Start_Batch(rig.g);
    EXPECT_TRUE(rig.g.WorkFile.empty());
    EXPECT_TRUE(rig.g.FIDWorkFile.empty());
    EXPECT_FALSE(IsFileInUse(rig.g, "/data/fid"));
    EXPECT_EQ(rig.g.settings.auto_zerofill, 1);
    EXPECT_EQ(rig.g.nuclides.rows().size(), 140U);
    Start_Batch(rig.g, rig.folder.path());
    EXPECT_TRUE(fs::is_empty(rig.folder.path()));
}

TEST(Exit, AsksOnlyForUnsavedData)
{
    struct Case {
        const char* name;
        std::int16_t changed;
        const char* answer; ///< nullptr: no question may come
        bool closes;
    };
    for (const Case& c : {Case{"unchanged", 0, nullptr, true}, Case{"given up", 1, "Do not Save", true},
                          Case{"cancelled", 1, "Cancel", false}, Case{"form closed", 1, "", false}}) {
        SCOPED_TRACE(c.name);
        const auto rig =
            c.answer == nullptr ? std::make_unique<Rig>() : std::make_unique<Rig>(Answers{Pressed(c.answer)});
        rig->Boot();
        rig->g.UserIniFile = rig->Path("NMRCOL.INI");
        rig->g.Slots[0].par.DataChanged = c.changed;
        EXPECT_EQ(m19_Click(rig->s), c.closes);
        EXPECT_EQ(rig->g.DialogResult, c.closes ? "END" : "CANCEL");
        EXPECT_EQ(fs::exists(rig->Path("NMRCOL.INI")), c.closes);
        EXPECT_EQ(fs::exists(rig->g.WorkFile), !c.closes);
        if (c.answer == nullptr) continue;
        const forms::Values& question = rig->asker.forms.at(0).values;
        EXPECT_EQ(question.at(forms::kTitle), "Exit 1D NMR");
        EXPECT_EQ(question.at(forms::kText), "Before End, Data is");
    }
}

TEST(Exit, SavesTheInstrumentTableOnlyWhenAsked)
{
    for (const Button answer : {Button::yes, Button::no}) {
        SCOPED_TRACE(answer == Button::yes ? "saved" : "left");
        Rig rig{answer};
        rig.Boot();
        rig.g.UserIniFile = rig.Path("NMRCOL.INI");
        ParamBlock& par = rig.g.Slots[0].par;
        par.POINT = 1024;
        par.InstrumentID = "spect";
        par.OBNUC = "1H";
        par.ObsCenter = 400.13;
        par.OBFRQ0PPM = 400.13017;
        const std::size_t before = rig.g.Instruments.size();
        ASSERT_TRUE(StoreInstrument(rig.g));
        ASSERT_TRUE(m19_Click(rig.s));
        ASSERT_EQ(rig.asker.boxes.size(), 1U);
        EXPECT_EQ(rig.asker.boxes[0].text, "Do you save Instrumental Data for Reference setting?");
        LoadInstrumentTable(rig.g);
        EXPECT_EQ(rig.g.Instruments.size(), before + (answer == Button::yes ? 1 : 0));
    }
}

TEST(Exit, RemovesTheFilesOfTheRunAndNothingElse)
{
    const char* const own[] = {"temp7.emf", "TEMP8.WMF", "temp.temp", "Temp.dat", "BackUp1_3.tvo1"};
    // Another run may have to take its steps back with these.
    const char* const shared[] = {"UndoSpecData1.001", "UndoSpecData1.00X", "UndoSpecData2.017",
                                  "Work_File_1D0004.wkf"};
    const char* const other[] = {"Nuclear.dat",    "UndoSpecData3.001", "temp.png",
                                 "BackUp1_4.tvo1", "sub/Temp.dat",      "FID_Work_File_1D0004.dat"};
    for (const bool another_run : {false, true}) {
        SCOPED_TRACE(another_run ? "beside another run" : "alone");
        Rig rig;
        rig.Boot();
        rig.g.UserIniFile = rig.Path("NMRCOL.INI");
        rig.s.another_run_present = [=] { return another_run; };
        for (const char* name : own) test::WriteText(rig.Path(name), "x");
        for (const char* name : other) test::WriteText(rig.Path(name), "x");
        test::WriteText(rig.g.FIDWorkFile, "x");
        for (const char* name : shared) test::WriteText(rig.Path(name), "/data/fid\n");
        rig.g.BackupFile = rig.Path("BackUp1_3.tvo1");
        ASSERT_TRUE(m19_Click(rig.s));
        for (const char* name : own) EXPECT_FALSE(fs::exists(rig.Path(name))) << name;
        for (const char* name : other) EXPECT_TRUE(fs::exists(rig.Path(name))) << name;
        EXPECT_FALSE(fs::exists(rig.g.FIDWorkFile));
        EXPECT_FALSE(fs::exists(rig.g.WorkFile));
        for (const char* name : shared) EXPECT_EQ(fs::exists(rig.Path(name)), another_run) << name;
    }
}

TEST(Exit, APathThatHasStrayedOutOfTheFolderIsLeftAlone)
{
    Rig rig, elsewhere;
    rig.Boot();
    rig.g.UserIniFile = rig.Path("NMRCOL.INI");
    test::WriteText(elsewhere.Path("precious.dat"), "x");
    rig.g.BackupFile = elsewhere.Path("precious.dat");
    rig.g.FIDWorkFile = rig.folder.path() / ".." / elsewhere.folder.path().filename() / "precious.dat";
    ASSERT_TRUE(m19_Click(rig.s));
    EXPECT_TRUE(fs::exists(elsewhere.Path("precious.dat")));
}

TEST(Exit, TheInstrumentTableIsWrittenOnYesOnly)
{
    for (const bool yes : {true, false}) {
        Rig rig{yes ? Button::yes : Button::no};
        rig.Boot();
        rig.g.UserIniFile = rig.Path("NMRCOL.INI");
        rig.g.Instruments.push_back({"INST", "PROBE", "1H", 400.1, 400.09, "01/Jan/2024 00:00:00"});
        rig.g.InstrumentsChanged = true;
        ASSERT_TRUE(m19_Click(rig.s));
        EXPECT_EQ(rig.Texts().at(0), "Save Instrumental Data: Do you save Instrumental Data for Reference setting?");
        EXPECT_EQ(fs::exists(rig.Path("OB_0ppm.frq")), yes);
    }
}

} // namespace
} // namespace nmr
