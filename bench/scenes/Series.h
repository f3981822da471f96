#pragma once

#include "chart/series/Candle.h"

#include <vector>

/// A random walk of quarter-hour bars that ends now; the same for the same length.
[[nodiscard]] std::vector<Candle> walk(std::size_t count);

/// The newest `count` bars of one walk of a million: charts of any length show the same bars at their end.
[[nodiscard]] std::vector<Candle> newestOf(std::size_t count);
