#include "lab/cli/StudyFolder.h"

#include "lab/GoneProcess.h"
#include "lab/core/study/StudyStore.h"
#include "practice/Check.h"

#include <csignal>
#include <sqlite3.h>
#include <unistd.h>

using Result = LabProcess::Result;

namespace {

const std::vector<std::string> eight{
    "--set", "Every=10:40:10", "--set", "Points=30,60", "--min-trades", "3", "--timeframe", "5m"};

Result planned(const StudyFolder& study, const std::string& chunks = "3")
{
    return study.run("plan", "Clock.js", joined(eight, {"--chunks", chunks, "--out", "c.plan.json"}));
}

Result work(const StudyFolder& study, const std::string& chunk)
{
    return study.lab.run({"work", "c.plan.json", chunk});
}

Result merge(const StudyFolder& study, const std::string& out)
{
    return study.lab.run({"merge", "c.plan.json", "--out", out});
}

void checkSameAsSweep(const StudyFolder& study, const std::string& merged)
{
    const Result sweep = study.run("sweep", "Clock.js", joined(eight, {"--out", "whole"}));
    CHECK_EQ(sweep.exitCode, 0);
    CHECK(study.filesIn("whole") == study.filesIn(merged));
    CHECK_EQ(study.filesIn(merged).size(), 10U);
    for (const std::string& name : study.filesIn("whole")) {
        if (name == "sweep.sqlite")
            continue;
        CHECK(!study.contentOf("whole/" + name).empty());
        CHECK(study.contentOf("whole/" + name) == study.contentOf(merged + '/' + name));
    }
}

} // namespace

TEST_CASE("chunks in any order, joined, give the bytes of a sweep on one machine")
{
    const StudyFolder study;
    const Result plan = planned(study);
    CHECK_EQ(plan.exitCode, 0);
    CHECK(contains(plan.output, "8 sets in 3 chunks"));
    for (const std::string chunk : {"3", "1", "2"}) {
        const Result result = work(study, chunk);
        CHECK_EQ(result.exitCode, 0);
        CHECK_EQ(result.errors, "");
        CHECK(contains(result.output, "chunk " + chunk + ": "));
    }
    const Result merged = merge(study, "m");
    CHECK_EQ(merged.exitCode, 0);
    CHECK(contains(merged.output, "8 sets by sharpe"));
    checkSameAsSweep(study, "m");
    CHECK_EQ(merge(study, "m").exitCode, 0); // again, over itself
    CHECK((study.filesIn(".")
        == std::set<std::string>{"Clock.js", "EURUSD-1m.csv", "c.plan.json", "c.plan-1.sqlite",
            "c.plan-2.sqlite", "c.plan-3.sqlite", "m", "whole"}));
}

TEST_CASE("a plan holds the script, and finds the prices from where it lies")
{
    const StudyFolder study;
    std::filesystem::create_directories(study.folder / "plans");
    CHECK_EQ(
        study.run("plan", "Clock.js", joined(eight, {"--chunks", "2", "--out", "plans/p.json"})).exitCode, 0);
    std::filesystem::remove(study.folder / "Clock.js");
    const LabProcess elsewhere{study.folder / "plans", {}, {}};
    CHECK_EQ(elsewhere.run({"work", "p.json", "1"}).exitCode, 0);
    CHECK_EQ(study.lab.run({"work", "plans/p.json", "2"}).exitCode, 0);
    CHECK_EQ(study.lab.run({"merge", "plans/p.json", "--out", "m"}).exitCode, 0);
    CHECK(!contains(study.contentOf("plans/p.json"), study.folder.path().string()));
}

TEST_CASE("chunks that are missing are listed, and nothing is written")
{
    const StudyFolder study;
    CHECK_EQ(planned(study, "4").exitCode, 0);
    CHECK_EQ(work(study, "2").exitCode, 0);
    const Result result = merge(study, "m");
    CHECK_EQ(result.exitCode, 2);
    CHECK_EQ(result.errors, "tavoran-lab: missing chunks: 1, 3, 4\n");
    CHECK(study.filesIn("m").empty());
}

