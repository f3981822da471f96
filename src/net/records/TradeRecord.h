#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

/// Which way a position goes, or would go.
enum class Side { Sell, Buy };

/// "SELL" or "BUY".
[[nodiscard]] QString sideText(Side side);
/// The side of a request in words: "SELL" sells, whatever else is said buys.
[[nodiscard]] Side sideOf(const QString& text);

/// What can be read of a trade: an open position, an order that waits to be filled, or a line of the history.
/// Fields that are missing or of another type read as empty or 0.
namespace trade {

[[nodiscard]] QString id(const QJsonObject& record);
[[nodiscard]] QString accountId(const QJsonObject& record);
[[nodiscard]] QString symbol(const QJsonObject& record);

/// The side as the server words it.
[[nodiscard]] QString typeText(const QJsonObject& record);
/// Buy for a record that says "BUY". Any other text counts as a sell: it is closed and coloured as one.
[[nodiscard]] Side side(const QJsonObject& record);
/// "MARKET", or the kind of a pending order, such as "BUY_LIMIT"; as the server words it.
[[nodiscard]] QString orderKind(const QJsonObject& record);
/// True for an order that waits to be filled; any other record is a position, or was one.
[[nodiscard]] bool isPending(const QJsonObject& record);

/// In lots.
[[nodiscard]] double lots(const QJsonObject& record);

[[nodiscard]] double entryPrice(const QJsonObject& record);
[[nodiscard]] double exitPrice(const QJsonObject& record);
/// The price that triggers a pending order.
[[nodiscard]] double pendingPrice(const QJsonObject& record);
/// Absent when it is 0; a level below 0 is told as it came.
[[nodiscard]] std::optional<double> stopLoss(const QJsonObject& record);
/// Likewise.
[[nodiscard]] std::optional<double> takeProfit(const QJsonObject& record);

/// The following are in account currency.
[[nodiscard]] double profit(const QJsonObject& record);
[[nodiscard]] double margin(const QJsonObject& record);
[[nodiscard]] double swap(const QJsonObject& record);
[[nodiscard]] double commission(const QJsonObject& record);

/// Times as the server wrote them.
[[nodiscard]] QString createdAt(const QJsonObject& record);
/// When the trade was closed; where that is null, when it last changed.
[[nodiscard]] QString closedAt(const QJsonObject& record);

} // namespace trade
