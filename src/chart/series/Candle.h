#pragma once

#include <QtGlobal>

/// One bar of a price series.
struct Candle {
    qint64 time = 0;    ///< bar open time, ms since the Unix epoch, UTC
    double open = 0.0;  ///< first price of the bar
    double high = 0.0;  ///< highest price
    double low = 0.0;   ///< lowest price
    double close = 0.0; ///< last price
    qint32 volume = 0;  ///< number of ticks folded into the bar

    bool operator==(const Candle&) const = default;
};
