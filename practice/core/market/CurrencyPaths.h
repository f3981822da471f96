#pragma once

#include "practice/core/SymbolCatalog.h"

#include <cstddef>
#include <vector>

namespace practice {

/// One step on the way from a currency to another: by a symbol's price, or by its inverse.
struct CrossLeg {
    std::size_t symbol = 0;
    bool inverted = false;
};

/// For every symbol the legs whose prices, multiplied, are its own; none where it has a price of its own.
///
/// The currency pairs that have one make up a tree, so that no two ways lead from one currency to another: a
/// record comes first (it is the truth of its symbol), then pairs with USD, then the rest, in the order of
/// the list. A record whose currencies others connect already keeps its own prices all the same.
[[nodiscard]] std::vector<std::vector<CrossLeg>> crossLegs(
    const std::vector<SymbolSpec>& symbols, const std::vector<bool>& recorded);

} // namespace practice
