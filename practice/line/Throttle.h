#pragma once

#include <chrono>
#include <cstddef>

namespace practice {

/// How long bytes take that share one direction of a line.
class Throttle final {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// So many bytes a second; 0 for a line that takes no time.
    explicit Throttle(double bytesASecond)
        : m_rate(bytesASecond)
    {
    }

    /// How long after `now` these bytes have arrived: behind all that entered the line before them.
    [[nodiscard]] std::chrono::nanoseconds enter(std::size_t bytes, Time now);

private:
    double m_rate;
    Time m_free{};
};

} // namespace practice
