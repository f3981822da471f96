#pragma once

#include "chart/data/MovingAverageSpec.h"
#include "chart/series/Candle.h"

#include <span>
#include <vector>

/// Indicator values over the closes of a series: one value a bar, NaN where a bar has none.
namespace indicators {

enum class Kind {
    Simple,           ///< mean of the last `period` closes
    Exponential,      ///< begins with the mean of the first `period` closes
    RelativeStrength, ///< after Wilder, 0 to 100, from the bar with index `period` on
};

/// What to compute. A period below 1 counts as 1.
struct Recipe {
    Kind kind = Kind::Simple;
    qint32 period = 1;

    bool operator==(const Recipe&) const = default;
};

/// What a computation carries from one bar to the next.
struct Progress {
    qsizetype bars = 0;  ///< bars taken in so far
    double first = 0.0;  ///< sum of closes, exponential average, or sum and then average of gains
    double second = 0.0; ///< sum and then average of losses
};

/// Recipes with periods below 1 and of 1 give the same values; the recipe returned says 1.
[[nodiscard]] Recipe recipeFor(const MovingAverageSpec& spec);

/// Whether any of `count` bars has a value.
[[nodiscard]] bool hasValues(const Recipe& recipe, qsizetype count);

/// Takes in the bars from `progress.bars` on and writes their values to the places of the same index in
/// `values`, which is at least as long as `candles`. However many bars each call takes in, the values are
/// the same to the bit: all computations come through here.
void extend(
    Progress& progress, const Recipe& recipe, std::span<const Candle> candles, std::span<double> values);

[[nodiscard]] std::vector<double> movingAverage(
    std::span<const Candle> candles, const MovingAverageSpec& spec);
[[nodiscard]] std::vector<double> relativeStrength(std::span<const Candle> candles, int period);

} // namespace indicators
