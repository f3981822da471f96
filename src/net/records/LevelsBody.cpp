#include "net/records/LevelsBody.h"

#include "net/records/TradeRecord.h"

using namespace Qt::StringLiterals;

namespace {

constexpr auto stopLossKey = "stopLoss"_L1;
constexpr auto takeProfitKey = "takeProfit"_L1;
constexpr auto pendingPriceKey = "pendingPrice"_L1;

void insertPresent(QJsonObject& body, QLatin1StringView key, const std::optional<double>& value)
{
    if (value)
        body.insert(key, *value);
}

std::optional<double> kept(const std::optional<double>& level)
{
    return level.value_or(0.0) > 0.0 ? level : std::nullopt;
}

QLatin1StringView keyOf(LevelKind kind)
{
    switch (kind) {
    case LevelKind::StopLoss:
        return stopLossKey;
    case LevelKind::TakeProfit:
        return takeProfitKey;
    case LevelKind::Entry:
    case LevelKind::Price:
        break;
    }
    return pendingPriceKey;
}

} // namespace

QString levelText(LevelKind kind)
{
    switch (kind) {
    case LevelKind::Entry:
        return u"ENTRY"_s;
    case LevelKind::StopLoss:
        return u"SL"_s;
    case LevelKind::TakeProfit:
        return u"TP"_s;
    case LevelKind::Price:
        break;
    }
    return u"PRICE"_s;
}

LevelKind levelKind(const QString& text)
{
    for (const LevelKind kind : {LevelKind::Entry, LevelKind::StopLoss, LevelKind::TakeProfit}) {
        if (text == levelText(kind))
            return kind;
    }
    return LevelKind::Price;
}

QJsonObject typedLevelsBody(const TypedLevels& levels)
{
    QJsonObject body;
    insertPresent(body, stopLossKey, levels.stopLoss);
    insertPresent(body, takeProfitKey, levels.takeProfit);
    insertPresent(body, pendingPriceKey, levels.pendingPrice);
    return body;
}

QJsonObject movedLevelBody(const QJsonObject& trade, LevelKind kind, double price)
{
    QJsonObject body = typedLevelsBody({kept(trade::stopLoss(trade)), kept(trade::takeProfit(trade)),
        trade::isPending(trade) ? std::optional(trade::pendingPrice(trade)) : std::nullopt});
    body.insert(keyOf(kind), price);
    return body;
}
