#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <functional>

/// Has snapshots sent at a rate, as long as it lives and the event loop turns.
class SnapshotSender final {
    Q_DISABLE_COPY_MOVE(SnapshotSender)

public:
    /// Begins at once. What was kept from its time is sent after it, a few at a time.
    SnapshotSender(int aSecond, std::function<void()> sendNext);
    ~SnapshotSender() = default;

    /// The rate is that of what is sent from now on.
    void beginCounting();
    /// A second, really sent.
    [[nodiscard]] double rate() const;

private:
    void sendWhatIsDue();

    int m_aSecond;
    std::function<void()> m_sendNext;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_sent = 0;
    qint64 m_sentBefore = 0;
    qint64 m_countedFromNs = 0;
};
