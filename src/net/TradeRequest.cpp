#include "net/TradeRequest.h"

#include "net/ApiClient.h"
#include "net/UrlParts.h"
#include "net/records/OrderBody.h"
#include "net/records/TradeRecord.h"

#include <utility>

using namespace Qt::StringLiterals;

TradeRequest TradeRequest::place(QJsonObject order, const QString& accountId)
{
    setOrderAccount(order, accountId);
    return {Verb::Post, u"/api/trades/place"_s, std::move(order)};
}

std::optional<TradeRequest> TradeRequest::close(const QJsonObject& trade)
{
    return about(trade, Verb::Post, "close"_L1, {});
}

std::optional<TradeRequest> TradeRequest::cancel(const QJsonObject& trade)
{
    return about(trade, Verb::Post, "cancel"_L1, {});
}

std::optional<TradeRequest> TradeRequest::modify(const QJsonObject& trade, const TypedLevels& levels)
{
    return about(trade, Verb::Put, "modify"_L1, typedLevelsBody(levels));
}

std::optional<TradeRequest> TradeRequest::moveLevel(const QJsonObject& trade, LevelKind kind, double price)
{
    return about(trade, Verb::Put, "modify"_L1, movedLevelBody(trade, kind, price));
}

TradeRequest::TradeRequest(Verb verb, QString path, QJsonObject body)
    : m_verb(verb)
    , m_path(std::move(path))
    , m_body(std::move(body))
{
}

std::optional<TradeRequest> TradeRequest::about(
    const QJsonObject& trade, Verb verb, QLatin1StringView action, const QJsonObject& body)
{
    const std::optional<QString> id = encodePathSegment(trade::id(trade));
    if (!id)
        return std::nullopt;
    return TradeRequest(verb, "/api/trades/"_L1 + action + u'/' + *id, body);
}

const QNetworkReply& TradeRequest::send(
    ApiClient& api, const QObject* waiter, ReplyOutcome::Callback callback) &&
{
    const QString path = std::exchange(m_path, {}); // sent once more, it would be refused
    QNetworkReply* reply = m_verb == Verb::Put ? api.put(path, m_body) : api.post(path, m_body);
    ReplyOutcome::whenFinished(reply, waiter, std::move(callback));
    return *reply;
}
