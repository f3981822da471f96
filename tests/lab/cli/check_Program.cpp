#include "lab/cli/LabProcess.h"
#include "practice/Check.h"
#include "practice/storage/TemporaryFolder.h"

#include "lab/core/output/Texts.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>

namespace fs = std::filesystem;
using Result = LabProcess::Result;

namespace {

constexpr practice::TimeMs start = 1'704'067'200'000; // 2024-01-01T00:00Z
constexpr int days = 6;

const std::string examples = std::string(PROJECT_ROOT) + "/resources/examples/";
const std::string documented = std::string(PROJECT_ROOT) + "/docs/examples/";
const std::string crossing = examples + "MA_Cross.js";

const std::set<std::string> resultFiles{
    "report.html", "summary.json", "trades.csv", "equity.csv", "daily.csv", "journal.txt", "run.json"};

/// Six days of minutes that swing, in whole points, so that every machine writes the same.
void writeMinutes(const fs::path& file, const std::string& brokenLine = {})
{
    std::ofstream csv(file);
    csv << "time,open,high,low,close,volume\n";
    std::uint32_t random = 12'345;
    int price = 110'000;
    for (int minute = 0; minute < days * 24 * 60; ++minute) {
        const int open = price;
        random = random * 1'664'525U + 1'013'904'223U;
        const int phase = minute % 900;
        price += static_cast<int>(random >> 28) - 8 + (phase < 450 ? 1 : -1) + (random & 0x1000000U ? 1 : 0);
        const int high = std::max(open, price) + static_cast<int>(random >> 29);
        const int low = std::min(open, price) - static_cast<int>((random >> 26) & 7U);
        std::string time = lab::isoTime(start + minute * practice::minuteMs);
        time.erase(time.size() - 5, 4); // seconds are enough
        const auto text = [](int points) { return lab::fixedText(points / 1e5, 5); };
        csv << time << ',' << text(open) << ',' << text(high) << ',' << text(low) << ',' << text(price)
            << ",10\n";
        if (minute == 700 && !brokenLine.empty())
            csv << brokenLine << '\n';
    }
}

std::string contentOf(const fs::path& file)
{
    std::ifstream input(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
}

void write(const fs::path& file, const std::string& text)
{
    std::ofstream(file, std::ios::binary) << text;
}

std::set<std::string> filesIn(const fs::path& folder)
{
    std::set<std::string> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error))
        names.insert(entry.path().filename().string());
    return names;
}

