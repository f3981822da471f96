#pragma once

#include "net/ReplyOutcome.h"
#include "net/records/LevelsBody.h"

#include <QJsonObject>
#include <QString>
#include <optional>

class ApiClient;
class QNetworkReply;

/// One thing asked of the server about a trade: to place, modify, close or cancel it.
///
/// A request is money, so it reaches the server at most once. It can be moved but not copied, and sending
/// uses it up. ApiClient sends it in a way that keeps Qt from repeating it on a broken connection
/// (OneShotBody). Nobody sends it anew: where an outcome is uncertain, the lists are read again, and a person
/// decides what to do.
class TradeRequest final {
public:
    /// Places an order for this account, which replaces any that the body names (see orderBody()).
    [[nodiscard]] static TradeRequest place(QJsonObject order, const QString& accountId);

    /// The following are about the trade of a record, by its id. Nothing for an id with which the path would
    /// name another resource.
    [[nodiscard]] static std::optional<TradeRequest> close(const QJsonObject& trade);
    [[nodiscard]] static std::optional<TradeRequest> cancel(const QJsonObject& trade);
    /// Sets the levels that were typed.
    [[nodiscard]] static std::optional<TradeRequest> modify(
        const QJsonObject& trade, const TypedLevels& levels);
    /// Moves one level and keeps the others.
    [[nodiscard]] static std::optional<TradeRequest> moveLevel(
        const QJsonObject& trade, LevelKind kind, double price);

    ~TradeRequest() = default;
    TradeRequest(TradeRequest&&) noexcept = default;
    TradeRequest& operator=(TradeRequest&&) noexcept = default;
    TradeRequest(const TradeRequest&) = delete;
    TradeRequest& operator=(const TradeRequest&) = delete;

    /// Sends it now. The waiter is told what became of it, unless it is gone by then. The reply that comes
    /// back is for looking on.
    const QNetworkReply& send(ApiClient& api, const QObject* waiter, ReplyOutcome::Callback callback) &&;

private:
    enum class Verb { Post, Put };

    TradeRequest(Verb verb, QString path, QJsonObject body);
    /// The request whose path ends with the trade's id.
    [[nodiscard]] static std::optional<TradeRequest> about(
        const QJsonObject& trade, Verb verb, QLatin1StringView action, const QJsonObject& body);

    Verb m_verb;
    QString m_path;
    QJsonObject m_body;
};
