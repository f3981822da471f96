// How long the real terminal takes from the wire to the pixels and from a click to the wire, on an X server
// of its own and against a platform in this process; and how often it wakes when nothing moves.
//   tavoran-bench-pixel quiet CHARTS SAMPLES    a price now and then, for one chart and for every chart
//   tavoran-bench-pixel loaded CHARTS SAMPLES   the same among 100 snapshots of 500 symbols a second
//   tavoran-bench-pixel clicks CHARTS SAMPLES   on the button to buy of a chart
//   tavoran-bench-pixel wakes CHARTS SECONDS    wake-ups, and those that no known timer explains
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

void printTimes(const QByteArray& name, const std::vector<double>& ms, int missed)
{
    if (ms.empty())
        giveUp(u"nothing was measured"_s);
    print(name + "_median_ms", percentile(ms, 50));
    print(name + "_p99_ms", percentile(ms, 99));
    print(name + "_worst_ms", *std::max_element(ms.cbegin(), ms.cend()));
    print(name + "_samples", static_cast<double>(ms.size()));
    print(name + "_missed", missed);
}

void printRun(const QByteArray& name, const Desk& desk, const PriceRun& run)
{
    printTimes(name, run.milliseconds(), run.missed());
    print(name + "_own_median_ms", percentile(run.ownMs(), 50));
    print(name + "_own_p99_ms", percentile(run.ownMs(), 99));
    print(name + "_early", run.early());
    print(name + "_grain_p99_ms", percentile(run.grainsMs(), 99));
    print("processors_apart", desk.isApart() ? 1 : 0);
}

void measureQuiet(int charts, int samples)
{
    Desk desk(charts);
    const std::vector<Spot> spots = desk.learnSpots();
    const QByteArray name = "quiet_" + QByteArray::number(charts);
    PriceRun one(desk, spots);
    one.measureQuiet(PriceRun::Brings::OneChart, samples);
    if (charts == 1)
        desk.checkNewestCloses();
    printRun(name, desk, one);
    if (charts == 1)
        return;
    PriceRun every(desk, spots);
    every.measureQuiet(PriceRun::Brings::EveryChart, samples);
    desk.checkNewestCloses();
    printRun(name + "_every", desk, every);
}

void measureLoaded(int charts, int samples)
{
    constexpr int snapshotsASecond = 100;
    Desk desk(charts);
    const std::vector<Spot> spots = desk.learnSpots();
    PriceRun run(desk, spots);
    run.measureLoaded(snapshotsASecond, samples);
    desk.checkNewestCloses();
    const QByteArray name = "loaded_" + QByteArray::number(charts);
    printRun(name, desk, run);
    print(name + "_rate", run.rate());
}

void measureClicks(int charts, int samples)
{
    Desk desk(charts);
    ClickRun run(desk);
    run.measure(samples);
    printTimes("click", run.milliseconds(), run.missed());
}

void measureWakes(int charts, int seconds)
{
    constexpr std::int64_t second = 1'000'000'000;
    Desk desk(charts);
    std::vector<WakeLedger::Deed> deeds;
    // The pong, and what is shown of both a quarter of a second later.
    desk.platform().onPing = [&deeds] { deeds.push_back({monotonicNs(), second * 7 / 10}); };
    desk.platform().onRequest = [&deeds](const StubRequest& request) {
        if (request.path() == "/api/news/upcoming")
            deeds.push_back({monotonicNs(), second / 2});
    };
    // What was begun at the start, such as idle connections, has come to its end by then.
    pauseFor(5000);
    WakeSampler sampler(desk.program().processId());
    pauseFor(1000 * seconds);
    const std::vector<Wake> wakes = sampler.finish();
    const WakeLedger ledger(wakes, second, deeds);
    const double aMinute = 60.0 / seconds;
    print("wakes_a_minute", ledger.all() * aMinute);
    print("wakes_dock_snapshot", ledger.ofTimer() * aMinute);
    print("wakes_ping_and_news", ledger.ofDeeds() * aMinute);
    print("wakes_beyond", ledger.beyond() * aMinute);
    for (const auto& [thread, count] : ledger.byThread())
        std::fprintf(stderr, "%d of thread %s\n", count, thread.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    // For this process, which only works out geometries; the terminal gets an X server.
    const MeasuringApplication application(argc, argv, SCREEN_FILE);
    const AwakeProcessors awake;
    const QStringList arguments = QCoreApplication::arguments();
    const QString what = arguments.value(1);
    const int charts = arguments.value(2).toInt();
    const int count = arguments.value(3).toInt();
    constexpr int mostCharts = 50;
    if (charts < 1 || charts > mostCharts || count < 1)
        giveUp(u"usage: tavoran-bench-pixel quiet|loaded|clicks CHARTS SAMPLES | wakes CHARTS SECONDS"_s);
    print("processors_awake", awake.areKept() ? 1 : 0);
    if (what == "quiet"_L1)
        measureQuiet(charts, count);
    else if (what == "loaded"_L1)
        measureLoaded(charts, count);
    else if (what == "clicks"_L1)
        measureClicks(charts, count);
    else if (what == "wakes"_L1)
        measureWakes(charts, count);
    else
        giveUp(u"there is no measuring of that name"_s);
    return 0;
}
