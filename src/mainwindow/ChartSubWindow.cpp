#include "mainwindow/ChartSubWindow.h"

ChartSubWindow::ChartSubWindow(QWidget& chart)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWidget(&chart);
}

bool ChartSubWindow::focusNextPrevChild(bool next)
{
    // Qt hides the window for a moment when it becomes large or small, and takes the focus from what
    // it hides to what comes next. That would be the volume of the next one-click order.
    return isVisible() && QMdiSubWindow::focusNextPrevChild(next);
}
