#pragma once

#include "practice/core/broker/Records.h"

namespace practice {

/// The limits that close positions and fail or pass accounts without anybody's request. All comparisons are
/// exact, in whole cents; a limit that is reached counts as broken.
namespace riskLimits {
inline constexpr Cents dailyLossPercent = 5;  ///< of the equity at the start of the UTC day
inline constexpr Cents totalLossPercent = 10; ///< of the phase's initial balance
inline constexpr Cents targetPercent = 10;    ///< of the phase's initial balance
inline constexpr Cents stopOutPercent = 50;   ///< margin level: equity / margin
} // namespace riskLimits

/// A plan account fails when either is reached; both are false for wallets and demo accounts.
[[nodiscard]] bool dailyLossReached(const Account& account, Cents equity);
[[nodiscard]] bool totalLossReached(const Account& account, Cents equity);

/// The balance of an active challenge (not a funded account) has gained enough for its phase. Only closed
/// results count, so ask this when no position is open.
[[nodiscard]] bool targetReached(const Account& account);

/// False without held margin.
[[nodiscard]] bool stopOutReached(Cents equity, Cents margin);

} // namespace practice
