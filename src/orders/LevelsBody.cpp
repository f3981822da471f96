#include "orders/LevelsBody.h"

#include "net/records/JsonNumber.h"

using namespace Qt::StringLiterals;

namespace {

void insertPresent(QJsonObject& body, QLatin1StringView key, const std::optional<double>& value)
{
    if (value)
        body.insert(key, *value);
}

void insertSetLevel(QJsonObject& body, QLatin1StringView key, const QJsonObject& trade)
{
    if (const double level = jsonNumber(trade.value(key)); level > 0.0)
        body.insert(key, level);
}

} // namespace

bool isPending(const QJsonObject& trade)
{
    return trade.value("status"_L1).toString() == "PENDING"_L1;
}

QJsonObject typedLevelsBody(const TypedLevels& levels)
{
    QJsonObject body;
    insertPresent(body, "stopLoss"_L1, levels.stopLoss);
    insertPresent(body, "takeProfit"_L1, levels.takeProfit);
    insertPresent(body, "pendingPrice"_L1, levels.pendingPrice);
    return body;
}

QJsonObject movedLevelBody(const QJsonObject& trade, const QString& kind, double price)
{
    QJsonObject body;
    insertSetLevel(body, "stopLoss"_L1, trade);
    insertSetLevel(body, "takeProfit"_L1, trade);
    if (isPending(trade))
        body.insert("pendingPrice"_L1, jsonNumber(trade.value("pendingPrice"_L1)));
    if (kind == "SL"_L1)
        body.insert("stopLoss"_L1, price);
    else if (kind == "TP"_L1)
        body.insert("takeProfit"_L1, price);
    else
        body.insert("pendingPrice"_L1, price);
    return body;
}
