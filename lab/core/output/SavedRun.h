#pragma once

#include "lab/core/RunResult.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lab {

/// A run as its files tell it.
struct SavedRun {
    std::string name; ///< what it is called in a comparison: the folder's name
    std::string from; ///< ISO 8601
    std::string to;
    /// Numbers of summary.json in its order; nothing where the figure is undefined.
    std::vector<std::pair<std::string, std::optional<double>>> figures;
    std::vector<std::string> warnings;
    bool simulated = false; ///< its prices; false where the folder does not tell
    /// What was run, by the keys of run.json, inputs as "input NAME", each as its JSON, without what is made
    /// of several values; empty where the folder does not tell.
    std::vector<std::pair<std::string, std::string>> origin;
    std::string symbol; ///< of the trades that name none of their own; empty without trades
    int digits = 5;     ///< of their prices
    std::vector<TradeRow> trades;
    std::vector<EquityPoint> equity;
};

/// Reads summary.json, trades.csv and equity.csv of the folder, and run.json where there is one. Throws
/// OutputError, "file:line: reason", where one is missing or damaged.
[[nodiscard]] SavedRun readSavedRun(const std::filesystem::path& folder);

} // namespace lab
