#pragma once

#include <QtGlobal>

/// Where a crosshair stands on a chart, whatever has put it there.
struct CrosshairPlace {
    qsizetype bar = 0; ///< index of the bar; may lie outside the series, beside the candles
    double price = 0.0;

    bool operator==(const CrosshairPlace&) const = default;
};
