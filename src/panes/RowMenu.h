#pragma once

#include <QObject>

class QPoint;
class QTreeWidget;
class QTreeWidgetItem;

/// Which row of a list a menu is wanted for. The mouse means the row under it, the keyboard the current one,
/// which comes into sight. Qt would take for the latter whatever row lies in the middle where none is
/// current.
class RowMenu final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RowMenu)

public:
    /// The list is also the parent.
    explicit RowMenu(QTreeWidget& list);
    ~RowMenu() override = default;

Q_SIGNALS:
    /// The place is on the row. Not told where there is no row.
    void wanted(const QPoint& globalPos, const QTreeWidgetItem* row);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void askForRowAt(const QPoint& viewportPos);
    void askForCurrentRow();

    QTreeWidget& m_list;
};
