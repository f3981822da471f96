#include "lab/core/study/StitchedRun.h"

#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <utility>

namespace lab {

namespace {

void deepenBy(Drawdown& drawdown, practice::Cents peak, practice::Cents value)
{
    drawdown.money = std::max(drawdown.money, peak - value);
    if (peak > 0) {
        drawdown.fraction
            = std::max(drawdown.fraction, static_cast<double>(peak - value) / static_cast<double>(peak));
    }
}

} // namespace

StitchedRun::StitchedRun(Grid grid)
    : m_grid(std::move(grid))
{
}

void StitchedRun::add(const RunResult& run)
{
    if (!m_result) {
        m_result = run;
        m_result->settings.inputs.clear();
        for (RunInput& input : m_result->inputs) {
            if (m_grid.isSwept(input.name))
                input = {input.name, {}, false, true};
        }
        return;
    }
    RunResult& all = *m_result;
    all.settings.to = run.settings.to;
    all.bars += run.bars;
    all.ticks += run.ticks;
    int lastTicket = 0;
    for (const TradeRow& trade : all.trades)
        lastTicket = std::max(lastTicket, trade.ticket);
    for (TradeRow trade : run.trades) {
        trade.ticket += lastTicket;
        all.trades.push_back(trade);
    }
    // Its first point is the former one's last.
    if (!run.equity.empty())
        all.equity.insert(all.equity.end(), run.equity.begin() + 1, run.equity.end());
    addDays(run);
    for (const BarRow& bar : run.chart) {
        if (all.chart.empty() || bar.time > all.chart.back().time)
            all.chart.push_back(bar);
    }
    all.journal.insert(all.journal.end(), run.journal.begin(), run.journal.end());
    all.journalLeftOut += run.journalLeftOut;
    all.exposedMs += run.exposedMs;
    all.refusals += run.refusals;
    all.course = run.course;
    all.outcome = run.outcome;
    all.outcomeTime = run.outcomeTime;
    all.lastPrice = run.lastPrice;
    all.error = run.error;
    all.errorTime = run.errorTime;
    all.tickPrint = practice::hashKey({all.tickPrint, run.tickPrint});
    all.decisionPrint = practice::hashKey({all.decisionPrint, run.decisionPrint});
    all.equityDrawdown.fraction = std::max(all.equityDrawdown.fraction, run.equityDrawdown.fraction);
    all.equityDrawdown.money = std::max(all.equityDrawdown.money, run.equityDrawdown.money);
    for (const std::string& warning : run.warnings) {
        if (std::ranges::find(all.warnings, warning) == all.warnings.end())
            all.warnings.push_back(warning);
    }
    deepen();
}

void StitchedRun::addDays(const RunResult& run)
{
    std::vector<DayRow>& days = m_result->days;
    for (const DayRow& day : run.days) {
        if (!days.empty() && days.back().day == day.day) {
            DayRow& before = days.back();
            before.balance = day.balance;
            before.equity = day.equity;
            before.lowestEquity = std::min(before.lowestEquity, day.lowestEquity);
        } else {
            days.push_back(day);
        }
    }
}

void StitchedRun::deepen()
{
    RunResult& all = *m_result;
    practice::Cents peak = all.startBalance;
    for (const DayRow& day : all.days) {
        deepenBy(all.equityDrawdown, peak, day.lowestEquity);
        peak = std::max(peak, day.equity);
    }
    peak = all.startBalance;
    for (const EquityPoint& point : all.equity) {
        peak = std::max(peak, point.balance);
        deepenBy(all.balanceDrawdown, peak, point.balance);
    }
}

} // namespace lab
