#pragma once

#include <algorithm>
#include <array>
#include <cmath>

/// The one rule for what counts as a price of the market, whether the feed or a history brings it. Prices
/// below 0 exist.

/// Decimals of a symbol that does not tell its own, or of which nothing is known.
constexpr int usualPriceDigits = 5;
/// The most decimals that a price holds.
constexpr int mostPriceDigits = 15;

/// Half a point of a symbol with so many decimals (0 to 15; others count as the nearest of these): anything
/// smaller would be shown as 0.
[[nodiscard]] inline double halfPoint(int digits)
{
    constexpr std::array<double, mostPriceDigits + 1> halves{0.5, 0.05, 0.005, 5e-4, 5e-5, 5e-6, 5e-7, 5e-8,
        5e-9, 5e-10, 5e-11, 5e-12, 5e-13, 5e-14, 5e-15, 5e-16};
    return halves[static_cast<std::size_t>(std::clamp(digits, 0, mostPriceDigits))];
}

/// Whether a number can be the price of a symbol with so many decimals: it is at least half a point away
/// from 0, and less than 1e12. Not-a-number and infinity are none.
[[nodiscard]] inline bool isPrice(double number, int digits)
{
    const double size = std::abs(number);
    return size >= halfPoint(digits) && size < 1e12;
}

/// Whether a number is a price whatever its symbol's decimals. Most prices are, which spares a look-up of the
/// decimals.
[[nodiscard]] inline bool isPriceAnyway(double number)
{
    return isPrice(number, 0);
}

/// The number itself, or 0, which stands for no price.
[[nodiscard]] inline double priceOrNone(double number, int digits)
{
    return isPrice(number, digits) ? number : 0.0;
}
