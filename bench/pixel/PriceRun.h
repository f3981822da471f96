#pragma once

#include "pixel/Desk.h"
#include "pixel/QueueTime.h"
#include "pixel/Spot.h"
#include "pixel/SpotWatcher.h"

#include <QRandomGenerator>

#include <vector>

/// Prices sent at moments of chance, and how long each took to be seen.
class PriceRun final {
    Q_DISABLE_COPY_MOVE(PriceRun)

public:
    enum class Brings {
        OneChart,   ///< a price of one chart, by turns of chance
        EveryChart, ///< one for each of them in a message; seen when the last one shows it
    };

    /// With the spots that the desk has learned; both must outlive the run. A price that has not been seen
    /// for that long is missed.
    PriceRun(Desk& desk, const std::vector<Spot>& spots, int patienceMs = 1000);

    /// Nothing else is sent.
    void measureQuiet(Brings brings, int samples);
    /// Among snapshots of all symbols, so many a second, each of which moves a fifth of them. The price
    /// watched is that of the last chart, which stays until it is seen.
    void measureLoaded(int snapshotsASecond, int samples);

    [[nodiscard]] const std::vector<double>& milliseconds() const { return m_ms; }
    /// How long before each sighting the watcher had looked.
    [[nodiscard]] const std::vector<double>& grainsMs() const { return m_grainsMs; }
    /// What is left of each time without that in which terminal and X server waited for a processor: its
    /// lower bound, since both may have waited at once.
    [[nodiscard]] const std::vector<double>& ownMs() const { return m_ownMs; }
    /// How many snapshots a second were sent while times were taken; 0 when none were.
    [[nodiscard]] double rate() const { return m_rate; }
    [[nodiscard]] int missed() const { return m_missed; }
    [[nodiscard]] int early() const { return m_early; }

private:
    struct Sample {
        bool done = false;
        SpotWatcher::Result result;
        qint64 queuedNs = 0; ///< while the price was on its way
    };

    void start(const std::vector<const Spot*>& spots, int price);
    void finish(qint64 sentNs);
    void forgetWarmUp();
    void pauseByChance();

    Desk& m_desk;
    const std::vector<Spot>& m_spots;
    qint64 m_patienceNs;
    QueueTime m_queue;
    Sample m_sample;
    SpotWatcher m_watcher;
    QRandomGenerator m_chance{1};
    std::vector<double> m_ms;
    std::vector<double> m_grainsMs;
    std::vector<double> m_ownMs;
    double m_rate = 0.0;
    int m_missed = 0;
    int m_early = 0;
};
