// How long the real terminal takes from the wire to the pixels and from a click to the wire, on an X server
// of its own and against a platform in this process; and how often it wakes when nothing moves.
//   tavoran-bench-pixel quiet CHARTS PRICES CLICKS
//       a price now and then, for one chart and for every chart; clicks on the button to buy of a chart
//   tavoran-bench-pixel loaded CHARTS PRICES CLICKS
//       the same among 100 snapshots of 500 symbols a second
//   tavoran-bench-pixel wakes CHARTS SECONDS
//       wake-ups, and those that no known timer explains
//   tavoran-bench-pixel check CHARTS
//       a few of each, whatever time they take; fails unless all of them arrive, the charts tell the last
//       price, and nothing wakes again and again
// Prints "name value" lines; which threads woke is told on the standard error.

#include "pixel/AwakeProcessors.h"
#include "pixel/ClickRun.h"
#include "pixel/Desk.h"
#include "pixel/Percentile.h"
#include "pixel/PriceRun.h"
#include "pixel/WakeSampler.h"
#include "scenes/MeasuringApplication.h"
#include "scenes/Waiting.h"

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void print(const QByteArray& name, double value)
{
    std::printf("%s %.6g\n", name.constData(), value);
    std::fflush(stdout);
}

/// Of prices or of clicks.
template <typename Run> void printTimes(const QByteArray& name, const Run& run)
{
    const std::vector<double>& ms = run.milliseconds();
    if (ms.empty())
        giveUp(u"nothing was measured"_s);
    print(name + "_median_ms", percentile(ms, 50));
    print(name + "_p99_ms", percentile(ms, 99));
    print(name + "_worst_ms", *std::max_element(ms.cbegin(), ms.cend()));
    print(name + "_samples", static_cast<double>(ms.size()));
    print(name + "_missed", run.missed());
    print(name + "_own_median_ms", percentile(run.ownMs(), 50));
    print(name + "_own_p99_ms", percentile(run.ownMs(), 99));
}

/// How the machine was prepared for what is measured at this desk.
void printMachine(const QByteArray& name, const Desk& desk, const AwakeProcessors& awake)
{
    print(name + "_awake", awake.areKept() ? 1 : 0);
    print(name + "_apart", desk.isApart() ? 1 : 0);
}

void printPrices(const QByteArray& name, const PriceRun& run)
{
    printTimes(name, run);
    print(name + "_early", run.early());
    print(name + "_grain_p99_ms", percentile(run.grainsMs(), 99));
}

void measureQuiet(int charts, int prices, int clicks)
{
    const AwakeProcessors awake;
    Desk desk(charts);
    const std::vector<Spot> spots = desk.learnSpots();
    const QByteArray name = "quiet_" + QByteArray::number(charts);
    printMachine(name, desk, awake);
    PriceRun one(desk, spots);
    one.measureQuiet(PriceRun::Brings::OneChart, prices);
    desk.checkNewestCloses();
    printPrices(name, one);
    if (charts > 1) {
        PriceRun every(desk, spots);
        every.measureQuiet(PriceRun::Brings::EveryChart, prices);
        desk.checkNewestCloses();
        printPrices(name + "_every", every);
    }
    ClickRun buying(desk);
    buying.measureQuiet(clicks);
    printTimes(name + "_click", buying);
}

void measureLoaded(int charts, int prices, int clicks)
{
    constexpr int snapshotsASecond = 100;
    const AwakeProcessors awake;
    Desk desk(charts);
    const std::vector<Spot> spots = desk.learnSpots();
    const QByteArray name = "loaded_" + QByteArray::number(charts);
    printMachine(name, desk, awake);
    PriceRun run(desk, spots);
    run.measureLoaded(snapshotsASecond, prices);
    desk.checkNewestCloses();
    printPrices(name, run);
    print(name + "_rate", run.rate());
    ClickRun buying(desk);
    buying.measureLoaded(snapshotsASecond, clicks);
    printTimes(name + "_click", buying);
    print(name + "_click_rate", buying.rate());
}

