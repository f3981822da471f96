#pragma once

#include <chrono>
#include <cstdint>

namespace practice {

/// How bad a line is. Ordinary: not at all.
struct LineQuality {
    std::chrono::milliseconds latency{0};     ///< each way
    std::chrono::milliseconds jitter{0};      ///< at most so much more, anew for each piece
    double drop = 0;                          ///< share of packets with which a connection falls silent
    std::chrono::milliseconds cutInterval{0}; ///< after which all connections break; 0: never
    double throttle = 0;                      ///< bytes a second, each way; 0: as fast as it goes
    double refuse = 0;                        ///< share of connections that break at once
    std::uint64_t seed = 1;                   ///< which connections and packets these are

    [[nodiscard]] bool isBad() const
    {
        return latency.count() > 0 || jitter.count() > 0 || drop > 0 || cutInterval.count() > 0
            || throttle > 0 || refuse > 0;
    }
};

} // namespace practice
