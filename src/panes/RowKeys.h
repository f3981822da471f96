#pragma once

#include <QList>
#include <QObject>
#include <QString>

class QAbstractItemModel;
class QItemSelection;
class QTreeWidget;

/// What a list does beside moving from row to row: any number of rows can be selected, Ctrl+C copies them,
/// and letters look for a row that begins with them.
class RowKeys final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RowKeys)

public:
    /// Letters look into the column of the current cell, and into `searched` instead of the first one, which
    /// may hold times. The list is also the parent.
    explicit RowKeys(QTreeWidget& list, int searched = 0);
    ~RowKeys() override = default;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void copy() const;
    void beginSearch() const;

    QTreeWidget& m_list;
    int m_searched;
};

/// The rows of a selection as text for a table: a line of headers and a line for each row, from top to
/// bottom, cells in this order of columns with a tab between. Cells are put on one line. Empty without rows.
[[nodiscard]] QString rowsAsText(
    const QAbstractItemModel& model, const QItemSelection& selection, const QList<int>& columns);
