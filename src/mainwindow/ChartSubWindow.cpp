#include "mainwindow/ChartSubWindow.h"

#include "mainwindow/ChartArea.h"

ChartSubWindow::ChartSubWindow(QWidget& chart)
{
    // Reached by Tab, the frame would move the focus on to its first child, and once more whenever it becomes
    // active again.
    setFocusPolicy(Qt::ClickFocus);
    setAttribute(Qt::WA_DeleteOnClose);
    setWidget(&chart);
}

bool ChartSubWindow::focusNextPrevChild(bool next)
{
    // Qt hides the window for a moment when it becomes large or small, and moves the focus from what it hides
    // to the next widget, which would be the button of the one-click panel that sells.
    if (!isVisible())
        return false;
    // Qt would go round within this window for ever.
    auto* area = qobject_cast<ChartArea*>(mdiArea());
    return area ? area->moveFocusOn(next) : QMdiSubWindow::focusNextPrevChild(next);
}
