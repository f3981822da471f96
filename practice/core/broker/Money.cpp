#include "practice/core/broker/Money.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace practice {
namespace {

__extension__ using Wide = __int128;
using Factors = std::initializer_list<std::int64_t>;

constexpr double mostCents = 1e15;

std::optional<Wide> product(Factors factors)
{
    Wide result = 1;
    for (const std::int64_t factor : factors) {
        if (__builtin_mul_overflow(result, factor, &result))
            return std::nullopt;
    }
    return result;
}

double roughProduct(Factors factors)
{
    double result = 1;
    for (const std::int64_t factor : factors)
        result *= static_cast<double>(factor);
    return result;
}

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
    if (std::isnan(cents))
        return 0;
    return std::llround(std::clamp(cents, -mostCents, mostCents));
}

Cents roundQuotient(Factors factors, Factors divisors)
{
    const double rough = roughProduct(factors) / roughProduct(divisors);
    const std::optional<Wide> over = product(factors);
    const std::optional<Wide> under = product(divisors);
    if (!over || !under || std::abs(rough) >= mostCents)
        return roundToCents(rough);
    const Wide size = *over < 0 ? -*over : *over;
    const Wide rest = size % *under;
    const auto cents = static_cast<Cents>(size / *under) + (rest >= *under - rest ? 1 : 0);
    return *over < 0 ? -cents : cents;
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
