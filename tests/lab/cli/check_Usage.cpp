#include "lab/cli/RunFolder.h"
#include "practice/Check.h"

namespace fs = std::filesystem;
using Result = LabProcess::Result;

TEST_CASE("inputs are listed with their comments")
{
    const RunFolder bench;
    const Result result = bench.lab.run({"inputs", crossing});
    CHECK_EQ(result.exitCode, 0);
    CHECK_EQ(result.output,
        "input  value  comment\n"
        "Fast   10     period of the fast EMA\n"
        "Slow   30     period of the slow EMA\n"
        "Lots   0.10\n");
    bench.write("State.js",
        "let lastTrade = 0;\nlet ticks = 0; // so far\nvar Lots = 0.1;\nvar Note = 'ticks = 1';\n"
        "function OnTick() { ++ticks; lastTrade = Time(0); }\n");
    CHECK_EQ(bench.lab.run({"inputs", "State.js"}).output,
        "input      value        comment\n"
        "Lots       0.1\n"
        "Note       'ticks = 1'\n"
        "lastTrade  0            (changed by the script)\n"
        "ticks      0            so far (changed by the script)\n");
    bench.write("None.js", "function OnTick() {}\n");
    CHECK_EQ(bench.lab.run({"inputs", "None.js"}).output, "None.js has no inputs\n");
}

TEST_CASE("what is unknown is answered with what is known, and nothing is written")
{
    const RunFolder bench;
    const Result input = bench.run(crossing, {"--set", "fast=5"});
    CHECK_EQ(input.exitCode, 2);
    CHECK(isOneLine(input.errors));
    CHECK(contains(input.errors, "fast"));
    CHECK(contains(input.errors, "Fast, Slow, Lots"));
    const Result value = bench.run(crossing, {"--set", "Fast=quick"});
    CHECK_EQ(value.exitCode, 2);
    CHECK(isOneLine(value.errors));
    const Result symbol = bench.run(crossing, {"--symbol", "GBPUSD"});
    CHECK_EQ(symbol.exitCode, 2);
    CHECK(contains(symbol.errors, "there are EURUSD"));
    const Result simulated = bench.lab.run({"run", crossing, "--symbol", "EURXXX", "--seed", "1"});
    CHECK_EQ(simulated.exitCode, 2);
    CHECK(contains(simulated.errors, "EURUSD, GBPUSD, USDJPY"));
    const Result script = bench.run("Nothing.js");
    CHECK_EQ(script.exitCode, 2);
    CHECK(isOneLine(script.errors));
    CHECK(contains(script.errors, "Nothing.js"));
    const Result option = bench.run(crossing, {"--fast", "5"});
    CHECK_EQ(option.exitCode, 2);
    CHECK(isOneLine(option.errors));
    CHECK(bench.filesIn(".") == std::set<std::string>{"EURUSD-1m.csv"});
}

TEST_CASE("a damaged record is named with its line, and nothing is written")
{
    const RunFolder bench;
    bench.writeMinutes(6, "EURUSD-1m.csv", "2024-01-01T11:41:00Z,1.1,1.0,1.0,1.1,5");
    const Result result = bench.run(crossing);
    CHECK_EQ(result.exitCode, 2);
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "EURUSD-1m.csv:703: "));
    CHECK(result.output.empty());
    CHECK_EQ(bench.filesIn(".").size(), 1U);
}

TEST_CASE("a file that cannot be read is named with what the system says of it")
{
    const RunFolder bench;
    fs::create_directory(bench.folder / "GBPUSD-1m.csv");
    for (const auto& [file, reason] : {std::pair("USDJPY-1m.csv", "No such file or directory"),
             std::pair("GBPUSD-1m.csv", "Is a directory")}) {
        const Result run = bench.lab.run({"run", crossing, "--data", file});
        CHECK_EQ(run.exitCode, 2);
        CHECK_EQ(run.errors, "tavoran-lab: " + std::string(file) + ": cannot be read: " + reason + '\n');
        for (const std::string command : {"report", "merge"})
            CHECK_EQ(bench.lab.run({command, file}).errors,
                "tavoran-lab: cannot read " + std::string(file) + ": " + reason + '\n');
    }
}

TEST_CASE("the pair that turns a symbol's money into USD is asked for by name")
{
    const RunFolder bench;
    fs::rename(bench.folder / "EURUSD-1m.csv", bench.folder / "EURGBP-1m.csv");
    const Result missing = bench.lab.run({"run", crossing, "--data", "EURGBP-1m.csv"});
    CHECK_EQ(missing.exitCode, 2);
    CHECK(isOneLine(missing.errors));
    CHECK(contains(missing.errors, "EURGBP pays in GBP; add GBPUSD-1m.csv"));
    fs::copy_file(bench.folder / "EURGBP-1m.csv", bench.folder / "GBPUSD-1m.csv");
    const std::vector<std::string> both{
        "run", crossing, "--data", "EURGBP-1m.csv", "GBPUSD-1m.csv", "--warmup", "100"};
    const Result choice = bench.lab.run(both);
    CHECK_EQ(choice.exitCode, 2);
    CHECK(contains(choice.errors, "EURGBP, GBPUSD"));
    std::vector<std::string> chosen = both;
    chosen.insert(chosen.end(), {"--symbol", "EURGBP"});
    CHECK_EQ(bench.lab.run(chosen).exitCode, 0);
    CHECK(bench.filesIn("MA_Cross-EURGBP") == resultFiles);
}

TEST_CASE("help and version are printed by the program and by every command")
{
    const RunFolder bench;
    const Result version = bench.lab.run({"--version"});
    CHECK_EQ(version.exitCode, 0);
    CHECK(version.output.starts_with("tavoran-lab "));
    for (const std::string command : {"inputs", "run", "report", "compare", "check"}) {
        const Result help = bench.lab.run({command, "--help"});
        CHECK_EQ(help.exitCode, 0);
        CHECK(help.output.starts_with("Usage: tavoran-lab " + command));
        CHECK_EQ(bench.lab.run({command, "--version"}).output, version.output);
    }
    CHECK_EQ(bench.lab.run({}).exitCode, 2);
}

CHECK_MAIN()
