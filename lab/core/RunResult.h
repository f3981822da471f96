#pragma once

#include "lab/core/RunSettings.h"
#include "practice/core/broker/Records.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lab {

/// Why a position was closed: by its levels, the script, the end of the run, too little margin, a rule of
/// the plan. Those of an account that was not the lab's know no Script and no End: Manual is a person's or a
/// script's closing, Other whatever else is told, or nothing.
enum class ExitReason { StopLoss, TakeProfit, Script, End, Margin, Rule, Manual, Other };

/// A closed position. Money in cents of the account's currency.
struct TradeRow {
    int ticket = 0; ///< from 1, in the order of opening
    practice::Side side = practice::Side::Buy;
    practice::LotHundredths lots = 0;
    practice::TimeMs openTime = 0;
    double openPrice = 0;
    practice::TimeMs closeTime = 0;
    double closePrice = 0;
    double stopLoss = 0;            ///< 0: none
    double takeProfit = 0;          ///< 0: none
    practice::Cents profit = 0;     ///< of the prices alone
    practice::Cents commission = 0; ///< a cost, at least 0
    practice::Cents swap = 0;       ///< signed
    ExitReason reason = ExitReason::Script;
    practice::Cents worst = 0;      ///< lowest result of the prices while it was open, at most 0
    practice::Cents best = 0;       ///< highest, at least 0
    practice::Cents spreadCost = 0; ///< what the distance of bid and ask has cost at opening and closing
    /// Its last minute held both levels: which of them came first is not known.
    bool ambiguous = false;
    practice::Cents otherProfit = 0; ///< of an ambiguous one: `profit`, had the other level come first

    std::string symbol; ///< empty: that of the run
    int digits = -1;    ///< of its prices; below 0: those of the run

    [[nodiscard]] practice::Cents net() const { return profit - commission + swap; }
};

/// The account at one moment.
struct EquityPoint {
    practice::TimeMs time = 0;
    practice::Cents balance = 0;
    practice::Cents equity = 0;
};

/// A UTC day that had prices.
struct DayRow {
    std::int32_t day = 0;        ///< since 1970-01-01
    practice::Cents balance = 0; ///< at its end
    practice::Cents equity = 0;  ///< at its end
    practice::Cents firstEquity = 0;
    practice::Cents lowestEquity = 0;
};

/// A bar of the chart, for looking at.
struct BarRow {
    practice::TimeMs time = 0;
    double open = 0;
    double high = 0;
    double low = 0;
    double close = 0;

    /// Takes in its later neighbour.
    void join(const BarRow& next)
    {
        high = std::max(high, next.high);
        low = std::min(low, next.low);
        close = next.close;
    }
};

/// What a script's author has put at the top of it for changing.
struct RunInput {
    std::string name;
    std::string literal;    ///< with which it ran, as it would stand in the script
    bool isChanged = false; ///< another one stands in the script
    bool isSwept = false;   ///< each part of the run has its own; `literal` is empty then
};

/// A line that the script or the lab has written.
struct JournalLine {
    practice::TimeMs time = 0;
    std::string text; ///< one line, UTF-8
};

/// The deepest fall of a curve from its highest value so far.
struct Drawdown {
    double fraction = 0; ///< of the peak; may exceed 1
    practice::Cents money = 0;
};

enum class PlanOutcome { None, Passed, DailyLoss, TotalLoss };

/// All that a run has found out; figures and files are worked out from this alone.
struct RunResult {
    RunSettings settings; ///< `from` and `to` filled in
    int digits = 5;
    bool weekendsTrade = false; ///< prices on Saturdays (UTC); even currencies have some on Sundays
    bool simulated = false;
    /// Made of an account's closed trades, without prices: equity is the balance, and `worst`, `best`,
    /// spreads and whatever else needs prices are unknown.
    bool closedTradesOnly = false;
    std::uint64_t warmupBars = 0; ///< before the first tick; no more than asked for, and than there were
    std::uint64_t bars = 0;       ///< of the chart, without those before the first tick
    std::uint64_t ticks = 0;      ///< calls of the script
    practice::Cents startBalance = 0;
    PlanCourse course;               ///< at the end
    std::vector<TradeRow> trades;    ///< in the order of closing
    std::vector<EquityPoint> equity; ///< start, each change of the balance, end of each UTC day, end
    std::vector<DayRow> days;
    std::vector<BarRow> chart; ///< the bars of the run; of a long one, neighbours joined
    std::vector<JournalLine> journal;
    std::uint64_t journalLeftOut = 0; ///< lines of the script that `journal` does not have
    std::vector<RunInput> inputs;     ///< all of the script, in its order; empty: those of `settings` alone
    Drawdown equityDrawdown;          ///< on every price that the broker saw
    Drawdown balanceDrawdown;
    practice::TimeMs exposedMs = 0; ///< with an open position
    std::uint64_t refusals = 0;     ///< orders that the lab's checks or the broker refused
    PlanOutcome outcome = PlanOutcome::None;
    practice::TimeMs outcomeTime = 0;
    double firstPrice = 0; ///< mid at the first tick, for buy and hold
    double lastPrice = 0;
    std::optional<std::string> error; ///< the script's, with name and line; the run ended early
    practice::TimeMs errorTime = 0;   ///< of the last price that the script was called for
    std::uint64_t scriptHash = 0;     ///< of the script's text
    std::uint64_t dataHash = 0;       ///< of prices and times
    std::uint64_t tickPrint = 0;      ///< of every price that the script saw
    std::uint64_t decisionPrint = 0;  ///< of every order, its time and its outcome
    std::vector<std::string> warnings;
};

} // namespace lab
