#include "practice/core/market/SymbolMarket.h"

#include "practice/core/PointScale.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace practice {
namespace {

TimeMs withinHistory(const SymbolPrices& prices, TimeMs now)
{
    return std::clamp(now, prices.firstMoment(), prices.lastMoment());
}

} // namespace

void SymbolMarket::addSymbol(SymbolSpec spec, std::unique_ptr<SymbolPrices> prices)
{
    m_symbols.push_back(std::move(spec));
    m_prices.push_back(std::move(prices));
}

Quote SymbolMarket::quote(std::size_t symbol, TimeMs now)
{
    SymbolPrices& prices = *m_prices.at(symbol);
    now = withinHistory(prices, now);
    const double unit = pointsPerUnit(m_symbols[symbol].digits);
    const std::int64_t mid = prices.mid(now);
    const std::int64_t half = std::min(prices.halfSpread(now), std::max<std::int64_t>(1, mid - 1));
    return {static_cast<double>(mid - half) / unit, static_cast<double>(mid + half) / unit};
}

TimeMs SymbolMarket::nextTick(std::size_t symbol, TimeMs now)
{
    SymbolPrices& prices = *m_prices.at(symbol);
    if (now < prices.firstMoment())
        return prices.firstMoment();
    return now < prices.lastMoment() ? prices.nextChange(now) : std::numeric_limits<TimeMs>::max();
}

PriceSpan SymbolMarket::span(std::size_t symbol, TimeMs from, TimeMs to)
{
    SymbolPrices& prices = *m_prices.at(symbol);
    const double unit = pointsPerUnit(m_symbols[symbol].digits);
    const GridBar bar
        = prices.between(withinHistory(prices, from), withinHistory(prices, std::max(from, to)));
    return {static_cast<double>(bar.low) / unit, static_cast<double>(bar.high) / unit,
        static_cast<double>(prices.widestHalfSpread()) / unit};
}

double SymbolMarket::dailyOpen(std::size_t symbol, TimeMs now)
{
    SymbolPrices& prices = *m_prices.at(symbol);
    const TimeMs day = barStart(withinHistory(prices, now), Timeframe::D1);
    return static_cast<double>(prices.barUntil(Timeframe::D1, day, day).open)
        / pointsPerUnit(m_symbols[symbol].digits);
}

std::vector<Bar> SymbolMarket::bars(std::size_t symbol, Timeframe timeframe, std::size_t count, TimeMs now)
{
    SymbolPrices& prices = *m_prices.at(symbol);
    now = withinHistory(prices, now);
    const double unit = pointsPerUnit(m_symbols[symbol].digits);
    const TimeMs length = timeframeLength(timeframe);
    const TimeMs last = barStart(now, timeframe);
    const auto available = static_cast<std::size_t>((last - prices.firstMoment()) / length + 1);
    count = std::min(count, available);

    std::vector<Bar> result;
    result.reserve(count);
    for (std::size_t back = count; back-- > 0;) {
        const TimeMs start = last - static_cast<TimeMs>(back) * length;
        const GridBar bar = prices.barUntil(timeframe, start, now);
        result.push_back({start, static_cast<double>(bar.open) / unit, static_cast<double>(bar.high) / unit,
            static_cast<double>(bar.low) / unit, static_cast<double>(bar.close) / unit, bar.volume});
    }
    return result;
}

} // namespace practice
