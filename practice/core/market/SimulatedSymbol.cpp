#include "practice/core/market/SimulatedSymbol.h"

#include "practice/core/market/HashRandom.h"

#include <cmath>
#include <utility>

namespace practice {
namespace {

enum KeyPart : std::uint64_t { DaysKey = 1, TreeKey, PathKey, SpreadKey, PhaseKey };

constexpr TimeMs spreadKnotMs = 15'000;
constexpr double moodWeight = 0.2;
constexpr double widestMood = 3;
constexpr double mostRestless = 6;

double knot(std::uint64_t key, std::int64_t number)
{
    const double chance
        = HashRandom(hashKey({key, SpreadKey, static_cast<std::uint64_t>(number)})).gaussian();
    return std::clamp(chance, -widestMood, widestMood);
}

} // namespace

TimeMs SimulatedSymbol::tickLength(double speed)
{
    if (speed <= 1)
        return 200;
    if (speed <= 4)
        return 125;
    return speed <= 12 ? 100 : 50;
}

SimulatedSymbol::SimulatedSymbol(const SymbolSpec& spec, std::uint64_t seed, double speed)
    : m_key(hashKey({seed, hashText(spec.name)}))
    , m_tickLength(tickLength(speed))
    , m_phase(static_cast<TimeMs>(hashKey({m_key, PhaseKey}) % static_cast<std::uint64_t>(m_tickLength)))
    , m_usualHalfSpread(spec.spreadPoints / 2.0)
    , m_usualMinuteDeviation(spec.dailyVolatility * std::sqrt(speed / 1440))
    , m_tree(std::make_shared<DayWalk>(spec, hashKey({m_key, DaysKey}), speed,
                 0.5 * minuteMs / static_cast<double>(m_tickLength), CommonFactors(seed, spec.shared)),
          hashKey({m_key, TreeKey}), CommonFactors(seed, spec.shared))
{
}

void SimulatedSymbol::enterMinute(std::int64_t minute)
{
    if (m_minute == minute)
        return;
    const BarNode node = m_tree.node(Timeframe::M1, minute);
    m_path = TickPath(node, static_cast<std::size_t>(minuteMs / m_tickLength),
        hashKey({m_key, PathKey, static_cast<std::uint64_t>(minute)}));
    m_restlessness = std::sqrt(node.variance) / m_usualMinuteDeviation;
    m_minute = minute;
}

std::size_t SimulatedSymbol::stepAt(TimeMs now) const
{
    const TimeMs offset = now - m_minute * minuteMs - m_phase;
    return offset < 0 ? 0 : static_cast<std::size_t>(offset / m_tickLength);
}

TimeMs SimulatedSymbol::stepStart(std::size_t step) const
{
    const TimeMs start = m_minute * minuteMs;
    return step == 0 ? start : start + m_phase + static_cast<TimeMs>(step) * m_tickLength;
}

std::int64_t SimulatedSymbol::mid(TimeMs now)
{
    enterMinute(floorDivide(now, minuteMs));
    return m_path.mid(stepAt(now));
}

std::int64_t SimulatedSymbol::halfSpread(TimeMs now)
{
    enterMinute(floorDivide(now, minuteMs));
    now = stepStart(stepAt(now)); // the spread changes with the ticks, not between them
    if (now == m_spreadSince)
        return m_halfSpread;
    const std::int64_t number = floorDivide(now, spreadKnotMs);
    if (number != m_knotNumber) {
        m_knot = knot(m_key, number);
        m_nextKnot = knot(m_key, number + 1);
        m_knotNumber = number;
    }
    const double way = static_cast<double>(now - number * spreadKnotMs) / static_cast<double>(spreadKnotMs);
    const double mood = (1 - way) * m_knot + way * m_nextKnot;
    const double half = m_usualHalfSpread * std::exp(moodWeight * mood)
        * std::sqrt(std::clamp(m_restlessness, 0.5, mostRestless));
    m_spreadSince = now;
    m_halfSpread = std::max<std::int64_t>(1, std::llround(half));
    return m_halfSpread;
}

std::int64_t SimulatedSymbol::widestHalfSpread() const
{
    return 1
        + static_cast<std::int64_t>(
            m_usualHalfSpread * std::exp(moodWeight * widestMood) * std::sqrt(mostRestless));
}

TimeMs SimulatedSymbol::nextChange(TimeMs now)
{
    const TimeMs minute = floorDivide(now, minuteMs) * minuteMs;
    const TimeMs offset = std::max<TimeMs>(0, now - minute - m_phase);
    return std::min(minute + m_phase + (offset / m_tickLength + 1) * m_tickLength, minute + minuteMs);
}

void SimulatedSymbol::appendTicks(TimeMs from, TimeMs to, std::vector<Tick>& ticks)
{
    for (TimeMs now = from; now <= to;) {
        enterMinute(floorDivide(now, minuteMs));
        const std::size_t last = stepAt(std::min(to, (m_minute + 1) * minuteMs - 1));
        std::size_t step = stepAt(now);
        ticks.push_back({now, m_path.mid(step)});
        while (++step <= last)
            ticks.push_back({stepStart(step), m_path.mid(step)});
        now = (m_minute + 1) * minuteMs;
    }
}

GridBar SimulatedSymbol::between(TimeMs from, TimeMs to)
{
    // The longest bar that begins here and ends in time, then the rest.
    const auto partAt = [&](TimeMs start, TimeMs& end) {
        for (const Timeframe timeframe :
            {Timeframe::D1, Timeframe::H4, Timeframe::H1, Timeframe::M15, Timeframe::M5, Timeframe::M1}) {
            const TimeMs length = timeframeLength(timeframe);
            if (start % length != 0 || start + length - 1 > to)
                continue;
            end = start + length;
            return m_tree.node(timeframe, floorDivide(start, length)).bar;
        }
        enterMinute(floorDivide(start, minuteMs));
        end = std::min(to + 1, (m_minute + 1) * minuteMs);
        return m_path.between(stepAt(start), stepAt(end - 1));
    };
    TimeMs end = from;
    GridBar bar = partAt(from, end);
    while (end <= to)
        bar.append(partAt(end, end));
    bar.volume = 0;
    return bar;
}

GridBar SimulatedSymbol::barUntil(Timeframe timeframe, TimeMs start, TimeMs now)
{
    const TimeMs length = timeframeLength(timeframe);
    const bool whole = now >= start + length - 1;
    if (whole && timeframe <= Timeframe::D1)
        return m_tree.node(timeframe, start / length).bar;
    if (timeframe == Timeframe::M1) {
        enterMinute(start / length);
        return m_path.until(stepAt(now));
    }
    const auto shorter
        = timeframe > Timeframe::D1 ? Timeframe::D1 : static_cast<Timeframe>(static_cast<int>(timeframe) - 1);
    GridBar bar = barUntil(shorter, start, now);
    const TimeMs end = std::min(start + length - 1, now);
    for (TimeMs next = start + timeframeLength(shorter); next <= end; next += timeframeLength(shorter))
        bar.append(barUntil(shorter, next, now));
    return bar;
}

} // namespace practice
