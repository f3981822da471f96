#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/Types.h"
#include "practice/core/market/MinuteTable.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lab {

/// A minute of a history.
struct MinuteView {
    practice::TimeMs time = 0; ///< its first millisecond
    practice::GridBar bar;     ///< mids, in points
    practice::HalfSpreads halfSpread;
};

/// Minutes of one symbol with their times, ascending, with holes where nothing was recorded. They are
/// numbered from 0. Loaded once and then only read, so that workers share it.
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
    /// The minute with this number, which is below size().
    [[nodiscard]] MinuteView at(std::size_t number) const;

    /// The first minute that begins at this moment or later; size() when none does.
    [[nodiscard]] std::size_t firstFrom(practice::TimeMs time) const;

    /// Its prices come after a hole, or from another one than the minute before closed at; so do the very
    /// first minute's.
    [[nodiscard]] bool opensWithGap(std::size_t number) const;

    /// Any minute lies on a Saturday (UTC); on Sunday evenings even currencies begin their week.
    [[nodiscard]] bool weekendsTrade() const;

    /// Memory taken by the minutes.
    [[nodiscard]] std::size_t bytes() const;
};

/// A digest of symbol, digits, times, prices, spreads and volumes: equal on every machine for equal minutes,
/// and almost certainly for no others.
[[nodiscard]] std::uint64_t dataHash(const MinuteHistory& history);

} // namespace lab
