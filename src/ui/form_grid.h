#pragma once
// Tables of text for forms.

#include "ui/form_parts.h"

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTableWidget>

namespace nmr {

/// A table that fills the form's column, its last column taking what is left.
inline QTableWidget* AddGrid(PlainForm& form, const QStringList& heads, int rows)
{
    auto* table = new QTableWidget(rows, static_cast<int>(heads.size()), &form);
    table->setHorizontalHeaderLabels(heads);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setFixedHeight(table->fontMetrics().height() + 10);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 8);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->setTabKeyNavigation(false);
    form.column()->addWidget(table, 1);
    return table;
}

inline QTableWidgetItem* SetCell(QTableWidget& table, int row, int column, const QString& text, bool editable)
{
    auto* item = new QTableWidgetItem(text);
    item->setFlags(editable ? item->flags() | Qt::ItemIsEditable : item->flags() & ~Qt::ItemIsEditable);
    table.setItem(row, column, item);
    return item;
}

/// In-cell editor; cells with kNumberCell take numbers only, with the point as decimal sign.
inline constexpr int kNumberCell = Qt::UserRole;
class CellEditor : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const override
    {
        auto* edit = new QLineEdit(parent);
        edit->setObjectName("TextForEdit");
        edit->setFrame(false);
        if (index.data(kNumberCell).toBool()) {
            auto* validator = new QDoubleValidator(edit);
            validator->setLocale(QLocale::c());
            edit->setValidator(validator);
        }
        return edit;
    }
};

} // namespace nmr
