// Editors of parameters: those of the data, and the file that says which are printed.

#include "core/step_stack.h"
#include "session/forms.h"
#include "session/text_forms.h"
#include "ui/form_dialogs.h"
#include "ui/form_grid.h"
#include "ui/form_parts.h"
#include "ui/text_field.h"

#include <QComboBox>
#include <QFormLayout>
#include <QShortcut>

#include <array>

namespace nmr {
namespace {

using namespace forms;

// ---- NMR1D_Form103 ----

constexpr int kEdited = QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                        QAbstractItemView::AnyKeyPressed | QAbstractItemView::SelectedClicked;

QComboBox* NameBox(QWidget* parent, const FormRequest& request, const QString& text)
{
    auto* box = new QComboBox(parent);
    box->setEditable(true);
    box->setFrame(false);
    box->setInsertPolicy(QComboBox::NoInsert);
    for (const std::string& name : SplitLines(Text(request.values, kNames))) box->addItem(Qs(name));
    box->setCurrentText(text);
    return box;
}

void FillParameters(QTableWidget& table, const FormRequest& request)
{
    for (int row = 0; row < table.rowCount(); ++row) {
        SetCell(table, row, 0, Qs(Text(request.values, Indexed(kRowName, row + 1))), false);
        const QString value = Qs(Text(request.values, Indexed(kValue, row + 1)));
        const std::string kind = Text(request.values, Indexed(kRowKind, row + 1));
        SetCell(table, row, 1, value, true)->setData(kNumberCell, kind == kNumberRow);
        if (kind == kListRow) table.setCellWidget(row, 1, NameBox(&table, request, value));
    }
}

QString CellText(const QTableWidget& table, int row, int column)
{
    if (const auto* box = qobject_cast<const QComboBox*>(table.cellWidget(row, column))) return box->currentText();
    const QTableWidgetItem* item = table.item(row, column);
    return item == nullptr ? QString() : item->text();
}

// ---- Form17 ----

using TableRows = std::vector<std::array<QString, 3>>;
using TableSteps = StepStack<TableRows>;
constexpr const char* kColumns[] = {kKey, kLabel, kFormat};

// The form closes for each of its buttons and comes back; its steps travel as text meanwhile. These signs
// stand between cells, rows and tables; nobody types them.
constexpr QChar kCellEnd(0x1F), kRowEnd(0x1E), kTableEnd(0x1D);

QString TextOf(const TableRows& rows)
{
    QString text;
    for (const auto& row : rows) {
        for (const QString& cell : row) text += QString(cell).remove(kCellEnd) + kCellEnd;
        text += kRowEnd;
    }
    return text + kTableEnd;
}

TableRows RowsOf(const QString& text)
{
    TableRows rows;
    for (const QString& line : text.split(kRowEnd, Qt::SkipEmptyParts)) {
        const QStringList cells = line.split(kCellEnd);
        rows.push_back({cells.value(0), cells.value(1), cells.value(2)});
    }
    return rows;
}

/// How many steps can be taken back, then every table: the newest step first, behind the oldest what can be
/// done again.
std::string TextOf(TableSteps& steps)
{
    QString text = QString::number(steps.size()) + kTableEnd;
    steps.ForEach([&](const TableRows& rows) { text += TextOf(rows); });
    return text.toStdString();
}

TableSteps StepsOf(const QString& text)
{
    QStringList tables = text.split(kTableEnd);
    tables.removeLast(); // behind the last sign
    TableSteps steps;
    if (tables.isEmpty()) return steps;
    const auto count = tables.takeFirst().toLongLong();
    for (qsizetype i = std::min<qsizetype>(count, tables.size()) - 1; i >= 0; --i) steps.Push(RowsOf(tables[i]));
    // What was taken back goes on top and is taken back again.
    for (qsizetype i = count; i < tables.size(); ++i) steps.Push(RowsOf(tables[i]));
    for (qsizetype i = count; i < tables.size(); ++i) steps.Undo([](TableRows&) { return true; });
    return steps;
}

/// The rows of the form with an undo of their own: a step is the table as it was.
class RowEditor {
public:
    RowEditor(QTableWidget& table, TableRows rows, TableSteps steps, bool changed) :
        table_(table), rows_(std::move(rows)), steps_(std::move(steps)), changed_(changed)
    {
        Show(0);
        QObject::connect(&table_, &QTableWidget::itemChanged, &table_, [this] { TakeCells(); });
    }
    std::function<void()> refreshed; ///< after each change

