#pragma once

#include "practice/core/market/SymbolMarket.h"

#include <cstdint>
#include <vector>

namespace practice {

inline constexpr double minMarketSpeed = 0.1;
inline constexpr double maxMarketSpeed = 1000;

/// A market made of nothing but arithmetic: its prices follow from seed, speed, symbol name and time, so a
/// restart finds the same past and the same future and no price is ever stored.
///
/// `speed` (clamped to 0.1 .. 1000; not a number reads as 1) makes a minute move as far as that many minutes
/// do at speed 1; bar times stay wall-clock times. Days are UTC days, and no day is a holiday. Symbols move
/// together as far as their FactorShares say; cross rates follow their legs.
class SimulatedMarket final : public SymbolMarket {
public:
    explicit SimulatedMarket(
        std::uint64_t seed, double speed = 1, const std::vector<SymbolSpec>& symbols = symbolCatalog());
};

/// The speed within its range.
[[nodiscard]] double boundedSpeed(double speed);

} // namespace practice
