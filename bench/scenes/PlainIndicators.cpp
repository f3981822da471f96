#include "scenes/PlainIndicators.h"

#include <algorithm>
#include <limits>

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

}

std::vector<double> plain::simple(const std::vector<Candle>& candles, std::size_t period)
{
    std::vector<double> values(candles.size(), none);
    double sum = 0.0;
    for (std::size_t i = 0; i < candles.size(); ++i) {
        sum += candles[i].close;
        if (i >= period)
            sum -= candles[i - period].close;
        if (i >= period - 1)
            values[i] = sum / static_cast<double>(period);
    }
    return values;
}

std::vector<double> plain::exponential(const std::vector<Candle>& candles, std::size_t period)
{
    std::vector<double> values(candles.size(), none);
    if (candles.size() < period)
        return values;
    const double k = 2.0 / (static_cast<double>(period) + 1.0);
    double average = 0.0;
    for (std::size_t i = 0; i < period; ++i)
        average += candles[i].close;
    average /= static_cast<double>(period);
    values[period - 1] = average;
    for (std::size_t i = period; i < candles.size(); ++i) {
        average = k * candles[i].close + (1.0 - k) * average;
        values[i] = average;
    }
    return values;
}

std::vector<double> plain::rsi(const std::vector<Candle>& candles, std::size_t period)
{
    std::vector<double> values(candles.size(), none);
    if (candles.size() <= period)
        return values;
    const auto length = static_cast<double>(period);
    double gain = 0.0;
    double loss = 0.0;
    for (std::size_t i = 1; i < candles.size(); ++i) {
        const double change = candles[i].close - candles[i - 1].close;
        const double up = std::max(change, 0.0);
        const double down = std::max(-change, 0.0);
        if (i <= period) {
            gain += up / length;
            loss += down / length;
        } else {
            gain = (gain * (length - 1.0) + up) / length;
            loss = (loss * (length - 1.0) + down) / length;
        }
        if (i >= period)
            values[i] = loss == 0.0 ? 100.0 : 100.0 - 100.0 / (gain / loss + 1.0);
    }
    return values;
}
