#pragma once

#include <QDeadlineTimer>
#include <QJsonObject>
#include <QObject>
#include <QString>

#include <deque>
#include <functional>

class ApiClient;
struct ReplyOutcome;

/// Sends what experts want, in its order and a few at a time, so that a script in a loop floods neither the
/// server nor the line. What waits can still be taken back.
class ExpertRequests final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ExpertRequests)

public:
    /// Hears once of each request that is not dropped.
    using Report = std::function<void(const ReplyOutcome&)>;

    /// The client must outlive the requests.
    explicit ExpertRequests(ApiClient& api, QObject* parent = nullptr);

    /// An order at prices of now: one that could not be sent in time is reported as not sent.
    void order(const QString& path, const QJsonObject& body, Report report);
    /// A close, which is never too late.
    void close(const QString& path, Report report);
    /// Forgets what is not sent yet. How many those were.
    int dropWaiting();

    /// How long an order may wait, in milliseconds; for orders from now on.
    void setLongestWait(int ms) { m_longestWait = ms; }

private:
    struct Request {
        QString path;
        QJsonObject body;
        Report report;
        QDeadlineTimer leaveBy;
    };

    void sendWaiting();
    void send(const Request& request);

    ApiClient& m_api;
    std::deque<Request> m_waiting;
    int m_inFlight = 0;
    int m_longestWait = 15'000;
};
