#include "core/file_layer.h"
#include "core/param_table.h"
#include "core/settings_file.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace nmr {
namespace {

TEST(ParamTable, RulesOfItsLines)
{
    struct Case {
        const char* name;
        const char* line;
        ParamTableEntry entry;
    };
    const Case cases[] = {
        {"whole", "OBFRQ {ObsFreq} ; ###0.0 MHz", {"OBFRQ", "ObsFreq", "###0.0 MHz"}},
        {"indented", "  OBFRQ{Obs Freq};###0.0", {"OBFRQ", "Obs Freq", "###0.0"}},
        {"tab behind the key", "OBNUC\t{Nucleus}\t; @", {"OBNUC", "Nucleus", "@"}},
        {"no label", "OBNUC ; @", {"OBNUC", "", "@"}},
        {"no semicolon", "OBNUC {Nucleus} @ x", {"OBNUC", "Nucleus", "@ x"}},
        {"neither", "OBNUC  @", {"OBNUC", "", "@"}},
        {"key alone", "OBNUC", {"OBNUC", "", ""}},
        {"open label ends at a blank", "OBNUC {Nuc leus ; @", {"OBNUC", "Nuc", "@"}},
        {"open label to the end", "OBNUC {Nuc", {"OBNUC", "Nuc", ""}},
        {"braces of the format", "OBNUC ; {@}", {"OBNUC", "", "{@}"}},
        {"comment", "; any {text} ; here", {";", "", " any {text} ; here"}},
        {"heading", "$ {Sample} ; x", {"$", "Sample", "x"}},
        {"heading without label", "$Sample", {"$", "", "Sample"}},
    };
    const test::TempFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        test::WriteText(folder.path() / "t.prt", std::string("\r\n  \n") + c.line + "\r\n\n");
        const auto table = LoadParamTable(folder.path() / "t");
        ASSERT_TRUE(table);
        ASSERT_EQ(table->size(), 1U);
        EXPECT_EQ(table->front().Key, c.entry.Key);
        EXPECT_EQ(table->front().Label, c.entry.Label);
        EXPECT_EQ(table->front().Format, c.entry.Format);

        ASSERT_TRUE(SaveParamTable(folder.path() / "again", *table));
        const auto again = LoadParamTable(folder.path() / "again.prt");
        ASSERT_TRUE(again);
        EXPECT_EQ(again->front().Key, c.entry.Key);
        EXPECT_EQ(again->front().Label, c.entry.Label);
        EXPECT_EQ(again->front().Format, c.entry.Format);
    }
    EXPECT_EQ(LoadParamTable(folder.path() / "none").error().code, ErrorCode::not_found);
}

TEST(ParamTable, TheSettingChoosesOne)
{
    const test::TempFolder folder;
    test::WriteText(folder.path() / "mine.prt", "OBNUC {N} ; @\n");
    test::WriteText(folder.path() / "NMRCOL.INI", "1D INITIAL SETTING VER.4\nPARAMETER TABLE ; \\Mine\n");
    GlobalBlock g;
    g.AppPath = folder.path();
    g.UserIniFile = folder.path() / "NMRCOL.INI";
    ReadUserSettings(g);
    ASSERT_EQ(g.ParamTable.size(), 1U);
    EXPECT_EQ(g.ParamTable.front().Label, "N");
}

TEST(ShippedTables, AreReadAsTheyStand)
{
    GlobalBlock g;
    g.AppPath = NMR1D_SOURCE_DIR "/data/system";
    const auto table = LoadParamTable(g.AppPath / "1D_Eng.prt");
    ASSERT_TRUE(table);
    std::size_t fields = 0;
    for (const ParamTableEntry& entry : *table) {
        if (entry.Key == ";" || entry.Key == "$") continue;
        ++fields;
        EXPECT_NE(FindParam(entry.Key), nullptr) << entry.Key;
        EXPECT_FALSE(entry.Label.empty() || entry.Format.empty()) << entry.Key;
    }
    EXPECT_GE(fields, 20U);

    LoadRequiredFiles(g);
    EXPECT_GE(g.RequiredFiles.size(), 18U); // one for each family at least
    EXPECT_LE(g.RequiredFiles.size(), 41U);
    for (const RequiredFile& row : g.RequiredFiles) EXPECT_FALSE(row.required.empty()) << row.format;
    LoadInstrumentTable(g);
    EXPECT_TRUE(g.Instruments.empty());
}

TEST(RequiredFiles, ColumnsAndLimits)
{
    const test::TempFolder folder;
    std::string text = "Bruker, fid ,one, two\nab\n\nVarian,fid\n";
    for (int i = 0; i < 60; ++i) text += "Row,x\n";
    test::WriteText(folder.path() / "REQUIREDFILE1D_E.TXT", text);
    GlobalBlock g;
    g.AppPath = folder.path();
    LoadRequiredFiles(g);
    ASSERT_EQ(g.RequiredFiles.size(), 41U);
    EXPECT_EQ(g.RequiredFiles[0].required, "fid");
    EXPECT_EQ(g.RequiredFiles[0].notes, "one\ntwo");
    EXPECT_EQ(g.RequiredFiles[1].format, "Varian");
}

TEST(Instruments, ComeBackAsWritten)
{
    const test::TempFolder folder;
    GlobalBlock g;
    g.AppPath = folder.path();
    g.Instruments = {{"AV;400", "BBO", "1H", 400.131234, 400.1300000217, "2024/05/06 07:08:09"},
                     {"AV400", "", "13C", 100.62, 100.6127, ""}};
    g.InstrumentsChanged = true;
    ASSERT_TRUE(SaveInstrumentTable(g));
    EXPECT_FALSE(g.InstrumentsChanged);
    EXPECT_EQ(test::ReadText(folder.path() / "OB_0ppm.frq"),
              "AV 400;BBO;1H;400.131234;400.1300000217;2024/05/06 07:08:09;\nAV400;;13C;100.62;100.6127;;\n");

    GlobalBlock read;
    read.AppPath = folder.path();
    LoadInstrumentTable(read);
    ASSERT_EQ(read.Instruments.size(), 2U);
    EXPECT_EQ(read.Instruments[0].ppm0, 400.1300000217);
    EXPECT_EQ(read.Instruments[1].nucleus, "13C");
    EXPECT_EQ(read.Instruments[1].date, "");
}

TEST(Instruments, DamagedRowsAreLeftOut)
{
    const test::TempFolder folder;
    std::string text = "A;B;1H;400;399.9;d;\nA;B;1H\n;;;;;;\nA;B;1H;x;399;\nA;B;1H;400;0;\nA;B;2H;61.4;61.4\n";
    for (int i = 0; i < 2100; ++i) text += "A;B;1H;400;399.9;d;\n";
    test::WriteText(folder.path() / "ob_0PPM.frq", text);
    GlobalBlock g;
    g.AppPath = folder.path();
    LoadInstrumentTable(g);
    EXPECT_EQ(g.Instruments.size(), 2001U);
    EXPECT_EQ(g.Instruments[1].nucleus, "2H");
}

} // namespace
} // namespace nmr
