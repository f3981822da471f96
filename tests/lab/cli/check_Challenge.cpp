#include "lab/cli/StudyFolder.h"

#include "lab/core/study/Challenge.h"
#include "lab/core/study/StudyStore.h"
#include "practice/Check.h"

#include <csignal>
#include <nlohmann/json.hpp>

using Result = LabProcess::Result;

namespace {

/// Bets so much that a plan is soon passed or failed.
void writeBets(const StudyFolder& study)
{
    study.write("Bets.js",
        "var Lots = 20;\nvar calls = 0;\n"
        "function OnTick() {\n"
        "    if (++calls % 40 !== 0 || Positions.count() > 0) return;\n"
        "    if (calls % 80 === 0) Trade.buy(Lots, { slPoints: 60, tpPoints: 120 });\n"
        "    else Trade.sell(Lots, { slPoints: 60, tpPoints: 120 });\n"
        "}\n");
}

std::vector<std::string> simulated(const std::string& seeds, const std::string& out)
{
    return {"challenge", "Bets.js", "--symbol", "EURUSD", "--seeds", seeds, "--from", "2024-01-01", "--to",
        "2024-01-03", "--warmup", "10", "--timeframe", "5m", "--out", out};
}

} // namespace

TEST_CASE("a plan is run from each day with prices, and each start is the run that it says")
{
    const StudyFolder study(5);
    writeBets(study);
    const Result result
        = study.run("challenge", "Bets.js", {"--starts", "daily", "--timeframe", "5m", "--out", "c"});
    CHECK_EQ(result.exitCode, 0);
    CHECK_EQ(result.errors, "");
    CHECK(contains(result.output, "passed"));
    CHECK(contains(result.output, "Starts a day apart share most of their prices"));
    const auto summary = study.json("c/challenge.json");
    CHECK_EQ(summary.at("starts").get<int>(), 5);
    int counts = 0;
    for (const char* outcome : {"passed", "daily-loss", "total-loss", "none"})
        counts += summary.at(outcome).at("count").get<int>();
    CHECK_EQ(counts, 5);
    CHECK(summary.at("none").at("count").get<int>() < 5);

    CHECK_EQ(study
                 .run("run", "Bets.js",
                     {"--account", "plan", "--from", "2024-01-03", "--timeframe", "5m", "--out", "r"})
                 .exitCode,
        0);
    const std::string outcome = study.json("r/run.json").at("outcome").get<std::string>();
    CHECK(contains(study.contentOf("c/challenge.csv"), "2024-01-03T00:00:00.000Z,1," + outcome + ','));
}

TEST_CASE("a plan is run over simulated markets, with the same bytes whoever does it")
{
    const StudyFolder study;
    writeBets(study);
    std::vector<std::string> words = simulated("3..8", "one");
    words.insert(words.end(), {"--jobs", "1"});
    const Result result = study.lab.run(words);
    CHECK_EQ(result.exitCode, 0);
    CHECK(!contains(result.output, "Starts a day apart"));
    words = simulated("3..8", "two");
    words.insert(words.end(), {"--jobs", "3"});
    CHECK_EQ(study.lab.run(words).exitCode, 0);
    for (const std::string file : {"/challenge.csv", "/challenge.json"}) {
        CHECK(!study.contentOf("one" + file).empty());
        CHECK(study.contentOf("one" + file) == study.contentOf("two" + file));
    }
    const std::string csv = study.contentOf("one/challenge.csv");
    CHECK_EQ(std::ranges::count(csv, '\n'), 7);
    CHECK(contains(result.output, "The prices are simulated"));
    CHECK(study.json("one/challenge.json").at("simulated").get<bool>());
    CHECK(contains(csv, ",8,"));

    CHECK_EQ(study.lab
                 .run({"run", "Bets.js", "--symbol", "EURUSD", "--seed", "5", "--from", "2024-01-01", "--to",
                     "2024-01-03", "--warmup", "10", "--timeframe", "5m", "--account", "plan", "--out", "r"})
                 .exitCode,
        0);
    const auto run = study.json("r/run.json");
    const auto trades = study.json("r/summary.json").at("trades").dump();
    CHECK(contains(csv, ",5," + run.at("outcome").get<std::string>() + ','));
    CHECK(contains(csv, ',' + trades + ",\n"));
}

