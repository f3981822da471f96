#include "support/GapWatch.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <utility>

namespace {

qint64 threadTimeNs()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return qint64{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

} // namespace

GapWatch::GapWatch(int periodMs)
    : m_periodMs(periodMs)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { note(); });
    resume();
}

void GapWatch::pause()
{
    if (!m_timer.isActive())
        return;
    note();
    m_timer.stop();
}

void GapWatch::resume()
{
    m_sinceLast.start();
    m_ranAtLast = threadTimeNs();
    m_timer.start(m_periodMs);
}

void GapWatch::forget()
{
    m_all = {};
    m_byDoing.clear();
}

GapWatch::Gaps GapWatch::take()
{
    return gapsOf(std::exchange(m_recent, {}));
}

void GapWatch::note()
{
    // A turn that comes in time is as long as the timer waits.
    const double ms = std::max(0.0, static_cast<double>(m_sinceLast.nsecsElapsed()) / 1e6 - m_periodMs);
    const double runMs = static_cast<double>(threadTimeNs() - m_ranAtLast) / 1e6;
    add(m_recent, ms, runMs);
    add(m_all, ms, runMs);
    m_byDoing[m_doing] = std::max(m_byDoing.value(m_doing), runMs);
    m_sinceLast.start();
    m_ranAtLast = threadTimeNs();
}

void GapWatch::add(Record& record, double ms, double runMs) const
{
    if (runMs > record.longestRunMs)
        record.during = m_doing;
    record.longestMs = std::max(record.longestMs, ms);
    record.longestRunMs = std::max(record.longestRunMs, runMs);
    const auto slot = std::min(static_cast<std::size_t>(std::ceil(ms)), record.turns.size() - 1);
    ++record.turns.at(slot);
    ++record.count;
}

GapWatch::Gaps GapWatch::gapsOf(const Record& record)
{
    int longer = record.count;
    int p99 = 0;
    for (const int turns : record.turns) {
        longer -= turns;
        if (100LL * longer <= record.count)
            break;
        ++p99;
    }
    return {record.longestMs, record.longestRunMs, p99, record.during};
}
