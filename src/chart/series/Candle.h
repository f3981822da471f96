#pragma once

#include <QtGlobal>

/// What a market did in one step of a timeframe.
struct Candle {
    qint64 time = 0;    ///< the first moment, ms since the Unix epoch, UTC
    double open = 0.0;  ///< first price
    double high = 0.0;  ///< highest price
    double low = 0.0;   ///< lowest price
    double close = 0.0; ///< last price
    qint32 volume = 0;  ///< number of ticks folded in

    bool operator==(const Candle&) const = default;
};
