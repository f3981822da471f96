#include "lab/cli/StudyFolder.h"

#include "lab/core/study/StudyStore.h"
#include "practice/Check.h"

#include <csignal>
#include <cstdlib>

using Result = LabProcess::Result;

namespace {

const std::set<std::string> sweepFiles{"report.html", "summary.json", "trades.csv", "equity.csv", "daily.csv",
    "journal.txt", "run.json", "sweep.csv", "sweep.json", "sweep.sqlite"};

/// Eight sets, of which all trade.
const std::vector<std::string> eight{
    "--set", "Every=10:40:10", "--set", "Points=30,60", "--min-trades", "3", "--timeframe", "5m"};

/// All but the store, whose pages lie as the results came.
void checkSame(const StudyFolder& study, const std::string& one, const std::string& other)
{
    for (const std::string& name : sweepFiles) {
        if (name == "sweep.sqlite")
            continue;
        const std::string content = study.contentOf(one + '/' + name);
        CHECK(!content.empty());
        CHECK(content == study.contentOf(other + '/' + name));
    }
}

} // namespace

TEST_CASE("one, two and four workers give the same bytes")
{
    const StudyFolder study;
    for (const std::string jobs : {"1", "2", "4"}) {
        const Result result = study.run("sweep", "Clock.js", joined(eight, {"--jobs", jobs, "--out", jobs}));
        CHECK_EQ(result.exitCode, 0);
        CHECK_EQ(result.errors, "");
        CHECK(study.filesIn(jobs) == sweepFiles);
        CHECK(contains(result.output, "8 sets by sharpe"));
        CHECK(contains(result.output, jobs + "/report.html\n"));
    }
    checkSame(study, "1", "2");
    checkSame(study, "1", "4");
}

TEST_CASE("the best set's report has maps, and its figures are those of a run by itself")
{
    const StudyFolder study;
    CHECK_EQ(
        study.run("sweep", "Clock.js", joined(eight, {"--out", "s", "--sort", "netProfit"})).exitCode, 0);
    const auto sweep = study.json("s/sweep.json");
    const auto inputs = sweep.at("best").at("inputs");
    CHECK_EQ(
        study
            .run("run", "Clock.js",
                {"--timeframe", "5m", "--out", "r", "--set", "Every=" + inputs.at("Every").get<std::string>(),
                    "--set", "Points=" + inputs.at("Points").get<std::string>()})
            .exitCode,
        0);
    for (const std::string file : {"summary.json", "trades.csv", "run.json", "journal.txt"})
        CHECK(study.contentOf("s/" + file) == study.contentOf("r/" + file));
    const std::string page = study.contentOf("s/report.html");
    CHECK(contains(page, "8 of 8 sets were tried"));
    CHECK(contains(page, "Net profit by Every (across) and Points (down)"));
    CHECK(contains(page, "Stability of the neighbourhood"));
    CHECK(contains(study.contentOf("s/sweep.csv"), "rank,set,Every,Points,status,"));
}

TEST_CASE("a sweep that was stopped before its store had anything in it goes on")
{
    const StudyFolder study;
    std::filesystem::create_directory(study.folder / "s");
    study.write("s/sweep.sqlite", "");
    CHECK_EQ(study.run("sweep", "Clock.js", joined(eight, {"--resume", "--out", "s"})).exitCode, 0);
    CHECK(study.filesIn("s") == sweepFiles);
    CHECK_EQ(lab::StudyStore::open(study.folder / "s/sweep.sqlite").results().size(), 8U);
}

TEST_CASE("a sweep's page says that it is one, of what, and shows its sets behind the figures")
{
    const StudyFolder study;
    CHECK_EQ(study.run("sweep", "Clock.js", joined(eight, {"--out", "s", "--set", "Wait=7"})).exitCode, 0);
    const std::string page = study.contentOf("s/report.html");
    CHECK(contains(page, "<title>Sweep: Clock on EURUSD 5m</title>"));
    CHECK(
        contains(page, "<p class=\"verdict\">Sweep, the best of 8 sets; swept: Every, Points. Net profit "));
    CHECK(contains(page, "<caption>Sweep</caption>"));
    for (const std::string line :
        {"Sets tried</th><td>8 of 8</td>", "Input Every</th><td>10, 20, 30, 40</td>",
            "Input Wait</th><td>7</td>", "Best by</th><td>the highest Sharpe ratio, with at least 3 trades"})
        CHECK(contains(page, "<tr><th scope=\"row\">" + line));
    std::size_t former = 0;
    for (const char* part :
        {"id=\"figures\"", "id=\"sweep\"", "id=\"heat\"", "id=\"stability\"", "id=\"balance\""}) {
        CHECK(page.find(part) != std::string::npos);
        CHECK(page.find(part) > former);
        former = page.find(part);
    }
}

