// "Arrange Instrumental Data for Reference Setting": the table of 0 ppm frequencies.

#include "core/text.h"
#include "session/forms.h"
#include "ui/form_dialogs.h"
#include "ui/form_grid.h"

namespace nmr {
namespace {

using namespace forms;

constexpr const char* kColumns[] = {kInstrument, kProbe, kNucleus, kFrequency, kZeroPpm, kDate};
const QStringList kHeads = {"Instrument", "Probe", "Nucleus", "Frequency/MHz", "0 ppm/MHz", "Date"};
constexpr int kNumber = Qt::UserRole + 1; ///< row of the values, in the first column
constexpr int kSearched = 3;              ///< columns: instrument, probe, nucleus; those behind them are right-aligned

class InstrumentForm : public PlainForm {
public:
    InstrumentForm(const FormRequest& request, QWidget* parent) :
        PlainForm("Arrange Instrumental Data for Reference Setting", parent), values_(request.values)
    {
        resize(760, 460);
        auto* line = new QHBoxLayout;
        search_ = new QLineEdit(this);
        search_->setObjectName("Search");
        search_->setPlaceholderText("Instrument, probe or nucleus");
        search_->setClearButtonEnabled(true);
        line->addWidget(new QLabel("Search", this));
        line->addWidget(search_, 1);
        column()->addLayout(line);
        table_ = AddGrid(*this, kHeads, 0);
        table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
        table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        const int count = static_cast<int>(Number(values_, kCount));
        for (int n = 1; n <= count; ++n) Append(n);
        ArrangeColumns();
        empty_ = new QLabel(this);
        empty_->setObjectName("Empty");
        empty_->setForegroundRole(QPalette::PlaceholderText);
        empty_->setAlignment(Qt::AlignCenter);
        auto* middle = new QVBoxLayout(table_->viewport());
        middle->addWidget(empty_, 0, Qt::AlignCenter);
        AddButtons();
        AddFoot("OK", "Cancel");
        connect(search_, &QLineEdit::textChanged, this, [this] { Filter(); });
        connect(table_, &QTableWidget::itemSelectionChanged, this, [this] { ShowState(); });
        ShowState();
    }
    std::string Rows() const
    {
        std::string rows;
        for (int row = 0; row < table_->rowCount(); ++row) rows += std::to_string(NumberOf(row)) + "\n";
        return rows;
    }

private:
    int NumberOf(int row) const { return table_->item(row, 0)->data(kNumber).toInt(); }

    void ArrangeColumns()
    {
        table_->horizontalHeader()->setStretchLastSection(false);
        table_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
        table_->resizeColumnsToContents();
        for (int c = 0; c < static_cast<int>(std::size(kColumns)); ++c)
            table_->setColumnWidth(c, std::max(table_->columnWidth(c) + 12, 96));
        for (int c = kSearched; c < table_->columnCount(); ++c)
            table_->horizontalHeaderItem(c)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }

    void Fill(int row, int n)
    {
        for (int c = 0; c < static_cast<int>(std::size(kColumns)); ++c) {
            QTableWidgetItem* item = SetCell(*table_, row, c, Qs(Text(values_, Indexed(kColumns[c], n))), false);
            if (c >= kSearched) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        }
        table_->item(row, 0)->setData(kNumber, n);
    }
    void Append(int n)
    {
        table_->insertRow(table_->rowCount());
        Fill(table_->rowCount() - 1, n);
    }

    void AddButtons()
    {
        auto* line = new QHBoxLayout;
        add_ = new QPushButton("Add Present Data", this);
        add_->setObjectName("Add");
        add_->setToolTip("The instrument of the spectrum with its present 0 ppm; a row for the same is replaced");
        delete_ = new QPushButton("Delete", this);
        delete_->setObjectName("Delete");
        for (QPushButton* button : {add_, delete_}) {
            button->setAutoDefault(false);
            line->addWidget(button);
        }
        line->addStretch(1);
        column()->addLayout(line);
        connect(add_, &QPushButton::clicked, this, [this] { AddPresent(); });
        connect(delete_, &QPushButton::clicked, this, [this] { DeleteSelected(); });
    }

    void AddPresent()
    {
        const int same = static_cast<int>(Number(values_, kSameAsPresent));
        int row = table_->rowCount();
        for (int r = 0; r < table_->rowCount(); ++r)
            if (NumberOf(r) == kPresentRow || (same > 0 && NumberOf(r) == same)) row = r;
        row < table_->rowCount() ? Fill(row, kPresentRow) : Append(kPresentRow);
        search_->clear();
        table_->selectRow(row);
        table_->scrollToItem(table_->item(row, 0));
    }

    void DeleteSelected()
    {
        for (int row = table_->rowCount() - 1; row >= 0; --row)
            if (table_->item(row, 0)->isSelected() && !table_->isRowHidden(row)) table_->removeRow(row);
        ShowState();
    }

    void Filter()
    {
        const std::string text = search_->text().trimmed().toStdString();
        for (int row = 0; row < table_->rowCount(); ++row) {
            bool found = false;
            for (int c = 0; c < kSearched; ++c)
                found = found || ContainsNoCase(table_->item(row, c)->text().toStdString(), text);
            table_->setRowHidden(row, !found);
        }
        table_->clearSelection();
        ShowState();
    }

    void ShowState()
    {
        add_->setEnabled(values_.contains(Indexed(kFrequency, kPresentRow)));
        delete_->setEnabled(!table_->selectedItems().isEmpty());
        bool seen = false;
        for (int row = 0; row < table_->rowCount(); ++row) seen = seen || !table_->isRowHidden(row);
        empty_->setVisible(!seen);
        empty_->setText(table_->rowCount() > 0 ? "Nothing is found."
                                               : "No instrument is listed yet.\nAdd Present Data makes the first row.");
    }

    const Values& values_;
    QLineEdit* search_ = nullptr;
    QTableWidget* table_ = nullptr;
    QLabel* empty_ = nullptr;
    QPushButton *add_ = nullptr, *delete_ = nullptr;
};

} // namespace

FormAnswer Instrument_Form(const FormRequest& request, QWidget* parent)
{
    InstrumentForm form(request, parent);
    if (form.exec() != QDialog::Accepted) return {kCancel, {}};
    return {kOk, {{kRows, form.Rows()}}};
}

} // namespace nmr
