#pragma once

#include "practice/core/broker/TradeSteps.h"

namespace practice {

/// For every UTC midnight that has passed since the account was last looked at, charges swap to each position
/// held over it, and takes the equity after that as the new day's start. A position whose symbol has no price
/// is not charged. An account without a position may also go back to an earlier day: after a clock that was
/// wrong by years its day would otherwise never end.
void rollDay(TradeSteps& steps, LiveAccount& account);

/// Fails a plan account that has lost too much and closes everything it has. What could not be closed for
/// want of a price is closed by a later call.
void enforceLossLimits(TradeSteps& steps, LiveAccount& account);

/// Closes the largest losers one by one until the margin level is above the limit.
void enforceStopOut(TradeSteps& steps, LiveAccount& account);

/// Moves a challenge that has reached its target to its next phase, which starts again from the initial
/// balance, or after the last phase to Passed. Its pending orders are cancelled.
void advancePhase(TradeSteps& steps, LiveAccount& account);

/// Sets an account that has no position left and is below zero to zero: nobody owes what a gap took beyond
/// the balance.
void clearDebt(TradeSteps& steps, LiveAccount& account, const IdSource& newId);

/// Begins an account anew: cancels what is live, at no cost, and brings back the initial balance, a status
/// that may trade and, unless it is funded, the first phase.
void startAnew(TradeSteps& steps, LiveAccount& account, const IdSource& newId);

} // namespace practice