TEST_CASE("a figure by which the best sets are sorted stands in one column")
{
    const StudyFolder study;
    for (const std::string sort : {"sharpe", "profitFactor"}) {
        CHECK_EQ(study.run("sweep", "Clock.js", joined(eight, {"--out", sort, "--sort", sort})).exitCode, 0);
        const std::string page = study.contentOf(sort + "/report.html");
        const std::size_t from = page.find("<caption>The best sets");
        const std::string head = page.substr(from, page.find("</thead>", from) - from);
        for (const char* name : {">Sharpe ratio</th>", ">Profit factor</th>"}) {
            const std::size_t place = head.find(name);
            CHECK_EQ(
                place != std::string::npos, name == std::string(">Sharpe ratio</th>") || sort != "sharpe");
            CHECK(place == std::string::npos || head.find(name, place + 1) == std::string::npos);
        }
    }
}

TEST_CASE("sets that crash, run away or fail cost themselves alone and are marked")
{
    const StudyFolder study;
    study.write("Bad.js",
        "var Fault = 0;\n"
        "var calls = 0;\n"
        "function OnTick() {\n"
        "    if (Fault === 1) for (;;);\n"
        "    if (Fault === 2) /a*a*a*a*a*a*a*a*a*b/.test('a'.repeat(500));\n"
        "    if (Fault === 3) missing();\n"
        "    if (Fault === 4) for (var all = [];;) all.push(new Float64Array(1000000).fill(1));\n"
        "    if (++calls % 100 === 0 && Positions.count() === 0) Trade.buy(0.1, { slPoints: 40, tpPoints: 40 "
        "});\n"
        "}\n");
    const Result result = study.run("sweep", "Bad.js",
        {"--set", "Fault=0:5:1", "--limit", "5", "--memory", "600", "--min-trades", "1", "--out", "s"});
    CHECK_EQ(result.exitCode, 3);
    CHECK(contains(result.errors, "failed: Fault=1: Bad: Not at its end after 5 seconds"));
    CHECK(contains(result.errors, "failed: Fault=2: not at its end after 5 seconds"));
    CHECK(contains(result.errors, "failed: Fault=3: Bad: "));
    CHECK(contains(result.errors, "failed: Fault=4: "));
    CHECK(contains(result.output, "6 sets by sharpe"));
    const std::string csv = study.contentOf("s/sweep.csv");
    std::size_t failed = 0;
    for (std::size_t place = csv.find(",failed,"); place != std::string::npos;
         place = csv.find(",failed,", place + 1))
        ++failed;
    CHECK_EQ(failed, 4U);
    CHECK(contains(study.contentOf("s/report.html"), "of which 4 failed"));
}

TEST_CASE("stopped it keeps what was done, and goes on from there to the same bytes")
{
    const StudyFolder study;
    CHECK_EQ(study.run("sweep", "Clock.js", joined(eight, {"--out", "whole"})).exitCode, 0);
    const std::vector<std::string> again = joined(eight, {"--jobs", "1", "--out", "parts"});
    const Result stopped = study.lab.runOnTerminal(study.words("sweep", "Clock.js", again), SIGINT);
    CHECK_EQ(stopped.exitCode, 130);
    CHECK(contains(stopped.errors, " of 8 sets are done and kept"));
    CHECK(!contains(stopped.errors, "0 of 8 sets"));
    CHECK(study.filesIn("parts") == std::set<std::string>{"sweep.sqlite"});

    const Result refused = study.run("sweep", "Clock.js", again);
    CHECK_EQ(refused.exitCode, 2);
    CHECK(isOneLine(refused.errors));
    CHECK(contains(refused.errors, "--resume"));

    const Result resumed = study.run("sweep", "Clock.js", joined(again, {"--resume"}));
    CHECK_EQ(resumed.exitCode, 0);
    checkSame(study, "whole", "parts");
    CHECK_EQ(study.run("sweep", "Clock.js", joined(again, {"--resume"})).exitCode, 0);
    checkSame(study, "whole", "parts");
}

