#include "practice/core/market/BarTree.h"

#include "practice/core/market/HashRandom.h"

#include <span>
#include <utility>

namespace practice {
namespace {

// How restless the parts are. A day's six parts follow the sun: quiet nights, lively European and American
// hours; shorter parts have no such habit.
constexpr std::array<double, 6> dayShares{0.75, 0.85, 1.15, 1.40, 1.10, 0.75};
constexpr std::array<double, 5> equalShares{1, 1, 1, 1, 1};

struct Level {
    Timeframe parent;
    Timeframe part;
    std::span<const double> shares;
};

const std::array<Level, 5> splitLevels{{
    {Timeframe::D1, Timeframe::H4, dayShares},
    {Timeframe::H4, Timeframe::H1, std::span(equalShares).first(4)},
    {Timeframe::H1, Timeframe::M15, std::span(equalShares).first(4)},
    {Timeframe::M15, Timeframe::M5, std::span(equalShares).first(3)},
    {Timeframe::M5, Timeframe::M1, std::span(equalShares).first(5)},
}};

} // namespace

BarTree::BarTree(std::shared_ptr<DayWalk> days, std::uint64_t key, const CommonFactors& common)
    : m_days(std::move(days))
    , m_key(key)
    , m_common(common)
{
    for (auto& entries : m_cache)
        entries.resize(cacheSlots);
}

BarNode BarTree::node(Timeframe timeframe, std::int64_t number)
{
    if (timeframe == Timeframe::D1)
        return m_days->day(number);
    const auto level = static_cast<std::size_t>(Timeframe::H4) - static_cast<std::size_t>(timeframe);
    const auto count = static_cast<std::int64_t>(splitLevels[level].shares.size());
    const std::int64_t parent = floorDivide(number, count);
    return partsOf(level, parent)[static_cast<std::size_t>(number - parent * count)];
}

const BarParts& BarTree::partsOf(std::size_t level, std::int64_t parent)
{
    CacheEntry& entry = m_cache[level][static_cast<std::uint64_t>(parent) % cacheSlots];
    if (entry.parent != parent) {
        const Level& split = splitLevels[level];
        SharedSteps shared;
        m_common.draw(level, parent, shared.steps);
        shared.ownWeight = m_common.ownWeight();
        entry.parts
            = splitBar(node(split.parent, parent), split.shares, timeframeLength(split.part) / minuteMs,
                hashKey({m_key, level, static_cast<std::uint64_t>(parent)}), shared);
        entry.parent = parent;
    }
    return entry.parts;
}

} // namespace practice
