#include "mainwindow/ChartSubWindow.h"

ChartSubWindow::ChartSubWindow(QWidget& chart)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWidget(&chart);
}

bool ChartSubWindow::focusNextPrevChild(bool next)
{
    // Qt hides the window for a moment when it becomes large or small, and moves the focus from what it hides
    // to the next widget, which would be the volume of the one-click panel.
    return isVisible() && QMdiSubWindow::focusNextPrevChild(next);
}
