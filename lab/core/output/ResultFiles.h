#pragma once

#include "lab/core/RunResult.h"

#include <string>
#include <string_view>

namespace lab {

struct Figures;

// The files of a run's result, which other programs read: names, columns and keys stay as they are. Times are
// ISO 8601 in UTC with milliseconds, money has two decimals, prices have the symbol's digits; lines end in
// LF.

/// trades.csv: the closed positions, in the order of closing. Of an account's own trades mae, mfe and
/// ambiguous are empty: they are not known.
[[nodiscard]] std::string tradesCsv(const RunResult& result);

/// equity.csv: balance and equity where one of them has changed for good.
[[nodiscard]] std::string equityCsv(const RunResult& result);

/// daily.csv: the last of each UTC day; its first line is the starting balance, dated the day before.
[[nodiscard]] std::string dailyCsv(const RunResult& result);

/// journal.txt: what script and lab have written, a line each, behind its time.
[[nodiscard]] std::string journalText(const RunResult& result);

/// summary.json: every figure, null where it is undefined, and the warnings.
[[nodiscard]] std::string summaryJson(const Figures& figures);

/// run.json: what has been run, so that it can be run again: the settings, and hashes of script, prices,
/// ticks and decisions. `version` is the lab's. Of an account's own trades: what is known of them.
[[nodiscard]] std::string runJson(const RunResult& result, std::string_view version);

} // namespace lab
