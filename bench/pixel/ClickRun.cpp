#include "pixel/ClickRun.h"

#include "pixel/Monotonic.h"
#include "pixel/XMouse.h"
#include "scenes/Waiting.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {

constexpr int warmUp = 5;
constexpr int patienceMs = 1000;

} // namespace

ClickRun::ClickRun(Desk& desk)
    : m_desk(desk)
{
    m_desk.platform().onRequest = [this](const StubRequest& request) {
        if (request.target != "/api/trades/place")
            return;
        m_arrivedNs = monotonicNs();
        ++m_requests;
    };
}

ClickRun::~ClickRun()
{
    m_desk.platform().onRequest = {};
}

void ClickRun::measure(int samples)
{
    XMouse mouse(m_desk.display());
    QRandomGenerator chance(1);
    mouse.moveTo(m_desk.buyButton());
    for (int i = -warmUp; i < samples; ++i) {
        pauseFor(chance.bounded(100, 300));
        mouse.press();
        pauseFor(chance.bounded(40, 90));
        const int before = m_requests;
        QElapsedTimer waited;
        const qint64 releasedNs = mouse.release();
        waited.start();
        waitUntil([&] { return m_requests > before || waited.elapsed() > patienceMs; }, u"an order"_s);
        const bool arrived = m_requests > before;
        if (i < 0 && !arrived)
            giveUp(u"a click on the button to buy sends nothing"_s);
        if (i < 0)
            continue;
        m_missed += arrived ? 0 : 1;
        m_ms.push_back(arrived ? static_cast<double>(m_arrivedNs - releasedNs) / 1e6 : patienceMs);
    }
    if (m_requests != samples + warmUp - m_missed)
        giveUp(u"%1 clicks, but %2 orders"_s.arg(samples + warmUp).arg(m_requests));
}
