#include "practice/core/market/MarketFill.h"

#include "practice/core/market/CrossSymbol.h"
#include "practice/core/market/CurrencyPaths.h"
#include "practice/core/market/SimulatedSymbol.h"

namespace practice {

void fillMarket(const std::vector<SymbolSpec>& symbols, std::vector<std::unique_ptr<SymbolPrices>>& prices,
    std::uint64_t seed, double speed)
{
    std::vector<bool> recorded;
    for (const auto& record : prices)
        recorded.push_back(record != nullptr);
    const auto legs = crossLegs(symbols, recorded);
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        if (!prices[i] && legs[i].empty())
            prices[i] = std::make_unique<SimulatedSymbol>(symbols[i], seed, speed);
    }
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        if (prices[i])
            continue;
        std::vector<CrossSymbol::Leg> sources;
        for (const CrossLeg& leg : legs[i])
            sources.push_back({prices[leg.symbol].get(), &symbols[leg.symbol], leg.inverted});
        prices[i] = std::make_unique<CrossSymbol>(symbols[i], sources);
    }
}

} // namespace practice
