#pragma once

#include "practice/core/market/SimulatedSymbol.h"
#include "practice/core/market/SymbolMarket.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace practice {

inline constexpr double minMarketSpeed = 0.1;
inline constexpr double maxMarketSpeed = 1000;

/// A market made of nothing but arithmetic: its prices follow from seed, speed, symbol name and time, so a
/// restart finds the same past and the same future and no price is ever stored.
///
/// `speed` (clamped to 0.1 .. 1000; not a number reads as 1) makes a minute move as far as that many
/// minutes do at speed 1; bar times stay wall-clock times. Days are UTC days, and no day is a holiday.
class SimulatedMarket final : public SymbolMarket {
public:
    explicit SimulatedMarket(
        std::uint64_t seed, double speed = 1, const std::vector<SymbolSpec>& symbols = symbolCatalog());
};

/// The prices behind such a market, in the order of `symbols`; `speed` must lie in its range.
[[nodiscard]] std::vector<std::unique_ptr<SimulatedSymbol>> simulateSymbols(
    const std::vector<SymbolSpec>& symbols, std::uint64_t seed, double speed);

/// The speed within its range.
[[nodiscard]] double boundedSpeed(double speed);

} // namespace practice
