#include "practice/line/Throttle.h"

#include <algorithm>

namespace practice {

std::chrono::nanoseconds Throttle::enter(std::size_t bytes, Time now)
{
    if (m_rate <= 0)
        return std::chrono::nanoseconds(0);
    const std::chrono::duration<double> taken(static_cast<double>(bytes) / m_rate);
    m_free = std::max(m_free, now) + std::chrono::duration_cast<Time::duration>(taken);
    return m_free - now;
}

} // namespace practice