TEST_CASE("a challenge that is stopped keeps its starts, and goes on from there to the same bytes")
{
    const StudyFolder study;
    writeBets(study);
    CHECK_EQ(study.lab.run(simulated("1..40", "whole")).exitCode, 0);
    std::vector<std::string> again = simulated("1..40", "parts");
    again.insert(again.end(), {"--jobs", "1"});
    const Result stopped = study.lab.runOnTerminal(again, SIGINT);
    CHECK_EQ(stopped.exitCode, 130);
    CHECK(contains(stopped.errors, " of 40 starts are done and kept, --resume goes on"));
    CHECK(!contains(stopped.errors, " 0 of 40"));
    CHECK(study.filesIn("parts") == std::set<std::string>{"challenge.sqlite"});

    const Result refused = study.lab.run(again);
    CHECK_EQ(refused.exitCode, 2);
    CHECK(isOneLine(refused.errors));
    CHECK(contains(refused.errors, "parts holds a challenge that was stopped: --resume goes on with it"));

    again.emplace_back("--resume");
    CHECK_EQ(study.lab.run(again).exitCode, 0);
    CHECK(study.filesIn("whole") == study.filesIn("parts"));
    for (const std::string file : {"/challenge.csv", "/challenge.json"}) {
        CHECK(!study.contentOf("whole" + file).empty());
        CHECK(study.contentOf("whole" + file) == study.contentOf("parts" + file));
    }
    {
        lab::StudyStore store = lab::StudyStore::open(study.folder / "parts/challenge.sqlite");
        REQUIRE(store.runs().size() == 40);
        lab::ChallengeRow marked = lab::challengeRowFrom(store.runs().at(7));
        marked.trades = 424242; // such as no run makes
        store.putRun(7, lab::bytesOf(marked));
    }
    CHECK_EQ(study.lab.run(again).exitCode, 0);
    CHECK(contains(study.contentOf("parts/challenge.csv"), ",424242,"));

    again[4] = "--seeds";
    again[5] = "1..39";
    CHECK(contains(study.lab.run(again).errors, "belongs to another challenge: the starts differ;"));
    again.insert(again.end(), {"--delay", "5"});
    CHECK(contains(study.lab.run(again).errors, "belongs to another challenge: the settings differ;"));
}

TEST_CASE("a challenge's file says what was tried")
{
    const StudyFolder study;
    writeBets(study);
    std::vector<std::string> words = simulated("3..4", "s");
    words.insert(words.end(), {"--speed", "2.5"});
    CHECK_EQ(study.lab.run(words).exitCode, 0);
    const auto simulation = study.json("s/challenge.json");
    CHECK_EQ(simulation.at("seeds").dump(), "[3,4]");
    CHECK_EQ(simulation.value("speed", 0.0), 2.5);
    CHECK_EQ(simulation.at("from").get<std::string>(), "2024-01-01T00:00:00.000Z");
    CHECK_EQ(simulation.at("to").get<std::string>(), "2024-01-03T00:00:00.000Z");
    CHECK_EQ(simulation.at("warmupWanted").get<int>(), 10);
    CHECK_EQ(simulation.at("account").get<std::string>(), "plan");
    CHECK_EQ(simulation.at("leverage").get<int>(), 100);
    CHECK_EQ(
        simulation.at("plan").dump(), R"({"dailyLossPercent":5,"targetPercent":10,"totalLossPercent":10})");
    CHECK_EQ(simulation.at("delay").get<int>(), 0);
    CHECK(simulation.at("spread").is_null());
    CHECK_EQ(simulation.at("dataHash").get<std::string>().size(), 16U);

    CHECK_EQ(study.run("challenge", "Bets.js", {"--starts", "daily", "--out", "d"}).exitCode, 0);
    const auto recorded = study.json("d/challenge.json");
    CHECK(recorded.at("seeds").is_null());
    CHECK(!recorded.at("simulated").get<bool>());
    CHECK_EQ(study.run("run", "Bets.js", {"--out", "r"}).exitCode, 0);
    const auto run = study.json("r/run.json");
    for (const char* key : {"from", "to", "dataHash", "extremes", "seed", "speed"})
        CHECK_EQ(recorded.value(key, nlohmann::json("missing")).dump(), run.at(key).dump());
}

TEST_CASE("starts that fail are marked, and leave nothing to go on with")
{
    const StudyFolder study;
    study.write("Bad.js", "function OnTick() { missing(); }\n");
    const Result result = study.run("challenge", "Bad.js", {"--starts", "daily", "--out", "c"});
    CHECK_EQ(result.exitCode, 3);
    CHECK(contains(result.errors, "3 of 3 runs failed"));
    CHECK(contains(study.contentOf("c/challenge.csv"), "missing is not defined"));
    CHECK((study.filesIn("c") == std::set<std::string>{"challenge.csv", "challenge.json"}));
}

TEST_CASE("what a challenge cannot do is said in a line")
{
    const StudyFolder study;
    writeBets(study);
    const auto refusal = [&](const std::vector<std::string>& more) {
        const Result result = study.run("challenge", "Bets.js", more);
        CHECK_EQ(result.exitCode, 2);
        CHECK(isOneLine(result.errors));
        return result.errors;
    };
    CHECK(contains(refusal({}), "--starts daily or --seeds"));
    CHECK(contains(refusal({"--starts", "weekly"}), "takes daily"));
    CHECK(contains(refusal({"--seeds", "1..3"}), "simulated prices only"));
    CHECK(contains(refusal({"--starts", "daily", "--seeds", "1..3"}), "either"));
    CHECK(contains(refusal({"--starts", "daily", "--set", "Lots=1,2"}), "one value for each input"));
    CHECK(contains(refusal({"--starts", "daily", "--account", "demo"}), "unknown option --account"));
    CHECK(contains(study.lab.run(simulated("8..3", "c")).errors, "FIRST..LAST"));
}

CHECK_MAIN()
