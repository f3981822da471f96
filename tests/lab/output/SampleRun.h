#pragma once

#include "lab/core/RunResult.h"

namespace lab::samples {

inline constexpr practice::TimeMs monday = 1'704'067'200'000; ///< 2024-01-01T00:00:00Z

/// A small run made by hand: two days, one win with a target, one loss by a stop that was ambiguous.
inline RunResult smallRun()
{
    RunResult run;
    run.settings.symbol = "EURUSD";
    run.settings.from = monday;
    run.settings.to = monday + 2 * practice::dayMs;
    run.settings.inputs = {{"Fast", "5"}, {"Name", "\"slow & steady\""}};
    run.warmupBars = 1500;
    run.bars = 192;
    run.ticks = 11'520;
    run.startBalance = 10'000'000;

    TradeRow win;
    win.ticket = 1;
    win.lots = 10;
    win.openTime = monday + practice::hourMs;
    win.openPrice = 1.1;
    win.closeTime = monday + 2 * practice::hourMs + 345;
    win.closePrice = 1.105;
    win.takeProfit = 1.105;
    win.profit = 5'000;
    win.commission = 35;
    win.swap = -7;
    win.reason = ExitReason::TakeProfit;
    win.worst = -1'201;
    win.best = 5'000;

    TradeRow loss;
    loss.ticket = 2;
    loss.side = practice::Side::Sell;
    loss.lots = 100;
    loss.openTime = monday + 25 * practice::hourMs;
    loss.openPrice = 1.105;
    loss.closeTime = monday + 26 * practice::hourMs;
    loss.closePrice = 1.10605;
    loss.stopLoss = 1.106;
    loss.takeProfit = 1.1;
    loss.profit = -10'500;
    loss.commission = 350;
    loss.reason = ExitReason::StopLoss;
    loss.worst = -10'500;
    loss.ambiguous = true;
    loss.otherProfit = 50'000;
    run.trades = {win, loss};

    run.equity = {{monday, 10'000'000, 10'000'000}, {win.closeTime, 10'004'958, 10'004'958},
        {monday + practice::dayMs, 10'004'958, 10'004'958}, {loss.closeTime, 9'994'108, 9'994'108},
        {monday + 2 * practice::dayMs, 9'994'108, 9'994'108}};
    run.days = {{19'723, 10'004'958, 10'004'958, 10'000'000, 9'998'799},
        {19'724, 9'994'108, 9'994'108, 10'004'958, 9'994'108}};
    for (int bar = 0; bar < 192; ++bar) {
        const double open = 1.1 + 0.00005 * (bar % 40);
        run.chart.push_back(
            {monday + bar * 15 * practice::minuteMs, open, open + 0.0004, open - 0.0003, open + 0.0002});
    }
    run.journal = {{monday + practice::hourMs, "bought"}, {monday + 26 * practice::hourMs, "stopped\nout"}};
    run.equityDrawdown = {0.00108, 10'850};
    run.balanceDrawdown = {0.00108, 10'850};
    run.exposedMs = 2 * practice::hourMs + 345;
    run.firstPrice = 1.1;
    run.lastPrice = 1.102;
    run.scriptHash = 0x1234;
    run.dataHash = 0xFEDCBA9876543210;
    run.tickPrint = 1;
    run.decisionPrint = 0;
    return run;
}

} // namespace lab::samples
