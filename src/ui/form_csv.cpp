// Forms of text tables: how one is read ("Edit Parameter"), and what is written ("Set ASCII Data").

#include "core/data_set.h"
#include "formats/ascii.h"
#include "formats/csv_choice.h"
#include "session/forms.h"
#include "ui/form_dialogs.h"
#include "ui/form_parts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QMessageBox>
#include <QSpinBox>
#include <QTableWidget>

#include <algorithm>

namespace nmr {
namespace {

using namespace forms;

constexpr int kCsvFormWidth = 724; ///< inside its margins
constexpr int kMostShownColumns = 12;
constexpr int kMostHeadLines = 10000;

constexpr char kAboutCsv[] =
    "A CSV file is a table of numbers in text, as other programs write it.\n\n"
    "Columns: each line is a point. One column may hold the positions (ppm, Hz or time), others the real and the "
    "imaginary parts; several real columns make several rows of data.\n\n"
    "Rows: each line is a spectrum or a FID. The values may be real, or real and imaginary in turn.\n\n"
    "Separator and decimal sign were found out from the file. Lines of words before the numbers are passed over.\n\n"
    "A file that begins with \"$CSVSTART\" carries its parameters and is read without this form.";

template <class Table>
QComboBox* WordBox(QWidget* parent, const Table& table)
{
    auto* box = new QComboBox(parent);
    for (const auto& row : table) box->addItem(Qs(row.caption), Qs(row.word));
    return box;
}

template <class Table, class T>
void Select(QComboBox* box, const Table& table, T value)
{
    const auto row = std::ranges::find_if(table, [&](const auto& entry) { return entry.value == value; });
    box->setCurrentIndex(static_cast<int>(row - std::begin(table)));
}

template <class Table, class T>
void Take(const QComboBox* box, const Table& table, T& target)
{
    target = table[static_cast<std::size_t>(std::max(box->currentIndex(), 0))].value;
}

QSpinBox* CountBox(QWidget* parent, int most, int value)
{
    auto* box = new QSpinBox(parent);
    box->setRange(0, most);
    box->setValue(value);
    box->setAlignment(Qt::AlignRight);
    box->setMinimumWidth(96);
    return box;
}

QString Columns(const std::vector<int>& columns)
{
    QStringList texts;
    for (const int column : columns) texts << QString::number(column);
    return texts.join(' ');
}

/// The fields of a CsvChoice, and how its lines look under it.
class CsvEditor {
public:
    CsvEditor(PlainForm& form, CsvChoice choice) : form_(form), choice_(std::move(choice))
    {
        auto* sides = new QHBoxLayout;
        sides->addWidget(MakeTable(), 1);
        sides->addWidget(MakeParameters(), 1);
        form.column()->addLayout(sides);
        MakePreview();
        note_ = form.AddText({});
        note_->setMinimumHeight(note_->fontMetrics().lineSpacing());
    }
    void WatchOk(QPushButton* ok)
    {
        ok_ = ok;
        Refresh();
        FocusMissing();
    }
    const CsvChoice& choice() const { return choice_; }

private:
    QGroupBox* MakeTable();
    QGroupBox* MakeParameters();
    void MakePreview();
    void Refresh();
    /// The first parameter that is required and empty gets what is typed first.
    void FocusMissing();
    void TakeFields();
    void ShowPreview();
    QString MeaningOf(int column) const;

    template <class Box, class Signal>
    Box* Watched(Box* box, Signal signal)
    {
        QObject::connect(box, signal, &form_, [this] { Refresh(); });
        return box;
    }
    QLineEdit* Edit(const QString& text) { return Watched(new QLineEdit(text, &form_), &QLineEdit::textChanged); }

