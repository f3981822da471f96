#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

/// What a horizontal line of a trade stands for.
enum class LevelKind { Entry, StopLoss, TakeProfit, Price };

/// "ENTRY", "SL", "TP", or "PRICE" for the trigger price of a pending order.
[[nodiscard]] QString levelText(LevelKind kind);
/// The kind that a text names; any other text means a trigger price.
[[nodiscard]] LevelKind levelKind(const QString& text);

/// Levels typed for one trade. What is absent was left empty.
struct TypedLevels final {
    std::optional<double> stopLoss;
    std::optional<double> takeProfit;
    std::optional<double> pendingPrice; ///< pending orders only
};

/// The body that sends typed levels. An empty field leaves its key out, while a typed 0 is sent: that is
/// how a level is taken off.
[[nodiscard]] QJsonObject typedLevelsBody(const TypedLevels& levels);

/// The body that moves one level of a trade to `price` and keeps its others: the server takes the whole set,
/// so every level above zero goes along. Any kind but a stop loss and a take profit means the entry of a
/// pending order.
[[nodiscard]] QJsonObject movedLevelBody(const QJsonObject& trade, LevelKind kind, double price);
