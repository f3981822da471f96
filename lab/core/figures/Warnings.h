#pragma once

#include "lab/core/figures/Figures.h"

#include <string>
#include <string_view>
#include <vector>

namespace lab {

/// What a reader has to know before believing the figures: the run's own warnings, then those that result and
/// figures call for (few trades or days, ambiguous exits, simulated prices, an early end). Plain sentences.
[[nodiscard]] std::vector<std::string> warningsOf(const RunResult& result, const Figures& figures);

/// What has to be said of simulated prices; `prices` begins the sentence.
[[nodiscard]] std::string simulatedWarning(std::string_view prices = "The prices");

/// The run in one line: what came out of it, in how many trades, how deep it fell, how the plan ended.
[[nodiscard]] std::string verdictOf(const RunResult& result, const Figures& figures);

} // namespace lab
