#include "lab/Contains.h"
#include "lab/study/Sets.h"

#include "lab/core/study/StudyError.h"
#include "lab/core/study/SweepFiles.h"
#include "practice/Check.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>

using namespace lab;

namespace {

/// Twelve sets: A from 1 to 3 by B from 1 to 4.
Grid twelve()
{
    return Grid({axisOf("A", "1:3:1", true), axisOf("B", "1:4:1", true)});
}

constexpr std::array<double, 12> sharpes{0.1, 0.2, 0.3, 0.4, 0.5, 1.5, 0.7, 0.8, 0.9, 1.0, 1.1, 3.0};

std::vector<SetResult> twelveSets()
{
    std::vector<SetResult> sets;
    for (std::uint64_t number = 0; number < 12; ++number)
        sets.push_back(madeSet(number, sharpes[number], number == 11 ? 5 : 50));
    sets[2] = failedSet(2);
    return sets;
}

SweepTable tableBy(std::string_view key, std::vector<SetResult> sets = twelveSets())
{
    const auto all = sets;
    return sweepTable(twelve(), std::move(sets), {sortFigureOf(key), 30},
        [all](std::uint64_t number) { return std::ranges::find(all, number, &SetResult::number)->days; });
}

std::vector<std::uint64_t> numbersOf(const SweepTable& table)
{
    std::vector<std::uint64_t> numbers;
    for (const std::size_t place : table.ranking)
        numbers.push_back(table.sets[place].number);
    return numbers;
}

} // namespace

TEST_CASE("the best set comes first, then those with few trades, those that failed last")
{
    const SweepTable table = tableBy("sharpe");
    CHECK((numbersOf(table) == std::vector<std::uint64_t>{5, 10, 9, 8, 7, 6, 4, 3, 1, 0, 11, 2}));
    CHECK_EQ(table.sets[table.best.value()].number, 5U);
    CHECK_EQ(table.choice.failed, 1U);
    CHECK(table.hasEnoughTrades(table.sets[5]) && !table.hasEnoughTrades(table.sets[11]));
    CHECK_EQ(bestOf(table.sets, table.order).value(), 5U);
}

TEST_CASE("of falls the lowest is the best, and of equal sets the first")
{
    CHECK_EQ(numbersOf(tableBy("maxDrawdown")).front(), 0U);
    const std::vector<std::uint64_t> numbers = numbersOf(tableBy("netProfit"));
    CHECK_EQ(numbers.front(), 0U);
    CHECK_EQ(numbers.at(1), 1U);
}

TEST_CASE("without figure or trades enough there is no best")
{
    CHECK(!tableBy("sqn").best);
    CHECK(!tableBy("sharpe", {failedSet(0), madeSet(1, 2, 29)}).best);
    CHECK(!tableBy("sharpe", {}).best);
    CHECK(sweepParts(tableBy("sqn")).empty());
    CHECK(contains(sweepJson(tableBy("sqn"), {}, "1"), "\"best\": null"));
    CHECK_THROWS(static_cast<void>(sortFigureOf("Sharpe")), StudyError);
    CHECK_THROWS(static_cast<void>(sortFigureOf("from")), StudyError);
}

TEST_CASE("a lonely peak has an unstable neighbourhood")
{
    const SweepTable table = tableBy("sharpe");
    // Of set 5 (A=2, B=2): 0.1 0.2 (failed) 0.5 0.7 0.9 1.0 1.1
    CHECK_NEAR(table.stability[5].value_or(-1), (0.1 + 0.2 + 0.5 + 0.7 + 0.9 + 1.0 + 1.1) / 7 / 1.5, 1e-12);
    CHECK(!table.stability[2]);
    std::vector<SetResult> some = twelveSets();
    some.erase(some.begin());
    CHECK(!tableBy("sharpe", some).stability[4]);
}

