#pragma once
// The peak list and the integral list beside the spectrum: sorted by a click on a head, copied, saved, and
// edited as the mouse does in the plot.

#include "session/list_tables.h"
#include "session/session.h"

#include <QAbstractTableModel>
#include <QDockWidget>

class QLabel;
class QPushButton;
class QTableView;

namespace nmr {

class PlotWidget;
class Tools;

/// Plain text, and rich text where there is one.
void CopyToClipboard(const std::string& plain, const std::string& html);

class ListModel : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;
    /// Keeps the order that was asked for.
    void SetTable(ListTable table);
    const ListTable& table() const { return table_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

private:
    ListTable table_;
    int sort_column_ = 0;
    Qt::SortOrder order_ = Qt::AscendingOrder;
};

class ListDock : public QDockWidget {
public:
    enum class Kind { peaks, integrals };
    ListDock(Kind kind, Session& session, Tools& tools, PlotWidget& plot, QWidget* parent);

    /// Data or list changed; nothing while it is hidden.
    void Refresh();
    void Toggle();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void showEvent(QShowEvent*) override;
    void hideEvent(QHideEvent*) override;

private:
    void AddButtons(QWidget* body);
    QPushButton* AddButton(QWidget* body, const char* name, const QString& caption, const QString& tip,
                           std::function<void()> step);
    std::vector<std::size_t> Selected() const; ///< entries of the selected rows
    void Copy();
    void Delete();
    void Show(std::size_t entry);
    void FitColumns();
    void FitWidth();
    void EnableButtons();
    bool IsPeaks() const { return kind_ == Kind::peaks; }

    Kind kind_;
    Session& session_;
    GlobalBlock& g_;
    Tools& tools_;
    PlotWidget& plot_;
    ListModel* model_;
    QTableView* view_;
    QLabel* empty_;
    QList<QPushButton*> for_some_, for_selected_;
};

} // namespace nmr
