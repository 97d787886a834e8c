#include "core/log.h"

#include "core/history.h"
#include "core/operators.h"
#include "core/text.h"
#include "support/files.h"
#include "support/scripted_asker.h"

#include <gtest/gtest.h>

#include <memory>

namespace nmr {
namespace {

using test::ReadText;
using test::ScriptedAsker;
using test::TempFolder;

// 7 March 2024, 13:05:09.
constexpr DateTime kWhen{45358, (13 * 3600 + 5 * 60 + 9 + 0.5) / 86400.0};

TEST(Log, EachEventIsOneLineInTheFileOfItsMonthOrDay)
{
    struct Case {
        const char* name;
        std::int32_t mode;
        const char* folder; ///< "": the default
        const char* file;   ///< nullptr: none
    };
    const Case cases[] = {
        {"a month", 0, "", "NMRLog/1D2024_03.log"},
        {"a day", 1, "", "NMRLog/1D2024_03_07.log"},
        {"none", 2, "", nullptr},
        {"switched off", -1, "", nullptr},
        {"a folder of its own", 1, "own", "own/1D2024_03_07.log"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        const auto g = std::make_unique<GlobalBlock>();
        ScriptedAsker asker;
        g->AppPath = folder.path();
        g->CurrentUser = "ANNA";
        g->common.LogMode = c.mode;
        if (*c.folder != '\0') {
            g->common.LogDir = folder / c.folder;
            std::filesystem::create_directory(g->common.LogDir);
        }
        WriteLog(*g, asker, "Read", "/data/a\nb/fid", kWhen);
        WriteLog(*g, asker, "Exit", "", kWhen);
        EXPECT_TRUE(asker.boxes.empty());
        const std::string lines = "2024/Mar/07,13:05:09,ANNA,Read,/data/a b/fid\n2024/Mar/07,13:05:09,ANNA,Exit,\n";
        if (c.file != nullptr)
            EXPECT_EQ(ReadText(folder / c.file), lines);
        else
            EXPECT_FALSE(std::filesystem::exists(folder / "NMRLog"));
    }
}

TEST(Log, AFolderThatIsMissingIsToldAndNeverMade)
{
    const TempFolder folder;
    const auto g = std::make_unique<GlobalBlock>();
    ScriptedAsker asker;
    g->AppPath = folder.path();
    g->common.LogDir = folder / "missing";
    WriteLog(*g, asker, "Start", "", kWhen);
    ASSERT_EQ(asker.boxes.size(), 1U);
    EXPECT_EQ(asker.boxes[0].text, "Invalid Folder Name(WL)");
    EXPECT_EQ(asker.boxes[0].title, "Folder Error");
    EXPECT_TRUE(asker.boxes[0].beep);
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
    // A file that can't be opened is no reason to stop the user.
    g->common.LogDir = folder.path().string();
    std::filesystem::create_directory(folder / "1D2024_03.log");
    WriteLog(*g, asker, "Start", "", kWhen);
    EXPECT_EQ(asker.boxes.size(), 1U);
}

TEST(History, EntriesAreCutToWhatTheFileKeepsBetweenCharacters)
{
    struct Case {
        const char* name;
        std::string text;
        std::string kept;
    };
    const Case cases[] = {
        {"short", "Anna", "Anna"},
        {"as long as it may be", std::string(32, 'x'), std::string(32, 'x')},
        {"too long", std::string(33, 'x'), std::string(32, 'x')},
        {"two bytes a character", "測定測定測定測定測定測定測定測定測定", "測定測定測定測定測定測定測定測定"},
        {"a character across the end", std::string(31, 'x') + "測", std::string(31, 'x')},
        {"broken text", "ab\xE6", "ab\xE6"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(CutForFile(c.text, kHistoryBytes), c.kept);
        DataSet set;
        AppendHistory(set, c.text, c.text, kWhen);
        EXPECT_EQ(set.HistoryA[0], c.kept);
        EXPECT_TRUE(set.HistoryB[0].starts_with("2024-03-07 13:05:09 "));
        EXPECT_LE(ToCp932(set.HistoryB[0]).size(), kHistoryBytes);
    }
}

TEST(History, TheListBeginsWithTheMeasurement)
{
    DataSet set;
    set.par.Operator = "Ben";
    set.par.DateSerial = 45358;
    set.par.TimeOfDay = 0.75F;
    auto rows = HistoryRows(set);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].subject + "|" + rows[0].operator_name + "|" + rows[0].date, "Measured|Ben|2024-03-07 18:00:00");
    set.par.DateSerial = 21915; // the last day before 1960
    EXPECT_EQ(HistoryRows(set)[0].date, "");
    set.par.DateSerial = 21916;
    EXPECT_EQ(HistoryRows(set)[0].date, "1960-01-01 18:00:00");
    // What another program wrote has no form to rely on.
    set.HistoryA = {"Carl", "Dora"};
    set.HistoryB = {"saved by hand"};
    AppendHistory(set, "Anna", kHistoryTransform, kWhen);
    rows = HistoryRows(set);
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[1].subject + "|" + rows[1].operator_name + "|" + rows[1].date, "saved by hand|Carl|");
    EXPECT_EQ(rows[2].subject + "|" + rows[2].operator_name + "|" + rows[2].date, "|Dora|");
    EXPECT_EQ(rows[3].subject + "|" + rows[3].operator_name + "|" + rows[3].date, "FFT|Anna|2024-03-07 13:05:09");
}

TEST(Operators, NamesAreKeptOnceAndNeverEmpty)
{
    std::vector<std::string> names;
    EXPECT_TRUE(AddOperator(names, " Anna \n"));
    for (const char* refused : {"", "  ", "\n", "ANNA"}) EXPECT_FALSE(AddOperator(names, refused)) << refused;
    EXPECT_EQ(names, std::vector<std::string>{"Anna"});
    EXPECT_FALSE(DeleteOperator(names, "Ben"));
    EXPECT_TRUE(DeleteOperator(names, "anna"));
    for (int i = 0; i < 120; ++i) AddOperator(names, "N" + std::to_string(i));
    EXPECT_EQ(names.size(), kMaxOperators);
}

TEST(Operators, TheMeasurementsOperatorIsOfferedOnlyWhenListed)
{
    struct Case {
        const char *measured, *user, *offered;
    };
    for (const Case& c :
         {Case{"Anna", "", "Anna"}, Case{"Eve", "", ""}, Case{"Anna", "Ben", "Ben"}, Case{"", "", ""}}) {
        const auto g = std::make_unique<GlobalBlock>();
        g->Operators = {"Anna", "Ben"};
        g->Slots[0].par.Operator = c.measured;
        g->Slots[0].FFTUser = c.user;
        OfferOperator(*g);
        EXPECT_EQ(g->Slots[0].FFTUser, c.offered) << c.measured;
    }
}

} // namespace
} // namespace nmr
