#include "experts/ExpertFixture.h"
#include "support/TestMain.h"

#include <QApplication>

#include <QProcess>

#include <cstdio>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

/// Attaches the script, gives it two ticks and detaches it; prints what was said and "alive".
int runScript(const QString& path)
{
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    ExpertFixture chart;
    chart.setCloses({1.0, 2.0});
    if (!chart.loadFile(path))
        chart.messages.append(chart.error);
    chart.engine->tick();
    QCoreApplication::processEvents();
    chart.engine->tick();
    chart.engine->stop();
    chart.engine.reset();
    // And the next expert knows nothing of it.
    ExpertFixture next;
    if (!next.load("Print([1, [2]].join())") || next.done != QStringList(u"print 1,2"_s))
        return 3;
    const QByteArray said = (chart.done + chart.messages).join(u'\n').toUtf8();
    std::printf("%s\nalive\n", said.constData());
    return 0;
}

} // namespace

/// Scripts that ran off the end of the stack, or into a fault of the engine, and took the terminal along.
/// Each runs in a process of its own, so that a crash is the failure of that case and no more.
class tst_DeadlyScripts final : public QObject {
    Q_OBJECT

    /// What the process said; "crashed", with how, when it did not end well.
    static QString outcomeOf(const QString& path)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::SeparateChannels);
        process.start(QCoreApplication::applicationFilePath(), {u"--script"_s, path});
        if (!process.waitForFinished(100000)) {
            process.kill();
            process.waitForFinished();
            return u"never ended"_s;
        }
        const QString said = QString::fromUtf8(process.readAllStandardOutput());
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
            return u"crashed (%1) %2"_s.arg(QString::number(process.exitCode()),
                QString::fromUtf8(process.readAllStandardError()).left(500));
        return said;
    }

private Q_SLOTS:
    void aDeadlyScriptLeavesTheTerminalAlive_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("said"); // somewhere in what comes out; empty: no matter what
        const auto row = [](const char* name, const QByteArray& script, const QString& said = QString()) {
            QTest::newRow(name) << script << said;
        };
        const QString tooMany = u"RangeError at line 1: "_s;
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
        const QString full = u"Maximum call stack size exceeded"_s;
#else
        // Later engines may run out of room for the arguments first.
        const QString full = u"RangeError at line "_s;
