#pragma once

#include "chart/series/Candle.h"
#include "chart/series/Timeframe.h"

#include <vector>

/// What folding a tick changed.
enum class TickEffect {
    Nothing,    ///< late or unusable tick, or one that lacks a price
    LastCandle, ///< the newest candle took the tick in
    Appended,   ///< a new candle was begun
};

/// One symbol's candles of one timeframe, oldest first, with strictly ascending times.
class CandleSeries final {
public:
    /// Replaces all candles. Those with a price that is no number or beyond 1e15 are left out, negative
    /// volumes count as 0, candles out of order are sorted by time, and of several with equal time the last
    /// stays.
    void setCandles(std::vector<Candle> candles);

    /// Length in ms of the candles that ticks build; anything below 1 becomes `defaultTimeframeMs`.
    void setTimeframeMs(qint64 ms);
    [[nodiscard]] qint64 timeframeMs() const { return m_timeframeMs; }

    /// Takes a tick at `timeMs` (ms since the epoch) into the candle of its time, at the middle of bid
    /// and ask. A tick for an older candle, or with a price that is 0 (there is none), no number or beyond
    /// 1e15, changes nothing.
    TickEffect foldTick(double bid, double ask, qint64 timeMs);

    [[nodiscard]] const std::vector<Candle>& candles() const { return m_candles; }
    [[nodiscard]] qsizetype count() const { return static_cast<qsizetype>(m_candles.size()); }
    [[nodiscard]] bool isEmpty() const { return m_candles.empty(); }

private:
    std::vector<Candle> m_candles;
    qint64 m_timeframeMs = defaultTimeframeMs;
};

/// Whether a price can be drawn: a number within 1e15 of zero.
[[nodiscard]] bool isUsablePrice(double price);