bool sameFiles(const fs::path& one, const fs::path& other)
{
    return filesIn(one) == resultFiles && filesIn(other) == resultFiles
        && std::ranges::all_of(resultFiles,
            [&](const std::string& name) { return contentOf(one / name) == contentOf(other / name); });
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

/// Broken lines put together again.
std::string joined(std::string text)
{
    std::ranges::replace(text, '\n', ' ');
    return text;
}

bool isOneLine(const std::string& text)
{
    return text.starts_with("tavoran-lab: ") && text.find('\n') == text.size() - 1;
}

/// A folder with a history in it, and the program in that folder.
struct Bench {
    TemporaryFolder folder;
    LabProcess lab{folder.path(), {}, {}};

    Bench() { writeMinutes(folder / "EURUSD-1m.csv"); }

    [[nodiscard]] Result run(const std::string& script, const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments{"run", script, "--data", "EURUSD-1m.csv", "--warmup", "100"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return lab.run(arguments);
    }
    [[nodiscard]] nlohmann::json json(const std::string& file) const
    {
        return nlohmann::json::parse(contentOf(folder / file));
    }
};

} // namespace

TEST_CASE("a run writes its files and prints what it comes to")
{
    const Bench bench;
    const Result result = bench.run(crossing);
    CHECK_EQ(result.exitCode, 0);
    CHECK_EQ(result.errors, "");
    CHECK(contains(result.output, "Net profit"));
    CHECK(contains(result.output, "MA_Cross-EURUSD/report.html\n"));
    CHECK(!contains(result.output, "\x1b"));
    CHECK(filesIn(bench.folder / "MA_Cross-EURUSD") == resultFiles);
    CHECK(bench.json("MA_Cross-EURUSD/summary.json").at("trades").get<int>() > 5);
    CHECK_EQ(bench.json("MA_Cross-EURUSD/run.json").at("symbol").get<std::string>(), "EURUSD");
    CHECK(contains(contentOf(bench.folder / "MA_Cross-EURUSD/journal.txt"), "MA_Cross started on EURUSD"));
}

TEST_CASE("language, time zone and folder leave no trace in a result")
{
    const Bench bench;
    CHECK_EQ(bench.run(crossing, {"--out", "one"}).exitCode, 0);

    LabProcess abroad{
        bench.folder.path(), {{"LC_ALL", "de_DE.UTF-8"}, {"LANGUAGE", "de"}, {"TZ", "Asia/Tokyo"}}, {}};
    CHECK_EQ(abroad.run({"run", crossing, "--data=EURUSD-1m.csv", "--warmup=100", "--out=two"}).exitCode, 0);
    CHECK(sameFiles(bench.folder / "one", bench.folder / "two"));

    fs::create_directory(bench.folder / "below");
    fs::create_directory(bench.folder / "scripts");
    fs::copy_file(crossing, bench.folder / "scripts/MA_Cross.js");
    const LabProcess below{bench.folder / "below", {}, {}};
    CHECK_EQ(below
                 .run({"run", "../scripts/MA_Cross.js", "--data", "../EURUSD-1m.csv", "--warmup", "100",
                     "--out", "deep/er"})
                 .exitCode,
        0);
    CHECK(sameFiles(bench.folder / "one", bench.folder / "below/deep/er"));
}

TEST_CASE("a script's own texts do not follow language and time zone either")
{
    const Bench bench;
    write(bench.folder / "Words.js",
        "var chance = Math.random();\n"
        "function OnInit() { const day = new Date(1.0e12); Print(day.toString(), (1234.5).toLocaleString(),"
        " new Date(0).toLocaleDateString(), Date.now() > 1.7e12, chance, Math.random(), Date(), new Date(),"
        " day.toLocaleString(), day.toLocaleTimeString(), day.toTimeString(), day.getHours(), day.getDay(),"
        " day.getTimezoneOffset(), new Date(2024, 6, 1).getTime(), Date.parse('2024-07-01T00:00:00'),"
        " Date.parse('Jul 1, 2024'), [1.5, day].toLocaleString(), ['b', 'ä', 'z', 'C'].sort((a, b) =>"
        " a.localeCompare(b)), 'iI'.toLocaleUpperCase(), typeof Intl, typeof performance, Date.toString(),"
        " Date.now.toString(), Math.random.toString(), Function.prototype.toString.toString()); }\n");
    CHECK_EQ(bench.run("Words.js", {"--out", "one"}).exitCode, 0);
    CHECK(contains(contentOf(bench.folder / "one/journal.txt"), "1970"));
    for (const auto& [language, zone] : {std::pair("de_DE.UTF-8", "America/New_York"),
             std::pair("de_DE", "Asia/Kathmandu"), std::pair("tr_TR.UTF-8", "Asia/Tokyo")}) {
        const LabProcess abroad{bench.folder.path(), {{"LC_ALL", language}, {"TZ", zone}}, {}};
        CHECK_EQ(abroad.run({"run", "Words.js", "--data", "EURUSD-1m.csv", "--warmup", "100", "--out", "two"})
                     .exitCode,
            0);
        CHECK(sameFiles(bench.folder / "one", bench.folder / "two"));
    }
}

TEST_CASE("simulated prices give the same files again, and another seed others")
{
    const Bench bench;
    const auto run = [&](const std::string& seed, const std::string& out) {
        return bench.lab
            .run({"run", crossing, "--symbol", "EURJPY", "--seed", seed, "--from", "2024-01-01", "--to",
                "2024-01-05", "--warmup", "100", "--out", out})
            .exitCode;
    };
    CHECK_EQ(run("1", "one"), 0);
    CHECK_EQ(run("1", "two"), 0);
    CHECK_EQ(run("2", "three"), 0);
    CHECK(sameFiles(bench.folder / "one", bench.folder / "two"));
    CHECK(!sameFiles(bench.folder / "one", bench.folder / "three"));
    CHECK(contains(contentOf(bench.folder / "one/summary.json"), "simulated"));
}

TEST_CASE("a run can be made again from what it has written down")
{
    const Bench bench;
    CHECK_EQ(bench.lab
                 .run({"run", crossing, "--symbol", "EURUSD", "--seed", "7", "--speed", "3.5", "--from",
                     "2024-01-01", "--to", "2024-01-05", "--warmup", "100", "--spread", "12", "--delay",
                     "250", "--timeframe", "5m", "--leverage", "30", "--balance", "5000", "--account", "plan",
                     "--set", "Fast=5", "--model", "path", "--out", "one"})
                 .exitCode,
        0);
    const auto run = bench.json("one/run.json");
    CHECK_EQ(run.value("speed", 0.0), 3.5);
    std::vector<std::string> words{"run", crossing, "--out", "two"};
    for (const std::string key : {"symbol", "seed", "speed", "from", "to", "spread", "delay", "timeframe",
             "leverage", "balance", "account", "model"}) {
        if (!run.contains(key) || run.at(key).is_null())
            continue;
        words.push_back("--" + key);
        words.push_back(run.at(key).is_string() ? run.at(key).get<std::string>() : run.at(key).dump());
    }
    words.insert(words.end(), {"--warmup", run.at("warmupWanted").dump()});
    for (const auto& [name, value] : run.at("inputs").items())
        words.insert(words.end(), {"--set", name + '=' + value.get<std::string>()});
    CHECK_EQ(bench.lab.run(words).exitCode, 0);
    CHECK(sameFiles(bench.folder / "one", bench.folder / "two"));

    words.insert(words.end(), {"--speed", "1", "--out", "slower"});
    CHECK_EQ(bench.lab.run(words).exitCode, 0);
    CHECK(bench.json("slower/run.json").at("dataHash") != run.at("dataHash"));
    CHECK_EQ(bench.run(crossing, {"--out", "recorded"}).exitCode, 0);
    CHECK(bench.json("recorded/run.json").at("speed").is_null());
}

TEST_CASE("a single bar is a run, and no bar is none")
{
    const Bench bench;
    const std::string header = "time,open,high,low,close,volume\n";
    write(bench.folder / "EURUSD-1m.csv", header + "2024-01-01T00:00:00Z,1.1,1.2,1.0,1.15,9\n");
    CHECK_EQ(bench.lab.run({"run", crossing, "--data", "EURUSD-1m.csv", "--out", "one"}).exitCode, 0);
    CHECK_EQ(bench.json("one/summary.json").at("bars").get<int>(), 1);
    CHECK_EQ(bench.json("one/summary.json").at("ticks").get<int>(), 4);
    CHECK(bench.json("one/summary.json").at("sharpe").is_null());
    write(bench.folder / "EURUSD-1m.csv", header);
    const Result none = bench.lab.run({"run", crossing, "--data", "EURUSD-1m.csv", "--out", "none"});
    CHECK_EQ(none.exitCode, 2);
    CHECK_EQ(none.errors, "tavoran-lab: EURUSD-1m.csv:1: no minutes\n");
    CHECK(filesIn(bench.folder / "none").empty());
}

TEST_CASE("a warm-up shorter than asked for is counted and warned of")
{
    const Bench bench;
    const std::string warning
        = "Warm-up of 48 bars instead of 100: the history has no more before the start.";
    CHECK_EQ(bench.run(crossing, {"--from", "2024-01-01T12:00", "--out", "one"}).exitCode, 0);
    CHECK_EQ(bench.json("one/run.json").at("warmup").get<int>(), 48);
    CHECK_EQ(bench.json("one/run.json").at("warmupWanted").get<int>(), 100);
    CHECK_EQ(bench.json("one/summary.json").at("warnings").at(0).get<std::string>(), warning);
    const std::string page = contentOf(bench.folder / "one/report.html");
    CHECK(contains(page, warning));
    CHECK(contains(page, "48 instead of 100"));
    CHECK_EQ(bench.run(crossing, {"--from", "2024-01-03", "--out", "two"}).exitCode, 0);
    CHECK_EQ(bench.json("two/run.json").at("warmup").get<int>(), 100);
    CHECK(!contains(contentOf(bench.folder / "two/report.html"), "Warm-up of"));
}

TEST_CASE("a short history is run through without naming start or warm-up")
{
    const Bench bench;
    const Result result
        = bench.lab.run({"run", crossing, "--data", "EURUSD-1m.csv", "--timeframe", "1h", "--out", "one"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "Warm-up of 36 bars instead of 1500"));
    CHECK_EQ(bench.json("one/run.json").at("from").get<std::string>(), "2024-01-02T12:00:00.000Z");
    const Result refused = bench.lab.run(
        {"run", crossing, "--data", "EURUSD-1m.csv", "--timeframe", "1h", "--warmup", "200", "--out", "two"});
    CHECK_EQ(refused.exitCode, 2);
    CHECK(isOneLine(refused.errors));
    CHECK(contains(refused.errors, "144 bars of 1h, and none after a warm-up of 200; --warmup 36 "));
}

TEST_CASE("falls of equity begin within the run")
{
    const Bench bench;
    write(bench.folder / "Loses.js",
        "function OnTick() { Positions.count() === 0 ? Trade.buy(1) : Trade.closeAll(); }\n");
    CHECK_EQ(bench.run("Loses.js", {"--from", "2024-01-03", "--out", "one"}).exitCode, 0);
    CHECK(contains(contentOf(bench.folder / "one/daily.csv"), "2024-01-02,100000.00,"));
    const std::string page = contentOf(bench.folder / "one/report.html");
    CHECK(contains(page, "2024-01-03 (start)"));
    CHECK(!contains(page, ">2024-01-02<"));
}

TEST_CASE("a check of a script that never trades proves nothing and says so")
{
    const Bench bench;
    write(bench.folder / "Idle.js", "function OnTick() {}\n");
    const Result result = bench.lab.run(
        {"check", "Idle.js", "--data", "EURUSD-1m.csv", "--warmup", "100", "--out", "checked"});
    CHECK_EQ(result.exitCode, 1);
    CHECK(contains(result.output, "future      not comparable"));
    CHECK(contains(result.output, "warm-up     not comparable"));
    CHECK(contains(result.output, "repetition  holds"));
    CHECK(contains(
        contentOf(bench.folder / "checked/report.html"), "Check without anything to compare (future)"));
}

TEST_CASE("an input changes the run, and is written down")
{
    const Bench bench;
    CHECK_EQ(bench.run(crossing, {"--out", "one"}).exitCode, 0);
    CHECK_EQ(bench.run(crossing, {"--out", "two", "--set", "Slow=40", "--set", "Fast=5"}).exitCode, 0);
    CHECK(contentOf(bench.folder / "one/trades.csv") != contentOf(bench.folder / "two/trades.csv"));
    CHECK_EQ(bench.json("two/run.json").at("inputs").dump(), R"({"Fast":"5","Lots":"0.10","Slow":"40"})");
}

TEST_CASE("a run tells all inputs of its script, and which of them were changed")
{
    const Bench bench;
    write(bench.folder / "Idle.js",
        "var Fast = 10; // bars\nvar Slow = 30;\nvar Mode = 'calm';\nvar calls = 0;\n"
        "function OnTick() { ++calls; }\n");
    CHECK_EQ(bench.run("Idle.js", {"--out", "one", "--set", "Slow=40", "--set", "Fast=10"}).exitCode, 0);
    CHECK_EQ(bench.json("one/run.json").at("inputs").dump(), R"({"Fast":"10","Mode":"'calm'","Slow":"40"})");
    CHECK_EQ(bench.json("one/run.json").at("changedInputs").dump(), R"(["Slow"])");
    const std::string page = contentOf(bench.folder / "one/report.html");
    CHECK(contains(page, "<th scope=\"row\">Fast</th><td>10</td>"));
    CHECK(contains(page, "<th scope=\"row\">Slow</th><td>40 (changed)</td>"));
    CHECK(!contains(page, "<th scope=\"row\">calls</th>"));
}

TEST_CASE("the reasons of closings are counted on the terminal and on the page")
{
    const Bench bench;
    const Result result = bench.run(crossing);
    const std::string trades = contentOf(bench.folder / "MA_Cross-EURUSD/trades.csv");
    std::size_t count = 0;
    for (std::size_t place = trades.find(",SCRIPT,"); place != std::string::npos;
         place = trades.find(",SCRIPT,", place + 1))
        ++count;
    REQUIRE(count > 0);
    CHECK(contains(result.output, "\nClosed by  "));
    CHECK(contains(result.output, "SCRIPT " + std::to_string(count)));
    CHECK(contains(contentOf(bench.folder / "MA_Cross-EURUSD/report.html"),
        "<th scope=\"row\">SCRIPT</th><td class=\"n\">" + std::to_string(count) + "</td>"));
}

TEST_CASE("a run's files and prices alone lead another reckoning to the same figures")
{
    const Bench bench;
    write(bench.folder / "Clock.js",
        "var calls = 0;\n"
        "function OnTick() {\n"
        "    ++calls;\n"
        "    if (new Date().getUTCHours() >= 20) {\n" // before a swap
        "        if (Positions.count() > 0) Trade.closeAll();\n"
        "        return;\n"
        "    }\n"
        "    if (calls % 97 !== 0 || Positions.count() > 0) return;\n"
        "    if (calls % 2 === 0) Trade.buy(2, { slPoints: 40, tpPoints: 60 });\n"
        "    else Trade.sell(1.5, { slPoints: 60, tpPoints: 40 });\n"
        "}\n");
    CHECK_EQ(bench.run("Clock.js", {"--spread", "8", "--out", "r"}).exitCode, 0);
    const auto reckoned = [&bench](const std::string& halfSpread) {
        const std::string folder = bench.folder.path().string();
        return std::system(("/usr/bin/python3 '" + std::string(PROJECT_ROOT)
            + "/tests/lab/cli/figures_from_files.py' '" + folder + "/r' '" + folder + "/EURUSD-1m.csv' "
            + halfSpread + " 100000 > '" + folder + "/reckoned' 2>&1")
                               .c_str());
    };
    const int status = reckoned("0.00004");
    if (status != 0)
        std::cout << contentOf(bench.folder / "reckoned");
    CHECK_EQ(status, 0);
    CHECK(reckoned("0.00005") != 0); // it can fail
}

TEST_CASE("a symbol that the platform does not list is warned of")
{
    const Bench bench;
    writeMinutes(bench.folder / "NZDUSD-1m.csv");
    const Result result = bench.lab.run({"run", crossing, "--data", "NZDUSD-1m.csv", "--warmup", "100"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(
        result.output, "! The practice platform does not list NZDUSD: taken with a contract of 1 NZD"));
    CHECK(contains(contentOf(bench.folder / "MA_Cross-NZDUSD/report.html"),
        "<li>The practice platform does not list NZDUSD"));
}

TEST_CASE("inputs are listed with their comments")
{
    const Bench bench;
    const Result result = bench.lab.run({"inputs", crossing});
    CHECK_EQ(result.exitCode, 0);
    CHECK_EQ(result.output,
        "input  value  comment\n"
        "Fast   10     period of the fast EMA\n"
        "Slow   30     period of the slow EMA\n"
        "Lots   0.10\n");
    write(bench.folder / "State.js",
        "let lastTrade = 0;\nlet ticks = 0; // so far\nvar Lots = 0.1;\nvar Note = 'ticks = 1';\n"
        "function OnTick() { ++ticks; lastTrade = Time(0); }\n");
    CHECK_EQ(bench.lab.run({"inputs", "State.js"}).output,
        "input      value        comment\n"
        "Lots       0.1\n"
        "Note       'ticks = 1'\n"
        "lastTrade  0            (changed by the script)\n"
        "ticks      0            so far (changed by the script)\n");
    write(bench.folder / "None.js", "function OnTick() {}\n");
    CHECK_EQ(bench.lab.run({"inputs", "None.js"}).output, "None.js has no inputs\n");
}

TEST_CASE("what is unknown is answered with what is known, and nothing is written")
{
    const Bench bench;
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
    CHECK(filesIn(bench.folder.path()) == std::set<std::string>{"EURUSD-1m.csv"});
}

TEST_CASE("a damaged record is named with its line, and nothing is written")
{
    const Bench bench;
    writeMinutes(bench.folder / "EURUSD-1m.csv", "2024-01-01T11:41:00Z,1.1,1.0,1.0,1.1,5");
    const Result result = bench.run(crossing);
    CHECK_EQ(result.exitCode, 2);
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "EURUSD-1m.csv:703: "));
    CHECK(result.output.empty());
    CHECK_EQ(filesIn(bench.folder.path()).size(), 1U);
}

