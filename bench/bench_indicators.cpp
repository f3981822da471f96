#include "chart/data/Indicators.h"
#include "scenes/PlainIndicators.h"
#include "scenes/Series.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>

namespace {

using Values = std::vector<double>;
using Computation = Values (*)(const std::vector<Candle>&);

const std::vector<Candle>& million()
{
    static const std::vector<Candle> candles = newestOf(1'000'000);
    return candles;
}

Values simple(const std::vector<Candle>& candles)
{
    return indicators::movingAverage(candles, {IndicatorKind::Sma, 20, {}});
}

Values exponential(const std::vector<Candle>& candles)
{
    return indicators::movingAverage(candles, {IndicatorKind::Ema, 50, {}});
}

Values rsi(const std::vector<Candle>& candles)
{
    return indicators::rsi(candles, 14);
}

Values plainSimple(const std::vector<Candle>& candles)
{
    return plain::simple(candles, 20);
}

Values plainExponential(const std::vector<Candle>& candles)
{
    return plain::exponential(candles, 50);
}

Values plainRsi(const std::vector<Candle>& candles)
{
    return plain::rsi(candles, 14);
}

/// The largest relative difference; infinite where only one of both has a value.
double disagreement(const Values& values, const Values& others)
{
    double largest = values.size() == others.size() ? 0.0 : INFINITY;
    for (std::size_t i = 0; i < std::min(values.size(), others.size()); ++i) {
        if (std::isnan(values[i]) != std::isnan(others[i]))
            return INFINITY;
        if (!std::isnan(values[i]) && values[i] != others[i])
            largest = std::max(largest, std::abs(values[i] - others[i]) / std::abs(others[i]));
    }
    return largest;
}

void overAMillion(benchmark::State& state, Computation compute, Computation other)
{
    const std::vector<Candle>& candles = million();
    state.counters["disagreement"] = disagreement(compute(candles), other(candles));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(compute(candles));
}

BENCHMARK_CAPTURE(overAMillion, simple, simple, plainSimple)->Name("indicators/simple");
BENCHMARK_CAPTURE(overAMillion, plain_simple, plainSimple, simple)->Name("indicators/plain_simple");
BENCHMARK_CAPTURE(overAMillion, exponential, exponential, plainExponential)->Name("indicators/exponential");
BENCHMARK_CAPTURE(overAMillion, plain_exponential, plainExponential, exponential)
    ->Name("indicators/plain_exponential");
BENCHMARK_CAPTURE(overAMillion, rsi, rsi, plainRsi)->Name("indicators/rsi");
BENCHMARK_CAPTURE(overAMillion, plain_rsi, plainRsi, rsi)->Name("indicators/plain_rsi");

} // namespace
