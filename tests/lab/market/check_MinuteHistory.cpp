#include "lab/market/Histories.h"
#include "practice/Check.h"

using namespace lab;
using namespace lab::checks;

namespace {

const std::vector<HandMade> threeMinutes{{0, {138'676, 138'690, 138'670, 138'681, 42}, 4},
    {1, {138'681, 138'684, 138'680, 138'680, 7}, 0}, {5, {138'680, 138'700, 138'680, 138'699, 9}, 6}};

constexpr std::int64_t saturday = 2 * 1440; // minutes after the Thursday on which the histories begin

} // namespace

TEST_CASE("a minute is found by its time")
{
    const MinuteHistory history = historyOf(threeMinutes);
    CHECK_EQ(history.size(), std::size_t(3));
    CHECK_EQ(history.timeAt(2), start + 5 * minuteMs);
    CHECK_EQ(history.at(2).time, history.timeAt(2));
    CHECK(history.at(2).bar == (GridBar{138'680, 138'700, 138'680, 138'699, 9}));
    CHECK(history.at(2).halfSpread == practice::HalfSpreads(6));
    CHECK_EQ(history.firstFrom(start - 1), std::size_t(0));
    CHECK_EQ(history.firstFrom(start), std::size_t(0));
    CHECK_EQ(history.firstFrom(start + 1), std::size_t(1));
    CHECK_EQ(history.firstFrom(start + 2 * minuteMs), std::size_t(2));
    CHECK_EQ(history.firstFrom(start + 5 * minuteMs + 1), std::size_t(3));
    CHECK_EQ(historyOf({}).firstFrom(start), std::size_t(0));
}

TEST_CASE("a gap is a hole in time or in price, and what is before the first minute")
{
    const MinuteHistory history = historyOf(threeMinutes);
    CHECK(history.opensWithGap(0));
    CHECK(!history.opensWithGap(1));
    CHECK(history.opensWithGap(2));
    const MinuteHistory jump = historyOf({{0, {10, 10, 10, 10, 1}}, {1, {11, 11, 11, 11, 1}}});
    CHECK(jump.opensWithGap(1));
}

TEST_CASE("only a Saturday shows that weekends trade")
{
    const GridBar bar{10, 10, 10, 10, 1};
    CHECK(!historyOf({{0, bar}, {saturday - 1, bar}, {saturday + 1440, bar}, {saturday + 2 * 1440, bar}})
               .weekendsTrade());
    CHECK(historyOf({{0, bar}, {saturday, bar}}).weekendsTrade());
    CHECK(historyOf({{saturday + 1439, bar}}).weekendsTrade());
    const std::int64_t before1970 = -start / minuteMs - 4 * 1440; // Sunday, 1969-12-28
    CHECK(!historyOf({{before1970, bar}}).weekendsTrade());
    CHECK(historyOf({{before1970 - 1, bar}}).weekendsTrade());
    CHECK(!historyOf({}).weekendsTrade());
}

TEST_CASE("the hash of the data is the same everywhere and another for each difference")
{
    const std::uint64_t hash = dataHash(historyOf(threeMinutes));
    CHECK_EQ(hash, std::uint64_t(0x8b1c423311b97e51));
    const auto changed = [](auto change) {
        std::vector<HandMade> minutes = threeMinutes;
        change(minutes);
        return dataHash(historyOf(minutes));
    };
    CHECK_EQ(changed([](auto&) {}), hash);
    CHECK(changed([](auto& minutes) { ++minutes[2].minute; }) != hash);
    CHECK(changed([](auto& minutes) { ++minutes[1].bar.open; }) != hash);
    CHECK(changed([](auto& minutes) { ++minutes[1].bar.high; }) != hash);
    CHECK(changed([](auto& minutes) { --minutes[1].bar.low; }) != hash);
    CHECK(changed([](auto& minutes) { ++minutes[1].bar.close; }) != hash);
    CHECK(changed([](auto& minutes) { ++minutes[1].bar.volume; }) != hash);
    CHECK(changed([](auto& minutes) { ++minutes[1].halfSpread.open; }) != hash);
    CHECK(changed([](auto& minutes) { ++minutes[1].halfSpread.high; }) != hash);
    CHECK(changed([](auto& minutes) { ++minutes[1].halfSpread.low; }) != hash);
    CHECK(changed([](auto& minutes) { ++minutes[1].halfSpread.close; }) != hash);
    CHECK(changed([](auto& minutes) { minutes.pop_back(); }) != hash);
    CHECK(dataHash(historyOf(threeMinutes, "GBPUSD")) != hash);
    MinuteHistory digits = historyOf(threeMinutes);
    digits.spec.digits = 4;
    CHECK(dataHash(digits) != hash);
    MinuteHistory simulated = historyOf(threeMinutes);
    simulated.isSimulated = true;
    CHECK_EQ(dataHash(simulated), hash);
}

TEST_CASE("two million minutes take four bytes each beside their prices")
{
    constexpr std::size_t count = 2'000'000;
    MinuteHistory history;
    history.starts.reserve(count);
    for (std::size_t minute = 0; minute < count; ++minute) {
        history.minutes.append({{138'676, 138'684, 138'670, 138'681, 42}, 4});
        history.starts.push_back(static_cast<std::int32_t>(minute));
    }
    history.minutes.trim();
    CHECK_EQ(history.bytes(), count * 36);
}

CHECK_MAIN()
