#pragma once

#include "lab/core/RunResult.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace runs {

/// A run whose days, from `firstDay` on, end with these equities.
inline lab::RunResult withEquities(const std::vector<practice::Cents>& equities,
    practice::Cents start = 100'000, std::int32_t firstDay = 19'000)
{
    lab::RunResult result;
    result.startBalance = start;
    result.equity.push_back({firstDay * practice::dayMs, start, start});
    practice::Cents before = start;
    std::int32_t day = firstDay;
    for (const practice::Cents equity : equities) {
        result.days.push_back({day, equity, equity, before, std::min(before, equity)});
        ++day;
        result.equity.push_back({day * practice::dayMs, equity, equity});
        before = equity;
    }
    return result;
}

inline lab::TradeRow trade(int ticket, practice::Cents profit, practice::TimeMs openTime = 0)
{
    lab::TradeRow row;
    row.ticket = ticket;
    row.profit = profit;
    row.openTime = openTime;
    row.closeTime = openTime + practice::hourMs;
    return row;
}

/// A run without days, whose trades have these results.
inline lab::RunResult withTrades(std::initializer_list<practice::Cents> profits)
{
    lab::RunResult result;
    result.startBalance = 100'000;
    int ticket = 0;
    for (const practice::Cents profit : profits)
        result.trades.push_back(trade(++ticket, profit));
    return result;
}

} // namespace runs
