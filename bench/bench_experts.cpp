#include "app/base/TerminalSettings.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "experts/ExpertEngine.h"
#include "net/ApiClient.h"
#include "scenes/Series.h"

#include <QJSEngine>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

const std::vector<Candle>& bars()
{
    static const std::vector<Candle> candles = walk(1000);
    return candles;
}

ExpertHost::Callbacks callbacks()
{
    ExpertHost::Callbacks calls;
    calls.bid = [] { return 1.1; };
    calls.ask = [] { return 1.1002; };
    calls.balance = [] { return 1000.0; };
    calls.equity = [] { return 1010.0; };
    calls.positionsCount = [] { return 1; };
    calls.seriesRevision = [] { return quint64{1}; };
    return calls;
}

QString writeScript(const QTemporaryDir& folder, const QString& text)
{
    QFile file(folder.filePath(u"Bench.js"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) <= 0)
        qFatal("The script could not be written");
    return file.fileName();
}

void tickOf(benchmark::State& state, const QString& onTick)
{
    const QTemporaryDir folder;
    ExpertEngine engine(u"EURUSD"_s, 5, bars(), callbacks());
    if (!engine.load(writeScript(folder, onTick))) {
        state.SkipWithError("the script did not load");
        return;
    }
    for ([[maybe_unused]] auto _ : state)
        engine.tick();
    if (!engine.isRunning())
        state.SkipWithError("the script failed");
}

void tick(benchmark::State& state)
{
    tickOf(state,
        u"function OnTick() { Close(0); Open(1); High(2); Low(3); Bars(); iMA(10, 0, 1); iRSI(14, 1);"
        " Positions.count(); Digits(); Point(); }"_s);
}

/// The same calls in an engine without prelude, guards and hooks.
void bare(benchmark::State& state, bool boundOnce)
{
    ExpertHost host(u"EURUSD"_s, 5, bars(), callbacks());
    QJSEngine engine;
    QJSEngine::setObjectOwnership(&host, QJSEngine::CppOwnership);
    engine.globalObject().setProperty(u"host"_s, engine.newQObject(&host));
    QString text
        = u"function OnTick() { host.close(0); host.open(1); host.high(2); host.low(3); host.bars();"
          " host.ma(10, 0, 1); host.rsi(14, 1); host.positionsCount(); host.digits(); host.point(); }"_s;
    if (boundOnce) {
        for (const char* name :
            {"close", "open", "high", "low", "bars", "ma", "rsi", "positionsCount", "digits", "point"})
            engine.evaluate(u"var %1 = host.%1"_s.arg(QString::fromLatin1(name)));
        text.remove(u"host."_s);
    }
    engine.evaluate(text);
    const QJSValue onTick = engine.globalObject().property(u"OnTick"_s);
    for ([[maybe_unused]] auto _ : state) {
        const QJSValue result = onTick.call();
        if (result.isError())
            state.SkipWithError("the script failed");
    }
}

void average(benchmark::State& state, int period)
{
    tickOf(state, u"function OnTick() { iMA(%1, MODE_SMA, 0); iMA(%1, MODE_SMA, 1); }"_s.arg(period));
}

/// A price for each of so many charts, unseen, with an example expert on each or without.
void charts(benchmark::State& state, int count, bool experts)
{
    TerminalSettings::instance().setServerUrl(u"http://127.0.0.1:9"_s);
    ApiClient api{TerminalSettings::instance()};
    std::vector<std::unique_ptr<ChartWindow>> windows;
    for (int i = 0; i < count; ++i) {
        windows.push_back(std::make_unique<ChartWindow>(api, u"EURUSD"_s, u"15m"_s, QString(), 5));
        windows.back()->chart().setCandles(walk(1000));
        if (!experts)
            continue;
        windows.back()->attachExpert(u":/examples/MA_Cross.js"_s);
        if (windows.back()->expertName().isEmpty())
            state.SkipWithError("the script did not load");
    }
    int phase = 0;
    for ([[maybe_unused]] auto _ : state) {
        const double bid = 1.1 + (++phase % 2) * 0.0001;
        const QJsonObject prices{{u"EURUSD"_s, QJsonObject{{u"bid"_s, bid}, {u"ask"_s, bid + 0.0002}}}};
        for (const auto& window : windows)
            window->onPrices(prices);
    }
}

BENCHMARK(tick)->Name("experts/tick");
BENCHMARK_CAPTURE(bare, bound, true)->Name("experts/bound_once");
BENCHMARK_CAPTURE(bare, looked_up, false)->Name("experts/looked_up");
BENCHMARK_CAPTURE(average, of_10, 10)->Name("experts/average_10");
BENCHMARK_CAPTURE(average, of_400, 400)->Name("experts/average_400");
BENCHMARK_CAPTURE(charts, one, 1, false)->Name("snapshot/1_charts");
BENCHMARK_CAPTURE(charts, one_with, 1, true)->Name("snapshot/1_charts_with_experts");
BENCHMARK_CAPTURE(charts, five, 5, false)->Name("snapshot/5_charts");
BENCHMARK_CAPTURE(charts, five_with, 5, true)->Name("snapshot/5_charts_with_experts");
BENCHMARK_CAPTURE(charts, twenty, 20, false)->Name("snapshot/20_charts");
BENCHMARK_CAPTURE(charts, twenty_with, 20, true)->Name("snapshot/20_charts_with_experts");

} // namespace
