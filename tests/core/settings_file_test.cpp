#include "core/file_layer.h"
#include "core/settings_file.h"
#include "support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace nmr {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kTag = "1D Initial setting Ver.4\n";

/// A block as the start makes it, with the settings file of the folder.
std::unique_ptr<GlobalBlock> Block(const test::TempFolder& folder)
{
    auto g = std::make_unique<GlobalBlock>();
    InitGlobals(*g);
    g->AppPath = folder.path();
    g->UserIniFile = folder.path() / "NMRCOL.INI";
    return g;
}

std::unique_ptr<GlobalBlock> ReadUser(const test::TempFolder& folder, const std::string& text)
{
    test::WriteText(folder.path() / "NMRCOL.INI", text);
    auto g = Block(folder);
    ReadUserSettings(*g);
    return g;
}

TEST(SettingsFile, WriteReadWriteGivesTheSameBytes)
{
    const test::TempFolder folder;
    auto g = Block(folder);
    g->settings.user_name = "ÉVA";
    g->settings.phase_1 = -1.0 / 3;
    g->settings.access_read_dir = "C:\\data\\a;b";
    g->settings.color[19] = 77;
    g->settings.integ_fonts.name[3] = "Liberation Serif";
    g->settings.peak_num_fonts.size[0] = 8.5;
    g->settings.fid_shift_delay[11] = 67.984130859375;
    g->settings.theme = 2;
    g->RecentFiles = {"/data/exp 1/fid", "/data/b;c.jdf"};
    g->Operators = {"Ada", "Émile"};
    g->ExpShiftTable[0] = {"zg30", 68, 400.13, 4.7, "AV400", 67.98};
    g->ExpShiftTable[1] = {"zgpg", -3, 100.6, 100, "", -1};
    g->FileTypeSlots[5] = "*.nmf*";
    g->FileTypeSlots[1].clear();
    g->LastObsCenter = 400.13;
    g->LastCentre = 4.7;
    g->GroupCentre[1] = 99;
    g->GroupObsCenter[1] = 100.6;
    ASSERT_TRUE(WriteUserSettings(*g));
    const std::string first = test::ReadText(folder.path() / "NMRCOL.INI");

    auto again = Block(folder);
    ReadUserSettings(*again);
    EXPECT_EQ(again->settings.access_count, g->settings.access_count + 1);
    again->settings.access_count = g->settings.access_count;
    ASSERT_TRUE(WriteUserSettings(*again));
    EXPECT_EQ(test::ReadText(folder.path() / "NMRCOL.INI"), first);

    EXPECT_EQ(again->settings.user_name, "ÉVA");
    EXPECT_EQ(again->settings.phase_1, -1.0 / 3);
    EXPECT_EQ(again->settings.integ_fonts.name[3], "Liberation Serif");
    EXPECT_EQ(again->settings.fid_shift_delay[11], 67.984130859375);
    EXPECT_EQ(again->settings.fid_shift_delay[10], -1);
    EXPECT_EQ(again->settings.theme, 2);
    EXPECT_THAT(again->RecentFiles, ElementsAre("/data/exp 1/fid", "/data/b;c.jdf"));
    EXPECT_THAT(again->Operators, ElementsAre("Ada", "Émile"));
    EXPECT_EQ(again->ExpShiftTable[0].FIDShift, 68);
    EXPECT_EQ(again->ExpShiftTable[0].group_delay, 67.98);
    EXPECT_EQ(again->ExpShiftTable[1].instrument, "zgpg");
    EXPECT_EQ(again->ExpShiftTable[1].FIDShift, -3);
    EXPECT_EQ(again->FileTypeSlots[5], "*.nmf*");
    EXPECT_EQ(again->FileTypeSlots[1], "");
    EXPECT_EQ(again->LastCentre, 4.7);
    EXPECT_EQ(again->GroupCentre[1], 99);
    EXPECT_EQ(again->settings.access_read_dir, "C:\\data\\a;b");
}

