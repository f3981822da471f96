#include "practice/core/broker/Money.h"

#include <algorithm>
#include <cmath>

namespace practice {
namespace {

std::string wholePart(std::uint64_t dollars, bool grouped)
{
    std::string digits = std::to_string(dollars);
    if (grouped) {
        for (std::size_t end = digits.size(); end > 3; end -= 3)
            digits.insert(end - 3, 1, ',');
    }
    return digits;
}

std::string text(Cents amount, bool grouped)
{
    const auto size = amount < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(amount)
                                 : static_cast<std::uint64_t>(amount);
    std::string written = amount < 0 ? "-" : std::string();
    written += wholePart(size / 100, grouped);
    written += '.';
    written += static_cast<char>('0' + size % 100 / 10);
    written += static_cast<char>('0' + size % 10);
    return written;
}

} // namespace

Cents roundToCents(double cents)
{
    constexpr double limit = 1e15;
    if (std::isnan(cents))
        return 0;
    return std::llround(std::clamp(cents, -limit, limit));
}

std::string decimalText(Cents amount)
{
    return text(amount, false);
}

std::string moneyText(Cents amount)
{
    return text(amount, true);
}

} // namespace practice
