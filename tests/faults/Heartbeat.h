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

/// What an event loop took at most from one beat to the next.
struct LoopTimes final {
    std::chrono::nanoseconds gap{0}; ///< by which a beat was late
    /// The gap without the time that the thread stood in the queue for a processor: it worked, slept or
    /// waited for something. Where the kernel keeps no account of the queue, the whole gap.
    std::chrono::nanoseconds hold{0};
    /// Processor time of the thread: whatever else the machine does, no single piece of work was longer.
    std::chrono::nanoseconds work{0};
};

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

    /// Since the last restart().
    [[nodiscard]] const LoopTimes& longest() const
    {
        return m_longest;
    }
    [[nodiscard]] bool answersInTime() const
    {
        return m_longest.hold < answerLimit;
    }
    [[nodiscard]] QString told() const
    {
        constexpr std::chrono::milliseconds unit(1);
        return QStringLiteral("gap %1 ms, held for %2 ms, worked for %3 ms")
            .arg(m_longest.gap / unit)
            .arg(m_longest.hold / unit)
            .arg(m_longest.work / unit);
    }
    void restart()
    {
        m_longest = {};
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
        const std::chrono::nanoseconds inQueue = queued();
        const std::chrono::nanoseconds gap = std::chrono::nanoseconds(m_since.nsecsElapsed()) - period;
        m_since.start();
        m_longest.gap = std::max(m_longest.gap, gap);
        m_longest.hold = std::max(m_longest.hold, gap - (inQueue - m_queued));
        m_longest.work = std::max(m_longest.work, now - m_worked);
        m_worked = now;
        m_queued = inQueue;
        m_onBeat();
    }

    std::function<void()> m_onBeat;
    QTimer m_timer;
    QElapsedTimer m_since;
    LoopTimes m_longest;
    std::chrono::nanoseconds m_worked{0};
    std::chrono::nanoseconds m_queued{0};
};

} // namespace faults
