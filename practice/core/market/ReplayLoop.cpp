#include "practice/core/market/ReplayLoop.h"

#include <bit>
#include <utility>

namespace practice {

namespace {

// A range is looked up by whole blocks and, at both its ends, minute by minute: a table of single minutes
// would take many times the room of the record.
constexpr std::size_t blockMinutes = 16;

PointRange joined(const PointRange& left, const PointRange& right)
{
    return {std::max(left.high, right.high), std::min(left.low, right.low)};
}

} // namespace

ReplayLoop::ReplayLoop(MinuteTable minutes)
    : m_count(static_cast<std::int64_t>(minutes.size()))
    , m_minutes(std::move(minutes))
    , m_ranges(1)
{
    const std::size_t blocks = m_minutes.size() / blockMinutes;
    m_ranges[0].reserve(blocks);
    for (std::size_t block = 0; block < blocks; ++block)
        m_ranges[0].push_back(m_minutes.range(block * blockMinutes, (block + 1) * blockMinutes - 1));
    for (std::size_t width = 2; width <= blocks; width *= 2) {
        const std::vector<PointRange>& halves = m_ranges.back();
        std::vector<PointRange> wholes;
        wholes.reserve(blocks - width + 1);
        for (std::size_t i = 0; i + width <= blocks; ++i)
            wholes.push_back(joined(halves[i], halves[i + width / 2]));
        m_ranges.push_back(std::move(wholes));
    }
}

std::size_t ReplayLoop::bytes() const
{
    std::size_t sum = m_minutes.bytes();
    for (const std::vector<PointRange>& level : m_ranges)
        sum += level.capacity() * sizeof(PointRange);
    return sum;
}

MinuteRecord ReplayLoop::minute(std::int64_t number) const
{
    const std::int64_t place = number % (2 * m_count);
    if (place < m_count)
        return m_minutes.at(static_cast<std::size_t>(place));
    MinuteRecord record = m_minutes.at(static_cast<std::size_t>(2 * m_count - 1 - place));
    std::swap(record.bar.open, record.bar.close);
    std::swap(record.halfSpread.open, record.halfSpread.close);
    return record;
}

std::int64_t ReplayLoop::volumeBefore(std::int64_t number) const
{
    const std::int64_t place = number % (2 * m_count);
    const std::int64_t total = m_minutes.volumeBefore(m_minutes.size());
    const std::int64_t sinceLoop = place <= m_count
        ? m_minutes.volumeBefore(static_cast<std::size_t>(place))
        : 2 * total - m_minutes.volumeBefore(static_cast<std::size_t>(2 * m_count - place));
    return number / (2 * m_count) * 2 * total + sinceLoop;
}

PointRange ReplayLoop::recorded(std::size_t first, std::size_t last) const
{
    const std::size_t firstBlock = (first + blockMinutes - 1) / blockMinutes;
    const std::size_t endBlock = (last + 1) / blockMinutes;
    if (firstBlock >= endBlock)
        return m_minutes.range(first, last);
    const std::size_t level = std::bit_width((endBlock - firstBlock) | 1U) - 1U; // at least one block
    PointRange range
        = joined(m_ranges[level][firstBlock], m_ranges[level][endBlock - (std::size_t(1) << level)]);
    if (first < firstBlock * blockMinutes)
        range = joined(range, m_minutes.range(first, firstBlock * blockMinutes - 1));
    if (last + 1 > endBlock * blockMinutes)
        range = joined(range, m_minutes.range(endBlock * blockMinutes, last));
    return range;
}

PointRange ReplayLoop::looped(std::int64_t first, std::int64_t last) const
{
    const std::int64_t run = first / m_count; // even runs go forwards, odd ones backwards
    if (last - first + 1 >= 2 * m_count)
        return recorded(0, static_cast<std::size_t>(m_count - 1));
    if (last / m_count != run) {
        const std::int64_t border = (run + 1) * m_count;
        return joined(looped(first, border - 1), looped(border, last));
    }
    const std::int64_t from = first - run * m_count;
    const std::int64_t to = last - run * m_count;
    if (run % 2 == 0)
        return recorded(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
    return recorded(static_cast<std::size_t>(m_count - 1 - to), static_cast<std::size_t>(m_count - 1 - from));
}

GridBar ReplayLoop::fold(std::int64_t first, std::int64_t last) const
{
    const PointRange range = looped(first, last);
    return {minute(first).bar.open, range.high, range.low, minute(last).bar.close,
        volumeBefore(last + 1) - volumeBefore(first)};
}

} // namespace practice
