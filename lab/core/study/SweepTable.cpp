#include "lab/core/study/SweepTable.h"

#include "lab/core/figures/StudyStatistics.h"
#include "lab/core/output/Texts.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

namespace lab {

namespace {

bool isEnough(const SetResult& set, std::uint64_t minTrades)
{
    const Figure trades = set.figure("trades");
    return trades && *trades >= static_cast<double>(minTrades);
}

/// Sets that failed, those with too few trades, the others: the higher the better.
int classOf(const SetResult& set, const SweepOrder& order)
{
    if (set.failure)
        return 0;
    return isEnough(set, order.minTrades) ? 2 : 1;
}

auto betterFirst(const std::vector<SetResult>& sets, const SweepOrder& order)
{
    // Of equal ones the first in the grid.
    return [&sets, &order](std::size_t one, std::size_t other) {
        const int oneClass = classOf(sets[one], order);
        const int otherClass = classOf(sets[other], order);
        if (oneClass != otherClass)
            return oneClass > otherClass;
        const Figure oneFigure = sets[one].figure(order.sort.row->key);
        const Figure otherFigure = sets[other].figure(order.sort.row->key);
        if (order.sort.isBetter(oneFigure, otherFigure))
            return true;
        return !order.sort.isBetter(otherFigure, oneFigure) && one < other;
    };
}

std::vector<std::size_t> placesOf(const std::vector<SetResult>& sets)
{
    std::vector<std::size_t> places(sets.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    return places;
}

/// The returns of the good sets on every day that any of them has. A run that ended early stands still.
ReturnMatrix returnsOf(const std::vector<SetResult>& sets, const DaysOf& daysOf)
{
    std::vector<std::uint64_t> good;
    std::vector<std::int32_t> days;
    std::vector<std::vector<DayGain>> gains;
    std::size_t count = 0;
    for (const SetResult& set : sets) {
        if (set.failure)
            continue;
        gains.push_back(daysOf(set.number));
        count += gains.back().size();
        if (count > mostReturns)
            return {};
        const auto& own = gains.back();
        if (!std::ranges::includes(days, own, {}, {}, &DayGain::day)) {
            std::vector<std::int32_t> dayNumbers;
            std::ranges::transform(own, std::back_inserter(dayNumbers), &DayGain::day);
            std::vector<std::int32_t> all;
            std::ranges::set_union(days, dayNumbers, std::back_inserter(all));
            days = std::move(all);
        }
    }
    ReturnMatrix matrix{days.size(), gains.size(), {}};
    if (matrix.days * matrix.trials > mostReturns)
        return {};
    matrix.values.resize(matrix.days * matrix.trials);
    for (std::size_t trial = 0; trial < gains.size(); ++trial) {
        for (const DayGain& gain : gains[trial]) {
            const auto place = std::ranges::lower_bound(days, gain.day);
            if (place != days.end() && *place == gain.day)
                matrix.values[static_cast<std::size_t>(place - days.begin()) * matrix.trials + trial]
                    = gain.gain;
        }
    }
    return matrix;
}

Figure deflated(const std::vector<SetResult>& sets, std::size_t best, const DaysOf& daysOf)
{
    std::vector<double> sharpes;
    for (const SetResult& set : sets) {
        if (set.daySharpe)
            sharpes.push_back(*set.daySharpe);
    }
    std::vector<double> returns;
    for (const DayGain& day : daysOf(sets[best].number))
        returns.push_back(day.gain);
    return deflatedSharpe(returns, sharpes, sets.size());
}

std::vector<Figure> stabilityOf(const SweepTable& table)
{
    if (table.sets.size() != table.grid.size())
        return std::vector<Figure>(table.sets.size());
    std::vector<Figure> values;
    for (const SetResult& set : table.sets)
        values.push_back(table.sorted(set));
    return neighbourhoodStability(table.grid.sizes(), values);
}

} // namespace

bool isEligible(const SetResult& set, const SweepOrder& order)
{
    return classOf(set, order) == 2 && set.figure(order.sort.row->key).has_value();
}

Choice choiceAmong(const std::vector<SetResult>& sets, const SweepOrder& order)
{
    Choice choice;
    choice.sets = sets.size();
    for (const SetResult& set : sets) {
        choice.failed += set.failure ? 1 : 0;
        choice.withTrades += isEnough(set, order.minTrades) ? 1 : 0;
        choice.eligible += isEligible(set, order) ? 1 : 0;
        const auto trades = static_cast<std::uint64_t>(set.figure("trades").value_or(0));
        choice.mostTrades = std::max(choice.mostTrades, trades);
    }
    return choice;
}

std::string whyNone(const Choice& choice, const SweepOrder& order)
{
    if (choice.eligible > 0)
        return {};
    if (choice.failed == choice.sets)
        return "every set failed";
    const std::string enough = tradesText(order.minTrades);
    if (choice.withTrades == 0)
        return "no set made " + enough + ", the most were "
            + groupedText(static_cast<double>(choice.mostTrades), 0);
    return std::string(order.sort.row->key) + " is undefined for all with at least " + enough;
}

std::string tradesText(std::uint64_t count)
{
    return groupedText(static_cast<double>(count), 0) + (count == 1 ? " trade" : " trades");
}

bool SweepTable::hasEnoughTrades(const SetResult& set) const
{
    return isEnough(set, order.minTrades);
}

std::optional<std::size_t> bestOf(const std::vector<SetResult>& sets, const SweepOrder& order)
{
    const std::vector<std::size_t> places = placesOf(sets);
    const auto best = std::ranges::min_element(places, betterFirst(sets, order));
    if (best == places.end() || !isEligible(sets[*best], order))
        return std::nullopt;
    return *best;
}

SweepTable sweepTable(Grid grid, std::vector<SetResult> sets, SweepOrder order, const DaysOf& daysOf)
{
    SweepTable table;
    table.grid = std::move(grid);
    table.order = order;
    table.sets = std::move(sets);
    table.ranking = placesOf(table.sets);
    std::ranges::sort(table.ranking, betterFirst(table.sets, order));
    table.choice = choiceAmong(table.sets, order);
    table.stability = stabilityOf(table);
    if (!table.ranking.empty() && isEligible(table.sets[table.ranking.front()], order))
        table.best = table.ranking.front();
    if (table.best)
        table.deflatedSharpe = deflated(table.sets, *table.best, daysOf);
    table.overfittingProbability = lab::overfittingProbability(returnsOf(table.sets, daysOf));
    return table;
}

} // namespace lab
