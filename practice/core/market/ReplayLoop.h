#pragma once

#include "practice/core/market/MinuteTable.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace practice {

/// Recorded minutes laid end to end without their holes, played forwards, then backwards, then forwards
/// again without end: at each turn the price goes on from where it is, so there is never a leap that the
/// record does not hold. Minutes are numbered from 0; any later number is valid.
class ReplayLoop final {
public:
    explicit ReplayLoop(MinuteTable minutes);

    /// The minute with this number; played backwards, open and close have changed places.
    [[nodiscard]] MinuteRecord minute(std::int64_t number) const;

    /// The minutes first..last folded into one bar, in constant time whatever their number.
    [[nodiscard]] GridBar fold(std::int64_t first, std::int64_t last) const;

    /// Volume of all minutes before this number.
    [[nodiscard]] std::int64_t volumeBefore(std::int64_t number) const;

    /// Memory taken by the record and by what makes fold() quick.
    [[nodiscard]] std::size_t bytes() const;

private:
    [[nodiscard]] PointRange recorded(std::size_t first, std::size_t last) const;
    [[nodiscard]] PointRange looped(std::int64_t first, std::int64_t last) const;

    std::int64_t m_count;
    MinuteTable m_minutes;
    std::vector<std::vector<PointRange>> m_ranges; // [level][i]: the 2^level blocks of minutes from i
};

} // namespace practice
