#pragma once

#include "lab/core/RunSettings.h"
#include "lab/core/market/HistoryError.h"
#include "lab/core/market/MinuteHistory.h"

#include <cstddef>
#include <vector>

namespace lab {

/// The minutes of a history that a run goes through.
struct RunSpan {
    std::size_t firstMinute = 0;
    std::size_t endMinute = 0; ///< the first one after the run
    friend bool operator==(const RunSpan&, const RunSpan&) = default;
};

/// Begins with the first minute from `settings.from` on; without one, with the first minute of the bar that
/// has `warmupBars` bars before it, or, where nobody has said how many, the usual number and at most a
/// quarter of all. Ends with the last minute that is over by `settings.to`, else the history's. Throws
/// HistoryError when nothing lies between.
[[nodiscard]] RunSpan spanOf(const MinuteHistory& history, const RunSettings& settings);

/// The last `count` bars of mid prices up to a minute (which is not in them; at most the history's size),
/// oldest first, fewer where there are fewer. The last one is unfinished where the minute lies within its
/// time; bars without a minute are left out.
[[nodiscard]] std::vector<practice::Bar> barsBefore(
    const MinuteHistory& history, practice::Timeframe timeframe, int count, std::size_t minute);

/// The minute begins a bar: it is the history's first one or the first of its bar.
[[nodiscard]] bool beginsBar(const MinuteHistory& history, practice::Timeframe timeframe, std::size_t minute);

} // namespace lab
