#include "mainwindow/PaneRing.h"

qsizetype nextPane(const QList<bool>& onShow, qsizetype current, bool forward)
{
    const qsizetype count = onShow.size();
    if (count == 0)
        return -1;
    const qsizetype step = forward ? 1 : count - 1;
    const qsizetype beforeFirst = (count - step) % count;
    qsizetype pane = current < 0 ? beforeFirst : current;
    for (qsizetype tried = 0; tried < count; ++tried) {
        pane = (pane + step) % count;
        if (onShow.at(pane))
            return pane;
    }
    return -1;
}
