// The forms of history, operators and parameters, pressed and typed into.

#include "form_rig.h"
#include "session/forms.h"
#include "ui/form_dialogs.h"

#include <QComboBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>

namespace nmr {
namespace {

using namespace test;
using namespace forms;

QPushButton& ButtonOf(QDialog& form, const QString& caption)
{
    for (auto* button : form.findChildren<QPushButton*>())
        if (button->text() == caption) return *button;
    throw std::runtime_error("no button " + caption.toStdString());
}

QTableWidget& GridOf(QDialog& form)
{
    return *form.findChild<QTableWidget*>();
}

Values Table(std::initializer_list<std::array<const char*, 3>> rows)
{
    Values values{{kCount, std::to_string(rows.size())}};
    int n = 0;
    for (const auto& row : rows) {
        ++n;
        values[Indexed(kKey, n)] = row[0];
        values[Indexed(kLabel, n)] = row[1];
        values[Indexed(kFormat, n)] = row[2];
    }
    return values;
}

TEST(OperatorForm, AddsAndDeletesAndRefusesNothingUnseen)
{
    App();
    WhenModal([](QDialog& form) {
        auto& name = Find<QLineEdit>(form, "Text1");
        auto& list = Find<QListWidget>(form, "List1");
        EXPECT_FALSE(ButtonOf(form, "Add").isEnabled());
        EXPECT_FALSE(ButtonOf(form, "Delete").isEnabled());
        Type(name, "Clara");
        EXPECT_EQ(list.count(), 3);
        EXPECT_TRUE(form.isVisible()) << "Enter adds and does not close";
        Type(name, "anna");
        EXPECT_EQ(list.count(), 3);
        EXPECT_EQ(list.currentItem()->text(), "Anna");
        ButtonOf(form, "Delete").click();
        EXPECT_EQ(list.count(), 2);
        ButtonOf(form, "Close").click();
    });
    const FormAnswer answer = Operator_Form22({kOperatorForm, {{kNames, "Anna\nBen"}}}, nullptr);
    EXPECT_EQ(Text(answer.values, kNames), "Ben\nClara");
}

TEST(ParameterEditor, HandsBackWhatStandsInItsCells)
{
    App();
    const Values values{{kCount, "3"},        {"NAME 1", "Operator"}, {"KIND 1", kListRow},  {"VALUE 1", "Anna"},
                        {"NAME 2", "Scan"},   {"KIND 2", kNumberRow}, {"VALUE 2", "16"},     {"NAME 3", "Solvent"},
                        {"KIND 3", kTextRow}, {"VALUE 3", "CDCl3"},   {kNames, "Anna\nBen"}, {kComment, "two\nlines"}};
    WhenModal([](QDialog& form) {
        Settle(form);
        auto& grid = GridOf(form);
        auto* names = qobject_cast<QComboBox*>(grid.cellWidget(0, 1));
        ASSERT_NE(names, nullptr);
        EXPECT_EQ(names->count(), 2);
        names->setCurrentText("Ben");
        grid.setCurrentCell(1, 1);
        grid.editItem(grid.item(1, 1));
        auto* edit = grid.findChild<QLineEdit*>("TextForEdit");
        ASSERT_NE(edit, nullptr);
        Write(*edit, "3x2"); // the letter is not taken
        EXPECT_EQ(edit->text(), "32");
        Key(*edit, Qt::Key_Return);
        QCoreApplication::processEvents(); // the cell takes the text behind the key
        EXPECT_EQ(grid.item(1, 1)->text(), "32");
        Find<QPlainTextEdit>(form, "Comment").appendPlainText("three");
        ButtonOf(form, "OK").click();
    });
    const FormAnswer answer = NMR1D_Form103({kParameterEditor, values}, nullptr);
    EXPECT_EQ(answer.dialog_result, kOk);
    EXPECT_EQ(Text(answer.values, "VALUE 1"), "Ben");
    EXPECT_EQ(Text(answer.values, "VALUE 2"), "32");
    EXPECT_EQ(Text(answer.values, "VALUE 3"), "CDCl3");
    EXPECT_EQ(Text(answer.values, kComment), "two\nlines\nthree");
}

TEST(ParameterFileForm, EditsCanBeTakenBackAndDoneAgain)
{
    App();
    WhenModal([](QDialog& form) {
        Settle(form);
        auto& grid = GridOf(form);
        EXPECT_FALSE(ButtonOf(form, "UnDo").isEnabled());
        grid.item(1, 2)->setText("##0.0 MHz");
        grid.setCurrentCell(0, 0);
        ButtonOf(form, "Down").click();
        EXPECT_EQ(grid.item(1, 0)->text(), "SLVNT");
        ButtonOf(form, "Delete Row").click();
        EXPECT_EQ(grid.rowCount(), 1);
        for (int i = 0; i < 2; ++i) ButtonOf(form, "UnDo").click();
        EXPECT_EQ(grid.rowCount(), 2);
        EXPECT_EQ(grid.item(0, 0)->text(), "SLVNT");
        EXPECT_EQ(grid.item(1, 2)->text(), "##0.0 MHz");
        ButtonOf(form, "UnDo").click();
        EXPECT_EQ(grid.item(1, 2)->text(), "@");
        EXPECT_FALSE(ButtonOf(form, "UnDo").isEnabled());
        grid.setCurrentCell(1, 0);
        ButtonOf(form, "Add Row").click();
        EXPECT_EQ(grid.rowCount(), 3);
        ButtonOf(form, "Save...").click();
    });
    const FormAnswer answer =
        Form17({kParameterFile, Table({{"SLVNT", "Solvent", "@"}, {"OBFRQ", "Freq", "@"}})}, nullptr);
    EXPECT_EQ(answer.dialog_result, kSaveFile);
    EXPECT_EQ(Text(answer.values, kCount), "3");
    EXPECT_EQ(Text(answer.values, kChanged), "1");
    EXPECT_EQ(Text(answer.values, "KEY 2"), "OBFRQ");
}

TEST(ParameterFileForm, ItsStepsOutliveAButtonThatClosesIt)
{
    App();
    Values values = Table({{"SLVNT", "Solvent", "@"}, {"OBFRQ", "Freq", "@"}});
    const auto show = [&](std::function<void(QDialog&, QTableWidget&)> act) {
        WhenModal([act](QDialog& form) {
            Settle(form);
            act(form, GridOf(form));
            ButtonOf(form, "Save...").click();
        });
        values = Form17({kParameterFile, values}, nullptr).values;
        values[kChanged] = "0"; // as after a save
    };
    show([](QDialog& form, QTableWidget& grid) {
        for (const char* label : {"A", "B", "C"}) grid.item(0, 1)->setText(label);
        ButtonOf(form, "UnDo").click();
        EXPECT_EQ(grid.item(0, 1)->text(), "B");
    });
    show([](QDialog& form, QTableWidget& grid) {
        ButtonOf(form, "ReDo").click();
        EXPECT_EQ(grid.item(0, 1)->text(), "C");
        EXPECT_FALSE(ButtonOf(form, "ReDo").isEnabled());
        for (int i = 0; i < 2; ++i) ButtonOf(form, "UnDo").click();
        EXPECT_EQ(grid.item(0, 1)->text(), "A");
    });
    EXPECT_EQ(Text(values, "LABEL 1"), "A");
    show([](QDialog& form, QTableWidget& grid) {
        ButtonOf(form, "UnDo").click();
        EXPECT_EQ(grid.item(0, 1)->text(), "Solvent");
        EXPECT_FALSE(ButtonOf(form, "UnDo").isEnabled());
    });
}

TEST(ParameterList, SaveListIsItsOwnAnswer)
{
    App();
    for (const bool save : {true, false}) {
        WhenModal([&](QDialog& form) {
            EXPECT_EQ(GridOf(form).item(0, 1)->text(), "one two");
            ButtonOf(form, save ? "Save List" : "Close").click();
        });
        const FormAnswer answer =
            NMR1D_ListView({kParameterList, {{kCount, "1"}, {"NAME 1", "Comment"}, {"VALUE 1", "one\ntwo"}}}, nullptr);
        EXPECT_EQ(answer.dialog_result, save ? kSaveList : kClose);
    }
}

} // namespace
} // namespace nmr
