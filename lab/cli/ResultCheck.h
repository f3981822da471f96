#pragma once

#include "lab/core/RunResult.h"

#include <string>

namespace lab {

/// One line about the trades whose results do not follow from their prices, in the symbols whose contract and
/// currency are known; empty where there is none. Without the costs taken off, say, an account's results
/// would quietly be told too high.
[[nodiscard]] std::string contradictionText(const RunResult& result);

} // namespace lab
