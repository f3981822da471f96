#include "experts/ExpertEngine.h"
#include "experts/ExpertScript.h"

#include "experts/ExpertFixture.h"
#include "support/TestMain.h"
#include "support/Timers.h"

#include <QResource>

using namespace Qt::StringLiterals;

class tst_ExpertEngine final : public QObject {
    Q_OBJECT

    std::unique_ptr<ExpertFixture> m_fixture;

    ExpertFixture& chart() { return *m_fixture; }

    /// A promise is kept in one turn of the event loop, and what it does happens in the next.
    static void letPromisesAct()
    {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<ExpertFixture>(); }

    void aScriptWithoutHooksLoads()
    {
        QVERIFY(chart().load("var a = 1;"));
        QVERIFY(chart().engine->isRunning());
        QCOMPARE(chart().engine->name(), u"Probe"_s);
        QCOMPARE(chart().messages, QStringList(u"Probe loaded"_s));
        chart().engine->tick();
        chart().engine->stop();
        QVERIFY(!chart().engine->isRunning());
    }

    void theNameIsTheFileNameWithoutItsLastExtension()
    {
        QVERIFY(chart().loadFile(chart().file("", u"My.Best.js"_s)));
        QCOMPARE(chart().engine->name(), u"My.Best"_s);
    }

    void hooksAreCalledInTheirOrder()
    {
        QVERIFY(chart().load("Print('file'); function OnInit() { Print('init'); return false; }"
                             "function OnTick() { Print('tick', arguments.length) }"
                             "function OnDeinit() { Print('deinit') }"));
        chart().engine->tick();
        chart().engine->tick();
        chart().engine->stop();
        chart().engine->stop();
        chart().engine->tick();
        QCOMPARE(chart().done.join(u';'), u"print file;print init;print tick 0;print tick 0;print deinit"_s);
    }

    void hooksThatAreNoFunctionsAreSkipped()
    {
        QVERIFY(chart().load("var OnInit = 5, OnTick = {}, OnDeinit = 'x', OnTimer = null;"));
        chart().engine->tick();
        chart().engine->stop();
        QCOMPARE(chart().messages, QStringList(u"Probe loaded"_s));
    }

    void hooksAreThoseOfTheEndOfTheFile()
    {
        QVERIFY(chart().load("OnTick = function() { Print(1); OnTick = function() { Print(2) } }"));
        chart().engine->tick();
        chart().engine->tick();
        QCOMPARE(chart().done.join(u';'), u"print 1;print 1"_s);
        chart().done.clear();
        QVERIFY(chart().load("function OnTick() { Print('of the file') } function OnDeinit() { Print('end') }"
                             "function OnInit() { OnTick = OnDeinit = function() { Print('late') } }"));
        chart().engine->tick();
        chart().engine->stop();
        QCOMPARE(chart().done.join(u';'), u"print of the file;print end"_s);
    }

    void anExpertRunsOnceItsOnInitHasSucceeded()
    {
        QList<bool> running;
        ExpertHost::Callbacks calls = chart().callbacks();
        calls.closeAll = [&] {
            running.append(chart().engine->isRunning());
            chart().engine->tick();
        };
        chart().create(calls);
        connect(chart().engine.get(), &ExpertEngine::message, chart().engine.get(),
            [&] { running.append(chart().engine->isRunning()); });
        QVERIFY(chart().engine->load(
            chart().file("function OnInit() { Trade.closeAll() } function OnTick() { Print('tick') }")));
        QCOMPARE(running, QList<bool>({false, true}));
        QCOMPARE(chart().done, QStringList());
    }

    void aFailureNeedsNobodyToHearItsReason()
    {
        chart().create();
        QVERIFY(!chart().engine->load(chart().file("function OnInit() { throw new Error('boom') }")));
        QCOMPARE(chart().messages, QStringList(u"OnInit: boom (line 1)"_s));
        chart().create();
        QVERIFY(!chart().engine->load(u"/nowhere/Gone.js"_s));
        QVERIFY(!chart().engine->isRunning());
    }

    void aMissingFileIsNamed()
    {
        const QString path = chart().file("", u"Gone.js"_s);
        QFile::remove(path);
        QVERIFY(!chart().loadFile(path));
        QCOMPARE(chart().error, u"Cannot open "_s + path);
        QVERIFY(!chart().loadFile(QFileInfo(path).absolutePath()));
        QCOMPARE(chart().error, u"Cannot open "_s + QFileInfo(path).absolutePath());
        // What is no ordinary file might keep the terminal waiting.
        QVERIFY(!chart().loadFile(u"/dev/null"_s));
        QCOMPARE(chart().error, u"Cannot open /dev/null"_s);
    }

