#include "practice/core/market/ReplayLoop.h"

#include <bit>
#include <utility>

namespace practice {

ReplayLoop::ReplayLoop(std::vector<MinuteRecord> minutes)
    : m_count(static_cast<std::int64_t>(minutes.size()))
    , m_minutes(std::move(minutes))
    , m_volumes(1, 0)
    , m_ranges(1)
{
    for (const MinuteRecord& record : m_minutes) {
        m_volumes.push_back(m_volumes.back() + record.bar.volume);
        m_ranges[0].push_back({record.bar.high, record.bar.low});
    }
    for (std::size_t width = 2; width <= m_minutes.size(); width *= 2) {
        const std::vector<Range>& halves = m_ranges.back();
        std::vector<Range> wholes;
        wholes.reserve(m_minutes.size() - width + 1);
        for (std::size_t i = 0; i + width <= m_minutes.size(); ++i) {
            const Range& left = halves[i];
            const Range& right = halves[i + width / 2];
            wholes.push_back({std::max(left.high, right.high), std::min(left.low, right.low)});
        }
        m_ranges.push_back(std::move(wholes));
    }
}

MinuteRecord ReplayLoop::minute(std::int64_t number) const
{
    const std::int64_t place = number % (2 * m_count);
    if (place < m_count)
        return m_minutes[static_cast<std::size_t>(place)];
    MinuteRecord record = m_minutes[static_cast<std::size_t>(2 * m_count - 1 - place)];
    std::swap(record.bar.open, record.bar.close);
    return record;
}

std::int64_t ReplayLoop::volumeBefore(std::int64_t number) const
{
    const std::int64_t place = number % (2 * m_count);
    const std::int64_t total = m_volumes.back();
    const std::int64_t sinceLoop = place <= m_count
        ? m_volumes[static_cast<std::size_t>(place)]
        : 2 * total - m_volumes[static_cast<std::size_t>(2 * m_count - place)];
    return number / (2 * m_count) * 2 * total + sinceLoop;
}

ReplayLoop::Range ReplayLoop::recorded(std::size_t first, std::size_t last) const
{
    const std::size_t bars = last - first + 1;
    const std::size_t level = std::bit_width(bars | 1U) - 1U; // at least one bar
    const Range& left = m_ranges[level][first];
    const Range& right = m_ranges[level][last + 1 - (std::size_t(1) << level)];
    return {std::max(left.high, right.high), std::min(left.low, right.low)};
}

ReplayLoop::Range ReplayLoop::looped(std::int64_t first, std::int64_t last) const
{
    const std::int64_t run = first / m_count; // even runs go forwards, odd ones backwards
    if (last - first + 1 >= 2 * m_count)
        return recorded(0, static_cast<std::size_t>(m_count - 1));
    if (last / m_count != run) {
        const std::int64_t border = (run + 1) * m_count;
        const Range left = looped(first, border - 1);
        const Range right = looped(border, last);
        return {std::max(left.high, right.high), std::min(left.low, right.low)};
    }
    const std::int64_t from = first - run * m_count;
    const std::int64_t to = last - run * m_count;
    if (run % 2 == 0)
        return recorded(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
    return recorded(static_cast<std::size_t>(m_count - 1 - to), static_cast<std::size_t>(m_count - 1 - from));
}

GridBar ReplayLoop::fold(std::int64_t first, std::int64_t last) const
{
    const Range range = looped(first, last);
    return {minute(first).bar.open, range.high, range.low, minute(last).bar.close,
        volumeBefore(last + 1) - volumeBefore(first)};
}

} // namespace practice
