#pragma once

#include "lab/cli/Options.h"
#include "lab/core/market/MinuteHistory.h"

#include <vector>

namespace lab {

/// Whether a person is told what is read; a worker keeps silent.
enum class Told { Progress, Nothing };

/// The histories that a run needs: the traded symbol's, then, where its results are in another currency than
/// USD, those of the pair that converts them. Fills in symbol and, for simulated prices, beginning and end.
/// Throws UsageError for a symbol that is not there and for a pair that is missing, and HistoryError for
/// prices that cannot be used.
[[nodiscard]] std::vector<MinuteHistory> loadHistories(Options& options, Told told = Told::Progress);

/// Where they are, which is what a run takes; they have to stay there as long.
[[nodiscard]] std::vector<const MinuteHistory*> historiesAt(const std::vector<MinuteHistory>& histories);

} // namespace lab