TEST_CASE("the pair that turns a symbol's money into USD is asked for by name")
{
    const Bench bench;
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
    CHECK(filesIn(bench.folder / "MA_Cross-EURGBP") == resultFiles);
}

TEST_CASE("a script that fails ends early, with a report up to there")
{
    const Bench bench;
    write(bench.folder / "Fails.js",
        "var ticks = 0;\nfunction OnTick() {\n    if (++ticks === 500)\n        missing();\n}\n");
    const Result result = bench.run("Fails.js");
    CHECK_EQ(result.exitCode, 1);
    CHECK(contains(result.output, "ended early"));
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "missing"));
    CHECK(contains(result.errors, "4"));
    CHECK(filesIn(bench.folder / "Fails-EURUSD") == resultFiles);
    CHECK_EQ(bench.json("Fails-EURUSD/summary.json").at("ticks").get<int>(), 500);
    CHECK(contains(contentOf(bench.folder / "Fails-EURUSD/report.html"), "ended early"));
    // Four calls a minute, after a hundred bars.
    CHECK_EQ(
        bench.json("Fails-EURUSD/run.json").at("errorTime").get<std::string>(), "2024-01-02T03:04:59.999Z");
    CHECK(contains(contentOf(bench.folder / "Fails-EURUSD/report.html"),
        "to 2024-01-07 00:00 UTC, ended early on 2024-01-02 03:04</p>"));
    CHECK(contains(result.errors, "ended early, on 2024-01-02 03:04 UTC: Fails"));
    CHECK_EQ(bench.run(crossing).exitCode, 0);
    CHECK(bench.json("MA_Cross-EURUSD/run.json").at("errorTime").is_null());
}

