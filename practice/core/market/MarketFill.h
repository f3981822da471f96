#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/SymbolPrices.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace practice {

/// Gives prices to the symbols that have none: cross rates follow from others, the rest is simulated. The
/// two lists are of one length; what is there already is a record.
void fillMarket(const std::vector<SymbolSpec>& symbols, std::vector<std::unique_ptr<SymbolPrices>>& prices,
    std::uint64_t seed, double speed);

} // namespace practice
