#pragma once

#include "lab/core/RunResult.h"

#include <optional>
#include <string>
#include <string_view>

namespace lab {

/// What a reader of an account's trades has to know or to choose.
struct TradeHistoryWish {
    std::string symbol; ///< of these trades alone; empty: of all
    std::optional<practice::Cents>
        balance; ///< before the first trade; absent: what was paid in by then or the usual one
};

/// The closed positions in the platform's reply to a request for an account's history, in whatever symbols.
/// Equity moves where a position was closed, since nothing else is known of it. Throws UsageError, one line
/// that begins with `name`, where the text is no such reply or holds no closed position.
[[nodiscard]] RunResult resultOfTrades(
    std::string_view json, const std::string& name, const TradeHistoryWish& wish);

} // namespace lab