    void Add()
    {
        const int at = table_.currentRow() < 0 ? static_cast<int>(rows_.size()) : table_.currentRow() + 1;
        Change([&](TableRows& rows) { rows.insert(rows.begin() + at, TableRows::value_type{}); }, at);
        table_.editItem(table_.item(at, 0));
    }
    void Delete()
    {
        const int at = table_.currentRow();
        if (at >= 0) Change([&](TableRows& rows) { rows.erase(rows.begin() + at); }, at);
    }
    void MoveRow(int by)
    {
        const int at = table_.currentRow(), to = at + by;
        if (at < 0 || to < 0 || to >= static_cast<int>(rows_.size())) return;
        Change(
            [&](TableRows& rows) { std::swap(rows[static_cast<std::size_t>(at)], rows[static_cast<std::size_t>(to)]); },
            to);
    }
    void UnDo() { Step(&TableSteps::Undo<Exchange&>); }
    void ReDo() { Step(&TableSteps::Redo<Exchange&>); }
    bool can_undo() const { return steps_.size() > 0; }
    bool can_redo() const { return steps_.next_redo() != nullptr; }
    bool changed() const { return changed_; }
    const TableRows& rows() const { return rows_; }
    std::string StepText() { return TextOf(steps_); }

private:
    struct Exchange {
        TableRows& live;
        bool operator()(TableRows& kept) const
        {
            std::swap(live, kept);
            return true;
        }
    };

    template <class Act>
    void Change(Act act, int row)
    {
        steps_.Push(rows_);
        act(rows_);
        changed_ = true;
        Show(row);
    }
    void Step(bool (TableSteps::*step)(Exchange&))
    {
        Exchange exchange{rows_};
        if (!(steps_.*step)(exchange)) return;
        changed_ = true; // a file that was saved in between holds the other rows
        Show(table_.currentRow());
    }
    void TakeCells()
    {
        TableRows rows(rows_.size());
        for (std::size_t row = 0; row < rows.size(); ++row)
            for (int column = 0; column < 3; ++column)
                rows[row][static_cast<std::size_t>(column)] = CellText(table_, static_cast<int>(row), column);
        if (rows == rows_) return;
        steps_.Push(std::exchange(rows_, std::move(rows)));
        changed_ = true;
        if (refreshed) refreshed();
    }
    void Show(int current)
    {
        const QSignalBlocker quiet(&table_);
        table_.setRowCount(static_cast<int>(rows_.size()));
        for (int row = 0; row < table_.rowCount(); ++row)
            for (int column = 0; column < 3; ++column)
                SetCell(table_, row, column, rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)],
                        true);
        table_.setCurrentCell(std::clamp(current, 0, std::max(0, table_.rowCount() - 1)), 0);
        if (refreshed) refreshed();
    }

    QTableWidget& table_;
    TableRows rows_;
    TableSteps steps_;
    bool changed_;
};

TableRows RowsOf(const FormRequest& request)
{
    TableRows rows(static_cast<std::size_t>(std::max(0.0, Number(request.values, kCount))));
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (std::size_t column = 0; column < 3; ++column)
            rows[row][column] = Qs(Text(request.values, Indexed(kColumns[column], static_cast<int>(row) + 1)));
    return rows;
}

Values ValuesOf(RowEditor& editor)
{
    Values values{{kCount, std::to_string(editor.rows().size())},
                  {kChanged, Switch(editor.changed())},
                  {kSteps, editor.StepText()}};
    int n = 0;
    for (const auto& row : editor.rows()) {
        ++n;
        for (std::size_t column = 0; column < 3; ++column)
            values[Indexed(kColumns[column], n)] = row[column].toStdString();
    }
    return values;
}

