#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/MinuteFile.h"

#include <string>

namespace practice {

/// What a trader is told about a replayed symbol: digits, price level, volatility and spread come from the
/// record, charges and contract from `known` when it lists the symbol, else from the symbol's name.
[[nodiscard]] SymbolSpec replaySpec(
    const std::string& name, const MinuteFile& file, const std::vector<SymbolSpec>& known);

} // namespace practice