    PlainForm& form_;
    CsvChoice choice_;
    QComboBox *separator_ = nullptr, *decimal_ = nullptr, *layout_ = nullptr, *unit_ = nullptr, *mode_ = nullptr;
    QSpinBox *head_lines_ = nullptr, *position_ = nullptr;
    QLineEdit *real_ = nullptr, *imaginary_ = nullptr;
    std::array<QLineEdit*, std::size(kCsvParameters)> parameters_{};
    QLabel* width_label_ = nullptr;
    QTableWidget* preview_ = nullptr;
    QLabel* note_ = nullptr;
    QPushButton* ok_ = nullptr;
};

QGroupBox* CsvEditor::MakeTable()
{
    auto* group =
        new QGroupBox(QString("Table (%1 lines, %2 columns)").arg(choice_.lines).arg(choice_.columns), &form_);
    auto* fields = new QFormLayout(group);
    const auto box = [&](const QString& label, const auto& table, auto value) {
        auto* words = WordBox(group, table);
        Select(words, table, value);
        fields->addRow(label, words);
        return Watched(words, &QComboBox::currentIndexChanged);
    };
    mode_ = box("*Data", kCsvModes, choice_.smode);
    separator_ = box("Separator", kCsvSeparators, choice_.text.separator);
    decimal_ = box("Decimal sign", kCsvDecimals, choice_.text.decimal_comma);
    head_lines_ =
        Watched(CountBox(group, kMostHeadLines, static_cast<int>(choice_.head_lines)), &QSpinBox::valueChanged);
    fields->addRow("Lines before it", head_lines_);
    layout_ = box("Layout", kCsvLayouts, choice_.layout);
    position_ = Watched(CountBox(group, 2 * kMaxRows + 1, choice_.position), &QSpinBox::valueChanged);
    position_->setSpecialValueText("none");
    unit_ = WordBox(group, kCsvUnits);
    Select(unit_, kCsvUnits, choice_.unit);
    Watched(unit_, &QComboBox::currentIndexChanged);
    auto* position = new QHBoxLayout;
    position->addWidget(position_, 1);
    position->addWidget(unit_, 1);
    fields->addRow("Positions", position);
    fields->addRow("Real columns", real_ = Edit(Columns(choice_.real)));
    fields->addRow("Imaginary columns", imaginary_ = Edit(Columns(choice_.imaginary)));
    return group;
}

QGroupBox* CsvEditor::MakeParameters()
{
    auto* group = new QGroupBox("Parameter", &form_);
    auto* fields = new QFormLayout(group);
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
        auto* label = new QLabel(Qs(kCsvParameters[i].label), group);
        parameters_[i] = Edit(Qs(choice_.parameters[i]));
        parameters_[i]->setObjectName(Qs(kCsvParameters[i].key));
        parameters_[i]->setMinimumWidth(150);
        fields->addRow(label, parameters_[i]);
        if (kCsvParameters[i].key == "FREQU") width_label_ = label;
    }
    return group;
}

void CsvEditor::MakePreview()
{
    preview_ = new QTableWidget(&form_);
    preview_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    preview_->setSelectionMode(QAbstractItemView::NoSelection);
    preview_->setFocusPolicy(Qt::NoFocus);
    preview_->setMinimumSize(640, 210);
    preview_->horizontalHeader()->setDefaultSectionSize(128);
    preview_->verticalHeader()->setDefaultSectionSize(preview_->fontMetrics().lineSpacing() + 5);
    form_.column()->addWidget(preview_);
}

void CsvEditor::TakeFields()
{
    Take(separator_, kCsvSeparators, choice_.text.separator);
    Take(decimal_, kCsvDecimals, choice_.text.decimal_comma);
    Take(layout_, kCsvLayouts, choice_.layout);
    Take(unit_, kCsvUnits, choice_.unit);
    Take(mode_, kCsvModes, choice_.smode);
    choice_.head_lines = static_cast<std::size_t>(head_lines_->value());
    choice_.position = position_->value();
    choice_.real = ParseCsvColumns(real_->text().toStdString());
    choice_.imaginary = ParseCsvColumns(imaginary_->text().toStdString());
    for (std::size_t i = 0; i < parameters_.size(); ++i)
        choice_.parameters[i] = parameters_[i]->text().trimmed().toStdString();
}

void CsvEditor::Refresh()
{
    if (ok_ == nullptr) return; // fields are still being made
    TakeFields();
    const bool in_columns = choice_.layout == CsvLayout::columns;
    real_->setEnabled(in_columns);
    imaginary_->setEnabled(in_columns);
    unit_->setEnabled(choice_.position > 0);
    position_->setPrefix(in_columns ? "column " : "line ");
    const bool width_needed = choice_.position == 0;
    width_label_->setText(QString(width_needed ? "*" : "") + "Frequency(Span) (Hz)");
    parameters_[2]->setEnabled(width_needed);
    const std::string missing = choice_.Missing();
    note_->setText(Qs(missing));
    ok_->setEnabled(missing.empty());
    ShowPreview();
}

void CsvEditor::FocusMissing()
{
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
        const bool required = kCsvParameters[i].label.starts_with('*') || kCsvParameters[i].key == "FREQU";
        if (!required || !parameters_[i]->isEnabled() || !parameters_[i]->text().isEmpty()) continue;
        parameters_[i]->setFocus();
        return;
    }
}

