// Forms of picture files and of printing.

#include "session/picture_commands.h"
#include "ui/form_dialogs.h"
#include "ui/form_parts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QPrinterInfo>

#include <algorithm>
#include <cmath>
#include <utility>

namespace nmr {
namespace {

using namespace forms;

/// @param columns that the field takes
QLabel* AddRow(QGridLayout& grid, const QString& caption, QWidget* field, int columns = 2)
{
    auto* label = new QLabel(caption, field->parentWidget());
    label->setBuddy(field);
    const int row = grid.rowCount();
    grid.addWidget(label, row, 0);
    grid.addWidget(field, row, 1, 1, columns);
    return label;
}

/// The form of picture files; what it holds is a PictureChoice.
class PictureForm : public PlainForm {
public:
    PictureForm(PictureChoice choice, QWidget* parent) : PlainForm("Save Picture", parent), choice_(choice)
    {
        auto* grid = new QGridLayout;
        grid->setColumnStretch(1, 1);
        format_ = new QComboBox(this);
        format_->setObjectName("Format");
        for (const PictureFormatRow& row : PictureFormats()) format_->addItem(Qs(row.caption));
        format_->setCurrentIndex(static_cast<int>(&RowOf(choice.format) - PictureFormats().data()));
        width_ = Field("Combo51", choice.size.width);
        height_ = Field("Combo52", choice.size.height);
        dpi_ = Field("Dpi", DpiOf(choice.size));
        unit_ = new QComboBox(this);
        unit_->setObjectName("Unit");
        unit_->addItems({"mm", "pixels"});
        unit_->setCurrentIndex(choice.size.millimetres ? 0 : 1);
        AddRow(*grid, "Format", format_);
        AddRow(*grid, "Horizon", width_, 1);
        grid->addWidget(unit_, grid->rowCount() - 1, 2);
        AddRow(*grid, "Vertical", height_, 1);
        ratio_ = new QCheckBox("X:Y Ratio is Fixed", this);
        grid->addWidget(ratio_, grid->rowCount(), 1, 1, 2);
        dpi_label_ = AddRow(*grid, "Dots per inch", dpi_, 1);
        column()->addLayout(grid);
        hint_ = AddText({});
        hint_->setObjectName("Hint");
        hint_->setMinimumHeight(2 * hint_->fontMetrics().lineSpacing());
        hint_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        foot_ = AddFoot("OK", "Cancel");
        connect(format_, &QComboBox::activated, this, [this] { Take(); });
        connect(unit_, &QComboBox::activated, this, [this] { ChangeUnit(); });
        connect(width_, &QLineEdit::textEdited, this, [this] { KeepRatio(width_, height_, 1 / aspect_); });
        connect(height_, &QLineEdit::textEdited, this, [this] { KeepRatio(height_, width_, aspect_); });
        connect(dpi_, &QLineEdit::textEdited, this, [this] { Take(); });
        connect(ratio_, &QCheckBox::toggled, this, [this] { aspect_ = choice_.size.width / choice_.size.height; });
        Take();
    }
    const PictureChoice& choice() const { return choice_; }

private:
    QLineEdit* Field(const char* name, double value)
    {
        QLineEdit* field = NumberField(this, value);
        field->setObjectName(name);
        return field;
    }
    static double NumberIn(const QLineEdit* field) { return QLocale::c().toDouble(field->text()); }
    static void Show(QLineEdit* field, double value, int decimals)
    {
        field->setText(
            QString::fromStdString(NumberValue(std::round(value * std::pow(10, decimals)) / std::pow(10, decimals))));
    }

