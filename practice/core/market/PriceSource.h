#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/Types.h"

#include <cstddef>
#include <vector>

namespace practice {

/// The lowest and the highest mid of some time, and the largest distance of bid and ask from the mid.
struct PriceSpan {
    double low = 0;
    double high = 0;
    double halfSpread = 0;
};

/// Where prices come from. The same source and the same time always give the same answer: nothing is
/// recorded, so any moment of the past or the future may be asked for, in any order.
///
/// The market never closes: a newcomer who tries the terminal on a Saturday finds it moving too.
///
/// Symbols are named by their position in symbols(); a position beyond its end throws std::out_of_range.
/// All prices are rounded to the symbol's digits (they lie on its price grid). Bars hold mid prices,
/// (bid + ask) / 2, which lies on the grid as well because spreads are an even number of points.
///
/// An instance serves one thread: answers are remembered in caches of bounded size.
class PriceSource {
public:
    PriceSource() = default;
    PriceSource(const PriceSource&) = delete;
    PriceSource& operator=(const PriceSource&) = delete;
    virtual ~PriceSource() = default;

    /// Every instrument this source quotes; fixed for the source's life.
    [[nodiscard]] virtual const std::vector<SymbolSpec>& symbols() const = 0;

    /// Bid and ask at `now`; always bid < ask.
    [[nodiscard]] virtual Quote quote(std::size_t symbol, TimeMs now) = 0;

    /// The first moment after `now` at which the quote may be another; no change is passed over.
    [[nodiscard]] virtual TimeMs nextTick(std::size_t symbol, TimeMs now) = 0;

    /// The mids of all moments from..to, both included, with their exact low and high.
    [[nodiscard]] virtual PriceSpan span(std::size_t symbol, TimeMs from, TimeMs to) = 0;

    /// Opening mid price of the UTC day that holds `now`: the open of the last D1 bar.
    [[nodiscard]] virtual double dailyOpen(std::size_t symbol, TimeMs now) = 0;

    /// The last `count` bars up to `now`, oldest first; the last one is still forming unless `now` is its
    /// final moment, and closes at the current mid. Bars follow each other without a hole. Fewer than
    /// `count` come back only where the history begins, which lies at least 1000 bars of every timeframe
    /// before the present day.
    [[nodiscard]] virtual std::vector<Bar> bars(
        std::size_t symbol, Timeframe timeframe, std::size_t count, TimeMs now)
        = 0;
};

} // namespace practice
