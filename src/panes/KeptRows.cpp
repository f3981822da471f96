#include "panes/KeptRows.h"

#include <QAbstractItemView>
#include <QHash>

#include <algorithm>
#include <iterator>

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

/// Keeps a list from scrolling to the row that becomes current.
class StillList final {
    Q_DISABLE_COPY_MOVE(StillList)

public:
    explicit StillList(QAbstractItemView& list)
        : m_list(list)
        , m_scrolls(list.hasAutoScroll())
    {
        list.setAutoScroll(false);
    }
    ~StillList() { m_list.setAutoScroll(m_scrolls); }

private:
    QAbstractItemView& m_list;
    bool m_scrolls;
};

QStringList keysOf(const QAbstractItemView& list, const KeptRows::Key& key)
{
    QStringList keys;
    const int rows = list.model()->rowCount();
    keys.reserve(rows);
    for (int row = 0; row < rows; ++row)
        keys.append(key(row));
    return keys;
}

} // namespace

QStringList heirsOf(const QStringList& keys, qsizetype place)
{
    QStringList heirs = keys.mid(place + 1);
    std::copy(keys.crend() - place, keys.crend(), std::back_inserter(heirs));
    return heirs;
}

KeptRows KeptRows::of(const QAbstractItemView& list, const Key& key)
{
    KeptRows kept;
    if (const QModelIndex current = list.currentIndex(); current.isValid())
        kept.m_current = key(current.row());
    if (!kept.m_current.isEmpty())
        kept.m_heirs = heirsOf(keysOf(list, key), list.currentIndex().row());
    const QModelIndexList selected = list.selectionModel()->selectedRows();
    for (const QModelIndex& row : selected)
        kept.m_selected.insert(key(row.row()));
    kept.m_selected.remove(QString());
    return kept;
}

void KeptRows::restore(QAbstractItemView& list, const Key& key) const
{
    if (m_current.isEmpty() && m_selected.isEmpty())
        return;
    QHash<QString, int> rows;
    QItemSelection selection;
    for (int row = 0; row < list.model()->rowCount(); ++row) {
        const QString name = key(row);
        if (name.isEmpty())
            continue;
        rows.insert(name, row);
        if (m_selected.contains(name))
            appendRow(selection, list.model()->index(row, 0));
    }
    const QModelIndex current = list.model()->index(rows.value(m_current, -1), 0);
    const StillList still(list);
    // Not through the view, which would also ask which keys are held down at the moment.
    QItemSelectionModel& choice = *list.selectionModel();
    choice.setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    choice.select(selection, QItemSelectionModel::Select);
    if (current.isValid())
        return;
    const auto heir = std::find_if(
        m_heirs.begin(), m_heirs.end(), [&rows](const QString& name) { return rows.contains(name); });
    if (heir == m_heirs.end())
        return;
    // Beside other selected rows it is selected only where it inherits that.
    const bool selects = selection.isEmpty() || m_selected.contains(m_current);
    choice.setCurrentIndex(list.model()->index(rows.value(*heir), 0),
        selects ? QItemSelectionModel::Select | QItemSelectionModel::Rows : QItemSelectionModel::NoUpdate);
}
