#include "lab/core/figures/DrawdownSpans.h"
#include "lab/core/figures/ReportSeries.h"
#include "practice/Check.h"

#include "Runs.h"

#include <algorithm>
#include <cmath>
#include <set>

using namespace lab;

TEST_CASE("a month is measured against the last day before it")
{
    // 2024-12-30 and the days after
    const RunResult result = runs::withEquities({110'000, 121'000, 121'000, 60'500}, 100'000, 20'087);
    const std::vector<YearRow> years = monthlyTable(result);
    REQUIRE(years.size() == 2);
    CHECK_EQ(years[0].year, 2024);
    CHECK_NEAR(years[0].months[11].value(), 0.21, 1e-15);
    CHECK(!years[0].months[0].has_value());
    CHECK_EQ(years[1].months[0], Figure(-0.5));
    CHECK_EQ(years[1].whole, Figure(-0.5));
}

TEST_CASE("the same month of two years is two months")
{
    RunResult result = runs::withEquities({110'000, 121'000}, 100'000, 20'087);
    result.days[1].day += 365;
    const std::vector<YearRow> years = monthlyTable(result);
    REQUIRE(years.size() == 2);
    CHECK_NEAR(years[0].months[11].value(), 0.1, 1e-15);
    CHECK_NEAR(years[1].months[11].value(), 0.1, 1e-15);
}

TEST_CASE("every return lies in its bin and 0 is a border")
{
    std::vector<practice::Cents> equities;
    practice::Cents equity = 10'000'000;
    for (int day = 0; day < 300; ++day)
        equities.push_back(equity += (day * 7919 % 100 - 45) * 1000);
    const std::vector<HistogramBin> bins = returnHistogram(runs::withEquities(equities, 10'000'000));
    std::size_t all = 0;
    for (const HistogramBin& bin : bins) {
        all += bin.count;
        CHECK(!(bin.from < 0 && bin.to > 0));
    }
    CHECK_EQ(all, std::size_t{300});
    CHECK(bins.size() >= 10 && bins.size() <= 20);
    CHECK(bins.front().count > 0 && bins.back().count > 0);
}

TEST_CASE("a flat line is one bin and no days are none")
{
    const std::vector<HistogramBin> bins = returnHistogram(runs::withEquities({100'000, 100'000}));
    REQUIRE(bins.size() == 1);
    CHECK_EQ(bins[0].from, 0.0);
    CHECK_EQ(bins[0].count, std::size_t{2});
    CHECK(returnHistogram(runs::withEquities({})).empty());
}

TEST_CASE("trades count for the weekday and the hour of their opening")
{
    RunResult result;
    result.trades = {runs::trade(1, 100, 0),                            // Thursday, 1970-01-01
        runs::trade(2, -30, -1),                                        // Wednesday, the last hour
        runs::trade(3, 5, 3 * practice::dayMs + 5 * practice::hourMs)}; // Sunday
    const auto weekdays = weekdayTable(result);
    CHECK_EQ(weekdays[3].net, practice::Cents{100});
    CHECK_EQ(weekdays[2].net, practice::Cents{-30});
    CHECK_EQ(weekdays[2].wins, std::int64_t{0});
    CHECK_EQ(weekdays[6].trades, std::int64_t{1});
    const auto hours = hourTable(result);
    CHECK_EQ(hours[0].net, practice::Cents{100});
    CHECK_EQ(hours[23].net, practice::Cents{-30});
    CHECK_EQ(hours[5].wins, std::int64_t{1});
}

