#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QLatin1StringView>

/// What can be read of a message of the live feed, and the one text that is sent.
namespace feed {

enum class Kind { Unknown, Hello, Prices, Trades, OrdersChanged, AccountUpdate, Pong };

[[nodiscard]] Kind kind(const QJsonObject& message);

/// Asks for a pong.
inline constexpr QLatin1StringView ping{R"({"type":"ping"})"};

/// A hello's symbol records.
[[nodiscard]] QJsonArray symbols(const QJsonObject& hello);
/// A hello's prices, by symbol.
[[nodiscard]] QJsonObject helloPrices(const QJsonObject& hello);
/// The price map of a message of prices.
[[nodiscard]] QJsonObject prices(const QJsonObject& message);
/// The rows of a message of trades.
[[nodiscard]] QJsonArray trades(const QJsonObject& message);

} // namespace feed
