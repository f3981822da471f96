#include "lab/core/figures/Figures.h"

#include "lab/core/figures/DailyReturns.h"
#include "lab/core/figures/DrawdownSpans.h"
#include "lab/core/figures/StableMath.h"
#include "lab/core/figures/StudyStatistics.h"
#include "lab/core/figures/TradeFigures.h"
#include "lab/core/figures/Warnings.h"
#include "practice/core/broker/RiskRules.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

namespace lab {

namespace {

double number(std::int64_t whole)
{
    return static_cast<double>(whole);
}

/// Nothing where the divisor is not above 0.
Figure quotient(const Figure& value, const Figure& divisor)
{
    if (!value || !divisor || *divisor <= 0)
        return {};
    return finite(*value / *divisor);
}

void addCourse(const RunResult& result, Figures& figures)
{
    if (result.settings.from)
        figures.from = number(*result.settings.from);
    if (result.settings.to)
        figures.to = number(*result.settings.to);
    figures.days = result.days.empty() ? 0 : result.days.back().day - result.days.front().day + 1;
    figures.bars = static_cast<double>(result.bars);
    figures.ticks = static_cast<double>(result.ticks);
    figures.ticksPerBar = quotient(figures.ticks, figures.bars);
    figures.annualDays = result.weekendsTrade ? 365 : 252;
    figures.refusals = static_cast<double>(result.refusals);

    const EquityPoint start{.balance = result.startBalance, .equity = result.startBalance};
    const EquityPoint end = result.equity.empty() ? start : result.equity.back();
    figures.startBalance = number(result.startBalance);
    figures.endBalance = number(end.balance);
    figures.endEquity = number(end.equity);
    if (!result.equity.empty()) {
        const practice::TimeMs time = result.equity.back().time - result.equity.front().time;
        figures.exposure = quotient(number(result.exposedMs), number(time));
    }
    if (result.firstPrice > 0)
        figures.buyAndHold = finite(result.lastPrice / result.firstPrice - 1);
}

/// Historical: a loss that one day in twenty exceeds, and the mean of the days that are as bad or worse.
void addTails(std::span<const double> returns, Figures& figures)
{
    std::vector<double> sorted(returns.begin(), returns.end());
    std::sort(sorted.begin(), sorted.end());
    // The place (n − 1) · 0.05 is split in whole numbers: 0.05 itself is no exact double.
    const std::size_t below = (sorted.size() - 1) / 20;
    const double onTheWay = static_cast<double>((sorted.size() - 1) % 20) / 20;
    double quantile = sorted[below];
    if (onTheWay > 0)
        quantile += (sorted[below + 1] - sorted[below]) * onTheWay;
    figures.var95 = finite(0 - quantile);

    double sum = 0;
    std::size_t count = 0;
    for (; count < sorted.size() && sorted[count] <= quantile; ++count)
        sum += sorted[count];
    figures.es95 = finite(0 - sum / static_cast<double>(count));
}

void addReturnFigures(const RunResult& result, Figures& figures)
{
    const DailyReturns returns = dailyReturns(result);
    if (returns.values.size() < 2)
        return;
    const Moments moments = momentsOf(returns.values);
    const double yearRoot = std::sqrt(*figures.annualDays);
    const auto count = static_cast<double>(moments.count);

    figures.volatility = finite(moments.deviation * yearRoot);
    if (const Figure sharpe = dailySharpe(returns.values))
        figures.sharpe = finite(*sharpe * yearRoot);
    double squaredLosses = 0;
    for (const double value : returns.values)
        squaredLosses += value < 0 ? value * value : 0;
    if (squaredLosses > 0)
        figures.sortino = finite(moments.mean / std::sqrt(squaredLosses / count) * yearRoot);
    figures.skew = moments.skew;
    figures.kurtosis = moments.kurtosis;
    figures.psr = probabilisticSharpe(returns.values);
    addTails(returns.values, figures);

    if (!returns.ruined && *figures.endEquity > 0) {
        const double growth = *figures.endEquity / *figures.startBalance;
        figures.cagr = finite(stable::power(growth, 365.25 / *figures.days) - 1);
    }
}

void addDrawdowns(const RunResult& result, Figures& figures)
{
    figures.maxDrawdown = finite(result.equityDrawdown.fraction);
    figures.maxDrawdownMoney = number(result.equityDrawdown.money);
    figures.maxDrawdownBalance = finite(result.balanceDrawdown.fraction);
    figures.calmar = quotient(figures.cagr, figures.maxDrawdown);
    figures.recoveryFactor = quotient(figures.netProfit, figures.maxDrawdownMoney);
    if (result.days.empty() || result.startBalance <= 0)
        return;

    const std::vector<DrawdownSpan> spans = drawdownSpans(result);
    std::int32_t longest = 0;
    double depths = 0;
    for (const DrawdownSpan& span : spans) {
        longest = std::max(longest, span.days);
        depths += span.depth;
    }
    figures.longestDrawdownDays = longest;
    if (!spans.empty())
        figures.averageDrawdown = finite(depths / static_cast<double>(spans.size()));

    double squares = 0;
    practice::Cents peak = result.startBalance;
    for (const DayRow& day : result.days) {
        peak = std::max(peak, day.equity);
        const double below = number(peak - day.equity) / number(peak);
        squares += below * below;
    }
    figures.ulcerIndex = finite(std::sqrt(squares / static_cast<double>(result.days.size())));
}

void addPlanRules(const RunResult& result, Figures& figures)
{
    namespace limits = practice::riskLimits;
    const bool hasLimits = result.settings.rules == AccountRules::Plan;
    double worstDay = 0;
    bool hasDay = false;
    practice::Cents lowest = result.startBalance;
    for (const DayRow& day : result.days) {
        lowest = std::min(lowest, day.lowestEquity);
        if (day.firstEquity <= 0)
            continue;
        const double change = number(day.lowestEquity - day.firstEquity) / number(day.firstEquity);
        worstDay = hasDay ? std::min(worstDay, change) : change;
        hasDay = true;
    }
    if (hasDay) {
        figures.worstDay = finite(worstDay);
        if (hasLimits)
            figures.dailyLimitUse = finite(std::max(0.0, -worstDay * 100 / number(limits::dailyLossPercent)));
    }
    if (hasLimits && result.startBalance > 0 && !result.days.empty()) {
        const double lost = number(result.startBalance - lowest) / number(result.startBalance);
        figures.totalLimitUse = finite(lost * 100 / number(limits::totalLossPercent));
    }
}

/// What needs prices is unknown where there are none.
void forgetUnknown(Figures& figures)
{
    for (Figure Figures::*unknown : {&Figures::bars, &Figures::ticks, &Figures::ticksPerBar,
             &Figures::maxDrawdown, &Figures::maxDrawdownMoney, &Figures::calmar, &Figures::recoveryFactor,
             &Figures::spreadCost, &Figures::buyAndHold, &Figures::worstDay, &Figures::dailyLimitUse,
             &Figures::totalLimitUse, &Figures::ambiguousExits, &Figures::refusals})
        (figures.*unknown).reset();
}

} // namespace

Figures figuresOf(const RunResult& result)
{
    Figures figures;
    addCourse(result, figures);
    addTradeFigures(result, figures);
    addReturnFigures(result, figures);
    addDrawdowns(result, figures);
    addPlanRules(result, figures);
    figures.warnings = warningsOf(result, figures);
    if (result.closedTradesOnly)
        forgetUnknown(figures);
    return figures;
}

} // namespace lab
