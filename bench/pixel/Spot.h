#pragma once

#include "pixel/PixelRect.h"
#include "pixel/Screen.h"

#include <optional>
#include <vector>

/// Where a chart tells its price, and how that looks for each of the prices that are sent.
struct Spot final {
    PixelRect part;
    std::vector<Picture> pictures; ///< by the number of the price

    /// The least part in which these pictures of `part` differ, cut out of each. Nothing unless every two
    /// differ there: a price could not be told from another one.
    [[nodiscard]] static std::optional<Spot> of(const PixelRect& part, const std::vector<Picture>& pictures);
};
