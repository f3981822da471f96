#include "practice/core/market/ReplayedSymbol.h"

#include "practice/core/market/HashRandom.h"

#include <cmath>
#include <utility>

namespace practice {
namespace {

// As many price changes a second as the simulator makes, but at least as many as a recorded minute needs to
// touch its open, high, low and close.
std::size_t stepsFor(double speed)
{
    const TimeMs wholeTicksAMinute = minuteMs / SimulatedSymbol::tickLength(speed);
    const double steps = static_cast<double>(wholeTicksAMinute) / speed;
    return static_cast<std::size_t>(std::clamp(std::round(steps), 4.0, 600.0));
}

// A part of a step, small enough that at least one moment falls into the last step of a minute: so each price
// of the record that is in a bar has been a tick.
double phaseFor(std::uint64_t key, std::size_t steps, double speed)
{
    return HashRandom(key).uniform()
        * std::max(0.0, 1 - (speed + 1) * static_cast<double>(steps) / static_cast<double>(minuteMs));
}

std::int64_t widest(const MinuteTable& minutes, std::int64_t simulated)
{
    for (std::size_t minute = 0; minute < minutes.size(); ++minute)
        simulated = std::max(simulated, minutes.at(minute).halfSpread.widest());
    return simulated;
}

} // namespace

ReplayedSymbol::ReplayedSymbol(
    const SymbolSpec& spec, MinuteTable minutes, TimeMs playFrom, double speed, std::uint64_t seed)
    : m_past(spec, seed, speed)
    , m_widestHalfSpread(widest(minutes, m_past.widestHalfSpread()))
    , m_loop(std::move(minutes))
    , m_playFrom(
          barStart(std::clamp(playFrom, m_past.firstMoment() + dayMs, m_past.lastMoment()), Timeframe::M1))
    , m_speed(speed)
    , m_key(hashKey({seed, hashText(spec.name), hashText("replay")}))
    , m_steps(stepsFor(speed))
    , m_phase(phaseFor(m_key, m_steps, speed))
{
    m_scale
        = static_cast<double>(m_loop.minute(0).bar.open) / static_cast<double>(m_past.mid(m_playFrom - 1));
}

// Recorded milliseconds played by now.
std::int64_t ReplayedSymbol::positionAt(TimeMs now) const
{
    return static_cast<std::int64_t>(std::floor(static_cast<double>(now - m_playFrom) * m_speed));
}

ReplayedSymbol::Place ReplayedSymbol::placeOf(std::int64_t position) const
{
    const std::int64_t minute = floorDivide(position, minuteMs);
    const double part = static_cast<double>(position - minute * minuteMs) / static_cast<double>(minuteMs);
    const double step = std::floor(part * static_cast<double>(m_steps) - m_phase);
    return {minute, step > 0 ? static_cast<std::size_t>(step) : 0};
}

std::int64_t ReplayedSymbol::scaled(std::int64_t pastPoints) const
{
    return std::max<std::int64_t>(2, std::llround(static_cast<double>(pastPoints) * m_scale));
}

const TickPath& ReplayedSymbol::pathOf(std::int64_t minute)
{
    if (m_pathMinute != minute) {
        const BarNode node{m_loop.minute(minute).bar, 0};
        m_path = TickPath(node, m_steps, hashKey({m_key, static_cast<std::uint64_t>(minute)}));
        m_pathMinute = minute;
    }
    return m_path;
}

std::int64_t ReplayedSymbol::mid(TimeMs now)
{
    if (now < m_playFrom)
        return scaled(m_past.mid(now));
    const Place place = placeOf(positionAt(now));
    return pathOf(place.minute).mid(place.step);
}

std::int64_t ReplayedSymbol::halfSpread(TimeMs now)
{
    if (now >= m_playFrom) {
        const Place place = placeOf(positionAt(now));
        const MinuteRecord minute = m_loop.minute(place.minute);
        if (minute.halfSpread.areRecorded())
            return halfSpreadAt(minute.bar, minute.halfSpread, pathOf(place.minute), place.step);
    }
    return m_past.halfSpread(now);
}

TimeMs ReplayedSymbol::nextChange(TimeMs now)
{
    if (now < m_playFrom - 1)
        return std::min(m_past.nextChange(now), m_playFrom);
    if (now < m_playFrom)
        return m_playFrom;
    const Place here = placeOf(positionAt(now));
    // Begins a little before the next step, in case of rounding, and goes forwards to its first moment.
    const double steps = static_cast<double>(here.step) + 1 + m_phase;
    const double end = here.step + 1 == m_steps ? 1.0 : std::min(1.0, steps / static_cast<double>(m_steps));
    const double position = (static_cast<double>(here.minute) + end) * static_cast<double>(minuteMs);
    TimeMs next = std::max(now + 1, m_playFrom + static_cast<TimeMs>(position / m_speed) - 2);
    while (placeOf(positionAt(next)) == here)
        ++next;
    // Where the record has no spread, the simulated one has ticks of its own.
    return m_loop.minute(here.minute).halfSpread.areRecorded() ? next
                                                               : std::min(next, m_past.nextChange(now));
}

void ReplayedSymbol::appendTicks(TimeMs from, TimeMs to, std::vector<Tick>& ticks)
{
    for (TimeMs now = from; now <= to; now = nextChange(now))
        ticks.push_back({now, mid(now)});
}

GridBar ReplayedSymbol::between(TimeMs from, TimeMs to)
{
    GridBar bar;
    if (from < m_playFrom) {
        bar = m_past.between(from, std::min(to, m_playFrom - 1));
        for (std::int64_t* price : {&bar.open, &bar.high, &bar.low, &bar.close})
            *price = scaled(*price);
        if (to < m_playFrom)
            return bar;
    }
    const GridBar rest = played(positionAt(std::max(from, m_playFrom)), positionAt(to));
    if (from >= m_playFrom)
        bar = rest;
    else
        bar.append(rest);
    bar.volume = 0;
    return bar;
}

// Rounded up within a minute, so that its first tick counts at once.
std::int64_t ReplayedSymbol::volumeUntil(std::int64_t position) const
{
    if (position < 0)
        return 0;
    const Place place = placeOf(position);
    const auto steps = static_cast<std::int64_t>(m_steps);
    const std::int64_t volume = m_loop.minute(place.minute).bar.volume;
    return m_loop.volumeBefore(place.minute)
        + (volume * static_cast<std::int64_t>(place.step + 1) + steps - 1) / steps;
}

// Whole minutes need no path: they are known from the record.
GridBar ReplayedSymbol::steps(std::int64_t minute, std::size_t first, std::size_t last)
{
    if (first == 0 && last + 1 == m_steps)
        return m_loop.minute(minute).bar;
    return pathOf(minute).between(first, last);
}

GridBar ReplayedSymbol::played(std::int64_t from, std::int64_t to)
{
    const Place first = placeOf(from);
    const Place last = placeOf(to);
    GridBar bar = steps(first.minute, first.step, first.minute == last.minute ? last.step : m_steps - 1);
    if (last.minute - first.minute > 1)
        bar.append(m_loop.fold(first.minute + 1, last.minute - 1));
    if (last.minute != first.minute)
        bar.append(steps(last.minute, 0, last.step));
    bar.volume = volumeUntil(to) - volumeUntil(from - 1);
    return bar;
}

GridBar ReplayedSymbol::barUntil(Timeframe timeframe, TimeMs start, TimeMs now)
{
    const TimeMs end = start + timeframeLength(timeframe);
    GridBar bar;
    if (start < m_playFrom) {
        bar = m_past.barUntil(timeframe, start, std::min(now, m_playFrom - 1));
        for (std::int64_t* price : {&bar.open, &bar.high, &bar.low, &bar.close})
            *price = scaled(*price);
        if (std::min(now, end - 1) < m_playFrom)
            return bar;
    }
    // A finished bar reaches up to where the next one begins, although at high speed its own last
    // millisecond lies well before that.
    const std::int64_t from = positionAt(std::max(start, m_playFrom));
    const std::int64_t to = now >= end ? positionAt(end) - 1 : positionAt(now);
    const GridBar rest = played(from, std::max(from, to));
    if (start >= m_playFrom)
        return rest;
    bar.append(rest);
    return bar;
}

} // namespace practice
