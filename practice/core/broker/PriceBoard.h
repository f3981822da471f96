#pragma once

#include "practice/core/broker/CurrencyConverter.h"
#include "practice/core/broker/Records.h"
#include "practice/core/broker/Requests.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace practice {

/// The last usable quote of every symbol, and what trades are worth at them.
class PriceBoard {
public:
    /// Keeps a reference: the symbols outlive the board.
    explicit PriceBoard(const std::vector<SymbolSpec>& symbols);

    /// Takes the usable ones of these quotes. Returns the symbols, ascending, whose trades have another value
    /// now: those with a new quote, and those whose profit is converted at one of these.
    std::vector<std::size_t> update(std::span<const SymbolQuote> quotes);

    /// Nothing while the symbol has no price, or when there is no such symbol.
    [[nodiscard]] std::optional<Quote> quote(std::size_t symbol) const;
    /// USD for one unit of the symbol's profit currency.
    [[nodiscard]] std::optional<Rate> usdRate(std::size_t symbol) const;
    /// The same at other prices than the last.
    [[nodiscard]] std::optional<Rate> usdRate(
        std::size_t symbol, const CurrencyConverter::BothSides& sides) const
    {
        return m_converter.usdPerUnit(m_symbols[symbol].profitCurrency, sides);
    }
    /// The pair that gives this rate; nothing where none is needed.
    [[nodiscard]] std::optional<std::size_t> ratePair(std::size_t symbol) const
    {
        return m_converter.pairFor(m_symbols[symbol].profitCurrency);
    }
    /// Net result of the position if it were closed at the price at which it would close now.
    [[nodiscard]] std::optional<Cents> netProfit(const Trade& position, std::size_t symbol) const;

    [[nodiscard]] const std::vector<SymbolSpec>& symbols() const { return m_symbols; }

private:
    [[nodiscard]] std::optional<Rate> convert(std::size_t symbol) const;

    const std::vector<SymbolSpec>& m_symbols;
    CurrencyConverter m_converter;
    std::vector<std::optional<Quote>> m_quotes;
    std::vector<std::optional<Rate>>
        m_usdRates; ///< by symbol, so that a look-up is cheap for thousands of trades
    std::vector<std::vector<std::size_t>> m_dependants; ///< by pair: symbols whose profit it converts
};

/// The price at which such a position opens: the ask for a buy, the bid for a sell.
[[nodiscard]] constexpr double openingPrice(Side side, const Quote& quote)
{
    return side == Side::Buy ? quote.ask : quote.bid;
}

/// The price at which such a position closes: the bid for a buy, the ask for a sell.
[[nodiscard]] constexpr double closingPrice(Side side, const Quote& quote)
{
    return side == Side::Buy ? quote.bid : quote.ask;
}

} // namespace practice
