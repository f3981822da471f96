#include "chart/series/CandleSeries.h"
#include "experts/ExpertEngine.h"
#include "lab/cli/ResultPlace.h"
#include "lab/core/account/AccountSession.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/market/PriceWalk.h"
#include "lab/run/LabRun.h"
#include "lab/run/ScriptStage.h"
#include "scenes/LabBars.h"
#include "scenes/Minutes.h"

#include <QFile>
#include <QJSEngine>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

// A run over minutes, four prices each, and what it is made of, each part by itself.

using namespace Qt::StringLiterals;

namespace {

const lab::MinuteHistory& history()
{
    static const lab::MinuteHistory minutes = minuteWalk(labBars());
    return minutes;
}

const lab::RunSettings& settings()
{
    static const lab::RunSettings chosen = walkSettings(practice::Timeframe::M1, lab::Model::Ohlc);
    return chosen;
}

template <typename Take> void walkAlong(Take take)
{
    lab::PriceWalk walk(history(), settings(), 0, history().size());
    for (lab::Moment moment; walk.next(moment);)
        take(moment);
}

void theRun(benchmark::State& state)
{
    const ExpertScript script = averagesScript();
    const lab::LabRun run({&history()});
    for ([[maybe_unused]] auto round : state) {
        const lab::RunResult result = run.run(script, settings());
        if (result.error || result.ticks != 4 * history().size())
            state.SkipWithError("the run has ended early");
        state.counters["bars"] = static_cast<double>(result.bars);
    }
}

void theReport(benchmark::State& state)
{
    const ExpertScript script = averagesScript();
    static const lab::RunResult result = lab::LabRun({&history()}).run(script, settings());
    const QTemporaryDir folder;
    for ([[maybe_unused]] auto round : state) {
        lab::writeResult(
            folder.path().toStdString(), result, lab::figuresOf(result), script.name.toStdString());
    }
}

void theTicks(benchmark::State& state)
{
    for ([[maybe_unused]] auto round : state)
        walkAlong([](const lab::Moment& moment) { benchmark::DoNotOptimize(&moment); });
}

struct Decision {
    std::size_t tick = 0;
    bool closes = false;
    practice::Side side = practice::Side::Buy;
    double lots = 0;
    double stopLoss = 0;
    double takeProfit = 0;
};

/// What the script asks for in the run.
std::vector<Decision> decisionsOfTheRun()
{
    std::vector<Decision> decisions;
    std::size_t tick = 0;
    lab::AccountSession account(settings(), {&history()});
    ExpertHost::Callbacks calls;
    calls.bid = [&account] { return account.view().bid; };
    calls.ask = [&account] { return account.view().ask; };
    calls.positionsCount = [&account] { return account.view().positions; };
    calls.order = [&](const QString& name, double lots, double stopLoss, double takeProfit) {
        const auto side = name == "BUY"_L1 ? practice::Side::Buy : practice::Side::Sell;
        decisions.push_back({tick, false, side, lots, stopLoss, takeProfit});
        account.order(side, lots, stopLoss, takeProfit);
    };
    calls.closeAll = [&] {
        decisions.push_back({.tick = tick, .closes = true});
        account.closeAll();
    };
    lab::ScriptStage stage({u"EURUSD"_s, 5, practice::minuteMs, 1, {}}, calls, {});
    walkAlong([&](const lab::Moment& moment) {
        stage.setTime(moment.time);
        account.advance(moment);
        stage.fold(account.view().bid, account.view().ask);
        if (tick == 0)
            stage.load(averagesScript());
        stage.tick();
        ++tick;
    });
    return decisions;
}

void theBroker(benchmark::State& state)
{
    static const std::vector<Decision> decisions = decisionsOfTheRun();
    for ([[maybe_unused]] auto round : state) {
        lab::AccountSession account(settings(), {&history()});
        std::size_t tick = 0;
        auto next = decisions.begin();
        walkAlong([&](const lab::Moment& moment) {
            account.advance(moment);
            for (; next != decisions.end() && next->tick == tick; ++next) {
                if (next->closes)
                    account.closeAll();
                else
                    account.order(next->side, next->lots, next->stopLoss, next->takeProfit);
            }
            ++tick;
        });
    }
}

/// A chart without an account: every order is a position until the script closes it.
class BareChart final {
public:
    BareChart() { m_series.setTimeframeMs(practice::minuteMs); }

