#include "lab/core/figures/FigureTable.h"
#include "practice/Check.h"

#include <set>
#include <string>

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

CHECK_MAIN()
