#pragma once

#include "practice/core/PointScale.h"
#include "practice/core/Types.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace practice {

/// A bar in whole points. Everything inside the market counts in points, so comparisons are exact and
/// prices cannot leave the grid.
struct GridBar {
    std::int64_t open = 0;
    std::int64_t high = 0;
    std::int64_t low = 0;
    std::int64_t close = 0;
    std::int64_t volume = 0;

    /// Lengthens this bar by the one that follows it.
    void append(const GridBar& next)
    {
        high = std::max(high, next.high);
        low = std::min(low, next.low);
        close = next.close;
        volume += next.volume;
    }
    friend bool operator==(const GridBar&, const GridBar&) = default;
};

/// A bar that can be split into shorter ones: it also knows how restless the price is inside it.
struct BarNode {
    GridBar bar;
    double variance = 0; ///< expected variance of the log price over the bar
};

/// Folds `value` back into [low, high] at the borders, as a ball between two walls.
[[nodiscard]] inline double reflectInto(double value, double low, double high)
{
    if (value >= low && value <= high)
        return value;
    const double range = high - low;
    if (!(range > 0))
        return low;
    double offset = std::fmod(std::abs(value - low), 2 * range);
    if (offset > range)
        offset = 2 * range - offset;
    return low + offset;
}

/// The highest point of a random walk of this variance between two ends; `uniform` in (0, 1) picks from the
/// exact distribution of a Brownian bridge's maximum. Negate ends and result for the lowest.
[[nodiscard]] inline double bridgeMaximum(double from, double to, double variance, double uniform)
{
    return 0.5 * (from + to + std::sqrt((to - from) * (to - from) - 2 * variance * std::log(uniform)));
}

} // namespace practice
