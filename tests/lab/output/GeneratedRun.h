#pragma once

#include "SampleRun.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

namespace lab::samples {

/// A run as long as asked for, the same every time: a walk of prices, trades one after the other on it, and
/// an equity curve.
inline RunResult generatedRun(int bars, int trades, std::size_t equityPoints)
{
    RunResult run = smallRun();
    run.settings.inputs = {{"Fast", "5"}, {"Slow", "20"}, {"Lots", "0.10"}};
    run.trades.clear();
    run.equity.clear();
    run.days.clear();
    run.chart.clear();
    run.journal.clear();
    std::uint64_t state = 42;
    const auto random = [&state] {
        state = state * 6'364'136'223'846'793'005U + 1'442'695'040'888'963'407U;
        return static_cast<double>(state >> 11U) / 9'007'199'254'740'992.0 - 0.5;
    };
    const practice::TimeMs step = 15 * practice::minuteMs;
    double price = 1.1;
    for (int bar = 0; bar < bars; ++bar) {
        const double open = price;
        price = std::max(0.5, price + 0.0012 * random());
        run.chart.push_back({monday + bar * step, open, std::max(open, price) + 0.0003 * std::abs(random()),
            std::min(open, price) - 0.0003 * std::abs(random()), price});
    }
    const practice::TimeMs end = monday + bars * step;
    run.settings.to = end;
    practice::Cents balance = run.startBalance;
    const practice::TimeMs room = std::max<practice::TimeMs>((end - monday) / (trades + 1), 2);
    run.equity.push_back({monday, balance, balance});
    for (int number = 0; number < trades; ++number) {
        TradeRow trade;
        trade.ticket = number + 1;
        trade.side = random() > 0 ? practice::Side::Buy : practice::Side::Sell;
        trade.lots = 10;
        trade.openTime = monday + number * room;
        trade.closeTime = trade.openTime
            + static_cast<practice::TimeMs>(static_cast<double>(room) * (0.55 + 0.4 * random()));
        const auto priceAt = [&](practice::TimeMs time) {
            return run.chart[static_cast<std::size_t>((time - monday) / step)].close;
        };
        trade.openPrice = priceAt(trade.openTime);
        trade.closePrice = priceAt(trade.closeTime);
        const double way = trade.side == practice::Side::Buy ? 1 : -1;
        trade.profit = std::llround((trade.closePrice - trade.openPrice) * way * 1'000'000) + 150;
        trade.commission = 35;
        trade.reason = number % 3 == 0 ? ExitReason::StopLoss
            : number % 3 == 1          ? ExitReason::TakeProfit
                                       : ExitReason::Script;
        trade.ambiguous = number % 97 == 0;
        trade.otherProfit = trade.profit;
        trade.worst = std::min<practice::Cents>(0, trade.profit) - std::llround(400 * std::abs(random()));
        trade.best = std::max<practice::Cents>(0, trade.profit) + std::llround(400 * std::abs(random()));
        balance += trade.net();
        run.equity.push_back({trade.closeTime, balance, balance});
        run.trades.push_back(trade);
    }
    for (std::size_t point = run.equity.size(); point < equityPoints; ++point) {
        const EquityPoint& former = run.equity.back();
        run.equity.push_back(
            {former.time + 1'000, former.balance, former.balance + std::llround(30'000 * random())});
    }
    practice::Cents peak = run.startBalance;
    for (const EquityPoint& point : run.equity) {
        peak = std::max(peak, point.equity);
        const practice::Cents fall = peak - point.equity;
        if (fall > run.equityDrawdown.money)
            run.equityDrawdown = {static_cast<double>(fall) / static_cast<double>(peak), fall};
    }
    run.balanceDrawdown = run.equityDrawdown;
    std::size_t next = 0;
    practice::Cents equity = run.startBalance;
    for (std::int32_t day = 19'723; practice::TimeMs{day} * practice::dayMs < end; ++day) {
        DayRow row{day, equity, equity, equity, equity};
        for (; next < run.equity.size()
             && run.equity[next].time < (practice::TimeMs{day} + 1) * practice::dayMs;
             ++next) {
            equity = run.equity[next].equity;
            row.lowestEquity = std::min(row.lowestEquity, equity);
        }
        row.equity = row.balance = equity;
        if ((day + 3) % 7 < 5)
            run.days.push_back(row);
    }
    for (int line = 0; line < trades; ++line)
        run.journal.push_back({monday + line * room, "Fast crosses slow at bar " + std::to_string(line)});
    run.bars = static_cast<std::uint64_t>(bars);
    run.ticks = run.bars * 60;
    return run;
}

} // namespace lab::samples
