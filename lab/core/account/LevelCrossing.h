#pragma once

#include "lab/core/account/PositionBook.h"

#include <optional>
#include <vector>

namespace lab {

/// A continuous way between two prices. Bid and ask each go straight from the one to the other, so that a
/// spread that changes does so evenly along the way.
struct PriceWay {
    PointQuote from;
    PointQuote to;
};

/// Where a way crosses a level.
struct LevelCrossing {
    double share = 0; ///< of the way, between 0 and 1
    PointQuote quote; ///< the side at which the position closes stands exactly on the level
};

/// The first level of these positions that is crossed farther along the way than `after`, which is a share of
/// it; nothing when there is none. Levels at either end of the way are not crossed.
[[nodiscard]] std::optional<LevelCrossing> nextCrossing(
    const std::vector<Position>& positions, const PriceWay& way, double after);

} // namespace lab