TEST_CASE("all sets count as trials, and overfitting is judged over all days")
{
    const SweepTable table = tableBy("sharpe");
    CHECK(table.deflatedSharpe.has_value());
    CHECK(table.overfittingProbability.has_value());
    std::vector<SetResult> two{madeSet(0, 1), madeSet(1, 1.2)};
    const SweepTable few = tableBy("sharpe", two);
    two.push_back(failedSet(2));
    const SweepTable more = tableBy("sharpe", two);
    CHECK(few.deflatedSharpe.value() > more.deflatedSharpe.value());
    // The same set is the best in every half.
    CHECK_EQ(few.overfittingProbability.value(), 0.0);
}

TEST_CASE("days that a set does not have count as standstill")
{
    const std::vector<SetResult> whole{madeSet(0, 1), madeSet(1, 1.2), madeSet(2, 1.3)};
    // One that ended early, first or last; then sets that share no day.
    const std::vector<std::array<std::pair<std::ptrdiff_t, std::ptrdiff_t>, 3>> spans{
        {{{0, 10}, {0, 64}, {0, 64}}},
        {{{0, 64}, {0, 64}, {0, 10}}},
        {{{0, 32}, {32, 64}, {10, 20}}},
    };
    for (const auto& span : spans) {
        std::vector<SetResult> some = whole;
        std::vector<SetResult> still = whole;
        for (std::size_t i = 0; i < some.size(); ++i) {
            const auto [from, to] = span[i];
            some[i].days.assign(whole[i].days.begin() + from, whole[i].days.begin() + to);
            for (std::ptrdiff_t day = 0; day < 64; ++day) {
                if (day < from || day >= to)
                    still[i].days[static_cast<std::size_t>(day)].gain = 0;
            }
        }
        const Figure probability = tableBy("sharpe", still).overfittingProbability;
        CHECK(probability.has_value());
        CHECK(tableBy("sharpe", some).overfittingProbability == probability);
    }
}

TEST_CASE("the table for programs has a line for each set, with its inputs, figures and faults")
{
    const std::string csv = sweepCsv(tableBy("sharpe"));
    std::istringstream lines(csv);
    std::string header;
    std::string first;
    std::getline(lines, header);
    std::getline(lines, first);
    CHECK(header.starts_with("rank,set,A,B,status,from,to,days,"));
    CHECK(header.ends_with(",refusals,stability,reason"));
    CHECK(first.starts_with("1,5,2,2,done,"));
    CHECK(contains(first, ",1234.56,"));
    CHECK_EQ(std::ranges::count(csv, '\n'), 13);
    CHECK(contains(csv, "12,2,1,3,failed,,"));
    CHECK(csv.ends_with(",\"its process was ended by signal 11, \"\"they\"\" say\"\n"));
}

TEST_CASE("the summary for programs names the best and what it is worth")
{
    RunResult about;
    about.inputs = {{"A", "2"}, {"Wait", "7"}};
    const auto json = nlohmann::json::parse(sweepJson(tableBy("sharpe"), about, "1.2"));
    CHECK_EQ(json.value("fixedInputs", nlohmann::json()).dump(), R"({"Wait":"7"})");
    CHECK_EQ(json.at("sets").get<int>(), 12);
    CHECK_EQ(json.at("failed").get<int>(), 1);
    CHECK_EQ(json.at("best").at("inputs").dump(), R"({"A":"2","B":"2"})");
    CHECK_EQ(json.at("best").at("value").get<double>(), 1.5);
    CHECK_EQ(json.at("inputs").at("B").size(), 4U);
    CHECK(json.at("deflatedSharpe").is_number());
}

TEST_CASE("the maps lie through the best set, with the longer axis across")
{
    const std::vector<std::string> parts = sweepParts(tableBy("sharpe"));
    CHECK_EQ(parts.size(), 3U);
    CHECK(contains(parts.at(0), "12 of 12 sets were tried, of which 1 failed"));
    CHECK(contains(parts.at(1), "Sharpe ratio by B (across) and A (down)"));
    CHECK(contains(parts.at(1), "class=\"best\""));
    CHECK(contains(parts.at(2), "id=\"stability\""));
    CHECK(contains(parts.at(2), "Neighbours' mean / own Sharpe ratio, %,")
        || contains(parts.at(2), "Neighbours&#39; mean / own Sharpe ratio, %,"));
    CHECK(contains(parts.at(0), "in one or several inputs, diagonals included"));
}

