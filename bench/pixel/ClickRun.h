#pragma once

#include "pixel/Desk.h"
#include "pixel/QueueTime.h"

#include <vector>

class SnapshotSender;

/// Clicks on the button to buy of a chart, and how long each took to be a request at the platform.
class ClickRun final {
    Q_DISABLE_COPY_MOVE(ClickRun)

public:
    /// The desk must outlive the run. A click that has sent nothing for that long is missed.
    explicit ClickRun(Desk& desk, int patienceMs = 1000);
    ~ClickRun();

    /// At moments of chance. A button acts when it is let go, so that is the moment that counts.
    void measureQuiet(int samples);
    /// The same among snapshots of all symbols, so many a second, each of which moves a fifth of them.
    void measureLoaded(int snapshotsASecond, int samples);

    [[nodiscard]] const std::vector<double>& milliseconds() const { return m_ms; }
    /// What is left of each time without that in which terminal, X server and this process waited for a
    /// processor: its lower bound, since they may have waited at once.
    [[nodiscard]] const std::vector<double>& ownMs() const { return m_ownMs; }
    /// How many snapshots a second were sent while times were taken; 0 when none were.
    [[nodiscard]] double rate() const { return m_rate; }
    [[nodiscard]] int missed() const { return m_missed; }

private:
    void measure(int samples, SnapshotSender* sender);

    Desk& m_desk;
    QueueTime m_queue;
    int m_patienceMs;
    qint64 m_arrivedNs = 0;
    qint64 m_queuedNs = 0; ///< all until then
    int m_requests = 0;
    int m_missed = 0;
    double m_rate = 0.0;
    std::vector<double> m_ms;
    std::vector<double> m_ownMs;
};
