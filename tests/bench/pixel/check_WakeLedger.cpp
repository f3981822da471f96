#include "pixel/WakeLedger.h"

#include "practice/Check.h"

namespace {

constexpr std::int64_t ms = 1'000'000;
constexpr std::int64_t everySecond = 1000 * ms;

Wake ofMain(std::int64_t atMs, int count = 1)
{
    return {atMs * ms, "terminal", true, count};
}

TEST_CASE("a timer explains one wake-up of the main thread in each of its periods")
{
    const WakeLedger ledger({ofMain(200), ofMain(1210), ofMain(2190)}, everySecond, {});
    CHECK_EQ(ledger.all(), 3);
    CHECK_EQ(ledger.ofTimer(), 3);
    CHECK_EQ(ledger.beyond(), 0);
}

TEST_CASE("a wake-up that came late is no second one when the next comes in time")
{
    const WakeLedger ledger({ofMain(200), ofMain(1360), ofMain(2200)}, everySecond, {});
    CHECK_EQ(ledger.ofTimer(), 3);
    CHECK_EQ(ledger.beyond(), 0);
}

TEST_CASE("of the turns that a timer has not taken only one is late")
{
    const WakeLedger ledger(
        {ofMain(200), ofMain(5200), ofMain(5210), ofMain(5220), ofMain(6200)}, everySecond, {});
    CHECK_EQ(ledger.ofTimer(), 4);
    CHECK_EQ(ledger.beyond(), 1);
}

TEST_CASE("a second wake-up within a period is one too many")
{
    const WakeLedger ledger({ofMain(200), ofMain(700), ofMain(1200, 2)}, everySecond, {});
    CHECK_EQ(ledger.ofTimer(), 2);
    CHECK_EQ(ledger.beyond(), 2);
}

TEST_CASE("no timer of the main thread explains another thread")
{
    const WakeLedger ledger({{200 * ms, "helper", false, 1}}, everySecond, {});
    CHECK_EQ(ledger.ofTimer(), 0);
    CHECK_EQ(ledger.beyond(), 1);
}

TEST_CASE("a deed explains what wakes while it is done, in any thread, besides the timer")
{
    const std::vector<Wake> wakes{
        ofMain(200), ofMain(990), {1000 * ms, "helper", false, 3}, ofMain(1200, 2), ofMain(1900)};
    const WakeLedger ledger(wakes, everySecond, {{1010 * ms, 500 * ms}});
    CHECK_EQ(ledger.all(), 8);
    CHECK_EQ(ledger.ofTimer(), 2);
    CHECK_EQ(ledger.ofDeeds(), 5);
    CHECK_EQ(ledger.beyond(), 1);
}

TEST_CASE("wake-ups are counted by the name of their thread")
{
    const WakeLedger ledger({ofMain(1), {2, "helper", false, 3}, {3, "helper", false, 1}}, everySecond, {});
    CHECK_EQ(ledger.byThread().at("terminal"), 1);
    CHECK_EQ(ledger.byThread().at("helper"), 4);
}

} // namespace

CHECK_MAIN()
