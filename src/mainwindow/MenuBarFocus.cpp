#include "mainwindow/MenuBarFocus.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>

MenuBarFocus::MenuBarFocus(QMenuBar& bar)
    : QObject(&bar)
    , m_bar(bar)
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* before, const QWidget* now) {
        if (now == &m_bar && before && before != now)
            m_before = before;
    });
    for (const QAction* entry : bar.actions()) {
        entry->menu()->installEventFilter(this);
        // Another menu may follow at once.
        connect(entry->menu(), &QMenu::aboutToHide, this, &MenuBarFocus::giveBack, Qt::QueuedConnection);
    }
}

bool MenuBarFocus::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
        return false;
    leave(*static_cast<QMenu*>(watched));
    return true;
}

void MenuBarFocus::leave(QMenu& menu)
{
    menu.hide();
    // The bar leaves its entries by the same key.
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(&m_bar, &escape);
    giveBack();
}

void MenuBarFocus::giveBack()
{
    if (m_before && m_bar.hasFocus() && !m_bar.activeAction() && !QApplication::activePopupWidget())
        m_before->setFocus(Qt::MenuBarFocusReason);
}
