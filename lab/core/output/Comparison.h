#pragma once

#include "lab/core/output/SavedRun.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace lab {

/// The first place, counted from 0, at which two lists of trades differ in symbol, side, lots, times, prices
/// or net result; the shorter list's length where it ends first. Nothing when they are equal.
[[nodiscard]] std::optional<std::size_t> firstDifference(const SavedRun& one, const SavedRun& other);

/// Figures side by side and, for each run after the first, the first trade that differs from the first run's;
/// for a terminal. Needs at least one run.
[[nodiscard]] std::string compareText(const std::vector<SavedRun>& runs);

/// The same as a page, with the equity curves over one another. It loads nothing.
[[nodiscard]] std::string comparePage(const std::vector<SavedRun>& runs);

} // namespace lab