    void anEndlessFileIsNotRead()
    {
        const QString path = chart().file("", u"Huge.js"_s);
        QFile file(path);
        QVERIFY(file.resize(ExpertScript::largestFile + 1));
        QVERIFY(!chart().loadFile(path));
        QCOMPARE(chart().error, path + u" is too large for a script"_s);
    }

    void aSyntaxErrorIsReportedWithItsLine()
    {
        QVERIFY(!chart().load("var a;\nvar b = ;\n"));
        QVERIFY2(chart().error.startsWith("SyntaxError at line 2: "_L1), qPrintable(chart().error));
        QCOMPARE(chart().messages, QStringList());
        QVERIFY(!chart().engine->isRunning());
    }

    void whatTheFileItselfThrowsIsReportedWithItsLine()
    {
        QVERIFY(!chart().load("\n\nnothing();"));
        QCOMPARE(chart().error, u"ReferenceError at line 3: nothing is not defined"_s);
        QVERIFY(!chart().load("\nthrow 5;"));
        QCOMPARE(chart().error, u"Error at line 2: 5"_s);
    }

    void aFileThatEndsInAnErrorObjectHasNotFailed() { QVERIFY(chart().load("new Error('only a value')")); }

    void lineNumbersAreRightAfterThePrelude()
    {
        QVERIFY(!chart().load("function OnInit() {\n  var o;\n  Print('here');\n  o.x = 1;\n}"));
        QVERIFY2(chart().error.endsWith("(line 4)"_L1), qPrintable(chart().error));
        // Within the prelude's own functions it is the script's line that counts.
        QVERIFY(!chart().load("function OnInit() {\n  Trade.buy({valueOf: 5, toString: 5});\n}"));
        QVERIFY2(chart().error.endsWith("(line 2)"_L1), qPrintable(chart().error));
        QVERIFY(!chart().load("\n\nPrint(Object.create(null));"));
        QVERIFY2(chart().error.startsWith("TypeError at line 3: "_L1), qPrintable(chart().error));
    }

    void aFailingOnInitLeavesNoExpert()
    {
        QVERIFY(!chart().load("function OnInit() {\n EventSetTimer(1); throw new Error('boom') }\n"
                              "function OnDeinit() { Print('deinit') }"));
        QCOMPARE(chart().error, u"OnInit: boom (line 2)"_s);
        QCOMPARE(chart().messages, QStringList(u"OnInit: boom (line 2)"_s));
        QVERIFY(!chart().engine->isRunning());
        chart().engine->stop();
        QCOMPARE(chart().done, QStringList());
    }

    void aFailingTickEndsTheExpert()
    {
        QVERIFY(
            chart().load("var n = 0;\nfunction OnInit() { EventSetTimer(1) }\n"
                         "function OnTick() { Print(++n); if (n == 2) throw new RangeError('far'); }\n"
                         "function OnTimer() { Print('timer') }\nfunction OnDeinit() { Print('deinit') }"));
        chart().messages.clear();
        for (int i = 0; i < 5; ++i)
            chart().engine->tick();
        QCOMPARE(chart().messages,
            QStringList(
                {u"OnTick: far (line 3)"_s, u"Stopped after error in OnTick: OnTick: far (line 3)"_s}));
        QCOMPARE(chart().done.join(u';'), u"print 1;print 2;print deinit"_s);
        QVERIFY(!chart().engine->isRunning());
        QVERIFY(!chart().timer->isActive());
    }

    void theLastWordsComeAfterTheReason()
    {
        chart().create();
        connect(chart().engine.get(), &ExpertEngine::message, chart().engine.get(),
            [this](const QString& text) { chart().done.append(u"message "_s + text); });
        QVERIFY(chart().engine->load(
            chart().file("function OnTick() { throw new Error('far') }\n"
                         "function OnDeinit() {\n Print('deinit'); throw new Error('near') }")));
        chart().done.clear();
        chart().engine->tick();
        QCOMPARE(chart().done,
            QStringList({u"message OnTick: far (line 1)"_s,
                u"message Stopped after error in OnTick: OnTick: far (line 1)"_s, u"print deinit"_s,
                u"message OnDeinit: near (line 3)"_s}));
    }

