#include "panes/KeptRows.h"

#include <QAbstractItemView>

namespace {

/// Appends a row to the selection, as part of its last range where that ends just above.
void appendRow(QItemSelection& selection, const QModelIndex& first)
{
    const QModelIndex last = first.siblingAtColumn(first.model()->columnCount() - 1);
    if (!selection.isEmpty() && selection.constLast().bottom() == first.row() - 1)
        selection.last() = QItemSelectionRange(selection.constLast().topLeft(), last);
    else
        selection.append(QItemSelectionRange(first, last));
}

} // namespace

KeptRows KeptRows::of(const QAbstractItemView& list, const Key& key)
{
    KeptRows kept;
    if (list.currentIndex().isValid())
        kept.m_current = key(list.currentIndex().row());
    const QModelIndexList selected = list.selectionModel()->selectedRows();
    for (const QModelIndex& row : selected)
        kept.m_selected.insert(key(row.row()));
    kept.m_selected.remove(QString());
    return kept;
}

void KeptRows::restore(const QAbstractItemView& list, const Key& key) const
{
    if (m_current.isEmpty() && m_selected.isEmpty())
        return;
    QModelIndex current;
    QItemSelection selection;
    for (int row = 0; row < list.model()->rowCount(); ++row) {
        const QString name = key(row);
        if (name.isEmpty())
            continue;
        if (name == m_current)
            current = list.model()->index(row, 0);
        if (m_selected.contains(name))
            appendRow(selection, list.model()->index(row, 0));
    }
    // Not through the view, which would also ask which keys are held down at the moment.
    list.selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    list.selectionModel()->select(selection, QItemSelectionModel::Select);
}
