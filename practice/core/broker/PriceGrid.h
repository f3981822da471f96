#pragma once

#include <cstdint>
#include <string>

namespace practice {

/// Prices and levels at or above this are refused as absurd.
inline constexpr double priceLimit = 1e9;

/// The price as a whole number of points (10^-digits, digits limited to 0..8), halves away from zero.
/// For |price| < priceLimit.
[[nodiscard]] std::int64_t toPoints(double price, int digits);

/// The nearest price on the grid, always the same floating-point number for the same grid line, so that
/// prices can be compared directly.
[[nodiscard]] double onGrid(double price, int digits);

/// Fixed notation with `digits` decimals, whatever the locale: "1.08500".
[[nodiscard]] std::string priceText(double price, int digits);

} // namespace practice