TEST_CASE("a script that never returns is ended by the limit")
{
    const Bench bench;
    write(bench.folder / "Endless.js", "function OnTick() { for (;;); }\n");
    const Result result = bench.run("Endless.js", {"--limit", "0.2"});
    CHECK_EQ(result.exitCode, 1);
    CHECK(contains(result.errors, "0.2 seconds"));
    CHECK(filesIn(bench.folder / "Endless-EURUSD") == resultFiles);
}

TEST_CASE("a script that hangs in a regular expression is ended by the limit, and nothing is written")
{
    const Bench bench;
    write(bench.folder / "Deaf.js",
        "function OnTick() { /^a*a*a*a*a*a*a*a*a*a*a*a*b/.test('a'.repeat(99)); }\n");
    for (const std::string command : {"run", "check"}) {
        // A clock of its own, so that it fails where it would wait for ever.
        const Result result = bench.lab.runWithin({"timeout", "-s", "KILL", "30"},
            {command, "Deaf.js", "--data", "EURUSD-1m.csv", "--warmup", "100", "--limit", "0.2"});
        CHECK_EQ(result.exitCode, 1);
        CHECK(isOneLine(result.errors));
        CHECK(contains(result.errors, "Deaf: not at its end after 0.2 seconds"));
        CHECK(filesIn(bench.folder / "Deaf-EURUSD").empty());
    }
}

