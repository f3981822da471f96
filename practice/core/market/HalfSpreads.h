#pragma once

#include "practice/core/market/GridBar.h"
#include "practice/core/market/TickPath.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace practice {

/// Distances of bid and ask from the mid at the four prices of a minute, in points; 0 where none were
/// recorded.
struct HalfSpreads {
    std::int64_t open = 0;
    std::int64_t high = 0;
    std::int64_t low = 0;
    std::int64_t close = 0;

    HalfSpreads() = default;
    /// The same one at each price: most code has no other.
    HalfSpreads(std::int64_t everywhere)
        : HalfSpreads(everywhere, everywhere, everywhere, everywhere)
    {
    }
    HalfSpreads(std::int64_t atOpen, std::int64_t atHigh, std::int64_t atLow, std::int64_t atClose)
        : open(atOpen)
        , high(atHigh)
        , low(atLow)
        , close(atClose)
    {
    }

    [[nodiscard]] bool areRecorded() const { return close > 0; }
    [[nodiscard]] std::int64_t widest() const { return std::max({open, high, low, close}); }
    friend bool operator==(const HalfSpreads&, const HalfSpreads&) = default;
};

/// The half spread at a step of the way through a minute: at its first and its last one that of open and
/// close. On all others bid and ask go evenly between what each is at the low and at the high, as the mid
/// does; so neither leaves its own range, and each touches both its ends.
[[nodiscard]] std::int64_t halfSpreadAt(
    const GridBar& bar, const HalfSpreads& spreads, const TickPath& path, std::size_t step);

} // namespace practice
