#include "chart/series/CandleSeries.h"
#include "experts/ExpertHost.h"
#include "lab/core/account/PointQuote.h"
#include "lab/core/market/HistoryError.h"
#include "lab/core/market/PriceWalk.h"
#include "lab/core/market/RunSpan.h"
#include "lab/market/Histories.h"
#include "lab/run/ChartBars.h"
#include "lab/run/LabRun.h"
#include "support/TestMain.h"

#include <QJSValue>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

using namespace Qt::StringLiterals;
using lab::RunResult;
using lab::RunSettings;

namespace {

/// Prices that swing up and down by some hundred points, so that the examples have something to trade.
lab::MinuteHistory swings(std::int64_t minutes)
{
    std::vector<lab::checks::HandMade> made;
    const auto priceAt = [](std::int64_t minute) {
        const auto time = static_cast<double>(minute);
        return std::llround(110'000.0 + 1500.0 * std::sin(time * 0.06) + 60.0 * std::sin(time * 1.3));
    };
    for (std::int64_t minute = 0; minute < minutes; ++minute) {
        const std::int64_t open = priceAt(minute);
        const std::int64_t close = priceAt(minute + 1);
        made.push_back({minute, {open, std::max(open, close) + 5, std::min(open, close) - 5, close, 10}, 4});
    }
    return lab::checks::historyOf(made);
}

QString textOf(const RunResult& run)
{
    QStringList lines;
    for (const lab::JournalLine& line : run.journal)
        lines.append(QString::fromStdString(line.text));
    return lines.join(u';');
}

/// Everything that scripts and accounts have a part in.
std::vector<double> digestOf(const RunResult& run)
{
    std::vector<double> all{static_cast<double>(run.ticks), static_cast<double>(run.bars),
        static_cast<double>(run.tickPrint), static_cast<double>(run.decisionPrint)};
    for (const lab::TradeRow& trade : run.trades) {
        all.insert(all.end(),
            {static_cast<double>(trade.openTime), trade.openPrice, static_cast<double>(trade.closeTime),
                trade.closePrice, static_cast<double>(trade.net())});
    }
    for (const lab::EquityPoint& point : run.equity)
        all.insert(all.end(), {static_cast<double>(point.time), static_cast<double>(point.equity)});
    return all;
}

} // namespace

/// Whole runs: the terminal's scripts, a history, the platform's broker.
class tst_LabRun final : public QObject {
    Q_OBJECT

    lab::MinuteHistory m_history = swings(2000);
    RunSettings m_settings;

    RunResult run(const QString& script, const lab::RunControl& control = {})
    {
        return lab::LabRun({&m_history}).run({u"Probe"_s, u"Probe.js"_s, script}, m_settings, control);
    }

    static ExpertScript example(const QString& name)
    {
        QString error;
        const auto script
            = ExpertScript::read(QStringLiteral(PROJECT_ROOT "/resources/examples/") + name, error);
        if (!script)
            qFatal("%s", qPrintable(error));
        return *script;
    }

private Q_SLOTS:
    void init()
    {
        m_settings = {};
        m_settings.symbol = "EURUSD";
        m_settings.timeframe = practice::Timeframe::M1;
        m_settings.warmupBars = 100;
    }

    void theExamplesRunUnchangedAndTrade_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("averages") << u"MA_Cross.js"_s;
        QTest::newRow("rsi") << u"RSI_Reversal.js"_s;
    }

    void theExamplesRunUnchangedAndTrade()
    {
        QFETCH(QString, name);
        const lab::LabRun lab({&m_history});
        const RunResult result = lab.run(example(name), m_settings);
        QVERIFY(!result.error);
        QCOMPARE(result.ticks, std::uint64_t{1900 * 4});
        QCOMPARE(result.bars, std::uint64_t{1900});
        QVERIFY(result.trades.size() >= 5);
        QVERIFY(textOf(result).endsWith(u" stopped"_s));
        QCOMPARE(result.digits, 5);
        QCOMPARE(*result.settings.from, m_history.timeAt(100));
        QCOMPARE(*result.settings.to, m_history.timeAt(1999) + practice::minuteMs);
        QVERIFY(result.scriptHash != 0 && result.dataHash != 0 && result.tickPrint != 0);
        QCOMPARE(digestOf(lab.run(example(name), m_settings)), digestOf(result));
    }

