#include "SampleRun.h"
#include "lab/core/figures/FigureTable.h"
#include "lab/core/output/ResultFiles.h"
#include "practice/Check.h"

#include <nlohmann/json.hpp>

#include <limits>

using namespace lab;
using samples::smallRun;

TEST_CASE("closed trades have the published columns")
{
    CHECK_EQ(tradesCsv(smallRun()),
        "ticket,symbol,side,lots,openTime,openPrice,closeTime,closePrice,stopLoss,takeProfit,profit,"
        "commission,swap,net,reason,mae,mfe,ambiguous\n"
        "1,EURUSD,BUY,0.10,2024-01-01T01:00:00.000Z,1.10000,2024-01-01T02:00:00.345Z,1.10500,,1.10500,50.00,"
        "0.35,-0.07,49.58,TP,-12.01,50.00,0\n"
        "2,EURUSD,SELL,1.00,2024-01-02T01:00:00.000Z,1.10500,2024-01-02T02:00:00.000Z,1.10605,1.10600,1."
        "10000,"
        "-105.00,3.50,0.00,-108.50,SL,-105.00,0.00,1\n");
}

TEST_CASE("the other ways out have their words")
{
    RunResult run = smallRun();
    run.trades.resize(1);
    const auto reasonOf = [&](ExitReason reason) {
        run.trades[0].reason = reason;
        const std::string csv = tradesCsv(run);
        const std::size_t net = csv.find("49.58,") + 6;
        return csv.substr(net, csv.find(',', net) - net);
    };
    CHECK_EQ(reasonOf(ExitReason::Script), "SCRIPT");
    CHECK_EQ(reasonOf(ExitReason::End), "END");
    CHECK_EQ(reasonOf(ExitReason::Margin), "MARGIN");
    CHECK_EQ(reasonOf(ExitReason::Rule), "RULE");
}

TEST_CASE("a symbol with a comma stays in its column")
{
    RunResult run = smallRun();
    run.settings.symbol = "A,\"B\"";
    CHECK(tradesCsv(run).find("\n1,\"A,\"\"B\"\"\",BUY,") != std::string::npos);
}

TEST_CASE("equity is written point by point")
{
    CHECK_EQ(equityCsv(smallRun()),
        "time,balance,equity\n"
        "2024-01-01T00:00:00.000Z,100000.00,100000.00\n"
        "2024-01-01T02:00:00.345Z,100049.58,100049.58\n"
        "2024-01-02T00:00:00.000Z,100049.58,100049.58\n"
        "2024-01-02T02:00:00.000Z,99941.08,99941.08\n"
        "2024-01-03T00:00:00.000Z,99941.08,99941.08\n");
}

TEST_CASE("days begin with the starting balance the day before")
{
    CHECK_EQ(dailyCsv(smallRun()),
        "date,balance,equity\n"
        "2023-12-31,100000.00,100000.00\n"
        "2024-01-01,100049.58,100049.58\n"
        "2024-01-02,99941.08,99941.08\n");
}

TEST_CASE("a run without anything has header lines alone")
{
    const RunResult nothing;
    CHECK_EQ(tradesCsv(nothing).find('\n') + 1, tradesCsv(nothing).size());
    CHECK_EQ(equityCsv(nothing), "time,balance,equity\n");
    CHECK_EQ(dailyCsv(nothing), "date,balance,equity\n");
    CHECK_EQ(journalText(nothing), "");
}

TEST_CASE("each entry of the journal is one line behind its time")
{
    CHECK_EQ(journalText(smallRun()),
        "2024-01-01T01:00:00.000Z bought\n"
        "2024-01-02T02:00:00.000Z stopped out\n");
}

