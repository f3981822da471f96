#pragma once

#include "practice/core/market/BarSplitter.h"
#include "practice/core/market/DayWalk.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace practice {

/// Every bar from a day down to a minute of one symbol. A day is split into four-hour bars, these into
/// hours and so on; a bar's parts follow from the bar and a key alone, so that any bar is reached in a few
/// steps from its day and nothing is stored but a bounded cache of recent splits.
class BarTree final {
public:
    BarTree(std::shared_ptr<DayWalk> days, std::uint64_t key, const CommonFactors& common);

    /// The bar of this timeframe (M1 to D1) with this number, counted in bar lengths from 1970-01-01.
    [[nodiscard]] BarNode node(Timeframe timeframe, std::int64_t number);

private:
    static constexpr std::size_t levels = 5;
    static constexpr std::size_t cacheSlots = 64;

    struct CacheEntry {
        std::int64_t parent = INT64_MIN;
        BarParts parts;
    };

    const BarParts& partsOf(std::size_t level, std::int64_t parent);

    std::shared_ptr<DayWalk> m_days;
    std::uint64_t m_key;
    CommonFactors m_common;
    std::array<std::vector<CacheEntry>, levels> m_cache;
};

} // namespace practice