TEST(SettingsFile, WrittenForm)
{
    const test::TempFolder folder;
    auto g = Block(folder);
    g->settings.xlabel = "two\nlines\tand a tab";
    ASSERT_TRUE(WriteUserSettings(*g));
    const std::string text = test::ReadText(folder.path() / "NMRCOL.INI");
    EXPECT_EQ(text.substr(0, 25), kTag);
    EXPECT_THAT(
        text,
        HasSubstr(
            "\nUSER NAME                 ; COMMON\nACCESS COUNT              ; 1\nSTART MODE                ; 1\n"));
    EXPECT_THAT(text, HasSubstr("\nXLABEL                    ; two lines and a tab\n"));
    EXPECT_THAT(text, HasSubstr("\nCOLOR-19                  ; "));
    EXPECT_THAT(text, ::testing::Not(HasSubstr("INTEG FONT NAMES")));
}

TEST(SettingsFile, LaterLinesWinAndOldSpellingsCount)
{
    const test::TempFolder folder;
    const auto g =
        ReadUser(folder, std::string(kTag) + "CURSOR COL 0 ; 1\nCURSOL COL 0 ; 2\n"
                                             "CURSOL COL 1 ; 3\r\nCURSOR COL 1 ; 4\r\n"
                                             "NO SUCH KEY ; 5\nPARA TABLE ; mine\n"
                                             "AXIS FONT BLD ; 1\nUSER EXTENSION ; *.abc\nUSER EXT TITLE ; Mine\n"
                                             "DIGITAL FILTER ; 4\nDIGITAL FILTER ; 11\nFILE TYPE 2 ; -----\n");
    EXPECT_EQ(g->settings.cursor_col_0, 2);
    EXPECT_EQ(g->settings.cursor_col_1, 4);
    EXPECT_EQ(g->settings.parameter_table, "mine");
    EXPECT_EQ(g->settings.axis_font_bold, 1);
    EXPECT_EQ(g->FileTypeSlots[5], "*.abc");
    EXPECT_EQ(g->FileTypeNames[5], "Mine");
    EXPECT_EQ(g->FileTypeSlots[2], "");
    EXPECT_EQ(g->FileTypeSlots[3], "*.gxd*");
    EXPECT_EQ(g->DigitalFilterPoints, 4);
}

TEST(SettingsFile, TickSettingsOfAnOldFileAreTheDefaults)
{
    const test::TempFolder folder;
    test::WriteText(folder.path() / "NMRCOL.INI", std::string(kTag) + "AXIS TIC INCRE ; 3\n");
    auto g = Block(folder);
    g->settings.ax_tic_step_13c = 7; // left over from before the read
    ReadUserSettings(*g);
    EXPECT_EQ(g->settings.axis_tic_step, 3);
    EXPECT_EQ(g->settings.ax_tic_step_13c, 10);
    EXPECT_EQ(g->settings.axis_tic_div, 10);
}

TEST(SettingsFile, VersionsDifferInTheFixedColumn)
{
    const test::TempFolder folder;
    EXPECT_EQ(ReadUser(folder, "1D INITIAL SETTING\nLP ORDER         7\n")->settings.lp_order, 7);
    EXPECT_EQ(ReadUser(folder, "  1d initial setting ver.4 \nLP ORDER             8\n")->settings.lp_order, 8);
    EXPECT_EQ(ReadUser(folder, "1D Initial setting Ver.4\nLP ORDER         9\n")->settings.lp_order, 50);
}

TEST(SettingsFile, AForeignFileChangesNothingAndIsKept)
{
    const test::TempFolder folder;
    const std::string foreign = "1D Initial setting Ver.5\nLP ORDER ; 7\n";
    const auto g = ReadUser(folder, foreign);
    EXPECT_EQ(g->settings.lp_order, 50);
    EXPECT_EQ(test::ReadText(folder.path() / "NMRCOL.INI.old"), foreign);
    EXPECT_THAT(test::ReadText(folder.path() / "NMRCOL.INI"), HasSubstr("LP ORDER                  ; 50\n"));
}

TEST(SettingsFile, AMissingFileGivesDefaultsAndIsWritten)
{
    const test::TempFolder folder;
    auto g = Block(folder);
    ReadUserSettings(*g);
    EXPECT_EQ(g->settings.zerofillsize, 131072);
    EXPECT_GT(FileLen(folder / "NMRCOL.INI"), 0);
}

