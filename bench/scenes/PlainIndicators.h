#pragma once

#include "chart/series/Candle.h"

#include <vector>

/// What a bare program writes for indicators: one running loop each, over the whole series, with no other
/// use in mind. NaN where a bar has no value.
namespace plain {

[[nodiscard]] std::vector<double> simple(const std::vector<Candle>& candles, std::size_t period);
[[nodiscard]] std::vector<double> exponential(const std::vector<Candle>& candles, std::size_t period);
[[nodiscard]] std::vector<double> rsi(const std::vector<Candle>& candles, std::size_t period);

} // namespace plain
