#include "pixel/SnapshotSender.h"

#include <utility>

namespace {

constexpr qint64 second = 1'000'000'000;

} // namespace

SnapshotSender::SnapshotSender(int aSecond, std::function<void()> sendNext)
    : m_aSecond(aSecond)
    , m_sendNext(std::move(sendNext))
{
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { sendWhatIsDue(); });
    m_clock.start();
    m_timer.start(1000 / aSecond);
}

void SnapshotSender::beginCounting()
{
    m_sentBefore = m_sent;
    m_countedFromNs = m_clock.nsecsElapsed();
}

double SnapshotSender::rate() const
{
    return static_cast<double>(m_sent - m_sentBefore) * static_cast<double>(second)
        / static_cast<double>(m_clock.nsecsElapsed() - m_countedFromNs);
}

void SnapshotSender::sendWhatIsDue()
{
    // Never as a flood.
    constexpr int mostAtOnce = 5;
    const qint64 wanted = m_clock.nsecsElapsed() * m_aSecond / second;
    for (int i = 0; i < mostAtOnce && m_sent < wanted; ++i) {
        ++m_sent;
        m_sendNext();
    }
}
