#pragma once

#include "net/records/Quote.h"

#include <QString>

#include <functional>
#include <vector>

class QJsonObject;

/// The quotes of one price map, read once for everybody: reading the map again costs about as much as parsing
/// the message did.
class PriceSnapshot final {
public:
    struct Entry final {
        QString symbol;
        Quote quote; ///< as readQuote() reads it
    };

    /// The decimals of a symbol's prices.
    using DigitsOf = std::function<int(const QString& symbol)>;

    /// Without `digitsOf`, every symbol counts as one of the usual decimals.
    explicit PriceSnapshot(const QJsonObject& prices, const DigitsOf& digitsOf = {});

    /// Every symbol of the map once, in the order of QString's operator<.
    [[nodiscard]] const std::vector<Entry>& entries() const { return m_entries; }
    /// Nothing when the map does not name the symbol; valid as long as this object.
    [[nodiscard]] const Quote* find(const QString& symbol) const;

private:
    std::vector<Entry> m_entries;
};