/// After a rest of a second or more: what came of a ping in the second before is not taken for a wake-up
/// beyond.
WakeLedger countWakes(Desk& desk, int restMs, int seconds)
{
    constexpr std::int64_t second = 1'000'000'000;
    std::vector<WakeLedger::Deed> deeds;
    // The pong, and what is shown of both a quarter of a second later.
    desk.platform().onPing = [&deeds] { deeds.push_back({monotonicNs(), second * 7 / 10}); };
    desk.platform().onRequest = [&deeds](const StubRequest& request) {
        if (request.path() == "/api/news/upcoming")
            deeds.push_back({monotonicNs(), second / 2});
    };
    pauseFor(restMs);
    WakeSampler sampler(desk.program().processId());
    pauseFor(1000 * seconds);
    const std::vector<Wake> wakes = sampler.finish();
    desk.platform().onPing = {};
    desk.platform().onRequest = {};
    return {wakes, second, deeds};
}

void measureWakes(int charts, int seconds)
{
    const AwakeProcessors awake;
    Desk desk(charts);
    printMachine("wakes", desk, awake);
    // What was begun at the start, such as idle connections, has come to its end by then.
    constexpr int restMs = 5000;
    const WakeLedger ledger = countWakes(desk, restMs, seconds);
    const double aMinute = 60.0 / seconds;
    print("wakes_a_minute", ledger.all() * aMinute);
    print("wakes_dock_snapshot", ledger.ofTimer() * aMinute);
    print("wakes_ping_and_news", ledger.ofDeeds() * aMinute);
    print("wakes_beyond", ledger.beyond() * aMinute);
    for (const auto& [thread, count] : ledger.byThread())
        std::fprintf(stderr, "%d of thread %s\n", count, thread.c_str());
}

/// Ends a check where something has never come.
template <typename Run> void demand(const QByteArray& name, const Run& run, int expected)
{
    printTimes(name, run);
    if (run.missed() > 0 || static_cast<int>(run.milliseconds().size()) != expected)
        giveUp(u"not all of %1 have arrived"_s.arg(QLatin1StringView(name)));
}

/// Whatever the machine is busy with: nothing here is too slow.
void checkAll(int charts)
{
    constexpr int prices = 6;
    constexpr int clicks = 4;
    constexpr int snapshotsASecond = 10;
    constexpr int patienceMs = 30'000;
    Desk desk(charts);
    const std::vector<Spot> spots = desk.learnSpots();
    PriceRun quiet(desk, spots, patienceMs);
    quiet.measureQuiet(PriceRun::Brings::EveryChart, prices);
    desk.checkNewestCloses();
    demand("quiet", quiet, prices);
    PriceRun loaded(desk, spots, patienceMs);
    loaded.measureLoaded(snapshotsASecond, prices);
    desk.checkNewestCloses();
    demand("loaded", loaded, prices);
    ClickRun buying(desk, patienceMs);
    buying.measureQuiet(clicks);
    demand("click", buying, clicks);
    ClickRun buyingLoaded(desk, patienceMs);
    buyingLoaded.measureLoaded(snapshotsASecond, clicks);
    demand("loaded_click", buyingLoaded, clicks);
    // A busy machine has a timer's work found late, or a lock waited for, now and then: whatever wakes the
    // program in each of these stretches is more than that.
    constexpr int stretches = 6;
    constexpr int seconds = 5;
    int beyond = -1;
    for (int i = 0; i < stretches && beyond != 0; ++i) {
        beyond = countWakes(desk, 1000, seconds).beyond();
        print("wakes_beyond", beyond);
    }
    if (beyond != 0)
        giveUp(u"something wakes the terminal again and again while nothing moves"_s);
}

} // namespace

int main(int argc, char** argv)
{
    // For this process, which only works out geometries; the terminal gets an X server.
    const MeasuringApplication application(argc, argv, SCREEN_FILE);
    const QStringList arguments = QCoreApplication::arguments();
    const QString what = arguments.value(1);
    const int charts = arguments.value(2).toInt();
    const int count = arguments.value(3).toInt();
    const int clicks = arguments.value(4).toInt();
    constexpr int mostCharts = 50;
    const bool hasCharts = charts >= 1 && charts <= mostCharts;
    if (hasCharts && what == "quiet"_L1 && count > 0 && clicks > 0)
        measureQuiet(charts, count, clicks);
    else if (hasCharts && what == "loaded"_L1 && count > 0 && clicks > 0)
        measureLoaded(charts, count, clicks);
    else if (hasCharts && what == "wakes"_L1 && count > 0)
        measureWakes(charts, count);
    else if (hasCharts && what == "check"_L1)
        checkAll(charts);
    else
        giveUp(
            u"usage: tavoran-bench-pixel quiet|loaded CHARTS PRICES CLICKS | wakes CHARTS SECONDS | check CHARTS"_s);
    return 0;
}
