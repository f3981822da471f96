#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

namespace practice {

/// An amount of account currency (USD) in whole cents. Sums of cents never drift.
using Cents = std::int64_t;

/// A volume in hundredths of a lot: 10 means 0.10 lots.
using LotHundredths = std::int64_t;

/// How many units of one currency another one is worth. A quotient of whole numbers: a floating-point number
/// would miss half a cent by a hair, and the amount would be rounded to another cent. Both are at least 1.
struct Rate {
    std::int64_t over = 1;
    std::int64_t under = 1;
    friend bool operator==(const Rate&, const Rate&) = default;
};

/// The one rounding rule for money: to the nearest cent, halves away from zero. It is applied once to each
/// gross profit, commission, night of swap and margin; everything else is whole-cent arithmetic.
/// NaN gives 0; amounts beyond 1e15 cents are limited to that.
[[nodiscard]] Cents roundToCents(double cents);

/// The product of the factors divided by that of the divisors, which are above 0, rounded by that rule.
/// Exact, unless a product has more than 38 digits.
[[nodiscard]] Cents roundQuotient(
    std::initializer_list<std::int64_t> factors, std::initializer_list<std::int64_t> divisors);

/// "-1234.50": exact, a point, no groups; for the wire and for storage.
[[nodiscard]] std::string decimalText(Cents amount);

/// "-1,234.50": for sentences that people read.
[[nodiscard]] std::string moneyText(Cents amount);

/// The amount in USD as a floating-point number.
[[nodiscard]] constexpr double toUsd(Cents amount)
{
    return static_cast<double>(amount) / 100.0;
}

/// The volume in lots.
[[nodiscard]] constexpr double toLots(LotHundredths lots)
{
    return static_cast<double>(lots) / 100.0;
}

} // namespace practice
