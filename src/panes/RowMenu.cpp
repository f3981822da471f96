#include "panes/RowMenu.h"

#include <QContextMenuEvent>
#include <QTreeWidget>

RowMenu::RowMenu(QTreeWidget& list)
    : QObject(&list)
    , m_list(list)
{
    list.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&list, &QTreeWidget::customContextMenuRequested, this, &RowMenu::askForRowAt);
    list.installEventFilter(this);
}

bool RowMenu::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (event->type() != QEvent::ContextMenu)
        return false;
    if (static_cast<const QContextMenuEvent*>(event)->reason() != QContextMenuEvent::Keyboard)
        return false;
    askForCurrentRow();
    return true;
}

void RowMenu::askForRowAt(const QPoint& viewportPos)
{
    if (const QTreeWidgetItem* row = m_list.itemAt(viewportPos))
        Q_EMIT wanted(m_list.viewport()->mapToGlobal(viewportPos), row);
}

void RowMenu::askForCurrentRow()
{
    const QTreeWidgetItem* row = m_list.currentItem();
    if (!row)
        return;
    m_list.scrollToItem(row);
    const QRect seen = m_list.visualItemRect(row) & m_list.viewport()->rect();
    Q_EMIT wanted(m_list.viewport()->mapToGlobal(seen.center()), row);
}