TEST_CASE("a drawdown tells its peak and bottom and recovery")
{
    const RunResult result = runs::withEquities({90'000, 80'000, 100'000, 95'000}, 100'000, 19'000);
    const std::vector<DrawdownSpan> spans = worstDrawdowns(result);
    REQUIRE(spans.size() == 2);
    CHECK_EQ(spans[0].peakDay, 18'999);
    CHECK_EQ(spans[0].bottomDay, 19'001);
    CHECK_EQ(spans[0].recoveredDay, std::optional<std::int32_t>(19'002));
    CHECK_EQ(spans[0].depth, 0.2);
    CHECK_EQ(spans[0].days, 3);
    CHECK_EQ(spans[1].peakDay, 19'002);
    CHECK(!spans[1].recoveredDay.has_value());
    CHECK_EQ(spans[1].days, 1);
}

TEST_CASE("of the drawdowns the deepest five are kept and of equal ones the older")
{
    const RunResult result = runs::withEquities({99'000, 100'000, 98'000, 100'000, 99'000, 100'000, 97'000,
        100'000, 99'000, 100'000, 96'000, 100'000});
    const std::vector<DrawdownSpan> spans = worstDrawdowns(result);
    REQUIRE(spans.size() == 5);
    CHECK_EQ(spans[0].depth, 0.04);
    CHECK_EQ(spans[2].depth, 0.02);
    CHECK_EQ(spans[3].bottomDay, 19'000);
    CHECK_EQ(spans[4].bottomDay, 19'004);
}

TEST_CASE("a thinned curve keeps its ends and every extreme of its buckets")
{
    std::vector<double> curve;
    for (int i = 0; i < 100'000; ++i)
        curve.push_back(std::sin(i * 0.001) + (i == 54'321 ? 10 : 0) - (i == 54'323 ? 10 : 0));
    const std::vector<std::size_t> places = thinned(curve, 2000);
    CHECK(places.size() <= 2000);
    CHECK(places.size() > 1500);
    CHECK(std::is_sorted(places.begin(), places.end()));
    CHECK_EQ(std::set<std::size_t>(places.begin(), places.end()).size(), places.size());
    CHECK_EQ(places.front(), std::size_t{0});
    CHECK_EQ(places.back(), curve.size() - 1);
    CHECK(std::binary_search(places.begin(), places.end(), std::size_t{54'321}));
    CHECK(std::binary_search(places.begin(), places.end(), std::size_t{54'323}));
}

TEST_CASE("a short curve stays whole")
{
    CHECK_EQ(thinned(std::vector<double>{3, 1, 2}, 3).size(), std::size_t{3});
    CHECK_EQ(thinned(std::vector<double>{3, 1, 2, 5, 4}, 0).size(), std::size_t{4});
    CHECK(thinned({}).empty());
}

TEST_CASE("joined bars open with the first and close with the last")
{
    const std::vector<BarRow> bars{
        {1, 10, 12, 9, 11}, {2, 11, 15, 10, 14}, {3, 14, 14, 8, 9}, {4, 9, 10, 9, 10}, {5, 10, 11, 7, 8}};
    const std::vector<BarRow> joined = joinedBars(bars, 2);
    REQUIRE(joined.size() == 2);
    CHECK_EQ(joined[0].time, practice::TimeMs{1});
    CHECK_EQ(joined[0].open, 10.0);
    CHECK_EQ(joined[0].high, 15.0);
    CHECK_EQ(joined[0].low, 8.0);
    CHECK_EQ(joined[0].close, 9.0);
    CHECK_EQ(joined[1].low, 7.0);
    CHECK_EQ(joinedBars(bars, 5).size(), bars.size());
    CHECK(joinedBars({}, 0).empty());
}

TEST_CASE("of many trades the worst and the best of each group are shown")
{
    RunResult result;
    for (int ticket = 1; ticket <= 10'000; ++ticket) {
        TradeRow row = runs::trade(ticket, 1);
        row.worst = ticket == 7777 ? -9'999 : -1;
        row.best = ticket == 7779 ? 9'999 : 1;
        result.trades.push_back(row);
    }
    const std::vector<ExcursionPoint> points = excursions(result, 100);
    CHECK(points.size() <= 100);
    const auto has = [&](int ticket) {
        return std::any_of(points.begin(), points.end(),
            [=](const ExcursionPoint& point) { return point.ticket == ticket; });
    };
    CHECK(has(7777));
    CHECK(has(7779));
    CHECK_EQ(excursions(result, 10'000).size(), std::size_t{10'000});
}

TEST_CASE("the drawdown curve falls from the highest equity so far")
{
    const std::vector<EquityPoint> equity{{0, 100, 100}, {1, 100, 200}, {2, 100, 150}, {3, 100, 250}};
    CHECK(drawdownCurve(equity) == std::vector<double>({0, 0, 0.25, 0}));
}

TEST_CASE("below nothing there is no drawdown as long as nothing was ever there")
{
    const std::vector<EquityPoint> equity{{0, 0, 0}, {1, 0, -50}, {2, 0, 200}, {3, 0, 50}};
    CHECK(drawdownCurve(equity) == std::vector<double>({0, 0, 0, 0.75}));
}

CHECK_MAIN()