TEST_CASE("stopped before a set was done it leaves nothing behind, and advises nothing")
{
    const StudyFolder study;
    study.write("Endless.js", "var Every = 1;\nfunction OnInit() { for (;;); }\n");
    const Result stopped = study.lab.runOnTerminal(
        study.words("sweep", "Endless.js", {"--set", "Every=1,2", "--jobs", "1", "--out", "s"}), SIGINT,
        "2 sets");
    CHECK_EQ(stopped.exitCode, 130);
    CHECK(contains(stopped.errors, "stopped; 0 of 2 sets are done and kept"));
    CHECK(!contains(stopped.errors, "--resume"));
    CHECK(!std::filesystem::exists(study.folder / "s"));
}

TEST_CASE("going on runs nothing that is finished, and tries again what failed")
{
    const StudyFolder study;
    const std::vector<std::string> words = joined(eight, {"--out", "s"});
    CHECK_EQ(study.run("sweep", "Clock.js", words).exitCode, 0);
    std::vector<lab::SetResult> before;
    {
        lab::StudyStore store = lab::StudyStore::open(study.folder / "s/sweep.sqlite");
        before = store.results();
        REQUIRE(before.size() == 8);
        before[2].tickPrint = 4242; // such as no run gives
        store.put(before[2], {});
        lab::SetResult weak;
        weak.number = before[5].number;
        weak.failure = "out of memory";
        store.put(weak, {});
    }
    CHECK_EQ(study.run("sweep", "Clock.js", joined(words, {"--resume"})).exitCode, 0);
    CHECK(before == lab::StudyStore::open(study.folder / "s/sweep.sqlite").results());
}

TEST_CASE("a sweep does not go on with another script, other prices, settings or sets")
{
    const StudyFolder study;
    const std::vector<std::string> two{
        "--set", "Every=10,20", "--min-trades", "1", "--out", "s", "--timeframe", "5m"};
    CHECK_EQ(study.run("sweep", "Clock.js", two).exitCode, 0);
    const auto refusal = [&](const std::vector<std::string>& more) {
        const Result result = study.run("sweep", "Clock.js", joined(joined(two, {"--resume"}), more));
        CHECK_EQ(result.exitCode, 2);
        CHECK(isOneLine(result.errors));
        return result.errors;
    };
    const std::string before = study.contentOf("s/sweep.csv");
    CHECK(contains(refusal({"--set", "Every=10,30"}), "the sets differ;"));
    CHECK(contains(refusal({"--delay", "5"}), "the settings differ;"));
    study.writeMinutes(4);
    CHECK(contains(refusal({}), "the prices differ;"));
    study.writeMinutes(3);
    study.write("Clock.js", study.contentOf("Clock.js") + "// changed\n");
    CHECK(contains(refusal({}), "the script differs"));
    CHECK(before == study.contentOf("s/sweep.csv"));
}

TEST_CASE("what cannot be tried is refused in a line, and nothing is written")
{
    const StudyFolder study;
    const auto refusal = [&](const std::vector<std::string>& more) {
        const Result result = study.run("sweep", "Clock.js", joined({"--out", "s"}, more));
        CHECK_EQ(result.exitCode, 2);
        CHECK(isOneLine(result.errors));
        CHECK(study.filesIn("s").empty());
        return result.errors;
    };
    CHECK(contains(
        refusal({"--set", "Every=1:2000:1", "--set", "Points=1:2000:1"}), "4000000 sets are too many"));
    CHECK(contains(refusal({"--set", "Every=5:1:1"}), "lowest"));
    CHECK(contains(refusal({"--set", "Never=1:2:1"}), "Every, Points, Mode, Wait"));
    CHECK(contains(refusal({"--set", "Every=fast"}), "fast"));
    const Result luck = study.run("sweep", "Clock.js", {"--out", "s", "--sort", "luck"});
    CHECK_EQ(luck.exitCode, 2);
    CHECK(contains(luck.errors, "netProfit, cagr"));
    CHECK(contains(refusal({"--set", "Every=1,2", "--random", "0"}), "--random"));
    CHECK(contains(refusal({"--set", "Every=1,2", "--from", "2031-01-01"}), "no prices"));
    study.write("s", "a letter");
    CHECK(contains(
        study.run("sweep", "Clock.js", {"--out", "s", "--set", "Every=1,2"}).errors, "is no folder"));
}

