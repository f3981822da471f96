#pragma once

#include "practice/core/market/MinuteFile.h"

#include <cstdint>
#include <vector>

namespace practice {

/// Recorded minutes laid end to end without their holes, played forwards, then backwards, then forwards
/// again without end: at each turn the price goes on from where it is, so there is never a leap that the
/// record does not hold. Minutes are numbered from 0; any later number is valid.
class ReplayLoop final {
public:
    explicit ReplayLoop(std::vector<MinuteRecord> minutes);

    /// The minute with this number; played backwards, open and close have changed places.
    [[nodiscard]] MinuteRecord minute(std::int64_t number) const;

    /// The minutes first..last folded into one bar, in constant time whatever their number.
    [[nodiscard]] GridBar fold(std::int64_t first, std::int64_t last) const;

    /// Volume of all minutes before this number.
    [[nodiscard]] std::int64_t volumeBefore(std::int64_t number) const;

private:
    struct Range {
        std::int64_t high;
        std::int64_t low;
    };

    [[nodiscard]] Range recorded(std::size_t first, std::size_t last) const;
    [[nodiscard]] Range looped(std::int64_t first, std::int64_t last) const;

    std::int64_t m_count;
    std::vector<MinuteRecord> m_minutes;
    std::vector<std::int64_t> m_volumes;      // sum of the minutes before each, and of all
    std::vector<std::vector<Range>> m_ranges; // [level][i]: the 2^level minutes from i
};

} // namespace practice
