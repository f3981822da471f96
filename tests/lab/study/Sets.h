#pragma once

#include "lab/core/figures/FigureTable.h"
#include "lab/core/study/SetResult.h"

/// A set's result with these figures, and days that earn `gain` every other one.
inline lab::SetResult madeSet(std::uint64_t number, double sharpe, double trades = 50, double gain = 0.01)
{
    lab::SetResult set;
    set.number = number;
    set.figures.resize(lab::figureRows().size());
    for (std::size_t i = 0; i < set.figures.size(); ++i) {
        const std::string_view key = lab::figureRows()[i].key;
        if (key == "sharpe")
            set.figures[i] = sharpe;
        else if (key == "trades")
            set.figures[i] = trades;
        else if (key == "maxDrawdown")
            set.figures[i] = sharpe / 10;
        else if (key == "netProfit")
            set.figures[i] = 123'456;
    }
    set.daySharpe = sharpe / 16;
    set.tickPrint = 0xfedcba9876543210U;
    set.decisionPrint = number;
    for (int day = 0; day < 64; ++day)
        set.days.push_back({19'000 + day, day % 2 == 0 ? gain : -0.001 * static_cast<double>(number % 3)});
    return set;
}

inline lab::SetResult failedSet(std::uint64_t number)
{
    lab::SetResult set;
    set.number = number;
    set.failure = "its process was ended by signal 11, \"they\" say";
    return set;
}
