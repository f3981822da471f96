#include "chart/series/CandleSeries.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double largestPrice = 1e15;

bool isUsable(const Candle& candle)
{
    return isUsablePrice(candle.open) && isUsablePrice(candle.high) && isUsablePrice(candle.low)
        && isUsablePrice(candle.close);
}

bool isEarlier(const Candle& a, const Candle& b)
{
    return a.time < b.time;
}

/// 0 stands for a price that is missing or cannot be read; prices below 0 exist.
bool isPriceOfTick(double price)
{
    return price != 0.0 && isUsablePrice(price);
}

/// Of neighbours with equal time only the last one stays.
void keepLastOfEqualTimes(std::vector<Candle>& candles)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < candles.size(); ++i) {
        if (kept > 0 && candles[kept - 1].time == candles[i].time)
            --kept;
        candles[kept++] = candles[i];
    }
    candles.resize(kept);
}

} // namespace

bool isUsablePrice(double price)
{
    return std::abs(price) <= largestPrice; // false for NaN
}

void CandleSeries::setCandles(std::vector<Candle> candles)
{
    bool ordered = true;
    std::size_t kept = 0;
    for (const Candle& candle : candles) {
        if (!isUsable(candle))
            continue;
        Candle& place = candles[kept];
        place = candle;
        place.volume = std::max(place.volume, 0);
        ordered = ordered && (kept == 0 || candles[kept - 1].time < place.time);
        ++kept;
    }
    candles.resize(kept);
    if (!ordered) {
        std::stable_sort(candles.begin(), candles.end(), isEarlier);
        keepLastOfEqualTimes(candles);
    }
    m_candles = std::move(candles);
}

void CandleSeries::setTimeframeMs(qint64 ms)
{
    m_timeframeMs = ms < 1 ? defaultTimeframeMs : ms;
}

TickEffect CandleSeries::foldTick(double bid, double ask, qint64 timeMs)
{
    if (!isPriceOfTick(bid) || !isPriceOfTick(ask))
        return TickEffect::Nothing;
    // The remainder has the sign of the time, so before the epoch a bucket is named by its end.
    const qint64 bucket = timeMs - timeMs % m_timeframeMs;
    const double mid = (bid + ask) * 0.5;
    if (!m_candles.empty()) {
        Candle& last = m_candles.back();
        if (last.time == bucket) {
            last.high = std::max(last.high, mid);
            last.low = std::min(last.low, mid);
            if (last.volume < std::numeric_limits<qint32>::max())
                ++last.volume;
            last.close = mid;
            return TickEffect::LastCandle;
        }
        if (bucket < last.time)
            return TickEffect::Nothing;
    }
    m_candles.push_back({bucket, mid, mid, mid, mid, 1});
    return TickEffect::Appended;
}
