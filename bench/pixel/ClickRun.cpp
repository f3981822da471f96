#include "pixel/ClickRun.h"

#include "pixel/Monotonic.h"
#include "pixel/SnapshotSender.h"
#include "pixel/XMouse.h"
#include "scenes/Waiting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int clicksToWarmUp = 5;

} // namespace

ClickRun::ClickRun(Desk& desk, int patienceMs)
    : m_desk(desk)
    , m_queue({desk.program().processId(), desk.server().processId(), QCoreApplication::applicationPid()})
    , m_patienceMs(patienceMs)
{
    m_desk.platform().onRequest = [this](const StubRequest& request) {
        if (request.target != "/api/trades/place")
            return;
        m_arrivedNs = monotonicNs();
        m_queuedNs = m_queue.ns();
        ++m_requests;
    };
}

ClickRun::~ClickRun()
{
    m_desk.platform().onRequest = {};
}

void ClickRun::measureQuiet(int samples)
{
    measure(samples, nullptr);
}

void ClickRun::measureLoaded(int snapshotsASecond, int samples)
{
    // All of them are made before: an order that arrives meanwhile would wait for the making.
    QStringList snapshots;
    for (int i = 0; i < ChartedPrices::snapshotsUntilSame; ++i)
        snapshots.append(m_desk.prices().snapshot(ChartedPrices::noChart));
    qsizetype next = 0;
    SnapshotSender sender(snapshotsASecond, [this, &snapshots, &next] {
        m_desk.send(snapshots.at(next));
        next = (next + 1) % snapshots.size();
    });
    measure(samples, &sender);
    m_rate = sender.rate();
}

void ClickRun::measure(int samples, SnapshotSender* sender)
{
    XMouse mouse(m_desk.display());
    QRandomGenerator chance(1);
    mouse.moveTo(m_desk.buyButton());
    for (int i = -clicksToWarmUp; i < samples; ++i) {
        if (i == 0 && sender)
            sender->beginCounting();
        pauseFor(chance.bounded(50, 110));
        mouse.press();
        pauseFor(chance.bounded(25, 45));
        const int before = m_requests;
        const qint64 queuedBefore = m_queue.ns();
        QElapsedTimer waited;
        const qint64 releasedNs = mouse.release();
        waited.start();
        waitUntil([&] { return m_requests > before || waited.elapsed() > m_patienceMs; }, u"an order"_s);
        const bool inTime = m_requests > before;
        // One that is late must not be taken for the next click's.
        waitUntil([&] { return m_requests > before; }, u"an order that is late"_s);
        if (i < 0)
            continue;
        m_missed += inTime ? 0 : 1;
        const qint64 took = m_arrivedNs - releasedNs;
        m_ms.push_back(inTime ? inMs(took) : m_patienceMs);
        m_ownMs.push_back(
            inTime ? inMs(std::max<qint64>(0, took - (m_queuedNs - queuedBefore))) : m_patienceMs);
    }
    if (m_requests != samples + clicksToWarmUp)
        giveUp(u"%1 clicks, but %2 orders"_s.arg(samples + clicksToWarmUp).arg(m_requests));
}
