#include "lab/core/figures/TradeFigures.h"

#include "lab/core/figures/DailyReturns.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace lab {

namespace {

using practice::Cents;

/// Sums over all trades, in whole numbers.
struct Totals {
    std::int64_t longs = 0;
    std::int64_t wins = 0;
    std::int64_t losses = 0;
    std::int64_t ambiguous = 0;
    Cents won = 0;
    Cents lost = 0; ///< at least 0
    Cents commission = 0;
    Cents swap = 0;
    Cents spreadCost = 0;
    practice::TimeMs duration = 0;
    std::int64_t longestWins = 0;
    std::int64_t longestLosses = 0;

    [[nodiscard]] Cents net() const { return won - lost; }
};

Totals totalsOf(const RunResult& result)
{
    Totals totals;
    std::int64_t winsInRow = 0;
    std::int64_t lossesInRow = 0;
    for (const TradeRow& trade : result.trades) {
        const Cents net = trade.net();
        totals.longs += trade.side == practice::Side::Buy ? 1 : 0;
        totals.wins += net > 0 ? 1 : 0;
        totals.losses += net < 0 ? 1 : 0;
        totals.won += std::max<Cents>(net, 0);
        totals.lost += std::max<Cents>(-net, 0);
        totals.ambiguous += trade.ambiguous ? 1 : 0;
        totals.commission += trade.commission;
        totals.swap += trade.swap;
        totals.spreadCost += trade.spreadCost;
        totals.duration += trade.closeTime - trade.openTime;
        winsInRow = net > 0 ? winsInRow + 1 : 0;
        lossesInRow = net < 0 ? lossesInRow + 1 : 0;
        totals.longestWins = std::max(totals.longestWins, winsInRow);
        totals.longestLosses = std::max(totals.longestLosses, lossesInRow);
    }
    return totals;
}

double number(std::int64_t whole)
{
    return static_cast<double>(whole);
}

/// √n · mean / standard deviation of the trades' results.
Figure systemQuality(const std::vector<double>& nets)
{
    const Moments moments = momentsOf(nets);
    if (!moments.spreads())
        return {};
    return finite(std::sqrt(static_cast<double>(nets.size())) * moments.mean / moments.deviation);
}

/// What needs a trade to be defined.
void addMeans(const RunResult& result, const Totals& totals, Figures& figures)
{
    std::vector<double> nets;
    nets.reserve(result.trades.size());
    for (const TradeRow& trade : result.trades)
        nets.push_back(number(trade.net()));
    const auto count = static_cast<double>(nets.size());
    const auto [worst, best] = std::minmax_element(nets.begin(), nets.end());
    figures.bestTrade = *best;
    figures.worstTrade = *worst;
    figures.winRate = number(totals.wins) / count;
    figures.expectancy = number(totals.net()) / count;
    figures.averageDurationMinutes = number(totals.duration) / count / practice::minuteMs;
    figures.sqn = systemQuality(nets);
    if (totals.losses == 0)
        return;
    figures.profitFactor = number(totals.won) / number(totals.lost);
    if (totals.wins == 0)
        return;
    const double payoff
        = number(totals.won) / number(totals.wins) / (number(totals.lost) / number(totals.losses));
    figures.payoff = payoff;
    figures.kelly = finite(*figures.winRate - (1 - *figures.winRate) / payoff);
}

} // namespace

void addTradeFigures(const RunResult& result, Figures& figures)
{
    const Totals totals = totalsOf(result);
    const auto count = static_cast<std::int64_t>(result.trades.size());
    figures.netProfit = number(totals.net());
    figures.trades = number(count);
    figures.longTrades = number(totals.longs);
    figures.shortTrades = number(count - totals.longs);
    figures.wins = number(totals.wins);
    figures.maxConsecutiveWins = number(totals.longestWins);
    figures.maxConsecutiveLosses = number(totals.longestLosses);
    figures.commission = number(totals.commission);
    figures.swap = number(totals.swap);
    figures.spreadCost = number(totals.spreadCost);
    figures.ambiguousExits = number(totals.ambiguous);
    if (count > 0)
        addMeans(result, totals, figures);
}

} // namespace lab
