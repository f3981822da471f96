#pragma once

#include "lab/core/RunResult.h"
#include "lab/core/study/SweepTable.h"

#include <string>
#include <string_view>
#include <vector>

namespace lab {

// A sweep for other programs and for its report page: the same bytes for the same results.

/// sweep.csv: a line for each set, the best first: its rank, its number in the grid, its inputs, whether it
/// is done or failed, every figure as in summary.json, the stability of its neighbourhood, and why it failed.
[[nodiscard]] std::string sweepCsv(const SweepTable& table);

/// sweep.json: what was tried and how, and what it is worth. `about` has been run: hashes and settings.
[[nodiscard]] std::string sweepJson(
    const SweepTable& table, const RunResult& about, std::string_view version);

/// Parts for the report of the best run: what was tried, and the maps of two inputs, those with most values.
[[nodiscard]] std::vector<std::string> sweepParts(const SweepTable& table);

/// So many of the best sets are shown, on the page and on a terminal.
inline constexpr std::size_t shownSets = 20;
/// What they are compared by; what they are sorted by comes first.
[[nodiscard]] std::vector<const FigureRow*> shownFigures(const SortFigure& sort);

// What a figure that is undefined would need.
inline constexpr std::string_view whyNoDeflated = "needs at least two sets with a Sharpe ratio";
[[nodiscard]] std::string_view whyNoOverfitting(const SweepTable& table);

/// "Fast=5 Slow=20".
[[nodiscard]] std::string inputsText(const std::vector<std::pair<std::string, std::string>>& inputs);

/// A cell of a CSV file; within quotation marks where it needs them.
[[nodiscard]] std::string csvCell(std::string_view text);

} // namespace lab
