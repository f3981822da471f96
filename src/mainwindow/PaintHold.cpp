#include "mainwindow/PaintHold.h"

#include <QCoreApplication>
#include <QEvent>
#include <QNetworkReply>
#include <QWidget>

#include <utility>

PaintHold::PaintHold(QWidget& window, const QNetworkReply& reply, int longestMs)
    : QObject(&window)
    , m_window(window)
{
    window.installEventFilter(this);
    m_longest.start(longestMs, Qt::PreciseTimer, this);
    connect(&reply, &QNetworkReply::uploadProgress, this, [this](qint64 sent, qint64 all) {
        if (sent == all)
            end();
    });
}

PaintHold::~PaintHold() = default;

bool PaintHold::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (event->type() != QEvent::UpdateRequest)
        return false;
    m_isDue = true;
    return true;
}

void PaintHold::timerEvent(QTimerEvent* /*event*/)
{
    end();
}

void PaintHold::end()
{
    m_longest.stop();
    m_window.removeEventFilter(this);
    if (std::exchange(m_isDue, false))
        QCoreApplication::postEvent(&m_window, new QEvent(QEvent::UpdateRequest), Qt::LowEventPriority);
    deleteLater();
}
