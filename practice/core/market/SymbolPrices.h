#pragma once

#include "practice/core/market/GridBar.h"

#include <vector>

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
    /// No half spread is ever wider.
    [[nodiscard]] virtual std::int64_t widestHalfSpread() const = 0;

    /// The first moment after `now` at which mid or spread may be another; it may turn out the same.
    [[nodiscard]] virtual TimeMs nextChange(TimeMs now) = 0;

    struct Tick {
        TimeMs time;
        std::int64_t mid;
    };
    /// Appends the mid at `from` and at each change of it up to `to`. For short stretches.
    virtual void appendTicks(TimeMs from, TimeMs to, std::vector<Tick>& ticks) = 0;

    /// The mids of the moments from..to (both included) as a bar, without a volume.
    [[nodiscard]] virtual GridBar between(TimeMs from, TimeMs to) = 0;

    /// The bar that starts at `start` (a multiple of its length, not after `now`) as it stands at `now`.
    [[nodiscard]] virtual GridBar barUntil(Timeframe timeframe, TimeMs start, TimeMs now) = 0;

    /// First moment of the history; starts a bar of every timeframe.
    [[nodiscard]] virtual TimeMs firstMoment() const = 0;
    [[nodiscard]] virtual TimeMs lastMoment() const = 0;
};

} // namespace practice
