#include "practice/core/market/MinuteTable.h"

#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace practice {
namespace {

bool fits(const MinuteRecord& record)
{
    constexpr std::int64_t highest = std::numeric_limits<std::uint32_t>::max();
    constexpr std::int64_t widest = std::numeric_limits<std::uint16_t>::max();
    return std::max({record.bar.open, record.bar.high, record.bar.low, record.bar.close}) <= highest
        && record.halfSpread.widest() <= widest;
}

template <typename Prices> MinuteRecord unpacked(const Prices& prices)
{
    return {{prices.open, prices.high, prices.low, prices.close, 0},
        {prices.atOpen, prices.atHigh, prices.atLow, prices.atClose}};
}

template <typename Prices> Prices packed(const MinuteRecord& record)
{
    using Point = typename Prices::Point;
    using Spread = typename Prices::Spread;
    return {static_cast<Point>(record.bar.open), static_cast<Point>(record.bar.high),
        static_cast<Point>(record.bar.low), static_cast<Point>(record.bar.close),
        static_cast<Spread>(record.halfSpread.open), static_cast<Spread>(record.halfSpread.high),
        static_cast<Spread>(record.halfSpread.low), static_cast<Spread>(record.halfSpread.close)};
}

template <typename Prices>
PointRange rangeOf(const std::vector<Prices>& minutes, std::size_t first, std::size_t last)
{
    auto high = minutes[first].high;
    auto low = minutes[first].low;
    for (std::size_t number = first + 1; number <= last; ++number) {
        high = std::max(high, minutes[number].high);
        low = std::min(low, minutes[number].low);
    }
    return {high, low};
}

} // namespace

void MinuteTable::append(const MinuteRecord& record)
{
    if (m_isWide)
        m_wide.emplace_back();
    else
        m_narrow.emplace_back();
    m_volumes.push_back(volumeBefore(size()) + record.bar.volume);
    keepPrices(size() - 1, record);
}

MinuteRecord MinuteTable::at(std::size_t number) const
{
    MinuteRecord record = pricesAt(number);
    record.bar.volume = m_volumes[number] - volumeBefore(number);
    return record;
}

PointRange MinuteTable::range(std::size_t first, std::size_t last) const
{
    return m_isWide ? rangeOf(m_wide, first, last) : rangeOf(m_narrow, first, last);
}

MinuteRecord MinuteTable::pricesAt(std::size_t number) const
{
    return m_isWide ? unpacked(m_wide[number]) : unpacked(m_narrow[number]);
}

void MinuteTable::keepPrices(std::size_t number, const MinuteRecord& record)
{
    if (!m_isWide && !fits(record))
        widen();
    if (m_isWide)
        m_wide[number] = packed<Wide>(record);
    else
        m_narrow[number] = packed<Narrow>(record);
}

void MinuteTable::widen()
{
    m_wide.reserve(m_narrow.size());
    for (const Narrow& prices : m_narrow)
        m_wide.push_back(packed<Wide>(unpacked(prices)));
    m_narrow = {};
    m_isWide = true;
}

std::uint64_t MinuteTable::digest() const
{
    const auto bits = [](std::int64_t number) { return static_cast<std::uint64_t>(number); };
    std::uint64_t digest = size();
    for (std::size_t number = 0; number < size(); ++number) {
        const MinuteRecord record = pricesAt(number);
        digest = hashKey({digest, bits(record.bar.open), bits(record.bar.high), bits(record.bar.low),
            bits(record.bar.close), bits(record.halfSpread.open), bits(record.halfSpread.high),
            bits(record.halfSpread.low), bits(record.halfSpread.close), bits(m_volumes[number])});
    }
    return digest;
}

void MinuteTable::trim()
{
    m_narrow.shrink_to_fit();
    m_wide.shrink_to_fit();
    m_volumes.shrink_to_fit();
}

std::size_t MinuteTable::bytes() const
{
    return m_narrow.capacity() * sizeof(Narrow) + m_wide.capacity() * sizeof(Wide)
        + m_volumes.capacity() * sizeof(std::int64_t);
}

} // namespace practice
