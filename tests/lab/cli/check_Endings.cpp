#include "lab/cli/RunFolder.h"
#include "practice/Check.h"

#include <csignal>

using Result = LabProcess::Result;

TEST_CASE("a script that fails ends early, with a report up to there")
{
    const RunFolder bench;
    bench.write(
        "Fails.js", "var ticks = 0;\nfunction OnTick() {\n    if (++ticks === 500)\n        missing();\n}\n");
    const Result result = bench.run("Fails.js");
    CHECK_EQ(result.exitCode, 1);
    CHECK(contains(result.output, "ended early"));
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "missing"));
    CHECK(contains(result.errors, "4"));
    CHECK(bench.filesIn("Fails-EURUSD") == resultFiles);
    CHECK_EQ(bench.json("Fails-EURUSD/summary.json").at("ticks").get<int>(), 500);
    CHECK(contains(bench.contentOf("Fails-EURUSD/report.html"), "ended early"));
    // Four calls a minute, after a hundred bars.
    CHECK_EQ(
        bench.json("Fails-EURUSD/run.json").at("errorTime").get<std::string>(), "2024-01-02T03:04:59.999Z");
    CHECK(contains(bench.contentOf("Fails-EURUSD/report.html"),
        "to 2024-01-07 00:00 UTC, ended early on 2024-01-02 03:04</p>"));
    CHECK(contains(result.errors, "ended early, on 2024-01-02 03:04 UTC: Fails"));
    CHECK_EQ(bench.run(crossing).exitCode, 0);
    CHECK(bench.json("MA_Cross-EURUSD/run.json").at("errorTime").is_null());
}

TEST_CASE("a script that never returns is ended by the limit")
{
    const RunFolder bench;
    bench.write("Endless.js", "function OnTick() { for (;;); }\n");
    const Result result = bench.run("Endless.js", {"--limit", "0.2"});
    CHECK_EQ(result.exitCode, 1);
    CHECK(contains(result.errors, "0.2 seconds"));
    CHECK(bench.filesIn("Endless-EURUSD") == resultFiles);
}

TEST_CASE("a script that hangs in a regular expression is ended by the limit, and nothing is written")
{
    const RunFolder bench;
    bench.write("Deaf.js", "function OnTick() { /^a*a*a*a*a*a*a*a*a*a*a*a*b/.test('a'.repeat(99)); }\n");
    for (const std::string command : {"run", "check"}) {
        // A clock of its own, so that it fails where it would wait for ever.
        const Result result = bench.lab.runWithin({"timeout", "-s", "KILL", "30"},
            {command, "Deaf.js", "--data", "EURUSD-1m.csv", "--warmup", "100", "--limit", "0.2"});
        CHECK_EQ(result.exitCode, 1);
        CHECK(isOneLine(result.errors));
        CHECK(contains(result.errors, "Deaf: not at its end after 0.2 seconds"));
        CHECK(bench.filesIn("Deaf-EURUSD").empty());
    }
}

TEST_CASE("interrupted it keeps what was done and says so")
{
    const RunFolder bench;
    const Result result = bench.lab.runOnTerminal(
        {"run", crossing, "--symbol", "EURUSD", "--seed", "1", "--from", "2024-01-01", "--to", "2024-02-01",
            "--warmup", "100", "--model", "feed"},
        SIGINT);
    CHECK_EQ(result.exitCode, 130);
    CHECK(contains(result.output, "ended early"));
    CHECK(bench.filesIn("MA_Cross-EURUSD") == resultFiles);
    const auto summary = bench.json("MA_Cross-EURUSD/summary.json");
    CHECK(summary.at("ticks").get<double>() > 0);
    CHECK(summary.at("days").get<double>() < 31);
    CHECK(contains(bench.contentOf("MA_Cross-EURUSD/run.json"), "Stopped"));
}

TEST_CASE("interrupted before the run has begun it writes nothing")
{
    const RunFolder bench;
    const Result result
        = bench.lab.runOnTerminal({"run", crossing, "--symbol", "EURUSD", "--seed", "1", "--from",
                                      "2024-01-01", "--to", "2024-02-01", "--warmup", "100"},
            SIGTERM, "Simulating EURUSD");
    CHECK_EQ(result.exitCode, 143);
    CHECK_EQ(result.output, "");
    CHECK(contains(result.errors, "stopped before the first run; nothing was written"));
    CHECK_EQ(bench.filesIn(".").size(), 1U);
}

TEST_CASE("on a terminal it tells how far it is, in a pipe it does not")
{
    const RunFolder bench;
    const Result result
        = bench.lab.runOnTerminal({"run", crossing, "--data", "EURUSD-1m.csv", "--warmup", "100"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.errors, " %"));
    CHECK(contains(result.errors, "Reading EURUSD-1m.csv"));
    CHECK(contains(result.errors, "MA_Cross"));
    CHECK(result.errors.ends_with("\r\x1b[K"));
    CHECK(!contains(result.output, "\x1b"));
}

CHECK_MAIN()
