#pragma once

#include "practice/core/market/PriceSource.h"
#include "practice/core/market/SymbolPrices.h"

#include <memory>
#include <vector>

namespace practice {

/// A price source put together from one SymbolPrices per instrument.
class SymbolMarket : public PriceSource {
public:
    [[nodiscard]] const std::vector<SymbolSpec>& symbols() const override { return m_symbols; }
    [[nodiscard]] Quote quote(std::size_t symbol, TimeMs now) override;
    [[nodiscard]] TimeMs nextTick(std::size_t symbol, TimeMs now) override;
    [[nodiscard]] PriceSpan span(std::size_t symbol, TimeMs from, TimeMs to) override;
    [[nodiscard]] double dailyOpen(std::size_t symbol, TimeMs now) override;
    [[nodiscard]] std::vector<Bar> bars(
        std::size_t symbol, Timeframe timeframe, std::size_t count, TimeMs now) override;

protected:
    void addSymbol(SymbolSpec spec, std::unique_ptr<SymbolPrices> prices);

private:
    std::vector<SymbolSpec> m_symbols;
    std::vector<std::unique_ptr<SymbolPrices>> m_prices;
};

} // namespace practice
