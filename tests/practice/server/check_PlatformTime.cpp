#include "practice/Check.h"
#include "practice/server/HandClock.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/server/FirstUse.h"
#include "practice/server/PlatformTime.h"
#include "practice/storage/Database.h"
#include "practice/storage/TradeStore.h"

using namespace practice;

namespace {

constexpr TimeMs start = HandClock::firstMoment;
constexpr TimeMs years = 1100 * dayMs;

} // namespace

TEST_CASE("the platform's time is the machine's, through a stall and a sleep")
{
    HandClock machine;
    const PlatformTime time(machine, 0);
    CHECK_EQ(time.now(), start);
    for (const TimeMs step : {TimeMs(1), TimeMs(250), 40 * minuteMs, 3 * dayMs, years}) {
        machine.pass(step);
        CHECK_EQ(time.now(), machine.shown);
        CHECK_EQ(time.now(), machine.shown);
    }
}

TEST_CASE(
    "a clock set forward by hours is followed, by years not, and nothing is left of it when it is put right")
{
    HandClock machine;
    const PlatformTime time(machine, 0);
    machine.shown += 5 * hourMs;
    CHECK_EQ(time.now(), start + 5 * hourMs);
    machine.shown += years;
    CHECK_EQ(time.now(), start + 5 * hourMs);
    machine.pass(minuteMs);
    CHECK_EQ(time.now(), start + 5 * hourMs + minuteMs);
    machine.shown -= years;
    machine.pass(minuteMs);
    CHECK_EQ(time.now(), machine.shown);
    const PlatformTime restarted(machine, time.now());
    CHECK_EQ(restarted.now(), machine.shown);
}

TEST_CASE("a clock set back by hours is waited for at half the pace")
{
    HandClock machine;
    const PlatformTime time(machine, 0);
    machine.shown -= hourMs;
    CHECK_EQ(time.now(), start);
    TimeMs last = start;
    for (int i = 0; i < 1000; ++i) { // looked at again and again, in odd pieces
        machine.pass(1);
        CHECK(time.now() >= last && time.now() <= last + 1);
        last = time.now();
    }
    CHECK_EQ(last, start + 500);
    machine.pass(hourMs);
    CHECK_EQ(time.now(), start + 500 + hourMs / 2);
    machine.pass(hourMs);
    CHECK_EQ(time.now(), machine.shown);
    machine.pass(1);
    CHECK_EQ(time.now(), machine.shown);
}

TEST_CASE("a clock set back by years is not waited for")
{
    HandClock machine;
    const PlatformTime time(machine, 0);
    machine.shown -= years;
    CHECK_EQ(time.now(), start);
    machine.pass(dayMs);
    CHECK_EQ(time.now(), start + dayMs);
    machine.shown += years; // and put right
    CHECK_EQ(time.now(), machine.shown);
}

TEST_CASE("a platform whose trades are from later than the clock goes on from there")
{
    const TemporaryFolder folder;
    Database database(folder / "x.db");
    TradeStore store(database);
    CHECK_EQ(earliestMoment(database, start), TimeMs(0));
    prepareFirstUse(database, start);
    CHECK_EQ(earliestMoment(database, start), barStart(start, Timeframe::D1));
    const Account account = store.load().accounts.at(1);
    Trade trade;
    trade.id = "one";
    trade.accountId = account.id;
    trade.symbol = "EURUSD";
    trade.status = TradeStatus::Closed;
    trade.createdAt = start;
    trade.updatedAt = trade.closedAt = start + years;
    ChangeSet changes;
    changes.trades = {trade};
    store.store(changes);
    CHECK_EQ(earliestMoment(database, start), start); // nothing is open, so the clock is believed
    CHECK_EQ(earliestMoment(database, start + years - hourMs), start + years);
    trade.id = "two";
    trade.status = TradeStatus::Open;
    changes.trades = {trade};
    store.store(changes);
    CHECK_EQ(earliestMoment(database, start), start + years);
    HandClock machine;
    const PlatformTime time(machine, earliestMoment(database, machine.shown));
    machine.pass(hourMs);
    CHECK_EQ(time.now(), start + years + hourMs);
}

CHECK_MAIN()
