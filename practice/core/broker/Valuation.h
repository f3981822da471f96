#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/Records.h"

namespace practice {

/// What a move from `entry` to `exit` earns in USD, before swap and commission. `usdRate` is USD for one unit
/// of the symbol's profit currency. Like the functions below it is exact but for one rounding.
[[nodiscard]] Cents grossProfit(
    const SymbolSpec& spec, Side side, LotHundredths lots, double entry, double exit, const Rate& usdRate);

/// What one night costs (negative) or brings.
[[nodiscard]] Cents swapPerNight(const SymbolSpec& spec, Side side, LotHundredths lots, const Rate& usdRate);

/// Charged once when a position opens; >= 0.
[[nodiscard]] Cents commissionFor(const SymbolSpec& spec, LotHundredths lots);

/// Held while the position is open: its size in USD divided by the lower of the symbol's and the account's
/// leverage. A position in units of USD (USDJPY) has that size whatever the price.
[[nodiscard]] Cents marginFor(
    const SymbolSpec& spec, LotHundredths lots, double price, const Rate& usdRate, int accountLeverage);

} // namespace practice
