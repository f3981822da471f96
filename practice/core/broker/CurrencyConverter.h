#pragma once

#include "practice/core/SymbolCatalog.h"

#include <cstddef>
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
    /// The mid price of the symbol at a position; nothing while it has no price.
    using MidPrice = std::function<std::optional<double>(std::size_t symbol)>;

    explicit CurrencyConverter(const std::vector<SymbolSpec>& symbols);

    /// USD for one unit of the currency; 1 for USD itself, nothing without a pair or without its price.
    [[nodiscard]] std::optional<double> usdPerUnit(std::string_view currency, const MidPrice& mid) const;

    /// Position of the pair that converts this currency; nothing for USD and for unknown currencies.
    [[nodiscard]] std::optional<std::size_t> pairFor(std::string_view currency) const;

private:
    struct Route {
        std::size_t symbol;
        bool divide;
    };
    std::unordered_map<std::string, Route> m_routes;
};

} // namespace practice