    [[nodiscard]] const std::vector<Candle>& candles() const { return m_series.candles(); }

    [[nodiscard]] ExpertHost::Callbacks callbacks()
    {
        ExpertHost::Callbacks calls;
        calls.bid = [this] { return m_bid; };
        calls.ask = [this] { return m_ask; };
        calls.positionsCount = [this] { return m_positions; };
        calls.seriesRevision = [this] { return m_revision; };
        calls.order = [this](const QString&, double, double, double) { m_positions = 1; };
        calls.closeAll = [this] { m_positions = 0; };
        calls.print = [](const QString&) {};
        return calls;
    }

    void take(const lab::Moment& moment)
    {
        m_bid = static_cast<double>(moment.mid - moment.halfSpread) / 1e5;
        m_ask = static_cast<double>(moment.mid + moment.halfSpread) / 1e5;
        if (m_series.foldTick(m_bid, m_ask, moment.time) == TickEffect::Appended)
            ++m_revision;
    }

private:
    CandleSeries m_series;
    quint64 m_revision = 0;
    double m_bid = 0;
    double m_ask = 0;
    int m_positions = 0;
};

void theEngine(benchmark::State& state)
{
    const ExpertScript script = averagesScript();
    for ([[maybe_unused]] auto round : state) {
        BareChart chart;
        ExpertEngine engine(u"EURUSD"_s, 5, chart.candles(), chart.callbacks());
        if (!engine.load(script))
            state.SkipWithError("the script has not started");
        walkAlong([&](const lab::Moment& moment) {
            chart.take(moment);
            engine.tick();
        });
    }
}

void theBareEngine(benchmark::State& state)
{
    const ExpertScript script = averagesScript();
    QFile prelude(u":/ea_prelude.js"_s);
    if (!prelude.open(QIODevice::ReadOnly))
        state.SkipWithError("the prelude is missing");
    const QString bindings = QString::fromUtf8(prelude.readAll());
    for ([[maybe_unused]] auto round : state) {
        BareChart chart;
        ExpertHost host(u"EURUSD"_s, 5, chart.candles(), chart.callbacks());
        QJSEngine engine;
        QJSEngine::setObjectOwnership(&host, QJSEngine::CppOwnership);
        engine.globalObject().setProperty(u"__host"_s, engine.newQObject(&host));
        engine.evaluate(bindings);
        engine.evaluate(script.text);
        const QJSValue onTick = engine.globalObject().property(u"OnTick"_s);
        walkAlong([&](const lab::Moment& moment) {
            chart.take(moment);
            if (onTick.call().isError())
                state.SkipWithError("the script has failed");
        });
    }
}

constexpr int once = 1;
BENCHMARK(theRun)->Name("lab/run")->Iterations(once)->Unit(benchmark::kMillisecond);
BENCHMARK(theReport)->Name("lab/report")->Iterations(once)->Unit(benchmark::kMillisecond);
BENCHMARK(theTicks)->Name("lab/ticks")->Iterations(once)->Unit(benchmark::kMillisecond);
BENCHMARK(theBroker)->Name("lab/broker")->Iterations(once)->Unit(benchmark::kMillisecond);
BENCHMARK(theEngine)->Name("lab/engine")->Iterations(once)->Unit(benchmark::kMillisecond);
BENCHMARK(theBareEngine)->Name("lab/bare")->Iterations(once)->Unit(benchmark::kMillisecond);

} // namespace
