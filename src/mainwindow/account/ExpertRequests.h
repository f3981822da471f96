#pragma once

#include "net/TradeRequest.h"

#include <QDeadlineTimer>
#include <QObject>

#include <deque>

class ApiClient;

/// Sends the requests of experts in their order and a few at a time, so that a script in a loop floods
/// neither the server nor the connection. Those that wait can still be dropped.
class ExpertRequests final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ExpertRequests)

public:
    /// Called once for each request, unless that is dropped.
    using Report = ReplyOutcome::Callback;

    /// The client must outlive the requests.
    explicit ExpertRequests(ApiClient& api, QObject* parent = nullptr);

    /// An order is meant for the prices of this moment: if it could not be sent in time it is reported as not
    /// sent.
    void order(TradeRequest request, Report report);
    /// A close, which is never too late.
    void close(TradeRequest request, Report report);
    /// Drops the requests that are not sent yet, and tells how many they were.
    int dropWaiting();

    /// How long an order may wait, in milliseconds; for orders from now on.
    void setLongestWait(int ms) { m_longestWait = ms; }

private:
    struct Waiting {
        TradeRequest request;
        Report report;
        QDeadlineTimer leaveBy;
    };

    void sendWaiting();
    void send(Waiting next);

    ApiClient& m_api;
    std::deque<Waiting> m_waiting;
    int m_inFlight = 0;
    int m_longestWait = 15'000;
};
