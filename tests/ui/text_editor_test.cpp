// The editors of formatted texts: what they show, write and hand back.

#include "layout/code_rtf.h"
#include "session/text_forms.h"
#include "ui/code_picture.h"
#include "ui/form_dialogs.h"
#include "ui/text_editor.h"
#include "ui/text_field.h"
#include "window_rig.h"

#include <QClipboard>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>
#include <QToolButton>

namespace nmr {
namespace {

using namespace test;
using namespace forms;

void WriteLetters(QWidget& pane, const QString& letters)
{
    for (const QChar letter : letters) Key(pane, 0, letter);
}

QPushButton& ButtonOf(QWidget& form, const QString& caption)
{
    for (auto* button : form.findChildren<QPushButton*>())
        if (button->text() == caption) return *button;
    throw std::runtime_error("no button " + caption.toStdString());
}

/// Presses a button of the tool bar by its name, or writes letters.
struct Step {
    enum Kind { type, press, select_all } kind;
    const char* what = "";
};

TEST(TextEditor, ToolBarAndKeysWriteCodes)
{
    App();
    struct Case {
        const char *name, *text;
        std::vector<Step> steps;
        const char *rich, *codes;
    };
    const Case cases[] = {
        {"left alone", "\\<\\i1 \\i1 a\\>", {}, "\\<\\i1 \\i1 a\\>", "\\<\\i1 \\i1 a\\>"},
        {"empty", "", {}, "", ""},
        {"typed behind", "\\< a\\>", {{Step::type, "b"}}, "\\< ab\\>", nullptr},
        {"superscript",
         "",
         {{Step::press, "Super"}, {Step::type, "13"}, {Step::press, "Super"}, {Step::type, "C"}},
         "\\< \\+1 13\\+0 C\\>",
         nullptr},
        {"selected",
         "\\< ab\\>",
         {{Step::select_all}, {Step::press, "Bold"}, {Step::press, "Sub"}},
         "\\< \\b1 \\-1 ab\\>",
         "\\b1 \\-1 \\-0 \\b0 \\< ab\\>"},
        {"Greek typed", "", {{Step::press, "Greek"}, {Step::type, "dD"}}, "\\< \\g1 dD\\>", nullptr},
        {"Greek selected", "\\< d\\>", {{Step::select_all}, {Step::press, "Greek"}}, "\\< \\g1 d\\>", nullptr},
        {"taken back", "\\< a\\>", {{Step::type, "b"}, {Step::press, "UnDo"}}, "\\< a\\>", nullptr},
        {"done again",
         "\\< a\\>",
         {{Step::type, "b"}, {Step::press, "UnDo"}, {Step::press, "ReDo"}},
         "\\< ab\\>",
         nullptr},
        {"a line", "\\< a\\>", {{Step::type, "\n"}, {Step::type, "b"}}, "\\< a\\cr b\\>", nullptr},
    };
    for (const Case& c : cases)
        for (const auto kind : {TextEditor::Kind::rich, TextEditor::Kind::codes}) {
            const bool rich = kind == TextEditor::Kind::rich;
            const char* expected = rich ? c.rich : c.codes;
            if (expected == nullptr || (!rich && c.steps.size() > 1)) continue;
            SCOPED_TRACE(testing::Message() << c.name << (rich ? ", rich" : ", codes"));
            TextEditor editor(kind, c.text, FontSpec{}, nullptr);
            Settle(editor);
            QWidget& pane = Find<QWidget>(editor, rich ? "RichTextBox1" : "Text1");
            for (const Step& step : c.steps) {
                if (step.kind == Step::press) Find<QToolButton>(editor, step.what).click();
                if (step.kind == Step::select_all) Find<QTextEdit>(editor, "RichTextBox1").selectAll();
                if (step.kind == Step::type && step.what[0] == '\n')
                    Key(pane, Qt::Key_Return, "\r");
                else if (step.kind == Step::type)
                    WriteLetters(pane, step.what);
            }
            EXPECT_EQ(editor.code(), expected);
        }
}

TEST(TextEditor, CodesGoAroundTheSelection)
{
    App();
    TextEditor editor(TextEditor::Kind::codes, "\\< ab\\>", FontSpec{}, nullptr);
    auto& pane = Find<QPlainTextEdit>(editor, "Text1");
    QTextCursor cursor = pane.textCursor();
    cursor.setPosition(3);
    cursor.setPosition(4, QTextCursor::KeepAnchor);
    pane.setTextCursor(cursor);
    Find<QToolButton>(editor, "Italic").click();
    EXPECT_EQ(editor.code(), "\\< \\i1 a\\i0 b\\>");
    Find<QToolButton>(editor, "UnDo").click();
    EXPECT_EQ(editor.code(), "\\< ab\\>");
    const QSize small = Find<CodePicture>(editor, "Picture1").sizeHint();
    pane.setPlainText("\\< abcdef\\p:40: gh\\>");
    EXPECT_GT(Find<CodePicture>(editor, "Picture1").sizeHint().width(), small.width()) << "the picture follows";
    EXPECT_GT(Find<CodePicture>(editor, "Picture1").sizeHint().height(), small.height() * 0.99);
}

TEST(TextEditor, AnyTextSurvivesTheRichPane)
{
    App();
    const FontSpec font;
    const char* texts[] = {"\\< \\g1 d\\g0 /ppm",
                           "\\< \\f:Courier: \\p:7.5: \\c:a0b0c: \\s1 \\u1 x\\tb y\\cr \\cr z\\>",
                           "\\<   f(\\i1 t\\i0 ) = exp( \\g1 - p\\f0  ·BF \\>",
                           "5\\i(abc)\\+(2)",
                           "\\< a\\\\b\\>",
                           "\\< \\g1 \\'a5:\\g0 \xF0\x9D\x84\x9E\\>"};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        TextEditor editor(TextEditor::Kind::rich, text, font, nullptr);
        auto& pane = Find<QTextEdit>(editor, "RichTextBox1");
        pane.insertPlainText("q"); // so that it is written anew
        pane.textCursor().deletePreviousChar();
        EXPECT_EQ(Plain_From_Code(editor.code()), Plain_From_Code(text));
        EXPECT_EQ(editor.code(), Tidy_Code(editor.code(), font));
        pane.selectAll();
        pane.copy();
        const QByteArray rich = QGuiApplication::clipboard()->mimeData()->data("text/rtf");
        EXPECT_EQ(Plain_From_Code(Rtf_To_Code(rich.toStdString(), font)).size() > 1, true);
        TextEditor other(TextEditor::Kind::rich, "", font, nullptr);
        Find<QTextEdit>(other, "RichTextBox1").paste();
        // Rich text has no letter beyond its code pages.
        const bool all = std::string_view(text).find("\xF0") == std::string_view::npos;
        EXPECT_EQ(other.code() == editor.code(), all) << "through the clipboard, as rich text";
    }
}

TEST(TextForms, HandBackTextsAndLetters)
{
    App();
    const Values values{{kText, "\\< a\\>"}};
    WhenModal([](QDialog& form) {
        WhenModal([](QDialog& inner) {
            EXPECT_EQ(inner.windowTitle(), "Edit with Internal Code");
            Find<QPlainTextEdit>(inner, "Text1").setPlainText("\\i(b)");
            ButtonOf(inner, "OK").click();
        });
        ButtonOf(form, "Edit with Internal Code").click();
        ButtonOf(form, "OK").click();
    });
    const FormAnswer answer = Form105({kTextEditor, values}, nullptr);
    EXPECT_EQ(answer.dialog_result, kOk);
    EXPECT_EQ(Text(answer.values, kText), "\\< \\i1 b\\i0 \\>");
    WhenModal([](QDialog& form) { ButtonOf(form, "Cancel").click(); });
    EXPECT_EQ(Form105Ext({kCodeEditor, values}, nullptr).dialog_result, kCancel);
    WhenModal([](QDialog& form) {
        const QLabel* note = form.findChild<QLabel*>();
        const QRect list = form.findChild<QListWidget*>()->geometry();
        EXPECT_GT(note->x(), list.right()) << "beside the list";
        EXPECT_LT(note->y(), list.bottom());
        ButtonOf(form, "Insert").click();
    });
    const FormAnswer mark = Form105_X({kSpecialLetters, {}}, nullptr);
    EXPECT_EQ(mark.dialog_result + Text(mark.values, kText), "DEG°");
}

TEST(TextFields, PlainStaysPlainAndFormatsStayCodes)
{
    App();
    struct Case {
        const char *before, *edited, *after;
    };
    const Case cases[] = {{"strychnine", "\\< strychnine\\>", "strychnine"},
                          {"a\\b", "\\< a\\\\b\\i1 c\\>", "\\< a\\\\b\\i1 c\\>"},
                          {"\\< CDCl\\-1 3\\>", "\\< CDCl3\\>", "CDCl3"},
                          {"x", "\\< \\>", ""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.before);
        TextField field("Sample ID", c.before, nullptr);
        EXPECT_EQ(field.text(), c.before);
        WhenModal([&](QDialog& form) {
            WhenModal([&](QDialog& inner) {
                Find<QPlainTextEdit>(inner, "Text1").setPlainText(c.edited);
                ButtonOf(inner, "OK").click();
            });
            ButtonOf(form, "Edit with Internal Code").click();
            ButtonOf(form, "OK").click();
        });
        ButtonOf(field, "Edit Text...").click();
        EXPECT_EQ(field.text(), c.after);
    }
    const FontSpec font;
    CommentField comment("a b", Code_To_Rtf("\\< a \\b1 b\\>", font, 10), nullptr);
    EXPECT_NE(comment.rich(), "");
    Find<QPlainTextEdit>(comment, "Comment").appendPlainText("c");
    EXPECT_EQ(comment.text() + comment.rich(), "a b\nc") << "typed over: the rich text is stale";
}

TEST(AxisTitle, ADoubleClickEditsIt)
{
    WindowRig rig;
    PlotWidget& plot = rig.window->plot();
    const RectD& frame = plot.frame().rect;
    Mouse(plot, QEvent::MouseButtonDblClick, {frame.right() + 20, frame.bottom() + 12});
    WhenModal([](QDialog& form) {
        EXPECT_EQ(form.windowTitle(), "Axis Label");
        WriteLetters(Find<QWidget>(form, "RichTextBox1"), "!");
        ButtonOf(form, "OK").click();
    });
    const double width = frame.width;
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    EXPECT_TRUE(Plain_From_Code(rig.g.Slots[0].XLabelPpm).ends_with('!')) << rig.g.Slots[0].XLabelPpm;
    plot.grab();
    EXPECT_NE(plot.frame().rect.width, width) << "the plot makes room for it";
}

} // namespace
} // namespace nmr