TEST_CASE("interrupted it keeps what was done and says so")
{
    const Bench bench;
    const Result result = bench.lab.runOnTerminal(
        {"run", crossing, "--symbol", "EURUSD", "--seed", "1", "--warmup", "100", "--model", "feed"}, SIGINT);
    CHECK_EQ(result.exitCode, 130);
    CHECK(contains(result.output, "ended early"));
    CHECK(filesIn(bench.folder / "MA_Cross-EURUSD") == resultFiles);
    const auto summary = bench.json("MA_Cross-EURUSD/summary.json");
    CHECK(summary.at("ticks").get<double>() > 0);
    CHECK(summary.at("days").get<double>() < 365);
    CHECK(contains(contentOf(bench.folder / "MA_Cross-EURUSD/run.json"), "Stopped"));
}

TEST_CASE("interrupted before the run has begun it writes nothing")
{
    const Bench bench;
    const Result result
        = bench.lab.runOnTerminal({"run", crossing, "--symbol", "EURUSD", "--seed", "1", "--warmup", "100"},
            SIGTERM, "Simulating EURUSD");
    CHECK_EQ(result.exitCode, 143);
    CHECK_EQ(result.output, "");
    CHECK(contains(result.errors, "stopped before the first run; nothing was written"));
    CHECK_EQ(filesIn(bench.folder.path()).size(), 1U);
}

