#include "practice/core/market/CrossSymbol.h"

#include "practice/core/PointScale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace practice {
namespace {

// A stretch is searched in parts of the first of these lengths that is shorter than the stretch; the shortest
// are searched tick by tick. Each length divides the one before it.
constexpr std::array<TimeMs, 7> partLengths{
    7 * dayMs, dayMs, 4 * hourMs, hourMs, 15 * minuteMs, 5 * minuteMs, minuteMs};

constexpr std::size_t knownBars = 2048; // of each timeframe

std::int64_t rounded(double price)
{
    return std::max<std::int64_t>(2, std::llround(std::min(price, 1e15)));
}

TimeMs partLength(TimeMs length)
{
    const auto shorter = std::ranges::find_if(partLengths, [length](TimeMs part) { return part < length; });
    return shorter == partLengths.end() ? 0 : *shorter;
}

} // namespace

CrossSymbol::CrossSymbol(const SymbolSpec& spec, const std::vector<Leg>& legs)
    : m_pointsPerUnit(pointsPerUnit(spec.digits))
    , m_usualHalfSpread(spec.spreadPoints / 2.0)
    , m_first(legs.front().prices->firstMoment())
    , m_last(legs.front().prices->lastMoment())
    , m_known(allTimeframes.size())
{
    for (const Leg& leg : legs) {
        m_legs.push_back(
            {leg.prices, pointsPerUnit(leg.spec->digits), leg.spec->spreadPoints / 2.0, leg.inverted});
        m_first = std::max(m_first, leg.prices->firstMoment());
        m_last = std::min(m_last, leg.prices->lastMoment());
    }
}

// Multiplying, dividing and rounding keep the order of two numbers, so the legs' highs and lows give exact
// bounds of the result, to the last bit.
template <typename PointsOf> double CrossSymbol::price(const PointsOf& pointsOf) const
{
    double price = m_pointsPerUnit;
    for (const Source& leg : m_legs) {
        const double legPrice = static_cast<double>(pointsOf(leg)) / leg.pointsPerUnit;
        price = leg.inverted ? price / legPrice : price * legPrice;
    }
    return price;
}

template <typename PointsOf> std::int64_t CrossSymbol::combine(const PointsOf& pointsOf) const
{
    return rounded(price(pointsOf));
}

std::int64_t CrossSymbol::mid(TimeMs now)
{
    return combine([now](const Source& leg) { return leg.prices->mid(now); });
}

template <typename HalfOf> std::int64_t CrossSymbol::spreadFrom(const HalfOf& halfOf) const
{
    double tension = 0;
    for (const Source& leg : m_legs)
        tension += static_cast<double>(halfOf(leg)) / leg.usualHalfSpread;
    tension /= static_cast<double>(m_legs.size());
    return std::max<std::int64_t>(1, std::llround(m_usualHalfSpread * tension));
}

std::int64_t CrossSymbol::halfSpread(TimeMs now)
{
    return spreadFrom([now](const Source& leg) { return leg.prices->halfSpread(now); });
}

std::int64_t CrossSymbol::widestHalfSpread() const
{
    return spreadFrom([](const Source& leg) { return leg.prices->widestHalfSpread(); });
}

TimeMs CrossSymbol::nextChange(TimeMs now)
{
    TimeMs next = m_legs.front().prices->nextChange(now);
    for (const Source& leg : m_legs)
        next = std::min(next, leg.prices->nextChange(now));
    return next;
}

CrossSymbol::Stretch CrossSymbol::stretch(TimeMs from, TimeMs to)
{
    m_bars.clear();
    std::size_t moving = 0;
    for (const Source& leg : m_legs) {
        m_bars.push_back(leg.prices->between(from, to));
        moving += m_bars.back().high != m_bars.back().low ? 1 : 0;
    }
    const auto barOf = [&](const Source& leg) -> const GridBar& {
        return m_bars[static_cast<std::size_t>(&leg - m_legs.data())];
    };
    return {from, to, combine([&](const Source& leg) { return barOf(leg).open; }),
        combine([&](const Source& leg) { return barOf(leg).close; }),
        combine([&](const Source& leg) { return leg.inverted ? barOf(leg).low : barOf(leg).high; }),
        combine([&](const Source& leg) { return leg.inverted ? barOf(leg).high : barOf(leg).low; }),
        moving <= 1};
}

