#pragma once

#include <optional>

class QJsonObject;
class QJsonValue;
class QString;

/// The two prices of a symbol as the feed names them. A price is 0 where none is known, where it cannot be
/// read, and where isPrice() does not let it count.
struct Quote final {
    double bid = 0.0;
    double ask = 0.0;

    /// Both prices are there and above 0.
    [[nodiscard]] bool isComplete() const { return bid > 0.0 && ask > 0.0; }

    friend bool operator==(const Quote&, const Quote&) = default;
};

/// Reads one member of a price map, of a symbol with `digits` decimals; anything that is not an object reads
/// as no prices.
[[nodiscard]] Quote readQuote(const QJsonValue& value, int digits);

/// A symbol's quote in a price map; absent when the map does not name the symbol.
[[nodiscard]] std::optional<Quote> findQuote(const QJsonObject& snapshot, const QString& symbol, int digits);