#endif
        const QByteArray nest = "var a = []; for (var i = 0; i < 300000; ++i) a = [a];\n";

        row("console.log of nested lists", nest + "console.log(a); Print('on')", u"on"_s);
        row("every other console method",
            nest
                + "['debug', 'info', 'warn', 'error', 'exception'].forEach(function(m) { console[m](a) });"
                  "console.assert(false, a); print(a); Print('on')",
            u"on"_s);
        row("console.log of a list without end",
            "var a = []; a.length = 4294967295; console.log(a); Print('on')", u"on"_s);
        row("console.log of lists that double",
            "var a = []; for (var i = 0; i < 60; ++i) a = [a, a]; console.log(a); Print('on')", u"on"_s);
        row("console.log within toString",
            "var o = {toString: function() { console.log([o]); return '' }}; console.log(o); Print('on')",
            u"on"_s);
        const QByteArray chain = "var e = new Error('x'); for (var i = 0; i < 300000; ++i) {"
                                 " var f = new Error('y'); f.message = e; f.cause = e; e = f }\n";
        row("an error whose message is an error", chain + "'' + e", full);
        row("console.log of such an error", chain + "console.log(e); Print('on')", u"on"_s);
        row("throwing such an error", chain + "function OnTick() { throw e }", u"OnTick: "_s);
        row("an error that is its own name", "var e = new Error('x'); e.name = e.message = e; '' + e", full);

        row("a list's text that is made of itself",
            "var o = {}; o.join = o.toString = Array.prototype.toString; '' + o", full);
        row("an expression's text that is made of itself",
            "var o = {flags: ''}; Object.defineProperty(o, 'source', {get: RegExp.prototype.toString}); "
            "o.source",
            full);
        row("a date that is its own text",
            "var o = {}; o.toISOString = Date.prototype.toJSON; o.toISOString()", full);
        row("a promise that catches itself", "var o = {}; o.then = Promise.prototype.catch; o.then()", full);

        row("endless yield*", "function* g() { yield* g() } g().next()", full);
        row("endless yield* in a loop", "function* g() { yield* g() } for (var x of g()) Print(x)", full);
        row("a long chain of yield*",
            "function* id(x) { yield* x } var g = [1]; for (var i = 0; i < 200000; ++i) g = id(g);\n"
            "for (var x of g) Print(x)",
            full);
        row("a generator that runs itself anew", "function* g() { g().next() } g().next()", full);
        row("a generator that lists itself", "function* g() { [...g()] } [...g()]", full);
        row("endless return of generators",
            "function* g() { try { yield 1 } finally { var h = g(); h.next(); h.return() } }"
            "var h = g(); h.next(); h.return()");

        row("a chain of proxies", "var p = {}; for (var i = 0; i < 300000; ++i) p = new Proxy(p, {}); p.x",
            u"Proxy is not defined"_s);
        row("a proxy above itself", "var o = {}; Object.setPrototypeOf(o, new Proxy(o, {})); 'x' in o",
            u"Proxy is not defined"_s);

        row("a weak map whose keys go",
            "var w = new WeakMap(); for (var i = 0; i < 100000; ++i) w.set({}, {}); Print('on')",
            u"WeakMap is not defined"_s);
        row("a weak set whose members go",
            "var w = new WeakSet(); for (var i = 0; i < 100000; ++i) w.add({}); Print('on')",
            u"WeakSet is not defined"_s);

        const QByteArray deep = "var n = 300000, r = ";
        const QString tooLong = u"SyntaxError at line 1: The regular expression is too long"_s;
        row("a deep expression from a text", deep + "new RegExp('('.repeat(n) + ')'.repeat(n))", tooLong);
        row("a deep expression without new", deep + "RegExp('('.repeat(n) + ')'.repeat(n))", tooLong);
        row("a deep expression by another way", deep + "/a/.constructor('('.repeat(n) + ')'.repeat(n))",
            tooLong);
        row("a deep expression to match", deep + "'a'.match('('.repeat(n) + ')'.repeat(n))", tooLong);
        row("a deep expression to search", deep + "'a'.search('('.repeat(n) + ')'.repeat(n))", tooLong);
        row("a deep expression to split",
            deep
                + "/a/[Symbol.split].call({source: '', flags: '', constructor: undefined,"
                  " toString: function() { return '('.repeat(n) + ')'.repeat(n) }}, 'a')",
            u"TypeError at line 1"_s);
        row("a deep expression in a class",
            "class E extends RegExp {}; new E('('.repeat(300000) + ')'.repeat(300000))", tooLong);
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
        // Later engines are at them for longer than anybody would wait.
        row("a deep expression in the file",
            "var r = /" + QByteArray(300000, '(') + QByteArray(300000, ')') + "/; Print(r.test('a'))",
            u"true"_s);
        row("the deepest expression that is read, in the file",
            "var r = /" + QByteArray(524288, '(') + QByteArray(524288, ')') + "/; Print(r.test('a'))",
            u"true"_s);
