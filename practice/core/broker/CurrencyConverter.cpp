#include "practice/core/broker/CurrencyConverter.h"

namespace practice {

CurrencyConverter::CurrencyConverter(const std::vector<SymbolSpec>& symbols)
{
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        const SymbolSpec& spec = symbols[i];
        if (spec.profitCurrency == "USD" && spec.baseCurrency != "USD")
            m_routes.emplace(spec.baseCurrency, Route{i, false});
        else if (spec.baseCurrency == "USD" && spec.profitCurrency != "USD")
            m_routes.emplace(spec.profitCurrency, Route{i, true});
    }
}

std::optional<double> CurrencyConverter::usdPerUnit(std::string_view currency, const MidPrice& mid) const
{
    if (currency == "USD")
        return 1.0;
    const auto route = m_routes.find(std::string(currency));
    if (route == m_routes.end())
        return std::nullopt;
    const std::optional<double> price = mid(route->second.symbol);
    if (!price)
        return std::nullopt;
    return route->second.divide ? 1.0 / *price : *price;
}

std::optional<std::size_t> CurrencyConverter::pairFor(std::string_view currency) const
{
    const auto route = m_routes.find(std::string(currency));
    if (route == m_routes.end())
        return std::nullopt;
    return route->second.symbol;
}

} // namespace practice
