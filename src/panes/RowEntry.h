#pragma once

#include <QObject>

class QTreeWidget;
class QTreeWidgetItem;

/// Plain Enter on the current row of a list. Qt's own word for that, itemActivated(), is also said of clicks,
/// of one or of two as the desktop has it, and again while the key is held down.
class RowEntry final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RowEntry)

public:
    /// The list is also the parent.
    explicit RowEntry(QTreeWidget& list);
    ~RowEntry() override = default;

Q_SIGNALS:
    /// Once for each press, however long.
    void entered(const QTreeWidgetItem* row);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QTreeWidget& m_list;
};