    void buyAndHoldGoesFromTheFirstPriceToTheLast()
    {
        const RunResult result = run(u"1"_s);
        const auto price = [](std::int64_t points) { return static_cast<double>(points) / 1e5; };
        QCOMPARE(result.firstPrice, price(m_history.minutes.at(100).bar.open));
        QCOMPARE(result.lastPrice, price(m_history.minutes.at(1999).bar.close));
        QVERIFY(result.firstPrice != result.lastPrice);
    }

    void aSaturdayMinuteMakesAYearOfAllItsDays()
    {
        QVERIFY(!run(u"1"_s).weekendsTrade); // Thursday and Friday
        m_history.starts.back() += 24 * 60;
        const RunResult result = run(u"1"_s);
        m_history = swings(2000);
        QVERIFY(result.weekendsTrade);
    }

    void aSymbolThatThePlatformDoesNotListIsWarnedOf()
    {
        QVERIFY(run(u"1"_s).warnings.empty());
        m_history.spec.name = "NZDUSD";
        const RunResult result = run(u"1"_s);
        m_history = swings(2000);
        QCOMPARE(result.warnings.size(), std::size_t{1});
        QVERIFY(result.warnings[0].find("does not list NZDUSD") != std::string::npos);
    }

    void aLongRunKeepsWhatItsScriptMayAskForAndNoMore()
    {
        const lab::MinuteHistory history = swings(60'000);
        m_settings.model = lab::Model::Open;
        CandleSeries whole;
        whole.setTimeframeMs(practice::minuteMs);
        std::vector<Candle> before;
        for (const practice::Bar& bar : lab::barsBefore(history, practice::Timeframe::M1, 100, 100))
            before.push_back({bar.time, bar.open, bar.high, bar.low, bar.close, 1});
        whole.setCandles(before);
        lab::PriceWalk walk(history, m_settings, 100, history.size());
        for (lab::Moment moment; walk.next(moment);) {
            const practice::Quote prices = lab::quoteAt(moment).toPrices(5);
            whole.foldTick(prices.bid, prices.ask, moment.time);
        }
        double sum = 0;
        for (const Candle& bar : whole.candles())
            sum = sum * 0.9999 + bar.open + 2 * bar.high + 3 * bar.low + 5 * bar.close;
        ExpertHost host(u"EURUSD"_s, 5, whole.candles(), {});

        const QString script = uR"(function OnDeinit() {
            var sum = 0;
            for (var i = Bars() - 1; i >= 0; --i)
                sum = sum * 0.9999 + Open(i) + 2 * High(i) + 3 * Low(i) + 5 * Close(i);
            Print(Bars(), sum, iMA(40000, 0, 9000), iRSI(40000, 9000), Close(Bars())); })"_s;
        const RunResult result = lab::LabRun({&history}).run({u"Probe"_s, u"Probe.js"_s, script}, m_settings);
        QVERIFY(!result.error);
        QCOMPARE(textOf(result),
            u"60000 %1 %2 %3 0"_s.arg(QJSValue(sum).toString(), QJSValue(host.ma(40'000, 0, 9000)).toString(),
                QJSValue(host.rsi(40'000, 9000)).toString()));
        QCOMPARE(result.bars, std::uint64_t{59'900});
        QVERIFY(result.chart.size() <= lab::ChartBars::most);
        QCOMPARE(result.chart.back().close, whole.candles().back().close);
    }

    void barsThatAreMadeAgainAreThoseThatWereThere_data()
    {
        QTest::addColumn<lab::Model>("model");
        QTest::addColumn<practice::Timeframe>("timeframe");
        QTest::addColumn<int>("warmup");
        QTest::addColumn<int>("every");
        constexpr std::array<std::pair<const char*, lab::Model>, 4> models{{{"open", lab::Model::Open},
            {"ohlc", lab::Model::Ohlc}, {"path", lab::Model::Path}, {"feed", lab::Model::Feed}}};
        constexpr std::array<std::pair<const char*, practice::Timeframe>, 2> timeframes{
            {{"1m", practice::Timeframe::M1}, {"5m", practice::Timeframe::M5}}};
        for (const auto& [model, modelValue] : models) {
            for (const auto& [timeframe, timeframeValue] : timeframes) {
                for (const int warmup : {0, 65}) {
                    for (const int every : {37, 1'000'000}) {
                        QTest::addRow("%s, %s, %d bars before, asked %s", model, timeframe, warmup,
                            every < 1000 ? "on the way" : "at the end")
                            << modelValue << timeframeValue << warmup << every;
                    }
                }
            }
        }
    }

    // A long run's chart against one that keeps all, over holes, jumps and spreads that change.
    void barsThatAreMadeAgainAreThoseThatWereThere()
    {
        QFETCH(lab::Model, model);
        QFETCH(practice::Timeframe, timeframe);
        QFETCH(int, warmup);
        QFETCH(int, every);
        const lab::MinuteHistory history = lab::checks::someHistory(360, 7);
        m_settings.model = model;
        m_settings.timeframe = timeframe;
        m_settings.warmupBars = warmup;
        std::size_t first = 150; // within a bar of five minutes
        while (history.timeAt(first) % (5 * practice::minuteMs) != 2 * practice::minuteMs)
            ++first;
        m_settings.from = history.timeAt(first);

        const QString script = uR"(var next = %1;
            function all() {
                var sum = 0;
                for (var i = Bars() - 1; i >= 0; --i)
                    sum = sum * 0.999 + Open(i) + 2 * High(i) + 3 * Low(i) + 5 * Close(i);
                return Bars() + ' ' + sum;
            }
            function OnTick() {
                if (Bars() >= next) { next += %1; Print(all(), iMA(20, 0, Bars() - 25)); }
                if (Bars() % 7 === 0 && Positions.count() === 0)
                    Trade.buy(0.1, { slPoints: 12, tpPoints: 12 });
            }
            function OnDeinit() { Print(all(), iRSI(14, 40)); })"_s.arg(every);
        const ExpertScript probe{u"Probe"_s, u"Probe.js"_s, script};
        const lab::LabRun lab({&history});
        const RunResult whole = lab.run(probe, m_settings);
        lab::RunControl control;
        control.barsAtATime = 8;
        const RunResult parts = lab.run(probe, m_settings, control);
        QVERIFY(!whole.error && !parts.error);
        QVERIFY(whole.bars + whole.warmupBars > 4 * control.barsAtATime);
        QVERIFY(!whole.trades.empty());
        QCOMPARE(whole.journal.size() > 1, every < 1000);
        QCOMPARE(textOf(parts), textOf(whole));
        QCOMPARE(digestOf(parts), digestOf(whole));
    }

    void inputsTakeTheirPlaces()
    {
        const RunResult plain = lab::LabRun({&m_history}).run(example(u"MA_Cross.js"_s), m_settings);
        m_settings.inputs = {{"Fast", "3"}, {"Lots", "0.2"}};
        const RunResult changed = lab::LabRun({&m_history}).run(example(u"MA_Cross.js"_s), m_settings);
        QVERIFY(textOf(changed).startsWith(u"MA_Cross started on EURUSD  (EMA 3/30)"_s));
        QCOMPARE(changed.trades.front().lots, practice::LotHundredths{20});
        QVERIFY(changed.decisionPrint != plain.decisionPrint);
        QCOMPARE(changed.tickPrint, plain.tickPrint);
        QCOMPARE(changed.scriptHash, plain.scriptHash);
        m_settings.inputs = {{"Faster", "3"}};
        const lab::LabRun lab({&m_history});
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, (void)lab.run(example(u"MA_Cross.js"_s), m_settings));
    }

    void aScriptFindsItsChartReadyAndSeesTheFirstPriceAtOnce()
    {
        const RunResult result
            = run(u"Print(Symbol(), Digits(), Bars(), Bid.toFixed(5), Ask.toFixed(5),"
                  " Account.balance, Account.equity, Positions.count(), new Date().toISOString());"
                  "var n = 0; function OnTick() { if (++n == 1) Print(Bid.toFixed(5), Open(1)) }"_s);
        const practice::MinuteRecord first = m_history.minutes.at(100);
        const auto price
            = [](std::int64_t points) { return QString::number(static_cast<double>(points) / 1e5, 'f', 5); };
        QCOMPARE(textOf(result),
            u"EURUSD 5 101 %1 %2 100000 100000 0 2014-05-01T01:40:00.000Z;%1 %3"_s.arg(
                price(first.bar.open - 4), price(first.bar.open + 4),
                QString::number(static_cast<double>(m_history.minutes.at(99).bar.open) / 1e5)));
    }

    void anOrderShowsAtTheNextTickAtTheEarliest()
    {
        const RunResult result
            = run(u"var n = 0; function OnTick() { ++n; if (n === 3) { Trade.buy(0.1);"
                  " Print(n, Positions.count()) } if (n === 4) { Print(n, Positions.count());"
                  " Trade.closeAll(); Print(n, Positions.count()) }"
                  " if (n === 5) Print(n, Positions.count()) }"_s);
        QCOMPARE(textOf(result), u"3 0;4 1;4 1;5 0"_s);
        QCOMPARE(result.trades.size(), std::size_t{1});
        QCOMPARE(result.trades[0].reason, lab::ExitReason::Script);
    }

    void aDelayMakesItLater()
    {
        m_settings.delayMs = 30'000; // prices come at 0, 20, 40 and 59.999 s
        const RunResult result = run(u"var n = 0; function OnTick() { if (++n === 1) Trade.buy(0.1);"
                                     " if (n < 6) Print(n, Positions.count()) }"_s);
        QCOMPARE(textOf(result), u"1 0;2 0;3 1;4 1;5 1"_s);
    }

    void promisesOrderAtThePriceOfTheirTick()
    {
        const RunResult direct = run(u"var n = 0; function OnTick() { if (++n === 7) Trade.buy(0.1) }"_s);
        const RunResult promised = run(u"var n = 0; function OnTick() { if (++n === 7)"
                                       " Promise.resolve().then(function() { Trade.buy(0.1) }) }"_s);
        QCOMPARE(direct.trades.size(), std::size_t{1});
        QCOMPARE(digestOf(promised), digestOf(direct));
    }

    void ordersOfTheFirstAndTheLastWordsAreCarriedOut()
    {
        const RunResult result
            = run(u"function OnInit() { Trade.buy(0.1) } function OnDeinit() { Trade.sell(0.2) }"_s);
        QCOMPARE(result.trades.size(), std::size_t{2});
        QCOMPARE(result.trades[0].openTime, *result.settings.from);
        QCOMPARE(result.trades[1].lots, practice::LotHundredths{20});
        QCOMPARE(result.trades[1].openTime, result.trades[1].closeTime);
        QCOMPARE(result.trades[1].reason, lab::ExitReason::End);
    }

    void ordersThatAreRefusedAreCountedAndSaid()
    {
        const RunResult result = run(u"var n = 0; function OnTick() { if (++n > 1) return; Trade.buy(-1);"
                                     " Trade.buy(0.1, {sl: 'x'}); Trade.buy(900) }"_s);
        QCOMPARE(result.refusals, std::uint64_t{3});
        QVERIFY2(
            textOf(result).startsWith(
                u"Order ignored: the lots must be a number above 0, not -1;Order ignored: stop loss or take "
                "profit is not a number;Order failed: "_s),
            qPrintable(textOf(result)));
        QVERIFY(result.trades.empty());
    }

    void errorsEndTheRunEarly_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("trades");
        QTest::newRow("file") << u"Trade.buy(0.1);\nno();"_s
                              << u"Probe: ReferenceError at line 2: no is not defined"_s << 1;
        QTest::newRow("OnInit") << u"function OnInit() {\n\nno(); }"_s
                                << u"Probe: OnInit: no is not defined (line 3)"_s << 0;
        QTest::newRow("OnTick")
            << u"var n = 0; function OnInit() { Trade.buy(0.1) }\nfunction OnTick() { if (++n === 50) no() }"_s
            << u"Probe: OnTick: no is not defined (line 2)"_s << 1;
    }

    void errorsEndTheRunEarly()
    {
        QFETCH(QString, script);
        QFETCH(QString, error);
        QFETCH(int, trades);
        const RunResult result = run(script);
        QCOMPARE(QString::fromStdString(result.error.value_or("")), error);
        QCOMPARE(result.trades.size(), static_cast<std::size_t>(trades));
        QVERIFY(result.ticks <= 50);
        QVERIFY(!result.equity.empty());
    }

    void whatTheLanguageLacksIsAnErrorAsInTheTerminal()
    {
        const RunResult result = run(u"async function OnTick() { Trade.buy(0.1) }"_s);
        QVERIFY2(result.error && result.error->rfind("Probe: SyntaxError at line 1: ", 0) == 0,
            result.error.value_or("no error").c_str());
        QCOMPARE(result.ticks, std::uint64_t{0});
    }

    void aScriptThatNeverEndsIsEnded_data()
    {
        QTest::addColumn<QString>("script");
        QTest::newRow("file") << u"for (;;);"_s;
        QTest::newRow("tick")
            << u"var n = 0; function OnTick() { if (++n === 5) while (true) try { for (;;); } catch (e) {} }"_s;
        QTest::newRow("OnDeinit") << u"function OnDeinit() { for (;;); }"_s;
        QTest::newRow("slow") << u"function OnTick() { for (var i = 0; i < 1e6; ++i); }"_s;
    }

    void aScriptThatNeverEndsIsEnded()
    {
        QFETCH(QString, script);
        lab::RunControl control;
        control.limit = std::chrono::milliseconds(250);
        const RunResult result = run(script, control);
        QCOMPARE(
            QString::fromStdString(result.error.value_or("")), u"Probe: Not at its end after 0.25 seconds"_s);
    }

    void whoeverStartsARunCanStopIt()
    {
        std::atomic<bool> stop = false;
        lab::RunControl control;
        control.stop = &stop;
        control.progress = [&stop](double done) { stop = done > 0.2; };
        const RunResult result = run(u"function OnTick() { for (var i = 0; i < 2e4; ++i); }"_s, control);
        QCOMPARE(QString::fromStdString(result.error.value_or("")), u"Probe: Stopped before its end"_s);
        QVERIFY(result.ticks > 1000);
        QVERIFY(result.ticks < 1900 * 4);
    }

    void endlessPrintingNeitherFillsTheMemoryNorGoesUnsaid()
    {
        lab::RunControl control;
        control.limit = std::chrono::milliseconds(500);
        const RunResult result = run(u"for (;;) Print('again and again');"_s, control);
        QVERIFY(result.journal.size() <= 2 * 5000 + 1);
        QCOMPARE(result.warnings.size(), std::size_t{1});
        QVERIFY(result.warnings[0].find("in the middle are left out.") != std::string::npos);
        QVERIFY(result.journalLeftOut > 0);
        QVERIFY(result.warnings[0].find(' ' + std::to_string(result.journalLeftOut) + " in the middle")
            != std::string::npos);
    }

    void aMillionOrdersAreWorkedOff()
    {
        const RunResult result = run(u"var n = 0; function OnTick() { if (++n > 1000) return;"
                                     " for (var i = 0; i < 1000; ++i) Trade.buy(i & 1 ? -1 : 5000) }"_s);
        QVERIFY(!result.error);
        QCOMPARE(result.refusals, std::uint64_t{1'000'000});
        QVERIFY(result.journal.size() <= 2 * 5000 + 1);
    }

    void chanceFollowsTheSettings()
    {
        const QString script
            = u"var a = []; for (var i = 0; i < 5; ++i) a.push(Math.random()); Print(a, Date.now())"_s;
        const QString first = textOf(run(script));
        QCOMPARE(textOf(run(script)), first);
        m_settings.seed = 2;
        QVERIFY(textOf(run(script)) != first);
    }

    void aTimerFiresBetweenThePrices()
    {
        const RunResult result = run(u"var n = 0, t = 0; EventSetTimer(60); function OnTimer() { ++t }"
                                     "function OnTick() { ++n } function OnDeinit() { Print(n, t) }"_s);
        QCOMPARE(textOf(result), u"7600 1899"_s);
    }

    void aCallForEachBarStillSeesWholeBars()
    {
        m_settings.model = lab::Model::Open;
        m_settings.timeframe = practice::Timeframe::M15;
        m_settings.warmupBars = 2;
        const RunResult result
            = run(u"var n = 0; function OnTick() { if (++n === 3) Print(High(1), Low(1), Close(1),"
                  " High(0) === Open(0)) }"_s);
        std::int64_t high = 0;
        std::int64_t low = 1'000'000;
        for (std::size_t minute = 45; minute < 60; ++minute) {
            high = std::max(high, m_history.minutes.at(minute).bar.high);
            low = std::min(low, m_history.minutes.at(minute).bar.low);
        }
        const auto text
            = [](std::int64_t points) { return QString::number(static_cast<double>(points) / 1e5, 'g', 15); };
        QCOMPARE(textOf(result),
            u"%1 %2 %3 true"_s.arg(text(high), text(low), text(m_history.minutes.at(59).bar.close)));
        QCOMPARE(result.ticks, result.bars);
    }

    void aChartUnderTheFeedHasWhatWasSentAndNoMore()
    {
        std::vector<lab::checks::HandMade> made;
        for (std::int64_t minute = 0; minute < 60; ++minute)
            made.push_back({minute, {110'000, 110'900, 109'200, 110'000 + minute, 10}, 4});
        const lab::MinuteHistory history = lab::checks::historyOf(made);
        m_settings.model = lab::Model::Feed;
        m_settings.warmupBars = 0;
        QStringList expected;
        std::size_t beyond = 0; // minutes of which the broker sees more than is sent
        for (std::size_t minute = 0; minute < history.size(); ++minute) {
            std::vector<std::int64_t> seen;
            std::vector<std::int64_t> sent;
            for (const lab::Moment& moment : lab::checks::walked(history, m_settings, minute, minute + 1)) {
                seen.push_back(moment.mid);
                if (moment.forScript)
                    sent.push_back(moment.mid);
            }
            const auto [low, high] = std::ranges::minmax(sent);
            const auto [lowest, highest] = std::ranges::minmax(seen);
            beyond += lowest < low || highest > high ? 1 : 0;
            for (const std::int64_t price : {sent.front(), high, low, sent.back()})
                expected.append(QString::number(static_cast<double>(price) / 1e5, 'f', 5));
        }
        QVERIFY(beyond >= 5);

        const RunResult feed = lab::LabRun({&history})
                                   .run({u"Probe"_s, u"Probe.js"_s, uR"(function OnDeinit() {
                for (var i = Bars() - 1; i >= 0; --i)
                    [Open(i), High(i), Low(i), Close(i)].forEach(function(p) { Print(p.toFixed(5)) }) })"_s},
                                       m_settings);
        QVERIFY(!feed.error);
        QCOMPARE(textOf(feed).split(u';'), expected);
        QCOMPARE(feed.ticks, std::uint64_t{60 * 240});
    }

    void theFingerprintsKnowSpreadsAndThePairsPrices()
    {
        m_settings.to = m_history.timeAt(160);
        m_settings.spreadPoints = 8;
        const std::uint64_t narrow = run(u"1"_s).tickPrint;
        QCOMPARE(run(u"1"_s).tickPrint, narrow);
        m_settings.spreadPoints = 20;
        QVERIFY(run(u"1"_s).tickPrint != narrow);

        const lab::MinuteHistory pair = swings(50);
        const lab::MinuteHistory other = swings(51);
        const std::uint64_t hash = lab::LabRun({&m_history, &pair}).dataHash();
        QVERIFY(lab::LabRun({&m_history, &other}).dataHash() != hash);
        QVERIFY(lab::LabRun({&m_history}).dataHash() != hash);
    }

    void aBrokenPlanEndsTheRunWithLastWords()
    {
        m_settings.rules = lab::AccountRules::Plan;
        const RunResult result
            = run(u"function OnInit() { Trade.buy(60) } function OnDeinit() { Print('end', Date.now()) }"_s);
        QVERIFY(result.outcome != lab::PlanOutcome::None);
        QVERIFY(!result.error);
        QVERIFY(result.ticks < 7600);
        QVERIFY(textOf(result).endsWith(u"end %1"_s.arg(result.outcomeTime)));
    }

    void aScriptIsNotCalledForThePriceThatEndsItsPlan()
    {
        m_settings.rules = lab::AccountRules::Plan;
        const RunResult result = run(u"function OnInit() { Trade.buy(60) } var last = 0;"
                                     " function OnTick() { last = Date.now() }"
                                     " function OnDeinit() { Print(last) }"_s);
        QVERIFY(result.outcome != lab::PlanOutcome::None);
        QVERIFY(textOf(result).section(u';', -1).toLongLong() > 0);
        QVERIFY(textOf(result).section(u';', -1).toLongLong() < result.outcomeTime);
    }

    void progressGrowsUpToOne()
    {
        std::vector<double> told;
        lab::RunControl control;
        control.progress = [&told](double done) { told.push_back(done); };
        run(u"1"_s, control);
        QVERIFY(told.size() >= 100 && told.size() <= 200);
        QVERIFY(std::is_sorted(told.begin(), told.end()));
        QVERIFY(told.front() > 0 && told.back() <= 1);
    }

    void aSingleMinuteIsARunAndNoneIsNot()
    {
        m_history = swings(1);
        m_settings.from = m_history.timeAt(0);
        const RunResult result = run(u"function OnTick() { Trade.buy(0.1) }"_s);
        QCOMPARE(result.ticks, std::uint64_t{4});
        QCOMPARE(result.bars, std::uint64_t{1});
        m_settings.from = m_history.timeAt(0) + practice::dayMs;
        QVERIFY_THROWS_EXCEPTION(lab::HistoryError, (void)run(u"1"_s));
        m_history = swings(2000);
    }
};

TAVORAN_TEST(tst_LabRun)
#include "tst_LabRun.moc"
