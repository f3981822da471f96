#pragma once

#include "chart/series/Candle.h"

#include <QString>

/// A bar's time in UTC. Timeframes below a day: "HH:mm", with date "dd MMM HH:mm"; longer ones: "dd MMM yyyy"
/// always. Month names are English. Empty for times that no calendar holds.
[[nodiscard]] QString barTimeText(qint64 timeMs, qint64 timeframeMs, bool withDate);

/// The line at the top of a chart while the pointer is elsewhere. Server texts in it are one line.
[[nodiscard]] QString headerText(const QString& symbol, const QString& timeframeLabel,
    const QString& description, const Candle& last, int digits);

/// Prices of the candle under the crosshair, as drawn in the plot.
[[nodiscard]] QString crosshairText(const Candle& candle, int digits);

/// Prices and volume of the candle under the pointer, as sent to the status bar.
[[nodiscard]] QString hoverText(const Candle& candle, int digits);
