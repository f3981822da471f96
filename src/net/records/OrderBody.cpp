#include "net/records/OrderBody.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

bool isLevel(double value)
{
    return value > 0.0 && std::isfinite(value);
}

} // namespace

QString orderKind(OrderType type, Side side)
{
    switch (type) {
    case OrderType::Market:
        return u"MARKET"_s;
    case OrderType::Limit:
        return sideText(side) + "_LIMIT"_L1;
    case OrderType::Stop:
    case OrderType::StopLimit:
        break;
    }
    return sideText(side) + "_STOP"_L1;
}

bool lacksTriggerPrice(const OrderTicket& ticket)
{
    return ticket.type != OrderType::Market && !isLevel(ticket.triggerPrice);
}

QJsonObject orderBody(const OrderTicket& ticket)
{
    QJsonObject body{
        {"symbol"_L1, ticket.symbol},
        {"lotSize"_L1, ticket.lots},
        {"orderKind"_L1, orderKind(ticket.type, ticket.side)},
    };
    if (ticket.type == OrderType::Market)
        body.insert("type"_L1, sideText(ticket.side));
    else
        body.insert("pendingPrice"_L1, ticket.triggerPrice);
    if (isLevel(ticket.stopLoss))
        body.insert("stopLoss"_L1, ticket.stopLoss);
    if (isLevel(ticket.takeProfit))
        body.insert("takeProfit"_L1, ticket.takeProfit);
    if (const QString comment = ticket.comment.trimmed(); !comment.isEmpty())
        body.insert("comment"_L1, comment);
    return body;
}

void setOrderAccount(QJsonObject& body, const QString& accountId)
{
    body.insert("accountId"_L1, accountId);
}
