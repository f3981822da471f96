#pragma once

#include "chart/series/Candle.h"
#include "lab/core/RunResult.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace lab {

/// The bars of a run for looking at, neighbours joined where there are too many for that.
class ChartBars final {
public:
    /// So many are kept at most, and at least half as many of more than that.
    static constexpr std::size_t most = 48'000;

    /// Takes in a finished bar, later than those before.
    void add(const Candle& candle);

    /// How many were taken in.
    [[nodiscard]] std::uint64_t count() const { return m_count; }
    [[nodiscard]] const std::vector<BarRow>& rows() const { return m_rows; }
    /// Leaves none behind.
    [[nodiscard]] std::vector<BarRow> takeRows() { return std::move(m_rows); }

private:
    void joinPairs();

    std::vector<BarRow> m_rows;
    std::uint64_t m_count = 0;
    std::uint64_t m_group = 1; ///< bars in a row, but perhaps the last
};

} // namespace lab