TEST_CASE("a run says what it was")
{
    CHECK_EQ(runJson(smallRun(), "1.0.1"), R"json({
  "format": 1,
  "version": "1.0.1",
  "scriptHash": "0000000000001234",
  "dataHash": "fedcba9876543210",
  "tickPrint": "0000000000000001",
  "decisionPrint": "0000000000000000",
  "symbol": "EURUSD",
  "timeframe": "15m",
  "from": "2024-01-01T00:00:00.000Z",
  "to": "2024-01-03T00:00:00.000Z",
  "warmup": 1500,
  "warmupWanted": 1500,
  "model": "ohlc",
  "extremes": "usual",
  "spread": null,
  "delay": 0,
  "account": "demo",
  "balance": 100000.00,
  "leverage": 100,
  "seed": 1,
  "simulated": false,
  "speed": null,
  "inputs": {
    "Fast": "5",
    "Name": "\"slow \u0026 steady\""
  },
  "changedInputs": ["Fast", "Name"],
  "outcome": "none",
  "outcomeTime": null,
  "error": null,
  "errorTime": null
}
)json");
}

TEST_CASE("an early end and a failed plan are in the run's file")
{
    RunResult run = smallRun();
    run.settings.rules = AccountRules::Plan;
    run.settings.spreadPoints = 12;
    run.outcome = PlanOutcome::DailyLoss;
    run.outcomeTime = samples::monday;
    run.error = "average.js:3: no such name";
    run.errorTime = samples::monday + practice::hourMs;
    const auto json = nlohmann::json::parse(runJson(run, "1"));
    CHECK_EQ(json.at("account"), "plan");
    CHECK_EQ(json.at("spread"), 12);
    CHECK_EQ(json.at("outcome"), "daily-loss");
    CHECK_EQ(json.at("outcomeTime"), "2024-01-01T00:00:00.000Z");
    CHECK_EQ(json.at("error"), "average.js:3: no such name");
    CHECK_EQ(json.at("errorTime"), "2024-01-01T01:00:00.000Z");
}

TEST_CASE("the summary has every figure in its order, and null where there is none")
{
    Figures figures;
    figures.from = static_cast<double>(samples::monday);
    figures.ticks = 1'000'000;
    figures.startBalance = 10'000'000;
    figures.expectancy = -29.46;
    figures.sharpe = 1.0 / 3;
    figures.sortino = std::numeric_limits<double>::infinity();
    figures.trades = 0;
    figures.warnings = {"Few trades: \"2\"", "second"};
    const std::string text = summaryJson(figures);
    const auto json = nlohmann::ordered_json::parse(text);
    std::string keys;
    for (const auto& [key, value] : json.items())
        keys += key + ' ';
    CHECK_EQ(keys,
        "from to days bars ticks ticksPerBar annualDays startBalance endBalance endEquity netProfit cagr "
        "volatility sharpe sortino calmar maxDrawdown maxDrawdownMoney maxDrawdownBalance "
        "longestDrawdownDays "
        "averageDrawdown recoveryFactor ulcerIndex trades longTrades shortTrades wins winRate payoff "
        "profitFactor expectancy sqn kelly bestTrade worstTrade maxConsecutiveWins maxConsecutiveLosses "
        "averageDurationMinutes exposure commission swap spreadCost var95 es95 skew kurtosis psr buyAndHold "
        "worstDay dailyLimitUse totalLimitUse ambiguousExits refusals warnings ");
    CHECK_EQ(json.at("from"), "2024-01-01T00:00:00.000Z");
    CHECK(json.at("to").is_null());
    CHECK(json.at("sortino").is_null());
    CHECK_EQ(json.at("sharpe").get<double>(), 1.0 / 3);
    CHECK(text.find("\"ticks\": 1000000,\n") != std::string::npos);
    CHECK(text.find("\"startBalance\": 100000.00,\n") != std::string::npos);
    CHECK(text.find("\"expectancy\": -0.29,\n") != std::string::npos);
    CHECK(text.find("\"trades\": 0,\n") != std::string::npos);
    CHECK(text.ends_with("\"warnings\": [\"Few trades: \\\"2\\\"\", \"second\"]\n}\n"));
}

CHECK_MAIN()
