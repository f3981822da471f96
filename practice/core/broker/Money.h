#pragma once

#include <cstdint>
#include <string>

namespace practice {

/// An amount of account currency (USD) in whole cents. Sums of cents never drift.
using Cents = std::int64_t;

/// A volume in hundredths of a lot: 10 means 0.10 lots.
using LotHundredths = std::int64_t;

/// The one rounding rule for money: to the nearest cent, halves away from zero. It is applied once to each
/// gross profit, commission, night of swap and margin; everything else is whole-cent arithmetic.
/// NaN gives 0; amounts beyond 1e15 cents are limited to that.
[[nodiscard]] Cents roundToCents(double cents);

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
