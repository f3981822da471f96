#include "lab/market/Histories.h"
#include "practice/Check.h"

#include <array>
#include <set>

using namespace lab;
using namespace lab::checks;

namespace {

RunSettings settingsOf(Model model)
{
    RunSettings settings;
    settings.model = model;
    settings.timeframe = practice::Timeframe::M5;
    return settings;
}

constexpr std::array allModels{Model::Open, Model::Ohlc, Model::Path, Model::Feed};

// Three minutes: the second follows the first without a jump, the third after a hole.
const std::vector<HandMade> threeMinutes{{0, {100'000, 100'030, 99'990, 100'010, 7}, 4},
    {1, {100'010, 100'012, 99'980, 100'000, 9}, 0}, {4, {100'000, 100'020, 99'980, 100'005, 3}, 6}};

std::vector<std::int64_t> midsOf(const std::vector<Moment>& moments)
{
    std::vector<std::int64_t> mids;
    for (const Moment& moment : moments)
        mids.push_back(moment.mid);
    return mids;
}

} // namespace

TEST_CASE("a minute has its open, both extremes and its close at fixed seconds")
{
    const std::vector<Moment> moments = walked(historyOf(threeMinutes), settingsOf(Model::Ohlc));
    REQUIRE(moments.size() == 12);
    const TimeMs third = start + 4 * minuteMs;
    const std::vector<Moment> expected{
        {start, 100'000, 4, 0, true, true},
        {start + 20'000, 99'990, 4, 0, false, true}, // 10 points away, the high 30
        {start + 40'000, 100'030, 4, 0, false, true},
        {start + 59'999, 100'010, 4, 0, false, true},
        {start + 60'000, 100'010, 5, 1, false, true}, // no spread recorded: the symbol's usual one
        {start + 80'000, 100'012, 5, 1, false, true},
        {start + 100'000, 99'980, 5, 1, false, true},
        {start + 119'999, 100'000, 5, 1, false, true},
        {third, 100'000, 6, 2, true, true},
        {third + 20'000, 99'980, 6, 2, false, true}, // as near as the high
        {third + 40'000, 100'020, 6, 2, false, true},
        {third + 59'999, 100'005, 6, 2, false, true},
    };
    const auto usual = historyOf(threeMinutes).spec.spreadPoints / 2;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        Moment wanted = expected[i];
        if (wanted.minute == 1)
            wanted.halfSpread = usual;
        CHECK(moments[i] == wanted);
    }
}

TEST_CASE("the order of the extremes can be turned round and is otherwise the nearer one first")
{
    const MinuteHistory history
        = historyOf({{0, {1000, 1010, 980, 1000, 1}}, {1, {1000, 1020, 990, 1000, 1}}});
    RunSettings settings = settingsOf(Model::Ohlc);
    using Mids = std::vector<std::int64_t>;
    CHECK(midsOf(walked(history, settings)) == (Mids{1000, 1010, 980, 1000, 1000, 990, 1020, 1000}));
    settings.extremes = ExtremeOrder::HighFirst;
    CHECK(midsOf(walked(history, settings)) == (Mids{1000, 1010, 980, 1000, 1000, 1020, 990, 1000}));
    settings.extremes = ExtremeOrder::LowFirst;
    CHECK(midsOf(walked(history, settings)) == (Mids{1000, 980, 1010, 1000, 1000, 990, 1020, 1000}));
}

TEST_CASE("a minute that stands still has four moments too")
{
    const auto moments = walked(historyOf({{0, {1000, 1000, 1000, 1000, 1}}}), settingsOf(Model::Ohlc));
    CHECK(midsOf(moments) == (std::vector<std::int64_t>{1000, 1000, 1000, 1000}));
    CHECK_EQ(moments.back().time, start + 59'999);
}

TEST_CASE("a minute comes after a gap when it follows a hole or opens elsewhere")
{
    const MinuteHistory history = historyOf(
        {{0, {1000, 1000, 1000, 1000, 1}}, {1, {1000, 1001, 999, 1001, 1}}, {2, {1000, 1001, 1000, 1001, 1}},
            {4, {1001, 1001, 1000, 1000, 1}}, {5, {1000, 1000, 1000, 1000, 1}}});
    for (const Model model : allModels) {
        std::set<std::uint32_t> gaps;
        std::size_t count = 0;
        for (const Moment& moment : walked(history, settingsOf(model))) {
            if (!moment.afterGap)
                continue;
            ++count;
            gaps.insert(moment.minute);
            CHECK_EQ(moment.time, history.timeAt(moment.minute));
        }
        CHECK(gaps == (std::set<std::uint32_t>{0, 2, 3}));
        CHECK_EQ(count, gaps.size());
    }
}

TEST_CASE("a spread that jumps is a gap as well, though the mid stays where it was")
{
    const MinuteHistory history = historyOf({{0, {1000, 1000, 1000, 1000, 1}, 4},
        {1, {1000, 1000, 1000, 1000, 1}, 4}, {2, {1000, 1000, 1000, 1000, 1}, 9},
        {3, {1000, 1000, 1000, 1000, 1}, 4}, {4, {1000, 1000, 1000, 1000, 1}, 4}});
    const auto gaps = [&history](const RunSettings& settings, std::size_t first) {
        std::set<std::uint32_t> minutes;
        for (const Moment& moment : walked(history, settings, first, history.size())) {
            if (moment.afterGap)
                minutes.insert(moment.minute);
        }
        return minutes;
    };
    for (const Model model : allModels) {
        RunSettings settings = settingsOf(model);
        CHECK(gaps(settings, 0) == (std::set<std::uint32_t>{0, 2, 3}));
        CHECK(gaps(settings, 2) == (std::set<std::uint32_t>{2, 3}));
        settings.spreadPoints = 10; // whatever was recorded
        CHECK(gaps(settings, 0) == (std::set<std::uint32_t>{0}));
    }
}

TEST_CASE("a spread that goes on from a minute's close into the next one's open is no gap")
{
    const GridBar bar{1000, 1000, 1000, 1000, 1};
    const MinuteHistory history
        = historyOf({{0, bar, {4, 9, 9, 7}}, {1, bar, {7, 9, 9, 4}}, {2, bar, {7, 9, 9, 4}}});
    for (const Model model : allModels) {
        std::set<std::uint32_t> gaps;
        for (const Moment& moment : walked(history, settingsOf(model))) {
            if (moment.afterGap)
                gaps.insert(moment.minute);
        }
        CHECK(gaps == (std::set<std::uint32_t>{0, 2}));
    }
}

TEST_CASE("with a call a bar the broker sees what it sees with four a minute")
{
    const MinuteHistory history = someHistory(400, 5);
    std::vector<Moment> bars = walked(history, settingsOf(Model::Open));
    const std::vector<Moment> minutes = walked(history, settingsOf(Model::Ohlc));
    std::vector<TimeMs> calls;
    for (Moment& moment : bars) {
        if (moment.forScript)
            calls.push_back(moment.time);
        moment.forScript = true;
    }
    CHECK(bars == minutes);

    std::vector<TimeMs> expected;
    TimeMs bar = -1;
    for (std::size_t minute = 0; minute < history.size(); ++minute) {
        const TimeMs time = history.timeAt(minute);
        if (time / (5 * minuteMs) != bar)
            expected.push_back(time);
        bar = time / (5 * minuteMs);
    }
    CHECK(expected.size() > 80);
    CHECK(calls == expected);
}

TEST_CASE("a walk that begins within a bar has no call for that bar's open")
{
    const MinuteHistory history = historyOf({{0, {1000, 1000, 1000, 1000, 1}},
        {1, {1000, 1000, 1000, 1000, 1}}, {5, {1000, 1000, 1000, 1000, 1}}});
    const auto moments = walked(history, settingsOf(Model::Open), 1, 3);
    REQUIRE(moments.size() == 8);
    for (std::size_t i = 0; i < moments.size(); ++i)
        CHECK_EQ(moments[i].forScript, i == 4);
}

TEST_CASE("the path is the practice market's, with the moments at which it changes")
{
    const MinuteHistory history = someHistory(60, 8);
    const std::vector<Moment> moments = walked(history, settingsOf(Model::Path));
    std::size_t next = 0;
    for (std::uint32_t minute = 0; minute < history.size(); ++minute) {
        const GridBar bar = history.at(minute).bar;
        std::int64_t high = bar.open;
        std::int64_t low = bar.open;
        const std::size_t first = next;
        for (; next < moments.size() && moments[next].minute == minute; ++next) {
            const Moment& moment = moments[next];
            high = std::max(high, moment.mid);
            low = std::min(low, moment.mid);
            CHECK(moment.forScript);
            CHECK_EQ((moment.time - history.timeAt(minute)) % 200, TimeMs(0));
            if (next > first) {
                CHECK(moment.time > moments[next - 1].time);
                CHECK(
                    moment.mid != moments[next - 1].mid || moment.halfSpread != moments[next - 1].halfSpread);
            }
        }
        REQUIRE(next > first);
        CHECK_EQ(moments[first].time, history.timeAt(minute));
        CHECK_EQ(moments[first].mid, bar.open);
        CHECK_EQ(moments[next - 1].mid, bar.close);
        CHECK(moments[next - 1].time < history.timeAt(minute) + minuteMs);
        CHECK_EQ(high, bar.high);
        CHECK_EQ(low, bar.low);
    }
    CHECK_EQ(next, moments.size());
    CHECK(moments.size() > 60 * 50);
}

TEST_CASE("another seed takes another path, the same one the same")
{
    const MinuteHistory history = someHistory(20, 8);
    RunSettings settings = settingsOf(Model::Path);
    const std::vector<Moment> moments = walked(history, settings);
    CHECK(walked(history, settings) == moments);
    settings.seed = 2;
    CHECK(walked(history, settings) != moments);
    settings.model = Model::Ohlc;
    const std::vector<Moment> plain = walked(history, settings);
    settings.seed = 1;
    CHECK(walked(history, settings) == plain);
}

TEST_CASE("two minutes of the same prices have paths of their own")
{
    const GridBar bar{1000, 1020, 980, 1000, 1};
    std::vector<std::vector<std::int64_t>> mids(2);
    for (const Moment& moment : walked(historyOf({{0, bar}, {1, bar}}), settingsOf(Model::Path)))
        mids[moment.minute].push_back(moment.mid);
    CHECK(mids[0] != mids[1]);
}

TEST_CASE("the feed shows the path's price four times a second, changed or not")
{
    const MinuteHistory history = someHistory(60, 9);
    const std::vector<Moment> path = walked(history, settingsOf(Model::Path));
    const std::vector<Moment> feed = walked(history, settingsOf(Model::Feed));
    std::size_t seen = 0; // of the path
    std::size_t next = 0;
    for (std::uint32_t minute = 0; minute < history.size(); ++minute) {
        for (TimeMs offset = 0; offset < minuteMs; offset += 250) {
            while (next < feed.size() && !feed[next].forScript)
                ++next;
            const TimeMs now = history.timeAt(minute) + offset;
            while (seen + 1 < path.size() && path[seen + 1].time <= now)
                ++seen;
            REQUIRE(next < feed.size());
            CHECK_EQ(feed[next].time, now);
            CHECK_EQ(feed[next].mid, path[seen].mid);
            CHECK_EQ(feed[next].halfSpread, path[seen].halfSpread);
            CHECK_EQ(feed[next].minute, minute);
            ++next;
        }
    }
    for (; next < feed.size(); ++next)
        CHECK(!feed[next].forScript);
}

TEST_CASE("whatever the path does between two quotes, the broker sees it")
{
    const MinuteHistory history = someHistory(100, 10);
    const std::vector<Moment> feed = walked(history, settingsOf(Model::Feed));
    std::vector<std::int64_t> shown; // without repetitions
    const Moment* last = nullptr;
    std::size_t brokerOnly = 0;
    for (const Moment& moment : feed) {
        brokerOnly += moment.forScript ? 0 : 1;
        if (moment.time == history.timeAt(moment.minute) || moment.mid != last->mid
            || moment.halfSpread != last->halfSpread)
            shown.push_back(moment.mid);
        last = &moment;
    }
    CHECK(shown == midsOf(walked(history, settingsOf(Model::Path))));
    CHECK(brokerOnly > 100);
    for (std::size_t i = 1; i < feed.size(); ++i)
        CHECK(feed[i].time > feed[i - 1].time);
}

TEST_CASE("a walk that begins later is the rest of the whole one")
{
    const MinuteHistory history = someHistory(120, 11);
    for (const Model model : allModels) {
        const std::vector<Moment> whole = walked(history, settingsOf(model));
        for (const std::size_t first : {std::size_t(1), std::size_t(33), std::size_t(34), std::size_t(119)}) {
            const auto from = std::find_if(
                whole.begin(), whole.end(), [first](const Moment& moment) { return moment.minute == first; });
            CHECK(walked(history, settingsOf(model), first, history.size())
                == std::vector<Moment>(from, whole.end()));
            std::vector<Moment> joined = walked(history, settingsOf(model), 0, first);
            const std::vector<Moment> rest = walked(history, settingsOf(model), first, 1'000'000);
            joined.insert(joined.end(), rest.begin(), rest.end());
            CHECK(joined == whole);
        }
        CHECK(walked(history, settingsOf(model), 120, 120).empty());
        CHECK(walked(history, settingsOf(model), 50, 40).empty());
    }
}

TEST_CASE("a wished spread is halved and at least one point on each side")
{
    const MinuteHistory history = historyOf(threeMinutes);
    const auto halfWith = [&](std::int64_t points) {
        RunSettings settings = settingsOf(Model::Ohlc);
        settings.spreadPoints = points;
        std::set<std::int64_t> halves;
        for (const Moment& moment : walked(history, settings))
            halves.insert(moment.halfSpread);
        return halves.size() == 1 ? *halves.begin() : -1;
    };
    CHECK_EQ(halfWith(20), std::int64_t(10));
    CHECK_EQ(halfWith(21), std::int64_t(10));
    CHECK_EQ(halfWith(1), std::int64_t(1));
    CHECK_EQ(halfWith(0), std::int64_t(1));
}

TEST_CASE("a spread leaves the bid above nothing")
{
    RunSettings settings = settingsOf(Model::Ohlc);
    settings.spreadPoints = 1'000;
    for (const Moment& moment : walked(historyOf({{0, {30, 40, 20, 35, 1}}}), settings))
        CHECK_EQ(moment.halfSpread, std::int64_t(19));
}

TEST_CASE("a single minute is walked in every model")
{
    const MinuteHistory history = historyOf({threeMinutes.front()});
    for (const Model model : allModels) {
        const std::vector<Moment> moments = walked(history, settingsOf(model));
        REQUIRE(!moments.empty());
        CHECK_EQ(moments.front().mid, std::int64_t(100'000));
        CHECK(moments.front().forScript);
        CHECK_EQ(moments.back().mid, std::int64_t(100'010));
    }
    CHECK(walked(historyOf({}), settingsOf(Model::Ohlc)).empty());
}

CHECK_MAIN()
