#include "lab/run/LabRun.h"

#include "lab/core/account/AccountSession.h"
#include "lab/core/account/PointQuote.h"
#include "lab/core/market/HistorySources.h"
#include "lab/core/market/PriceWalk.h"
#include "lab/core/market/RunSpan.h"
#include "lab/run/RunWatch.h"
#include "lab/run/ScriptInputs.h"
#include "lab/run/ScriptStage.h"
#include "practice/core/PointScale.h"
#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace lab {

namespace {

/// So often is somebody told how far a run is.
constexpr std::size_t progressSteps = 200;

std::vector<RunInput> inputsBetween(
    const RunSettings& settings, const ExpertScript& script, const ExpertScript& changed)
{
    const auto isGiven = [&settings](const std::string& name) {
        return std::ranges::any_of(settings.inputs, [&](const auto& given) { return given.first == name; });
    };
    std::vector<RunInput> inputs;
    const QList<ScriptInput> before = inputsOf(script.text);
    const QList<ScriptInput> after = inputsOf(changed.text);
    for (qsizetype place = 0; place < after.size(); ++place) {
        const std::string name = after[place].name.toStdString();
        if (!after[place].isChanged || isGiven(name))
            inputs.push_back(
                {name, after[place].literal.toStdString(), before[place].literal != after[place].literal});
    }
    return inputs;
}

std::vector<Candle> candlesBefore(
    const MinuteHistory& history, const RunSettings& settings, std::size_t minute)
{
    std::vector<Candle> candles;
    for (const practice::Bar& bar : barsBefore(history, settings.timeframe, settings.warmup(), minute)) {
        const auto volume = std::min<std::int64_t>(bar.volume, std::numeric_limits<qint32>::max());
        candles.push_back({bar.time, bar.open, bar.high, bar.low, bar.close, static_cast<qint32>(volume)});
    }
    return candles;
}

practice::Side sideOf(const QString& side)
{
    return side == "BUY"_L1 ? practice::Side::Buy : practice::Side::Sell;
}

ExpertHost::Callbacks callbacksTo(AccountSession& account)
{
    ExpertHost::Callbacks calls;
    calls.bid = [&account] { return account.view().bid; };
    calls.ask = [&account] { return account.view().ask; };
    calls.balance = [&account] { return practice::toUsd(account.view().balance); };
    calls.equity = [&account] { return practice::toUsd(account.view().equity); };
    calls.positionsCount = [&account] { return account.view().positions; };
    calls.order = [&account](const QString& side, double lots, double stopLoss, double takeProfit) {
        account.order(sideOf(side), lots, stopLoss, takeProfit);
    };
    calls.closeAll = [&account] { account.closeAll(); };
    return calls;
}

/// One run on its way.
class Run final {
public:
    Run(const std::vector<const MinuteHistory*>& histories, const RunSettings& settings, RunSpan span,
        std::size_t barsAtATime)
        : m_history(*histories.front())
        , m_settings(settings)
        , m_span(span)
        , m_walk(m_history, settings, span.firstMinute, span.endMinute)
        , m_account(settings, histories)
        , m_before(candlesBefore(m_history, settings, span.firstMinute))
        , m_warmup(m_before.size())
        , m_stage({QString::fromStdString(m_history.spec.name), m_history.spec.digits,
                      practice::timeframeLength(settings.timeframe), settings.seed, std::move(m_before),
                      [this](practice::TimeMs time, std::size_t count) { return candlesAgain(time, count); },
                      barsAtATime},
              callbacksTo(m_account),
              [this](const QString& side, double lots, double stopLoss, double takeProfit) {
                  m_account.noteRefusal(sideOf(side), lots, stopLoss, takeProfit);
              })
    {
        m_account.onRefusal([this](const std::string& reason) {
            m_stage.note(u"Order failed: %1"_s.arg(QString::fromStdString(reason)));
        });
    }

    void go(const ExpertScript& script, const RunControl& control)
    {
        const RunWatch watch([this] { m_stage.interrupt(); }, control.stop, control.limit, control.deaf);
        const std::size_t minutes = m_span.endMinute - m_span.firstMinute;
        const std::size_t step = (minutes + progressSteps - 1) / progressSteps;
        std::size_t told = m_span.firstMinute + step;
        Moment moment;
        bool isLoaded = false;
        while (watch.verdict() == RunWatch::Verdict::None && m_walk.next(moment)) {
            take(moment);
            if (moment.forScript) {
                if (!std::exchange(isLoaded, true)) {
                    m_firstMid = moment.mid;
                    m_lastTime = moment.time;
                    m_stage.load(script);
                }
                if (!m_stage.isRunning() || m_account.isOver())
                    break;
                m_lastTime = moment.time;
                m_stage.tick();
                ++m_ticks;
                m_lastMid = moment.mid;
            }
            if (m_account.isOver())
                break;
            if (moment.minute >= told && control.progress) {
                const auto done = static_cast<double>(moment.minute - m_span.firstMinute);
                control.progress(done / static_cast<double>(minutes));
                told = moment.minute + step;
            }
        }
        // A script that was interrupted has no last words: it could do nothing with them.
        if (watch.verdict() == RunWatch::Verdict::None)
            m_stage.stop();
        m_error = reasonOf(watch.verdict(), control);
    }

