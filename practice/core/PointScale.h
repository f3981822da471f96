#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace practice {

/// The most decimals a price can have.
inline constexpr int maxPriceDigits = 8;

/// Points in one unit of price: 10^digits; digits are limited to 0..8. Divide whole points by it to get the
/// double nearest to the decimal price; to multiply by 10^-digits would miss it.
[[nodiscard]] inline double pointsPerUnit(int digits)
{
    constexpr std::array<double, maxPriceDigits + 1> powers{1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
    return powers[static_cast<std::size_t>(std::clamp(digits, 0, maxPriceDigits))];
}

} // namespace practice
