#pragma once

#include "practice/Check.h"

#include "practice/core/PointScale.h"
#include "practice/core/market/GridBar.h"
#include "practice/core/market/HashRandom.h"
#include "practice/core/market/PriceSource.h"

#include <cmath>
#include <vector>

namespace practice::checks {

inline constexpr TimeMs someNow = 1'795'251'600'123; // 2026-11-21 09:00:00.123

/// Moments spread over a year around `someNow`; among them the first and last ones of bars.
inline std::vector<TimeMs> someMoments(std::uint64_t key, int count)
{
    HashRandom random(key);
    std::vector<TimeMs> moments{barStart(someNow, Timeframe::D1), barStart(someNow, Timeframe::D1) - 1,
        barStart(someNow, Timeframe::H1), barStart(someNow, Timeframe::W1),
        barStart(someNow, Timeframe::MN) - 1, barStart(someNow, Timeframe::M1) + minuteMs - 1};
    for (int i = 0; i < count; ++i)
        moments.push_back(someNow + static_cast<TimeMs>((random.uniform() - 0.5) * 365 * dayMs));
    return moments;
}

inline Bar folded(const std::vector<Bar>& bars, TimeMs from, TimeMs end)
{
    Bar result;
    bool first = true;
    for (const Bar& bar : bars) {
        if (bar.time < from || bar.time >= end)
            continue;
        if (first)
            result = bar;
        first = false;
        result.high = std::max(result.high, bar.high);
        result.low = std::min(result.low, bar.low);
        result.close = bar.close;
        result.volume += bar.time == result.time ? 0 : bar.volume;
    }
    return result;
}

/// The last finished bar and the forming one are both the fold of their shorter bars.
inline bool foldsFrom(PriceSource& source, std::size_t symbol, Timeframe coarse, Timeframe fine, TimeMs now)
{
    const TimeMs length = timeframeLength(coarse);
    const auto perBar = static_cast<std::size_t>(length / timeframeLength(fine) + 1);
    const std::vector<Bar> longer = source.bars(symbol, coarse, 2, now);
    const std::vector<Bar> shorter = source.bars(symbol, fine, 2 * perBar, now);
    bool good = longer.size() == 2 && !shorter.empty();
    for (const Bar& bar : longer)
        good = good && folded(shorter, bar.time, bar.time + length) == bar;
    return good;
}

/// Times, shape and grid of a run of bars. `joined` asks that each bar opens where the last one closed.
inline bool wellFormed(const std::vector<Bar>& bars, Timeframe timeframe, int digits, bool joined)
{
    const double unit = pointsPerUnit(digits);
    const auto onGrid = [unit](double price) { return std::round(price * unit) / unit == price; };
    bool good = true;
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const Bar& bar = bars[i];
        good = good && barStart(bar.time, timeframe) == bar.time;
        good = good && bar.low > 0 && bar.low <= std::min(bar.open, bar.close)
            && bar.high >= std::max(bar.open, bar.close);
        good = good && onGrid(bar.open) && onGrid(bar.high) && onGrid(bar.low) && onGrid(bar.close);
        good = good && bar.volume >= 1;
        if (i > 0) {
            good = good && bar.time - bars[i - 1].time == timeframeLength(timeframe);
            good = good && (!joined || bar.open == bars[i - 1].close);
        }
    }
    return good;
}

/// (bid + ask) / 2 in points; fails the running case when it or either side is off the grid.
inline std::int64_t midPoints(const Quote& quote, int digits)
{
    const double unit = pointsPerUnit(digits);
    const std::int64_t bid = std::llround(quote.bid * unit);
    const std::int64_t ask = std::llround(quote.ask * unit);
    REQUIRE(static_cast<double>(bid) / unit == quote.bid && static_cast<double>(ask) / unit == quote.ask);
    REQUIRE(bid > 0 && bid < ask && (ask - bid) % 2 == 0);
    return (bid + ask) / 2;
}

/// Every timeframe's last bar holds `now` and closes at the quoted mid.
inline void checkMeetsLivePrice(PriceSource& source, std::size_t symbol, TimeMs now)
{
    const int digits = source.symbols()[symbol].digits;
    const double mid
        = static_cast<double>(midPoints(source.quote(symbol, now), digits)) / pointsPerUnit(digits);
    for (const Timeframe timeframe : allTimeframes) {
        const std::vector<Bar> bars = source.bars(symbol, timeframe, 2, now);
        REQUIRE(bars.size() == 2);
        CHECK_EQ(bars.back().time, barStart(now, timeframe));
        CHECK_EQ(bars.back().close, mid);
    }
    CHECK_EQ(source.dailyOpen(symbol, now), source.bars(symbol, Timeframe::D1, 1, now).back().open);
}

inline std::vector<double> logReturns(const std::vector<Bar>& bars)
{
    std::vector<double> result;
    result.reserve(bars.size());
    for (const Bar& bar : bars)
        result.push_back(std::log(bar.close / bar.open));
    return result;
}

inline double deviation(const std::vector<double>& values)
{
    double sum = 0;
    for (const double value : values)
        sum += value * value;
    return std::sqrt(sum / static_cast<double>(values.size()));
}

/// How much a large move makes another large move likely right after it; about 0 without clustering.
inline double absoluteAutocorrelation(const std::vector<double>& values)
{
    double mean = 0;
    for (const double value : values)
        mean += std::abs(value) / static_cast<double>(values.size());
    double variance = 0;
    double covariance = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        variance += (std::abs(values[i]) - mean) * (std::abs(values[i]) - mean);
        if (i > 0)
            covariance += (std::abs(values[i]) - mean) * (std::abs(values[i - 1]) - mean);
    }
    return covariance / variance;
}

} // namespace practice::checks
