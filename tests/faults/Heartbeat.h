#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <functional>

namespace faults {

/// Beats every ten milliseconds as long as the event loop turns, and knows the longest time that it did not.
class Heartbeat final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Heartbeat)

public:
    static constexpr std::chrono::milliseconds period{10};
    /// In which a window answers. A sanitizer takes several times as long for the same.
#ifdef __SANITIZE_ADDRESS__
    static constexpr std::chrono::milliseconds answerLimit{400};
#else
    static constexpr std::chrono::milliseconds answerLimit{100};
#endif

    explicit Heartbeat(std::function<void()> onBeat)
        : m_onBeat(std::move(onBeat))
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, &Heartbeat::beat);
        m_timer.start(period);
        restart();
    }

    /// Milliseconds by which a beat was late at most, since the last restart().
    [[nodiscard]] qint64 longestGap() const
    {
        return m_longest;
    }
    /// Processor time that this thread took from one beat to the next at most: whatever else the machine
    /// does, no single piece of work was longer.
    [[nodiscard]] std::chrono::nanoseconds longestWork() const
    {
        return m_longestWork;
    }
    /// The longest gap without the time that this thread stood in the queue for a processor: it worked, slept
    /// or waited for something. Where the kernel keeps no account of the queue, the whole gap.
    [[nodiscard]] std::chrono::nanoseconds longestHold() const
    {
        return m_longestHold;
    }
    [[nodiscard]] bool answersInTime() const
    {
        return longestHold() < answerLimit;
    }
    [[nodiscard]] QString told() const
    {
        return QStringLiteral("gap %1 ms, held for %2 ms, worked for %3 ms")
            .arg(m_longest)
            .arg(m_longestHold / std::chrono::milliseconds(1))
            .arg(m_longestWork / std::chrono::milliseconds(1));
    }
    void restart()
    {
        m_longest = 0;
        m_longestWork = {};
        m_longestHold = {};
        m_since.start();
        m_worked = worked();
        m_queued = queued();
    }

private:
    [[nodiscard]] static std::chrono::nanoseconds worked()
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }
    [[nodiscard]] static std::chrono::nanoseconds queued()
    {
        std::ifstream file("/proc/thread-self/schedstat");
        long long ran = 0;
        long long waited = 0;
        return std::chrono::nanoseconds(file >> ran >> waited ? waited : 0);
    }
    void beat()
    {
        const std::chrono::nanoseconds now = worked();
        m_longestWork = std::max(m_longestWork, now - m_worked);
        m_worked = now;
        const std::chrono::nanoseconds inQueue = queued();
        const std::chrono::nanoseconds gap = std::chrono::nanoseconds(m_since.nsecsElapsed()) - period;
        m_since.start();
        m_longestHold = std::max(m_longestHold, gap - (inQueue - m_queued));
        m_queued = inQueue;
        m_longest = std::max<qint64>(m_longest, gap / std::chrono::milliseconds(1));
        m_onBeat();
    }

    std::function<void()> m_onBeat;
    QTimer m_timer;
    QElapsedTimer m_since;
    qint64 m_longest = 0;
    std::chrono::nanoseconds m_worked{0};
    std::chrono::nanoseconds m_longestWork{0};
    std::chrono::nanoseconds m_queued{0};
    std::chrono::nanoseconds m_longestHold{0};
};

} // namespace faults
