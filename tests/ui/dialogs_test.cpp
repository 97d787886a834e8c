// The window dialog and the small forms: limits, what "Cancel" puts back, and the answers.

#include "fid/window.h"
#include "form_rig.h"
#include "session/display_scope.h"
#include "session/forms.h"
#include "ui/form_dialogs.h"
#include "ui/window_dialog.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTextEdit>

#include <algorithm>

namespace nmr {
namespace {

using namespace test;
using forms::Values;

constexpr auto kNothing = [] {};

QAbstractButton& Captioned(QWidget& form, const QString& caption)
{
    for (auto* button : form.findChildren<QAbstractButton*>())
        if (button->text() == caption) return *button;
    throw std::runtime_error("no button " + caption.toStdString());
}

// ---- window dialog

TEST(WindowDialog, ExpressionIsEditedAndPutBack)
{
    const std::string mine = "\\< f(\\i1 t\\i0 )=1\\>";
    FormRig rig(1024, 1, {ScriptedAsker::Answer{FormAnswer{"OK", {{forms::kText, mine}}}}});
    WindowDialog dialog(rig.form, kNothing, nullptr);
    const std::string first = rig.g.settings.function_exponent;
    Captioned(dialog, "Edit Function Expression").click();
    EXPECT_EQ(rig.g.settings.function_exponent, mine);
    EXPECT_TRUE(rig.g.SettingsChanged);
    Captioned(dialog, "Set Initial Expression").click();
    EXPECT_EQ(rig.g.settings.function_exponent, first);
}

struct LimitCase {
    const char* name;
    WindowKind kind;
    const char* field;
    const char* typed;
    const char* shown;
};

// Sine, Hann and Blackman Harris from 0 to 100, corners 0, 0, 80 and 100 percent.
const LimitCase kLimits[] = {
    {"broadening", WindowKind::exponential, "Broadening factor BF (Hz)", "1.5", "1.5"},
    {"negative broadening", WindowKind::exponential, "Broadening factor BF (Hz)", "-1", "0"},
    {"negative Gauss factor", WindowKind::gaussian, "Gauss factor GF (Hz)", "-0.1", "0"},
    {"negative Gauss broadening", WindowKind::gaussian, "Broadening factor BF (Hz)", "-3", "0"},
    {"centre too far right", WindowKind::gaussian, "Func.Center(%)", "120", "110"},
    {"centre too far left", WindowKind::gaussian, "Func.Center(%)", "-1", "0"},
    {"start near its end", WindowKind::sine_bell, "Start WS (%)", "95", "90"},
    {"start too far left", WindowKind::hann, "Start WS (%)", "-101", "-100"},
    {"end near its start", WindowKind::hann, "End WE (%)", "3", "10"},
    {"end too far right", WindowKind::blackman_harris, "End WE (%)", "201", "200"},
    {"left bottom beyond left top", WindowKind::exponential, "Left bottom (%)", "5", "0"},
    {"left bottom too far left", WindowKind::exponential, "Left bottom (%)", "-150", "-100"},
    {"left top near right top", WindowKind::exponential, "Left top (%)", "75", "70"},
    {"left top before left bottom", WindowKind::exponential, "Left top (%)", "-5", "0"},
    {"right top beyond right bottom", WindowKind::exponential, "Right top (%)", "130", "100"},
    {"right top near left top", WindowKind::exponential, "Right top (%)", "4", "10"},
    {"right bottom before right top", WindowKind::exponential, "Right bottom (%)", "20", "80"},
    {"right bottom too far right", WindowKind::exponential, "Right bottom (%)", "500", "200"},
};

TEST(WindowDialog, FieldsPutBackTheNearestLimit)
{
    for (const LimitCase& c : kLimits) {
        SCOPED_TRACE(c.name);
        FormRig rig(1024);
        ASSERT_TRUE(rig.form.SetWindowKind(c.kind));
        int changes = 0;
        WindowDialog dialog(
            rig.form, [&] { ++changes; }, nullptr);
        auto& edit = Find<QLineEdit>(dialog, c.field);
        Type(edit, c.typed);
        EXPECT_EQ(edit.text(), c.shown);
        EXPECT_EQ(changes, 1);
    }
}

TEST(WindowDialog, NoNumberIsReportedAndChangesNothing)
{
    FormRig rig(1024);
    WindowDialog dialog(rig.form, kNothing, nullptr);
    auto& edit = Find<QLineEdit>(dialog, "Broadening factor BF (Hz)");
    Type(edit, "0.5x");
    EXPECT_EQ(edit.text(), "0.25");
    EXPECT_EQ(rig.par().BF1, 0.25F);
    EXPECT_EQ(rig.asker.boxes.size(), 1U);
}

TEST(WindowDialog, ArrowsStepByTenthsOfAHertzAndByPercents)
{
    FormRig rig(1024);
    ASSERT_TRUE(rig.form.SetWindowKind(WindowKind::gaussian));
    WindowDialog dialog(rig.form, kNothing, nullptr);
    Find<QCheckBox>(dialog, "Check1").click(); // its corners are fields of their own now
    struct Case {
        const char* field;
        int key;
        const char* shown;
    };
    const Case cases[] = {{"Gauss factor GF (Hz)", Qt::Key_Up, "0.3"}, // cut to a tenth first
                          {"Gauss factor GF (Hz)", Qt::Key_Up, "0.4"},
                          {"Gauss factor GF (Hz)", Qt::Key_Down, "0.3"},
                          {"Broadening factor BF (Hz)", Qt::Key_Down, "0"},
                          {"Broadening factor BF (Hz)", Qt::Key_Down, "0"},
                          {"Func.Center(%)", Qt::Key_Up, "1"},
                          {"Right top (%)", Qt::Key_Down, "79"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field);
        auto& edit = Find<QLineEdit>(dialog, c.field);
        Key(edit, c.key);
        EXPECT_EQ(edit.text(), c.shown);
    }
}

TEST(WindowDialog, TitleAndFieldsAreThoseOfTheFunction)
{
    struct Case {
        WindowKind kind;
        const char* title;
        int fields; ///< with the four corners
    };
    const Case cases[] = {{WindowKind::exponential, "Set Window Function(Exponential)", 5},
                          {WindowKind::gaussian, "Set Window Function(Gauss Function)", 7},
                          {WindowKind::sine_bell, "Set Window Function(Sine Bell)", 6},
                          {WindowKind::hann, "Set Window Function(Squared Sine Bell)", 6},
                          {WindowKind::blackman_harris, "Set Window Function(Blackman Harris)", 6}};
    FormRig rig(1024);
    for (const Case& c : cases) {
        ASSERT_TRUE(rig.form.SetWindowKind(c.kind));
        const WindowDialog dialog(rig.form, kNothing, nullptr);
        EXPECT_EQ(dialog.windowTitle(), c.title);
        EXPECT_EQ(dialog.findChildren<QLineEdit*>().size(), c.fields);
    }
}

TEST(WindowDialog, CancelPutsAllBackAndFixKeeps)
{
    for (const bool fix : {false, true}) {
        SCOPED_TRACE(fix);
        FormRig rig(1024);
        ASSERT_TRUE(rig.form.SetWindowKind(WindowKind::sine_bell));
        const ParamBlock before = rig.par();
        const auto curve = rig.g.WindowCurve.from_zero();
        const std::vector<float> old_curve(curve.begin(), curve.end());
        WindowDialog dialog(rig.form, kNothing, nullptr);
        Settle(dialog);
        auto& multiply = Find<QCheckBox>(dialog, "Check1");
        EXPECT_FALSE(multiply.isChecked());
        multiply.click();
        EXPECT_EQ(rig.par().WinFlags[1], 0);
        Type(Find<QLineEdit>(dialog, "Start WS (%)"), "-20");
        Type(Find<QLineEdit>(dialog, "End WE (%)"), "60");
        Type(Find<QLineEdit>(dialog, "Right bottom (%)"), "90");
        Write(Find<QLineEdit>(dialog, "Left bottom (%)"), "-3"); // not finished
        const auto live = rig.g.WindowCurve.from_zero();
        EXPECT_FALSE(std::ranges::equal(live, old_curve));
        Captioned(dialog, fix ? "Fix" : "Cancel").click();
        EXPECT_FALSE(dialog.isVisible());
        const ParamBlock& now = rig.par();
        EXPECT_EQ(now.WinStart3, fix ? -20 : before.WinStart3);
        EXPECT_EQ(now.WinEnd3, fix ? 60 : before.WinEnd3);
        EXPECT_EQ(now.Trap[0], fix ? -3 : before.Trap[0]);
        EXPECT_EQ(now.Trap[3], fix ? 90 : before.Trap[3]);
        EXPECT_EQ(now.WinFlags[1], fix ? 0 : before.WinFlags[1]);
        EXPECT_EQ(std::ranges::equal(rig.g.WindowCurve.from_zero(), old_curve), !fix);
        EXPECT_EQ(rig.g.DialogResult, fix ? "OK" : "CANCEL");
    }
}

// ---- small forms

using Form = FormAnswer (*)(const FormRequest&, QWidget*);
using Act = std::function<void(QDialog&)>;

struct FormCase {
    const char* name;
    Form show;
    Values request;
    Act act;
    const char* result;
    Values values; ///< those that the answer must hold, among others
};

Act Press(std::vector<QString> captions)
{
    return [=](QDialog& form) {
        for (const QString& caption : captions) Captioned(form, caption).click();
    };
}

void Check(const FormCase& c)
{
    SCOPED_TRACE(c.name);
    WhenModal(c.act);
    const FormAnswer answer = c.show({"", c.request}, nullptr);
    EXPECT_EQ(answer.dialog_result, c.result);
    for (const auto& [key, value] : c.values) {
        ASSERT_TRUE(answer.values.contains(key)) << key;
        EXPECT_EQ(answer.values.at(key), value) << key;
    }
}

TEST(SmallForms, Choices)
{
    App();
    const Act escape = [](QDialog& form) { Key(form, Qt::Key_Escape); };
    const Act enter = [](QDialog& form) { Key(form, Qt::Key_Return); };
    const Values question{{"TITLE", "Caution!"}, {"TEXT", "Data was Changed"}, {"COUNT", "3"},
                          {"BUTTON 1", "Save"},  {"BUTTON 2", "Do not Save"},  {"BUTTON 3", "Cancel"}};
    const FormCase cases[] = {
        {"102 at once", NMR1D_Form102, {}, enter, "0", {}},
        {"102 transformed", NMR1D_Form102, {}, Press({"Transformed Data", "OK"}), "1", {}},
        {"102 left", NMR1D_Form102, {}, escape, "CANCEL", {}},
        {"120 first", Form120, {}, enter, "LONG", {}},
        {"120 single", Form120, {}, Press({"Floating point, 32 bits (single)", "OK"}), "SINGLE", {}},
        {"120 double", Form120, {}, Press({"Floating point, 64 bits (double)", "OK"}), "DOUBLE", {}},
        {"23 first", NMR1D_Form23, {}, enter, "NON", {}},
        {"23 delete", NMR1D_Form23, {}, Press({"Delete present Multi Spectra ", "OK"}), "ALL", {}},
        {"23 left", NMR1D_Form23, {}, Press({"Delete present Multi Spectra ", "Cancel"}), "CANCEL", {}},
        {"21 at once", NMR1D_Form21, {}, enter, "FIRST", {}},
        {"21 last", NMR1D_Form21, {}, Press({"The Last Data (T1)", "OK"}), "LAST", {}},
        {"21 left", NMR1D_Form21, {}, escape, "CANCEL", {}},
        {"20 by file", NMR1D_Form20, {{"ROWS", "4"}}, enter, "OK", {{"MODE", "1"}, {"DESCENDING", "0"}}},
        {"20 by parameter, falling",
         NMR1D_Form20,
         {{"ROWS", "4"}},
         Press({"Read as Array Data(According to Parameter)", "Large => Small", "OK"}),
         "OK",
         {{"MODE", "2"}, {"DESCENDING", "1"}}},
        {"20 order without a parameter",
         NMR1D_Form20,
         {{"ROWS", "4"}},
         Press({"Read as DEPT Data", "Large => Small", "OK"}),
         "OK",
         {{"MODE", "4"}, {"DESCENDING", "0"}}},
        {"20 left", NMR1D_Form20, {{"ROWS", "4"}}, escape, "CANCEL", {}},
        {"110 first", Form110, question, Press({"Save"}), "Save", {}},
        {"110 second", Form110, question, Press({"Do not Save"}), "Do not Save", {}},
        {"110 left", Form110, question, escape, "Cancel", {}},
        {"110 at once", Form110, question, enter, "Cancel", {}},
    };
    for (const FormCase& c : cases) Check(c);
}

TEST(SmallForms, Lists)
{
    App();
    const Values users{{"USERS", "ANNA\nBEN"}, {"LATEST", "BEN"}};
    const Values types{{"EXPRESSION 2", "*.abc"}, {"DESCRIPTION 2", "My File"}};
    const auto field = [](QDialog& form) -> QLineEdit& { return *form.findChild<QLineEdit*>(); };
    const FormCase cases[] = {
        {"01 latest", NMR1D_Form01, users, Press({"OK"}), "OK", {{"NAME", "BEN"}, {"DO NOT OPEN", "0"}}},
        {"01 picked",
         NMR1D_Form01,
         users,
         [](QDialog& form) {
             form.findChild<QListWidget*>()->setCurrentRow(0);
             Press({"Do not open this window next time.", "OK"})(form);
         },
         "OK",
         {{"NAME", "ANNA"}, {"DO NOT OPEN", "1"}}},
        {"01 new",
         NMR1D_Form01,
         users,
         [&](QDialog& form) {
             Write(field(form), "Carl");
             Press({"OK"})(form);
         },
         "OK",
         {{"NAME", "Carl"}}},
        {"01 quit", NMR1D_Form01, users, Press({"Quit"}), "CLOSE", {}},
        {"101 as it was",
         NMR1D_Form101,
         types,
         Press({"OK"}),
         "OK",
         {{"EXPRESSION 1", ""}, {"EXPRESSION 2", "*.abc"}, {"DESCRIPTION 2", "My File"}, {"EXPRESSION 5", ""}}},
        {"101 picked from the table, then left",
         NMR1D_Form101,
         types,
         [](QDialog& form) {
             auto* box = form.findChildren<QComboBox*>().front();
             const int row = box->findText("fid;*.bruf");
             box->setCurrentIndex(row);
             emit box->activated(row);
             Press({"Cancel"})(form);
         },
         "CANCEL",
         {{"EXPRESSION 1", "fid;*.bruf"}, {"DESCRIPTION 1", "Bruker(FID) File"}}},
    };
    for (const FormCase& c : cases) Check(c);
}

TEST(SmallForms, FilesOfAnInstrumentFollowTheList)
{
    App();
    const Values rows{{"COUNT", "2"},  {"NAME 1", "A"},      {"REQUIRED 1", "a1"}, {"NOTES 1", "a2"},
                      {"NAME 2", "B"}, {"REQUIRED 2", "b1"}, {"NOTES 2", "b2"}};
    const Act act = [](QDialog& form) {
        const auto texts = form.findChildren<QTextEdit*>();
        EXPECT_EQ(texts[0]->toPlainText(), "a1");
        form.findChild<QListWidget*>()->setCurrentRow(1);
        EXPECT_EQ(texts[0]->toPlainText(), "b1");
        EXPECT_EQ(texts[1]->toPlainText(), "b2");
        Captioned(form, "Close").click();
    };
    Check({"93", NMR1D_Form93, rows, act, "CLOSE", {}});
}

TEST(SmallForms, DisplayScopeKeepsItsUnitsInStep)
{
    FormRig rig;
    rig.g.ViewLeft = 10;
    rig.g.ViewRight = 0;
    const auto request = DisplayScope(rig.g).ToValues();
    // Fields in the order left ppm, right ppm, left Hz, right Hz, left kHz, right kHz.
    const auto edits = [](QDialog& form) { return form.findChildren<QLineEdit*>(); };
    WhenModal([&](QDialog& form) {
        Write(*edits(form)[2], "3200"); // at 400 MHz
        EXPECT_EQ(edits(form)[0]->text(), "8");
        EXPECT_EQ(edits(form)[4]->text(), "3.2");
        Write(*edits(form)[1], "8");
        EXPECT_FALSE(Captioned(form, "OK").isEnabled()) << "both ends are the same";
        Write(*edits(form)[1], "-1");
        Captioned(form, "OK").click();
    });
    FormAnswer answer = NMR1D_Form31({"NMR1D_Form31", request}, nullptr);
    EXPECT_EQ(answer.dialog_result, "OK");
    EXPECT_TRUE(DisplayScope(answer.values).Apply(rig.g));
    EXPECT_EQ(rig.g.ViewLeft, 8);
    EXPECT_EQ(rig.g.ViewRight, -1);

    WhenModal(Press({"Set Default Value-2", "OK"}));
    answer = NMR1D_Form31({"NMR1D_Form31", request}, nullptr);
    EXPECT_EQ(DisplayScope(answer.values).Get(ScopeEdge::left, XUnit::ppm), 8); // the third area of 1H
    WhenModal([&](QDialog& form) {
        const auto steps = form.findChildren<QComboBox*>();
        EXPECT_FALSE(steps[0]->isEnabled());
        Find<QAbstractButton>(form, "TicIndividual").click();
        steps[0]->setCurrentText("0.25");
        Captioned(form, "OK").click();
    });
    answer = NMR1D_Form31({"NMR1D_Form31", request}, nullptr);
    EXPECT_TRUE(TickChoice::From(answer.values).individual);
    EXPECT_EQ(TickChoice::From(answer.values).steps.step_ppm, 0.25);
    WhenModal(Press({"Default Areas..."}));
    EXPECT_EQ(NMR1D_Form31({"NMR1D_Form31", request}, nullptr).dialog_result, "AREAS");
    WhenModal(Press({"Cancel"}));
    EXPECT_EQ(NMR1D_Form31({"NMR1D_Form31", request}, nullptr).dialog_result, "CANCEL");
}

TEST(SmallForms, DefaultAreasChangeOnlyWhatWasTyped)
{
    FormRig rig;
    const DefaultAreas before(rig.g.settings);
    WhenModal([](QDialog& form) {
        const auto* page = form.findChild<QTabWidget*>()->currentWidget();
        Write(*page->findChildren<QLineEdit*>()[4], "12.5"); // 1H, second row, left ppm
        Captioned(form, "OK").click();
    });
    const FormAnswer answer = NMR1D_Form34({"NMR1D_Form34", before.ToValues()}, nullptr);
    auto expected = before;
    ASSERT_TRUE(expected.Set(0, XUnit::ppm, 2, ScopeEdge::left, 12.5));
    EXPECT_EQ(answer.values, expected.ToValues());
}

TEST(SmallForms, GridStepsCountOnlyWithoutAuto)
{
    FormRig rig;
    WhenModal([](QDialog& form) {
        const auto steps = form.findChildren<QComboBox*>();
        EXPECT_FALSE(steps[0]->isEnabled());
        form.findChildren<QCheckBox*>()[1]->click(); // automatic steps of x
        EXPECT_TRUE(steps[0]->isEnabled());
        EXPECT_FALSE(steps[2]->isEnabled());
        steps[0]->setCurrentText("0.25");
        steps[1]->setCurrentIndex(steps[1]->findText("5E+6"));
        Captioned(form, "Show the grid").click();
        Captioned(form, "OK").click();
    });
    const FormAnswer answer = NMR1D_Form33({"NMR1D_Form33", GridChoice::From(rig.g.settings).ToValues()}, nullptr);
    const GridChoice grid = GridChoice::From(answer.values);
    EXPECT_TRUE(grid.shown);
    EXPECT_FALSE(grid.x_auto);
    EXPECT_TRUE(grid.y_auto);
    EXPECT_EQ(grid.x_inc_ppm, 0.25);
    EXPECT_EQ(grid.x_inc_hz, 5e6);
}

} // namespace
} // namespace nmr
