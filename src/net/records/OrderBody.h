#pragma once

#include "net/records/TradeRecord.h"

#include <QJsonObject>
#include <QString>

/// How an order is to be executed. A stop limit order is sent as a stop order; nothing offers it yet.
enum class OrderType : int { Market = 0, Limit = 1, Stop = 2, StopLimit = 3 };

/// One order as a trader or a script means it.
struct OrderTicket final {
    QString symbol = {};
    double lots = 0.0;
    Side side = Side::Buy;
    OrderType type = OrderType::Market;
    double triggerPrice = 0.0; ///< pending orders only
    double stopLoss = 0.0;     ///< a price; 0 or less: none
    double takeProfit = 0.0;   ///< likewise
    QString comment = {};      ///< trimmed; empty: none
};

/// "MARKET", or the side with "_LIMIT" or "_STOP".
[[nodiscard]] QString orderKind(OrderType type, Side side);

/// True for a pending order without a usable trigger price: such a ticket must not be sent.
[[nodiscard]] bool lacksTriggerPrice(const OrderTicket& ticket);

/// The body of the request that places the order, but for the account. A market order states its side in
/// "type"; a pending one has no "type", which is how the server tells the two apart. What is not wanted is
/// left out rather than sent as 0.
[[nodiscard]] QJsonObject orderBody(const OrderTicket& ticket);

/// Says for which account an order is.
void setOrderAccount(QJsonObject& body, const QString& accountId);
