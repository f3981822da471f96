#include "lab/core/figures/FigureTable.h"
#include "practice/Check.h"

#include "Runs.h"

#include <cmath>

using namespace lab;

namespace {

bool isAbsent(const Figure& figure)
{
    return !figure.has_value();
}

} // namespace

TEST_CASE("a gain of a tenth in a year is a growth of a tenth a year")
{
    RunResult result = runs::withEquities({105'000, 110'000});
    result.days[1].day = result.days[0].day + 730; // 731 days: two years and half a day
    const Figures figures = figuresOf(result);
    CHECK_EQ(figures.days, Figure(731));
    CHECK_NEAR(figures.cagr.value(), std::pow(1.1, 365.25 / 731) - 1, 1e-15);
}

TEST_CASE("ratios a year follow from the mean and the deviation of a day")
{
    const RunResult result = runs::withEquities({110'000, 99'000, 108'900}); // +10 %, -10 %, +10 %
    const Figures figures = figuresOf(result);
    const double mean = 0.1 / 3;
    const double deviation = std::sqrt((2 * (0.1 - mean) * (0.1 - mean) + (0.1 + mean) * (0.1 + mean)) / 2);
    CHECK_EQ(figures.annualDays, Figure(252));
    CHECK_NEAR(figures.volatility.value(), deviation * std::sqrt(252.0), 1e-12);
    CHECK_NEAR(figures.sharpe.value(), mean / deviation * std::sqrt(252.0), 1e-12);
    CHECK_NEAR(figures.sortino.value(), mean / std::sqrt(0.01 / 3) * std::sqrt(252.0), 1e-12);
}

TEST_CASE("a symbol that trades at weekends has a year of 365 days")
{
    RunResult result = runs::withEquities({110'000, 99'000});
    const double weekdays = figuresOf(result).volatility.value();
    result.weekendsTrade = true;
    CHECK_EQ(figuresOf(result).annualDays, Figure(365));
    CHECK_NEAR(figuresOf(result).volatility.value() / weekdays, std::sqrt(365.0 / 252), 1e-12);
}

TEST_CASE("without trades no figure of trades is given and none is 0")
{
    const Figures figures = figuresOf(runs::withEquities({100'000, 100'000}));
    for (const Figure Figures::*figure :
        {&Figures::winRate, &Figures::payoff, &Figures::profitFactor, &Figures::expectancy, &Figures::sqn,
            &Figures::kelly, &Figures::bestTrade, &Figures::worstTrade, &Figures::averageDurationMinutes})
        CHECK(isAbsent(figures.*figure));
    CHECK_EQ(figures.trades, Figure(0));
    CHECK_EQ(figures.netProfit, Figure(0));
}

TEST_CASE("without losses there is neither profit factor nor payoff")
{
    const Figures figures = figuresOf(runs::withTrades({100, 200}));
    CHECK(isAbsent(figures.profitFactor));
    CHECK(isAbsent(figures.payoff));
    CHECK(isAbsent(figures.kelly));
    CHECK_EQ(figures.winRate, Figure(1));
}

TEST_CASE("without wins the profit factor is really 0 and there is no payoff")
{
    const Figures figures = figuresOf(runs::withTrades({-100, -200}));
    CHECK_EQ(figures.profitFactor, Figure(0));
    CHECK(isAbsent(figures.payoff));
    CHECK_EQ(figures.winRate, Figure(0));
}

TEST_CASE("a flat line has a volatility of 0 and no ratio")
{
    const Figures figures = figuresOf(runs::withEquities({100'000, 100'000, 100'000}));
    CHECK_EQ(figures.volatility, Figure(0));
    CHECK_EQ(figures.cagr, Figure(0));
    for (const Figure Figures::*figure :
        {&Figures::sharpe, &Figures::sortino, &Figures::calmar, &Figures::skew, &Figures::kurtosis,
            &Figures::psr, &Figures::averageDrawdown, &Figures::recoveryFactor})
        CHECK(isAbsent(figures.*figure));
}

TEST_CASE("equal returns are no deviation whatever their mean is rounded to")
{
    const Figures figures = figuresOf(runs::withEquities({110'000, 121'000, 133'100}));
    CHECK_EQ(figures.volatility, Figure(0));
    CHECK(isAbsent(figures.sharpe));
}

TEST_CASE("a single day has no figure of days")
{
    const Figures figures = figuresOf(runs::withEquities({110'000}));
    for (const Figure Figures::*figure : {&Figures::cagr, &Figures::volatility, &Figures::sharpe,
             &Figures::var95, &Figures::es95, &Figures::skew, &Figures::psr})
        CHECK(isAbsent(figures.*figure));
    CHECK_EQ(figures.days, Figure(1));
}

TEST_CASE("an account that is ruined has no growth and its returns end there")
{
    const Figures ruined = figuresOf(runs::withEquities({90'000, 45'000, -500, -500}));
    CHECK(isAbsent(ruined.cagr));
    CHECK(isAbsent(ruined.calmar));
    CHECK(isAbsent(figuresOf(runs::withEquities({90'000, -500, 50'000})).cagr));
    // -10 %, -50 %, -101.1 %; nothing for the day after
    CHECK_NEAR(ruined.var95.value(), 455.0 / 450 - 0.1 * (455.0 / 450 - 0.5), 1e-12);
    CHECK_NEAR(ruined.es95.value(), 455.0 / 450, 1e-12);
}

TEST_CASE("a growth beyond all numbers is none")
{
    CHECK(isAbsent(figuresOf(runs::withEquities({1'000'000'000'000'000, 1'000'000'000'000'001}, 1)).cagr));
}

TEST_CASE("no figure is ever infinite or a negative zero")
{
    for (const RunResult& result : {runs::withEquities({}), runs::withEquities({100'000, 100'000}),
             runs::withEquities({100'000, 101'000}), runs::withEquities({0, 0}),
             runs::withEquities({50'000, 100'000}, 0), runs::withTrades({}), runs::withTrades({0}),
             runs::withTrades({1, -1}), RunResult()}) {
        const Figures figures = figuresOf(result);
        for (const FigureRow& row : figureRows()) {
            const Figure figure = row.of(figures);
            CHECK(!figure || (std::isfinite(*figure) && !(*figure == 0 && std::signbit(*figure))));
        }
    }
}

TEST_CASE("a trade whose net is 0 is neither win nor loss and ends a run of either")
{
    RunResult result = runs::withTrades({100, 100, 30, 100, -100, 20, -100});
    result.trades[2].commission = 30;
    result.trades[5].swap = -20;
    const Figures figures = figuresOf(result);
    CHECK_EQ(figures.wins, Figure(3));
    CHECK_EQ(figures.maxConsecutiveWins, Figure(2));
    CHECK_EQ(figures.maxConsecutiveLosses, Figure(1));
    CHECK_EQ(figures.winRate, Figure(3.0 / 7));
    CHECK_EQ(figures.commission, Figure(30));
    CHECK_EQ(figures.swap, Figure(-20));
    CHECK_EQ(figures.netProfit, Figure(100));
}

TEST_CASE("drawdowns are those of daily equity and last until it is as high again")
{
    const RunResult result
        = runs::withEquities({110'000, 99'000, 88'000, 110'000, 120'000, 114'000, 115'000});
    const Figures figures = figuresOf(result);
    CHECK_EQ(figures.longestDrawdownDays, Figure(3));
    CHECK_NEAR(figures.averageDrawdown.value(), (0.2 + 0.05) / 2, 1e-15);
    const double squares = 0.1 * 0.1 + 0.2 * 0.2 + 0.05 * 0.05 + 25.0 / (24 * 24 * 25);
    CHECK_NEAR(figures.ulcerIndex.value(), std::sqrt(squares / 7), 1e-15);
}

TEST_CASE("the limits of a plan are used up by its worst day and its lowest equity")
{
    RunResult result = runs::withEquities({104'000, 98'000}, 100'000);
    result.days[1].lowestEquity = 97'000;
    CHECK(isAbsent(figuresOf(result).dailyLimitUse));
    result.settings.rules = AccountRules::Plan;
    const Figures figures = figuresOf(result);
    CHECK_NEAR(figures.worstDay.value(), -7.0 / 104, 1e-15);
    CHECK_NEAR(figures.dailyLimitUse.value(), 7.0 / 104 / 0.05, 1e-12);
    CHECK_NEAR(figures.totalLimitUse.value(), 0.3, 1e-12);
}

CHECK_MAIN()
