#include "practice/core/market/SimulatedMarket.h"

#include "practice/core/market/MarketFill.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace practice {

double boundedSpeed(double speed)
{
    return std::isnan(speed) ? 1 : std::clamp(speed, minMarketSpeed, maxMarketSpeed);
}

SimulatedMarket::SimulatedMarket(std::uint64_t seed, double speed, const std::vector<SymbolSpec>& symbols)
{
    std::vector<std::unique_ptr<SymbolPrices>> prices(symbols.size());
    fillMarket(symbols, prices, seed, boundedSpeed(speed));
    for (std::size_t i = 0; i < symbols.size(); ++i)
        addSymbol(symbols[i], std::move(prices[i]));
}

} // namespace practice
