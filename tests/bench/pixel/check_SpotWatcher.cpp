#include "pixel/SpotWatcher.h"

#include "practice/Check.h"

#include <future>

namespace {

constexpr std::int64_t second = 1'000'000'000;

/// Two charts of one pixel, and two prices, which are white and red.
struct Charts {
    Picture pixels{0xffffff, 0xffffff};
    Screen screen{pixels.data(), 2, 1, 2};
    Spot left{{0, 0, 1, 1}, {{0xffffff}, {0xff0000}}};
    Spot right{{1, 0, 1, 1}, {{0xffffff}, {0xff0000}}};

    void show(std::size_t chart) { *const_cast<volatile std::uint32_t*>(&pixels.at(chart)) = 0xff0000; }
};

/// What comes of watching both charts for the red price, which `server` shows once they are watched.
template <typename Server>
SpotWatcher::Result watch(Charts& charts, std::int64_t patienceNs, const Server& server)
{
    std::promise<SpotWatcher::Result> promise;
    SpotWatcher watcher(charts.screen, 20'000);
    watcher.watch({&charts.left, &charts.right}, 1, monotonicNs() + patienceNs,
        [&promise](const SpotWatcher::Result& result) { promise.set_value(result); });
    server();
    return promise.get_future().get();
}

TEST_CASE("a price is seen when the last chart shows it")
{
    Charts charts;
    std::int64_t shownNs = 0;
    const auto result = watch(charts, 60 * second, [&] {
        charts.show(0);
        timespec moment{0, 5'000'000};
        nanosleep(&moment, nullptr);
        shownNs = monotonicNs();
        charts.show(1);
    });
    CHECK(!result.early);
    REQUIRE(result.sighting.has_value());
    CHECK(result.sighting->seenNs >= shownNs);
}

TEST_CASE("a price that one chart never shows is not seen")
{
    Charts charts;
    const auto result = watch(charts, second / 20, [&] { charts.show(0); });
    CHECK(!result.early);
    CHECK(!result.sighting.has_value());
}

TEST_CASE("a price that a chart showed before it was sent is told apart")
{
    Charts charts;
    charts.show(1);
    const auto result = watch(charts, 60 * second, [&] { charts.show(0); });
    CHECK(result.early);
}

TEST_CASE("one price is watched after the other")
{
    Charts charts;
    SpotWatcher watcher(charts.screen, 20'000);
    for (const std::size_t price : {0, 1}) {
        std::promise<SpotWatcher::Result> promise;
        watcher.watch({&charts.left}, price, monotonicNs() + 60 * second,
            [&promise](const SpotWatcher::Result& result) { promise.set_value(result); });
        if (price == 1)
            charts.show(0);
        const auto result = promise.get_future().get();
        CHECK_EQ(result.early, price == 0);
    }
}

} // namespace

CHECK_MAIN()
