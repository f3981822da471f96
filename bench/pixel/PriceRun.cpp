#include "pixel/PriceRun.h"

#include "pixel/Monotonic.h"
#include "pixel/SnapshotSender.h"
#include "scenes/Waiting.h"

#include <QCoreApplication>

#include <algorithm>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 lookEveryNs = 50'000;
constexpr int shortestPauseMs = 40;
constexpr int longestPauseMs = 100;
constexpr int pricesToWarmUp = 20;

} // namespace

PriceRun::PriceRun(Desk& desk, const std::vector<Spot>& spots, int patienceMs)
    : m_desk(desk)
    , m_spots(spots)
    , m_patienceNs(qint64{patienceMs} * 1'000'000)
    , m_queue({desk.program().processId(), desk.server().processId()})
    , m_watcher(desk.screen(), lookEveryNs)
{
}

void PriceRun::measureQuiet(Brings brings, int samples)
{
    ChartedPrices& prices = m_desk.prices();
    for (int i = -pricesToWarmUp; i < samples; ++i) {
        if (i == 0)
            forgetWarmUp();
        const int chart = m_chance.bounded(m_desk.charts());
        std::vector<const Spot*> spots;
        int first = chart;
        int last = chart;
        prices.change(chart, m_chance.generate());
        if (brings == Brings::EveryChart) {
            first = 0;
            last = m_desk.charts() - 1;
            for (int other = first; other <= last; ++other)
                prices.set(other, prices.of(chart));
        }
        for (int seen = first; seen <= last; ++seen)
            spots.push_back(&m_spots.at(static_cast<std::size_t>(seen)));
        const QString message = prices.message(first, last);
        start(spots, prices.of(chart));
        finish(m_desk.send(message));
        pauseByChance();
    }
}

void PriceRun::measureLoaded(int snapshotsASecond, int samples)
{
    ChartedPrices& prices = m_desk.prices();
    const int watched = m_desk.charts() - 1;
    const std::vector<const Spot*> spot{&m_spots.at(static_cast<std::size_t>(watched))};
    std::optional<qint64> sentNs;
    bool due = false;
    SnapshotSender snapshots(snapshotsASecond, [&] {
        // Made before the price counts as sent: what it takes to make it is not the terminal's.
        const bool withPrice = std::exchange(due, false);
        if (withPrice)
            prices.change(watched, m_chance.generate());
        const QString message = prices.snapshot(watched);
        if (withPrice)
            start(spot, prices.of(watched));
        const qint64 now = m_desk.send(message);
        if (withPrice)
            sentNs = now;
    });
    for (int i = -pricesToWarmUp; i < samples; ++i) {
        if (i == 0) {
            forgetWarmUp();
            snapshots.beginCounting();
        }
        due = true;
        waitUntil([&] { return sentNs.has_value(); }, u"the next snapshot"_s);
        finish(*std::exchange(sentNs, std::nullopt));
        pauseByChance();
    }
    m_rate = snapshots.rate();
}

void PriceRun::start(const std::vector<const Spot*>& spots, int price)
{
    m_sample = {};
    const qint64 queuedBefore = m_queue.ns();
    m_watcher.watch(spots, static_cast<std::size_t>(price), monotonicNs() + m_patienceNs,
        [this, queuedBefore](const SpotWatcher::Result& result) {
            const Sample sample{true, result, m_queue.ns() - queuedBefore};
            QMetaObject::invokeMethod(
                qApp, [this, sample] { m_sample = sample; }, Qt::QueuedConnection);
        });
}

void PriceRun::finish(qint64 sentNs)
{
    waitUntil([this] { return m_sample.done; }, u"a price to be seen"_s);
    const SpotWatcher::Result& result = m_sample.result;
    if (result.early) {
        ++m_early;
        return;
    }
    // A price that nobody has seen is as late as the watcher had patience: leaving it out would make it fast.
    m_missed += result.sighting ? 0 : 1;
    const qint64 took = result.sighting ? result.sighting->seenNs - sentNs : m_patienceNs;
    m_ms.push_back(inMs(took));
    m_ownMs.push_back(inMs(result.sighting ? std::max<qint64>(0, took - m_sample.queuedNs) : m_patienceNs));
    if (result.sighting)
        m_grainsMs.push_back(inMs(result.sighting->seenNs - result.sighting->lookedBeforeNs));
}

void PriceRun::forgetWarmUp()
{
    m_ms.clear();
    m_grainsMs.clear();
    m_ownMs.clear();
    m_missed = 0;
    m_early = 0;
}

void PriceRun::pauseByChance()
{
    pauseFor(m_chance.bounded(shortestPauseMs, longestPauseMs));
}
