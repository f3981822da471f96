#include "practice/core/broker/PriceGrid.h"

#include "practice/core/PointScale.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace practice {

std::int64_t toPoints(double price, int digits)
{
    return std::llround(price * pointsPerUnit(digits));
}

double onGrid(double price, int digits)
{
    return static_cast<double>(toPoints(price, digits)) / pointsPerUnit(digits);
}

std::string priceText(double price, int digits)
{
    const std::int64_t points = toPoints(price, digits);
    const auto decimals = static_cast<std::size_t>(std::clamp(digits, 0, maxPriceDigits));
    std::string text = std::to_string(points < 0 ? -points : points);
    if (text.size() <= decimals)
        text.insert(0, decimals + 1 - text.size(), '0');
    if (decimals > 0)
        text.insert(text.size() - decimals, 1, '.');
    return points < 0 ? "-" + text : text;
}

} // namespace practice