    void finish(const ExpertScript& script, RunResult& result)
    {
        const double points = practice::pointsPerUnit(m_history.spec.digits);
        result.ticks = m_ticks;
        result.firstPrice = static_cast<double>(m_firstMid) / points;
        result.lastPrice = static_cast<double>(m_lastMid) / points;
        result.tickPrint = m_print;
        ChartBars bars = m_stage.takeBarsOfRun();
        result.bars = bars.count();
        result.chart = bars.takeRows();
        if (m_error) {
            result.error = (script.name + u": "_s + *m_error).toStdString();
            result.errorTime = m_lastTime;
        }
        m_account.finish(result);
        result.warmupBars = m_warmup;
        if (const auto wanted = static_cast<std::size_t>(std::max(0, m_settings.warmup())); m_warmup < wanted)
            result.warnings.push_back("Warm-up of " + std::to_string(m_warmup)
                + (m_warmup == 1 ? " bar" : " bars") + " instead of " + std::to_string(wanted)
                + ": the history has no more before the start.");
        result.journal = m_stage.journal().lines();
        result.journalLeftOut = m_stage.journal().leftOut();
        if (result.journalLeftOut > 0) {
            result.warnings.push_back("Of " + std::to_string(m_stage.journal().count())
                + " lines that the script wrote, " + std::to_string(result.journalLeftOut)
                + " in the middle are left out.");
        }
    }

private:
    /// A script that is called once a bar still sees whole bars behind it. The other prices that are the
    /// broker's alone would not have reached a chart either.
    [[nodiscard]] bool reachesChart(const Moment& moment) const
    {
        return moment.forScript || m_settings.model == Model::Open;
    }

    /// The candles of the chart from the one that begins at `time` on, which lie behind it.
    [[nodiscard]] std::vector<Candle> candlesAgain(practice::TimeMs time, std::size_t count) const
    {
        CandleSeries series;
        series.setTimeframeMs(practice::timeframeLength(m_settings.timeframe));
        std::size_t minute = m_history.firstFrom(time);
        if (minute <= m_span.firstMinute) {
            minute = m_span.firstMinute;
            std::vector<Candle> before = candlesBefore(m_history, m_settings, minute);
            std::erase_if(before, [time](const Candle& candle) { return candle.time < time; });
            series.setCandles(std::move(before));
        }
        PriceWalk walk(m_history, m_settings, minute, m_span.endMinute);
        for (Moment moment; series.candles().size() <= count && walk.next(moment);) {
            if (!reachesChart(moment))
                continue;
            const practice::Quote prices = quoteAt(moment).toPrices(m_history.spec.digits);
            series.foldTick(prices.bid, prices.ask, moment.time);
        }
        const std::vector<Candle>& all = series.candles();
        return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(std::min(count, all.size()))};
    }

    void take(const Moment& moment)
    {
        m_stage.setTime(moment.time);
        m_account.advance(moment);
        if (!reachesChart(moment))
            return;
        const AccountView& view = m_account.view();
        m_stage.fold(view.bid, view.ask);
        m_print = practice::hashKey({m_print, static_cast<std::uint64_t>(moment.time),
            static_cast<std::uint64_t>(moment.mid), static_cast<std::uint64_t>(moment.halfSpread)});
    }

    [[nodiscard]] std::optional<QString> reasonOf(RunWatch::Verdict verdict, const RunControl& control) const
    {
        switch (verdict) {
        case RunWatch::Verdict::Stopped:
            return u"Stopped before its end"_s;
        case RunWatch::Verdict::TooLong:
            return u"Not at its end after %1 seconds"_s.arg(
                static_cast<double>(control.limit.count()) / 1000.0);
        case RunWatch::Verdict::None:
            break;
        }
        return m_stage.error();
    }

    const MinuteHistory& m_history;
    const RunSettings& m_settings;
    RunSpan m_span;
    PriceWalk m_walk;
    AccountSession m_account;
    std::vector<Candle> m_before; ///< on their way to the stage
    std::size_t m_warmup;
    ScriptStage m_stage;
    std::optional<QString> m_error;
    practice::TimeMs m_lastTime = 0;
    std::uint64_t m_ticks = 0;
    std::uint64_t m_print = 0;
    std::int64_t m_firstMid = 0;
    std::int64_t m_lastMid = 0;
};

} // namespace

std::vector<RunInput> inputsAsRun(const RunSettings& settings, const ExpertScript& script)
{
    return inputsBetween(settings, script, withInputs(script, settings.inputs));
}

LabRun::LabRun(std::vector<const MinuteHistory*> histories)
    : m_histories(std::move(histories))
{
    for (const MinuteHistory* history : m_histories)
        m_dataHash = practice::hashKey({m_dataHash, lab::dataHash(*history)});
}

RunResult LabRun::run(
    const ExpertScript& script, const RunSettings& settings, const RunControl& control) const
{
    const ExpertScript changed = withInputs(script, settings.inputs);
    const MinuteHistory& history = *m_histories.front();
    const RunSpan span = spanOf(history, settings);

    RunResult result;
    result.settings = settings;
    result.settings.from = history.timeAt(span.firstMinute);
    result.settings.to = history.timeAt(span.endMinute - 1) + practice::minuteMs;
    result.digits = history.spec.digits;
    result.weekendsTrade = history.weekendsTrade();
    for (const MinuteHistory* each : m_histories)
        result.simulated = result.simulated || each->isSimulated;
    result.dataHash = m_dataHash;
    result.scriptHash = practice::hashText(script.text.toStdString());
    if (const auto warning = contractWarning(history))
        result.warnings.push_back(*warning);

    result.inputs = inputsBetween(settings, script, changed);

    Run run(m_histories, settings, span, control.barsAtATime);
    run.go(changed, control);
    run.finish(script, result);
    return result;
}

} // namespace lab
