#pragma once

#include "practice/core/broker/TradeSteps.h"

namespace practice {

/// Charges swap for every UTC midnight passed since the account was last looked at, to each position held
/// over it, and takes the equity after that as the new day's start. A position whose symbol has no price
/// is not charged. An account without a position also enters a day that lies behind: its day would otherwise
/// never end where a clock was wrong by years.
void rollDay(TradeSteps& steps, LiveAccount& account);

/// Fails a plan account that has lost too much and closes everything it has. What could not be closed for
/// want of a price is closed by a later call.
void enforceLossLimits(TradeSteps& steps, LiveAccount& account);

/// Closes the largest losers one by one until the margin level is above the limit.
void enforceStopOut(TradeSteps& steps, LiveAccount& account);

/// Moves a challenge that reached its target to the next phase, which starts afresh from the initial
/// balance, or, after the last one, to Passed. Its pending orders are cancelled.
void advancePhase(TradeSteps& steps, LiveAccount& account);

/// Sets an account to zero that has no position left and is below it: what a gap took beyond the balance is
/// nobody's debt.
void clearDebt(TradeSteps& steps, LiveAccount& account, const IdSource& newId);

/// Begins an account anew: cancels what is live, at no cost, and brings back the initial balance, a status
/// that may trade and, unless it is funded, the first phase.
void startAnew(TradeSteps& steps, LiveAccount& account, const IdSource& newId);

} // namespace practice