TEST_CASE("on a terminal it tells how far it is, in a pipe it does not")
{
    const Bench bench;
    const Result result
        = bench.lab.runOnTerminal({"run", crossing, "--data", "EURUSD-1m.csv", "--warmup", "100"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.errors, " %"));
    CHECK(contains(result.errors, "Reading EURUSD-1m.csv"));
    CHECK(contains(result.errors, "MA_Cross"));
    CHECK(result.errors.ends_with("\r\x1b[K"));
    CHECK(!contains(result.output, "\x1b"));
}

TEST_CASE("a folder with something else in it is left alone, a former result is replaced")
{
    const Bench bench;
    fs::create_directory(bench.folder / "mine");
    write(bench.folder / "mine/letter.txt", "dear reader");
    const Result refused = bench.run(crossing, {"--out", "mine"});
    CHECK_EQ(refused.exitCode, 2);
    CHECK(isOneLine(refused.errors));
    CHECK(contains(refused.errors, "mine"));
    CHECK(filesIn(bench.folder / "mine") == std::set<std::string>{"letter.txt"});
    const Result file = bench.run(crossing, {"--out", "EURUSD-1m.csv"});
    CHECK_EQ(file.exitCode, 2);
    CHECK(isOneLine(file.errors));

    CHECK_EQ(bench.run(crossing, {"--out", "again"}).exitCode, 0);
    const std::string before = contentOf(bench.folder / "again/trades.csv");
    CHECK_EQ(bench.run(crossing, {"--out", "again", "--set", "Fast=4"}).exitCode, 0);
    CHECK(filesIn(bench.folder / "again") == resultFiles);
    CHECK(contentOf(bench.folder / "again/trades.csv") != before);
}

