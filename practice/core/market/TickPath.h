#pragma once

#include "practice/core/market/GridBar.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace practice {

/// The mid price inside one minute in equal steps, from the minute's open to its close, touching its high
/// and its low and staying between them.
class TickPath final {
public:
    TickPath() = default;

    /// `steps` from 4 to 1200; `key` decides everything random.
    TickPath(const BarNode& minute, std::size_t steps, std::uint64_t key);

    [[nodiscard]] std::size_t steps() const { return m_mids.size(); }

    /// Mid in points at a step; steps beyond the last read as the last.
    [[nodiscard]] std::int64_t mid(std::size_t step) const;

    /// The minute's bar as it stands after the steps 0..step; the whole minute after the last step.
    [[nodiscard]] GridBar until(std::size_t step) const;

    /// What happens in the steps from..to (both included).
    [[nodiscard]] GridBar between(std::size_t from, std::size_t to) const;

private:
    [[nodiscard]] std::int64_t volumeBefore(std::size_t step) const;

    std::vector<std::int64_t> m_mids;
    std::int64_t m_volume = 0;
};

} // namespace practice
