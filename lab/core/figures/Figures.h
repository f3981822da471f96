#pragma once

#include "lab/core/RunResult.h"

#include <optional>
#include <string>
#include <vector>

namespace lab {

/// A figure of a run. Absent where it is undefined (no trades, no losses, fewer than two days, a standard
/// deviation of 0); never infinite, never NaN.
using Figure = std::optional<double>;

/// What a run comes to, in the order of `summary.json`. Money in cents, times in milliseconds since
/// 1970-01-01T00:00Z, counts whole. Names, formulas and units are in FigureTable.h, which goes through all of
/// them, so that nobody needs a list of their own.
struct Figures {
    Figure from;
    Figure to;
    Figure days;
    Figure bars;
    Figure ticks;
    Figure ticksPerBar;
    Figure annualDays;
    Figure startBalance;
    Figure endBalance;
    Figure endEquity;
    Figure netProfit;
    Figure cagr;
    Figure volatility;
    Figure sharpe;
    Figure sortino;
    Figure calmar;
    Figure maxDrawdown;
    Figure maxDrawdownMoney;
    Figure maxDrawdownBalance;
    Figure longestDrawdownDays;
    Figure averageDrawdown;
    Figure recoveryFactor;
    Figure ulcerIndex;
    Figure trades;
    Figure longTrades;
    Figure shortTrades;
    Figure wins;
    Figure winRate;
    Figure payoff;
    Figure profitFactor;
    Figure expectancy;
    Figure sqn;
    Figure kelly;
    Figure bestTrade;
    Figure worstTrade;
    Figure maxConsecutiveWins;
    Figure maxConsecutiveLosses;
    Figure averageDurationMinutes;
    Figure exposure;
    Figure commission;
    Figure swap;
    Figure spreadCost;
    Figure var95;
    Figure es95;
    Figure skew;
    Figure kurtosis;
    Figure psr;
    Figure buyAndHold;
    Figure worstDay;
    Figure dailyLimitUse;
    Figure totalLimitUse;
    Figure ambiguousExits;
    Figure refusals;
    std::vector<std::string> warnings; ///< the run's own first, then what the figures call for
};

/// The figures of a run. The same bits on every machine.
[[nodiscard]] Figures figuresOf(const RunResult& result);

} // namespace lab
