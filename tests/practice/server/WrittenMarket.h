#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/PriceSource.h"
#include "practice/server/SecondBooks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <vector>

namespace practice {

/// Prices that a test writes down; each set counts from its moment until the next one.
class WrittenMarket final : public PriceSource {
public:
    [[nodiscard]] const std::vector<SymbolSpec>& symbols() const override { return symbolCatalog(); }
    [[nodiscard]] Quote quote(std::size_t symbol, TimeMs now) override
    {
        const SecondBooks::Prices& prices = sheetAt(now).at(symbol);
        const double unit = std::pow(10.0, symbols()[symbol].digits);
        return {static_cast<double>(prices.bid) / unit, static_cast<double>(prices.ask) / unit};
    }
    [[nodiscard]] TimeMs nextTick(std::size_t, TimeMs now) override { return nextSheet(now); }
    [[nodiscard]] PriceSpan span(std::size_t symbol, TimeMs from, TimeMs to) override
    {
        PriceSpan span{1e300, 0, 0};
        for (TimeMs moment = from; moment <= to; moment = nextSheet(moment)) {
            const Quote at = quote(symbol, moment);
            span.low = std::min(span.low, (at.bid + at.ask) / 2);
            span.high = std::max(span.high, (at.bid + at.ask) / 2);
            span.halfSpread = std::max(span.halfSpread, (at.ask - at.bid) / 2);
        }
        return span;
    }
    [[nodiscard]] double dailyOpen(std::size_t symbol, TimeMs now) override { return quote(symbol, now).bid; }
    [[nodiscard]] std::vector<Bar> bars(std::size_t, Timeframe, std::size_t, TimeMs) override { return {}; }

    [[nodiscard]] const std::vector<SecondBooks::Prices>& sheetAt(TimeMs now) const
    {
        auto entry = m_sheets.upper_bound(now);
        if (entry != m_sheets.begin())
            --entry;
        return entry->second;
    }
    /// The moment of the first set of prices after this one; far away when there is none.
    [[nodiscard]] TimeMs nextSheet(TimeMs now) const
    {
        const auto entry = m_sheets.upper_bound(now);
        return entry == m_sheets.end() ? std::numeric_limits<TimeMs>::max() : entry->first;
    }
    /// From this moment on, whatever was written for a later one.
    void write(TimeMs from, const std::vector<SecondBooks::Prices>& prices)
    {
        m_sheets.erase(m_sheets.lower_bound(from), m_sheets.end());
        m_sheets[from] = prices;
    }

private:
    std::map<TimeMs, std::vector<SecondBooks::Prices>> m_sheets;
};

} // namespace practice
