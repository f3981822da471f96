#include "practice/Check.h"

#include "lab/cli/TradeHistory.h"
#include "lab/cli/UsageError.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/ReportPage.h"
#include "lab/core/output/ResultFiles.h"

#include <algorithm>

using lab::RunResult;
using lab::TradeHistoryWish;

namespace {

/// As the platform sends them, the newest first: two positions and an order that was cancelled.
const std::string reply = R"([
{"id":"c","accountId":"A","symbol":"EURUSD","type":"SELL","orderKind":"MARKET","status":"CLOSED",
 "lotSize":"1.00","entryPrice":"1.10500","exitPrice":"1.10600","pendingPrice":null,"stopLoss":"1.10600",
 "takeProfit":null,"pnl":"-103.50","swap":"0.00","commission":"3.50","createdAt":"2024-01-03T10:00:00.000Z",
 "updatedAt":"2024-01-03T12:00:00.250Z","closedAt":"2024-01-03T12:00:00.250Z","closeReason":"SL"},
{"id":"b","accountId":"A","symbol":"EURUSD","type":"BUY","orderKind":"BUY_LIMIT","status":"CANCELLED",
 "lotSize":"0.10","entryPrice":null,"exitPrice":null,"pnl":"0.00","createdAt":"2024-01-02T10:00:00.000Z"},
{"id":"a","accountId":"A","symbol":"EURUSD","type":"BUY","orderKind":"MARKET","status":"CLOSED",
 "lotSize":"0.10","entryPrice":"1.10000","exitPrice":"1.10500","stopLoss":null,"takeProfit":"1.10500",
 "pnl":"48.58","swap":"-1.07","commission":"0.35","createdAt":"2024-01-01T22:00:00.000Z",
 "updatedAt":"2024-01-02T06:00:00.000Z","closedAt":"2024-01-02T06:00:00.000Z","closeReason":"TP"}
])";

std::string with(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t place = 0; (place = text.find(from, place)) != std::string::npos; place += to.size())
        text.replace(place, from.size(), to);
    return text;
}

std::string refusal(const std::string& text, const TradeHistoryWish& wish = {})
{
    try {
        static_cast<void>(lab::resultOfTrades(text, "h.json", wish));
    } catch (const lab::UsageError& error) {
        return error.what();
    }
    return {};
}

bool warns(const RunResult& result, const std::string& part)
{
    return std::ranges::any_of(
        result.warnings, [&part](const std::string& text) { return text.find(part) != std::string::npos; });
}

} // namespace

