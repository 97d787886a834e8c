// Forms around a list: user selection, file types of the open dialog, processable files.

#include "formats/registry.h"
#include "session/forms.h"
#include "ui/form_dialogs.h"
#include "ui/form_parts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QListWidget>
#include <QTextEdit>

namespace nmr {
namespace {

using namespace forms;

QListWidget* NameList(PlainForm& form, const std::vector<std::string>& names)
{
    auto* list = new QListWidget(&form);
    for (const std::string& name : names) list->addItem(Qs(name));
    form.column()->addWidget(list);
    return list;
}

// One slot of the file types: an expression to pick or to type, and its description.
struct TypeSlot {
    QComboBox* expression;
    QLineEdit* description;
};

constexpr char kNoType[] = "-----";

// The rows to pick from, each with the description that it brings.
void FillTypes(QComboBox& box)
{
    box.addItem(kNoType, QString());
    for (const FileTypeRow& row : FileTypeTable())
        if (!row.expression.empty()) box.addItem(Qs(row.expression), Qs(row.description) + " File");
}

TypeSlot AddTypeSlot(PlainForm& form, QGridLayout& grid, int index, const FormRequest& request)
{
    TypeSlot slot{new QComboBox(&form), new QLineEdit(&form)};
    slot.expression->setEditable(true);
    slot.expression->setMinimumWidth(190);
    slot.description->setMinimumWidth(260);
    slot.expression->setInsertPolicy(QComboBox::NoInsert);
    FillTypes(*slot.expression);
    const std::string expression = Text(request.values, Indexed(kExpression, index));
    slot.expression->setCurrentText(expression.empty() ? QString(kNoType) : Qs(expression));
    slot.description->setText(Qs(Text(request.values, Indexed(kDescription, index))));
    QObject::connect(slot.expression, &QComboBox::activated, &form,
                     [slot](int row) { slot.description->setText(slot.expression->itemData(row).toString()); });
    grid.addWidget(new QLabel(QString::number(index + 1), &form), index, 0);
    grid.addWidget(slot.expression, index, 1);
    grid.addWidget(slot.description, index, 2);
    return slot;
}

} // namespace

FormAnswer NMR1D_Form01(const FormRequest& request, QWidget* parent)
{
    PlainForm form("User", parent);
    form.AddText("Select your name, or type a new one.");
    auto* list = NameList(form, SplitLines(Text(request.values, kUsers)));
    auto* name = new QLineEdit(Qs(Text(request.values, kLatest)), &form);
    form.column()->addWidget(name);
    auto* skip = new QCheckBox("Do not open this window next time.", &form);
    form.column()->addWidget(skip);
    QObject::connect(list, &QListWidget::currentTextChanged, name, &QLineEdit::setText);
    QObject::connect(list, &QListWidget::itemDoubleClicked, &form, &QDialog::accept);
    form.AddFoot("OK", "Quit");
    const auto found = list->findItems(name->text(), Qt::MatchFixedString);
    if (!found.isEmpty()) list->setCurrentItem(found.front());
    if (name->text().isEmpty() && list->count() > 0) list->setCurrentRow(0);
    name->setFocus();
    name->selectAll();
    if (form.exec() != QDialog::Accepted) return {kClose, {}};
    return {kOk, {{kName, name->text().toStdString()}, {kDoNotOpen, skip->isChecked() ? "1" : "0"}}};
}

FormAnswer NMR1D_Form101(const FormRequest& request, QWidget* parent)
{
    PlainForm form("Set File Extensions", parent);
    form.AddText("The file types that \"Read\" offers. 1 and 7 are fixed.");
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    grid->addWidget(new QLabel("1", &form), 0, 0);
    grid->addWidget(new QLabel("*.tv1;*.tvo*", &form), 0, 1);
    grid->addWidget(new QLabel("Ver.3/4 Type", &form), 0, 2);
    std::vector<TypeSlot> slots_of_form;
    for (int i = 1; i <= kFileTypeSlots; ++i) slots_of_form.push_back(AddTypeSlot(form, *grid, i, request));
    grid->addWidget(new QLabel("7", &form), kFileTypeSlots + 1, 0);
    grid->addWidget(new QLabel("*.*", &form), kFileTypeSlots + 1, 1);
    grid->addWidget(new QLabel("All File", &form), kFileTypeSlots + 1, 2);
    form.column()->addLayout(grid);
    form.AddFoot("OK", "Cancel");
    const bool accepted = form.exec() == QDialog::Accepted;
    FormAnswer answer{accepted ? kOk : kCancel, {}};
    for (int i = 1; i <= kFileTypeSlots; ++i) {
        const TypeSlot& slot = slots_of_form[static_cast<std::size_t>(i - 1)];
        const QString expression = slot.expression->currentText().trimmed();
        answer.values[Indexed(kExpression, i)] = expression == kNoType ? "" : expression.toStdString();
        answer.values[Indexed(kDescription, i)] = slot.description->text().toStdString();
    }
    return answer;
}

FormAnswer NMR1D_Form93(const FormRequest& request, QWidget* parent)
{
    PlainForm form("Information for files possible to data process", parent);
    form.resize(760, 460);
    auto* row = new QHBoxLayout;
    auto* list = new QListWidget(&form);
    list->setMaximumWidth(230);
    auto* texts = new QVBoxLayout;
    auto* required = new QTextEdit(&form);
    auto* notes = new QTextEdit(&form);
    for (QTextEdit* edit : {required, notes}) edit->setReadOnly(true);
    texts->addWidget(new QLabel("Required files", &form));
    texts->addWidget(required, 2);
    texts->addWidget(new QLabel("Notes", &form));
    texts->addWidget(notes, 3);
    row->addWidget(list);
    row->addLayout(texts, 1);
    form.column()->addLayout(row, 1);
    const int count = static_cast<int>(Number(request.values, kCount));
    for (int i = 1; i <= count; ++i) list->addItem(Qs(Text(request.values, Indexed(kRowName, i))));
    QObject::connect(list, &QListWidget::currentRowChanged, &form, [&](int index) {
        required->setPlainText(Qs(Text(request.values, Indexed(kRequired, index + 1))));
        notes->setPlainText(Qs(Text(request.values, Indexed(kNotes, index + 1))));
    });
    list->setCurrentRow(0);
    form.AddText(
        "The files marked Required must be there. When more than one is marked so, the data file is the one to "
        "select. Spec.VarD, Spec.VarF, Spec.BRUD, Spec.BRUF and Spec.CMX are dummy files by which the program "
        "can be started with a double click.");
    form.AddFoot("Close", {});
    form.exec();
    return {kClose, {}};
}

} // namespace nmr
