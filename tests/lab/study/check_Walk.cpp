#include "lab/study/Sets.h"

#include "lab/core/study/StitchedRun.h"
#include "lab/core/study/WalkFiles.h"
#include "practice/Check.h"

#include <algorithm>
#include <nlohmann/json.hpp>

using namespace lab;
using practice::dayMs;

namespace {

constexpr std::int32_t firstDay = 19'000;

/// Two days: the first earns `first`, the second `second`; a trade each.
RunResult run(std::int32_t day, practice::Cents start, practice::Cents first, practice::Cents second)
{
    RunResult result;
    result.settings.symbol = "EURUSD";
    result.settings.from = day * dayMs;
    result.settings.to = (day + 2) * dayMs;
    result.settings.inputs = {{"Fast", "5"}};
    result.startBalance = start;
    result.ticks = 10;
    result.equity.push_back({day * dayMs, start, start});
    practice::Cents balance = start;
    for (int i = 0; i < 2; ++i) {
        const practice::Cents profit = i == 0 ? first : second;
        TradeRow trade;
        trade.ticket = i + 1;
        trade.closeTime = (day + i) * dayMs + 1'000;
        trade.profit = profit;
        result.trades.push_back(trade);
        balance += profit;
        result.equity.push_back({trade.closeTime, balance, balance});
        result.days.push_back(
            {day + i, balance, balance, balance - profit, std::min(balance, balance - profit)});
        result.chart.push_back({(day + i) * dayMs, 1, 1, 1, 1});
    }
    result.equityDrawdown = {0.01, 1'000};
    result.tickPrint = 1;
    return result;
}

} // namespace

TEST_CASE("windows test one after the other without a gap, the last one what is left")
{
    const auto windows = walkWindows(0, 10 * dayMs, 4 * dayMs, 2 * dayMs, false);
    CHECK_EQ(windows.size(), 3U);
    CHECK((windows[1] == WalkWindow{2 * dayMs, 6 * dayMs, 8 * dayMs}));
    const auto ragged = walkWindows(0, 9 * dayMs, 4 * dayMs, 2 * dayMs, false);
    CHECK_EQ(ragged.size(), 3U);
    CHECK((ragged[2] == WalkWindow{4 * dayMs, 8 * dayMs, 9 * dayMs, dayMs}));
    CHECK_EQ(ragged[1].shortBy, 0);
    CHECK(!ragged[2].isStump()); // half a test
    CHECK(walkWindows(0, 4 * dayMs, 4 * dayMs, 2 * dayMs, false).empty());
}

TEST_CASE("anchored windows all begin on the first day")
{
    const auto windows = walkWindows(dayMs, 10 * dayMs, 4 * dayMs, 2 * dayMs, true);
    CHECK_EQ(windows.size(), 3U);
    for (const WalkWindow& window : windows)
        CHECK_EQ(window.trainFrom, dayMs);
    CHECK_EQ(windows[2].testFrom, 9 * dayMs);
}

TEST_CASE("a stitched run goes on where the one before has ended")
{
    StitchedRun stitched;
    CHECK(!stitched.result());
    stitched.add(run(firstDay, 100'000, 5'000, -2'000));
    stitched.add(run(firstDay + 2, 103'000, -4'000, 1'000));
    const RunResult& all = *stitched.result();
    CHECK_EQ(all.startBalance, 100'000);
    CHECK_EQ(all.equity.size(), 5U); // no point twice
    CHECK_EQ(all.equity.back().balance, 100'000);
    CHECK_EQ(all.days.size(), 4U);
    CHECK_EQ(all.trades.size(), 4U);
    CHECK_EQ(all.trades.back().ticket, 4);
    CHECK_EQ(all.ticks, 20U);
    CHECK_EQ(*all.settings.to, (firstDay + 4) * dayMs);
    CHECK(all.settings.inputs.empty());
    CHECK(std::ranges::is_sorted(all.equity, {}, &EquityPoint::time));
}

TEST_CASE("a drawdown reaches over the border of two runs")
{
    StitchedRun stitched;
    stitched.add(run(firstDay, 100'000, 5'000, -2'000));
    stitched.add(run(firstDay + 2, 103'000, -4'000, 1'000));
    const RunResult& all = *stitched.result();
    // From 105 000 down to 99 000.
    CHECK_EQ(all.equityDrawdown.money, 6'000);
    CHECK_NEAR(all.equityDrawdown.fraction, 6.0 / 105, 1e-12);
    CHECK_EQ(all.balanceDrawdown.money, 6'000);
}

TEST_CASE("a day that two runs share is one day")
{
    RunResult later = run(firstDay + 1, 103'000, -4'000, 1'000);
    StitchedRun stitched;
    stitched.add(run(firstDay, 100'000, 5'000, -2'000));
    stitched.add(later);
    const RunResult& all = *stitched.result();
    CHECK_EQ(all.days.size(), 3U);
    CHECK_EQ(all.days[1].equity, 99'000);
    CHECK_EQ(all.days[1].firstEquity, 105'000);
    CHECK_EQ(all.days[1].lowestEquity, 99'000);
}

TEST_CASE("efficiency compares growth a year behind the choice with that before it")
{
    Walk walk{Grid({axisOf("A", "1,2", true)}), {sortFigureOf("sharpe"), 30}, 2, 0, false, {}, {}};
    for (const double growth : {0.2, 0.4}) {
        SetResult chosen = madeSet(1, 1);
        const auto rows = figureRows();
        const auto place = std::ranges::find(rows, "cagr", &FigureRow::key) - rows.begin();
        chosen.figures[static_cast<std::size_t>(place)] = growth;
        Figures test;
        test.cagr = 0.1;
        walk.rows.push_back({{0, dayMs, 2 * dayMs}, chosen, test, {}, {}});
    }
    CHECK_NEAR(walk.rows[0].efficiency().value(), 0.5, 1e-12);
    CHECK_NEAR(walk.rows[1].efficiency().value(), 0.25, 1e-12);
    CHECK(!walk.efficiency());
    walk.whole = Figures();
    walk.whole->cagr = 0.15;
    CHECK_NEAR(walk.efficiency().value(), 0.5, 1e-12); // 0.15 of the mean, 0.3
    walk.rows.push_back({{0, dayMs, 2 * dayMs}, {}, {}, {}, {}});
    CHECK(!walk.rows[2].efficiency());
    const std::string csv = walkCsv(walk);
    CHECK_EQ(std::ranges::count(csv, '\n'), 4);
    CHECK(csv.find("1,1970-01-01T00:00:00.000Z,1970-01-02T00:00:00.000Z,1970-01-03T00:00:00.000Z,2,1,50,")
        != std::string::npos);
    CHECK_EQ(nlohmann::json::parse(walkJson(walk, {}, "1")).at("windows").get<int>(), 3);
    CHECK(walkPart(walk).find("Efficiency: 50.00 %") != std::string::npos);
}

TEST_CASE("a window says how many sets could be chosen, and why none was")
{
    const SweepOrder order{sortFigureOf("sharpe"), 30};
    WalkRow good;
    good.choose({madeSet(0, 1, 40), madeSet(1, 2, 12), madeSet(2, 0.5, 90), failedSet(3)}, order);
    CHECK_EQ(good.choice.sets, 4U);
    CHECK_EQ(good.choice.failed, 1U);
    CHECK_EQ(good.choice.eligible, 2U);
    CHECK_EQ(good.chosen.value().number, 0U);

    WalkRow few;
    few.choose({madeSet(0, 1, 4), madeSet(1, 2, 12), failedSet(2)}, order);
    CHECK(!few.chosen);
    CHECK_EQ(few.reason(order), "no set made 30 trades, the most were 12");

    WalkRow flat;
    flat.choose({madeSet(0, 1, 40)}, {sortFigureOf("calmar"), 1});
    CHECK_EQ(flat.reason({sortFigureOf("calmar"), 1}), "calmar is undefined for all with at least 1 trade");

    WalkRow broken;
    broken.choose({failedSet(0), failedSet(1)}, order);
    CHECK_EQ(broken.reason(order), "every set failed");
}

TEST_CASE("what is behind the end of a walk says so, in every file")
{
    Walk walk{Grid({axisOf("A", "1,2", true)}), {sortFigureOf("sharpe"), 30}, 2, 0, false, {}, {}};
    for (int row = 0; row < 3; ++row)
        walk.rows.push_back({{row * dayMs, (row + 1) * dayMs, (row + 2) * dayMs}, {}, {}, {}, {}});
    walk.rows[0].choose({madeSet(0, 1, 3), madeSet(1, 2, 4)}, walk.order);
    for (int row = 1; row < 3; ++row)
        walk.rows[static_cast<std::size_t>(row)].choose({madeSet(0, 1, 40), madeSet(1, 2, 4)}, walk.order);
    walk.rows[1].test = Figures();
    walk.rows[1].ending = "ended early: A, \"b\"";
    CHECK_EQ(walk.tested(), 1U);
    const std::string csv = walkCsv(walk);
    CHECK(csv.find(",efficiency,eligible,reason\n") != std::string::npos);
    CHECK(csv.find(",0,\"no set made 30 trades, the most were 4\"\n") != std::string::npos);
    CHECK(csv.find(",1,\"ended early: A, \"\"b\"\"\"\n") != std::string::npos);
    CHECK(csv.find(",1,the walk was over before\n") != std::string::npos);
    const auto json = nlohmann::json::parse(walkJson(walk, {}, "1"));
    CHECK_EQ(json.at("tested").get<int>(), 1);
    const auto& rows = json.at("rows");
    CHECK_EQ(rows.size(), 3U);
    CHECK(rows[0].at("inputs").is_null());
    CHECK_EQ(rows[0].at("eligible").get<int>(), 0);
    CHECK_EQ(rows[0].at("reason").get<std::string>(), "no set made 30 trades, the most were 4");
    CHECK_EQ(rows[1].at("inputs").at("A").get<std::string>(), "1");
    CHECK_EQ(rows[1].at("trainTrades").get<int>(), 40);
    CHECK(rows[2].at("trades").is_null());
    CHECK_EQ(rows[2].at("reason").get<std::string>(), "the walk was over before");
    CHECK(walkPart(walk).find("no set made 30 trades, the most were 4") != std::string::npos);
}

TEST_CASE("an efficiency that is undefined says why")
{
    Walk walk{Grid({axisOf("A", "1,2", true)}), {sortFigureOf("sharpe"), 30}, 2, 0, false, {}, {}};
    CHECK_EQ(walk.efficiencyGap(), "growth a year of the tests is undefined");
    walk.whole = Figures();
    walk.whole->cagr = 0.15;
    CHECK_EQ(walk.efficiencyGap(), "growth a year of the choices on their pasts is undefined");
    SetResult chosen = madeSet(1, 1);
    const auto rows = figureRows();
    const auto place = std::ranges::find(rows, "cagr", &FigureRow::key) - rows.begin();
    chosen.figures[static_cast<std::size_t>(place)] = 0.3;
    walk.rows.push_back({{0, dayMs, 2 * dayMs}, chosen, Figures(), {}, {}});
    // One choice grew, but not all of them together.
    Figure& growth = walk.rows[0].chosen->figures[static_cast<std::size_t>(place)];
    chosen.figures[static_cast<std::size_t>(place)] = -0.5;
    walk.rows.push_back({{0, dayMs, 2 * dayMs}, chosen, Figures(), {}, {}});
    CHECK_EQ(walk.efficiencyGap(),
        "the choices did not grow on their pasts on average: \xE2\x88\x92"
        "10.00 % a year");
    walk.rows.pop_back();
    growth = 0.01;
    CHECK_EQ(walk.efficiencyGap(), "beyond 1,000 %: what it is compared with is hardly above 0");
    growth = 0.3;
    CHECK_EQ(walk.efficiencyGap(), "");
    CHECK_EQ(nlohmann::json::parse(walkJson(walk, {}, "1")).at("efficiency").get<double>(), 0.5);
}

TEST_CASE("what is missing of a window says why")
{
    Walk walk{Grid({axisOf("A", "1,2", true)}), {sortFigureOf("sharpe"), 30}, 2, 0, false, {}, {}};
    SetResult chosen = madeSet(1, 1);
    const auto place = std::ranges::find(figureRows(), "cagr", &FigureRow::key) - figureRows().begin();
    Figure& growth = chosen.figures[static_cast<std::size_t>(place)];
    growth = -0.1;
    Figures test;
    test.cagr = 0.1;
    walk.rows.push_back({{0, dayMs, 2 * dayMs}, {}, {}, {}, {}});
    walk.rows.push_back({{dayMs, 2 * dayMs, 3 * dayMs}, chosen, test, {}, {}});
    walk.rows.push_back({{2 * dayMs, 3 * dayMs, 4 * dayMs}, chosen, {}, {}, {}});
    growth.reset();
    walk.rows.push_back({{3 * dayMs, 4 * dayMs, 5 * dayMs}, chosen, test, {}, {}});
    walk.whole = test;
    const std::string part = walkPart(walk);
    for (const char* reason :
        {"Efficiency: \xE2\x80\x93 (the choices did not grow on their pasts on average: ",
            "title=\"no set was chosen\">\xE2\x80\x93", "title=\"the walk was over before\">\xE2\x80\x93",
            "title=\"needs growth on the past\">\xE2\x80\x93",
            "title=\"needs at least two days with different returns\">\xE2\x80\x93"})
        CHECK(part.find(reason) != std::string::npos);
    CHECK(part.find("<td class=\"n\">\xE2\x80\x93") == std::string::npos);
    CHECK(part.find("<td>\xE2\x80\x93") == std::string::npos);
}

CHECK_MAIN()