TEST_CASE("closed positions become trades in the order of closing")
{
    const RunResult result = lab::resultOfTrades(reply, "h.json", {{}, 5'000'000});
    REQUIRE(result.trades.size() == 2);
    const lab::TradeRow& win = result.trades[0];
    CHECK_EQ(win.ticket, 1);
    CHECK(win.side == practice::Side::Buy);
    CHECK_EQ(win.lots, 10);
    CHECK_EQ(win.openTime, 1'704'146'400'000);
    CHECK_EQ(win.closeTime, 1'704'175'200'000);
    CHECK_EQ(win.openPrice, 1.1);
    CHECK_EQ(win.closePrice, 1.105);
    CHECK_EQ(win.stopLoss, 0);
    CHECK_EQ(win.takeProfit, 1.105);
    CHECK_EQ(win.profit, 5'000);
    CHECK_EQ(win.commission, 35);
    CHECK_EQ(win.swap, -107);
    CHECK_EQ(win.net(), 4'858);
    CHECK(win.reason == lab::ExitReason::TakeProfit);
    CHECK_EQ(result.trades[1].net(), -10'350);
    CHECK(result.trades[1].reason == lab::ExitReason::StopLoss);
    CHECK_EQ(result.settings.symbol, "EURUSD");
    CHECK_EQ(result.digits, 5);
    CHECK_EQ(result.exposedMs, 8 * practice::hourMs + 2 * practice::hourMs + 250);
}

TEST_CASE("equity moves where a position was closed")
{
    const RunResult result = lab::resultOfTrades(reply, "h.json", {{}, 5'000'000});
    REQUIRE(result.days.size() == 3);
    CHECK_EQ(result.days[0].equity, 5'000'000);
    CHECK_EQ(result.days[1].equity, 5'004'858);
    CHECK_EQ(result.days[2].equity, 4'994'508);
    CHECK_EQ(result.balanceDrawdown.money, 10'350);
    CHECK(std::ranges::is_sorted(result.equity, {}, &lab::EquityPoint::time));
    CHECK_EQ(result.equity.front().balance, 5'000'000);
    CHECK_EQ(result.equity.back().balance, 4'994'508);
    CHECK(*result.settings.to > result.equity.back().time);
}

TEST_CASE("what closed trades do not tell is undefined")
{
    const RunResult result = lab::resultOfTrades(reply, "h.json", {});
    const lab::Figures figures = lab::figuresOf(result);
    CHECK(!figures.maxDrawdown && !figures.maxDrawdownMoney && !figures.spreadCost && !figures.ticks);
    CHECK(!figures.worstDay && !figures.ambiguousExits && !figures.buyAndHold && !figures.calmar);
    CHECK_EQ(figures.netProfit.value_or(0), -5'492);
    CHECK_EQ(figures.trades.value_or(0), 2);
    CHECK(figures.maxDrawdownBalance.value_or(0) > 0);
    CHECK(warns(result, "Made of closed trades"));
}

TEST_CASE("the balance at the start is asked for where it is not known")
{
    CHECK(warns(lab::resultOfTrades(reply, "h.json", {}), "100,000.00 USD is assumed"));
    CHECK(!warns(lab::resultOfTrades(reply, "h.json", {{}, 100}), "assumed"));
}

TEST_CASE("payments are no trades, and are told")
{
    const std::string payment = R"([{"id":"p","accountId":"A","symbol":"","type":"BUY","orderKind":"BALANCE",
"status":"CLOSED","lotSize":"0.00","pnl":"250.00","createdAt":"2024-01-02T00:00:00.000Z"},)";
    const RunResult result = lab::resultOfTrades(payment + reply.substr(1), "h.json", {{}, 5'000'000});
    CHECK_EQ(result.trades.size(), 2U);
    CHECK_EQ(result.equity.back().balance, 4'994'508);
    CHECK(warns(result, "Payments are left out: 1, 250.00 USD"));
}

TEST_CASE("results that the prices contradict are told, and those that follow from them are not")
{
    CHECK(!warns(lab::resultOfTrades(reply, "h.json", {}), "fit their prices"));
    // 50.00 is what the prices make, before the costs.
    const RunResult gross = lab::resultOfTrades(with(reply, "\"48.58\"", "\"50.00\""), "h.json", {});
    CHECK(warns(gross,
        "Results do not fit their prices in 1 of 2 trades, first in ticket 1: its pnl of 50.00 is taken as "
        "net, "
        "after 1.42 of costs, and its prices make 50.00 before them."));
    CHECK_EQ(gross.trades[0].net(), 5'000);
    // What a lot of another symbol holds is not known here.
    const std::string other = with(with(reply, "EURUSD", "WHEAT"), "\"48.58\"", "\"50.00\"");
    CHECK(!warns(lab::resultOfTrades(other, "h.json", {}), "fit their prices"));
}

TEST_CASE("a closing that no script is known to have asked for is not called one")
{
    const RunResult manual = lab::resultOfTrades(with(reply, "\"TP\"", "\"MANUAL\""), "h.json", {});
    CHECK(lab::tradesCsv(manual).find(",48.58,MANUAL,,,\n") != std::string::npos);
    const std::string page = lab::reportPage(manual, lab::figuresOf(manual), {"h", {}});
    CHECK(page.find("<th scope=\"row\">MANUAL</th>") != std::string::npos);
    CHECK(page.find("<dt>MANUAL</dt><dd>a person or a script closed it</dd>") != std::string::npos);
    CHECK(page.find("SCRIPT") == std::string::npos);
    for (const char* word : {"\"MARGIN_CALL_2\"", "\"\"", "null"}) {
        const RunResult other = lab::resultOfTrades(with(reply, "\"TP\"", word), "h.json", {});
        CHECK(lab::tradesCsv(other).find(",48.58,OTHER,,,\n") != std::string::npos);
    }
}

TEST_CASE("what was paid in before the first trade is the balance at the start")
{
    const std::string payment = R"([{"id":"p","accountId":"A","symbol":"","type":"BUY","orderKind":"BALANCE",
"status":"CLOSED","lotSize":"0.00","pnl":"10000.00","createdAt":"2024-01-01T21:00:00.000Z"},)";
    const std::string paid = payment + reply.substr(1);
    const RunResult result = lab::resultOfTrades(paid, "h.json", {});
    CHECK_EQ(result.startBalance, 1'000'000);
    CHECK_EQ(result.equity.back().balance, 994'508);
    CHECK(warns(result, "10,000.00 USD were paid in before the first trade, and are taken as the balance"));
    CHECK(!warns(result, "assumed") && !warns(result, "left out"));

    const RunResult chosen = lab::resultOfTrades(paid, "h.json", {{}, 5'000'000});
    CHECK_EQ(chosen.startBalance, 5'000'000);
    CHECK(warns(chosen, "Payments are left out: 1, 10,000.00 USD"));
    const std::string withdrawn = with(paid, "\"10000.00\"", "\"-10.00\"");
    CHECK(warns(lab::resultOfTrades(withdrawn, "h.json", {}), "100,000.00 USD is assumed"));
}

TEST_CASE("days without prices at weekends are left out of the returns")
{
    const std::string friday = with(reply, "2024-01-03T1", "2024-01-08T1"); // a Monday
    const RunResult result = lab::resultOfTrades(friday, "h.json", {});
    CHECK_EQ(result.days.size(), 6U); // Monday to Friday, and Monday
    CHECK(!result.weekendsTrade);
    const std::string saturday = with(reply, "2024-01-03T1", "2024-01-06T1");
    CHECK_EQ(lab::resultOfTrades(saturday, "h.json", {}).days.size(), 6U);
    CHECK(lab::resultOfTrades(saturday, "h.json", {}).weekendsTrade);
}

TEST_CASE("numbers may travel as numbers, and times in a zone of their own")
{
    std::string other = with(reply, "\"48.58\"", "48.58");
    other = with(other, "2024-01-02T06:00:00.000Z", "2024-01-02T08:00:00.123456+02:00");
    const RunResult result = lab::resultOfTrades(other, "h.json", {});
    CHECK_EQ(result.trades[0].net(), 4'858);
    CHECK_EQ(result.trades[0].closeTime, 1'704'175'200'123);
}

TEST_CASE("trades in several symbols stay together, each with its own digits, unless one is chosen")
{
    std::string two = with(reply, "\"a\",\"accountId\":\"A\",\"symbol\":\"EURUSD\"",
        "\"a\",\"accountId\":\"A\",\"symbol\":\"USDJPY\"");
    two = with(
        with(two, "\"1.10000\",\"exit", "\"150.25\",\"exit"), "\"1.10500\",\"stop", "\"150.5\",\"stop");
    const RunResult both = lab::resultOfTrades(two, "h.json", {});
    CHECK_EQ(both.settings.symbol, "EURUSD, USDJPY");
    const std::string csv = lab::tradesCsv(both);
    CHECK(csv.find("\n1,USDJPY,BUY,0.10,2024-01-01T22:00:00.000Z,150.25,") != std::string::npos);
    CHECK(csv.find(",150.50,,1.10,") != std::string::npos);
    CHECK(csv.find("\n2,EURUSD,SELL,1.00,2024-01-03T10:00:00.000Z,1.10500,") != std::string::npos);
    CHECK(
        lab::reportPage(both, lab::figuresOf(both), {"h", {}}).find("<td>USDJPY</td>") != std::string::npos);

    const RunResult one = lab::resultOfTrades(two, "h.json", {"USDJPY", {}});
    CHECK_EQ(one.trades.size(), 1U);
    CHECK_EQ(one.digits, 2);
    CHECK_EQ(refusal(two, {"GBPUSD", {}}), "h.json: no closed trade in GBPUSD; there are EURUSD, USDJPY");
}

TEST_CASE("the files say nothing of what is not known")
{
    const RunResult result = lab::resultOfTrades(reply, "h.json", {});
    CHECK(lab::tradesCsv(result).find(",48.58,TP,,,\n") != std::string::npos);
    const std::string run = lab::runJson(result, "1");
    CHECK(run.find("closedTradesOnly") != std::string::npos);
    CHECK(run.find("model") == std::string::npos);
    const std::string page = lab::reportPage(result, lab::figuresOf(result), {"history", {}});
    CHECK(page.find("What was lost between the closings is not known") != std::string::npos);
    CHECK(page.find("Model of time") == std::string::npos);
    CHECK(page.find("Adverse excursion and net") == std::string::npos);
}

TEST_CASE("what is no history is refused with the row that is to blame")
{
    CHECK_EQ(refusal(""), "h.json: is no list of trades in JSON");
    CHECK_EQ(refusal("{}"), "h.json: is no list of trades in JSON");
    CHECK_EQ(refusal("[1]"), "h.json: row 1 is no record");
    CHECK_EQ(refusal("[]"), "h.json: no closed trade");
    CHECK_EQ(refusal(with(reply, "\"48.58\"", "\"much\"")), "h.json: row 3 has no number as pnl");
    CHECK_EQ(refusal(with(reply, "\"BUY\"", "\"LONG\"")), "h.json: row 3 is neither BUY nor SELL");
    CHECK_EQ(refusal(with(reply, "2024-01-01T22", "yesterday")), "h.json: row 3 has no time as createdAt");
    // One damaged year would make a report of millions of days.
    CHECK_EQ(refusal(with(reply, "2024-01-03T12", "9024-01-03T12")), "h.json: covers more than 100 years");
    CHECK_EQ(refusal(with(reply, "2024-01-03T12", "2123-12-31T12")), "");
    CHECK_EQ(refusal(with(reply, "\"c\",\"accountId\":\"A\"", "\"c\",\"accountId\":\"B\"")),
        "h.json: holds trades of several accounts");
}

CHECK_MAIN()
