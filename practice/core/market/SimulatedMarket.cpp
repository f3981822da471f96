#include "practice/core/market/SimulatedMarket.h"

#include "practice/core/market/CrossRates.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace practice {

double boundedSpeed(double speed)
{
    return std::isnan(speed) ? 1 : std::clamp(speed, minMarketSpeed, maxMarketSpeed);
}

std::vector<std::unique_ptr<SimulatedSymbol>> simulateSymbols(
    const std::vector<SymbolSpec>& symbols, std::uint64_t seed, double speed)
{
    std::vector<std::unique_ptr<SimulatedSymbol>> prices(symbols.size());
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        if (!isCrossRate(symbols[i], symbols))
            prices[i] = std::make_unique<SimulatedSymbol>(symbols[i], seed, speed);
    }
    const auto daysOf = [&prices](std::size_t i) { return prices[i]->days(); };
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        if (!prices[i]) {
            prices[i] = std::make_unique<SimulatedSymbol>(
                symbols[i], seed, speed, crossCloseRule(symbols[i], symbols, daysOf));
        }
    }
    return prices;
}

SimulatedMarket::SimulatedMarket(std::uint64_t seed, double speed, const std::vector<SymbolSpec>& symbols)
{
    auto prices = simulateSymbols(symbols, seed, boundedSpeed(speed));
    for (std::size_t i = 0; i < symbols.size(); ++i)
        addSymbol(symbols[i], std::move(prices[i]));
}

} // namespace practice
