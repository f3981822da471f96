#include "lab/run/StageFixture.h"
#include "support/TestMain.h"

#include <QJSEngine>

#include <thread>

using namespace Qt::StringLiterals;

/// What a script in the lab can see and do, and when.
class tst_ScriptStage final : public QObject {
    Q_OBJECT

    std::unique_ptr<StageFixture> m_fixture;

    StageFixture& chart() { return *m_fixture; }

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<StageFixture>(); }

    void hooksAreCalledInTheirOrderWithTheirTimes()
    {
        chart().load(u"Print('file'); function OnInit() { Print('init') } function OnTick() { Print('tick') }"
                     "function OnDeinit() { Print('end') }"_s);
        QVERIFY(chart().stage->isRunning());
        chart().tickAfter(1500);
        chart().stage->stop();
        QCOMPARE(chart().said(), u"file;init;tick;end"_s);
        const std::vector<lab::JournalLine> lines = chart().stage->journal().lines();
        QCOMPARE(lines[1].time, practice::TimeMs{1'700'000'000'000});
        QCOMPARE(lines[2].time, practice::TimeMs{1'700'000'001'500});
        QVERIFY(!chart().stage->error());
    }

    void barsGrowAsOnAChart()
    {
        const practice::TimeMs start = practice::barStart(chart().time, practice::Timeframe::M1);
        for (int i = 3; i > 0; --i)
            chart().bars.push_back({start - i * practice::minuteMs, 1.0, 1.3, 0.9, 1.0 + i * 0.1, 4});
        chart().load(u"function OnTick() { Print(Bars(), Close(1).toFixed(2), High(0).toFixed(2),"
                     " iMA(2, MODE_SMA, 1).toFixed(2)) }"_s);
        chart().bid = chart().ask = 1.4;
        chart().tickAfter(1000);
        chart().bid = chart().ask = 1.2;
        chart().tickAfter(practice::minuteMs);
        QCOMPARE(chart().said(), u"4 1.10 1.40 1.15;5 1.40 1.20 1.25"_s);
        const std::vector<lab::BarRow> rows = chart().stage->takeBarsOfRun().rows();
        QCOMPARE(rows.size(), std::size_t{2});
        QCOMPARE(rows[0].time, start);
        QCOMPARE(rows[0].high, 1.4);
        QCOMPARE(rows[1].close, 1.2);
    }

    void anUnfinishedBarBeforeTheRunGrowsOnAndBelongsToIt()
    {
        const practice::TimeMs start = practice::barStart(chart().time, practice::Timeframe::M1);
        chart().bars.push_back({start - practice::minuteMs, 1.0, 1.0, 1.0, 1.0, 1});
        chart().bars.push_back({start, 2.0, 2.0, 2.0, 2.0, 1});
        chart().load(u"Print(Bars(), Open(0), Close(0) < 2)"_s);
        QCOMPARE(chart().said(), u"2 2 true"_s);
        QCOMPARE(chart().stage->takeBarsOfRun().count(), std::uint64_t{1});
    }

    void ordersGoOutAndUnusableOnesDoNot()
    {
        chart().load(u"function OnTick() { Trade.buy(0.1, {sl: 1}); Trade.sell(-1); Trade.buy(1, {tp: 'x'});"
                     " Trade.closeAll() }"_s);
        chart().tickAfter(1);
        QCOMPARE(
            chart().done.join(u';'), u"order BUY 0.1 1 0;refused SELL -1 0 0;refused BUY 1 0 nan;closeAll"_s);
        QCOMPARE(chart().said(),
            u"Order ignored: the lots must be a number above 0, not -1;Order ignored: stop loss or take profit is not a number"_s);
    }

    void alertsAreMarkedAndCommentsAreNotKept()
    {
        chart().load(u"Alert('a', 1); Comment('c'); Print('one\\ntwo')"_s);
        QCOMPARE(chart().said(), u"ALERT: a 1;one two"_s);
    }

    void promisesActWithinTheTick()
    {
        chart().load(u"var n = 0; function OnTick() { Promise.resolve().then(function() { Print('first');"
                     " Trade.buy(0.1) }).then(function() { Print('second'); ++n }); Print('hook', n) }"_s);
        chart().tickAfter(1000);
        QCOMPARE(chart().said(), u"hook 0;first;second"_s);
        QCOMPARE(chart().done.join(u';'), u"order BUY 0.1 0 0"_s);
        chart().tickAfter(1000);
        QVERIFY(chart().said().startsWith(u"hook 0;first;second;hook 1"_s));
        QCOMPARE(chart().stage->journal().lines()[2].time, practice::TimeMs{1'700'000'001'000});
    }

    void promisesWithoutEndLetThePricesGoOn()
    {
        chart().load(u"var n = 0; function more() { ++n; Promise.resolve().then(more) } more();"
                     "function OnTick() { Print(n > 10) }"_s);
        chart().tickAfter(1);
        chart().tickAfter(1);
        QCOMPARE(chart().said(), u"true;true"_s);
    }

    void promisesOfTheFileAndOfOnTimerActAsWell()
    {
        chart().load(
            u"function later(text) { Promise.resolve(text).then(Print) } later('file');"
            "function OnInit() { later('init'); EventSetTimer(1) } function OnTimer() { later('timer') }"
            "function OnTick() { Print('tick') } function OnDeinit() { later('end'); Print('bye') }"_s);
        chart().tickAfter(1000);
        chart().stage->stop();
        QCOMPARE(chart().said(), u"file;init;timer;tick;bye"_s);
    }

    void theTimerKeepsThePriceOfTimeAndCollapsesWhatItMissed()
    {
        chart().load(
            u"var n = 0; function OnInit() { EventSetTimer(10) } function OnTimer() { Print('timer', ++n) }"
            "function OnTick() { Print('tick') }"_s);
        chart().tickAfter(9'999);
        QCOMPARE(chart().said(), u"tick"_s);
        chart().tickAfter(1);
        QCOMPARE(chart().said(), u"tick;timer 1;tick"_s);
        chart().tickAfter(14'000); // due 4 s ago
        chart().tickAfter(5'999);
        chart().tickAfter(1); // so 20 s after the first, and not 10 s after the late one
        QCOMPARE(chart().said(), u"tick;timer 1;tick;timer 2;tick;tick;timer 3;tick"_s);
        chart().tickAfter(100'000);
        chart().tickAfter(9'999);
        QVERIFY(chart().said().endsWith(u"timer 4;tick;tick"_s));
        chart().tickAfter(1);
        QVERIFY(chart().said().endsWith(u"timer 5;tick"_s));
    }

    void theTimerCanBeStoppedAndSetAnew()
    {
        chart().load(u"EventSetTimer(1); function OnTimer() { Print('timer'); EventKillTimer() }"
                     "function OnTick() { if (Bid > 2) EventSetTimer(3) }"_s);
        chart().tickAfter(1000);
        chart().tickAfter(60'000);
        QCOMPARE(chart().said(), u"timer"_s);
        chart().bid = 3;
        chart().tickAfter(1);
        chart().bid = 1;
        chart().tickAfter(2999);
        QCOMPARE(chart().said(), u"timer"_s);
        chart().tickAfter(1);
        QCOMPARE(chart().said(), u"timer;timer"_s);
    }

    void anErrorInOnTimerEndsNothing()
    {
        chart().load(
            u"EventSetTimer(1);\nfunction OnTimer() { no() }\nfunction OnTick() { Print('tick') }"_s);
        chart().tickAfter(1000);
        QCOMPARE(chart().said(), u"OnTimer: no is not defined (line 2);tick"_s);
        QVERIFY(chart().stage->isRunning());
        QVERIFY(!chart().stage->error());
    }

    void errorsEndTheScriptWithTheirLine_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("said");
        QTest::newRow("syntax") << u"\nvar a = ;"_s
                                << u"SyntaxError at line 2: Expected token `numeric literal'"_s << QString();
        QTest::newRow("file") << u"Print('a');\n\nno();"_s << u"ReferenceError at line 3: no is not defined"_s
                              << u"a;"_s;
        QTest::newRow("OnInit") << u"function OnInit() {\n no() }\nfunction OnDeinit() { Print('end') }"_s
                                << u"OnInit: no is not defined (line 2)"_s << QString();
        QTest::newRow("OnTick")
            << u"EventSetTimer(1); function OnTimer() { x() }\nfunction OnTick() { no() }\n"
               "function OnDeinit() { Print('end'); z() }"_s
            << u"OnTick: no is not defined (line 2)"_s << u"OnTimer: x is not defined (line 1);"_s;
    }

    void errorsEndTheScriptWithTheirLine()
    {
        QFETCH(QString, script);
        QFETCH(QString, error);
        QFETCH(QString, said);
        chart().load(script);
        chart().tickAfter(1000);
        QVERIFY(!chart().stage->isRunning());
        QVERIFY(chart().stage->error());
        if (error.startsWith(u"Syntax"_s))
            QVERIFY2(chart().stage->error()->startsWith(u"SyntaxError at line 2: "_s),
                qPrintable(*chart().stage->error()));
        else
            QCOMPARE(*chart().stage->error(), error);
        QVERIFY2(chart().said().startsWith(said + *chart().stage->error()), qPrintable(chart().said()));
        if (error.startsWith(u"OnTick"_s))
            QVERIFY(chart().said().endsWith(u";end;OnDeinit: z is not defined (line 3)"_s));
    }

    void datesFollowTheRun()
    {
        chart().load(
            u"function OnTick() { Print(Date.now(), new Date().getTime(), Date() === new Date().toString(),"
            " new Date().toISOString()) }"_s);
        chart().tickAfter(1234);
        chart().tickAfter(practice::dayMs);
        QCOMPARE(chart().said(),
            u"1700000001234 1700000001234 true 2023-11-14T22:13:21.234Z;"
            "1700086401234 1700086401234 true 2023-11-15T22:13:21.234Z"_s);
    }

    void datesAreOtherwiseThoseOfTheLanguage_data()
    {
        QTest::addColumn<QString>("expression");
        for (const char* expression : {
                 "new Date(2020, 1, 29, 12, 30, 15, 7).getTime()",
                 "new Date(2020, 1).toISOString()",
                 "new Date(99, 0).getFullYear()",
                 "new Date(86400000).toISOString()",
                 "new Date('2020-02-29T12:00:00Z').getTime()",
                 "new Date(new Date(5)).getTime()",
                 "new Date(undefined).getTime()",
                 "new Date(null).getTime()",
                 "Date.parse('2020-02-29')",
                 "Date.UTC(2020, 1, 29)",
                 "Date.length + Date.name",
                 "Object.getOwnPropertyNames(Date).sort()",
                 "Object.getOwnPropertyNames(Date.prototype).sort()",
                 "(function(d) { return [d.writable, d.enumerable, d.configurable] })"
                 "(Object.getOwnPropertyDescriptor(Date, 'prototype'))",
                 "JSON.stringify(Object.getOwnPropertyDescriptor(this, 'Date'))",
                 "JSON.stringify(Object.getOwnPropertyDescriptor(Date, 'now'))",
                 "JSON.stringify(Object.getOwnPropertyDescriptor(Date, 'parse'))",
                 "Date.now.name + Date.now.length",
                 "Date.prototype.constructor === Date",
                 "new Date().constructor === Date && new Date() instanceof Date",
                 "Object.prototype.toString.call(new Date(0))",
                 "(function() { class D extends Date { twice() { return this.getTime() * 2 } }"
                 " var d = new D(4); return d.twice() + ' ' + (d instanceof D) + (d instanceof Date) })()",
                 "typeof Date()",
                 "JSON.stringify(new Date(0))",
                 "new Date(0) + 1",
                 "Math.random.name + Math.random.length",
                 "JSON.stringify(Object.getOwnPropertyDescriptor(Math, 'random'))",
                 "typeof __lab + Object.getOwnPropertyNames(this).sort()",
             })
            QTest::newRow(expression) << QString::fromLatin1(expression);
    }

    void datesAreOtherwiseThoseOfTheLanguage()
    {
        QFETCH(QString, expression);
        // What the same expression gives in the terminal.
        std::vector<Candle> candles;
        QString live;
        ExpertHost::Callbacks calls;
        calls.print = [&live](const QString& text) { live = text; };
        ExpertEngine engine(u"EURUSD"_s, 5, candles, calls);
        const QString script = u"Print("_s + expression + u')';
        QVERIFY(engine.load(ExpertScript{u"Probe"_s, u"Probe.js"_s, script}));
        chart().load(script);
        QVERIFY(!live.isEmpty());
        QCOMPARE(chart().said(), live);
    }

    void chanceFollowsTheSeed()
    {
        const auto numbers = [](std::uint64_t seed) {
            StageFixture fixture;
            fixture.seed = seed;
            fixture.load(
                u"var a = []; for (var i = 0; i < 1000; ++i) a.push(Math.random());"
                "Print(Math.min.apply(null, a) >= 0 && Math.max.apply(null, a) < 1, a.slice(0, 20))"_s);
            return fixture.said();
        };
        QVERIFY(numbers(1).startsWith(u"true "_s));
        QCOMPARE(numbers(1), numbers(1));
        QVERIFY(numbers(1) != numbers(2));
    }

    void aScriptMayPutItsOwnInTheirPlaces()
    {
        chart().load(u"Math.random = function() { return 4 }; Date.now = function() { return 5 };"
                     "Print(Math.random(), Date.now(), new Date().getTime()); Date = null; Math = null;"
                     "function OnTick() { Print('tick', Date) }"_s);
        chart().tickAfter(1);
        QCOMPARE(chart().said(), u"4 5 1700000000000;tick null"_s);
    }

    void placesOfErrorsNameNoFolder()
    {
        chart().load(u"try { no() } catch (e) { Print(e.stack, e.fileName) }"_s);
        QVERIFY2(!chart().said().contains(u'/'), qPrintable(chart().said()));
    }

    void anInterruptedScriptSaysNoMore_data()
    {
        QTest::addColumn<QString>("script");
        QTest::newRow("file") << u"for (;;);"_s;
        QTest::newRow("OnInit") << u"function OnInit() { for (;;); }"_s;
        QTest::newRow("OnTick") << u"function OnTick() { while (1) try { while (1); } catch (e) {} }"_s;
        QTest::newRow("OnTimer") << u"EventSetTimer(1); function OnTimer() { for (;;); }"_s;
        QTest::newRow("promise") << u"function f() { Promise.resolve().then(f) } function OnTick() { f() }"_s;
    }

    void anInterruptedScriptSaysNoMore()
    {
        QFETCH(QString, script);
        chart().create();
        std::thread watch([this] {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            chart().stage->interrupt();
        });
        chart().stage->load({u"Probe"_s, u"Probe.js"_s, script + u"function OnDeinit() { Print('end') }"_s});
        chart().tickAfter(1000);
        watch.join();
        QCOMPARE(chart().said(), QString());
    }

    void endlessPrintingLeavesTheBeginningAndTheEnd()
    {
        lab::Journal journal;
        constexpr std::uint64_t count = 1'000'000;
        for (std::uint64_t i = 0; i < count; ++i)
            journal.add(static_cast<practice::TimeMs>(i), QString::number(i));
        const std::vector<lab::JournalLine> lines = journal.lines();
        QCOMPARE(lines.size(), 2 * lab::Journal::mostLines + 1);
        QCOMPARE(lines.front().text, std::string("0"));
        QCOMPARE(lines.back().text, std::string("999999"));
        QCOMPARE(lines[lab::Journal::mostLines].text, std::string("990000 lines left out"));
        QCOMPARE(lines[lab::Journal::mostLines].time, practice::TimeMs{994'999});
        QCOMPARE(journal.count(), count);
        QCOMPARE(journal.leftOut(), count - 2 * lab::Journal::mostLines);
    }

    void longLinesAreFewer()
    {
        lab::Journal journal;
        for (int i = 0; i < 2000; ++i)
            journal.add(i, QString(4096, u'x'));
        std::size_t bytes = 0;
        for (const lab::JournalLine& line : journal.lines())
            bytes += line.text.size();
        QVERIFY(bytes <= 2 * lab::Journal::mostBytes + 100);
        QVERIFY(bytes > lab::Journal::mostBytes);
    }

    void aLineThatIsTooLongIsCountedAtItsTime()
    {
        lab::Journal journal;
        journal.add(1, QString(lab::Journal::mostBytes, u'x'));
        journal.add(2, QString(lab::Journal::mostBytes + 1, u'y'));
        const std::vector<lab::JournalLine> lines = journal.lines();
        QCOMPARE(lines.size(), std::size_t{2});
        QCOMPARE(lines.back().text, std::string("1 lines left out"));
        QCOMPARE(lines.back().time, practice::TimeMs{2});
    }
};

TAVORAN_TEST(tst_ScriptStage)
#include "tst_ScriptStage.moc"
