// What a lab account's course says: points, days, drawdowns, excursions, exposure, fingerprint.

#include "lab/account/SessionFixture.h"

#include <algorithm>
#include <cstdint>

using namespace lab;

namespace {

constexpr TimeMs toMidnight = 14 * practice::hourMs;

void checkPoint(const EquityPoint& point, TimeMs offset, Cents balance, Cents equity)
{
    CHECK_EQ(point.time, tenOClock + offset);
    CHECK_EQ(point.balance, balance);
    CHECK_EQ(point.equity, equity);
}

void checkDay(const DayRow& row, std::int32_t day, Cents balance, Cents equity, Cents first, Cents lowest)
{
    CHECK_EQ(row.day, day);
    CHECK_EQ(row.balance, balance);
    CHECK_EQ(row.equity, equity);
    CHECK_EQ(row.firstEquity, first);
    CHECK_EQ(row.lowestEquity, lowest);
}

bool isSame(const RunResult& left, const RunResult& right)
{
    const auto same = [](const TradeRow& a, const TradeRow& b) {
        return a.ticket == b.ticket && a.closeTime == b.closeTime && a.closePrice == b.closePrice
            && a.profit == b.profit && a.worst == b.worst && a.best == b.best;
    };
    return std::equal(left.trades.begin(), left.trades.end(), right.trades.begin(), right.trades.end(), same)
        && left.decisionPrint == right.decisionPrint && left.exposedMs == right.exposedMs
        && left.equity.size() == right.equity.size();
}

} // namespace