TEST_CASE("a full disk is said, and nothing half-written stays")
{
    const Bench bench;
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
    const Bench bench;
    const Result result = bench.lab.runWithin({"sh", "-c", "ulimit -f 8; exec \"$@\"", "sh"},
        {"run", crossing, "--data", "EURUSD-1m.csv", "--warmup", "100", "--out", "result"});
    CHECK_EQ(result.exitCode, 2);
    CHECK_EQ(result.output, "");
    CHECK(isOneLine(result.errors));
    CHECK(contains(result.errors, "File too large"));
    CHECK(filesIn(bench.folder.path()) == std::set<std::string>{"EURUSD-1m.csv"});
}

TEST_CASE("what a script writes to the console without end is cut off")
{
    const Bench bench;
    write(bench.folder / "Talks.js", "function OnTick() { console.log('here'); print('there'); }\n");
    const Result result = bench.run("Talks.js");
    CHECK_EQ(result.exitCode, 0);
    CHECK(result.errors.starts_with("js: here\njs: there\n"));
    CHECK(result.errors.ends_with("further lines of the console are left out\n"));
    CHECK_EQ(std::ranges::count(result.errors, '\n'), 1001);
}

TEST_CASE("an output that takes nothing is said")
{
    Bench bench;
    bench.lab.outputFile = "/dev/full";
    const Result result = bench.lab.run({"inputs", crossing});
    CHECK_EQ(result.exitCode, 2);
    CHECK_EQ(result.errors, "tavoran-lab: cannot write to the standard output: No space left on device\n");
}

