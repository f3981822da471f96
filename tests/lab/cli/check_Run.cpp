#include "lab/cli/RunFolder.h"
#include "practice/Check.h"

#include <cstdlib>
#include <iostream>

using Result = LabProcess::Result;

namespace {

const std::string documented = std::string(PROJECT_ROOT) + "/docs/examples/";

} // namespace

TEST_CASE("a run writes its files and prints what it comes to")
{
    const RunFolder bench;
    const Result result = bench.run(crossing);
    CHECK_EQ(result.exitCode, 0);
    CHECK_EQ(result.errors, "");
    CHECK(contains(result.output, "Net profit"));
    CHECK(contains(result.output, "MA_Cross-EURUSD/report.html\n"));
    CHECK(!contains(result.output, "\x1b"));
    CHECK(bench.filesIn("MA_Cross-EURUSD") == resultFiles);
    CHECK(bench.json("MA_Cross-EURUSD/summary.json").at("trades").get<int>() > 5);
    CHECK_EQ(bench.json("MA_Cross-EURUSD/run.json").at("symbol").get<std::string>(), "EURUSD");
    CHECK(contains(bench.contentOf("MA_Cross-EURUSD/journal.txt"), "MA_Cross started on EURUSD"));
}

TEST_CASE("an input changes the run, and is written down")
{
    const RunFolder bench;
    CHECK_EQ(bench.run(crossing, {"--out", "one"}).exitCode, 0);
    CHECK_EQ(bench.run(crossing, {"--out", "two", "--set", "Slow=40", "--set", "Fast=5"}).exitCode, 0);
    CHECK(bench.contentOf("one/trades.csv") != bench.contentOf("two/trades.csv"));
    CHECK_EQ(bench.json("two/run.json").at("inputs").dump(), R"({"Fast":"5","Lots":"0.10","Slow":"40"})");
}

TEST_CASE("a run tells all inputs of its script, and which of them were changed")
{
    const RunFolder bench;
    bench.write("Idle.js",
        "var Fast = 10; // bars\nvar Slow = 30;\nvar Mode = 'calm';\nvar calls = 0;\n"
        "function OnTick() { ++calls; }\n");
    CHECK_EQ(bench.run("Idle.js", {"--out", "one", "--set", "Slow=40", "--set", "Fast=10"}).exitCode, 0);
    CHECK_EQ(bench.json("one/run.json").at("inputs").dump(), R"({"Fast":"10","Mode":"'calm'","Slow":"40"})");
    CHECK_EQ(bench.json("one/run.json").at("changedInputs").dump(), R"(["Slow"])");
    const std::string page = bench.contentOf("one/report.html");
    CHECK(contains(page, "<th scope=\"row\">Fast</th><td>10</td>"));
    CHECK(contains(page, "<th scope=\"row\">Slow</th><td>40 (changed)</td>"));
    CHECK(!contains(page, "<th scope=\"row\">calls</th>"));
}

TEST_CASE("a single bar is a run, and no bar is none")
{
    const RunFolder bench;
    const std::string header = "time,open,high,low,close,volume\n";
    bench.write("EURUSD-1m.csv", header + "2024-01-01T00:00:00Z,1.1,1.2,1.0,1.15,9\n");
    CHECK_EQ(bench.lab.run({"run", crossing, "--data", "EURUSD-1m.csv", "--out", "one"}).exitCode, 0);
    CHECK_EQ(bench.json("one/summary.json").at("bars").get<int>(), 1);
    CHECK_EQ(bench.json("one/summary.json").at("ticks").get<int>(), 4);
    CHECK(bench.json("one/summary.json").at("sharpe").is_null());
    bench.write("EURUSD-1m.csv", header);
    const Result none = bench.lab.run({"run", crossing, "--data", "EURUSD-1m.csv", "--out", "none"});
    CHECK_EQ(none.exitCode, 2);
    CHECK_EQ(none.errors, "tavoran-lab: EURUSD-1m.csv:1: no minutes\n");
    CHECK(bench.filesIn("none").empty());
}

TEST_CASE("a warm-up shorter than asked for is counted and warned of")
{
    const RunFolder bench;
    const std::string warning
        = "Warm-up of 48 bars instead of 100: the history has no more before the start.";
    CHECK_EQ(bench.run(crossing, {"--from", "2024-01-01T12:00", "--out", "one"}).exitCode, 0);
    CHECK_EQ(bench.json("one/run.json").at("warmup").get<int>(), 48);
    CHECK_EQ(bench.json("one/run.json").at("warmupWanted").get<int>(), 100);
    CHECK_EQ(bench.json("one/summary.json").at("warnings").at(0).get<std::string>(), warning);
    const std::string page = bench.contentOf("one/report.html");
    CHECK(contains(page, warning));
    CHECK(contains(page, "48 instead of 100"));
    CHECK_EQ(bench.run(crossing, {"--from", "2024-01-03", "--out", "two"}).exitCode, 0);
    CHECK_EQ(bench.json("two/run.json").at("warmup").get<int>(), 100);
    CHECK(!contains(bench.contentOf("two/report.html"), "Warm-up of"));
}

