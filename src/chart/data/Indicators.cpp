#include "chart/data/Indicators.h"

#include <algorithm>
#include <limits>

namespace {

std::vector<double> allOf(std::span<const Candle> candles, const indicators::Recipe& recipe)
{
    std::vector<double> values(candles.size(), std::numeric_limits<double>::quiet_NaN());
    IndicatorProgress progress;
    if (indicators::hasValues(recipe, static_cast<qsizetype>(candles.size())))
        indicators::extend(progress, recipe, candles, values);
    return values;
}

} // namespace

indicators::Recipe indicators::recipeFor(IndicatorKind kind, qint32 period)
{
    return {kind, std::max(period, 1)};
}

bool indicators::hasValues(const Recipe& recipe, qsizetype count)
{
    const qsizetype period = std::max(recipe.period, 1);
    return count >= period + indicatorRow(recipe.kind).barsBefore;
}

void indicators::extend(IndicatorProgress& progress, const Recipe& recipe, std::span<const Candle> candles,
    std::span<double> values)
{
    indicatorRow(recipe.kind).formula(progress, std::max(recipe.period, 1), candles, values);
}

std::vector<double> indicators::movingAverage(std::span<const Candle> candles, const MovingAverageSpec& spec)
{
    return allOf(candles, recipeFor(spec.kind, spec.period));
}

std::vector<double> indicators::rsi(std::span<const Candle> candles, int period)
{
    return allOf(candles, recipeFor(IndicatorKind::Rsi, period));
}
