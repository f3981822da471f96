#include "practice/core/broker/CurrencyConverter.h"

#include "practice/core/PointScale.h"

namespace practice {

CurrencyConverter::CurrencyConverter(const std::vector<SymbolSpec>& symbols)
{
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        const SymbolSpec& spec = symbols[i];
        const auto twoUnits = 2 * static_cast<std::int64_t>(pointsPerUnit(spec.digits));
        if (spec.profitCurrency == "USD" && spec.baseCurrency != "USD")
            m_routes.emplace(spec.baseCurrency, Route{i, false, twoUnits});
        else if (spec.baseCurrency == "USD" && spec.profitCurrency != "USD")
            m_routes.emplace(spec.profitCurrency, Route{i, true, twoUnits});
    }
}

std::optional<Rate> CurrencyConverter::usdPerUnit(std::string_view currency, const BothSides& sides) const
{
    if (currency == "USD")
        return Rate{};
    const auto route = m_routes.find(std::string(currency));
    if (route == m_routes.end())
        return std::nullopt;
    const auto& [symbol, divide, twoUnits] = route->second;
    const std::optional<std::int64_t> both = sides(symbol);
    if (!both)
        return std::nullopt;
    return divide ? Rate{twoUnits, *both} : Rate{*both, twoUnits};
}

std::optional<std::size_t> CurrencyConverter::pairFor(std::string_view currency) const
{
    const auto route = m_routes.find(std::string(currency));
    if (route == m_routes.end())
        return std::nullopt;
    return route->second.symbol;
}

} // namespace practice
