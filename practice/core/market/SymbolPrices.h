#pragma once

#include "practice/core/market/GridBar.h"

namespace practice {

/// One symbol's prices in points at any moment between firstMoment() and lastMoment().
class SymbolPrices {
public:
    SymbolPrices() = default;
    SymbolPrices(const SymbolPrices&) = delete;
    SymbolPrices& operator=(const SymbolPrices&) = delete;
    virtual ~SymbolPrices() = default;

    [[nodiscard]] virtual std::int64_t mid(TimeMs now) = 0;

    /// Distance from the mid to either side, at least 1.
    [[nodiscard]] virtual std::int64_t halfSpread(TimeMs now) = 0;

    /// The bar that starts at `start` (a multiple of its length, not after `now`) as it stands at `now`.
    [[nodiscard]] virtual GridBar barUntil(Timeframe timeframe, TimeMs start, TimeMs now) = 0;

    /// First moment of the history; starts a bar of every timeframe.
    [[nodiscard]] virtual TimeMs firstMoment() const = 0;
    [[nodiscard]] virtual TimeMs lastMoment() const = 0;
};

} // namespace practice
