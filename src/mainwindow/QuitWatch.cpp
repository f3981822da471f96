#include "mainwindow/QuitWatch.h"

#include <QCoreApplication>
#include <QEvent>

QuitWatch::QuitWatch(QObject* parent)
    : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool QuitWatch::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Quit || watched != QCoreApplication::instance())
        return false;
    Q_EMIT quitRequested();
    return true;
}
