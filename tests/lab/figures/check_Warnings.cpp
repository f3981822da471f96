#include "lab/core/figures/Warnings.h"
#include "practice/Check.h"

#include "Runs.h"

#include <algorithm>

using namespace lab;

namespace {

bool warns(const RunResult& result, std::string_view part)
{
    const std::vector<std::string> warnings = figuresOf(result).warnings;
    return std::any_of(warnings.begin(), warnings.end(),
        [=](const std::string& text) { return text.find(part) != std::string::npos; });
}

/// Sixty days and forty trades that nothing is to be said against.
RunResult soundRun()
{
    std::vector<practice::Cents> equities;
    for (int day = 1; day <= 60; ++day)
        equities.push_back(100'000 + day * 500 - (day % 3 == 0 ? 400 : 0));
    RunResult result = runs::withEquities(equities);
    for (int ticket = 1; ticket <= 40; ++ticket)
        result.trades.push_back(runs::trade(ticket, ticket % 4 == 0 ? -500 : 1000));
    return result;
}

} // namespace

TEST_CASE("a sound run is warned of nothing")
{
    CHECK_EQ(figuresOf(soundRun()).warnings.size(), std::size_t{0});
}

TEST_CASE("few trades are warned of and none at all otherwise")
{
    RunResult result = soundRun();
    result.trades.resize(30);
    CHECK(!warns(result, "trade"));
    result.trades.resize(29);
    CHECK(warns(result, "Only 29 trades"));
    result.trades.resize(1);
    CHECK(warns(result, "Only 1 trade:"));
    result.trades.clear();
    CHECK(warns(result, "There was no trade."));
}

TEST_CASE("few days are warned of")
{
    RunResult result = soundRun();
    result.days.resize(29);
    CHECK(warns(result, "Only 29 days with prices"));
}

TEST_CASE("figures by the year are warned of where they are stretched from less than sixty days")
{
    RunResult result = soundRun();
    CHECK(!warns(result, "early figures"));
    result.days.resize(59);
    CHECK(warns(result,
        "Yearly figures from 59 days say little: growth, volatility and the Sharpe, Sortino and Calmar "
        "ratios "
        "are stretched to a year."));
    // Without any such figure there is nothing to warn of.
    CHECK(!warns(RunResult(), "early figures"));
}

TEST_CASE("sums below nothing have the minus sign that the figures have")
{
    RunResult result = runs::withEquities({101'000, 99'000});
    result.trades = {runs::trade(1, -11'052)};
    CHECK(verdictOf(result, figuresOf(result))
              .find("Net profit \xE2\x88\x92"
                    "110.52 (\xE2\x88\x92"
                    "11.1 %)")
        != std::string::npos);
    result.trades[0].ambiguous = true;
    result.trades[0].otherProfit = -20'000;
    CHECK(warns(result,
        "would be \xE2\x88\x92"
        "200.00 instead of \xE2\x88\x92"
        "110.52."));
}

TEST_CASE("an ambiguous exit is shown both ways")
{
    RunResult result = soundRun();
    result.trades[0].ambiguous = true;
    result.trades[0].otherProfit = -2'000;
    CHECK(warns(result, "Of 40 trades, 1 closed in a minute"));
    CHECK(warns(result, "net profit would be 220.00 instead of 250.00."));
}

TEST_CASE("simulated prices show risk and never an edge")
{
    RunResult result = soundRun();
    result.simulated = true;
    CHECK(warns(result, "never an edge"));
}

TEST_CASE("a script's error comes with its name and line")
{
    RunResult result = soundRun();
    result.error = "cross.js:7: x is not defined";
    CHECK(warns(result, "The run ended early: cross.js:7: x is not defined"));
    CHECK(verdictOf(result, figuresOf(result)).find("ended early") != std::string::npos);
}

TEST_CASE("the run's own warnings come first")
{
    RunResult result = soundRun();
    result.simulated = true;
    result.warnings = {"A hole of three days."};
    const std::vector<std::string> warnings = figuresOf(result).warnings;
    REQUIRE(warnings.size() == 2);
    CHECK_EQ(warnings[0], std::string("A hole of three days."));
}

TEST_CASE("an account of which nothing is left is warned of")
{
    CHECK(warns(runs::withEquities({50'000, 0}), "Nothing of the account was left"));
    CHECK(!warns(runs::withEquities({50'000, 1}), "Nothing of the account was left"));
}

TEST_CASE("a Sharpe ratio that may be luck is warned of")
{
    RunResult result = runs::withEquities({101'000, 99'000, 101'000, 100'500});
    CHECK(warns(result, "The probability that the true Sharpe ratio is above 0 is 5"));
    CHECK(warns(result, " %: below 95 % it may be luck."));
}

TEST_CASE("a Sharpe ratio below 0 is called a loss, and never luck")
{
    const RunResult result = runs::withEquities({99'000, 98'000, 98'500, 96'000});
    CHECK(!warns(result, "luck"));
    CHECK(warns(result,
        "The days lost on average: the Sharpe ratio is below 0. The probability that the true one is above 0 "
        "is "));
}

TEST_CASE("orders that were refused are counted")
{
    RunResult result = soundRun();
    result.refusals = 3;
    CHECK(warns(result, "3 orders refused."));
}

TEST_CASE("the verdict says profit and trades and depth and how the plan ended")
{
    RunResult result = soundRun();
    result.equityDrawdown = {.fraction = 0.0512, .money = 5'000};
    result.outcome = PlanOutcome::DailyLoss;
    CHECK_EQ(verdictOf(result, figuresOf(result)),
        std::string("Net profit 250.00 (25.0 %) in 40 trades over 60 calendar days, deepest fall of equity "
                    "5.1 %. The plan "
                    "failed: the daily loss limit was reached."));
    CHECK(warns(result, "daily loss limit was reached"));
}

TEST_CASE("a run without anything has a verdict too")
{
    const RunResult result;
    CHECK_EQ(verdictOf(result, figuresOf(result)),
        std::string("Net profit 0.00 in 0 trades over 0 calendar days, deepest fall of equity 0.0 %."));
}

CHECK_MAIN()