TEST_CASE("chunks of another plan are refused by their numbers")
{
    const StudyFolder study;
    CHECK_EQ(planned(study, "2").exitCode, 0);
    CHECK_EQ(work(study, "1").exitCode, 0);
    CHECK_EQ(work(study, "2").exitCode, 0);
    const auto copy = [&](const std::string& from, const std::string& to) {
        std::filesystem::copy_file(
            study.folder / from, study.folder / to, std::filesystem::copy_options::overwrite_existing);
    };
    copy("c.plan-1.sqlite", "kept");
    copy("c.plan-1.sqlite", "c.plan-2.sqlite");
    const Result twice = merge(study, "m");
    CHECK_EQ(twice.exitCode, 2);
    CHECK(isOneLine(twice.errors));
    CHECK(contains(twice.errors, "chunk 2: the chunk differs"));

    study.write("Clock.js", study.contentOf("Clock.js") + "// changed\n");
    CHECK_EQ(planned(study, "2").exitCode, 0);
    CHECK_EQ(work(study, "2").exitCode, 0);
    const Result mixed = merge(study, "m");
    CHECK_EQ(mixed.exitCode, 2);
    CHECK(contains(mixed.errors, "chunk 1: the script differs"));
    CHECK(study.filesIn("m").empty());
    // And made anew, not taken for done.
    CHECK(contains(work(study, "1").output, "chunk 1: 4 sets"));
    CHECK_EQ(merge(study, "m").exitCode, 0);
}

TEST_CASE("a chunk of a machine that decided otherwise is refused")
{
    const StudyFolder study;
    CHECK_EQ(planned(study, "2").exitCode, 0);
    CHECK_EQ(work(study, "1").exitCode, 0);
    CHECK_EQ(work(study, "2").exitCode, 0);
    {
        lab::StudyStore store = lab::StudyStore::open(study.folder / "c.plan-2.sqlite");
        CHECK_EQ(store.note("probe"), lab::StudyStore::open(study.folder / "c.plan-1.sqlite").note("probe"));
        store.setNote("probe", "another decision");
    }
    const Result result = merge(study, "m");
    CHECK_EQ(result.exitCode, 2);
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "chunk 2 decided otherwise than chunk 1"));
    CHECK(study.filesIn("m").empty());
}

TEST_CASE("a machine with other prices does not work at a plan")
{
    const StudyFolder study;
    CHECK_EQ(planned(study).exitCode, 0);
    study.writeMinutes(4);
    const Result result = work(study, "1");
    CHECK_EQ(result.exitCode, 2);
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "the prices differ here from the plan's"));
    CHECK((study.filesIn(".") == std::set<std::string>{"Clock.js", "EURUSD-1m.csv", "c.plan.json"}));
}

TEST_CASE("chunks are not joined beside other prices")
{
    const StudyFolder study;
    CHECK_EQ(planned(study, "1").exitCode, 0);
    CHECK_EQ(work(study, "1").exitCode, 0);
    study.writeMinutes(4);
    const Result result = merge(study, "m");
    CHECK_EQ(result.exitCode, 2);
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "the prices differ here from the plan's"));
    CHECK(study.filesIn("m").empty());
}

TEST_CASE("a chunk that is stopped leaves nothing under its name, and says so")
{
    const StudyFolder study;
    CHECK_EQ(planned(study, "1").exitCode, 0);
    const Result stopped = study.lab.runOnTerminal({"work", "c.plan.json", "1"}, SIGINT);
    CHECK_EQ(stopped.exitCode, 130);
    CHECK(contains(stopped.errors, "tavoran-lab: stopped; chunk 1 is not whole, and nothing of it is kept"));
    CHECK((study.filesIn(".") == std::set<std::string>{"Clock.js", "EURUSD-1m.csv", "c.plan.json"}));
    CHECK(contains(merge(study, "m").errors, "missing chunks: 1"));
}

TEST_CASE("what a killed work has left of a chunk goes when the chunk is worked at again")
{
    const StudyFolder study;
    CHECK_EQ(planned(study, "2").exitCode, 0);
    const pid_t gone = goneProcess();
    const std::string host = machineName();
    const auto draft = [&](const std::string& chunk, const std::string& machine, pid_t process) {
        const std::string name = draftName("c.plan-" + chunk + ".sqlite", machine, process);
        study.write(name, "half");
        return name;
    };
    const std::string left = draft("1", host, gone);
    study.write(left + "-journal", "half");
    const std::string another = draft("2", host, gone);
    const std::string alive = draft("1", host, ::getpid());
    const std::string elsewhere = draft("1", "another-" + host, gone);
    study.write(left + ".kept", "by a person");
    CHECK_EQ(work(study, "1").exitCode, 0);
    CHECK((study.filesIn(".")
        == std::set<std::string>{"Clock.js", "EURUSD-1m.csv", "c.plan.json", "c.plan-1.sqlite", another,
            alive, elsewhere, left + ".kept"}));
}

