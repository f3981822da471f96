#pragma once

#include "practice/core/broker/TradeSteps.h"

namespace practice {

/// Whether the quote has reached the position's stop loss or take profit; None when it has reached
/// neither. Both at once counts as the stop loss.
[[nodiscard]] CloseReason reachedLevel(const Trade& position, const Quote& quote);

/// Whether the quote has reached the order's trigger price.
[[nodiscard]] bool triggerReached(const Trade& order, const Quote& quote);

/// Closes the symbol's positions whose levels are reached, then fills its orders whose triggers are reached
/// (with the margin that the closed ones freed), then closes those of the new positions whose own level the
/// same price has reached already.
void runTriggers(TradeSteps& steps, std::size_t symbol);

} // namespace practice