    void valuesThatAreNoErrorsEndTheExpertToo_data()
    {
        QTest::addColumn<QByteArray>("thrown");
        QTest::addColumn<QString>("message");
        QTest::newRow("throw 5") << QByteArray("5") << u"OnTick: 5"_s;
        QTest::newRow("throw null") << QByteArray("null") << u"OnTick: null"_s;
        QTest::newRow("throw a text") << QByteArray("'%1 %2'") << u"OnTick: %1 %2"_s;
        QTest::newRow("throw the host") << QByteArray("__host") << u"OnTick: __host"_s;
    }
    void valuesThatAreNoErrorsEndTheExpertToo()
    {
        QFETCH(QByteArray, thrown);
        QFETCH(QString, message);
        QVERIFY(chart().load("function OnTick() { throw " + thrown + " }"));
        chart().messages.clear();
        chart().engine->tick();
        QCOMPARE(chart().messages, QStringList({message, u"Stopped after error in OnTick: "_s + message}));
        QVERIFY(!chart().engine->isRunning());
    }

    void aReturnedErrorIsNoFailure()
    {
        QVERIFY(chart().load(
            "function OnInit() { return new Error('a') } function OnTick() { return new Error('b') }"));
        chart().engine->tick();
        QVERIFY(chart().engine->isRunning());
    }

    void aByteOrderMarkAndOtherAlphabetsAreRead()
    {
        QVERIFY(chart().load("\xEF\xBB\xBF// Überschrift\nvar größe = 'Привет → 💶';\nPrint(größe)"));
        QCOMPARE(chart().done, QStringList(u"print Привет → 💶"_s));
        QVERIFY(!chart().load("\xEF\xBB\xBFvar 値 = 1;\nthrow new Error('エラー')"));
        QCOMPARE(chart().error, u"Error at line 2: エラー"_s);
        QVERIFY(chart().load("Print('a\xFF\x62')"));
        QCOMPARE(chart().done.last(), u"print a\uFFFDb"_s);
    }

    void aFileNamedInAnotherAlphabetKeepsItsLineNumbers()
    {
        QVERIFY(!chart().loadFile(chart().file("\n\nnone()", u"Тест 100% →.js"_s)));
        QCOMPARE(chart().error, u"ReferenceError at line 3: none is not defined"_s);
        QCOMPARE(chart().engine->name(), u"Тест 100% →"_s);
    }

    void expertsShareNothing()
    {
        ExpertFixture other;
        QVERIFY(chart().load("shared = 1; Array.prototype.extra = 1; Math.max = null"));
        QVERIFY(other.load("Print(typeof shared, typeof [].extra, typeof Math.max)"));
        QCOMPARE(other.done, QStringList(u"print undefined undefined function"_s));
    }

    void lateDigitsReachTheScript()
    {
        QVERIFY(chart().load("function OnTick() { Print(Digits(), Point()); Trade.buy(1, {slPoints: 10}) }"));
        chart().engine->setDigits(2);
        chart().engine->tick();
        QCOMPARE(chart().done, QStringList({u"print 2 0.01"_s, u"order BUY 1 1 0"_s}));
        chart().engine->stop();
        chart().engine->setDigits(3); // nobody is left to be told
    }

    void digitsThatChangeInMidHookAreToldAtOnce()
    {
        ExpertHost::Callbacks calls = chart().callbacks();
        calls.closeAll = [this] { chart().engine->setDigits(chart().engine->isRunning() ? 1 : 3); };
        chart().create(calls);
        QVERIFY(chart().engine->load(chart().file("function OnInit() { Trade.closeAll(); Print(Digits(), "
                                                  "Point(), _tp('SELL', {tpPoints: 1}).toFixed(4)) }"
                                                  "function OnTick() { Trade.closeAll(); Print(Digits(), "
                                                  "Point(), _tp('SELL', {tpPoints: 1}).toFixed(4));"
                                                  " Trade.sell(1, {slPoints: 2}); Print(Symbol()) }")));
        chart().engine->tick();
        chart().engine->setDigits(5);
        QCOMPARE(chart().done,
            QStringList({u"print 3 0.001 1.0990"_s, u"print 1 0.1 1.0000"_s, u"order SELL 1 1.3002 0"_s,
                u"print EURUSD"_s}));
    }

    void digitsThatAreKnownBeforeTheFileAreTheScripts()
    {
        chart().create();
        chart().engine->setDigits(2);
        QVERIFY(chart().engine->load(chart().file("Print(Digits(), Point())")));
        QCOMPARE(chart().done, QStringList(u"print 2 0.01"_s));
    }

