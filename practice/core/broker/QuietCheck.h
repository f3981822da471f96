#pragma once

#include "practice/core/broker/Ledger.h"
#include "practice/core/broker/PriceBoard.h"
#include "practice/core/market/PriceSource.h"

#include <optional>
#include <span>

namespace practice {

/// Whether nothing can happen while prices stay within these spans, given by position of the symbol: no level
/// and no trigger is within reach, and no account can fall to a limit, not even if all prices were at their
/// worst at once. A symbol without a span has no price. False is cautious: it may turn out that nothing
/// happens.
[[nodiscard]] bool staysQuiet(
    const Ledger& ledger, const PriceBoard& prices, std::span<const std::optional<PriceSpan>> spans);

} // namespace practice