TEST_CASE("a sample of the sets is tried, the same each time")
{
    const StudyFolder study;
    const std::vector<std::string> sample{"--set", "Every=1:1000:1", "--set", "Points=1:1000:1", "--random",
        "4", "--min-trades", "1", "--timeframe", "5m", "--sort", "netProfit"};
    CHECK_EQ(study.run("sweep", "Clock.js", joined(sample, {"--out", "a"})).exitCode, 0);
    CHECK_EQ(study.run("sweep", "Clock.js", joined(sample, {"--out", "b"})).exitCode, 0);
    checkSame(study, "a", "b");
    const auto sweep = study.json("a/sweep.json");
    CHECK_EQ(sweep.at("sets").get<int>(), 4);
    CHECK_EQ(sweep.at("gridSize").get<int>(), 1'000'000);
}

TEST_CASE("texts and truth are tried by lists, colons and all")
{
    const StudyFolder study;
    const Result result = study.run("sweep", "Clock.js",
        {"--set", "Mode=buy,both,12:30:00", "--min-trades", "0", "--timeframe", "5m", "--out", "s", "--sort",
            "netProfit"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "12:30:00"));
    CHECK(contains(result.output, "3 sets by netProfit"));
}

TEST_CASE("where no set has trades enough, there is a table and no report")
{
    const StudyFolder study;
    const Result result = study.run("sweep", "Clock.js",
        {"--set", "Every=10,20", "--min-trades", "5000", "--timeframe", "5m", "--out", "s"});
    CHECK_EQ(result.exitCode, 1);
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "no set can be chosen: no set made 5,000 trades, the most were "));
    CHECK(contains(result.output, "2 sets by sharpe (the highest), none of them with at least 5,000 trades"));
    CHECK(!contains(result.output, "\n   1  "));
    CHECK(contains(result.output, "(PBO)  \xE2\x80\x93  needs at least 32 days with prices"));
    const Result seen = study.lab.runOnTerminal(study.words("sweep", "Clock.js",
        {"--set", "Every=10,20", "--min-trades", "5000", "--timeframe", "5m", "--out", "s", "--resume"}));
    CHECK(contains(seen.errors, "\r\n  "));
    const auto sweep = study.json("s/sweep.json");
    CHECK_EQ(sweep.at("eligible").get<int>(), 0);
    CHECK(sweep.at("warnings")
              .at(0)
              .get<std::string>()
              .starts_with("No set can be chosen: no set made 5,000 trades"));
    CHECK((study.filesIn("s") == std::set<std::string>{"sweep.csv", "sweep.json", "sweep.sqlite"}));
}

TEST_CASE(
    "a sweep that cannot keep the first of its sets leaves nothing, and begins anew by the same command")
{
    const StudyFolder study;
    const std::vector<std::string> call = study.words("sweep", "Clock.js",
        {"--set", "Every=5:34:1", "--min-trades", "1", "--timeframe", "5m", "--out", "s"});
    // Blocks of 512 bytes: the store takes 56 before it has a set, and more for thirty of them.
    for (const std::string blocks : {"1", "24", "55", "56"}) {
        const Result result
            = study.lab.runWithin({"sh", "-c", "ulimit -f " + blocks + "; exec \"$@\"", "sh"}, call);
        CHECK_EQ(result.exitCode, 2);
        CHECK(isOneLine(result.errors));
        CHECK(contains(result.errors, "s/sweep.sqlite: "));
        CHECK(!std::filesystem::exists(study.folder / "s"));
    }
    CHECK_EQ(study.lab.run(call).exitCode, 0);
}

TEST_CASE("a full disk ends a sweep with a line that names it")
{
    const StudyFolder study;
    std::filesystem::create_directory(study.folder / "small");
    const std::string mount
        = "mount -t tmpfs -o size=40k none small || exit 77; \"$@\"; code=$?; ls -A small/s >&2; exit $code";
    const Result result = study.lab.runWithin({"unshare", "--mount", "sh", "-c", mount, "sh"},
        study.words("sweep", "Clock.js", joined(eight, {"--out", "small/s"})));
    if (result.exitCode == 77 || contains(result.errors, "unshare"))
        check::skip("no file systems can be mounted here");
    CHECK_EQ(result.exitCode, 2);
    CHECK_EQ(result.output, "");
    CHECK(contains(result.errors, "full") || contains(result.errors, "No space left on device"));
    CHECK(contains(result.errors, "small/s"));
    CHECK(!contains(result.errors, "report.html\n"));
}

CHECK_MAIN()