QString CsvEditor::MeaningOf(int column) const
{
    const auto has = [column](const std::vector<int>& columns) {
        return std::ranges::find(columns, column) != columns.end();
    };
    if (choice_.layout == CsvLayout::pairs) return column % 2 == 1 ? "real" : "imaginary";
    if (choice_.layout == CsvLayout::rows) return "real";
    if (column == choice_.position) return unit_->currentText();
    if (has(choice_.real)) return "real";
    return has(choice_.imaginary) ? "imaginary" : QStringLiteral("\u2013");
}

void CsvEditor::ShowPreview()
{
    const std::vector<std::string> lines = SplitLines(choice_.preview);
    preview_->clear();
    preview_->setRowCount(static_cast<int>(lines.size()));
    int columns = 1;
    std::vector<std::string_view> fields;
    for (std::size_t row = 0; row < lines.size(); ++row) {
        SplitFields(lines[row], choice_.text, fields);
        columns = std::max(columns, std::min(static_cast<int>(fields.size()), kMostShownColumns));
        preview_->setColumnCount(columns);
        for (int column = 0; column < columns && column < static_cast<int>(fields.size()); ++column) {
            auto* item = new QTableWidgetItem(Qs(fields[static_cast<std::size_t>(column)]));
            if (row < choice_.head_lines) item->setFlags(Qt::NoItemFlags);
            preview_->setItem(static_cast<int>(row), column, item);
        }
    }
    QStringList heads;
    for (int column = 1; column <= columns; ++column) heads << QString("%1: %2").arg(column).arg(MeaningOf(column));
    preview_->setHorizontalHeaderLabels(heads);
}

/// Numbers of points that may be chosen: all, and the powers of two below.
QComboBox* PointBox(QWidget* parent, int all)
{
    constexpr int kFewest = 256;
    auto* box = new QComboBox(parent);
    box->addItem(QString::number(all));
    for (int points = 1 << 20; points >= kFewest; points /= 2)
        if (points < all) box->addItem(QString::number(points));
    return box;
}

} // namespace

FormAnswer NMR1D_Form103_CSV(const FormRequest& request, QWidget* parent)
{
    PlainForm form("Edit Parameter", parent);
    form.column()->addStrut(kCsvFormWidth);
    form.AddText("Data of the parameter with * is required.");
    CsvEditor editor(form, CsvChoice(request.values));
    auto* foot = form.AddFoot("OK", "Cancel");
    auto* about = foot->addButton("About CSV File", QDialogButtonBox::HelpRole);
    about->setObjectName("Command4");
    about->setAutoDefault(false);
    QObject::connect(about, &QPushButton::clicked, &form,
                     [&form] { QMessageBox::information(&form, "About CSV File", kAboutCsv); });
    for (QAbstractButton* button : foot->buttons())
        if (foot->buttonRole(button) == QDialogButtonBox::AcceptRole)
            editor.WatchOk(qobject_cast<QPushButton*>(button));
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    return {kOk, editor.choice().ToValues()};
}

FormAnswer NMR1D_Form104(const FormRequest& request, QWidget* parent)
{
    const int all = std::clamp(static_cast<int>(Number(request.values, kPoints, kMaxPoints)), 1, kMaxPoints);
    PlainForm form("Set ASCII Data", parent);
    const ChoiceGroup group(form, {{"R", "Raw Data", {}},
                                   {"R1", "relative Intensity(Int./Height of Peak Max.)", {}},
                                   {"R2", "Relative Intensity(Int./Max Height of Spectrum 1)", {}},
                                   {"D", "As Displayed(Screen Height is 1.0)", {}}});
    auto* dept = new QCheckBox("Include DEPT Spectra", &form);
    dept->setEnabled(Text(request.values, kDept) == "1");
    form.column()->addWidget(dept);
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel("Data Points", &form));
    QComboBox* points = PointBox(&form, all);
    points->setObjectName("Combo1");
    row->addWidget(points);
    row->addStretch();
    form.column()->addLayout(row);
    form.AddFoot("OK", "Quit");
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    return {(dept->isChecked() ? "DEPT " : "") + group.word() + ", " + points->currentText().toStdString(), {}};
}

} // namespace nmr
