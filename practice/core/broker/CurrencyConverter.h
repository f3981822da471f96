#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/Money.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace practice {

/// Expresses amounts of any currency in USD through the pair that quotes it against USD, at that pair's
/// mid price: "XXXUSD" multiplies, "USDXXX" divides.
class CurrencyConverter {
public:
    /// Bid and ask of the symbol at a position together, in points; nothing while it has no price.
    using BothSides = std::function<std::optional<std::int64_t>(std::size_t symbol)>;

    explicit CurrencyConverter(const std::vector<SymbolSpec>& symbols);

    /// USD for one unit of the currency; 1 for USD itself, nothing without a pair or without its price.
    [[nodiscard]] std::optional<Rate> usdPerUnit(std::string_view currency, const BothSides& sides) const;

    /// Position of the pair that converts this currency; nothing for USD and for unknown currencies.
    [[nodiscard]] std::optional<std::size_t> pairFor(std::string_view currency) const;

private:
    struct Route {
        std::size_t symbol;
        bool divide;
        std::int64_t twoUnits; // in points
    };
    std::unordered_map<std::string, Route> m_routes;
};

} // namespace practice