TEST_CASE("a short history is run through without naming start or warm-up")
{
    const RunFolder bench;
    const Result result
        = bench.lab.run({"run", crossing, "--data", "EURUSD-1m.csv", "--timeframe", "1h", "--out", "one"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "Warm-up of 36 bars instead of 1500"));
    CHECK_EQ(bench.json("one/run.json").at("from").get<std::string>(), "2024-01-02T12:00:00.000Z");
    const Result refused = bench.lab.run(
        {"run", crossing, "--data", "EURUSD-1m.csv", "--timeframe", "1h", "--warmup", "200", "--out", "two"});
    CHECK_EQ(refused.exitCode, 2);
    CHECK(isOneLine(refused.errors));
    CHECK(contains(refused.errors, "144 bars of 1h, and none after a warm-up of 200; --warmup 36 "));
}

TEST_CASE("falls of equity begin within the run")
{
    const RunFolder bench;
    bench.write(
        "Loses.js", "function OnTick() { Positions.count() === 0 ? Trade.buy(1) : Trade.closeAll(); }\n");
    CHECK_EQ(bench.run("Loses.js", {"--from", "2024-01-03", "--out", "one"}).exitCode, 0);
    CHECK(contains(bench.contentOf("one/daily.csv"), "2024-01-02,100000.00,"));
    const std::string page = bench.contentOf("one/report.html");
    CHECK(contains(page, "2024-01-03 (start)"));
    CHECK(!contains(page, ">2024-01-02<"));
}

TEST_CASE("the reasons of closings are counted on the terminal and on the page")
{
    const RunFolder bench;
    const Result result = bench.run(crossing);
    const std::string trades = bench.contentOf("MA_Cross-EURUSD/trades.csv");
    std::size_t count = 0;
    for (std::size_t place = trades.find(",SCRIPT,"); place != std::string::npos;
         place = trades.find(",SCRIPT,", place + 1))
        ++count;
    REQUIRE(count > 0);
    CHECK(contains(result.output, "\nClosed by  "));
    CHECK(contains(result.output, "SCRIPT " + std::to_string(count)));
    CHECK(contains(bench.contentOf("MA_Cross-EURUSD/report.html"),
        "<th scope=\"row\">SCRIPT</th><td class=\"n\">" + std::to_string(count) + "</td>"));
}

TEST_CASE("a symbol that the platform does not list is warned of")
{
    const RunFolder bench;
    bench.writeMinutes(6, "NZDUSD-1m.csv");
    const Result result = bench.lab.run({"run", crossing, "--data", "NZDUSD-1m.csv", "--warmup", "100"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(
        result.output, "! The practice platform does not list NZDUSD: taken with a contract of 1 NZD"));
    CHECK(contains(
        bench.contentOf("MA_Cross-NZDUSD/report.html"), "<li>The practice platform does not list NZDUSD"));
}

TEST_CASE("the documented examples run as they are")
{
    const RunFolder bench;
    for (const std::string name : {"Session_Breakout", "Range_Reversion"}) {
        const Result result = bench.run(documented + name + ".js", {"--out", name, "--set", "Lots=0.2"});
        CHECK_EQ(result.exitCode, 0);
        CHECK(bench.json(name + "/summary.json").at("trades").get<int>() > 0);
        const Result inputs = bench.lab.run({"inputs", documented + name + ".js"});
        CHECK(contains(inputs.output, "Lots "));
        CHECK(!contains(inputs.output, "  \n"));
    }
}

TEST_CASE("a run's files and prices alone lead another reckoning to the same figures")
{
    const RunFolder bench;
    bench.write("Clock.js",
        "var calls = 0;\n"
        "function OnTick() {\n"
        "    ++calls;\n"
        "    if (new Date().getUTCHours() >= 20) {\n" // before a swap
        "        if (Positions.count() > 0) Trade.closeAll();\n"
        "        return;\n"
        "    }\n"
        "    if (calls % 97 !== 0 || Positions.count() > 0) return;\n"
        "    if (calls % 2 === 0) Trade.buy(2, { slPoints: 40, tpPoints: 60 });\n"
        "    else Trade.sell(1.5, { slPoints: 60, tpPoints: 40 });\n"
        "}\n");
    CHECK_EQ(bench.run("Clock.js", {"--spread", "8", "--out", "r"}).exitCode, 0);
    const auto reckoned = [&bench](const std::string& halfSpread) {
        const std::string folder = bench.folder.path().string();
        return std::system(("/usr/bin/python3 '" + std::string(PROJECT_ROOT)
            + "/tests/lab/cli/figures_from_files.py' '" + folder + "/r' '" + folder + "/EURUSD-1m.csv' "
            + halfSpread + " 100000 > '" + folder + "/reckoned' 2>&1")
                               .c_str());
    };
    const int status = reckoned("0.00004");
    if (status != 0)
        std::cout << bench.contentOf("reckoned");
    CHECK_EQ(status, 0);
    CHECK(reckoned("0.00005") != 0); // it can fail
}

CHECK_MAIN()
