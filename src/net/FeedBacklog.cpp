#include "net/FeedBacklog.h"

#include <QPointer>

#include <utility>

namespace {

FeedBacklog::Clock machineClock()
{
    QElapsedTimer timer;
    timer.start();
    return [timer] { return timer.nsecsElapsed(); };
}

} // namespace

FeedBacklog::FeedBacklog(QObject* parent)
    : QObject(parent)
    , m_clock(machineClock())
{
}

void FeedBacklog::setClock(Clock clock)
{
    m_clock = std::move(clock);
}

void FeedBacklog::setLimit(qsizetype characters)
{
    m_limit = characters;
}

void FeedBacklog::add(const QString& text)
{
    m_texts.push_back(text);
    m_characters += text.size() + charactersBeside;
    scheduleSlice();
    const QPointer<FeedBacklog> self(this);
    if (isOver(m_limit)) {
        m_full = true;
        Q_EMIT filled();
    }
    while (self && isOver(2 * m_limit))
        handOnOldest();
}

void FeedBacklog::clear()
{
    m_texts.clear();
    m_characters = 0;
    m_full = false;
}

bool FeedBacklog::isOver(qsizetype limit) const
{
    return m_characters > limit && m_texts.size() > 1;
}

void FeedBacklog::scheduleSlice()
{
    // A posted event takes its turn with sockets, timers and painting. A timer of 0 ms would wait, on some
    // event loops, until nothing else is left to do.
    if (!std::exchange(m_sliceScheduled, true))
        QMetaObject::invokeMethod(this, &FeedBacklog::readSlice, Qt::QueuedConnection);
}

void FeedBacklog::scheduleNextSlice()
{
    // The next turn paints what this slice has changed, and the next slice comes in the turn after that, so
    // that no turn does both.
    m_sliceScheduled = true;
    QMetaObject::invokeMethod(
        this, [this] { QMetaObject::invokeMethod(this, &FeedBacklog::readSlice, Qt::QueuedConnection); },
        Qt::QueuedConnection);
}

void FeedBacklog::readSlice()
{
    m_sliceScheduled = false;
    if (m_texts.empty())
        return;
    // Before any message is handed on: whoever hears of one may run an event loop of its own.
    if (m_texts.size() > 1)
        scheduleNextSlice();
    const QPointer<FeedBacklog> self(this);
    const qint64 end = m_clock() + sliceNs;
    do {
        handOnOldest();
    } while (self && !m_texts.empty() && m_clock() < end);
    if (self && m_full && !isOver(m_limit)) {
        m_full = false;
        Q_EMIT eased();
    }
    if (self && m_texts.empty())
        Q_EMIT drained();
}

void FeedBacklog::handOnOldest()
{
    const QString text = std::move(m_texts.front());
    m_texts.pop_front();
    m_characters -= text.size() + charactersBeside;
    Q_EMIT due(text);
}