TEST(SettingsFile, DamagedFilesDoNoHarm)
{
    const test::TempFolder folder;
    std::string noise = kTag;
    for (int i = 0; i < 20000; ++i) noise += static_cast<char>((i * 7919 + i / 13) % 256);
    std::string many = kTag;
    for (int i = 0; i < 500; ++i)
        many += "RECENT FILE ; f" + std::to_string(i) + "\nOPERATOR INDEX ; o" + std::to_string(i) +
                "\nINSTRUMENT ; e" + std::to_string(i) + "\nFID SHIFT VAL ; " + std::to_string(i) + "\n";
    EXPECT_EQ(ReadUser(folder, noise)->settings.lp_order, 50);
    const auto g = ReadUser(folder, many);
    EXPECT_EQ(g->RecentFiles.size(), 21U);
    EXPECT_EQ(g->Operators.size(), 101U);
    EXPECT_EQ(g->ExpShiftTable[99].FIDShift, 99);
    const auto orphan = ReadUser(folder, std::string(kTag) + "FID SHIFT VAL ; 5\nRECENT FILE ;\n");
    EXPECT_EQ(orphan->ExpShiftTable[0].FIDShift, 0);
    EXPECT_TRUE(orphan->RecentFiles.empty());
}

TEST(SettingsFile, TextOfJapaneseWindowsIsUnderstood)
{
    const test::TempFolder folder;
    const auto g = ReadUser(folder, std::string(kTag) + "USER NAME ; \x8E\x52\x93\x63\n"); // CP932
    EXPECT_EQ(g->settings.user_name, "山田");
}

TEST(CommonFile, CountsStartsAndKeepsTheRest)
{
    const test::TempFolder folder;
    test::WriteText(
        folder.path() / "1dcommon.INI",
        "1D COMMON SETTING\nLOG MODE       1\nLOG DIR ; /logs\nACCESS COUNT ; 41\nUSER MODE ; x\nLATEST USER ; ADA\n");
    auto g = Block(folder);
    ReadCommonSettings(*g);
    EXPECT_EQ(g->common.LogMode, 1);
    EXPECT_EQ(g->common.LogDir, "/logs");
    EXPECT_EQ(g->common.AccessCount, 42);
    EXPECT_EQ(g->common.UserMode, 0);
    EXPECT_EQ(g->common.LatestUser, "ADA");
    EXPECT_EQ(g->BackupFile.filename(), "BackUp1_42.tvo1");
    const std::string text = test::ReadText(folder.path() / "1dcommon.INI");
    EXPECT_EQ(text.substr(0, text.find('\n')), "1D Common Setting Ver.4");
    EXPECT_THAT(text, HasSubstr("\nLOG DIR        ; /logs\n"));
    EXPECT_THAT(text, HasSubstr("\nLATEST ACCESS  ; 20"));
    EXPECT_THAT(text, HasSubstr("\nUSER COUNT     ; 0\n"));

    auto again = Block(folder);
    ReadCommonSettings(*again);
    EXPECT_EQ(again->common.AccessCount, 43);
    EXPECT_EQ(again->common.LogDir, "/logs");
}

TEST(CommonFile, ReadOnlyOrNoFolderIsNoError)
{
    GlobalBlock g;
    InitGlobals(g);
    ReadCommonSettings(g);
    EXPECT_FALSE(WriteCommonSettings(g));
    EXPECT_FALSE(WriteUserSettings(g));
    g.AppPath = "/nonexistent/folder";
    g.UserIniFile = g.AppPath / "NMRCOL.INI";
    ReadCommonSettings(g);
    ReadUserSettings(g);
    EXPECT_EQ(g.common.LogDir, "C:\\NMRLog");
    EXPECT_FALSE(WriteUserSettings(g));
}

