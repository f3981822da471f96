#include "lab/market/Histories.h"
#include "practice/Check.h"

#include "lab/core/market/RunSpan.h"

using namespace lab;
using namespace lab::checks;
using practice::Bar;
using practice::Timeframe;

namespace {

// Ten minutes, then nothing for a while, then ten more from 00:33 on; each has a price of its own.
MinuteHistory twoStretches()
{
    std::vector<HandMade> minutes;
    for (const std::int64_t from : {0, 33}) {
        for (std::int64_t minute = from; minute < from + 10; ++minute)
            minutes.push_back(
                {minute, {1000 + minute, 1005 + minute, 990 - minute, 1001 + minute, minute + 1}});
    }
    return historyOf(minutes);
}

std::string complaint(const MinuteHistory& history, const RunSettings& settings)
{
    try {
        static_cast<void>(spanOf(history, settings));
    } catch (const HistoryError& error) {
        return error.what();
    }
    return "accepted";
}

double price(std::int64_t points)
{
    return static_cast<double>(points) / 1e5;
}

RunSettings fiveMinutes()
{
    RunSettings settings;
    settings.symbol = "EURUSD";
    settings.timeframe = Timeframe::M5;
    return settings;
}

} // namespace

TEST_CASE("a run begins and ends where it was told to")
{
    const MinuteHistory history = twoStretches();
    RunSettings settings = fiveMinutes();
    settings.from = start + 3 * minuteMs;
    CHECK(spanOf(history, settings) == (RunSpan{3, 20}));
    settings.from = start + 3 * minuteMs + 1;
    settings.to = start + 8 * minuteMs;
    CHECK(spanOf(history, settings) == (RunSpan{4, 8}));
    settings.to = start + 8 * minuteMs - 1; // its last minute is not over
    CHECK(spanOf(history, settings) == (RunSpan{4, 7}));
    settings.from = start + 20 * minuteMs; // in the hole
    settings.to = start + 34 * minuteMs;
    CHECK(spanOf(history, settings) == (RunSpan{10, 11}));
    settings.from = start - practice::dayMs;
    settings.to = start + practice::dayMs;
    CHECK(spanOf(history, settings) == (RunSpan{0, 20}));
}

TEST_CASE("without a beginning the run begins with the first bar that has the warm-up before it")
{
    const MinuteHistory history = twoStretches(); // bars at 00:00, 00:05, 00:30, 00:35, 00:40
    RunSettings settings = fiveMinutes();
    for (const auto& [bars, minute] :
        std::vector<std::pair<int, std::size_t>>{{-1, 0}, {0, 0}, {1, 5}, {2, 10}, {3, 12}, {4, 17}}) {
        settings.warmupBars = bars;
        CHECK(spanOf(history, settings) == (RunSpan{minute, 20}));
        CHECK_EQ(barsBefore(history, Timeframe::M5, 100, minute).size(),
            static_cast<std::size_t>(std::max(0, bars)));
    }
    settings.warmupBars = 5;
    CHECK_EQ(complaint(history, settings),
        std::string("EURUSD: 5 bars of 5m, and none after a warm-up of 5; --warmup 1 leaves most of them to "
                    "the run"));
    settings.warmupBars = 1;
    CHECK_EQ(complaint(history, settings), std::string("accepted"));
    settings.warmupBars = 5;
    settings.from = start;
    CHECK_EQ(complaint(history, settings), std::string("accepted"));
}

TEST_CASE("a warm-up that nobody has asked for takes a quarter of the history at most")
{
    RunSettings settings = fiveMinutes();
    CHECK(spanOf(twoStretches(), settings) == (RunSpan{5, 20})); // one of five bars
    settings.to = start + 30 * minuteMs;                         // two bars, of which a quarter is none
    CHECK(spanOf(twoStretches(), settings) == (RunSpan{0, 10}));
    settings.to.reset();
    settings.timeframe = Timeframe::M1;
    CHECK(spanOf(someHistory(4'000, 3), settings) == (RunSpan{1'000, 4'000}));
    CHECK(spanOf(someHistory(5'999, 3), settings) == (RunSpan{1'499, 5'999}));
    CHECK(spanOf(someHistory(30'000, 3), settings) == (RunSpan{1'500, 30'000}));
}

TEST_CASE("a period without prices is refused, and those that have some are named")
{
    const MinuteHistory history = twoStretches();
    const std::string empty
        = "EURUSD: no prices in this period; there are some from 2014-05-01 to 2014-05-01";
    RunSettings settings = fiveMinutes();
    settings.from = start + 43 * minuteMs;
    CHECK_EQ(complaint(history, settings), empty);
    settings.from = start + 15 * minuteMs;
    settings.to = start + 33 * minuteMs;
    CHECK_EQ(complaint(history, settings), empty);
    settings.from = start + 5 * minuteMs;
    settings.to = start + 5 * minuteMs;
    CHECK_EQ(complaint(history, settings), empty);
    settings.to = start;
    CHECK_EQ(complaint(history, settings), empty);
    CHECK_EQ(complaint(historyOf({}), settings), std::string("EURUSD: no prices in this period"));
    CHECK_EQ(complaint(historyOf({}), fiveMinutes()), std::string("EURUSD: no prices in this period"));
}

TEST_CASE("the bars before a minute are folded from the minutes before it")
{
    const MinuteHistory history = twoStretches();
    const std::vector<Bar> bars = barsBefore(history, Timeframe::M5, 3, 14);
    REQUIRE(bars.size() == 3);
    CHECK(bars[0]
        == (Bar{
            start + 5 * minuteMs, price(1005), price(1014), price(981), price(1010), 6 + 7 + 8 + 9 + 10}));
    CHECK(
        bars[1] == (Bar{start + 30 * minuteMs, price(1033), price(1039), price(956), price(1035), 34 + 35}));
    CHECK(
        bars[2] == (Bar{start + 35 * minuteMs, price(1035), price(1041), price(954), price(1037), 36 + 37}));
    CHECK_EQ(barsBefore(history, Timeframe::M5, 100, 14).size(), std::size_t(4));
    CHECK(barsBefore(history, Timeframe::M5, 100, 0).empty());
    CHECK(barsBefore(history, Timeframe::M5, 0, 14).empty());
    CHECK_EQ(barsBefore(history, Timeframe::M5, 1, 1).front().close, price(1001));
    CHECK_EQ(barsBefore(history, Timeframe::M1, 100, 20).size(), std::size_t(20));
}

TEST_CASE("a week's bar and a month's begin where the practice platform lets them begin")
{
    const MinuteHistory history = someHistory(30'000, 3);
    for (const Timeframe timeframe : practice::allTimeframes) {
        const std::vector<Bar> bars = barsBefore(history, timeframe, 1'000'000, history.size());
        std::int64_t volume = 0;
        TimeMs last = INT64_MIN;
        for (const Bar& bar : bars) {
            CHECK_EQ(bar.time, practice::barStart(bar.time, timeframe));
            CHECK(bar.time > last);
            last = bar.time;
            volume += bar.volume;
        }
        CHECK_EQ(volume, history.minutes.volumeBefore(history.size()));
        CHECK_EQ(last, practice::barStart(history.timeAt(history.size() - 1), timeframe));
    }
}

CHECK_MAIN()