#endif
        row("repeated groups in one another",
            "new RegExp('(?:'.repeat(600) + '){0,3}'.repeat(600)).test('aaab')", tooLong);
        row("many parts in a repeated group", "new RegExp('(?:' + 'a?'.repeat(2000) + 'b){0,3}').test('aab')",
            tooLong);

        row("call called on itself", "var f = Function.prototype.call; f.call(f)", u"TypeError at line 1"_s);
        row("apply applied to itself", "var f = Function.prototype.apply; Reflect.apply(f, f, [])",
            u"TypeError at line 1"_s);
        for (const QByteArray name : {"resolve", "reject", "all", "race"})
            row(QByteArray("Promise." + name + " on a mere object").constData(),
                "Promise." + name + ".call({}, [1])", u"is no constructor"_s);
        row("asking arguments for one of them",
            "function f() { Print(arguments.hasOwnProperty(0), arguments.propertyIsEnumerable(1),"
            " arguments.hasOwnProperty(2)) } f(1, 2)",
            u"true true false"_s);
        row("a million arguments from a list", "Math.max(...new Array(1000000))", tooMany);
        row("a million arguments from a text", "Math.max(...'x'.repeat(1000000))", tooMany);
        row("many arguments again and again", "var a = new Array(300000); function f() { f(...a) } f()",
            tooMany);
        row("a constructor's million arguments", "new Array(...new Array(1000000))", tooMany);
        row("a long chain of functions",
            "var l = null; for (var i = 0; i < 2000000; ++i) l = (function(p) { return function() { return p "
            "}"
            " })(l); Print('on')",
            u"on"_s);
        row("a text of gigabytes", "'x'.repeat(2147483647)", u"RangeError at line 1: The text would"_s);
        row("padding of gigabytes", "'x'.padStart(2147483647)", u"RangeError at line 1: The text would"_s);

        // What the engine has always coped with, and is to cope with on.
        row("nested objects", "var o = {}; for (var i = 0; i < 300000; ++i) o = {o: o}; JSON.stringify(o)",
            full);
        row("nested JSON", "JSON.parse('['.repeat(300000) + ']'.repeat(300000))", u"SyntaxError"_s);
        row("nested lists as a text", nest + "'' + a", full);
        row("nested lists to the host", nest + "__host.print(a); __host.close(a); Print('on')");
        row("a class above a class",
            "var C = class {}; for (var i = 0; i < 3000; ++i) C = class extends C {}; new C()");
        row("bound over and over",
            "var f = function() {}; for (var i = 0; i < 300000; ++i) f = f.bind(null); f()");
        row("a comparison that sorts", "function f() { [2, 1].sort(f) } f()", full);
        row("a getter that reads itself", "({get x() { return this.x }}).x", full);
        row("a value of itself", "var o = {valueOf: function() { return +o }}; +o", full);
        row("nested parentheses in eval", "eval('('.repeat(100000) + '1' + ')'.repeat(100000))",
            u"SyntaxError"_s);
        row("nested templates in Function", "Function('`${'.repeat(100000) + '1' + '}`'.repeat(100000))",
            u"SyntaxError"_s);
        row("eval in eval", "function g() { eval('g()') } g()", full);
        row("maps in maps",
            "var m = new Map(); for (var i = 0; i < 300000; ++i) m = new Map([[1, m]]);"
            " console.log(m); Print(m)",
            u"[object Map]"_s);
        row("a million arguments to apply", "Math.max.apply(null, new Array(1000000))", tooMany);
        row("a list of four billion", "new Array(4294967295).unshift(1)");
        row("odd dates", "Print(new Date(1e300), new Date(-8.64e15), new Date(NaN) + '', Date.UTC(1e300))");
    }
    void aDeadlyScriptLeavesTheTerminalAlive()
    {
        QFETCH(QByteArray, script);
        QFETCH(QString, said);
        ExpertFixture files;
        const QString outcome = outcomeOf(files.file(script));
        QVERIFY2(outcome.endsWith("alive\n"_L1), qPrintable(outcome.right(600)));
        QVERIFY2(outcome.contains(said), qPrintable(outcome.left(600)));
    }

    void whatIsGuardedWorksAsBefore_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("printed");
        const auto row = [](const char* script, const char* printed) {
            QTest::newRow(script) << QByteArray(script) << QString::fromUtf8(printed);
        };
        row("Print(/a(b)?/.exec('ab')[1], 'abc'.match(/b/).index, 'abc'.search('c'), 'a1b'.split(/\\d/))",
            "b 1 2 a,b");
        row("Print('abc'.match('b')[0], 'abc'.match(), ''.match(null), 'a.c'.search('[.]'))", "b  null 1");
        row("var r = new RegExp('A', 'gi'); Print(r, RegExp(r) === r, new RegExp(r) === r, r instanceof "
            "RegExp,"
            " r.constructor === RegExp, new RegExp().test(''), RegExp.prototype === "
            "Object.getPrototypeOf(r))",
            "/A/gi true false true true true true");
        row("class E extends RegExp {}; var e = new E('b'); Print(e.test('abc'), e instanceof E, "
            "'abc'.replace("
            "e, 'x'))",
            "true true axc");
        row("try { new RegExp('(') } catch (e) { Print(e.name) }", "SyntaxError");
        row("Print(new RegExp('(a|b)*'.repeat(3)).test('ab'), new RegExp('a'.repeat(5000)).test('a'.repeat("
            "5000)))",
            "true true");
        row("function f(a, b) { 'use strict'; return [this, a, b].join() }"
            "Print(f.call(1, 2, 3), f.apply(4, [5, 6]), f.apply(7), f.call(), Math.max.apply(null, [1, 9]))",
            "1,2,3 4,5,6 7,, ,, 9");
        row("Print([...'abc'].join(), [...new Set([1, 1, 2])].join(), Math.max(...[3, 4]), Array.from(new "
            "Map("
            "[[1, 2]])).join('/'))",
            "a,b,c 1,2 4 1,2");
        row("function* g() { var x = yield 1; try { yield x } finally { Print('end') } }"
            "var i = g(); Print(i.next().value, i.next(7).value, i.return(5).value, i.next().done)",
            "end\n1 7 5 true");
        row("function* g() { try { yield 1 } catch (e) { Print(e); yield* [2, 3] } }"
            "var i = g(); i.next(); Print(i.throw('x').value, i.next().value)",
            "x\n2 3");
        row("Print('ab'.repeat(3), 'x'.padStart(3, 'ab'), 'x'.padEnd(3) + '|', new Error('e') + '')",
            "ababab abx x  | Error: e");
        row("Print(Function.prototype.call.name, [].join.name, RegExp.name, 'a'.match.name)",
            "call join RegExp match");
        row("var o = Object.create({a: 1}, {b: {value: 1}}); Print(o.hasOwnProperty('a'), "
            "o.hasOwnProperty('b'),"
            " o.propertyIsEnumerable('b'), [1].propertyIsEnumerable(0), 'ab'.hasOwnProperty('length'))",
            "false true false true true");
        row("var p = Promise.resolve(1); Print(p instanceof Promise, Promise.all([p]) instanceof Promise)",
            "true true");
    }
    void whatIsGuardedWorksAsBefore()
    {
        QFETCH(QByteArray, script);
        QFETCH(QString, printed);
        ExpertFixture chart;
        QCOMPARE(chart.printed(script), printed);
    }

    void theConsoleWritesAsBefore_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QByteArray>("line");
        const auto row = [](const char* script, const char* line) {
            QTest::newRow(script) << QByteArray(script) << QByteArray(line);
        };
        row("console.log(1, 'two', [3, [4, null]], {}, undefined)",
            "1 two [3,[4,null]] [object Object] undefined");
        row("var a = [1]; a.push(a); console.warn(a, a)", "[1,[Circular]] [1,[Circular]]");
        row("console.log({toString: function() { throw 'no' }})", "no");
        row("console.log()", "");
        row("print([1, [2]])", "[1,[2]]");
    }
    void theConsoleWritesAsBefore()
    {
        QFETCH(QByteArray, script);
        QFETCH(QByteArray, line);
        QTest::ignoreMessage(script.contains("warn") ? QtWarningMsg : QtDebugMsg, line.constData());
        ExpertFixture chart;
        QVERIFY2(chart.load(script), qPrintable(chart.error));
    }
};

int main(int argc, char** argv)
{
    usePrivateFolders();
    QApplication application(argc, argv);
    if (argc == 3 && application.arguments().at(1) == "--script"_L1)
        return runScript(application.arguments().at(2));
    tst_DeadlyScripts test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_DeadlyScripts.moc"