    void KeepRatio(QLineEdit* typed, QLineEdit* other, double factor)
    {
        if (ratio_->isChecked() && NumberIn(typed) > 0)
            Show(other, NumberIn(typed) * factor, choice_.size.millimetres ? 1 : 0);
        Take();
    }
    /// The picture stays as large as it is.
    void ChangeUnit()
    {
        const bool millimetres = unit_->currentIndex() == 0;
        if (millimetres == choice_.size.millimetres) return;
        const RectD units = UnitsOf(choice_.size), pixels = PixelsOf(choice_.size);
        Show(width_, millimetres ? units.width / kUnitsPerMillimetre : pixels.width, millimetres ? 1 : 0);
        Show(height_, millimetres ? units.height / kUnitsPerMillimetre : pixels.height, millimetres ? 1 : 0);
        Take();
    }
    void Take()
    {
        choice_.format = PictureFormats()[static_cast<std::size_t>(format_->currentIndex())].format;
        choice_.size = {NumberIn(width_), NumberIn(height_), unit_->currentIndex() == 0, NumberIn(dpi_)};
        // A drawing of so many mm has no dots to count.
        const bool dots = RowOf(choice_.format).pixels || !choice_.size.millimetres;
        dpi_->setEnabled(dots);
        dpi_label_->setEnabled(dots);
        hint_->setText(Qs(choice_.Hint()));
        const bool possible = static_cast<bool>(CheckPictureSize(choice_.size, choice_.format));
        hint_->setForegroundRole(possible ? QPalette::PlaceholderText : QPalette::WindowText);
        foot_->buttons().constFirst()->setEnabled(possible);
    }

    PictureChoice choice_;
    QComboBox *format_, *unit_;
    QLineEdit *width_, *height_, *dpi_;
    QCheckBox* ratio_;
    QLabel *dpi_label_, *hint_;
    QDialogButtonBox* foot_;
    double aspect_ = 1;
};

/// The queues are asked for when the list is opened: one that can't be reached takes its time to say so.
class PrinterBox : public QComboBox {
public:
    PrinterBox(const QString& chosen, QWidget* parent) : QComboBox(parent)
    {
        setObjectName("Printer");
        addItem(kPdfPrinter);
        if (chosen != kPdfPrinter) addItem(chosen);
        setCurrentText(chosen);
        setSizeAdjustPolicy(QComboBox::AdjustToContents);
        setToolTip("The printers of this machine are looked up when the list is opened");
    }
    void showPopup() override
    {
        if (!std::exchange(asked_, true))
            for (const QString& name : QPrinterInfo::availablePrinterNames())
                if (findText(name) < 0) addItem(name);
        QComboBox::showPopup();
    }

private:
    bool asked_ = false;
};

} // namespace

FormAnswer SavePicture(const FormRequest& request, QWidget* parent)
{
    PictureForm form(PictureChoice::From(request.values), parent);
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    return {kOk, form.choice().ToValues()};
}

FormAnswer PrintPlot(const FormRequest& request, QWidget* parent)
{
    PrintChoice choice = PrintChoice::From(request.values);
    PlainForm form("Print", parent);
    auto* grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    auto* printer = new PrinterBox(Qs(choice.printer), &form);
    auto* paper = new QComboBox(&form);
    paper->setObjectName("Paper");
    auto* lies = new QComboBox(&form);
    lies->setObjectName("Orientation");
    lies->addItems({"Portrait", "Landscape"});
    lies->setCurrentIndex(choice.orientation == Orientation::landscape ? 1 : 0);
    const auto list_papers = [&] {
        const int shown = std::max(0, paper->currentIndex());
        const auto orientation = lies->currentIndex() == 1 ? Orientation::landscape : Orientation::portrait;
        paper->clear();
        for (const PaperRow& row : Papers()) paper->addItem(Qs(PaperCaption(row.code, orientation)));
        paper->setCurrentIndex(shown);
    };
    list_papers();
    paper->setCurrentIndex(static_cast<int>(&PaperOf(choice.paper) - Papers().data()));
    QObject::connect(lies, &QComboBox::activated, &form, list_papers);
    AddRow(*grid, "Printer", printer);
    AddRow(*grid, "Paper", paper);
    AddRow(*grid, "Orientation", lies);
    form.column()->addLayout(grid);
    form.AddFoot("Execute Print", "Cancel");
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    choice.printer = printer->currentText().toStdString();
    choice.paper = Papers()[static_cast<std::size_t>(paper->currentIndex())].code;
    choice.orientation = lies->currentIndex() == 1 ? Orientation::landscape : Orientation::portrait;
    return {kOk, choice.ToValues()};
}

} // namespace nmr
