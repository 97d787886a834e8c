#include "ui/list_dock.h"

#include "core/list_values.h"
#include "session/forms.h"
#include "session/list_commands.h"
#include "session/tools.h"
#include "ui/canvas/qt_canvas.h"
#include "ui/flow_layout.h"
#include "ui/form_dialogs.h"
#include "ui/plot_widget.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMimeData>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace nmr {
namespace {

struct KindRow {
    const char *name, *title, *nothing;
};
constexpr KindRow kKinds[] = {
    {kPeakListWindow, "Peak List", "No peaks are picked.\nPeak Picking (Edit menu) finds them."},
    {kIntegralListWindow, "Integral List", "There are no integrals.\nIntegral (Edit menu) marks them."}};

const KindRow& RowOf(ListDock::Kind kind)
{
    return kKinds[static_cast<std::size_t>(kind)];
}

constexpr int kBeside = 40;           // of the dock around its table
constexpr int kBetweenColumns = 16;   // pixels
constexpr double kMostOfWindow = 0.5; // that a dock takes by itself

} // namespace

void CopyToClipboard(const std::string& plain, const std::string& html)
{
    auto* data = new QMimeData; // the clipboard's
    data->setText(ToQString(plain));
    if (!html.empty()) data->setHtml(ToQString(html));
    QApplication::clipboard()->setMimeData(data);
}

// The window belongs to the main window, which asks for it.
FormAnswer ToggleList(const FormRequest& request, QWidget* parent)
{
    auto* dock = parent != nullptr ? parent->findChild<QDockWidget*>(ToQString(request.form)) : nullptr;
    if (auto* list = dynamic_cast<ListDock*>(dock)) list->Toggle();
    return {forms::kClose, {}};
}

// ---- model

void ListModel::SetTable(ListTable table)
{
    beginResetModel();
    table_ = std::move(table);
    SortTable(table_, static_cast<std::size_t>(std::max(sort_column_, 0)), order_ == Qt::DescendingOrder);
    endResetModel();
}

int ListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(table_.rows.size());
}

int ListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(table_.heads.size());
}

QVariant ListModel::data(const QModelIndex& index, int role) const
{
    const ListTable::Row& row = table_.rows[static_cast<std::size_t>(index.row())];
    if (role == Qt::DisplayRole) return ToQString(row.cells[static_cast<std::size_t>(index.column())]);
    if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole && row.marked) return QStringLiteral("The reference, to which all values relate");
    if (role != Qt::FontRole || !row.marked) return {};
    QFont bold;
    bold.setBold(true);
    return bold;
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    return role == Qt::DisplayRole ? QVariant(ToQString(table_.heads[static_cast<std::size_t>(section)])) : QVariant();
}

void ListModel::sort(int column, Qt::SortOrder order)
{
    sort_column_ = column;
    order_ = order;
    SetTable(std::move(table_));
}

// ---- dock

ListDock::ListDock(Kind kind, Session& session, Tools& tools, PlotWidget& plot, QWidget* parent) :
    QDockWidget(QLatin1String(RowOf(kind).title), parent), kind_(kind), session_(session), g_(session.g), tools_(tools),
    plot_(plot), model_(new ListModel(this)), view_(new QTableView(this)),
    empty_(new QLabel(QLatin1String(RowOf(kind).nothing), this))
{
    setObjectName(QLatin1String(RowOf(kind).name));
    auto* body = new QWidget(this);
    auto* column = new QVBoxLayout(body);
    column->setContentsMargins(6, 4, 6, 6);
    view_->setModel(model_);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setShowGrid(false);
    view_->setAlternatingRowColors(true);
    view_->setWordWrap(false);
    view_->setSortingEnabled(true);
    view_->sortByColumn(0, Qt::AscendingOrder);
    view_->verticalHeader()->hide();
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 6);
    view_->horizontalHeader()->setHighlightSections(false);
    view_->horizontalHeader()->setMinimumSectionSize(36);
    view_->installEventFilter(this);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setForegroundRole(QPalette::PlaceholderText);
    column->addWidget(view_, 1);
    column->addWidget(empty_, 1);
    AddButtons(body);
    setWidget(body);
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { EnableButtons(); });
    connect(view_, &QTableView::doubleClicked, this,
            [this](const QModelIndex& at) { Show(model_->table().rows[static_cast<std::size_t>(at.row())].index); });
}

QPushButton* ListDock::AddButton(QWidget* body, const char* name, const QString& caption, const QString& tip,
                                 std::function<void()> step)
{
    auto* button = new QPushButton(caption, body);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(tip);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, std::move(step));
    return button;
}

void ListDock::AddButtons(QWidget* body)
{
    auto* row = new QWidget(body);
    auto* flow = new FlowLayout(row, 6, 6);
    for_some_ << AddButton(row, "CopyList", QStringLiteral("Copy"),
                           QStringLiteral("The selected lines or all, with tabs (Ctrl+C)"), [this] { Copy(); });
    if (IsPeaks())
        for_some_ << AddButton(row, "CopyPaper", QStringLiteral("Copy as Text"),
                               QStringLiteral("The line of peaks that a paper prints"),
                               [this] { CopyPeaks_Click(session_); });
    for_some_ << AddButton(row, "SaveList", QStringLiteral("Save..."), QStringLiteral("Writes the list into a file"),
                           [this] { IsPeaks() ? m17_Click(session_) : m173_Click(session_); });
    for_selected_ << AddButton(row, "DeleteLines", QStringLiteral("Delete"), QStringLiteral("The selected lines (Del)"),
                               [this] { Delete(); });
    if (!IsPeaks())
        for_selected_ << AddButton(row, "MakeReference", QStringLiteral("Reference"),
                                   QStringLiteral("All values relate to the selected line"), [this] {
                                       const auto selected = Selected();
                                       if (selected.size() == 1)
                                           tools_.MakeReference(static_cast<std::int32_t>(selected[0]));
                                   });
    for (QPushButton* button : row->findChildren<QPushButton*>()) flow->addWidget(button);
    body->layout()->addWidget(row);
}

