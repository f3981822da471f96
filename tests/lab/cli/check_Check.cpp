#include "practice/Check.h"
#include "lab/cli/RunFolder.h"

using Result = LabProcess::Result;

TEST_CASE("a check passes for the examples and writes its run")
{
    const RunFolder bench;
    const Result result = bench.lab.run(
        {"check", crossing, "--data", "EURUSD-1m.csv", "--warmup", "100", "--out", "checked"});
    CHECK(contains(result.output, "future      holds"));
    CHECK(contains(result.output, "warm-up     holds"));
    CHECK(contains(result.output, "repetition  holds"));
    CHECK_EQ(result.exitCode, contains(result.output, "FAILS") ? 1 : 0);
    CHECK(bench.filesIn("checked") == resultFiles);
}

TEST_CASE("a check finds a script whose trades depend on the warm-up, and warns in the report")
{
    const RunFolder bench;
    bench.write("Counts.js",
        "function OnTick() { if (Bars() % 40 === 0 && Positions.count() === 0) Trade.buy(0.1, { slPoints: 30,"
        " tpPoints: 30 }); }\n");
    const Result result = bench.lab.run(
        {"check", "Counts.js", "--data", "EURUSD-1m.csv", "--warmup", "102", "--out", "checked"});
    CHECK_EQ(result.exitCode, 1);
    CHECK(contains(result.output, "warm-up     FAILS"));
    CHECK(contains(result.output, "future      holds"));
    CHECK(bench.json("checked/summary.json")
              .at("warnings")
              .at(0)
              .get<std::string>()
              .starts_with("Check failed (warm-up): "));
    CHECK(contains(bench.contentOf("checked/report.html"), "Check failed (warm-up)"));
}

TEST_CASE("a check of a script that never trades proves nothing and says so")
{
    const RunFolder bench;
    bench.write("Idle.js", "function OnTick() {}\n");
    const Result result = bench.lab.run(
        {"check", "Idle.js", "--data", "EURUSD-1m.csv", "--warmup", "100", "--out", "checked"});
    CHECK_EQ(result.exitCode, 1);
    CHECK(contains(result.output, "future      not comparable"));
    CHECK(contains(result.output, "warm-up     not comparable"));
    CHECK(contains(result.output, "repetition  holds"));
    CHECK(contains(bench.contentOf("checked/report.html"), "Check without anything to compare (future)"));
}

CHECK_MAIN()
