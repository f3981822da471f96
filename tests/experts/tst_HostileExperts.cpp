#include "experts/ExpertFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

/// Scripts that are out for harm, or just badly wrong: each has an outcome, and none does anything to the
/// terminal. After each, an ordinary script must work as if nothing had been.
class tst_HostileExperts final : public QObject {
    Q_OBJECT

    std::unique_ptr<ExpertFixture> m_fixture;

    ExpertFixture& chart() { return *m_fixture; }

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<ExpertFixture>();
        chart().setCloses({1.0, 2.0});
    }

    void cleanup()
    {
        ExpertFixture other;
        other.setCloses({1.0, 2.0});
        QVERIFY(other.load("function OnTick() { Print(Close(0), [1, [2]].join()); Trade.buy(1) }"));
        other.engine->tick();
        QCOMPARE(other.done.join(u';'), u"print 2 1,2;order BUY 1 0 0"_s);
    }

    /// What a script can reach through __host is the listed methods and nothing else.
    void whatAScriptCanReachThroughTheHostIsTheListedMethodsAndNothingElse()
    {
        QCOMPARE(chart().printed("Print(Object.keys(__host).sort().join(' '))"),
            u"alert ask balance bars bid buy close closeAll comment digits equity high killTimer low ma open "
            "point positionsCount print rsi sell setTimer symbol"_s);
        // Its name is for messages about it.
        QCOMPARE(
            chart().printed("Print(Reflect.ownKeys(__host).length - Object.keys(__host).length, __host)"),
            u"1 __host"_s);
        QCOMPARE(
            chart().printed("Print(Object.getPrototypeOf(__host), Object.isFrozen(__host))"), u"null true"_s);
        QCOMPARE(chart().printed("for (var k in __host) if (typeof __host[k] !== 'function') Print(k)"),
            QString());
    }

    void theHostCannotBeDeletedOrTurnedInsideOut_data()
    {
        QTest::addColumn<QByteArray>("attempt");
        for (const char* attempt : {"__host.destroy()", "__host.deleteLater()", "__host.parent()",
                 "__host.objectName.length", "__host.timerRequested(1)", "__host.timerKilled()",
                 "__host.destroyed()", "__host.objectNameChanged('x')",
                 "__host.timerRequested.connect(Print)", "__host.toString.destroy()", "__host.findChild('x')",
                 "__host.constructor.name", "__host.__proto__.x", "__host.close.destroy()",
                 "__host.close.object.x", "new __host.close(0)", "__host.holdActions(false)",
                 "__host.disconnectChart()", "__host.setDigits(1)"})
            QTest::newRow(attempt) << QByteArray(attempt);
    }
    void theHostCannotBeDeletedOrTurnedInsideOut()
    {
        QFETCH(QByteArray, attempt);
        const QString outcome = chart().printed("\n" + attempt);
        QVERIFY2(outcome.startsWith("!TypeError at line 2"_L1), qPrintable(outcome));
        QCOMPARE(chart().printed("try { " + attempt + " } catch (e) {} Print(Close(0), __host.close(1))"),
            u"2 1"_s);
    }

    void theHostsMethodsCannotBeReplaced()
    {
        QVERIFY(chart().printed("'use strict'; __host.buy = null").startsWith("!TypeError"_L1));
        QVERIFY(chart().printed("'use strict'; delete __host.buy").startsWith("!TypeError"_L1));
        QVERIFY(chart()
                    .printed("Object.defineProperty(__host, 'objectName', {value: 'x'})")
                    .startsWith("!TypeError"_L1));
        QVERIFY(chart().printed("Object.setPrototypeOf(__host, {a: 1}); ").startsWith("!TypeError"_L1));
    }

    void overwritingAnythingHurtsOnlyTheScriptItself_data()
    {
        QTest::addColumn<QByteArray>("vandalism");
        QTest::addColumn<QByteArray>("harm"); // what the script then finds
        const auto row = [](const char* vandalism, const char* harm) {
            QTest::newRow(vandalism) << QByteArray(vandalism) << QByteArray(harm);
        };
        row("__host = null", "__host === null");
        row("var __host = {}", "keys(__host).length === 0");
        row("delete this.__host", "typeof __host === 'undefined'");
        row("String = Number = Object = Array = Function = Error = Reflect = null",
            "String === null && Object === null && Error === null && Reflect === null");
        row("Object.defineProperty = Object.freeze = Object.create = null",
            "Object.defineProperty === null && Object.create === null");
        row("Array.prototype.join = Array.prototype.push = null", "[].join === null && [].push === null");
        row("Reflect.apply = null", "Reflect.apply === null");
        row("Function.prototype.call = Function.prototype.apply = Function.prototype.bind = null",
            "print.call === null && print.apply === null && print.bind === null");
        row("Function.prototype.toString = function() { throw 1 }", "fails(function() { '' + print })");
        row("Object.prototype.toString = function() { throw 1 }", "fails(function() { '' + {} })");
        row("String.prototype.toString = String.prototype.valueOf = function() { throw 1 }",
            "fails(function() { 'a'.toString() })");
        row("Error.prototype.toString = null; Error.prototype.message = 7; Error.prototype.name = 8",
            "Failure.prototype.message === 7 && Failure.prototype.toString === null");
        row("Object.defineProperty(Array.prototype, '0', {set() { throw 1 }, get() { throw 2 }})",
            "fails(function() { [][0] })");
        row("Object.defineProperty(Object.prototype, 'get', {value: function() { throw 1 }})",
            "typeof ({}).get === 'function'");
        row("Object.defineProperty(Object.prototype, '__host', {get: function() { throw 1 }})",
            "fails(function() { ({}).__host })");
        row("Object.prototype.sl = Object.prototype.tp = 0", "({}).sl === 0 && ({}).tp === 0");
        row("Symbol = undefined", "Symbol === undefined");
        row("Math = JSON = null", "Math === null && JSON === null");
        row("Object.freeze(this)", "Object.isFrozen(world)");
        row("Positions.count = Account = Close = Bars = null",
            "Positions.count === null && Account === null && Close === null && Bars === null");
        row("Object.setPrototypeOf(this, null)", "Object.getPrototypeOf(world) === null");
        row("undefined = 5; NaN = 6", "undefined !== 5"); // the language refuses this one
        row("this.constructor = null", "world.constructor === null");
        row("console.log = null; console = null", "console === null");
        row("Digits = Point = function() { return 7 }; _sl = _tp = null",
            "Digits() === 7 && Point() === 7 && _sl === null");
        row("name = digitsNow = pointNow = digits = point = symbol = 7",
            "name === 7 && digitsNow === 7 && pointNow === 7 && digits === 7");
    }
    void overwritingAnythingHurtsOnlyTheScriptItself()
    {
        QFETCH(QByteArray, vandalism);
        QFETCH(QByteArray, harm);
        // The harm is done, and still the rest of the interface and the engine go on.
        const QByteArray script = "var print = Print, buy = Trade.buy, sell = Trade.sell, Failure = Error, "
                                  "keys = Reflect.ownKeys, world = this;"
                                  "function fails(f) { try { f(); return false } catch (e) { return true } }"
                                  "function OnTick() { print('tick', Bid, "
            + harm
            + "); buy(1, {slPoints: 10, tpPoints: 10}); sell(1, {slPoints: 10, tpPoints: 10}) }"
              "function OnDeinit() { throw new Failure('last') }"
              "try { "
            + vandalism + " } catch (ignored) {}";
        QVERIFY2(chart().load(script), qPrintable(chart().error));
        chart().engine->tick();
        QCOMPARE(chart().done.join(u';'),
            u"print tick 1.1 true;order BUY 1 1.0999 1.1003;order SELL 1 1.1003 1.0999"_s);
        chart().done.clear();
        chart().engine->setDigits(3);
        chart().engine->tick();
        QCOMPARE(chart().done.join(u';'),
            u"print tick 1.1 true;order BUY 1 1.09 1.1102;order SELL 1 1.1102 1.09"_s);
        chart().messages.clear();
        chart().engine->stop();
        QCOMPARE(chart().messages.size(), 1);
        QVERIFY2(
            chart().messages.first().startsWith("OnDeinit: last"_L1), qPrintable(chart().messages.first()));
    }

    void argumentsThatThrowDoNothing_data()
    {
        QTest::addColumn<QByteArray>("call");
        for (const char* call :
            {"__host.buy(bad, 0, 0)", "__host.sell(1, bad, 0)", "Trade.buy(bad)", "Trade.buy(1, {sl: bad})",
                "Trade.buy(1, {get sl() { throw new Error('bad') }})", "Trade.sell(1, {tpPoints: bad})",
                "Print(bad)", "Comment('a', bad)", "Close(bad)", "EventSetTimer(bad)", "iMA(1, bad, 0)"})
            QTest::newRow(call) << QByteArray(call);
    }
    void argumentsThatThrowDoNothing()
    {
        QFETCH(QByteArray, call);
        QVERIFY(
            chart().load("var bad = {valueOf: function() { throw new Error('bad') }, toString: function() {"
                         " throw new Error('bad') }};\nfunction OnTick() {\n "
                + call + " }"));
        chart().messages.clear();
        chart().engine->tick();
        QCOMPARE(chart().done, QStringList());
        QCOMPARE(chart().messages.size(), 2);
        QVERIFY2(chart().messages.first().startsWith("OnTick: bad (line "_L1),
            qPrintable(chart().messages.first()));
    }

    void aTextThatCannotBeMadeIsTheReasonWhyNot()
    {
        QCOMPARE(chart().printed("__host.print({toString: function() { throw 'no' }})"), u"no"_s);
    }

    void errorsOnTheHostReadAsSentences_data()
    {
        QTest::addColumn<QByteArray>("mistake");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* mistake, const char* text) {
            QTest::newRow(mistake) << QByteArray(mistake) << QString::fromLatin1(text);
        };
        row("__host.buy(1)", "Error at line 2: Too few arguments for a method of the terminal");
        row("__host.close()", "Error at line 2: Too few arguments for a method of the terminal");
        row("__host.sel(1)", "TypeError at line 2: Property 'sel' of object __host is not a function");
        row("__host.destroy()", "TypeError at line 2: Property 'destroy' of object __host is not a function");
        row("__host()", "TypeError at line 2: __host is not a function");
        row("Trade()", "TypeError at line 2: Trade is not a function");
        const char* refused
            = "TypeError at line 2: A value or an object does not allow what was tried with it";
        for (const char* mistake :
            {"(function() { 'use strict'; __host.buy = 1 })()", "(function() { 'use strict'; Bid = 1 })()",
                "(function() { 'use strict'; delete __host.buy })()",
                "(function() { 'use strict'; Account.balance = 1 })()",
                "Object.defineProperty(__host, 'x', {value: 1})", "__host.close(Symbol.iterator)",
                "for (var x of __host) Print(x)", "new Trade()", "Print(Object.create(null))"})
            row(mistake, refused);
    }
    void errorsOnTheHostReadAsSentences()
    {
        QFETCH(QByteArray, mistake);
        QFETCH(QString, text);
        QCOMPARE(chart().printed("\n" + mistake), u'!' + text);
    }

    void aHookThatCannotBeReadIsReportedAsItsError_data()
    {
        QTest::addColumn<QByteArray>("hook");
        for (const char* hook : {"OnInit", "OnTick", "OnDeinit", "OnTimer"})
            QTest::newRow(hook) << QByteArray(hook);
    }
    void aHookThatCannotBeReadIsReportedAsItsError()
    {
        QFETCH(QByteArray, hook);
        QVERIFY(!chart().load("OnInit = OnDeinit = function() { Print('ran') };\n"
                              "Object.defineProperty(this, '"
            + hook + "', {get: function() {\n throw new Error('locked') }});"));
        const QString text = QString::fromLatin1(hook) + u": locked (line 3)"_s;
        QCOMPARE(chart().error, text);
        QCOMPARE(chart().messages, QStringList(text));
        // It never ran.
        QCOMPARE(chart().done, QStringList());
        chart().engine->tick();
        chart().engine->stop();
        QCOMPARE(chart().messages.size(), 1);
    }

    void aHookThatThrowsNoErrorWhenReadIsReportedWithoutALine()
    {
        QVERIFY(!chart().load("Object.defineProperty(this, 'OnTick', {get: function() { throw 'shut' }});"));
        QCOMPARE(chart().messages, QStringList(u"OnTick: shut"_s));
    }

    void argumentsThatAreNoNumbersFindNoBar()
    {
        QCOMPARE(chart().printed("Print(__host.close(NaN), __host.close({}), __host.close('12abc'),"
                                 " __host.close(4294967297), __host.ma('x', 0, 0), __host.close(undefined))"),
            u"0 0 0 0 0 0"_s);
    }

    void deepRecursionEndsTheExpert_data()
    {
        QTest::addColumn<QByteArray>("recursion");
        QTest::newRow("function") << QByteArray("(function f() { f() })()");
        QTest::newRow("getter") << QByteArray("({get x() { return this.x }}).x");
        QTest::newRow("to text") << QByteArray("var o = {toString: function() { return '' + o }}; '' + o");
        QTest::newRow("nested arrays")
            << QByteArray("var a = []; for (var i = 0; i < 100000; ++i) a = [a]; '' + a");
        QTest::newRow("through Print") << QByteArray("var o = {toString: function() { Print(o) }}; Print(o)");
    }
    void deepRecursionEndsTheExpert()
    {
        QFETCH(QByteArray, recursion);
        QVERIFY(chart().load("function OnTick() {\n" + recursion + " }"));
        chart().messages.clear();
        chart().engine->tick();
        QCOMPARE(chart().messages.size(), 2);
        // Where the language's own functions fill the stack, no line is known; a wrong one is never told.
        const QString text = u"OnTick: Maximum call stack size exceeded."_s;
        const QString first = chart().messages.first();
        QVERIFY2(first == text || first == text + u" (line 2)"_s, qPrintable(first));
        QCOMPARE(chart().messages.last(), u"Stopped after error in OnTick: "_s + first);
    }

    void aFunctionThatCallsItselfIsPutDownToThatLine()
    {
        QVERIFY(chart().load("function OnTick() {\n\n  deeper();\n}\nfunction deeper() {\n  deeper();\n}"));
        chart().messages.clear();
        chart().engine->tick();
        QCOMPARE(chart().messages.first(), u"OnTick: Maximum call stack size exceeded. (line 6)"_s);
    }

    void endlessNestingInTheSourceIsASyntaxError_data()
    {
        QTest::addColumn<QByteArray>("source");
        QTest::newRow("brackets") << QByteArray(100000, '[');
        QTest::newRow("closed brackets") << QByteArray(QByteArray(100000, '[') + QByteArray(100000, ']'));
        QTest::newRow("parentheses") << QByteArray(QByteArray(100000, '(') + "1" + QByteArray(100000, ')'));
        QTest::newRow("sum") << QByteArray("1" + QByteArray("+1").repeated(100000));
        QTest::newRow("zero bytes") << QByteArray(1000, '\0');
        QTest::newRow("noise") << QByteArray("\xFF\xFE\x01\x80 }{)(");
    }
    void endlessNestingInTheSourceIsASyntaxError()
    {
        QFETCH(QByteArray, source);
        QVERIFY(!chart().load(source));
        QVERIFY2(chart().error.startsWith("SyntaxError"_L1), qPrintable(chart().error.left(200)));
    }

    void hugeTextsAndArraysAreCutOrRefused()
    {
        QVERIFY(chart().load("Print('x'.repeat(5000000)); Comment('y'.repeat(5000000))"));
        QCOMPARE(chart().done.size(), 2);
        QVERIFY(chart().done[0].size() < 5000);
        QVERIFY(chart().done[1].size() < 5000);
        QVERIFY(chart().printed("\nnew Array(1e10)").startsWith("!RangeError at line 2"_L1));
        QVERIFY(chart().printed("\nnew ArrayBuffer(1e12)").startsWith("!RangeError at line 2"_L1));
        QVERIFY(chart().printed("\nthrow 'z'.repeat(5000000)").size() < 1100);
    }

    void anArrayWithinItselfBecomesAText()
    {
        QCOMPARE(chart().printed("var a = [1]; a.push(a); Print(a, JSON.stringify([1]))"), u"1, [1]"_s);
        QVERIFY(chart()
                    .printed("\nvar a = []; a[0] = a; JSON.stringify(a)")
                    .startsWith("!TypeError at line 2"_L1));
    }

    void aMarkedUpTextStaysAText()
    {
        QCOMPARE(chart().printed("Print('<b>%1 %L2</b>\\u0000')"), u"<b>%1 %L2</b>"_s + QChar(0));
    }

    void thereIsNoWayOut_data()
    {
        QTest::addColumn<QByteArray>("name");
        for (const char* name :
            {"Qt", "XMLHttpRequest", "fetch", "require", "process", "setTimeout", "setInterval", "load", "gc",
                "quit", "exit", "WebSocket", "document", "window", "globalThis", "Worker"})
            QTest::newRow(name) << QByteArray(name);
    }
    void thereIsNoWayOut()
    {
        QFETCH(QByteArray, name);
        QCOMPARE(chart().printed("Print(typeof " + name + ")"), u"undefined"_s);
    }

    void importsAreSyntaxErrors()
    {
        QVERIFY(chart().printed("import x from 'file:///etc/passwd'").startsWith("!SyntaxError"_L1));
        QVERIFY(chart().printed("import('file:///etc/passwd')").startsWith("!SyntaxError"_L1));
    }

    void theCallersAreOutOfReach()
    {
        QVERIFY(chart().load(
            "function probe(f) { try { return String(f()) } catch (e) { return e.name } }"
            "function OnTick() { var args = arguments; Print(probe(function() { return OnTick.caller }),"
            " probe(function() { return args.callee.caller }),"
            " probe(function() { return OnTick.arguments })) }"));
        chart().engine->tick();
        QCOMPARE(chart().done, QStringList(u"print TypeError TypeError TypeError"_s));
    }

    void everyConsoleMethodIsHarmless()
    {
        QCOMPARE(chart().printed(
                     "console.log('%s %n'); console.trace(); console.profile('a'); console.profileEnd('a');"
                     "console.exception('b'); console.time('c'); console.timeEnd('c'); console.count('d');"
                     "console.assert(false, 'e'); console.error({}); Print('done')"),
            u"done"_s);
    }

    void aFloodOfOrdersIsJustManyOrders()
    {
        QVERIFY(chart().load("function OnTick() { for (var i = 0; i < 10000; ++i) Trade.buy(1) }"));
        chart().engine->tick();
        QCOMPARE(chart().done.size(), 10000);
    }

    void rejectedPromisesAreQuiet()
    {
        QVERIFY(chart().load(
            "Promise.reject(new Error('x')); function OnTick() { new Promise(function() { throw 5 }) }"));
        chart().engine->tick();
        QCoreApplication::processEvents();
        QVERIFY(chart().engine->isRunning());
        QCOMPARE(chart().messages, QStringList(u"Probe loaded"_s));
    }

    void memoryOfTheHostSurvivesTheCollector()
    {
        QVERIFY(chart().load(
            "function OnTick() { for (var i = 0; i < 100000; ++i) ({a: [i]}); Print(Close(0)) }"));
        for (int i = 0; i < 5; ++i)
            chart().engine->tick();
        QCOMPARE(chart().done.size(), 5);
    }
};

TAVORAN_TEST(tst_HostileExperts)
#include "tst_HostileExperts.moc"
