#include "core/file_layer.h"
#include "core/history.h"
#include "core/settings_file.h"
#include "core/text.h"
#include "session/display_scope.h"
#include "session/menu.h"
#include "session/parameter_list.h"
#include "session/rig.h"
#include "session/text_commands.h"
#include "session/text_forms.h"
#include "session/tool_commands.h"

#include <algorithm>
#include <map>

namespace nmr {
namespace {

using namespace test;

std::unique_ptr<Rig> WithSpectrum(std::initializer_list<ScriptedAsker::Answer> answers = {})
{
    auto rig = std::make_unique<Rig>(answers);
    rig->Boot();
    const std::string file = WriteBrukerFid(rig->folder.path() / "exp");
    EXPECT_TRUE(Read_Path(rig->s, file));
    return rig;
}

TEST(History, EachTransformAppendsAnEntryOfItsUser)
{
    Rig rig{Pressed("CLOSE"), Pressed("CLOSE")};
    rig.Boot();
    rig.g.Operators = {"Anna"};
    rig.s.run_fft_form = [&](FftForm& form) {
        form.SetUser("Anna");
        EXPECT_TRUE(form.Command3());
        return rig.g.DialogResult;
    };
    ASSERT_TRUE(Read_Path(rig.s, WriteBrukerFid(rig.folder.path() / "exp")));
    m209_Click(rig.s);
    const forms::Values& shown = rig.asker.forms.back().values;
    EXPECT_EQ(shown.at("COUNT"), "2");
    EXPECT_EQ(shown.at("SUBJECT 1"), "Measured");
    EXPECT_EQ(shown.at("SUBJECT 2"), "FFT");
    EXPECT_EQ(shown.at("OPERATOR 2"), "Anna");
    EXPECT_TRUE(rig.g.Slots[0].FFTUser.starts_with("Anna " + FormatDate("dd/mmm/yyyy", NowLocal())));
    EXPECT_EQ(shown.at("DATE 2").substr(0, 10), FormatDate("yyyy-mm-dd", NowLocal()));
    EXPECT_EQ(shown.at(forms::kHead), rig.g.Slots[0].par.OrgFile);
    // A data set without any entry shows its measurement.
    rig.g.Slots[0].HistoryA.clear();
    rig.g.Slots[0].HistoryB.clear();
    m209_Click(rig.s);
    EXPECT_EQ(rig.asker.forms.back().values.at("COUNT"), "1");
}

TEST(Log, ARunLeavesALineForStartReadTransformAndExit)
{
    const auto rig = WithSpectrum({Pressed("Do not Save")});
    rig->g.UserIniFile = rig->Path("NMRCOL.INI");
    ASSERT_TRUE(m19_Click(rig->s));
    const auto files = ListFiles(rig->folder.path() / "NMRLog", "1D*.log");
    ASSERT_EQ(files.size(), 1U);
    const std::string log = ReadText(rig->folder.path() / "NMRLog" / files[0]);
    std::vector<std::string> events;
    for (const std::string& line : forms::SplitLines(log)) events.push_back(Split(line, ',').at(3));
    EXPECT_EQ(events, (std::vector<std::string>{"Transform", "Read", "Exit"}));
}

struct ListCase {
    const char* name;
    void (*set)(ParamBlock&);
    const char* label;
    const char* value; ///< nullptr: no such row
};

TEST(ParameterList, RowsFollowTheDataAndShowTheirUnits)
{
    const ListCase cases[] = {
        {"frequency", [](ParamBlock& p) { p.OBFRQ = 400.13F; }, "ObsFreq", "400.13 MHz"},
        {"date", [](ParamBlock& p) { p.DateSerial = 45358; }, "Date", "07/Mar/2024"},
        {"time", [](ParamBlock& p) { p.DateSerial = 45358, p.TimeOfDay = 0.5F; }, "Date(2)", "12:00:00"},
        {"date as text only", [](ParamBlock& p) { p.DATIM = "some day"; }, "Date", "some day"},
        {"shift", [](ParamBlock& p) { p.FIDShift = 68; }, "FID Shift", "68 points"},
        {"no temperature", [](ParamBlock& p) { p.CTEMP = kNoTemperature; }, "Temperature", ""},
        {"a temperature", [](ParamBlock& p) { p.CTEMP = 25.5F; }, "Temperature", "25.5"},
        {"exponential", [](ParamBlock& p) { p.WindowFunc = 0, p.BF1 = 0.3F; }, "BF", "0.3 Hz"},
        {"exponential has no start", [](ParamBlock& p) { p.WindowFunc = 0; }, "Window Start", nullptr},
        {"exponential has no GF", [](ParamBlock& p) { p.WindowFunc = 0; }, "GF", nullptr},
        {"sine bell", [](ParamBlock& p) { p.WindowFunc = 1, p.WinStart3 = -12.5F; }, "Window Start", "-12.5 %"},
        {"Hann", [](ParamBlock& p) { p.WindowFunc = 2, p.WinEnd4 = 90; }, "Window End", "90.0 %"},
        {"Gaussian", [](ParamBlock& p) { p.WindowFunc = 3, p.GF = 0.5F; }, "GF", "0.5 Hz"},
        {"window name", [](ParamBlock& p) { p.WindowFunc = 4; }, "Window Func.", "Blackman Harris"},
        {"unknown window", [](ParamBlock& p) { p.WindowFunc = -3; }, "Window Func.", ""},
        {"no acquisition mode", [](ParamBlock& p) { p.AcqMode = 0; }, "FFT Mode", nullptr},
        {"acquisition mode", [](ParamBlock& p) { p.AcqMode = 2, p.FFTMode = 1; }, "FFT Mode", "Bruker Corrected"},
    };
    for (const ListCase& c : cases) {
        SCOPED_TRACE(c.name);
        DataSet set;
        c.set(set.par);
        const auto rows = ParameterRows(set);
        const auto row = std::ranges::find(rows, c.label, &ParameterRow::label);
        ASSERT_EQ(row != rows.end(), c.value != nullptr);
        if (c.value != nullptr) {
            EXPECT_EQ(row->value, c.value);
        }
    }
}

TEST(ParameterList, IsSavedAsTextUnderTheNameChosen)
{
    const auto rig = WithSpectrum();
    ScriptedAsker asker{Pressed(forms::kSaveList), Chosen(rig->Path("list.txt")), Pressed(forms::kSaveList),
                        NothingChosen(),           Pressed(forms::kSaveList),     Chosen(rig->Path("no/list.txt")),
                        Pressed("CLOSE")};
    Session s{rig->g, asker, {}, {}, {}, {}};
    rig->g.Slots[0].par.COMNT = "first\nsecond";
    BasicCommand1_Click(s);
    const std::string text = ReadText(rig->folder.path() / "list.txt");
    EXPECT_NE(text.find("Comment\tfirst / second\n"), std::string::npos);
    EXPECT_NE(text.find("ObNuc\t1H\n"), std::string::npos);
    EXPECT_EQ(asker.boxes.size(), 1U) << "the folder that is not there";
}

/// The number of the row with a label.
std::string RowOf(const forms::Values& values, const std::string& label)
{
    for (const auto& [key, value] : values)
        if (key.starts_with("NAME ") && value == label) return key.substr(5);
    ADD_FAILURE() << "no row " << label;
    return "0";
}

TEST(EditParameters, ChangesAreOneStepThatCanBeTakenBack)
{
    const auto rig = WithSpectrum();
    ParamBlock& par = rig->g.Slots[0].par;
    par.PW[1] = 0.123456789F; // more digits than the field shows
    par.CTEMP = 25;
    par.DataChanged = 0;
    ScriptedAsker peek{Pressed("CANCEL")};
    Session look{rig->g, peek, {}, {}, {}, {}};
    m292_Click(look);
    forms::Values values = peek.forms.at(0).values;
    EXPECT_TRUE(rig->g.Undo.empty());
    values["VALUE " + RowOf(values, "Operator")] = "Ben";
    values["VALUE " + RowOf(values, "Scan(Actual)")] = "32";
    values["VALUE " + RowOf(values, "Temperature(Actual)")] = " ";
    values[forms::kComment] = "two\nlines";
    ScriptedAsker asker{Pressed("OK", values)};
    Session s{rig->g, asker, {}, {}, {}, {}};
    m292_Click(s);
    EXPECT_EQ(par.Operator + "|" + par.COMNT, "Ben|two\nlines");
    EXPECT_EQ(par.SCANS, 32);
    EXPECT_EQ(par.CTEMP, kNoTemperature);
    EXPECT_EQ(par.PW[1], 0.123456789F) << "a field left alone keeps its digits";
    EXPECT_EQ(par.DataChanged, 1);
    EXPECT_EQ(rig->g.Undo.Caption(), "UnDo(Change Parameter)");
    m20_Click(s);
    EXPECT_EQ(par.Operator + "|" + par.COMNT, "|");
    EXPECT_EQ(par.CTEMP, 25.0F);
    EXPECT_EQ(par.DataChanged, 0);
    ReDo_Click(s);
    EXPECT_EQ(par.Operator, "Ben");
}

TEST(EditParameters, RichTextGoesWithItsCommentOnly)
{
    const auto rig = WithSpectrum();
    DataSet& set = rig->g.Slots[0];
    set.par.COMNT = set.CommentRtfPlain = "old";
    set.CommentRtf = "{\\rtf1 old}";
    ScriptedAsker asker{Pressed("OK", {{forms::kComment, "new"}, {forms::kCommentRtf, "{\\rtf1\\b new}"}}),
                        Pressed("CANCEL"), Pressed("CANCEL")};
    Session s{rig->g, asker, {}, {}, {}, {}};
    m292_Click(s);
    EXPECT_EQ(set.CommentRtf + set.CommentRtfPlain, "{\\rtf1\\b new}new");
    m292_Click(s);
    m20_Click(s); // takes the comment back
    m292_Click(s);
    const auto rich = [&](std::size_t i) { return asker.forms.at(i).values.at(forms::kCommentRtf); };
    EXPECT_EQ(rich(0), "{\\rtf1 old}");
    EXPECT_EQ(rich(1), "{\\rtf1\\b new}");
    EXPECT_EQ(rich(2), "") << "stale";
}

TEST(AxisLabel, IsEditedForTheUnitShownAndKeptForDataToCome)
{
    const auto rig = WithSpectrum();
    DataSet& set = rig->g.Slots[0];
    rig->g.settings.axis_mode_ppm = 1;
    set.XLabelHz = "\\< old\\>";
    const std::string ppm = set.XLabelPpm;
    set.par.DataChanged = 0;
    ScriptedAsker asker{Pressed("CANCEL", {{forms::kText, "no"}}), Pressed("OK", {{forms::kText, "\\< new\\>"}})};
    Session s{rig->g, asker, {}, {}, {}, {}};
    Edit_Axis_Label(s);
    EXPECT_EQ(set.XLabelHz, "\\< old\\>");
    EXPECT_EQ(set.par.DataChanged, 0);
    Edit_Axis_Label(s);
    EXPECT_EQ(asker.forms.at(1).values.at(forms::kText), "\\< old\\>");
    EXPECT_EQ(set.XLabelHz + rig->g.settings.xlabel_hz, "\\< new\\>\\< new\\>");
    EXPECT_EQ(set.XLabelPpm, ppm);
    EXPECT_TRUE(rig->g.SettingsChanged && set.par.DataChanged == 1);
    EXPECT_EQ(rig->g.Undo.Caption(), "UnDo(Axis Label)");
    m20_Click(s);
    EXPECT_EQ(set.XLabelHz + std::to_string(set.par.DataChanged), "\\< old\\>0");
    EXPECT_NE(rig->g.settings.xlabel_hz, "\\< new\\>");
}

TEST(EditParameters, WhatIsNoNumberIsToldAndTheFormKeepsWhatWasTyped)
{
    const auto rig = WithSpectrum();
    ScriptedAsker peek{Pressed("CANCEL")};
    Session look{rig->g, peek, {}, {}, {}, {}};
    m292_Click(look);
    const forms::Values before = peek.forms.at(0).values;
    for (const char* text : {"many", "", "1e99", "12 34"}) {
        SCOPED_TRACE(text);
        forms::Values wrong = before;
        const std::string row = RowOf(before, "Scan(Set)");
        wrong["VALUE " + row] = text;
        wrong[forms::kSampleId] = "typed";
        ScriptedAsker asker{Pressed("OK", wrong), Pressed("CANCEL")};
        Session s{rig->g, asker, {}, {}, {}, {}};
        m292_Click(s);
        ASSERT_EQ(asker.boxes.size(), 1U);
        EXPECT_EQ(asker.forms.at(1).values.at("VALUE " + row), text);
        EXPECT_EQ(asker.forms.at(1).values.at(forms::kSampleId), "typed");
        EXPECT_EQ(asker.forms.at(1).values.at(forms::kWrong), row);
        EXPECT_EQ(rig->g.Slots[0].par.SampleId, "");
    }
    // "OK" without a change is no step.
    ScriptedAsker asker{Pressed("OK", before)};
    Session s{rig->g, asker, {}, {}, {}, {}};
    m292_Click(s);
    EXPECT_TRUE(rig->g.Undo.empty());
}

TEST(Operators, TheFormsListIsTakenOverClean)
{
    Rig rig{Pressed("CLOSE", {{forms::kNames, "Anna\n Ben \nANNA\n"}}), Pressed("CLOSE")};
    rig.Boot();
    m43_Click(rig.s);
    EXPECT_EQ(rig.g.Operators, (std::vector<std::string>{"Anna", "Ben"}));
    EXPECT_TRUE(rig.g.SettingsChanged);
    m43_Click(rig.s);
    EXPECT_EQ(rig.asker.forms.back().values.at(forms::kNames), "Anna\nBen");
    EXPECT_EQ(rig.g.Operators.size(), 2U);
}

forms::Values Rows(std::initializer_list<std::array<const char*, 3>> rows, bool changed)
{
    forms::Values values{{forms::kCount, std::to_string(rows.size())}, {forms::kChanged, changed ? "1" : "0"}};
    int n = 0;
    for (const auto& row : rows) {
        ++n;
        values[forms::Indexed(forms::kKey, n)] = row[0];
        values[forms::Indexed(forms::kLabel, n)] = row[1];
        values[forms::Indexed(forms::kFormat, n)] = row[2];
    }
    return values;
}

TEST(ParameterFile, IsOpenedEditedAndSavedUnderItsExtension)
{
    Rig rig;
    rig.Boot();
    WriteText(rig.Path("own.prt"), "OBFRQ {Freq} ; ##0.0 MHz\n");
    const forms::Values edited = Rows({{"SLVNT", "Solvent", "@"}, {"", "no key", ""}}, true);
    ScriptedAsker asker{Pressed(forms::kOpenFile, Rows({}, false)), Chosen(rig.Path("own.prt")),
                        Pressed(forms::kSaveFile, edited),          Chosen(rig.Path("own.txt")),
                        Pressed(forms::kSaveFile, edited),          Chosen(rig.Path("new")),
                        Pressed(forms::kClose, Rows({}, false))};
    Session s{rig.g, asker, {}, {}, {}, {}};
    m42_Click(s);
    EXPECT_EQ(asker.forms.at(1).values.at("KEY 1"), "OBFRQ");
    EXPECT_EQ(asker.forms.at(1).values.at(forms::kFile), rig.Path("own.prt"));
    ASSERT_EQ(asker.boxes.size(), 1U);
    EXPECT_EQ(asker.boxes[0].text, "Extension of File is not .PRT");
    EXPECT_FALSE(std::filesystem::exists(rig.Path("own.txt")));
    const auto saved = LoadParamTable(rig.Path("new.prt"));
    ASSERT_TRUE(saved);
    ASSERT_EQ(saved->size(), 1U) << "a row without a key is none";
    EXPECT_EQ(saved->at(0).Label, "Solvent");
    EXPECT_TRUE(rig.g.ParamTable.empty()) << "not the file in use";
}

TEST(ParameterFile, SavingTheFileInUseChangesTheTableOfTheRun)
{
    struct Case {
        const char* name;
        const char* setting;
        const char* file;
    };
    for (const Case& c : {Case{"the shipped one", "", "1D_Eng.prt"}, Case{"one of a setting", "own.prt", "own.prt"}}) {
        SCOPED_TRACE(c.name);
        Rig rig;
        rig.Boot();
        rig.g.settings.parameter_table = c.setting;
        WriteText(rig.Path(c.file), "");
        ScriptedAsker asker{Pressed(forms::kSaveFile, Rows({{"SLVNT", "Solvent", "@"}}, true)),
                            Chosen(rig.Path(c.file)), Pressed(forms::kClose, Rows({}, false))};
        Session s{rig.g, asker, {}, {}, {}, {}};
        m42_Click(s);
        EXPECT_EQ(asker.forms.at(0).values.at(forms::kFile), rig.Path(c.file));
        ASSERT_EQ(rig.g.ParamTable.size(), 1U);
    }
}

TEST(ParameterFile, ChangesAreNotDroppedUnasked)
{
    Rig rig;
    rig.Boot();
    WriteText(rig.Path("1D_Eng.prt"), "OBNUC {Nucleus} ; @\n");
    const forms::Values changed = Rows({{"SLVNT", "Solvent", "@"}}, true);
    ScriptedAsker asker{Pressed(forms::kClose, changed),
                        Button::no,
                        Pressed(forms::kPublicFile, changed),
                        Button::no,
                        Pressed(forms::kPublicFile, changed),
                        Button::yes,
                        Pressed(forms::kClose)};
    Session s{rig.g, asker, {}, {}, {}, {}};
    m42_Click(s);
    EXPECT_EQ(asker.forms.at(2).values.at("KEY 1"), "SLVNT");
    EXPECT_EQ(asker.forms.at(3).values.at("KEY 1"), "OBNUC");
    EXPECT_EQ(asker.boxes.at(0).text, "The Parameter File has been changed! Anyway, close?");
}

TEST(Undo, AReadEmptiesTheStackAndAFailedOneKeepsIt)
{
    Rig rig{Pressed("Do not Save"), Pressed("Do not Save")};
    rig.Boot();
    ASSERT_TRUE(Read_Path(rig.s, WriteBrukerFid(rig.folder.path() / "exp")));
    PushUndoStep(rig.g, UndoKind::add_peak);
    rig.form_answer = "CANCEL";
    EXPECT_FALSE(Read_Path(rig.s, WriteBrukerFid(rig.folder.path() / "exp2")));
    MenuState state = SetMenuActivateForm1(rig.g);
    EXPECT_EQ(state.find("m20")->second.caption, "UnDo(Add Peak)") << "the data came back with their steps";
    EXPECT_TRUE(state.find("m20")->second.enabled);
    rig.form_answer = "OK";
    ASSERT_TRUE(Read_Path(rig.s, WriteBrukerFid(rig.folder.path() / "exp3")));
    state = SetMenuActivateForm1(rig.g);
    EXPECT_EQ(state.find("m20")->second.caption, "UnDo");
    EXPECT_FALSE(state.find("m20")->second.enabled);
    m20_Click(rig.s);
}

TEST(Undo, TheGridIsAStepThatIsDoneAgain)
{
    Rig rig;
    rig.Boot();
    GridChoice choice = GridChoice::From(rig.g.settings);
    choice.x_inc_ppm = 0.25;
    choice.shown = true;
    ScriptedAsker asker{Pressed("OK", choice.ToValues())};
    Session s{rig.g, asker, {}, {}, {}, {}};
    m30_Click(s);
    EXPECT_EQ(rig.g.settings.grid_x_inc, 0.25);
    m20_Click(s);
    EXPECT_EQ(rig.g.settings.grid_x_inc, 1.0);
    EXPECT_EQ(rig.g.settings.display_grid, 0);
    const MenuState state = SetMenuActivateForm1(rig.g);
    EXPECT_EQ(state.find(kRedoControl)->second.caption, "ReDo(Change Grid)");
    ReDo_Click(s);
    EXPECT_EQ(rig.g.settings.display_grid, 1);
}

} // namespace
} // namespace nmr
