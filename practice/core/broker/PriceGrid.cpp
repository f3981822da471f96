#include "practice/core/broker/PriceGrid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace practice {
namespace {

constexpr int maxDigits = 8;

std::size_t usableDigits(int digits)
{
    return static_cast<std::size_t>(std::clamp(digits, 0, maxDigits));
}

} // namespace

double pointsPerUnit(int digits)
{
    constexpr std::array<double, maxDigits + 1> powers{1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
    return powers[usableDigits(digits)];
}

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
    const std::size_t decimals = usableDigits(digits);
    std::string text = std::to_string(points < 0 ? -points : points);
    if (text.size() <= decimals)
        text.insert(0, decimals + 1 - text.size(), '0');
    if (decimals > 0)
        text.insert(text.size() - decimals, 1, '.');
    return points < 0 ? "-" + text : text;
}

} // namespace practice
