#include "practice/core/broker/PriceBoard.h"

#include "practice/core/broker/PriceGrid.h"
#include "practice/core/broker/Valuation.h"

#include <cmath>

namespace practice {
namespace {

bool isUsable(const Quote& quote)
{
    return std::isfinite(quote.bid) && std::isfinite(quote.ask) && quote.bid > 0 && quote.bid <= quote.ask
        && quote.ask < priceLimit;
}

} // namespace

PriceBoard::PriceBoard(const std::vector<SymbolSpec>& symbols)
    : m_symbols(symbols)
    , m_converter(symbols)
    , m_quotes(symbols.size())
    , m_usdRates(symbols.size())
    , m_dependants(symbols.size())
{
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        m_usdRates[i] = convert(i);
        if (const auto pair = m_converter.pairFor(symbols[i].profitCurrency))
            m_dependants[*pair].push_back(i);
    }
}

std::vector<std::size_t> PriceBoard::update(std::span<const SymbolQuote> quotes)
{
    std::vector<char> affected(m_symbols.size(), 0);
    for (const SymbolQuote& incoming : quotes) {
        if (incoming.symbol >= m_symbols.size() || !isUsable(incoming.quote))
            continue;
        const int digits = m_symbols[incoming.symbol].digits;
        const Quote quote{onGrid(incoming.quote.bid, digits), onGrid(incoming.quote.ask, digits)};
        if (quote.bid <= 0 || m_quotes[incoming.symbol] == quote)
            continue;
        m_quotes[incoming.symbol] = quote;
        affected[incoming.symbol] = 1;
        for (const std::size_t dependant : m_dependants[incoming.symbol])
            affected[dependant] = 1;
    }
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i < affected.size(); ++i) {
        if (!affected[i])
            continue;
        m_usdRates[i] = convert(i);
        result.push_back(i);
    }
    return result;
}

std::optional<Quote> PriceBoard::quote(std::size_t symbol) const
{
    return symbol < m_quotes.size() ? m_quotes[symbol] : std::nullopt;
}

std::optional<Rate> PriceBoard::usdRate(std::size_t symbol) const
{
    return symbol < m_usdRates.size() ? m_usdRates[symbol] : std::nullopt;
}

std::optional<Rate> PriceBoard::convert(std::size_t symbol) const
{
    return m_converter.usdPerUnit(
        m_symbols[symbol].profitCurrency, [this](std::size_t pair) -> std::optional<std::int64_t> {
            if (!m_quotes[pair])
                return std::nullopt;
            const int digits = m_symbols[pair].digits;
            return toPoints(m_quotes[pair]->bid, digits) + toPoints(m_quotes[pair]->ask, digits);
        });
}

std::optional<Cents> PriceBoard::netProfit(const Trade& position, std::size_t symbol) const
{
    const std::optional<Quote> now = quote(symbol);
    const std::optional<Rate> rate = usdRate(symbol);
    if (!now || !rate)
        return std::nullopt;
    const double exit = closingPrice(position.side, *now);
    return grossProfit(m_symbols[symbol], position.side, position.lots, position.entryPrice, exit, *rate)
        + position.swap - position.commission;
}

} // namespace practice
