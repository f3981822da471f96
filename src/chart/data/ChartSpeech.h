#pragma once

#include "chart/data/ChartLook.h"
#include "chart/data/CrosshairPlace.h"
#include "chart/data/Drawing.h"
#include "chart/data/TradeLevel.h"
#include "chart/series/Candle.h"

#include <QString>

#include <optional>
#include <span>

/// What a chart says to those who hear it instead of seeing it. Times are UTC, as on the chart's axis, but
/// with their whole date.
namespace speech {

/// What of a chart is read aloud. The values are those of IndicatorCache: one for each bar, NaN where there
/// is none; empty when no bar has one.
struct Reading {
    const ChartLook& look;
    std::span<const Candle> candles;
    std::span<const std::span<const double>> averageValues;
    std::span<const std::span<const double>> paneValues; ///< of the panes on show
    double bid = 0.0;                                    ///< 0 means none
    double ask = 0.0;                                    ///< 0 means none
    std::optional<CrosshairPlace> crosshair;             ///< nothing while it is hidden
    QString held = {};       ///< the name of the level in the hand, if there is one
    bool quoteStale = false; ///< bid and ask may not hold any more
};

/// The level in the hand; the price at the crosshair, the candle under it and the indicators there; the
/// newest candle, with the indicators when the crosshair is on no candle; bid and ask.
[[nodiscard]] QString chartReading(const Reading& reading);

/// Kind, trade and price: "Stop loss of buy 0.10 #1a2b3c4d at 1.07500". `price` is where the level lies now,
/// which is beside its own while it is dragged.
[[nodiscard]] QString levelName(const TradeLevel& level, double price, int digits);

/// Kind and place: "Trend line from 1.08000 at 2026.06.02 00:00 to 1.09000 at 2026.06.02 01:00". Empty for
/// a drawing of an unknown kind or with too few points, which is not on the chart either.
[[nodiscard]] QString drawingName(const Drawing& drawing, int digits);

} // namespace speech