TEST_CASE("points, days, drawdowns and exposure follow the account")
{
    const TimeMs sunday = toMidnight + practice::dayMs;
    Session session;
    session.price(0, 108'500);
    session.price(20 * second, 108'500);
    session->order(Side::Buy, 1, none, none); // at 1.08504, for 7
    session.price(40 * second, 108'600);
    session->closeAll(); // at 1.08596
    session.price(60 * second, 108'600);
    session->order(Side::Sell, 1, none, none); // at 1.08596, for 7
    session.price(80 * second, 108'500);       // worth 92
    session.gap(sunday, 108'700);              // worth -108, and two nights have brought 5.60
    session.price(sunday + 20 * second, 108'800);
    const RunResult result = session.finish();

    REQUIRE(result.equity.size() == 4);
    checkPoint(result.equity[0], 0, 10'000'000, 10'000'000);
    checkPoint(result.equity[1], 40 * second, 10'008'500, 10'008'500);
    checkPoint(result.equity[2], 80 * second, 10'008'500, 10'017'000);
    checkPoint(result.equity[3], sunday + 20 * second, 9'987'560, 9'987'560);

    REQUIRE(result.days.size() == 2);
    checkDay(result.days[0], 20'000, 10'008'500, 10'017'000, 10'000'000, 9'998'500);
    checkDay(result.days[1], 20'002, 9'987'560, 9'987'560, 9'997'560, 9'987'560);

    CHECK_EQ(result.equityDrawdown.money, 29'440);
    CHECK_EQ(result.equityDrawdown.fraction, 29'440.0 / 10'017'000.0);
    CHECK_EQ(result.balanceDrawdown.money, 20'940);
    CHECK_EQ(result.balanceDrawdown.fraction, 20'940.0 / 10'008'500.0);
    CHECK_EQ(result.exposedMs, 20 * second + sunday - 40 * second);
    CHECK_EQ(result.startBalance, 10'000'000);
}

TEST_CASE("days without a position have their rows and points")
{
    Session session;
    session.price(0, 108'500);
    session.gap(toMidnight, 108'600);
    session.price(toMidnight + second, 108'700);
    session.gap(toMidnight + 2 * practice::dayMs, 108'600);
    const RunResult result = session.finish();
    REQUIRE(result.days.size() == 3);
    const std::vector<std::int32_t> days{20'000, 20'001, 20'003};
    const std::vector<TimeMs> ends{0, toMidnight + second, toMidnight + 2 * practice::dayMs};
    for (std::size_t i = 0; i < days.size(); ++i)
        checkDay(result.days[i], days[i], 10'000'000, 10'000'000, 10'000'000, 10'000'000);
    // The first day has one price: its start is its end.
    REQUIRE(result.equity.size() == 3);
    for (std::size_t i = 0; i < ends.size(); ++i)
        checkPoint(result.equity[i], ends[i], 10'000'000, 10'000'000);
    CHECK_EQ(result.exposedMs, 0);
    CHECK_EQ(result.equityDrawdown.money, 0);
}

TEST_CASE("the deepest fall in money and that in parts of the peak may be two")
{
    DrawdownMeter meter;
    for (const Cents value : {1'000, 1'100, 880, 990, 10'000, 9'000, 9'500})
        meter.see(value);
    CHECK_EQ(meter.deepest().money, 1'000);
    CHECK_EQ(meter.deepest().fraction, 220.0 / 1'100.0);
}

TEST_CASE("excursions take in every price from opening to closing")
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    session->order(Side::Sell, 1, 1.08800, none);
    session.price(20 * second, 108'400);
    session.price(40 * second, 108'700);
    session.price(60 * second, 108'550);
    session->closeAll();
    session->order(Side::Sell, 1, 1.08800, none);
    session.gap(80 * second, 108'900);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 3);
    CHECK_EQ(result.trades[0].worst, -10'800);
    CHECK_EQ(result.trades[0].best, 19'200);
    CHECK_EQ(result.trades[0].profit, 4'200);
    CHECK_EQ(result.trades[1].worst, -20'800);
    CHECK_EQ(result.trades[1].best, 9'200);
    CHECK_EQ(result.trades[2].worst, -35'800); // the price after the gap, which closed it
    CHECK_EQ(result.trades[2].best, 0);
    CHECK_EQ(result.trades[2].reason, ExitReason::StopLoss);
}

TEST_CASE("a position that is closed at once has cost the spread")
{
    Session session;
    session.price(0, 108'500);
    session->order(Side::Buy, 1, none, none);
    const RunResult result = session.finish();
    REQUIRE(result.trades.size() == 1);
    CHECK_EQ(result.trades[0].profit, -800);
    CHECK_EQ(result.trades[0].worst, -800);
    CHECK_EQ(result.trades[0].best, 0);
    CHECK_EQ(result.trades[0].spreadCost, 800);
    CHECK_EQ(result.exposedMs, 0);
    CHECK_EQ(result.equityDrawdown.money, 1'500);
}

namespace {

struct Variation {
    double lots = 1;
    TimeMs closing = 60 * second;
    TimeMs delay = 0;
    bool refusal = false;
};

RunResult varied(const Variation& variation)
{
    Session session;
    session.settings.delayMs = variation.delay;
    session.price(0, 108'500);
    session->order(Side::Buy, variation.lots, 1.08000, 1.09000);
    if (variation.refusal)
        session->order(Side::Buy, 1, 1.09000, none);
    for (TimeMs offset = 20 * second; offset < 120 * second; offset += 20 * second) {
        session.price(offset, 108'500 + offset / second);
        if (offset == variation.closing)
            session->closeAll();
    }
    return session.finish();
}

} // namespace

TEST_CASE("equal sessions have equal results, and each decision shows in the fingerprint")
{
    const RunResult first = varied({});
    CHECK_EQ(first.trades.size(), 1u);
    CHECK(isSame(first, varied({})));
    CHECK(first.decisionPrint != varied({.lots = 0.99}).decisionPrint);
    CHECK(first.decisionPrint != varied({.closing = 80 * second}).decisionPrint);
    CHECK(first.decisionPrint != varied({.closing = 0}).decisionPrint);
    CHECK(first.decisionPrint != varied({.delay = 1}).decisionPrint);
    CHECK(first.decisionPrint != varied({.refusal = true}).decisionPrint);
    CHECK(first.decisionPrint != Session().finish().decisionPrint);
}

CHECK_MAIN()