TEST_CASE("results are compared on the terminal and as a page")
{
    const Bench bench;
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
    CHECK(filesIn(bench.folder / "both") == std::set<std::string>{"compare.html"});
    CHECK(!contains(result.output, "simulated"));
    const Result missing = bench.lab.run({"compare", "one", "nothing"});
    CHECK_EQ(missing.exitCode, 2);
    CHECK(isOneLine(missing.errors));
    CHECK(contains(missing.errors, "nothing"));
}

TEST_CASE("a comparison says which runs have simulated prices")
{
    const Bench bench;
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
    CHECK(contains(joined(result.output), words));
    CHECK(contains(contentOf(bench.folder / "all/compare.html"), "<ul class=\"warnings\">\n<li>" + words));
}

TEST_CASE("a check passes for the examples and writes its run")
{
    const Bench bench;
    const Result result = bench.lab.run(
        {"check", crossing, "--data", "EURUSD-1m.csv", "--warmup", "100", "--out", "checked"});
    CHECK(contains(result.output, "future      holds"));
    CHECK(contains(result.output, "warm-up     holds"));
    CHECK(contains(result.output, "repetition  holds"));
    CHECK_EQ(result.exitCode, contains(result.output, "FAILS") ? 1 : 0);
    CHECK(filesIn(bench.folder / "checked") == resultFiles);
}

TEST_CASE("a check finds a script whose trades depend on the warm-up, and warns in the report")
{
    const Bench bench;
    write(bench.folder / "Counts.js",
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
    CHECK(contains(contentOf(bench.folder / "checked/report.html"), "Check failed (warm-up)"));
}

TEST_CASE("an account's closed trades get the same page")
{
    const Bench bench;
    write(bench.folder / "history.json",
        R"([{"id":"a","accountId":"A","symbol":"EURUSD","type":"BUY","orderKind":"MARKET","status":"CLOSED",
"lotSize":"0.10","entryPrice":"1.10000","exitPrice":"1.10500","stopLoss":null,"takeProfit":null,"pnl":"49.65",
"swap":"0.00","commission":"0.35","createdAt":"2024-01-01T22:00:00.000Z","closedAt":"2024-01-02T06:00:00.000Z",
"closeReason":"MANUAL"}])");
    const Result result = bench.lab.run({"report", "history.json"});
    CHECK_EQ(result.exitCode, 0);
    CHECK(contains(result.output, "history/report.html"));
    CHECK(contains(result.output, "Maximum drawdown"));
    CHECK(filesIn(bench.folder / "history") == resultFiles);
    CHECK(bench.json("history/summary.json").at("maxDrawdown").is_null());
    CHECK_EQ(bench.json("history/summary.json").at("netProfit").get<double>(), 49.65);
    write(bench.folder / "other.json", "[{]");
    const Result damaged = bench.lab.run({"report", "other.json"});
    CHECK_EQ(damaged.exitCode, 2);
    CHECK(isOneLine(damaged.errors));
    CHECK(!fs::exists(bench.folder / "other"));
}

TEST_CASE("the documented examples run as they are")
{
    const Bench bench;
    for (const std::string name : {"Session_Breakout", "Range_Reversion"}) {
        const Result result = bench.run(documented + name + ".js", {"--out", name, "--set", "Lots=0.2"});
        CHECK_EQ(result.exitCode, 0);
        CHECK(bench.json(name + "/summary.json").at("trades").get<int>() > 0);
        const Result inputs = bench.lab.run({"inputs", documented + name + ".js"});
        CHECK(contains(inputs.output, "Lots "));
        CHECK(!contains(inputs.output, "  \n"));
    }
}

TEST_CASE("help and version are printed by the program and by every command")
{
    const Bench bench;
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
