#include "practice/core/market/DayWalk.h"

#include "practice/core/PointScale.h"
#include "practice/core/market/HashRandom.h"

#include <cmath>

namespace practice {
namespace {

constexpr double pullPerDay = 1.0 / 250; // a deviation from the base price halves in about eight months
constexpr double moodDecayPerDay = 1.0 / 30;
constexpr double moodDeviation = 0.40;

// Calm and lively weeks are mostly those of the whole market. Otherwise the moves that two symbols share
// would drown in the livelier symbol's own.
constexpr double commonMood = 0.8;

enum CommonKind : std::uint64_t { FirstDay = 100, EveryDay, FirstMood, EveryMood };

} // namespace

DayWalk::DayWalk(const SymbolSpec& spec, std::uint64_t key, double speed, double ticksPerMinute,
    const CommonFactors& common)
    : m_key(key)
    , m_common(common)
    , m_commonMood(common.sharedAlike(commonMood))
    , m_pointsPerUnit(pointsPerUnit(spec.digits))
    , m_basePoints(spec.basePrice * m_pointsPerUnit)
    , m_leastPoints(10.0 * spec.spreadPoints)
    , m_dayVariance(spec.dailyVolatility * spec.dailyVolatility * speed)
    , m_pull(std::exp(-pullPerDay * speed))
    , m_moodPersistence(std::exp(-moodDecayPerDay * speed))
    , m_dayTicks(ticksPerMinute * 1440)
{
    const double usualDeviation = spec.dailyVolatility / std::sqrt(-std::expm1(-2 * pullPerDay));
    m_stepDeviation = usualDeviation * std::sqrt(-std::expm1(-2 * pullPerDay * speed));
    HashRandom random(hashKey({key, 0}));
    m_level = usualDeviation * (m_common.draw(FirstDay, 0) + m_common.ownWeight() * random.gaussian());
    m_mood = moodDeviation * (m_commonMood.draw(FirstMood, 0) + m_commonMood.ownWeight() * random.gaussian());
    m_firstOpen = pointsAt(m_level);
}

std::int64_t DayWalk::pointsAt(double logLevel) const
{
    return std::llround(std::max(m_leastPoints, m_basePoints * std::exp(logLevel)));
}

void DayWalk::drawNextDay()
{
    HashRandom random(hashKey({m_key, 1, m_days.size()}));
    const auto number = static_cast<std::int64_t>(m_days.size());
    const double moodStep
        = m_commonMood.draw(EveryMood, number) + m_commonMood.ownWeight() * random.gaussian();
    m_mood = m_moodPersistence * m_mood
        + moodDeviation * std::sqrt(1 - m_moodPersistence * m_moodPersistence) * moodStep;
    // The second term keeps the mean square of the restlessness at 1.
    const double restlessness = std::exp(m_mood - moodDeviation * moodDeviation);
    const double deviation = m_stepDeviation * restlessness;

    const double from = m_level;
    m_level = m_pull * m_level
        + deviation * (m_common.draw(EveryDay, number) + m_common.ownWeight() * random.gaussian());
    const double variance = deviation * deviation;
    const double high = bridgeMaximum(from, m_level, variance, random.uniform());
    const double low = -bridgeMaximum(-from, -m_level, variance, random.uniform());
    const double ticks = m_dayTicks * std::pow(restlessness, 0.7) * std::exp(0.15 * random.gaussian());
    m_days.push_back({pointsAt(high), pointsAt(low), pointsAt(m_level),
        static_cast<std::int64_t>(std::max(2880.0, ticks)), m_dayVariance * restlessness * restlessness});
}

BarNode DayWalk::day(std::int64_t number)
{
    const auto index = static_cast<std::size_t>(std::clamp(number, firstDay, lastDay) - firstDay);
    while (m_days.size() <= index)
        drawNextDay();
    const Day& day = m_days[index];
    const std::int64_t open = index == 0 ? m_firstOpen : m_days[index - 1].close;
    return {{open, std::max({day.high, open, day.close}), std::min({day.low, open, day.close}), day.close,
                day.volume},
        day.variance};
}

} // namespace practice
