#include "mainwindow/ToolBarKeys.h"

#include "mainwindow/MoreButtons.h"
#include "mainwindow/TabStops.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QStatusTipEvent>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>

namespace {

bool isMove(const QKeyEvent& press)
{
    static constexpr int moves[]
        = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End};
    return std::find(std::begin(moves), std::end(moves), press.key()) != std::end(moves);
}

QString nameOf(const QToolButton& button)
{
    for (const QString& name : {button.statusTip(), button.toolTip(), button.accessibleName()}) {
        if (!name.isEmpty())
            return name;
    }
    return button.text();
}

} // namespace

ToolBarKeys::ToolBarKeys(QToolBar& bar, const MoreButtons& more)
    : QObject(&bar)
    , m_bar(bar)
    , m_more(more)
{
    for (QToolButton* button : bar.findChildren<QToolButton*>())
        button->installEventFilter(this);
}

bool ToolBarKeys::eventFilter(QObject* watched, QEvent* event)
{
    // Other events may come when the button is being destroyed, and no button any more.
    switch (event->type()) {
    case QEvent::FocusIn:
        tell(nameOf(*static_cast<QToolButton*>(watched)));
        return false;
    case QEvent::FocusOut:
        tell({});
        return false;
    case QEvent::KeyPress:
        if (!isMove(*static_cast<QKeyEvent*>(event)))
            return false;
        go(*static_cast<QToolButton*>(watched), static_cast<QKeyEvent*>(event)->key());
        return true;
    default:
        return false;
    }
}

QList<QToolButton*> ToolBarKeys::stops() const
{
    QList<QToolButton*> buttons = m_more.inOrder();
    buttons.removeIf([](const QToolButton* button) { return !isTabStop(*button); });
    return buttons;
}

void ToolBarKeys::go(QToolButton& from, int key) const
{
    const QList<QToolButton*> all = stops();
    const qsizetype last = all.size() - 1;
    const qsizetype here = all.indexOf(&from);
    const bool forward = key == Qt::Key_Right || key == Qt::Key_Down || key == Qt::Key_End;
    qsizetype there = forward ? here + 1 : here - 1;
    if (key == Qt::Key_Home || key == Qt::Key_End)
        there = forward ? last : 0;
    if (here >= 0 && there >= 0 && there <= last)
        all.at(there)->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

void ToolBarKeys::tell(const QString& name) const
{
    // As Qt does it for what the mouse comes to. A floating toolbar is a window, beyond which no event goes.
    QStatusTipEvent tip(name);
    QCoreApplication::sendEvent(m_bar.parentWidget(), &tip);
}
