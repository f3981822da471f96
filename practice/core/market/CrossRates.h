#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/DayWalk.h"

#include <functional>
#include <memory>
#include <vector>

namespace practice {

/// Whether the symbol is a rate between two currencies of which neither is USD and whose rates against USD
/// are both among `symbols`.
[[nodiscard]] bool isCrossRate(const SymbolSpec& spec, const std::vector<SymbolSpec>& symbols);

/// Makes such a symbol end each day where its two USD rates put it, so that the three agree within what a
/// day moves. `daysOf` returns the days of the symbol at a position of `symbols`; it is called at once.
[[nodiscard]] DayWalk::CloseRule crossCloseRule(const SymbolSpec& spec,
    const std::vector<SymbolSpec>& symbols,
    const std::function<std::shared_ptr<DayWalk>(std::size_t)>& daysOf);

} // namespace practice