QPushButton* AddButton(QBoxLayout& layout, PlainForm& form, const QString& caption, std::function<void()> act)
{
    auto* button = new QPushButton(caption, &form);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &form, std::move(act));
    layout.addWidget(button);
    return button;
}

} // namespace

FormAnswer NMR1D_Form103(const FormRequest& request, QWidget* parent)
{
    PlainForm form("Edit Parameters", parent);
    const int rows = static_cast<int>(Number(request.values, kCount));
    QTableWidget* table = AddGrid(form, {"Parameter", "Value"}, rows);
    table->setItemDelegate(new CellEditor(table));
    table->setEditTriggers(QAbstractItemView::EditTriggers(kEdited));
    table->setColumnWidth(0, 220);
    FillParameters(*table, request);
    auto* boxes = new QFormLayout;
    auto* sample = new TextField("Sample ID", Text(request.values, kSampleId), &form);
    sample->setObjectName("SampleId");
    auto* comment = new CommentField(Text(request.values, kComment), Text(request.values, kCommentRtf), &form);
    boxes->addRow("Sample ID", sample);
    boxes->addRow("Comment", comment);
    form.column()->addLayout(boxes);
    form.AddFoot("OK", "Cancel");
    form.resize(560, 640);
    const int wrong = static_cast<int>(Number(request.values, kWrong));
    table->setCurrentCell(std::max(0, wrong - 1), 1);
    table->setFocus();
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    Values values{{kSampleId, sample->text()}, {kComment, comment->text()}, {kCommentRtf, comment->rich()}};
    for (int row = 0; row < rows; ++row) values[Indexed(kValue, row + 1)] = CellText(*table, row, 1).toStdString();
    return {kOk, values};
}

FormAnswer Form17(const FormRequest& request, QWidget* parent)
{
    PlainForm form("Edit Parameter File", parent);
    form.AddText(Qs(Text(request.values, kFile)))->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QTableWidget* table = AddGrid(form, {"Key", "Label", "Format"}, 0);
    table->setItemDelegate(new CellEditor(table));
    table->setEditTriggers(QAbstractItemView::EditTriggers(kEdited));
    table->setColumnWidth(0, 130);
    table->setColumnWidth(1, 240);
    RowEditor editor(*table, RowsOf(request), StepsOf(Qs(Text(request.values, kSteps))),
                     Text(request.values, kChanged) == "1");
    auto* tools = new QHBoxLayout;
    AddButton(*tools, form, "Add Row", [&] { editor.Add(); });
    auto* remove = AddButton(*tools, form, "Delete Row", [&] { editor.Delete(); });
    AddButton(*tools, form, "Up", [&] { editor.MoveRow(-1); });
    AddButton(*tools, form, "Down", [&] { editor.MoveRow(1); });
    tools->addStretch(1);
    auto* undo = AddButton(*tools, form, "UnDo", [&] { editor.UnDo(); });
    auto* redo = AddButton(*tools, form, "ReDo", [&] { editor.ReDo(); });
    form.column()->addLayout(tools);
    new QShortcut(QKeySequence("Ctrl+Z"), &form, [&] { editor.UnDo(); });
    new QShortcut(QKeySequence("Ctrl+Shift+Z"), &form, [&] { editor.ReDo(); });
    editor.refreshed = [&] {
        undo->setEnabled(editor.can_undo());
        redo->setEnabled(editor.can_redo());
        remove->setEnabled(table->rowCount() > 0);
    };
    editor.refreshed();
    auto* foot = new QHBoxLayout;
    const char* word = kClose;
    const auto answer = [&](const char* button) {
        word = button;
        form.accept();
    };
    AddButton(*foot, form, "Open...", [&] { answer(kOpenFile); });
    AddButton(*foot, form, "Save...", [&] { answer(kSaveFile); });
    AddButton(*foot, form, "Load Public Parameter", [&] { answer(kPublicFile); });
    AddButton(*foot, form, "About Parameter File", [&] { answer(kAboutFile); });
    foot->addStretch(1);
    AddButton(*foot, form, "Close", [&] { form.reject(); });
    form.column()->addSpacing(4);
    form.column()->addLayout(foot);
    form.resize(720, 600);
    form.exec();
    return {word, ValuesOf(editor)};
}

} // namespace nmr
