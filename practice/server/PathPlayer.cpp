#include "practice/server/PathPlayer.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

namespace practice {

namespace {

constexpr std::array<TimeMs, 7> partLengths{
    4 * hourMs, hourMs, 15 * minuteMs, 5 * minuteMs, minuteMs, 10'000, 1'000};

} // namespace

PathPlayer::PathPlayer(PriceSource& market, const Broker& broker, Step step)
    : m_market(market)
    , m_broker(broker)
    , m_step(std::move(step))
{
}

void PathPlayer::play(TimeMs from, TimeMs to)
{
    while (from < to && !m_broker.watchedSymbols().empty()) {
        const TimeMs midnight = barStart(from, Timeframe::D1) + dayMs;
        if (from + 1 < midnight)
            playWithinDay(from + 1, std::min(to, midnight - 1));
        if (midnight <= to)
            showAll(midnight);
        from = midnight;
    }
}

void PathPlayer::playWithinDay(TimeMs first, TimeMs last)
{
    if (isQuiet(first, last))
        return;
    const TimeMs length = last - first + 1;
    const auto part
        = std::ranges::find_if(partLengths, [length](TimeMs shorter) { return shorter < length; });
    if (part == partLengths.end()) {
        playTicks(first, last);
        return;
    }
    while (first <= last) {
        const TimeMs end = (floorDivide(first, *part) + 1) * *part;
        playWithinDay(first, std::min(end - 1, last));
        first = end;
    }
}

void PathPlayer::playTicks(TimeMs first, TimeMs last)
{
    showAll(first);
    std::vector<std::size_t> symbols = m_broker.watchedSymbols();
    std::vector<TimeMs> due;
    const auto lookAhead = [&](TimeMs now) {
        due.clear();
        for (const std::size_t symbol : symbols)
            due.push_back(m_market.nextTick(symbol, now));
    };
    lookAhead(first);
    std::vector<SymbolQuote> quotes;
    while (!symbols.empty()) {
        const TimeMs now = std::ranges::min(due);
        if (now > last)
            return;
        quotes.clear();
        for (std::size_t i = 0; i < symbols.size(); ++i) {
            if (due[i] != now)
                continue;
            quotes.push_back({symbols[i], m_market.quote(symbols[i], now)});
            due[i] = m_market.nextTick(symbols[i], now);
        }
        if (m_step(quotes, now)) {
            symbols = m_broker.watchedSymbols();
            lookAhead(now);
        }
    }
}

bool PathPlayer::isQuiet(TimeMs first, TimeMs last)
{
    const std::vector<std::size_t> symbols = m_broker.watchedSymbols();
    if (symbols.empty())
        return true;
    std::vector<std::optional<PriceSpan>> spans(m_market.symbols().size());
    for (const std::size_t symbol : symbols)
        spans[symbol] = m_market.span(symbol, first, last);
    return m_broker.staysQuiet(spans);
}

bool PathPlayer::showAll(TimeMs now)
{
    std::vector<SymbolQuote> quotes;
    for (const std::size_t symbol : m_broker.watchedSymbols())
        quotes.push_back({symbol, m_market.quote(symbol, now)});
    return m_step(quotes, now);
}

} // namespace practice
