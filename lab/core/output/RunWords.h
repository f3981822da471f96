#pragma once

#include "lab/core/RunResult.h"

#include <string_view>
#include <vector>

namespace lab {

// The words of the options, for what a run was asked to do and how it ended.

[[nodiscard]] std::string_view modelText(Model model);           ///< open, ohlc, path or feed
[[nodiscard]] std::string_view extremesText(ExtremeOrder order); ///< usual, high-first or low-first
[[nodiscard]] std::string_view rulesText(AccountRules rules);    ///< demo or plan
[[nodiscard]] std::string_view outcomeText(PlanOutcome outcome); ///< none, passed, daily-loss or total-loss

/// The inputs that a run had: all of its script, or those that it was given where no more is known.
[[nodiscard]] std::vector<RunInput> runInputs(const RunResult& result);

// Trades of one account may be in several symbols, those of a run are not.

[[nodiscard]] const std::string& symbolOf(const TradeRow& trade, const RunResult& result);
[[nodiscard]] int digitsOf(const TradeRow& trade, const RunResult& result);

} // namespace lab