TEST_CASE("a chunk with fewer sets than its part of the plan is refused, and made whole by its work")
{
    const StudyFolder study;
    CHECK_EQ(planned(study, "2").exitCode, 0);
    CHECK_EQ(work(study, "1").exitCode, 0);
    CHECK_EQ(work(study, "2").exitCode, 0);
    sqlite3* chunk = nullptr;
    CHECK_EQ(sqlite3_open((study.folder / "c.plan-2.sqlite").c_str(), &chunk), SQLITE_OK);
    CHECK_EQ(sqlite3_exec(chunk, "DELETE FROM sets WHERE number > 5", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(chunk);
    const Result result = merge(study, "m");
    CHECK_EQ(result.exitCode, 2);
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "chunk 2 holds 2 of its 4 sets"));
    CHECK(study.filesIn("m").empty());

    CHECK_EQ(work(study, "2").output, "chunk 2: 4 sets, 2 of them run now\n");
    CHECK_EQ(merge(study, "m").exitCode, 0);
    checkSameAsSweep(study, "m");
}

TEST_CASE("sets of a chunk that failed are tried again, the others are kept")
{
    const StudyFolder study;
    CHECK_EQ(planned(study, "2").exitCode, 0);
    CHECK_EQ(work(study, "1").exitCode, 0);
    CHECK_EQ(work(study, "2").exitCode, 0);
    const std::filesystem::path place = study.folder / "c.plan-2.sqlite";
    const lab::SetResult kept = [&] {
        lab::StudyStore store = lab::StudyStore::open(place);
        lab::SetResult weak;
        weak.number = 6;
        weak.failure = "out of memory";
        store.put(weak, {});
        lab::SetResult marked = store.results().front();
        marked.tickPrint = 4242;
        store.put(marked, {});
        return marked;
    }();
    CHECK_EQ(work(study, "2").output, "chunk 2: 4 sets, 1 of them run now\n");
    const lab::StudyStore store = lab::StudyStore::open(place);
    CHECK_EQ(store.finished().size(), 4U);
    CHECK_EQ(store.results().front().number, kept.number);
    CHECK_EQ(store.results().front().tickPrint, kept.tickPrint);
}

TEST_CASE("a chunk is not gone on with by a machine that decides otherwise")
{
    const StudyFolder study;
    CHECK_EQ(planned(study, "2").exitCode, 0);
    CHECK_EQ(work(study, "2").exitCode, 0);
    {
        lab::StudyStore store = lab::StudyStore::open(study.folder / "c.plan-2.sqlite");
        store.setNote("probe", "another decision");
        lab::SetResult weak;
        weak.number = 6;
        weak.failure = "out of memory";
        store.put(weak, {});
    }
    const std::string before = study.contentOf("c.plan-2.sqlite");
    const Result result = work(study, "2");
    CHECK_EQ(result.exitCode, 2);
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "chunk 2 was begun by a machine that decided otherwise"));
    CHECK(before == study.contentOf("c.plan-2.sqlite"));
}

TEST_CASE("a chunk that is done is not done again")
{
    const StudyFolder study;
    CHECK_EQ(planned(study).exitCode, 0);
    CHECK_EQ(work(study, "1").exitCode, 0);
    const std::string before = study.contentOf("c.plan-1.sqlite");
    CHECK_EQ(work(study, "1").output, "chunk 1 is done already\n");
    CHECK(before == study.contentOf("c.plan-1.sqlite"));
}

