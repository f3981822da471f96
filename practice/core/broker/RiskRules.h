#pragma once

#include "practice/core/broker/Records.h"

namespace practice {

/// The limits that end things on their own. All comparisons are exact, in whole cents; a limit that is
/// reached counts as broken.
namespace riskLimits {
inline constexpr Cents dailyLossPercent = 5;  ///< of the equity at the start of the UTC day
inline constexpr Cents totalLossPercent = 10; ///< of the phase's initial balance
inline constexpr Cents targetPercent = 10;    ///< of the phase's initial balance
inline constexpr Cents stopOutPercent = 50;   ///< margin level: equity / margin
} // namespace riskLimits

/// Plan accounts fail by these two; wallets and demo accounts never do.
[[nodiscard]] bool dailyLossReached(const Account& account, Cents equity);
[[nodiscard]] bool totalLossReached(const Account& account, Cents equity);

/// The balance of an active challenge (not a funded account) has gained enough for its phase. It is the
/// closed result that counts, so open positions must be gone before this is asked.
[[nodiscard]] bool targetReached(const Account& account);

/// Never without held margin.
[[nodiscard]] bool stopOutReached(Cents equity, Cents margin);

} // namespace practice
