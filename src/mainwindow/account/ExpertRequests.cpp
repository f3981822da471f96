#include "mainwindow/account/ExpertRequests.h"

#include <QPointer>

#include <utility>

namespace {

constexpr int mostInFlight = 2;

} // namespace

ExpertRequests::ExpertRequests(ApiClient& api, QObject* parent)
    : QObject(parent)
    , m_api(api)
{
}

void ExpertRequests::order(TradeRequest request, Report report)
{
    m_waiting.push_back({std::move(request), std::move(report), QDeadlineTimer(m_longestWait)});
    sendWaiting();
}

void ExpertRequests::close(TradeRequest request, Report report)
{
    m_waiting.push_back({std::move(request), std::move(report), QDeadlineTimer(QDeadlineTimer::Forever)});
    sendWaiting();
}

int ExpertRequests::dropWaiting()
{
    const auto dropped = static_cast<int>(m_waiting.size());
    m_waiting.clear();
    return dropped;
}

void ExpertRequests::sendWaiting()
{
    const QPointer<ExpertRequests> alive(this);
    while (alive && m_inFlight < mostInFlight && !m_waiting.empty()) {
        Waiting next = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (!next.leaveBy.hasExpired()) {
            send(std::move(next));
            continue;
        }
        ReplyOutcome late;
        late.error = tr("not sent: too many orders before it");
        next.report(late);
    }
}

void ExpertRequests::send(Waiting next)
{
    ++m_inFlight;
    std::move(next.request)
        .send(m_api, this, [this, report = std::move(next.report)](const ReplyOutcome& outcome) {
            --m_inFlight;
            const QPointer<ExpertRequests> alive(this);
            report(outcome);
            if (alive)
                sendWaiting();
        });
}
