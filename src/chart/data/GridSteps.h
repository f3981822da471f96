#pragma once

#include "chart/data/ChartView.h"

#include <QVarLengthArray>

/// The round step (1, 2 or 5 times a power of ten) at or above `raw`; 1 when `raw` is not positive.
[[nodiscard]] double niceStep(double raw);

/// The prices at which horizontal grid lines lie, lowest first; about one every 46 pixels.
[[nodiscard]] QVarLengthArray<double, 32> priceGridLines(const PriceRange& prices, int plotHeight);

/// Bars from one vertical grid line to the next; about 90 pixels, at least 1 bar.
[[nodiscard]] qsizetype timeGridStep(double barWidth);
