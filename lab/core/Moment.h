#pragma once

#include "practice/core/Types.h"

#include <cstdint>

namespace lab {

/// A price of the traded symbol at one moment of a run, in points.
struct Moment {
    practice::TimeMs time = 0;
    std::int64_t mid = 0;
    std::int64_t halfSpread = 1; ///< distance of bid and ask from the mid, at least 1
    std::uint32_t minute = 0;    ///< the number, in the history, of the minute that it belongs to
    /// The price has not passed through those between the moment before and this one: it comes after a gap.
    bool afterGap = false;
    /// The script is called at it; otherwise the broker alone sees it.
    bool forScript = true;
    friend bool operator==(const Moment&, const Moment&) = default;
};

} // namespace lab