TEST_CASE("sets that fail are marked in the end, and no reason to repeat a chunk")
{
    const StudyFolder study;
    study.write("Bad.js",
        "var Fault = 0;\nvar calls = 0;\nfunction OnTick() {\n    if (Fault === 2) missing();\n"
        "    if (++calls % 100 === 0 && Positions.count() === 0) Trade.buy(0.1, { slPoints: 40, tpPoints: 40 "
        "});\n"
        "}\n");
    CHECK_EQ(study
                 .run("plan", "Bad.js",
                     {"--set", "Fault=0:3:1", "--min-trades", "1", "--chunks", "2", "--out", "c.plan.json"})
                 .exitCode,
        0);
    CHECK_EQ(work(study, "1").exitCode, 0);
    const Result second = work(study, "2");
    CHECK_EQ(second.exitCode, 0);
    CHECK_EQ(second.output, "chunk 2: 2 sets, 1 failed\n");
    CHECK_EQ(work(study, "2").output, "chunk 2: 2 sets, 1 of them run now, 1 failed\n");
    const Result result = merge(study, "m");
    CHECK_EQ(result.exitCode, 3);
    CHECK(contains(result.errors, "failed: Fault=2"));
}

TEST_CASE("what is no plan, no chunk or no place is said in a line")
{
    const StudyFolder study;
    const auto refusal = [&](const std::vector<std::string>& words) {
        const Result result = study.lab.run(words);
        CHECK_EQ(result.exitCode, 2);
        CHECK(isOneLine(result.errors));
        return result.errors;
    };
    CHECK_EQ(planned(study).exitCode, 0);
    CHECK(contains(refusal({"work", "none.json", "1"}), "none.json"));
    CHECK(contains(refusal({"work", "Clock.js", "1"}), "Clock.js is no plan"));
    CHECK(contains(refusal({"merge", "EURUSD-1m.csv"}), "is no plan"));
    CHECK(contains(refusal({"work", "c.plan.json", "4"}), "has 3 chunks, not 4"));
    CHECK(contains(refusal({"work", "c.plan.json"}), "number of a chunk"));
    CHECK(contains(refusal({"work", "c.plan.json", "0"}), "from 1 to"));
    CHECK(contains(planned(study, "9").errors, "9 chunks for 8 sets"));
    for (const std::string count :
        {"80", "18446744073709551615", "18744464073709551615", "8.5", "-8", "\"8\""}) {
        std::string plan = study.contentOf("c.plan.json");
        plan.replace(plan.find("\"sets\": 8"), 9, "\"sets\": " + count);
        study.write("damaged.json", plan);
        CHECK(contains(refusal({"work", "damaged.json", "3"}), "plan"));
    }
    std::string far = study.contentOf("c.plan.json");
    const std::size_t data = far.find("\"data\": [");
    far.replace(data, far.find(']', data) + 1 - data, "\"data\": [\"" + std::string(300, 'x') + "\"]");
    study.write("far.json", far);
    CHECK(contains(refusal({"work", "far.json", "1"}), "far.json: "));
    std::string odd = study.contentOf("c.plan.json");
    odd.replace(odd.find("--chunks"), 8, "--chu\\nnks");
    study.write("odd.json", odd);
    CHECK(contains(refusal({"work", "odd.json", "1"}), "odd.json"));
    CHECK(
        contains(study.run("plan", "Clock.js", joined(eight, {"--chunks", "2", "--out", "Clock.js"})).errors,
            "is no plan"));
    CHECK(contains(study.contentOf("Clock.js"), "OnTick"));
}

TEST_CASE("GNU parallel carries the chunks, and repeats those that failed")
{
    const StudyFolder study;
    CHECK_EQ(planned(study).exitCode, 0);
    const std::vector<std::string> chunks{"work", "c.plan.json", "{}", ":::", "1", "2", "3"};
    const std::vector<std::string> parallel{
        "parallel", "--will-cite", "--sshlogin", ":", "--jobs", "2", "--joblog", "jobs.log"};
    // In the way of the second one's result.
    std::filesystem::create_directory(study.folder / "c.plan-2.sqlite");
    const Result first = study.lab.runWithin(parallel, chunks);
    if (first.exitCode == 127)
        check::skip("GNU parallel is not installed");
    CHECK_EQ(first.exitCode, 1); // as many as failed
    CHECK(contains(merge(study, "m").errors, "c.plan-2.sqlite"));

    std::filesystem::remove(study.folder / "c.plan-2.sqlite");
    const Result second = study.lab.runWithin(joined(parallel, {"--resume-failed"}), chunks);
    CHECK_EQ(second.exitCode, 0);
    CHECK(contains(second.output, "chunk 2: "));
    CHECK(!contains(second.output, "chunk 1"));
    CHECK_EQ(merge(study, "m").exitCode, 0);
    checkSameAsSweep(study, "m");
}

CHECK_MAIN()
