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

/// For every symbol the legs whose prices multiply to its price; none for a symbol with prices of its own.
///
/// The currency pairs with prices of their own make up a tree, so that no two ways lead from one currency to
/// another. Recorded pairs come first, since a record is the truth about its symbol, then pairs with USD,
/// then the rest, in the order of the list. A recorded pair keeps its prices even if other pairs connect its
/// currencies already.
[[nodiscard]] std::vector<std::vector<CrossLeg>> crossLegs(
    const std::vector<SymbolSpec>& symbols, const std::vector<bool>& recorded);

} // namespace practice
