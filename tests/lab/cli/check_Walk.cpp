#include "lab/cli/StudyFolder.h"

#include "lab/core/study/SetResult.h"
#include "lab/core/study/StudyStore.h"
#include "practice/Check.h"

#include <nlohmann/json.hpp>

#include <csignal>
#include <sstream>

using Result = LabProcess::Result;

namespace {

const std::vector<std::string> walk{"--set", "Every=10,25", "--set", "Points=30,60", "--min-trades", "1",
    "--timeframe", "5m", "--train", "2d", "--test", "1d", "--sort", "netProfit"};

std::vector<std::vector<std::string>> rowsOf(const std::string& csv)
{
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(csv);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream cells(line);
        rows.emplace_back();
        for (std::string cell; std::getline(cells, cell, ',');)
            rows.back().push_back(cell);
    }
    return rows;
}

} // namespace

TEST_CASE("each window tests what was best before it, and the tests go on from one another")
{
    const StudyFolder study(5);
    const Result result = study.run("walk", "Clock.js", joined(walk, {"--out", "w"}));
    CHECK_EQ(result.exitCode, 0);
    CHECK_EQ(result.errors, "");
    CHECK(contains(result.output, "Efficiency"));
    const auto rows = rowsOf(study.contentOf("w/walk.csv"));
    REQUIRE(rows.size() == 4); // five days, less the warm-up: three tests
    REQUIRE(rows[1].size() > 12);
    CHECK_EQ(rows[1][3], rows[2][2]);
    CHECK_EQ(rows[2][3], rows[3][2]);

    // The choice of the second window is that of a sweep over its past.
    const std::string from = rows[2][1].substr(0, 19);
    const std::string to = rows[2][2].substr(0, 19);
    CHECK_EQ(study
                 .run("sweep", "Clock.js",
                     {"--set", "Every=10,25", "--set", "Points=30,60", "--min-trades", "1", "--timeframe",
                         "5m", "--sort", "netProfit", "--from", from, "--to", to, "--out", "s"})
                 .exitCode,
        0);
    const auto best = study.json("s/sweep.json").at("best");
    CHECK_EQ(best.at("inputs").at("Every").get<std::string>(), rows[2][4]);
    CHECK_EQ(best.at("inputs").at("Points").get<std::string>(), rows[2][5]);
    CHECK_EQ(best.at("netProfit").dump(), nlohmann::json::parse(rows[2][8]).dump());

    // The tests' results add up to the whole.
    double sum = 0;
    for (std::size_t row = 1; row < rows.size(); ++row)
        sum += std::stod(rows[row][11]);
    const auto summary = study.json("w/summary.json");
    CHECK_NEAR(summary.at("netProfit").get<double>(), sum, 0.001);
    CHECK_NEAR(summary.at("endBalance").get<double>(), 100'000 + sum, 0.001);
    CHECK(contains(study.contentOf("w/report.html"), "Walk forward"));
    CHECK_EQ(study.json("w/walk.json").at("windows").get<int>(), 3);
}

TEST_CASE("a walk's page says that it is one, of what, and shows its windows behind the figures")
{
    const StudyFolder study(5);
    CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--anchored", "--out", "w"})).exitCode, 0);
    const std::string page = study.contentOf("w/report.html");
    CHECK(contains(page, "<title>Walk-forward: Clock on EURUSD 5m</title>"));
    CHECK(contains(page,
        "<p class=\"verdict\">Walk-forward, 2 windows of 1 day and one of 23 hours, each with inputs chosen "
        "on all "
        "days before it (at least 2 days); swept: Every, Points. Net profit "));
    CHECK(contains(page, "<caption>Walk-forward</caption>"));
    for (const std::string line : {"Training</th><td>2 days, anchored", "Test</th><td>1 day",
             "Windows</th><td>3</td>", "Input Every</th><td>10, 25</td>", "Input Points</th><td>30, 60</td>",
             "Chosen by</th><td>the highest Net profit, with at least 1 trade</td>"})
        CHECK(contains(page, "<tr><th scope=\"row\">" + line));
    CHECK(contains(page,
        "Between windows all positions are closed (END) and the script starts anew; the account, "
        "with its plan, goes on."));
    CHECK(page.find("id=\"figures\"") < page.find("id=\"walk\""));
    CHECK(page.find("id=\"walk\"") < page.find("id=\"balance\""));

    CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--out", "r"})).exitCode, 0);
    CHECK(contains(study.contentOf("r/report.html"),
        "Walk-forward, 2 windows of 1 day and one of 23 hours, each with inputs chosen on the 2 days before "
        "it; swept:"));
}

TEST_CASE("a walk's files name every input: the fixed ones with their values, and which were swept")
{
    const StudyFolder study(5);
    CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--set", "Wait=7", "--out", "w"})).exitCode, 0);
    const auto run = study.json("w/run.json");
    CHECK_EQ(run.at("inputs").dump(), R"({"Mode":"'both'","Wait":"7"})");
    CHECK_EQ(run.at("changedInputs").dump(), R"(["Wait"])");
    CHECK_EQ(run.value("sweptInputs", nlohmann::json()).dump(), R"(["Every","Points"])");
    const auto json = study.json("w/walk.json");
    CHECK_EQ(json.value("fixedInputs", nlohmann::json()).dump(), R"({"Mode":"'both'","Wait":"7"})");
    const std::string page = study.contentOf("w/report.html");
    CHECK(contains(page, "<caption>Inputs of the script</caption>"));
    CHECK(contains(page, "<th scope=\"row\">Every</th><td>swept, chosen anew in each window</td>"));
    CHECK(contains(page, "<th scope=\"row\">Mode</th><td>&#39;both&#39;</td>")
        || contains(page, "<th scope=\"row\">Mode</th><td>'both'</td>"));
    CHECK(contains(page, "<th scope=\"row\">Wait</th><td>7 (changed)</td>"));
}

TEST_CASE("a last window that is shorter than the others says so, and tells nothing by the year")
{
    const StudyFolder study(5);
    const std::vector<std::string> words{"--set", "Every=10,25", "--min-trades", "1", "--timeframe", "5m",
        "--train", "1d", "--test", "3d", "--from", "2024-01-01T01:00", "--to", "2024-01-05T07:00"};
    const Result result = study.run("walk", "Clock.js", joined(words, {"--out", "w"}));
    CHECK_EQ(result.exitCode, 0);
    const std::string note = "6 hours instead of 3 days";
    CHECK(contains(result.output, "; " + note + "\n"));
    CHECK(contains(study.contentOf("w/walk.csv"), "," + note + "\n"));
    const auto rows = study.json("w/walk.json").at("rows");
    REQUIRE(rows.size() == 2);
    CHECK_EQ(rows[0].at("reason").get<std::string>(), "");
    CHECK(!rows[0].value("cutShort", true));
    CHECK_EQ(rows[1].at("reason").get<std::string>(), note);
    CHECK(rows[1].value("cutShort", false));
    for (const char* key : {"cagr", "sharpe", "efficiency"})
        CHECK(rows[1].at(key).is_null());
    CHECK(!rows[1].at("netProfit").is_null());
    const std::string page = study.contentOf("w/report.html");
    CHECK(contains(page, "Walk-forward, 1 window of 3 days and one of 6 hours, each with"));
    CHECK(contains(page, "Test</th><td>3 days behind each training; 6 hours behind the last</td>"));
    CHECK(contains(page, note));
}

TEST_CASE("a walk with one set alone begins its windows with how many could be chosen")
{
    const StudyFolder study(5);
    const Result result = study.run("walk", "Clock.js",
        {"--min-trades", "1", "--timeframe", "5m", "--train", "2d", "--test", "1d", "--out", "w"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "\n1  1 of 1 sets eligible"));
    CHECK(!contains(result.output, " ; "));
}

TEST_CASE("a walk gives the same bytes with one worker and with three")
{
    const StudyFolder study(5);
    for (const std::string jobs : {"1", "3"})
        CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--jobs", jobs, "--out", jobs})).exitCode, 0);
    CHECK_EQ(study.filesIn("1").size(), 10U);
    for (const std::string& name : study.filesIn("1")) {
        if (name == "walk.sqlite") // whose pages lie as the results came
            continue;
        CHECK(!study.contentOf("1/" + name).empty());
        CHECK(study.contentOf("1/" + name) == study.contentOf("3/" + name));
    }
}

TEST_CASE("a walk that is stopped keeps its trainings, and goes on from there to the same bytes")
{
    const StudyFolder study(5);
    CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--out", "whole"})).exitCode, 0);
    const std::vector<std::string> again = joined(walk, {"--jobs", "1", "--out", "parts"});
    const Result stopped = study.lab.runOnTerminal(study.words("walk", "Clock.js", again), SIGINT);
    CHECK_EQ(stopped.exitCode, 130);
    CHECK(contains(stopped.errors, " of 12 trainings are done and kept, --resume goes on"));
    CHECK(!contains(stopped.errors, " 0 of 12"));
    CHECK(study.filesIn("parts") == std::set<std::string>{"walk.sqlite"});

    const Result refused = study.run("walk", "Clock.js", again);
    CHECK_EQ(refused.exitCode, 2);
    CHECK(isOneLine(refused.errors));
    CHECK(contains(refused.errors, "parts holds a walk that was stopped: --resume goes on with it"));

    CHECK_EQ(study.run("walk", "Clock.js", joined(again, {"--resume"})).exitCode, 0);
    CHECK(study.filesIn("whole") == study.filesIn("parts"));
    for (const std::string& name : study.filesIn("whole")) {
        if (name != "walk.sqlite")
            CHECK(study.contentOf("whole/" + name) == study.contentOf("parts/" + name));
    }
}

TEST_CASE("a walk that goes on runs none of its finished trainings again")
{
    const StudyFolder study(5);
    CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--out", "w"})).exitCode, 0);
    {
        lab::StudyStore store = lab::StudyStore::open(study.folder / "w/walk.sqlite");
        REQUIRE(store.runs().size() == 12);
        lab::SetResult marked = lab::setResultFrom(store.runs().at(1)); // the first window's second set
        for (auto& figure : marked.figures)
            figure = 4242;
        store.putRun(1, lab::bytesOf(marked));
    }
    CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--out", "w", "--resume"})).exitCode, 0);
    CHECK_EQ(rowsOf(study.contentOf("w/walk.csv"))[1][8], "42.42");
}

TEST_CASE("a walk does not go on with other windows, prices or settings")
{
    const StudyFolder study(5);
    const std::vector<std::string> words = joined(walk, {"--out", "w", "--resume"});
    CHECK_EQ(study.run("walk", "Clock.js", words).exitCode, 0);
    const auto refusal = [&](const std::vector<std::string>& more) {
        const Result result = study.run("walk", "Clock.js", joined(words, more));
        CHECK_EQ(result.exitCode, 2);
        CHECK(isOneLine(result.errors));
        return result.errors;
    };
    CHECK(contains(refusal({"--anchored"}), "walk.sqlite belongs to another walk: the windows differ;"));
    CHECK(contains(refusal({"--train", "1d"}), "the windows differ;"));
    CHECK(contains(refusal({"--delay", "5"}), "the settings differ;"));
    study.writeMinutes(6);
    CHECK(contains(refusal({}), "the prices differ;"));
}

TEST_CASE("anchored windows train from the first day on")
{
    const StudyFolder study(5);
    CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--anchored", "--out", "w"})).exitCode, 0);
    const auto rows = rowsOf(study.contentOf("w/walk.csv"));
    REQUIRE(rows.size() == 4);
    CHECK_EQ(rows[1][1], rows[3][1]);
    CHECK(rows[1][2] != rows[3][2]);
}

TEST_CASE("the terminal shows each window's times in full, its inputs, and its past above its test")
{
    const StudyFolder study(5);
    const Result result = study.run("walk", "Clock.js", joined(walk, {"--out", "w"}));
    const auto json = study.json("w/walk.json");
    const auto minute = [](const nlohmann::json& time) {
        std::string text = time.get<std::string>().substr(0, 16);
        text[10] = ' ';
        return text;
    };
    std::istringstream lines(result.output);
    std::string line;
    std::getline(lines, line);
    CHECK(contains(line, "from") && contains(line, "netProfit  trades"));
    for (const auto& row : json.at("rows")) {
        std::getline(lines, line);
        CHECK(contains(line, "Every=" + row.at("inputs").at("Every").get<std::string>() + " Points="));
        CHECK(contains(line, "4 of 4 sets eligible"));
        std::getline(lines, line);
        CHECK(contains(line, "past  " + minute(row.at("trainFrom")) + "  " + minute(row.at("testFrom"))));
        CHECK(line.ends_with(' ' + row.at("trainTrades").dump()));
        std::getline(lines, line);
        CHECK(contains(line, "test  " + minute(row.at("testFrom")) + "  " + minute(row.at("testTo"))));
        CHECK(line.ends_with(' ' + row.at("trades").dump()));
    }
    CHECK(contains(result.output, "Windows tested             3 of 3\n"));
    CHECK(contains(result.output, "\nEfficiency                 \xE2\x80\x93 ("));
}

TEST_CASE("a window without a choice says why, on the terminal and in the files")
{
    const StudyFolder study(6);
    // It stops trading after the third day, which leaves the last windows with too little to go by.
    study.write("Early.js",
        "var Every = 20;\nvar calls = 0;\n"
        "function OnTick() {\n"
        "    if (++calls % (4 * Every) !== 0 || Positions.count() > 0) return;\n"
        "    if (Date.now() > 1704067200000 + 3 * 86400000) return;\n"
        "    Trade.buy(0.1, { slPoints: 30, tpPoints: 30 });\n"
        "}\n");
    const Result result = study.run("walk", "Early.js",
        {"--set", "Every=10,25", "--min-trades", "15", "--timeframe", "5m", "--train", "2d", "--test", "1d",
            "--sort", "netProfit", "--out", "w"});
    CHECK_EQ(result.exitCode, 0);
    const auto json = study.json("w/walk.json");
    CHECK_EQ(json.at("windows").get<int>(), 4);
    const auto& last = json.at("rows").back();
    CHECK_EQ(last.at("eligible").get<int>(), 0);
    CHECK(last.at("inputs").is_null());
    const std::string reason = last.at("reason").get<std::string>();
    CHECK(reason.starts_with("no set made 15 trades, the most were "));
    CHECK(contains(study.contentOf("w/walk.csv"), ",0,\"" + reason + "\"\n"));
    CHECK(contains(result.output, "\n4  0 of 2 sets eligible; " + reason + "\n"));
    CHECK(!contains(result.output, "Windows tested             4 of 4\n"));
    CHECK(contains(study.contentOf("w/report.html"), reason));
}

namespace {

/// A plan's account with a lot that is bought as each window begins, on prices that go one way.
Result planWalk(const StudyFolder& study, int pointsAMinute)
{
    study.writeSlope(8, pointsAMinute);
    study.write("Hold.js",
        "var Lots = 1;\n"
        "function OnTick() { if (Positions.count() === 0) Trade.buy(Lots); }\n");
    return study.run("walk", "Hold.js",
        {"--set", "Lots=1,1.2", "--min-trades", "1", "--timeframe", "5m", "--train", "1d", "--test", "1d",
            "--sort", "commission", "--account", "plan", "--out", "w"});
}

} // namespace

TEST_CASE("a plan's limits count from the start of the walk, and end it")
{
    const StudyFolder study(1);
    const Result result = planWalk(study, -2); // 2 887 of 100 000 a day
    CHECK_EQ(result.exitCode, 0);
    const auto run = study.json("w/run.json");
    CHECK_EQ(run.at("outcome").get<std::string>(), "total-loss");
    const auto summary = study.json("w/summary.json");
    CHECK_NEAR(summary.at("endBalance").get<double>(), 90'000, 10);
    CHECK_NEAR(summary.at("totalLimitUse").get<double>(), 1, 0.001);
    CHECK(study.contentOf("w/trades.csv").find(",RULE,") != std::string::npos);

    const auto rows = study.json("w/walk.json").at("rows");
    REQUIRE(rows.size() > 4);
    CHECK_EQ(rows[2].at("reason").get<std::string>(), "");
    CHECK_EQ(rows[3].at("reason").get<std::string>(), "the plan ended: total loss");
    CHECK(!rows[3].at("netProfit").is_null());
    CHECK_EQ(rows[4].at("reason").get<std::string>(), "the walk was over before");
    CHECK(rows[4].at("netProfit").is_null());
    CHECK(contains(result.output, "; the plan ended: total loss\n"));
    const std::string page = study.contentOf("w/report.html");
    CHECK(contains(page, "; the plan ended: total loss</td>"));
    CHECK(contains(page, "; the walk was over before</td>"));
}

TEST_CASE("a plan has passed when what a window's end closes has reached its target")
{
    const StudyFolder study(1);
    CHECK_EQ(planWalk(study, 2).exitCode, 0); // 2 865 a day
    const auto run = study.json("w/run.json");
    CHECK_EQ(run.at("outcome").get<std::string>(), "passed");
    const auto rows = study.json("w/walk.json").at("rows");
    REQUIRE(rows.size() > 4);
    CHECK_EQ(rows[3].at("reason").get<std::string>(), "the plan ended: passed");
    // The account was closed with the window's last price.
    CHECK_EQ(run.at("outcomeTime").get<std::string>().substr(0, 16),
        run.at("to").get<std::string>().substr(0, 11) + "00:49");
    CHECK(rows[4].at("netProfit").is_null());
}

TEST_CASE("where nothing can be chosen, the files say why, and no page of a former order stays")
{
    const StudyFolder study(5);
    CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--out", "w"})).exitCode, 0);
    CHECK(study.filesIn("w").contains("report.html"));
    const Result strict
        = study.run("walk", "Clock.js", joined(walk, {"--min-trades", "9999", "--out", "w", "--resume"}));
    CHECK_EQ(strict.exitCode, 1);
    CHECK(isOneLine(strict.errors));
    CHECK(contains(strict.errors, "no set can be chosen: no set made 9,999 trades, the most were "));
    CHECK(contains(strict.errors, "; --resume with a lower --min-trades runs none of them again"));
    CHECK((study.filesIn("w") == std::set<std::string>{"walk.csv", "walk.json", "walk.sqlite"}));
    CHECK(contains(strict.output, "0 of 4 sets eligible; no set made 9,999 trades"));
    CHECK(contains(strict.output, "Windows tested             0 of 3\n"));
    CHECK(strict.output.ends_with("w/walk.csv\n"));

    const auto json = study.json("w/walk.json");
    CHECK_EQ(json.at("minTrades").get<int>(), 9999);
    CHECK_EQ(json.at("tested").get<int>(), 0);
    CHECK(json.at("cagr").is_null());
    CHECK_EQ(json.at("symbol").get<std::string>(), "EURUSD");
    const std::string warning = json.at("warnings").at(0).get<std::string>();
    CHECK(warning.starts_with("No set can be chosen: no set made 9,999 trades, the most were "));
    const auto rows = rowsOf(study.contentOf("w/walk.csv"));
    REQUIRE(rows.size() == 4);
    for (const auto& row : json.at("rows"))
        CHECK(row.at("reason").get<std::string>().starts_with("no set made 9,999 trades"));

    // With an order that chooses, the page is there again, and a walk says that nothing is amiss.
    CHECK_EQ(study.run("walk", "Clock.js", joined(walk, {"--out", "w", "--resume"})).exitCode, 0);
    CHECK(study.filesIn("w").contains("report.html"));
    CHECK(study.json("w/walk.json").at("warnings").empty());
}

TEST_CASE("what a walk cannot do is said in a line")
{
    const StudyFolder study(3);
    const auto refusal = [&](const std::vector<std::string>& more) {
        const Result result = study.run("walk", "Clock.js", joined({"--out", "w"}, more));
        CHECK_EQ(result.exitCode, 2);
        CHECK(isOneLine(result.errors));
        CHECK(study.filesIn("w").empty());
        return result.errors;
    };
    CHECK(contains(refusal({"--set", "Every=10,20"}), "--train 90d --test 30d"));
    CHECK(contains(refusal({"--train", "90", "--test", "1d"}), "90d or 12w"));
    CHECK(contains(refusal({"--train", "90d", "--test", "30d"}), "leave nothing to try on"));
    study.write("Clock.js", "var Every = 20;\nfunction OnTick() { Sell(); }\n");
    CHECK(contains(refusal({"--train", "1d", "--test", "1d"}), "OnTick: Sell is not defined (line 2)"));
}

CHECK_MAIN()
