#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/SymbolPrices.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace practice {

/// Gives prices to the symbols that have none: cross rates follow from others, the rest is simulated. Both
/// lists have the same length; prices that are there already are a record's.
void fillMarket(const std::vector<SymbolSpec>& symbols, std::vector<std::unique_ptr<SymbolPrices>>& prices,
    std::uint64_t seed, double speed);

} // namespace practice
