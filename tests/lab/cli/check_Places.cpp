#include "lab/cli/StudyFolder.h"

#include "practice/Check.h"

#include <map>

using Result = LabProcess::Result;

namespace {

const std::vector<std::string> two{
    "--set", "Every=10,20", "--min-trades", "1", "--timeframe", "5m", "--sort", "netProfit"};

/// Every command that writes a folder, and how it is called.
std::map<std::string, std::vector<std::string>> calls(const StudyFolder& study)
{
    const std::vector<std::string> walk{"--train", "1d", "--test", "1d"};
    return {{"run", study.words("run", "Clock.js", {})}, {"check", study.words("check", "Clock.js", {})},
        {"report", {"report", "history.json"}}, {"sweep", study.words("sweep", "Clock.js", two)},
        {"merge", {"merge", "p.json"}}, {"walk", study.words("walk", "Clock.js", joined(two, walk))},
        {"challenge", study.words("challenge", "Clock.js", {"--starts", "daily"})},
        {"compare", {"compare", "one", "two"}}};
}

/// What each of them writes; those that write the same may write over one another.
const std::map<std::string, std::string> kinds{{"run", "a run"}, {"check", "a run"}, {"report", "a run"},
    {"sweep", "a sweep"}, {"merge", "a sweep"}, {"walk", "a walk"}, {"challenge", "a challenge"},
    {"compare", "a comparison"}};

} // namespace

TEST_CASE("every command replaces its own former result, and nothing else")
{
    const StudyFolder study;
    study.write("history.json", "[]");
    for (const std::string name : {"one", "two"})
        CHECK_EQ(study.run("run", "Clock.js", {"--out", name}).exitCode, 0);
    CHECK_EQ(study.run("plan", "Clock.js", joined(two, {"--chunks", "1", "--out", "p.json"})).exitCode, 0);
    CHECK_EQ(study.lab.run({"work", "p.json", "1"}).exitCode, 0);
    study.write("history.json",
        R"([{"id":"a","accountId":"A","symbol":"EURUSD","type":"BUY","orderKind":"MARKET","status":"CLOSED",
"lotSize":"0.10","entryPrice":"1.10000","exitPrice":"1.10500","stopLoss":null,"takeProfit":null,"pnl":"49.65",
"swap":"0.00","commission":"0.35","createdAt":"2024-01-01T22:00:00.000Z","closedAt":"2024-01-02T06:00:00.000Z",
"closeReason":"MANUAL"}])");
    std::filesystem::create_directory(study.folder / "mine");
    study.write("mine/letter.txt", "dear reader");

    for (const auto& [command, call] : calls(study)) {
        // An own former result, with a note that somebody has put beside it.
        CHECK(study.lab.run(joined(call, {"--out", command})).exitCode != 2);
        const std::set<std::string> files = study.filesIn(command);
        CHECK(!files.empty());
        study.write(command + "/note.txt", "mine");
        CHECK(study.lab.run(joined(call, {"--out", command})).exitCode != 2);
        CHECK_EQ(study.filesIn(command).size(), files.size() + 1);
        CHECK_EQ(study.contentOf(command + "/note.txt"), "mine");
        const Result refused = study.lab.run(joined(call, {"--out", "mine"}));
        CHECK_EQ(refused.exitCode, 2);
        CHECK(isOneLine(refused.errors));
        CHECK(contains(refused.errors, "mine holds something else than a result"));
        CHECK(study.filesIn("mine") == std::set<std::string>{"letter.txt"});
    }
    for (const auto& [command, call] : calls(study)) {
        for (const auto& [other, kind] : kinds) {
            if (kind == kinds.at(command))
                continue;
            const std::set<std::string> files = study.filesIn(other);
            const Result refused = study.lab.run(joined(call, {"--out", other}));
            CHECK_EQ(refused.exitCode, 2);
            CHECK(isOneLine(refused.errors));
            CHECK(contains(refused.errors, other + " holds " + kind + "; another folder can be named"));
            CHECK(study.filesIn(other) == files);
        }
    }
}

TEST_CASE("a plan is written over a plan, and over nothing else")
{
    const StudyFolder study;
    const std::vector<std::string> plan = study.words("plan", "Clock.js", joined(two, {"--chunks", "1"}));
    CHECK_EQ(study.lab.run(joined(plan, {"--out", "p.json"})).exitCode, 0);
    CHECK_EQ(study.lab.run(joined(plan, {"--out", "p.json"})).exitCode, 0);
    study.write("mine.json", "{}");
    CHECK_EQ(study.lab.run(joined(plan, {"--out", "mine.json"})).exitCode, 2);
    CHECK_EQ(study.contentOf("mine.json"), "{}");
}

TEST_CASE("a new sweep in the folder of a finished one leaves nothing of that")
{
    const StudyFolder study;
    CHECK_EQ(study.run("sweep", "Clock.js", joined(two, {"--out", "s"})).exitCode, 0);
    CHECK(study.filesIn("s").count("report.html") == 1);
    const Result none = study.run("sweep", "Clock.js",
        {"--set", "Every=10,20", "--min-trades", "5000", "--timeframe", "5m", "--out", "s"});
    CHECK_EQ(none.exitCode, 1);
    CHECK((study.filesIn("s") == std::set<std::string>{"sweep.csv", "sweep.json", "sweep.sqlite"}));

    // The same sets in another order: those that are there are enough.
    const Result again = study.run("sweep", "Clock.js",
        {"--set", "Every=10,20", "--min-trades", "1", "--timeframe", "5m", "--out", "s", "--resume"});
    CHECK_EQ(again.exitCode, 0);
    CHECK(study.filesIn("s").count("report.html") == 1);
}

CHECK_MAIN()
