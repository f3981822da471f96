#include "mainwindow/account/ExpertRequests.h"

#include "net/ApiClient.h"
#include "net/ReplyOutcome.h"

#include <QNetworkReply>
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

void ExpertRequests::order(const QString& path, const QJsonObject& body, Report report)
{
    m_waiting.push_back({path, body, std::move(report), QDeadlineTimer(m_longestWait)});
    sendWaiting();
}

void ExpertRequests::close(const QString& path, Report report)
{
    m_waiting.push_back({path, {}, std::move(report), QDeadlineTimer(QDeadlineTimer::Forever)});
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
        const Request request = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (!request.leaveBy.hasExpired()) {
            send(request);
            continue;
        }
        ReplyOutcome late;
        late.error = tr("not sent: too many orders before it");
        request.report(late);
    }
}

void ExpertRequests::send(const Request& request)
{
    ++m_inFlight;
    QNetworkReply* reply = m_api.post(request.path, request.body);
    // The reply goes even if this object is gone by then.
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    connect(reply, &QNetworkReply::finished, this, [this, reply, report = request.report] {
        --m_inFlight;
        const QPointer<ExpertRequests> alive(this);
        report(ReplyOutcome::read(reply));
        if (alive)
            sendWaiting();
    });
}
