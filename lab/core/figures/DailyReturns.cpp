#include "lab/core/figures/DailyReturns.h"

#include <algorithm>
#include <cmath>

namespace lab {

DailyReturns dailyReturns(const RunResult& result)
{
    DailyReturns returns;
    returns.values.reserve(result.days.size());
    practice::Cents before = result.startBalance;
    returns.ruined = before <= 0;
    for (const DayRow& day : result.days) {
        if (returns.ruined)
            break;
        returns.values.push_back(static_cast<double>(day.equity - before) / static_cast<double>(before));
        before = day.equity;
        returns.ruined = before <= 0;
    }
    return returns;
}

Moments momentsOf(std::span<const double> values)
{
    Moments moments;
    moments.count = values.size();
    if (values.empty())
        return moments;
    const auto count = static_cast<double>(values.size());
    double sum = 0;
    for (const double value : values)
        sum += value;
    moments.mean = sum / count;
    // Rounding would leave equal numbers a trace of a deviation.
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    if (*least == *most)
        return moments;
    double squares = 0;
    double cubes = 0;
    double fourths = 0;
    for (const double value : values) {
        const double off = value - moments.mean;
        const double square = off * off;
        squares += square;
        cubes += square * off;
        fourths += square * square;
    }
    moments.deviation = std::sqrt(squares / (count - 1));
    const double variance = squares / count;
    moments.skew = finite(cubes / count / (variance * std::sqrt(variance)));
    moments.kurtosis = finite(fourths / count / (variance * variance) - 3);
    return moments;
}

Figure finite(double value)
{
    if (!std::isfinite(value))
        return {};
    return value + 0.0;
}

} // namespace lab
