#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

/// Levels typed for one trade. What is absent was left empty.
struct TypedLevels final {
    std::optional<double> stopLoss;
    std::optional<double> takeProfit;
    std::optional<double> pendingPrice; ///< pending orders only
};

/// True for an order that waits to be filled; anything else is a position.
[[nodiscard]] bool isPending(const QJsonObject& trade);

/// The body that sends typed levels. An empty field leaves its key out, while a typed 0 is sent: that is
/// how a level is taken off.
[[nodiscard]] QJsonObject typedLevelsBody(const TypedLevels& levels);

/// The body that moves one level of a trade to `price` and keeps its others: the server takes the whole set,
/// so every level above zero goes along. `kind` is "SL" or "TP"; any other means the entry of a pending
/// order.
[[nodiscard]] QJsonObject movedLevelBody(const QJsonObject& trade, const QString& kind, double price);
