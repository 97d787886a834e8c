// "Read CSV Data" and "Save as" ASCII, as the user meets them.

#include "session/ascii_commands.h"

#include "formats/csv_choice.h"
#include "session/display_scope.h"
#include "session/menu.h"
#include "session/rig.h"

#include <algorithm>
#include <string>

namespace nmr {
namespace {

using namespace test;

/// The form's answer with frequency and nucleus typed in, everything else as proposed.
FormAnswer Typed(const std::string& text, const std::string& mhz)
{
    CsvChoice choice = ProposeCsv(text);
    choice.parameters[0] = "13C";
    choice.parameters[1] = mhz;
    return {"OK", choice.ToValues()};
}

std::string Spectrum()
{
    std::string text;
    for (int i = 0; i < 64; ++i)
        text += std::to_string(200 - 2 * i) + "\t" + std::to_string(i == 20 ? 50 : i % 2) + "\n";
    return text;
}

std::string Table(const TempFolder& folder)
{
    WriteText(folder / "table.of.mine", Spectrum());
    return folder / "table.of.mine";
}

TEST(ReadCsvCommand, ReadsATableWhateverItsName)
{
    const TempFolder folder;
    Rig rig{Chosen(Table(folder)), Typed(Spectrum(), "100")};
    rig.Boot();
    NMR1D_m112_Command(rig.s);
    const DataSet& set = rig.g.Slots[0];
    ASSERT_EQ(set.par.POINT, 64);
    EXPECT_EQ(set.par.SMODE, 1);
    EXPECT_EQ(set.par.OBNUC, "13C");
    EXPECT_NEAR(HighestPpm(set), 160, 1e-9);
    EXPECT_EQ(set.par.DataFromFile, 1);
    ASSERT_EQ(rig.asker.forms.size(), 1U);
    EXPECT_EQ(rig.asker.forms[0].form, kCsvForm);
    EXPECT_EQ(rig.asker.dialogs.at(0).title, "Read CSV Data");
    EXPECT_TRUE(rig.Texts().empty());
}

TEST(ReadCsvCommand, CancelInTheFormAndWordsInTheFileLeaveNothing)
{
    const TempFolder folder;
    WriteText(folder / "words.csv", "nothing here\n");
    // Words are refused, and another file may be chosen.
    Rig rig{Chosen(folder / "words.csv"), Chosen(Table(folder)), Pressed("CANCEL")};
    rig.Boot();
    NMR1D_m112_Command(rig.s);
    EXPECT_EQ(rig.Texts(), (std::vector<std::string>{"Data Error: Invalid Data", "Data Error: Non NMR Data !"}));
    EXPECT_EQ(rig.g.Slots[0].par.POINT, 0);
}

TEST(SaveAscii, WritesWhatTheFormSaysAndClosesTheWork)
{
    struct Case {
        const char *name, *file;
        std::vector<FormAnswer> form;
        std::size_t lines; ///< of the file, with the empty one; 0: none is written
        double highest;
    };
    const Case cases[] = {
        {"raw", "a.txt", {Pressed("R, 64")}, 65, 50},
        {"relative", "b.dat", {Pressed("R1, 64")}, 65, 1},
        {"fewer points", "b.dat", {Pressed("R1, 16")}, 17, 1},
        {"as displayed", "c.asc", {Pressed("D, 64")}, 71, 0.95},
        {"every parameter", "d.csv", {}, 106, 50},
        {"quit", "e.txt", {Pressed("CANCEL")}, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TempFolder folder;
        const std::string path = folder / c.file;
        std::vector<ScriptedAsker::Answer> answers{Chosen(Table(folder)), Typed(Spectrum(), "100"), Chosen(path)};
        answers.insert(answers.end(), c.form.begin(), c.form.end());
        Rig rig;
        rig.asker.Expect(answers);
        rig.Boot();
        NMR1D_m112_Command(rig.s);
        rig.g.Slots[0].par.DataChanged = 1;
        m10_7_Click(rig.s);
        const std::string text = ReadText(path);
        EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(text, '\n')), c.lines);
        EXPECT_EQ(rig.g.Slots[0].par.DataChanged, c.lines > 0 ? 0 : 1);
        EXPECT_EQ(rig.asker.dialogs.back().name, "table.of.txt");
        EXPECT_TRUE(rig.Texts().empty());
        if (c.lines == 0) continue;
        EXPECT_EQ(rig.g.Slots[0].par.FileName, path);
        EXPECT_EQ(rig.g.RecentFiles.front(), path);
        EXPECT_EQ(rig.titles.back(), WindowTitle(path));
        if (c.lines < 64) continue; // the highest point may be left out
        const auto line = text.find("\n160, ");
        ASSERT_NE(line, std::string::npos);
        EXPECT_NEAR(std::stod(text.substr(line + 6)), c.highest, 1e-6);
    }
}

TEST(SaveAscii, AFailureIsToldAndKeepsTheWorkOpen)
{
    const TempFolder folder;
    Rig rig{Chosen(Table(folder)), Typed(Spectrum(), "100"), Chosen(folder / "no/such.csv")};
    rig.Boot();
    NMR1D_m112_Command(rig.s);
    rig.g.Slots[0].par.DataChanged = 1;
    m10_7_Click(rig.s);
    EXPECT_EQ(rig.Texts().size(), 1U);
    EXPECT_EQ(rig.g.Slots[0].par.DataChanged, 1);
}

} // namespace
} // namespace nmr
