#include "lab/cli/RunFolder.h"
#include "practice/Check.h"

#include <algorithm>

namespace fs = std::filesystem;
using Result = LabProcess::Result;

namespace {

/// Broken lines put together again.
std::string unwrapped(std::string text)
{
    std::ranges::replace(text, '\n', ' ');
    return text;
}

} // namespace

TEST_CASE("results are compared on the terminal and as a page")
{
    const RunFolder bench;
    CHECK_EQ(bench.run(crossing, {"--out", "one"}).exitCode, 0);
    CHECK_EQ(bench.run(crossing, {"--out", "two", "--set", "Fast=5"}).exitCode, 0);
    const Result result = bench.lab.run({"compare", "one", "two", "--out", "both"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "Net profit"));
    CHECK(contains(result.output, "differ from trade"));
    // What the runs have in common needs no line.
    CHECK(contains(result.output, "\nInput Fast "));
    CHECK(!contains(result.output, "Input Slow"));
    CHECK(!contains(result.output, "\nSymbol "));
    CHECK(bench.filesIn("both") == std::set<std::string>{"compare.html"});
    CHECK(!contains(result.output, "simulated"));
    const Result missing = bench.lab.run({"compare", "one", "nothing"});
    CHECK_EQ(missing.exitCode, 2);
    CHECK(isOneLine(missing.errors));
    CHECK(contains(missing.errors, "nothing"));
}

TEST_CASE("a comparison says which runs have simulated prices")
{
    const RunFolder bench;
    CHECK_EQ(bench.run(crossing, {"--out", "real"}).exitCode, 0);
    for (const std::string seed : {"1", "2"})
        CHECK_EQ(bench.lab
                     .run({"run", crossing, "--symbol", "EURUSD", "--seed", seed, "--from", "2024-01-01",
                         "--to", "2024-01-03", "--warmup", "100", "--out", "seed" + seed})
                     .exitCode,
            0);
    const std::string words = "The prices of seed1 and seed2 are simulated: they can show the risk of a "
                              "strategy, never an edge.";
    const Result result = bench.lab.run({"compare", "seed1", "real", "seed2", "--out", "all"});
    CHECK(contains(unwrapped(result.output), words));
    CHECK(contains(bench.contentOf("all/compare.html"), "<ul class=\"warnings\">\n<li>" + words));
}

TEST_CASE("an account's closed trades get the same page")
{
    const RunFolder bench;
    bench.write("history.json",
        R"([{"id":"a","accountId":"A","symbol":"EURUSD","type":"BUY","orderKind":"MARKET","status":"CLOSED",
"lotSize":"0.10","entryPrice":"1.10000","exitPrice":"1.10500","stopLoss":null,"takeProfit":null,"pnl":"49.65",
"swap":"0.00","commission":"0.35","createdAt":"2024-01-01T22:00:00.000Z","closedAt":"2024-01-02T06:00:00.000Z",
"closeReason":"MANUAL"}])");
    const Result result = bench.lab.run({"report", "history.json"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "history/report.html"));
    CHECK(contains(result.output, "Maximum drawdown"));
    CHECK(bench.filesIn("history") == resultFiles);
    CHECK(bench.json("history/summary.json").at("maxDrawdown").is_null());
    CHECK_EQ(bench.json("history/summary.json").at("netProfit").get<double>(), 49.65);
    bench.write("other.json", "[{]");
    const Result damaged = bench.lab.run({"report", "other.json"});
    CHECK_EQ(damaged.exitCode, 2);
    CHECK(isOneLine(damaged.errors));
    CHECK(!fs::exists(bench.folder / "other"));
}

CHECK_MAIN()