// The most promising stretch goes first: once even that cannot exceed what is found, no other one can.
void CrossSymbol::search(const Stretch& whole, bool upwards, GridBar& found)
{
    const auto offers = [&](const Stretch& stretch) {
        return upwards ? stretch.highest > found.high : stretch.lowest < found.low;
    };
    const auto less = [upwards](const Stretch& left, const Stretch& right) {
        return upwards ? left.highest < right.highest : left.lowest > right.lowest;
    };
    std::vector<Stretch> waiting{whole};
    while (!waiting.empty() && offers(waiting.front())) {
        std::ranges::pop_heap(waiting, less);
        const Stretch next = waiting.back();
        waiting.pop_back();
        if (next.exact) {
            found.high = std::max(found.high, next.highest);
            found.low = std::min(found.low, next.lowest);
            continue;
        }
        const TimeMs length = partLength(next.to - next.from + 1);
        if (length == 0) {
            searchTicks(next, found);
            continue;
        }
        for (TimeMs from = next.from; from <= next.to;) {
            const TimeMs end = (floorDivide(from, length) + 1) * length;
            const Stretch part = stretch(from, std::min(end - 1, next.to));
            found.high = std::max({found.high, part.open, part.close});
            found.low = std::min({found.low, part.open, part.close});
            if (offers(part)) {
                waiting.push_back(part);
                std::ranges::push_heap(waiting, less);
            }
            from = end;
        }
    }
}

// Goes through all legs' ticks in the order of time; the product is rounded at the end only.
void CrossSymbol::searchTicks(const Stretch& within, GridBar& found)
{
    m_ticks.resize(m_legs.size());
    for (std::size_t i = 0; i < m_legs.size(); ++i) {
        m_ticks[i].clear();
        m_legs[i].prices->appendTicks(within.from, within.to, m_ticks[i]);
        m_ticks[i].push_back({std::numeric_limits<TimeMs>::max(), 0});
    }
    std::vector<std::size_t>& next = m_nextTick;
    next.assign(m_legs.size(), 1);
    const auto current = [&](const Source& leg) {
        const auto i = static_cast<std::size_t>(&leg - m_legs.data());
        return m_ticks[i][next[i] - 1].mid;
    };
    double high = price(current);
    double low = high;
    while (true) {
        TimeMs now = std::numeric_limits<TimeMs>::max();
        for (std::size_t i = 0; i < m_legs.size(); ++i)
            now = std::min(now, m_ticks[i][next[i]].time);
        if (now == std::numeric_limits<TimeMs>::max())
            break;
        for (std::size_t i = 0; i < m_legs.size(); ++i)
            next[i] += m_ticks[i][next[i]].time == now ? 1 : 0;
        const double mid = price(current);
        high = std::max(high, mid);
        low = std::min(low, mid);
    }
    found.high = std::max(found.high, rounded(high));
    found.low = std::min(found.low, rounded(low));
}

void CrossSymbol::appendTicks(TimeMs from, TimeMs to, std::vector<Tick>& ticks)
{
    for (TimeMs now = from; now <= to; now = nextChange(now))
        ticks.push_back({now, mid(now)});
}

GridBar CrossSymbol::between(TimeMs from, TimeMs to)
{
    const Stretch whole = stretch(from, to);
    GridBar bar{
        whole.open, std::max(whole.open, whole.close), std::min(whole.open, whole.close), whole.close, 0};
    search(whole, true, bar);
    search(whole, false, bar);
    return bar;
}

GridBar CrossSymbol::barUntil(Timeframe timeframe, TimeMs start, TimeMs now)
{
    const TimeMs last = start + timeframeLength(timeframe) - 1;
    const bool finished = now >= last;
    const std::int64_t number = start / timeframeLength(timeframe);
    std::vector<Known>& known = m_known[static_cast<std::size_t>(timeframe)];
    if (finished && known.empty())
        known.resize(knownBars);
    Known* place = finished ? &known[static_cast<std::uint64_t>(number) % knownBars] : nullptr;
    if (place && place->number == number)
        return place->bar;

    GridBar bar = between(start, std::min(now, last));
    for (const Source& leg : m_legs)
        bar.volume += leg.prices->barUntil(timeframe, start, now).volume;
    if (place)
        *place = {bar, number};
    return bar;
}

} // namespace practice
