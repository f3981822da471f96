#include "practice/core/market/SimulatedSymbol.h"

#include "practice/core/market/HashRandom.h"

#include <cmath>
#include <utility>

namespace practice {
namespace {

enum KeyPart : std::uint64_t { DaysKey = 1, TreeKey, PathKey, SpreadKey, PhaseKey };

constexpr TimeMs spreadKnotMs = 15'000;

double knot(std::uint64_t key, std::int64_t number)
{
    return HashRandom(hashKey({key, SpreadKey, static_cast<std::uint64_t>(number)})).gaussian();
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

SimulatedSymbol::SimulatedSymbol(
    const SymbolSpec& spec, std::uint64_t seed, double speed, DayWalk::CloseRule rule)
    : m_key(hashKey({seed, hashText(spec.name)}))
    , m_tickLength(tickLength(speed))
    , m_phase(static_cast<TimeMs>(hashKey({m_key, PhaseKey}) % static_cast<std::uint64_t>(m_tickLength)))
    , m_usualHalfSpread(spec.spreadPoints / 2.0)
    , m_usualMinuteDeviation(spec.dailyVolatility * std::sqrt(speed / 1440))
    , m_days(std::make_shared<DayWalk>(spec, hashKey({m_key, DaysKey}), speed,
          0.5 * minuteMs / static_cast<double>(m_tickLength), std::move(rule)))
    , m_tree(m_days, hashKey({m_key, TreeKey}))
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

std::int64_t SimulatedSymbol::mid(TimeMs now)
{
    enterMinute(floorDivide(now, minuteMs));
    return m_path.mid(stepAt(now));
}

std::int64_t SimulatedSymbol::halfSpread(TimeMs now)
{
    enterMinute(floorDivide(now, minuteMs));
    const std::int64_t number = floorDivide(now, spreadKnotMs);
    const double way = static_cast<double>(now - number * spreadKnotMs) / static_cast<double>(spreadKnotMs);
    const double mood = (1 - way) * knot(m_key, number) + way * knot(m_key, number + 1);
    const double half
        = m_usualHalfSpread * std::exp(0.2 * mood) * std::sqrt(std::clamp(m_restlessness, 0.5, 6.0));
    return std::max<std::int64_t>(1, std::llround(half));
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