TEST_CASE("a map has no value where no set was tried")
{
    std::vector<SetResult> some = twelveSets();
    std::erase_if(some, [](const SetResult& set) { return set.number == 4 || set.number == 7; });
    const std::string map = sweepParts(tableBy("sharpe", some)).at(1);
    const std::string row = map.substr(map.find("<th scope=\"row\">2</th>"));
    const std::string fields = row.substr(0, row.find("</tr>"));
    CHECK(contains(fields, "</th><td><span title="));
    CHECK(contains(fields, "\">1.50</td>"));
    CHECK(contains(fields, "\">0.70</td><td><span title="));
}

TEST_CASE("the page ranks the sets that can be chosen, and marks the others")
{
    const std::string part = sweepParts(tableBy("sharpe")).at(0);
    CHECK(contains(part, "<th scope=\"col\" class=\"n\">Rank</th><th scope=\"col\">Inputs</th>"));
    CHECK(contains(part, "<tr><td class=\"n\">1</td><th scope=\"row\">A=2 B=2</th>"));
    CHECK(contains(part, "<tr><td class=\"n\">10</td>"));
    CHECK(!contains(part, "<tr><td class=\"n\">11</td>"));
    CHECK(contains(part,
        "<tr><td class=\"n\"><span title=\"has fewer than 30 trades, or not the figure\">\xE2\x80\x93"
        "</span></td><th scope=\"row\">A=3 B=4</th>"));
}

TEST_CASE("what a sweep cannot tell says why")
{
    const auto overview
        = [](std::vector<SetResult> sets) { return sweepParts(tableBy("sharpe", std::move(sets))).at(0); };
    const std::string one = overview({madeSet(0, 1)});
    CHECK(contains(one, "\xE2\x80\x93: needs at least two sets with a Sharpe ratio</span>"));
    CHECK(contains(one, "\xE2\x80\x93: needs at least two sets that did not fail</span>"));
    CHECK(contains(one, "\xE2\x80\x93: only known where every set of the grid was tried</span>"));
    CHECK(contains(one, "<td class=\"n\"><span title=\"only known where every set of the grid was tried\">"));
    std::vector<SetResult> days = twelveSets();
    for (SetResult& set : days)
        set.days.resize(std::min<std::size_t>(set.days.size(), 31));
    CHECK(contains(
        overview(days), "\xE2\x80\x93: needs at least 32 days with prices, two in each of 16 blocks"));
    std::vector<SetResult> lost = twelveSets();
    for (SetResult& set : lost) {
        if (!set.failure)
            set = madeSet(set.number, -1.0 - static_cast<double>(set.number));
    }
    CHECK(contains(overview(lost), "\xE2\x80\x93: needs a figure above 0</span>"));
    std::vector<SetResult> slight = twelveSets();
    slight[0] = madeSet(0, 0.001);
    CHECK(contains(overview(slight),
        "title=\"no neighbour has the figure, or theirs is beyond 1,000 % of it: it is hardly above 0\""));
    for (const std::vector<SetResult>& sets : {days, lost, {madeSet(0, 1)}}) {
        for (const std::string& part : sweepParts(tableBy("sharpe", sets)))
            CHECK(!contains(part, "<td>\xE2\x80\x93"));
    }
    CHECK(contains(sweepParts(tableBy("sharpe")).at(1), "title=\"not tried, failed, or undefined\""));
}

TEST_CASE("the same results give the same bytes, in whatever order they came")
{
    const SweepTable one = tableBy("sharpe");
    const SweepTable other = tableBy("sharpe");
    CHECK_EQ(sweepCsv(one), sweepCsv(other));
    CHECK(sweepParts(one) == sweepParts(other));
}

CHECK_MAIN()