    void stoppingInMidTickLeavesTheRestWithoutEffect()
    {
        ExpertHost::Callbacks calls = chart().callbacks();
        calls.closeAll = [this] { chart().engine->stop(); };
        chart().create(calls);
        QVERIFY(chart().engine->load(
            chart().file("function OnTick() { Print('in'); Trade.closeAll(); Print('out'); Trade.buy(1); "
                         "EventSetTimer(1); Close(0); throw 5 }"
                         "function OnDeinit() { Print('deinit') } function OnTimer() { Print('timer') }")));
        chart().engine->tick();
        QCOMPARE(chart().done.join(u';'), u"print in;print deinit"_s);
        QVERIFY(!chart().engine->isRunning());
        QCOMPARE(chart().messages, QStringList({u"Probe loaded"_s, u"OnTick: 5"_s}));
    }

    void theEngineMayBeDeletedInMidHook_data()
    {
        QTest::addColumn<QByteArray>("hook");
        for (const char* hook : {"OnInit", "OnTick", "OnTimer", "OnDeinit", "file"})
            QTest::newRow(hook) << QByteArray(hook);
    }
    /// What sanitizers are for: everything that the call still touches must be alive.
    void theEngineMayBeDeletedInMidHook()
    {
        QFETCH(QByteArray, hook);
        const QByteArray body = "{ Print('in'); Trade.closeAll(); var a = []; for (var i = 0; i < 1000; ++i)"
                                " a.push({n: i}); Print('out'); Trade.buy(1); Close(0); Bid; throw 1 }";
        ExpertHost::Callbacks calls = chart().callbacks();
        calls.closeAll = [this] { chart().engine.reset(); };
        chart().create(calls);
        ExpertEngine* const engine = chart().engine.get();
        const QByteArray script = hook == "file"
            ? body
            : "function " + hook + "() " + body + (hook == "OnTimer" ? "EventSetTimer(1)" : "");
        QString error;
        const bool running = engine->load(chart().file(script), &error);
        QCOMPARE(running, hook != "OnInit" && hook != "file");
        if (hook == "OnTick")
            engine->tick();
        else if (hook == "OnTimer")
            timeOut(*chart().timer);
        else if (hook == "OnDeinit")
            engine->stop();
        QVERIFY(!chart().engine);
        QCOMPARE(chart().done, QStringList(u"print in"_s));
        QCoreApplication::processEvents();
    }

    void theEngineMayBeDeletedByWhoHearsItsMessages()
    {
        chart().create();
        connect(chart().engine.get(), &ExpertEngine::message, qApp, [this] { chart().engine.reset(); });
        ExpertEngine* const engine = chart().engine.get();
        QVERIFY(!engine->load(chart().file("function OnDeinit() { Print('deinit') }")));
        QCOMPARE(chart().done, QStringList());
    }

