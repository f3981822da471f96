#include "GeneratedRun.h"
#include "ResultPlace.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/Comparison.h"
#include "lab/core/output/HeatMap.h"
#include "lab/core/output/ResultFiles.h"
#include "lab/core/output/ResultFolder.h"
#include "practice/Check.h"

#include <fstream>
#include <functional>
#include <sstream>

using namespace lab;
using samples::generatedRun;
using samples::ResultPlace;
using samples::smallRun;

namespace {

bool has(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

/// Writes a run's files and reads them again.
SavedRun saved(const RunResult& run, const std::string& name = "one")
{
    const ResultPlace place;
    ResultFolder folder(place.path() / name);
    folder.add("summary.json", summaryJson(figuresOf(run)));
    folder.add("trades.csv", tradesCsv(run));
    folder.add("equity.csv", equityCsv(run));
    folder.commit();
    return readSavedRun(place.path() / name);
}

std::string read(const std::filesystem::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

/// The small run's files at this place, and what `more` adds.
void writeSmallRun(
    const ResultPlace& place, const std::function<void(ResultFolder&)>& more = [](ResultFolder&) {})
{
    const RunResult run = smallRun();
    ResultFolder folder(place.path());
    folder.add("summary.json", summaryJson(figuresOf(run)));
    folder.add("trades.csv", tradesCsv(run));
    folder.add("equity.csv", equityCsv(run));
    more(folder);
    folder.commit();
}

/// What is said of the small run's files after one of them was changed; without the folder.
std::string messageAfter(const std::string& name, const std::function<void(std::string&)>& change)
{
    const ResultPlace place;
    writeSmallRun(place);
    std::string text = read(place.path() / name);
    change(text);
    std::ofstream(place.path() / name, std::ios::binary) << text;
    try {
        static_cast<void>(readSavedRun(place.path()));
    } catch (const OutputError& error) {
        return std::string(error.what()).erase(0, place.path().string().size() + 1);
    }
    return "read";
}

void exchange(std::string& text, const std::string& from, const std::string& to)
{
    const std::size_t place = text.find(from);
    REQUIRE(place != std::string::npos);
    text.replace(place, from.size(), to);
}

} // namespace

TEST_CASE("files that were written are read as they were")
{
    for (const RunResult& run : {smallRun(), generatedRun(2'000, 50, 3'000), RunResult()}) {
        const SavedRun again = saved(run);
        CHECK_EQ(again.name, "one");
        RunResult copy = run;
        copy.trades = again.trades;
        copy.equity = again.equity;
        CHECK_EQ(tradesCsv(copy), tradesCsv(run));
        CHECK_EQ(equityCsv(copy), equityCsv(run));
        if (!run.trades.empty()) {
            CHECK_EQ(again.symbol, "EURUSD");
            CHECK_EQ(again.digits, 5);
        }
        CHECK_EQ(again.figures.size() + (again.from.empty() ? 0U : 2U), 53U);
    }
}

TEST_CASE("trades of one account in several symbols keep them, and are told apart by them")
{
    RunResult run = smallRun();
    run.trades[1].symbol = "USDJPY";
    run.trades[1].digits = 3;
    const SavedRun read = saved(run);
    CHECK_EQ(read.symbol, "EURUSD");
    CHECK_EQ(read.trades[0].symbol, "");
    CHECK_EQ(read.trades[1].symbol, "USDJPY");
    CHECK_EQ(read.trades[1].digits, 3);
    run.trades[1].symbol = "EURJPY";
    const SavedRun other = saved(run);
    CHECK_EQ(firstDifference(read, other).value_or(7), 1U);
    CHECK(compareText({read, other}).find("1.00 EURJPY, 2024-01-02T01:00:00.000Z at 1.105,")
        != std::string::npos);
}

TEST_CASE("a quoted symbol is read out of its quotes")
{
    RunResult run = smallRun();
    run.settings.symbol = "A,\"B\"";
    CHECK_EQ(saved(run).symbol, "A,\"B\"");
}

TEST_CASE("damaged files are told with their line")
{
    CHECK_EQ(messageAfter("trades.csv", [](std::string& text) { exchange(text, "SELL", "HOLD"); }),
        "trades.csv:3: \"HOLD\" is not known here");
    CHECK_EQ(messageAfter("trades.csv", [](std::string& text) { exchange(text, "1.10500", "1.1.5"); }),
        "trades.csv:2: \"1.1.5\" is no number");
    CHECK_EQ(messageAfter("trades.csv", [](std::string& text) { exchange(text, "EURUSD", "\"EURUSD"); }),
        "trades.csv:2: a quote is not closed");
    CHECK_EQ(messageAfter("trades.csv", [](std::string& text) { text.resize(text.size() - 1); }),
        "trades.csv:3: the line is cut off");
    CHECK_EQ(messageAfter("trades.csv", [](std::string& text) { text.clear(); }),
        "trades.csv:1: the file is empty");
    CHECK_EQ(messageAfter("equity.csv", [](std::string& text) { exchange(text, "T02:", "T2:"); }),
        "equity.csv:3: \"2024-01-01T2:00:00.345Z\" is no time");
    CHECK_EQ(messageAfter(
                 "equity.csv", [](std::string& text) { exchange(text, "2024-01-01T02", "2024-13-01T02"); }),
        "equity.csv:3: \"2024-13-01T02:00:00.345Z\" is no time");
    CHECK_EQ(messageAfter("equity.csv", [](std::string& text) { exchange(text, ",100000.00", ""); }),
        "equity.csv:2: 2 fields instead of 3");
    CHECK_EQ(messageAfter("equity.csv", [](std::string& text) { exchange(text, "100000.00", "1e300"); }),
        "equity.csv:2: \"1e300\" is too large");
    CHECK_EQ(messageAfter("equity.csv", [](std::string& text) { exchange(text, "time,", "when,"); }),
        "equity.csv:1: the header is not \"time,balance,equity\"");
    CHECK_EQ(
        messageAfter("summary.json", [](std::string& text) { exchange(text, "\"bars\": ", "\"bars\": x"); }),
        "summary.json:5: this is no JSON");
    CHECK_EQ(messageAfter(
                 "summary.json", [](std::string& text) { exchange(text, "\"bars\": ", "\"bars\": 1e999"); }),
        "summary.json:1: a number is too large");
    CHECK_EQ(messageAfter("summary.json", [](std::string& text) { text = "[]"; }),
        "summary.json:1: this is no summary of a run");
    CHECK_EQ(messageAfter(
                 "summary.json", [](std::string& text) { exchange(text, "\"bars\": 192", "\"bars\": {}"); }),
        "summary.json:1: \"bars\" is no figure");
}

TEST_CASE("a folder in a file's place is told in one line")
{
    const ResultPlace place;
    std::filesystem::create_directory(place.path() / "summary.json");
    std::string message;
    try {
        static_cast<void>(readSavedRun(place.path()));
    } catch (const OutputError& error) {
        message = error.what();
    }
    CHECK_EQ(message, "cannot read " + (place.path() / "summary.json").string() + ": Is a directory");
}

TEST_CASE("a missing file is told in one line")
{
    const ResultPlace place;
    std::string message;
    try {
        static_cast<void>(readSavedRun(place.path()));
    } catch (const OutputError& error) {
        message = error.what();
    }
    CHECK_EQ(
        message, "cannot read " + (place.path() / "summary.json").string() + ": No such file or directory");
}

TEST_CASE("an input that is nested endlessly is none")
{
    constexpr std::size_t depth = 1'000'000;
    const std::string nested = std::string(depth, '[') + std::string(depth, ']');
    const ResultPlace place;
    writeSmallRun(place, [&](ResultFolder& folder) {
        folder.add("run.json", R"({"inputs": {"Fast": "5", "Odd": )" + nested + "}}");
    });
    const SavedRun read = readSavedRun(place.path());
    REQUIRE(read.origin.size() == 1);
    CHECK_EQ(read.origin[0].first, "input Fast");
    CHECK_EQ(read.origin[0].second, "5");
}

TEST_CASE("the first trade that differs is found")
{
    const SavedRun one = saved(smallRun());
    CHECK(!firstDifference(one, one));
    SavedRun other = one;
    other.trades[1].closePrice += 0.00001;
    CHECK_EQ(firstDifference(one, other).value_or(9), 1U);
    other = one;
    other.trades[0].swap -= 1;
    CHECK_EQ(firstDifference(one, other).value_or(9), 0U);
    other = one;
    other.trades.pop_back();
    CHECK_EQ(firstDifference(one, other).value_or(9), 1U);
    other.trades.clear();
    CHECK_EQ(firstDifference(other, one).value_or(9), 0U);
    other = one;
    other.symbol = "USDJPY";
    CHECK_EQ(firstDifference(one, other).value_or(9), 0U);
}

TEST_CASE("runs stand side by side in aligned columns")
{
    RunResult longer = smallRun();
    longer.trades.pop_back();
    const std::string text = compareText({saved(smallRun(), "fast"), saved(longer, "slow_one")});
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    CHECK(line.ends_with("fast          slow_one"));
    CHECK(has(text, "\nFrom  "));
    CHECK(has(text, "  100,000.00  "));
    CHECK(has(text,
        "\xE2\x88\x92"
        "58.92"));
    CHECK(has(text, "\xE2\x80\x93"));
    CHECK(text.ends_with("\nfast and slow_one differ from trade 2 on:\n"
                         "  ticket 2, SELL 1.00 EURUSD, 2024-01-02T01:00:00.000Z at 1.10500, "
                         "2024-01-02T02:00:00.000Z at 1.10605, net \xE2\x88\x92"
                         "108.50\n"
                         "  no more trades\n"));
    const SavedRun same = saved(smallRun());
    CHECK(compareText({same, same}).ends_with("\none and one have the same 2 trades.\n"));
}

TEST_CASE("inputs that differ only behind what is shown of them are told apart")
{
    SavedRun one = saved(smallRun(), "one");
    SavedRun two = saved(smallRun(), "two");
    one.origin.emplace_back("input Note", std::string(60, 'a') + "b");
    two.origin.emplace_back("input Note", std::string(60, 'a') + "c");
    CHECK(has(compareText({one, two}), "\nInput Note  "));
    two.origin.back() = one.origin.back();
    CHECK(!has(compareText({one, two}), "Input Note"));
}

TEST_CASE("a comparison's page escapes names and loads nothing")
{
    std::vector<SavedRun> runs{saved(smallRun()), saved(generatedRun(2'000, 50, 100'000))};
    runs[1].name = "</script><img src=x onerror=a()>";
    const std::string page = comparePage(runs);
    CHECK(!has(page, "<img"));
    CHECK(has(page, "Comparison of one, &lt;/script&gt;"));
    CHECK(has(page, "default-src 'none'"));
    CHECK(page.size() < 600'000);
    CHECK(page == comparePage(runs));
}

TEST_CASE("a heat map frames the best and shows a dash for what is missing")
{
    const std::string html
        = heatMap({"sharpe", "Fast", "Slow<", {"5", "10"}, {"20", "30"}, {{1.5, -0.75}, {std::nullopt, 0}}});
    CHECK(has(html, "<caption>sharpe by Fast (across) and Slow&lt; (down)"));
    CHECK(has(html,
        "<td class=\"best\" style=\"background:color-mix(in srgb, var(--gain-fill) 70%, "
        "var(--card))\">1.50</td>"));
    CHECK(has(html,
        "var(--loss-fill) 35%, var(--card))\">\xE2\x88\x92"
        "0.75</td>"));
    CHECK(has(html,
        "<th scope=\"row\">30</th><td><span title=\"not tried, failed, or "
        "undefined\">\xE2\x80\x93</span></td>"));
    CHECK(has(heatMap({"x", "a", "b", {"1"}, {"2"}, {}}),
        "<td><span title=\"not tried, failed, or undefined\">\xE2\x80\x93</span></td>"));
}

CHECK_MAIN()
