#include "lab/GoneProcess.h"
#include "lab/cli/RunFolder.h"
#include "practice/Check.h"

#include <algorithm>

namespace fs = std::filesystem;
using Result = LabProcess::Result;

TEST_CASE("a folder with something else in it is left alone, a former result is replaced")
{
    const RunFolder bench;
    fs::create_directory(bench.folder / "mine");
    bench.write("mine/letter.txt", "dear reader");
    const Result refused = bench.run(crossing, {"--out", "mine"});
    CHECK_EQ(refused.exitCode, 2);
    CHECK(isOneLine(refused.errors));
    CHECK(contains(refused.errors, "mine"));
    CHECK(bench.filesIn("mine") == std::set<std::string>{"letter.txt"});
    const Result file = bench.run(crossing, {"--out", "EURUSD-1m.csv"});
    CHECK_EQ(file.exitCode, 2);
    CHECK(isOneLine(file.errors));

    CHECK_EQ(bench.run(crossing, {"--out", "again"}).exitCode, 0);
    const std::string before = bench.contentOf("again/trades.csv");
    CHECK_EQ(bench.run(crossing, {"--out", "again", "--set", "Fast=4"}).exitCode, 0);
    CHECK(bench.filesIn("again") == resultFiles);
    CHECK(bench.contentOf("again/trades.csv") != before);
}

TEST_CASE("a run that was killed while it wrote is made again by the same command, and leaves nothing")
{
    const RunFolder bench;
    const std::vector<std::string> out{"--out", "killed"};
    fs::create_directory(bench.folder / "killed");
    const std::string left = draftName("report.html", machineName(), goneProcess());
    bench.write("killed/" + left + ".new", "half");
    CHECK_EQ(bench.run(crossing, out).exitCode, 0);
    CHECK(bench.filesIn("killed") == resultFiles);

    // Killed between one name and the next: what comes first tells what the folder holds.
    for (const std::string& name : resultFiles) {
        if (name != "run.json")
            fs::remove(bench.folder / "killed" / name);
    }
    bench.write("killed/" + left + ".old", "former");
    CHECK_EQ(bench.run(crossing, out).exitCode, 0);
    CHECK(bench.filesIn("killed") == resultFiles);
}

TEST_CASE("a full disk is said, and nothing half-written stays")
{
    const RunFolder bench;
    fs::create_directory(bench.folder / "small");
    const std::string mount
        = "mount -t tmpfs -o size=64k none small || exit 77; \"$@\"; code=$?; ls -A small; exit $code";
    const Result result = bench.lab.runWithin({"unshare", "--mount", "sh", "-c", mount, "sh"},
        {"run", crossing, "--data", "EURUSD-1m.csv", "--warmup", "100", "--out", "small/result"});
    if (result.exitCode == 77 || contains(result.errors, "unshare"))
        check::skip("no file systems can be mounted here");
    CHECK_EQ(result.exitCode, 2);
    CHECK_EQ(result.output, ""); // neither figures nor files
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "No space left on device"));
    CHECK(contains(result.errors, "small/result"));
}

TEST_CASE("a limit of file sizes is said, too, and nothing half-written stays")
{
    const RunFolder bench;
    const Result result = bench.lab.runWithin({"sh", "-c", "ulimit -f 8; exec \"$@\"", "sh"},
        {"run", crossing, "--data", "EURUSD-1m.csv", "--warmup", "100", "--out", "result"});
    CHECK_EQ(result.exitCode, 2);
    CHECK_EQ(result.output, "");
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "File too large"));
    CHECK(bench.filesIn(".") == std::set<std::string>{"EURUSD-1m.csv"});
}

TEST_CASE("what a script writes to the console without end is cut off")
{
    const RunFolder bench;
    bench.write("Talks.js", "function OnTick() { console.log('here'); print('there'); }\n");
    const Result result = bench.run("Talks.js");
    CHECK_EQ(result.exitCode, 0);
    CHECK(result.errors.starts_with("js: here\njs: there\n"));
    CHECK(result.errors.ends_with("further lines of the console are left out\n"));
    CHECK_EQ(std::ranges::count(result.errors, '\n'), 1001);
}

TEST_CASE("an output that takes nothing is said")
{
    RunFolder bench;
    bench.lab.outputFile = "/dev/full";
    const Result result = bench.lab.run({"inputs", crossing});
    CHECK_EQ(result.exitCode, 2);
    CHECK_EQ(result.errors, "tavoran-lab: cannot write to the standard output: No space left on device\n");
}

CHECK_MAIN()
