#pragma once

#include "chart/data/IndicatorTable.h"
#include "chart/data/MovingAverageSpec.h"

#include <span>
#include <vector>

/// Indicator values over the closes of a series: one value a bar, NaN where a bar has none.
namespace indicators {

/// What to compute. A period below 1 counts as 1.
struct Recipe {
    IndicatorKind kind = IndicatorKind::Sma;
    qint32 period = 1;

    bool operator==(const Recipe&) const = default;
};

/// The recipe for a period; one below 1 becomes 1, so that equal values have equal recipes.
[[nodiscard]] Recipe recipeFor(IndicatorKind kind, qint32 period);

/// Whether any of `count` bars has a value.
[[nodiscard]] bool hasValues(const Recipe& recipe, qsizetype count);

/// Takes in the candles from `progress.bars` on and writes their values to the places of the same index in
/// `values`, which is at least as long as `candles`. However many candles each call takes in, the values are
/// the same to the bit: all computations come through here.
void extend(IndicatorProgress& progress, const Recipe& recipe, std::span<const Candle> candles,
    std::span<double> values);

[[nodiscard]] std::vector<double> movingAverage(
    std::span<const Candle> candles, const MovingAverageSpec& spec);
[[nodiscard]] std::vector<double> rsi(std::span<const Candle> candles, int period);

} // namespace indicators