    void startFailureAndEndAreTold_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("told");
        QTest::newRow("until it is stopped") << QByteArray("function OnDeinit() { throw 'bye' }")
                                             << u"Probe loaded;started;OnDeinit: bye;ended"_s;
        QTest::newRow("stopped once more by its last words")
            << QByteArray("function OnDeinit() { Trade.closeAll(); Print('not heard') }")
            << u"Probe loaded;started;closeAll;ended"_s;
        QTest::newRow("OnTick throws")
            << QByteArray("function OnTick() { throw 5 } function OnDeinit() { Print('deinit') }")
            << u"Probe loaded;started;OnTick: 5;Stopped after error in OnTick: OnTick: 5;print deinit;ended"_s;
        QTest::newRow("OnInit throws") << QByteArray("function OnInit() { throw 5 }") << u"OnInit: 5;ended"_s;
        QTest::newRow("OnInit stops it")
            << QByteArray("function OnInit() { Trade.closeAll() }") << u"closeAll;ended"_s;
        QTest::newRow("the file throws") << QByteArray("throw 5") << u"failed: Error at line 1: 5;ended"_s;
    }
    void startFailureAndEndAreTold()
    {
        QFETCH(QByteArray, script);
        QFETCH(QString, told);
        QStringList& heard = chart().done;
        ExpertHost::Callbacks calls = chart().callbacks();
        calls.closeAll = [this, &heard] {
            heard.append(u"closeAll"_s);
            chart().engine->stop();
        };
        chart().create(calls);
        ExpertEngine* const engine = chart().engine.get();
        connect(engine, &ExpertEngine::message, this, [&heard](const QString& text) { heard.append(text); });
        connect(engine, &ExpertEngine::started, this, [&heard] { heard.append(u"started"_s); });
        connect(engine, &ExpertEngine::failed, this,
            [&heard](const QString& reason) { heard.append(u"failed: "_s + reason); });
        connect(engine, &ExpertEngine::ended, this, [&heard] { heard.append(u"ended"_s); });
        engine->load(chart().file(script));
        engine->tick();
        engine->stop();
        engine->stop();
        QCOMPARE(heard.join(u';'), told);
    }

    void theEngineMayBeDeletedByWhoHearsOfItsEnd()
    {
        for (const char* script : {"", "throw 5", "function OnInit() { throw 5 }"}) {
            chart().create();
            ExpertEngine* const engine = chart().engine.get();
            connect(engine, &ExpertEngine::ended, this, [this] { chart().engine.reset(); });
            if (engine->load(chart().file(script)))
                engine->stop();
            QVERIFY(!chart().engine);
        }
    }

    void deletingWithoutStoppingRunsNoScript()
    {
        QVERIFY(chart().load("function OnDeinit() { Print('deinit') }"));
        chart().engine.reset();
        QCOMPARE(chart().done, QStringList());
    }

    void promisesActAfterTheHookAndNotAfterTheEnd()
    {
        QVERIFY(chart().load(
            "function OnTick() { Promise.resolve().then(function() { Print('later'); Trade.buy(1) });"
            " Print('now') }"));
        chart().engine->tick();
        QTRY_COMPARE(chart().done.join(u';'), u"print now;print later;order BUY 1 0 0"_s);
        chart().done.clear();
        chart().engine->tick();
        chart().engine->stop();
        letPromisesAct();
        QCOMPARE(chart().done, QStringList(u"print now"_s));
    }

    void whatAFailedExpertHasPutOffDoesNotHappen_data()
    {
        QTest::addColumn<QByteArray>("failure");
        QTest::newRow("file") << QByteArray("throw 5");
        QTest::newRow("OnInit") << QByteArray("function OnInit() { throw 5 }");
        QTest::newRow("syntax of an inner text") << QByteArray("eval('}')");
    }
    void whatAFailedExpertHasPutOffDoesNotHappen()
    {
        QFETCH(QByteArray, failure);
        QVERIFY(!chart().load("Promise.resolve().then(function() { Print('later'); Trade.buy(1) });"
                              "EventSetTimer(1); Print('now');"
            + failure));
        QVERIFY(!chart().timer->isActive());
        letPromisesAct();
        QCOMPARE(chart().done, QStringList(u"print now"_s));
    }

    void aPromiseMayEndTheExpert()
    {
        ExpertHost::Callbacks calls = chart().callbacks();
        calls.closeAll = [this] { chart().engine.reset(); };
        chart().create(calls);
        QVERIFY(chart().engine->load(chart().file("function OnTick() { Promise.resolve().then(function() { "
                                                  "Trade.closeAll(); Print('after'); Close(0) }) }")));
        chart().engine->tick();
        QTRY_VERIFY(!chart().engine);
        QCoreApplication::processEvents();
        QCOMPARE(chart().done, QStringList());
    }

    void withoutThePreludeAScriptStillRuns()
    {
        Q_CLEANUP_RESOURCE(scripts);
        const bool running = chart().load("__host.print(typeof Print)");
        Q_INIT_RESOURCE(scripts);
        QVERIFY2(running, qPrintable(chart().error));
        QCOMPARE(chart().done, QStringList(u"print undefined"_s));
    }

    void aBrokenPreludeIsNamed()
    {
        Q_CLEANUP_RESOURCE(scripts);
        const bool replaced = QResource::registerResource(u"" BROKEN_PRELUDE ""_s);
        const bool running = chart().load("__host.print('not reached')");
        QResource::unregisterResource(u"" BROKEN_PRELUDE ""_s);
        Q_INIT_RESOURCE(scripts);
        QVERIFY(replaced);
        QVERIFY(!running);
        QCOMPARE(chart().error, u"Runtime prelude error: RangeError: out of order"_s);
        QCOMPARE(chart().done, QStringList());
        QCOMPARE(chart().messages, QStringList());
        QVERIFY(!chart().engine->isRunning());
    }

    void anEngineLoadsOnce()
    {
        QVERIFY(chart().load(""));
        QString error;
        QVERIFY(!chart().engine->load(chart().file(""), &error));
        QCOMPARE(error, u"An expert can be loaded only once"_s);
        QVERIFY(chart().engine->isRunning());
        chart().engine->stop();
        QVERIFY(!chart().engine->load(chart().file("Print('again')"), &error));
        QVERIFY(!chart().engine->isRunning());
        QCOMPARE(chart().done, QStringList());
    }
};

TAVORAN_TEST(tst_ExpertEngine)
#include "tst_ExpertEngine.moc"
