#include "panes/RowEntry.h"

#include "app/ui/EnterKey.h"

#include <QTreeWidget>

RowEntry::RowEntry(QTreeWidget& list)
    : QObject(&list)
    , m_list(list)
{
    list.installEventFilter(this);
}

bool RowEntry::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto* press = static_cast<const QKeyEvent*>(event);
    if (!isPlainEnter(*press))
        return false;
    const QTreeWidgetItem* row = m_list.currentItem();
    if (row && !press->isAutoRepeat())
        Q_EMIT entered(row);
    return true;
}
