#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/market/MinuteTable.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lab {

/// Minutes of one symbol with their times, ascending, with holes where nothing was recorded. Loaded once and
/// then only read, so that workers share it.
struct MinuteHistory {
    practice::SymbolSpec spec;        ///< `digits` as in the record
    practice::MinuteTable minutes;    ///< mid prices in points; a half spread of 0 was not recorded
    std::vector<std::int32_t> starts; ///< of each minute, in minutes since 1970-01-01T00:00Z
    bool isSimulated = false;

    [[nodiscard]] std::size_t size() const { return starts.size(); }
    [[nodiscard]] practice::TimeMs timeAt(std::size_t number) const
    {
        return practice::TimeMs{starts[number]} * practice::minuteMs;
    }
};

} // namespace lab
