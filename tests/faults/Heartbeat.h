#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <functional>

namespace faults {

/// Beats every ten milliseconds as long as the event loop turns, and knows the longest time that it did not.
class Heartbeat final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Heartbeat)

public:
    static constexpr std::chrono::milliseconds period{10};

    explicit Heartbeat(std::function<void()> onBeat)
        : m_onBeat(std::move(onBeat))
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, &Heartbeat::beat);
        m_timer.start(period);
        restart();
    }

    /// Milliseconds by which a beat was late at most, since the last restart().
    [[nodiscard]] qint64 longestGap() const { return m_longest; }
    /// Processor time that this thread took from one beat to the next at most: whatever else the machine
    /// does, no single piece of work was longer.
    [[nodiscard]] std::chrono::nanoseconds longestWork() const { return m_longestWork; }
    void restart()
    {
        m_longest = 0;
        m_longestWork = {};
        m_since.start();
        m_worked = worked();
    }

private:
    [[nodiscard]] static std::chrono::nanoseconds worked()
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }
    void beat()
    {
        const std::chrono::nanoseconds now = worked();
        m_longestWork = std::max(m_longestWork, now - m_worked);
        m_worked = now;
        m_longest = std::max(m_longest, m_since.restart() - period.count());
        m_onBeat();
    }

    std::function<void()> m_onBeat;
    QTimer m_timer;
    QElapsedTimer m_since;
    qint64 m_longest = 0;
    std::chrono::nanoseconds m_worked{0};
    std::chrono::nanoseconds m_longestWork{0};
};

} // namespace faults