TEST(Users, AreListedByTheirNames)
{
    const test::TempFolder folder;
    EXPECT_THAT(ListUsers(folder.path()), ElementsAre(std::pair{std::string("COMMON"), folder.path() / "NMRCOL.INI"}));

    test::WriteText(folder.path() / "NMRCOL0002.ini", std::string(kTag) + "START MODE ; 1\nUSER NAME ; ADA\n");
    test::WriteText(folder.path() / "NMRCOL.INI", kTag);
    test::WriteText(folder.path() / "NMRCOL0003.ini", "something else\nUSER NAME ; X\n");
    EXPECT_THAT(ListUsers(folder.path()), ElementsAre(std::pair{std::string("COMMON"), folder.path() / "NMRCOL.INI"},
                                                      std::pair{std::string("ADA"), folder.path() / "NMRCOL0002.ini"}));
    EXPECT_EQ(ReadUserName(folder.path() / "NMRCOL0002.ini"), "ADA");
    EXPECT_EQ(ReadUserName(folder.path() / "none.ini"), "");
}

TEST(Users, SelectingTakesAKnownFileOrTheFirstFreeOne)
{
    const test::TempFolder folder;
    test::WriteText(folder.path() / "NMRCOL0001.ini", std::string(kTag) + "USER NAME ; ADA\n");
    test::WriteText(folder.path() / "nmrcol0002.INI", std::string(kTag) + "USER NAME ; BOB\n");
    struct Case {
        const char* typed;
        const char* user;
        const char* file;
    };
    for (const Case& c : {Case{" ada ", "ADA", "NMRCOL0001.ini"}, Case{"Bob", "BOB", "nmrcol0002.INI"},
                          Case{"carl", "CARL", "NMRCOL0003.ini"}, Case{"", "COMMON", "NMRCOL.INI"},
                          Case{"common", "COMMON", "NMRCOL.INI"}}) {
        SCOPED_TRACE(c.typed);
        auto g = Block(folder);
        SelectUser(*g, c.typed);
        EXPECT_EQ(g->CurrentUser, c.user);
        EXPECT_EQ(g->common.LatestUser, c.user);
        EXPECT_EQ(g->UserIniFile.filename(), c.file);
    }
    auto g = Block(folder);
    SelectUser(*g, "carl");
    ReadUserSettings(*g);
    EXPECT_EQ(ReadUserName(folder.path() / "NMRCOL0003.ini"), "CARL");
}

TEST(AppFolder, IsTheProgramsOwnOrTheUsers)
{
    const test::TempFolder folder;
    const fs::path program = folder.path() / "program", shipped = folder.path() / "shipped",
                   data = folder.path() / "data";
    fs::create_directories(program);
    fs::create_directories(shipped);
    test::WriteText(shipped / "Nuclear.dat", "new");
    test::WriteText(shipped / "1D_Eng.prt", "table");
    test::WriteText(program / "nuclear.DAT", "mine");
    ASSERT_EQ(::setenv("XDG_DATA_HOME", data.c_str(), 1), 0);

    EXPECT_EQ(ChooseAppPath(program, shipped), program);
    EXPECT_EQ(test::ReadText(program / "nuclear.DAT"), "mine");
    EXPECT_FALSE(fs::exists(program / "Nuclear.dat"));
    EXPECT_EQ(test::ReadText(program / "1D_Eng.prt"), "table");

    EXPECT_EQ(ChooseAppPath("/usr/bin", shipped), data / "nmr1d");
    EXPECT_EQ(test::ReadText(data / "nmr1d" / "Nuclear.dat"), "new");
    test::WriteText(data / "nmr1d" / "Nuclear.dat", "changed");
    EXPECT_EQ(ChooseAppPath(folder.path() / "missing", shipped), data / "nmr1d");
    EXPECT_EQ(test::ReadText(data / "nmr1d" / "Nuclear.dat"), "changed");

    ASSERT_EQ(::setenv("XDG_DATA_HOME", "relative", 1), 0);
    ASSERT_EQ(::setenv("HOME", folder.path().c_str(), 1), 0);
    EXPECT_EQ(ChooseAppPath("/usr/bin", shipped), folder.path() / ".local" / "share" / "nmr1d");
    ::unsetenv("XDG_DATA_HOME");
}

} // namespace
} // namespace nmr
