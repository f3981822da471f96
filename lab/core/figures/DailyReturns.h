#pragma once

#include "lab/core/figures/Figures.h"

#include <cstddef>
#include <span>
#include <vector>

namespace lab {

/// What equity has done on each UTC day that had prices, as a fraction of what it was before; the first is
/// measured against the starting balance.
struct DailyReturns {
    std::vector<double> values;
    /// Equity was at or below 0 at the end of a day (or at the start): there are no returns after that, since
    /// they would be fractions of nothing.
    bool ruined = false;
};

[[nodiscard]] DailyReturns dailyReturns(const RunResult& result);

/// Mean, spread and shape of some numbers, which are all finite.
struct Moments {
    std::size_t count = 0;
    double mean = 0;      ///< 0 of none
    double deviation = 0; ///< standard deviation by n − 1; exactly 0 where all are equal, or fewer than two
    Figure skew;          ///< by population moments; absent without deviation
    Figure kurtosis;      ///< excess, likewise

    [[nodiscard]] bool spreads() const { return deviation > 0; }
};

[[nodiscard]] Moments momentsOf(std::span<const double> values);

/// The number as a figure: nothing unless it is finite; no negative zero.
[[nodiscard]] Figure finite(double value);

} // namespace lab