void ListDock::Refresh()
{
    if (isHidden()) return;
    if (!plot_.HasSpectrum()) {
        model_->SetTable({});
    } else {
        const ListUnit unit = ShownListUnit(g_);
        const auto selected = Selected();
        model_->SetTable(IsPeaks() ? PeakListTable(g_, unit) : IntegralListTable(g_, unit));
        // The same entries stay selected, as far as the list is the same.
        const auto& rows = model_->table().rows;
        for (std::size_t i = 0; i < rows.size() && !selected.empty(); ++i)
            if (std::ranges::find(selected, rows[i].index) != selected.end())
                view_->selectionModel()->select(model_->index(static_cast<int>(i), 0),
                                                QItemSelectionModel::Select | QItemSelectionModel::Rows);
        FitColumns();
    }
    const bool some = model_->rowCount() > 0, was_empty = view_->isHidden();
    view_->setVisible(some);
    empty_->setVisible(!some);
    EnableButtons();
    if (some && was_empty) FitWidth();
}

void ListDock::Toggle()
{
    setVisible(isHidden());
    if (!isHidden()) {
        raise();
        FitWidth();
    }
    if (session_.display_changed) session_.display_changed();
}

/// Each head keeps room for the arrow of the order, which only one of them bears.
void ListDock::FitColumns()
{
    view_->resizeColumnsToContents();
    QAbstractItemView& cells = *view_;
    for (int i = 0; i < model_->columnCount(); ++i) {
        const int head = view_->horizontalHeader()->fontMetrics().horizontalAdvance(
            model_->headerData(i, Qt::Horizontal, Qt::DisplayRole).toString());
        const bool sorted = view_->horizontalHeader()->sortIndicatorSection() == i;
        const int least = sorted ? 0 : std::max(head, cells.sizeHintForColumn(i)) + kBetweenColumns;
        if (least > 0) view_->setColumnWidth(i, std::min(view_->columnWidth(i), least));
    }
}

/// All columns in sight, where the window has the room.
void ListDock::FitWidth()
{
    auto* main_window = qobject_cast<QMainWindow*>(parentWidget());
    if (main_window == nullptr || isFloating()) return;
    const int wanted = std::max(view_->horizontalHeader()->length() + kBeside, sizeHint().width());
    const int most = static_cast<int>(main_window->width() * kMostOfWindow);
    main_window->resizeDocks({this}, {std::min(wanted, most)}, Qt::Horizontal);
}

void ListDock::showEvent(QShowEvent* event)
{
    QDockWidget::showEvent(event);
    Refresh();
}

void ListDock::hideEvent(QHideEvent* event)
{
    QDockWidget::hideEvent(event);
    plot_.setFocus();
}

void ListDock::EnableButtons()
{
    const std::size_t selected = Selected().size();
    for (QPushButton* button : for_some_) button->setEnabled(model_->rowCount() > 0);
    for (QPushButton* button : for_selected_)
        button->setEnabled(button->objectName() == QLatin1String("MakeReference") ? selected == 1 : selected > 0);
}

std::vector<std::size_t> ListDock::Selected() const
{
    std::vector<std::size_t> entries;
    for (const QModelIndex& at : view_->selectionModel()->selectedRows())
        entries.push_back(model_->table().rows[static_cast<std::size_t>(at.row())].index);
    return entries;
}

void ListDock::Copy()
{
    ListTable table = model_->table();
    if (const auto selected = Selected(); !selected.empty())
        std::erase_if(table.rows, [&](const ListTable::Row& row) {
            return std::ranges::find(selected, row.index) == selected.end();
        });
    CopyToClipboard(TabbedText(table), {});
}

void ListDock::Delete()
{
    auto selected = Selected();
    view_->clearSelection();
    if (IsPeaks())
        tools_.DeletePeaks(std::move(selected));
    else
        tools_.DeleteIntegrals(std::move(selected));
}

/// Moves the shown range to an entry.
void ListDock::Show(std::size_t entry)
{
    const DataSet& set = g_.Slots[0];
    if (IsPeaks()) {
        if (entry < set.Peaks.size()) plot_.CentreOn(PeakPpm(set, set.Peaks[entry]));
        return;
    }
    if (entry >= set.Integrals.size()) return;
    const IntegralEntry& region = set.Integrals[entry];
    plot_.CentreOn((IntegralStartPpm(set, region) + IntegralEndPpm(set, region)) / 2);
    tools_.SelectIntegral(static_cast<std::int32_t>(entry));
    if (session_.display_changed) session_.display_changed(); // the fields of the tool are the selected region's
}

bool ListDock::eventFilter(QObject* object, QEvent* event)
{
    if (object != view_ || event->type() != QEvent::KeyPress) return QDockWidget::eventFilter(object, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->matches(QKeySequence::Copy)) {
        Copy();
        return true;
    }
    if (key->key() != Qt::Key_Delete) return QDockWidget::eventFilter(object, event);
    Delete();
    return true;
}

} // namespace nmr
