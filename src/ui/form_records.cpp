// Forms that show and keep records: history, operators, parameter list.

#include "core/operators.h"
#include "session/forms.h"
#include "ui/form_dialogs.h"
#include "ui/form_grid.h"
#include "ui/form_parts.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QListWidget>
#include <QScreen>

namespace nmr {
namespace {

using namespace forms;

// Widths of the history's columns are those of sample texts.
constexpr const char* kHistorySamples[] = {"12345678901234", "12345678901234567890", "12345678901234567890123456"};

void FitToRows(QDialog& form, int width, int rows, const QTableWidget& table)
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    const int most = screen != nullptr ? screen->availableGeometry().height() * 3 / 4 : 700;
    const int wanted = 170 + (rows + 1) * table.verticalHeader()->defaultSectionSize();
    form.resize(width, std::clamp(wanted, 300, std::min(most, 640)));
}

} // namespace

FormAnswer Form111_History(const FormRequest& request, QWidget* parent)
{
    PlainForm form("History of Data", parent);
    const QString head = Qs(Text(request.values, kHead));
    auto* label = form.AddText("Original File Name: " + (head.isEmpty() ? QStringLiteral("\u2013") : head));
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    const int rows = static_cast<int>(Number(request.values, kCount));
    QTableWidget* table = AddGrid(form, {"Subject", "Operator", "Date"}, rows);
    for (int row = 0; row < rows; ++row) {
        SetCell(*table, row, 0, Qs(Text(request.values, Indexed(kSubject, row + 1))), false);
        SetCell(*table, row, 1, Qs(Text(request.values, Indexed(kOperator, row + 1))), false);
        SetCell(*table, row, 2, Qs(Text(request.values, Indexed(kDate, row + 1))), false);
    }
    int width = 60;
    for (int column = 0; column < 3; ++column) {
        const int wanted = table->fontMetrics().horizontalAdvance(kHistorySamples[column]) + 16;
        table->setColumnWidth(column, wanted);
        width += wanted;
    }
    FitToRows(form, width, rows, *table);
    form.AddFoot("Close", {})->buttons().front()->setFocus();
    form.exec();
    return {kClose, {}};
}

FormAnswer Operator_Form22(const FormRequest& request, QWidget* parent)
{
    std::vector<std::string> names = SplitLines(Text(request.values, kNames));
    PlainForm form("Add/Delete Operator Name", parent);
    auto* row = new QHBoxLayout;
    auto* Text1 = new QLineEdit(&form);
    Text1->setObjectName("Text1");
    Text1->setPlaceholderText("New name");
    auto* add = new QPushButton("Add", &form);
    row->addWidget(Text1, 1);
    row->addWidget(add);
    form.column()->addLayout(row);
    auto* List1 = new QListWidget(&form);
    List1->setObjectName("List1");
    List1->setMinimumHeight(200);
    form.column()->addWidget(List1, 1);
    auto* remove_row = new QHBoxLayout;
    remove_row->addWidget(new QLabel("Select Name to Delete,  and Click \"Delete\"", &form), 1);
    auto* remove = new QPushButton("Delete", &form);
    remove->setAutoDefault(false);
    remove_row->addWidget(remove);
    form.column()->addLayout(remove_row);
    auto* close = static_cast<QPushButton*>(form.AddFoot("Close", {})->buttons().front());
    // Enter in the name's field adds; closing needs its own key.
    close->setAutoDefault(false);
    add->setDefault(true);
    const auto refresh = [&] {
        List1->clear();
        for (const std::string& name : names) List1->addItem(Qs(name));
    };
    const auto enable = [&] {
        add->setEnabled(!Text1->text().trimmed().isEmpty() && names.size() < kMaxOperators);
        remove->setEnabled(List1->currentRow() >= 0);
    };
    QObject::connect(Text1, &QLineEdit::textChanged, &form, enable);
    QObject::connect(List1, &QListWidget::currentRowChanged, &form, enable);
    QObject::connect(add, &QPushButton::clicked, &form, [&] {
        const QString name = Text1->text().trimmed();
        if (AddOperator(names, name.toStdString())) refresh();
        // A name that was there already is shown rather than refused without a word.
        const auto found = List1->findItems(name, Qt::MatchFixedString);
        if (!found.isEmpty()) List1->setCurrentItem(found.front());
        Text1->clear();
        Text1->setFocus();
    });
    QObject::connect(remove, &QPushButton::clicked, &form, [&] {
        const int at = List1->currentRow();
        if (at < 0 || !DeleteOperator(names, List1->currentItem()->text().toStdString())) return;
        refresh();
        List1->setCurrentRow(std::min(at, List1->count() - 1));
        enable();
    });
    refresh();
    enable();
    Text1->setFocus();
    form.exec();
    return {kClose, {{kNames, JoinLines(names)}}};
}

FormAnswer NMR1D_ListView(const FormRequest& request, QWidget* parent)
{
    PlainForm form("Parameters", parent);
    if (const QString title = Qs(Text(request.values, kTitle)); !title.isEmpty())
        form.AddText(title)->setTextInteractionFlags(Qt::TextSelectableByMouse);
    const int rows = static_cast<int>(Number(request.values, kCount));
    QTableWidget* table = AddGrid(form, {"Parameter", "Value"}, rows);
    for (int row = 0; row < rows; ++row) {
        SetCell(*table, row, 0, Qs(Text(request.values, Indexed(kRowName, row + 1))), false);
        // One line a row: a comment of several lines reads as one here, and whole as a tool tip.
        const QString value = Qs(Text(request.values, Indexed(kValue, row + 1)));
        SetCell(*table, row, 1, value.simplified(), false)->setToolTip(value);
    }
    table->setColumnWidth(0, 170);
    FitToRows(form, 520, rows, *table);
    auto* foot = form.AddFoot("Close", {});
    bool save = false;
    foot->buttons().front()->setFocus();
    auto* button = foot->addButton("Save List", QDialogButtonBox::ResetRole);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &form, [&] {
        save = true;
        form.accept();
    });
    form.exec();
    return {save ? kSaveList : kClose, {}};
}

} // namespace nmr
