#include "chart/data/Indicators.h"

#include <algorithm>
#include <limits>

namespace {

using indicators::Progress;

constexpr double none = std::numeric_limits<double>::quiet_NaN();

void extendSimple(
    Progress& progress, qsizetype period, std::span<const Candle> candles, std::span<double> values)
{
    const auto length = static_cast<double>(period);
    const auto count = static_cast<qsizetype>(candles.size());
    const Candle* bar = candles.data();
    double* value = values.data();
    double sum = progress.first;
    qsizetype i = progress.bars;
    for (; i < std::min(period, count); ++i) {
        sum += bar[i].close;
        value[i] = i == period - 1 ? sum / length : none;
    }
    for (; i < count; ++i) {
        sum += bar[i].close;
        sum -= bar[i - period].close;
        value[i] = sum / length;
    }
    progress = {i, sum, 0.0};
}

void extendExponential(
    Progress& progress, qsizetype period, std::span<const Candle> candles, std::span<double> values)
{
    const auto length = static_cast<double>(period);
    const auto count = static_cast<qsizetype>(candles.size());
    const Candle* bar = candles.data();
    double* value = values.data();
    const double share = 2.0 / (length + 1.0);
    const double rest = 1.0 - share;
    double average = progress.first; // a sum until there are enough closes for a mean
    qsizetype i = progress.bars;
    for (; i < std::min(period, count); ++i) {
        average += bar[i].close;
        if (i == period - 1)
            average /= length;
        value[i] = i == period - 1 ? average : none;
    }
    for (; i < count; ++i) {
        average = share * bar[i].close + rest * average;
        value[i] = average;
    }
    progress = {i, average, 0.0};
}

double strength(double averageGain, double averageLoss)
{
    return averageLoss == 0.0 ? 100.0 : 100.0 - 100.0 / (averageGain / averageLoss + 1.0);
}

void extendStrength(
    Progress& progress, qsizetype period, std::span<const Candle> candles, std::span<double> values)
{
    const auto length = static_cast<double>(period);
    const auto count = static_cast<qsizetype>(candles.size());
    const Candle* bar = candles.data();
    double* value = values.data();
    double gains = progress.first;
    double losses = progress.second;
    qsizetype i = progress.bars;
    if (i == 0 && count > 0)
        value[i++] = none; // nothing to compare with
    for (; i < std::min(period + 1, count); ++i) {
        const double change = bar[i].close - bar[i - 1].close;
        if (change >= 0.0)
            gains += change;
        else
            losses -= change;
        value[i] = none;
        if (i == period) {
            gains /= length;
            losses /= length;
            value[i] = strength(gains, losses);
        }
    }
    for (; i < count; ++i) {
        const double change = bar[i].close - bar[i - 1].close;
        gains = (gains * (length - 1.0) + std::max(change, 0.0)) / length;
        losses = (losses * (length - 1.0) + std::max(-change, 0.0)) / length;
        value[i] = strength(gains, losses);
    }
    progress = {i, gains, losses};
}

std::vector<double> allOf(std::span<const Candle> candles, const indicators::Recipe& recipe)
{
    std::vector<double> values(candles.size(), none);
    Progress progress;
    if (indicators::hasValues(recipe, static_cast<qsizetype>(candles.size())))
        indicators::extend(progress, recipe, candles, values);
    return values;
}

} // namespace

indicators::Recipe indicators::recipeFor(const MovingAverageSpec& spec)
{
    return {
        spec.kind == AverageKind::Exponential ? Kind::Exponential : Kind::Simple, std::max(spec.period, 1)};
}

bool indicators::hasValues(const Recipe& recipe, qsizetype count)
{
    const qsizetype needed = std::max(recipe.period, 1);
    return recipe.kind == Kind::RelativeStrength ? count > needed : count >= needed;
}

void indicators::extend(
    Progress& progress, const Recipe& recipe, std::span<const Candle> candles, std::span<double> values)
{
    const qsizetype period = std::max(recipe.period, 1);
    switch (recipe.kind) {
    case Kind::Simple:
        return extendSimple(progress, period, candles, values);
    case Kind::Exponential:
        return extendExponential(progress, period, candles, values);
    case Kind::RelativeStrength:
        return extendStrength(progress, period, candles, values);
    }
}

std::vector<double> indicators::movingAverage(std::span<const Candle> candles, const MovingAverageSpec& spec)
{
    return allOf(candles, recipeFor(spec));
}

std::vector<double> indicators::relativeStrength(std::span<const Candle> candles, int period)
{
    return allOf(candles, {Kind::RelativeStrength, period});
}
