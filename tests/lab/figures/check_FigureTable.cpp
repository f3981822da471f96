#include "lab/core/figures/FigureTable.h"
#include "practice/Check.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace lab;

TEST_CASE("the keys are those of summary.json in their order")
{
    std::string keys;
    for (const FigureRow& row : figureRows())
        keys.append(row.key).append(" ");
    CHECK_EQ(keys,
        std::string(
            "from to days bars ticks ticksPerBar annualDays startBalance endBalance endEquity netProfit cagr "
            "volatility sharpe sortino calmar maxDrawdown maxDrawdownMoney maxDrawdownBalance "
            "longestDrawdownDays averageDrawdown recoveryFactor ulcerIndex trades longTrades shortTrades "
            "wins "
            "winRate payoff profitFactor expectancy sqn kelly bestTrade worstTrade maxConsecutiveWins "
            "maxConsecutiveLosses averageDurationMinutes exposure commission swap spreadCost var95 es95 skew "
            "kurtosis psr buyAndHold worstDay dailyLimitUse totalLimitUse ambiguousExits refusals "));
}

TEST_CASE("each row shows a figure of its own")
{
    for (const FigureRow& row : figureRows()) {
        Figures figures;
        figures.*row.value = 7;
        std::size_t shown = 0;
        for (const FigureRow& other : figureRows())
            shown += other.of(figures).has_value() ? 1 : 0;
        CHECK_EQ(shown, std::size_t{1});
        CHECK_EQ(row.of(figures), Figure(7));
    }
}

TEST_CASE("all figures together are as many as the table has rows")
{
    CHECK_EQ(figureRows().size() * sizeof(Figure) + sizeof(std::vector<std::string>), sizeof(Figures));
}

TEST_CASE("names are there and differ")
{
    std::set<std::string_view> names;
    for (const FigureRow& row : figureRows()) {
        CHECK(!row.name.empty());
        CHECK(names.insert(row.name).second);
    }
}

TEST_CASE("a row is found by its key alone")
{
    REQUIRE(figureRow("sharpe") != nullptr);
    CHECK_EQ(figureRow("sharpe")->name, std::string_view("Sharpe ratio"));
    CHECK(figureRow("Sharpe") == nullptr);
    CHECK(figureRow("") == nullptr);
}

TEST_CASE("each row has the formula that it is worked out by")
{
    using Row = std::pair<std::string_view, std::string_view>;
    const std::vector<Row> formulas{
        {"from", ""},
        {"to", ""},
        {"days", "from the first to the last day with prices, both counted (UTC)"},
        {"bars", ""},
        {"ticks", "calls of the script"},
        {"ticksPerBar", "ticks / bars"},
        {"annualDays",
            "252, or 365 when weekends trade; short Sundays are days, too, which lowers volatility"},
        {"startBalance", ""},
        {"endBalance", ""},
        {"endEquity", ""},
        {"netProfit", "Σ net, net = profit − commission + swap"},
        {"cagr", "(E1/E0)^(365.25/days) − 1"},
        {"volatility", "sd(r, n−1) · √A, r = daily returns of equity"},
        {"sharpe", "mean(r)/sd(r) · √A"},
        {"sortino", "mean(r)/√mean(min(r,0)²) · √A"},
        {"calmar", "CAGR / maximum drawdown"},
        {"maxDrawdown", "largest fall of equity from its peak / peak, on every price"},
        {"maxDrawdownMoney", "largest fall of equity from its peak, on every price"},
        {"maxDrawdownBalance", "largest fall of the balance from its peak / peak"},
        {"longestDrawdownDays", "days from a peak of daily equity to its recovery or the last day"},
        {"averageDrawdown", "mean depth of the drawdowns of daily equity"},
        {"recoveryFactor", "net profit / maximum drawdown in money"},
        {"ulcerIndex", "√mean(dd²), dd = 1 − daily equity / its peak so far"},
        {"trades", ""},
        {"longTrades", ""},
        {"shortTrades", ""},
        {"wins", "trades whose net is above 0"},
        {"winRate", "wins / trades"},
        {"payoff", "mean win / mean loss"},
        {"profitFactor", "Σ wins / Σ losses"},
        {"expectancy", "mean(net)"},
        {"sqn", "√n · mean(net)/sd(net, n−1)"},
        {"kelly", "W − (1 − W)/payoff"},
        {"bestTrade", "max(net)"},
        {"worstTrade", "min(net)"},
        {"maxConsecutiveWins", ""},
        {"maxConsecutiveLosses", ""},
        {"averageDurationMinutes", "mean(close − open)"},
        {"exposure", "time with an open position / time"},
        {"commission", "Σ commission, a cost"},
        {"swap", "Σ swap, signed"},
        {"spreadCost", "Σ distance of bid and ask paid, within the profit"},
        {"var95", "−q, q = 5 % quantile of r, linear between neighbours at (n−1)·0.05"},
        {"es95", "−mean(r where r ≤ q)"},
        {"skew", "m3/m2^1.5, m = population moments of r"},
        {"kurtosis", "m4/m2² − 3"},
        {"psr",
            "Φ(SR·√(n−1)/√(1 − γ3·SR + (γ4−1)/4·SR²)), SR = mean(r)/sd(r), γ3 = skew, γ4 = excess kurtosis + "
            "3"},
        {"buyAndHold", "last mid / first mid − 1"},
        {"worstDay", "min(lowest equity / the day's first equity − 1)"},
        {"dailyLimitUse", "largest loss of a day / its limit"},
        {"totalLimitUse", "largest loss since the start / the limit"},
        {"ambiguousExits", "trades whose last minute held both levels"},
        {"refusals", ""},
    };
    const auto rows = figureRows();
    REQUIRE(rows.size() == formulas.size());
    for (std::size_t number = 0; number < rows.size(); ++number) {
        CHECK_EQ(rows[number].key, formulas[number].first);
        CHECK_EQ(rows[number].formula, formulas[number].second);
    }
}

CHECK_MAIN()
