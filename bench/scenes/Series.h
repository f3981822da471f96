#pragma once

#include "chart/Candle.h"

#include <vector>

/// A random walk of quarter-hour bars that ends now; the same for the same length.
[[nodiscard]] std::vector<Candle> walk(std::size_t count);
