// The forms of text tables: what they show of a file, when they may be left, and what they hand back.

#include "form_rig.h"
#include "formats/ascii.h"
#include "formats/csv_choice.h"
#include "session/forms.h"
#include "ui/form_dialogs.h"

#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>

namespace nmr {
namespace {

using namespace test;

QPushButton& Button(QWidget& form, const QString& caption)
{
    for (auto* button : form.findChildren<QPushButton*>())
        if (button->text() == caption) return *button;
    throw std::runtime_error("no button " + caption.toStdString());
}

constexpr char kFile[] = "Time (ms);real;imag\n0;1,5;2\n0,5;3;4\n1;5;6\n1,5;7;8\n";

TEST(CsvForm, ShowsTheColumnsAndWantsWhatTheFileLacks)
{
    App();
    const CsvChoice found = ProposeCsv(kFile);
    WhenModal([](QDialog& form) {
        auto& table = Find<QTableWidget>(form, {});
        EXPECT_EQ(table.columnCount(), 3);
        EXPECT_EQ(table.horizontalHeaderItem(0)->text(), "1: ms");
        EXPECT_EQ(table.horizontalHeaderItem(2)->text(), "3: imaginary");
        EXPECT_EQ(table.item(2, 0)->text(), "0,5");
        QPushButton& ok = Button(form, "OK");
        EXPECT_FALSE(ok.isEnabled()) << "no frequency yet";
        Write(Find<QLineEdit>(form, "OFR"), "61.4");
        EXPECT_TRUE(ok.isEnabled()) << Find<QLineEdit>(form, "OBNUC").text().toStdString();
        Find<QLineEdit>(form, "OBNUC").clear();
        EXPECT_FALSE(ok.isEnabled());
        Write(Find<QLineEdit>(form, "OBNUC"), "2H");
        EXPECT_TRUE(ok.isEnabled());
        ok.click();
    });
    const FormAnswer answer = NMR1D_Form103_CSV({kCsvForm, found.ToValues()}, nullptr);
    EXPECT_EQ(answer.dialog_result, forms::kOk);
    const CsvChoice choice(answer.values);
    EXPECT_EQ(choice.Summary(), found.Summary());
    EXPECT_EQ(choice.Parameter("OFR"), "61.4");
    EXPECT_EQ(choice.Parameter("OBNUC"), "2H");
    EXPECT_EQ(choice.Missing(), "");
}

TEST(CsvForm, CancelHandsNothingBack)
{
    App();
    WhenModal([](QDialog& form) { Button(form, "Cancel").click(); });
    EXPECT_EQ(NMR1D_Form103_CSV({kCsvForm, ProposeCsv(kFile).ToValues()}, nullptr).dialog_result, forms::kCancel);
}

TEST(AsciiForm, AnswersWithTheWordOfItsChoice)
{
    App();
    struct Case {
        int option, points;
        bool quit;
        const char* word;
    };
    for (const Case& c : {Case{0, 0, false, "R, 5000"}, Case{1, 1, false, "R1, 4096"}, Case{2, 4, false, "R2, 512"},
                          Case{3, 0, false, "D, 5000"}, Case{1, 1, true, "CANCEL"}}) {
        SCOPED_TRACE(c.word);
        WhenModal([&](QDialog& form) {
            form.findChildren<QRadioButton*>().at(c.option)->click();
            Find<QComboBox>(form, "Combo1").setCurrentIndex(c.points);
            Button(form, c.quit ? "Quit" : "OK").click();
        });
        const FormAnswer answer = NMR1D_Form104({forms::kAsciiData, {{forms::kPoints, "5000"}}}, nullptr);
        EXPECT_EQ(answer.dialog_result, c.word);
        EXPECT_EQ(ParseAsciiWord(answer.dialog_result).has_value(), !c.quit);
    }
}

} // namespace
} // namespace nmr
