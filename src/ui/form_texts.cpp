// The editors of formatted texts, the list of special characters, and the note on the codes.

#include "session/forms.h"
#include "session/text_forms.h"
#include "ui/form_dialogs.h"
#include "ui/form_grid.h"
#include "ui/form_parts.h"
#include "ui/text_editor.h"

#include <QHBoxLayout>
#include <QListWidget>

#include <algorithm>

namespace nmr {
namespace {

using namespace forms;

constexpr int kNoteWidth = 150, kBeside = 16; // of the list around its lines

struct SpecialRow {
    const char *key, *letters, *name;
};
constexpr SpecialRow kSpecial[] = {{"DEG", "°", "degree"},
                                   {"P/N", "±", "plus or minus"},
                                   {"MU", "µ", "micro"},
                                   {"DOT", "·", "dot"},
                                   {"C-DEG", "°C", "degree Celsius"},
                                   {"CA", "~", "about"},
                                   {"MUL", "×", "times"},
                                   {"XXX", " ", "a blank"}};

struct NoteRow {
    const char *code, *effect;
};
constexpr NoteRow kCodeNotes[] = {{R"(\<  and  \>)", "Begin and end of the text; nothing behind the end is drawn"},
                                  {R"(\\)", "A backslash"},
                                  {R"(\cr)", "End of the line"},
                                  {R"(\tb)", "Tab"},
                                  {R"(\+1  \+0)", "Superscript on, off"},
                                  {R"(\-1  \-0)", "Subscript on, off"},
                                  {R"(\i1  \i0)", "Italic on, off"},
                                  {R"(\b1  \b0)", "Bold on, off"},
                                  {R"(\u1  \u0)", "Underline on, off"},
                                  {R"(\s1  \s0)", "Strikeout on, off"},
                                  {R"(\g1  \g0)", "Greek letters on, off: a is α, b is β, d is δ"},
                                  {R"(\f:name:  \f0)", "A font by its name, the font of the text again"},
                                  {R"(\p:size:  \p0)", "A size in points, the size of the text again"},
                                  {R"(\c:hex:  \c0)", "A colour, blue-green-red in hexadecimal digits; c:ff: is red"},
                                  {R"(\'hh:)", "The character with a hexadecimal code: \\'b0: is °"}};

FontSpec FontOf(const Values& values)
{
    FontSpec font;
    if (const std::string name = Text(values, kFontName); !name.empty()) font.Name = name;
    font.Size = static_cast<float>(std::clamp(Number(values, kFontSize, 10), 4.0, 72.0));
    font.Bold = Text(values, kFontBold) == "1" ? -1 : 0;
    font.Italic = Text(values, kFontItalic) == "1" ? -1 : 0;
    font.Color = static_cast<std::int32_t>(Number(values, kFontColor, 0));
    return font;
}

QPushButton* AddLeft(QDialogButtonBox& foot, const QString& name, const QString& caption)
{
    auto* button = foot.addButton(caption, QDialogButtonBox::ActionRole);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

QString TitleOf(const FormRequest& request, const char* otherwise)
{
    const std::string title = Text(request.values, kTitle);
    return title.empty() ? QString(otherwise) : Qs(title);
}

FormAnswer Run(PlainForm& form, const TextEditor& editor)
{
    form.resize(820, 460);
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    return {kOk, {{kText, editor.code()}}};
}

} // namespace

FormAnswer Form105(const FormRequest& request, QWidget* parent)
{
    PlainForm form(TitleOf(request, "Edit Text"), parent);
    form.setObjectName("Form105");
    auto* editor = new TextEditor(TextEditor::Kind::rich, Text(request.values, kText), FontOf(request.values), &form);
    form.column()->addWidget(editor, 1);
    QDialogButtonBox* foot = form.AddFoot("OK", "Cancel");
    QObject::connect(AddLeft(*foot, "Command5", "Edit with Internal Code"), &QPushButton::clicked, &form, [&] {
        FormRequest inner = request;
        inner.values[kText] = editor->code();
        const FormAnswer answer = Form105Ext(inner, &form);
        if (answer.dialog_result == kOk) editor->SetCode(Text(answer.values, kText));
    });
    editor->setFocus();
    return Run(form, *editor);
}

FormAnswer Form105Ext(const FormRequest& request, QWidget* parent)
{
    PlainForm form(TitleOf(request, "Edit with Internal Code"), parent);
    form.setObjectName("Form105Ext");
    auto* editor = new TextEditor(TextEditor::Kind::codes, Text(request.values, kText), FontOf(request.values), &form);
    form.column()->addWidget(editor, 1);
    QDialogButtonBox* foot = form.AddFoot("OK", "Cancel");
    QObject::connect(AddLeft(*foot, "Command3", "Display Control  Code"), &QPushButton::clicked, &form, [&] {
        Form106RTF({kNoteOnCodes, {}}, &form);
    });
    editor->setFocus();
    return Run(form, *editor);
}

FormAnswer Form105_X(const FormRequest&, QWidget* parent)
{
    PlainForm form("Special Charactor", parent);
    form.setObjectName("Form105_X");
    auto* list = new QListWidget(&form);
    for (const SpecialRow& row : kSpecial)
        list->addItem(QString("%1\t%2\t%3").arg(row.key, QString::fromUtf8(row.letters), row.name));
    list->setCurrentRow(0);
    list->setSpacing(2);
    list->setMinimumHeight(static_cast<int>(std::size(kSpecial)) * (list->sizeHintForRow(0) + 4) + 8);
    list->setMinimumWidth(list->sizeHintForColumn(0) + kBeside);
    QLabel* note = form.AddText("Depending on Font, it may not be displayed correctly.");
    note->setForegroundRole(QPalette::PlaceholderText);
    note->setAlignment(Qt::AlignTop);
    note->setFixedWidth(kNoteWidth);
    auto* beside = new QHBoxLayout;
    beside->addWidget(list, 1);
    beside->addWidget(note);
    form.column()->addLayout(beside, 1);
    form.AddFoot("Insert", "Close");
    QObject::connect(list, &QListWidget::itemDoubleClicked, &form, &QDialog::accept);
    if (form.exec() != QDialog::Accepted || list->currentRow() < 0) return {kCancel, {}};
    const SpecialRow& row = kSpecial[list->currentRow()];
    return {row.key, {{kText, row.letters}}};
}

FormAnswer Form106RTF(const FormRequest&, QWidget* parent)
{
    PlainForm form("Note of Internal Control Codes", parent);
    form.setObjectName("Form106RTF");
    form.AddText("A code begins with a backslash. One blank behind it belongs to it and is not drawn.");
    QTableWidget* table = AddGrid(form, {"Code", "Effect"}, static_cast<int>(std::size(kCodeNotes)));
    table->setColumnWidth(0, 140);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    int row = 0;
    for (const NoteRow& note : kCodeNotes) {
        SetCell(*table, row, 0, QString::fromUtf8(note.code), false);
        SetCell(*table, row++, 1, QString::fromUtf8(note.effect), false);
    }
    form.AddFoot("Close", "");
    form.resize(600, 520);
    form.exec();
    return {kClose, {}};
}

} // namespace nmr
