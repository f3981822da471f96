#pragma once

#include "practice/core/market/GridBar.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace practice {

/// The most parts one bar is split into (a day into six four-hour bars).
inline constexpr std::size_t maxBarParts = 6;
using BarParts = std::array<BarNode, maxBarParts>;

/// The share of the steps between a bar's parts that comes from what moves all symbols: a step for each part,
/// and the weight of the bar's own steps (of variance 1), which make up the rest.
struct SharedSteps {
    std::array<double, maxBarParts> steps{};
    double ownWeight = 1;
};

/// Splits a bar into `shares.size()` consecutive shorter ones that fold back into exactly the same bar: the
/// first opens where it opens, each next one where the one before closed, the highest high and the lowest low
/// are its own, the volumes add up. `shares` says how restless each part is relative to the others,
/// `minutesPerPart` how long it is (each minute gets a volume of at least 1, as far as the bar's volume
/// allows), `key` decides everything random.
[[nodiscard]] BarParts splitBar(const BarNode& parent, std::span<const double> shares,
    std::int64_t minutesPerPart, std::uint64_t key, const SharedSteps& shared = {});

/// The variance, in squared points, of a walk inside a bar: the expected one, or more where the bar's range
/// shows that it was wilder.
[[nodiscard]] double walkVariance(const BarNode& node);

} // namespace practice
