#pragma once

#include "lab/core/figures/Figures.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace lab {

/// How sure one can be that the true Sharpe ratio is above `threshold`: Φ((SR − threshold)·√(n−1) /
/// √(1 − γ3·SR + (γ4−1)/4·SR²)). All of them per day, not annual. Absent with fewer than two returns, no
/// deviation, or a root of nothing.
[[nodiscard]] Figure probabilisticSharpe(std::span<const double> returns, double threshold = 0);

/// The Sharpe ratio (per day, mean / standard deviation); absent with fewer than two returns or no deviation.
[[nodiscard]] Figure dailySharpe(std::span<const double> returns);

/// The highest Sharpe ratio to expect of `trials` trials without any skill, whose ratios have this variance:
/// √V · ((1 − γ)·Φ⁻¹(1 − 1/N) + γ·Φ⁻¹(1 − 1/(N·e))), γ the Euler-Mascheroni constant. 0 for a single trial;
/// absent without one, or with a variance below 0.
[[nodiscard]] Figure expectedMaximumSharpe(std::size_t trials, double variance);

/// `probabilisticSharpe` against the expected maximum of all the trials made. `trialSharpes` are their daily
/// Sharpe ratios; `trials` how many were made, at least as many as that (those without a ratio count too).
/// Absent with fewer than two ratios.
[[nodiscard]] Figure deflatedSharpe(
    std::span<const double> returns, std::span<const double> trialSharpes, std::size_t trials);

/// Daily returns of several trials over the same days.
struct ReturnMatrix {
    std::size_t days = 0;
    std::size_t trials = 0;
    std::vector<double> values; ///< day by day: values[day * trials + trial]
};

/// The probability that the trial which is best in one half of the days does not lie above the median in the
/// other: combinatorially symmetric cross-validation with `blocks` blocks of days (an even number from 2 to
/// 20). Ranks are by Sharpe ratio, which is 0 for a trial without deviation; equal ones share the mean of
/// their ranks. Absent with fewer than two trials or fewer than two days a block. The oldest days that fill
/// no block are left out.
[[nodiscard]] Figure overfittingProbability(const ReturnMatrix& matrix, std::size_t blocks = 16);

/// Where a share is likely to lie.
struct ShareRange {
    double share = 0;
    double low = 0;
    double high = 0;
};

/// The Wilson interval of `hits` in `all` at 95 %; absent without any.
[[nodiscard]] std::optional<ShareRange> wilsonInterval(std::size_t hits, std::size_t all);

/// A share above this, either way, tells nothing but that what it is a share of lies near 0.
inline constexpr double mostShare = 10;

/// `part` / `whole`; absent where either is, where `whole` is not above 0 and beyond `mostShare`.
[[nodiscard]] Figure shareOf(const Figure& part, const Figure& whole);

/// Why there is no share of what is above 0.
inline constexpr std::string_view whyTrifle = "beyond 1,000 %: what it is compared with is hardly above 0";

/// How much of a figure is left in the neighbourhood: the mean of the neighbours' values / the value. A grid
/// of `sizes` (how many steps each axis has), the last axis running fastest; neighbours differ by at most one
/// step on each axis. Absent where the value is absent or not above 0, no neighbour has one, or shareOf() has
/// none.
[[nodiscard]] std::vector<Figure> neighbourhoodStability(
    std::span<const std::size_t> sizes, std::span<const Figure> values);

} // namespace lab
