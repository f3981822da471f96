#include "lab/core/figures/FigureTable.h"

#include <algorithm>
#include <array>

namespace lab {

namespace {

using Kind = FigureKind;

constexpr std::array rows{
    FigureRow{"from", "From", "", Kind::Time, &Figures::from},
    FigureRow{"to", "To", "", Kind::Time, &Figures::to},
    FigureRow{"days", "Days", "from the first to the last day with prices, both counted (UTC)", Kind::Days,
        &Figures::days},
    FigureRow{"bars", "Bars", "", Kind::Count, &Figures::bars},
    FigureRow{"ticks", "Ticks", "calls of the script", Kind::Count, &Figures::ticks},
    FigureRow{"ticksPerBar", "Ticks per bar", "ticks / bars", Kind::Number, &Figures::ticksPerBar},
    FigureRow{"annualDays", "Days a year (A)",
        "252, or 365 when weekends trade; short Sundays are days, too, which lowers volatility", Kind::Count,
        &Figures::annualDays},
    FigureRow{"startBalance", "Balance at the start", "", Kind::Money, &Figures::startBalance},
    FigureRow{"endBalance", "Balance at the end", "", Kind::Money, &Figures::endBalance},
    FigureRow{"endEquity", "Equity at the end", "", Kind::Money, &Figures::endEquity},
    FigureRow{"netProfit", "Net profit", "Σ net, net = profit − commission + swap", Kind::Money,
        &Figures::netProfit},
    FigureRow{"cagr", "Growth a year (CAGR)", "(E1/E0)^(365.25/days) − 1", Kind::Fraction, &Figures::cagr},
    FigureRow{"volatility", "Volatility", "sd(r, n−1) · √A, r = daily returns of equity", Kind::Fraction,
        &Figures::volatility},
    FigureRow{"sharpe", "Sharpe ratio", "mean(r)/sd(r) · √A", Kind::Number, &Figures::sharpe},
    FigureRow{"sortino", "Sortino ratio", "mean(r)/√mean(min(r,0)²) · √A", Kind::Number, &Figures::sortino},
    FigureRow{"calmar", "Calmar ratio", "CAGR / maximum drawdown", Kind::Number, &Figures::calmar},
    FigureRow{"maxDrawdown", "Maximum drawdown",
        "largest fall of equity from its peak / peak, on every price", Kind::Fraction, &Figures::maxDrawdown},
    FigureRow{"maxDrawdownMoney", "Maximum drawdown, money",
        "largest fall of equity from its peak, on every price", Kind::Money, &Figures::maxDrawdownMoney},
    FigureRow{"maxDrawdownBalance", "Maximum drawdown of the balance",
        "largest fall of the balance from its peak / peak", Kind::Fraction, &Figures::maxDrawdownBalance},
    FigureRow{"longestDrawdownDays", "Longest drawdown",
        "days from a peak of daily equity to its recovery or the last day", Kind::Days,
        &Figures::longestDrawdownDays},
    FigureRow{"averageDrawdown", "Average drawdown", "mean depth of the drawdowns of daily equity",
        Kind::Fraction, &Figures::averageDrawdown},
    FigureRow{"recoveryFactor", "Recovery factor", "net profit / maximum drawdown in money", Kind::Number,
        &Figures::recoveryFactor},
    FigureRow{"ulcerIndex", "Ulcer index", "√mean(dd²), dd = 1 − daily equity / its peak so far",
        Kind::Fraction, &Figures::ulcerIndex},
    FigureRow{"trades", "Trades", "", Kind::Count, &Figures::trades},
    FigureRow{"longTrades", "Long trades", "", Kind::Count, &Figures::longTrades},
    FigureRow{"shortTrades", "Short trades", "", Kind::Count, &Figures::shortTrades},
    FigureRow{"wins", "Wins", "trades whose net is above 0", Kind::Count, &Figures::wins},
    FigureRow{"winRate", "Win rate (W)", "wins / trades", Kind::Fraction, &Figures::winRate},
    FigureRow{"payoff", "Payoff", "mean win / mean loss", Kind::Number, &Figures::payoff},
    FigureRow{"profitFactor", "Profit factor", "Σ wins / Σ losses", Kind::Number, &Figures::profitFactor},
    FigureRow{"expectancy", "Expectancy", "mean(net)", Kind::Money, &Figures::expectancy},
    FigureRow{
        "sqn", "System quality number (SQN)", "√n · mean(net)/sd(net, n−1)", Kind::Number, &Figures::sqn},
    FigureRow{"kelly", "Kelly share", "W − (1 − W)/payoff", Kind::Fraction, &Figures::kelly},
    FigureRow{"bestTrade", "Best trade", "max(net)", Kind::Money, &Figures::bestTrade},
    FigureRow{"worstTrade", "Worst trade", "min(net)", Kind::Money, &Figures::worstTrade},
    FigureRow{"maxConsecutiveWins", "Longest run of wins", "", Kind::Count, &Figures::maxConsecutiveWins},
    FigureRow{
        "maxConsecutiveLosses", "Longest run of losses", "", Kind::Count, &Figures::maxConsecutiveLosses},
    FigureRow{"averageDurationMinutes", "Average duration", "mean(close − open)", Kind::Minutes,
        &Figures::averageDurationMinutes},
    FigureRow{
        "exposure", "Exposure", "time with an open position / time", Kind::Fraction, &Figures::exposure},
    FigureRow{"commission", "Commission", "Σ commission, a cost", Kind::Money, &Figures::commission},
    FigureRow{"swap", "Swap", "Σ swap, signed", Kind::Money, &Figures::swap},
    FigureRow{"spreadCost", "Cost of the spread", "Σ distance of bid and ask paid, within the profit",
        Kind::Money, &Figures::spreadCost},
    FigureRow{"var95", "Value at risk, a day, 95 %",
        "−q, q = 5 % quantile of r, linear between neighbours at (n−1)·0.05", Kind::Fraction,
        &Figures::var95},
    FigureRow{
        "es95", "Expected shortfall, a day, 95 %", "−mean(r where r ≤ q)", Kind::Fraction, &Figures::es95},
    FigureRow{"skew", "Skew", "m3/m2^1.5, m = population moments of r", Kind::Number, &Figures::skew},
    FigureRow{"kurtosis", "Excess kurtosis", "m4/m2² − 3", Kind::Number, &Figures::kurtosis},
    FigureRow{"psr", "Probabilistic Sharpe ratio (PSR)",
        "Φ(SR·√(n−1)/√(1 − γ3·SR + (γ4−1)/4·SR²)), SR = mean(r)/sd(r), γ3 = skew, γ4 = excess kurtosis + 3",
        Kind::Fraction, &Figures::psr},
    FigureRow{"buyAndHold", "Buy and hold", "last mid / first mid − 1", Kind::Fraction, &Figures::buyAndHold},
    FigureRow{"worstDay", "Worst day", "min(lowest equity / the day's first equity − 1)", Kind::Fraction,
        &Figures::worstDay},
    FigureRow{"dailyLimitUse", "Daily loss limit used", "largest loss of a day / its limit", Kind::Fraction,
        &Figures::dailyLimitUse},
    FigureRow{"totalLimitUse", "Total loss limit used", "largest loss since the start / the limit",
        Kind::Fraction, &Figures::totalLimitUse},
    FigureRow{"ambiguousExits", "Ambiguous exits", "trades whose last minute held both levels", Kind::Count,
        &Figures::ambiguousExits},
    FigureRow{"refusals", "Refused orders", "", Kind::Count, &Figures::refusals},
};

} // namespace

std::span<const FigureRow> figureRows()
{
    return rows;
}

const FigureRow* figureRow(std::string_view key)
{
    const auto* const found
        = std::find_if(rows.begin(), rows.end(), [&](const FigureRow& row) { return row.key == key; });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace lab
