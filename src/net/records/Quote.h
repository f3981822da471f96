#pragma once

#include <optional>

class QJsonObject;
class QJsonValue;
class QString;

/// The two prices of a symbol as the feed names them; 0 where none is known, it cannot be read, or it is none
/// by the rule of isPrice().
struct Quote final {
    double bid = 0.0;
    double ask = 0.0;

    /// Both prices are there and above 0.
    [[nodiscard]] bool isComplete() const { return bid > 0.0 && ask > 0.0; }

    friend bool operator==(const Quote&, const Quote&) = default;
};

/// One member of a snapshot, of a symbol with so many decimals; anything that is not an object reads as no
/// prices.
[[nodiscard]] Quote readQuote(const QJsonValue& value, int digits);

/// A symbol's quote in a snapshot; absent when the snapshot does not name the symbol.
[[nodiscard]] std::optional<Quote> findQuote(const QJsonObject& snapshot, const QString& symbol, int digits);
