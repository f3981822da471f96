#pragma once

#include "lab/core/study/Grid.h"
#include "lab/core/study/SetResult.h"
#include "lab/core/study/SortFigure.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lab {

/// By what the sets of a sweep are put in order.
struct SweepOrder {
    SortFigure sort;
    std::uint64_t minTrades = 30; ///< with fewer, a set comes after those that have enough
};

/// How many of some sets may be chosen, and what the others lack.
struct Choice {
    std::size_t sets = 0;
    std::size_t failed = 0;
    std::size_t withTrades = 0;   ///< trades enough
    std::size_t eligible = 0;     ///< trades enough, and the figure is defined
    std::uint64_t mostTrades = 0; ///< of any set
    friend bool operator==(const Choice&, const Choice&) = default;
};

/// It has not failed, and has figure and trades enough.
[[nodiscard]] bool isEligible(const SetResult& set, const SweepOrder& order);

[[nodiscard]] Choice choiceAmong(const std::vector<SetResult>& sets, const SweepOrder& order);

/// Why none of them may be chosen, in a few words; empty where one may.
[[nodiscard]] std::string whyNone(const Choice& choice, const SweepOrder& order);

/// "30 trades", "1 trade".
[[nodiscard]] std::string tradesText(std::uint64_t count);

/// The results of a sweep in their order, and what they are worth together. It follows from the results
/// alone, in whatever order they were found.
struct SweepTable {
    Grid grid;
    SweepOrder order;
    std::vector<SetResult> sets;      ///< by their numbers, ascending
    std::vector<std::size_t> ranking; ///< places in `sets`, the best first, those that failed last
    /// How much of each set's figure its neighbours have; absent where sets were left out of the grid.
    std::vector<Figure> stability;
    std::optional<std::size_t> best; ///< place in `sets`; absent when none has figure and trades enough
    Choice choice;
    Figure deflatedSharpe;         ///< of the best, with all sets as trials
    Figure overfittingProbability; ///< of those that did not fail

    [[nodiscard]] bool hasEnoughTrades(const SetResult& set) const;
    [[nodiscard]] Figure sorted(const SetResult& set) const { return set.figure(order.sort.row->key); }
};

/// The days of a set's result.
using DaysOf = std::function<std::vector<DayGain>(std::uint64_t number)>;

/// `sets` are ascending. More returns than `mostReturns` are too many for the probability of overfitting,
/// which is absent then.
[[nodiscard]] SweepTable sweepTable(
    Grid grid, std::vector<SetResult> sets, SweepOrder order, const DaysOf& daysOf);

/// The best of the sets: a place in them, as in SweepTable.
[[nodiscard]] std::optional<std::size_t> bestOf(const std::vector<SetResult>& sets, const SweepOrder& order);

inline constexpr std::size_t mostReturns = std::size_t{1} << 26;

} // namespace lab
