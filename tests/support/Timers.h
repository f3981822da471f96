#pragma once

#include <QCoreApplication>
#include <QTimer>
#include <QTimerEvent>

/// Lets a running timer time out now, as when its interval had passed. A stopped one does not.
inline void timeOut(QTimer& timer)
{
    if (!timer.isActive())
        return;
    QTimerEvent event(timer.timerId());
    QCoreApplication::sendEvent(&timer, &event);
}
