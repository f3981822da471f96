#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/CommonFactors.h"
#include "practice/core/market/GridBar.h"

#include <cstdint>
#include <vector>

namespace practice {

/// A symbol's days: the log price wanders around the symbol's base price and is pulled back to it, while
/// the size of its steps itself swells and ebbs over weeks. Each day opens where the last one closed.
///
/// Days are numbered from 1970-01-01. The walk starts at firstDay and is drawn once, up to the latest day
/// asked for, because each day builds on the one before; 90 years take some ten milliseconds.
///
/// With a speed of X one day wanders as far as X days do at speed 1 and is pulled back X times as
/// strongly, so a fast market moves more often but not to wilder prices.
class DayWalk final {
public:
    static constexpr std::int64_t firstDay = -210LL * 57; ///< in 1937: starts a week and a 30-day bar too
    static constexpr std::int64_t lastDay = 84'000;       ///< in 2199; the price stands still after it

    /// `ticksPerMinute` sets the level of the volumes.
    DayWalk(const SymbolSpec& spec, std::uint64_t key, double speed, double ticksPerMinute,
        const CommonFactors& common);

    /// The day with this number, from firstDay to lastDay.
    [[nodiscard]] BarNode day(std::int64_t number);

private:
    struct Day {
        std::int64_t high;
        std::int64_t low;
        std::int64_t close;
        std::int64_t volume;
        double variance;
    };

    void drawNextDay();
    [[nodiscard]] std::int64_t pointsAt(double logLevel) const;

    std::uint64_t m_key;
    CommonFactors m_common;
    CommonFactors m_commonMood;
    double m_pointsPerUnit;
    double m_basePoints;
    double m_leastPoints;
    double m_dayVariance;
    double m_pull;
    double m_stepDeviation;
    double m_moodPersistence;
    double m_dayTicks;

    double m_level; // log price relative to the base
    double m_mood;  // log volatility relative to its usual value
    std::int64_t m_firstOpen;
    std::vector<Day> m_days;
};

} // namespace practice
