#include "experts/ScriptEngine.h"

#include "support/TestMain.h"

#include <QPointer>

using namespace Qt::StringLiterals;

/// An object with one of everything.
class Exposed final : public QObject {
    Q_OBJECT
    Q_PROPERTY(int secret MEMBER m_secret)

public:
    int m_secret = 5;

    Q_INVOKABLE int three() const { return 3; }
    Q_INVOKABLE double twice(double value) const { return value * 2; }

public Q_SLOTS:
    void aSlot() { m_secret = 6; }

Q_SIGNALS:
    void aSignal();
};

class tst_ScriptEngine final : public QObject {
    Q_OBJECT

    std::unique_ptr<ScriptEngine> m_engine;

    /// "name|message|line" of what the text throws; empty when it does not.
    QString thrownBy(const QString& text, const QString& file = u"a.js"_s)
    {
        const auto error = m_engine->run(text, file);
        return error ? u"%1|%2|%3"_s.arg(error->name, error->message, QString::number(error->line))
                     : QString();
    }

    /// The same of a call of the function `f` that the text defines.
    QString thrownByCall(const QString& text)
    {
        const QString early = thrownBy(text);
        if (!early.isEmpty())
            return u"early "_s + early;
        QJSValue function;
        auto error = m_engine->function(u"f"_s, function);
        if (!error)
            error = m_engine->call(function);
        return error ? u"%1|%2|%3"_s.arg(error->name, error->message, QString::number(error->line))
                     : QString();
    }

private Q_SLOTS:
    void init() { m_engine = std::make_unique<ScriptEngine>(); }

    void aTextThatFailsLeavesTheResultAlone()
    {
        QJSValue result;
        QVERIFY(!m_engine->run(u"3 + 4"_s, u"a.js"_s, &result));
        QCOMPARE(result.toInt(), 7);
        QVERIFY(m_engine->run(u"throw 5"_s, u"a.js"_s, &result));
        QCOMPARE(result.toInt(), 7);
    }

    void whateverIsThrownIsAnError_data()
    {
        QTest::addColumn<QString>("statement");
        QTest::addColumn<QString>("expected");
        QTest::newRow("error") << u"throw new TypeError('no')"_s << u"TypeError|no"_s;
        QTest::newRow("number") << u"throw 5"_s << u"Error|5"_s;
        QTest::newRow("null") << u"throw null"_s << u"Error|null"_s;
        QTest::newRow("undefined") << u"throw undefined"_s << u"Error|undefined"_s;
        QTest::newRow("text") << u"throw 'out'"_s << u"Error|out"_s;
        QTest::newRow("object with a message") << u"throw {message: 'said'}"_s << u"Error|said"_s;
        QTest::newRow("object without") << u"throw {}"_s << u"Error|[object Object]"_s;
        QTest::newRow("array") << u"throw [1, 2]"_s << u"Error|1,2"_s;
        QTest::newRow("array of one error") << u"throw [new Error('in')]"_s << u"Error|Error: in"_s;
    }
    void whateverIsThrownIsAnError()
    {
        QFETCH(QString, statement);
        QFETCH(QString, expected);
        QCOMPARE(thrownBy(u"\n\n"_s + statement), expected + u"|3"_s);
        QVERIFY(thrownByCall(u"function f() {\n"_s + statement + u" }"_s).startsWith(expected + u'|'));
    }

    void whateverIsReturnedIsNone_data()
    {
        QTest::addColumn<QString>("value");
        for (const char* value : {"new Error('not thrown')", "5", "null", "[new Error('x')]", "undefined",
                 "function() {}", "[1]", "Promise.reject(1)"})
            QTest::newRow(value) << QString::fromLatin1(value);
    }
    void whateverIsReturnedIsNone()
    {
        QFETCH(QString, value);
        QCOMPARE(thrownBy(u"var x = %1; x"_s.arg(value)), QString());
        QCOMPARE(thrownByCall(u"function f() { return %1 }"_s.arg(value)), QString());
    }

    void linesAreCountedFromOne()
    {
        QCOMPARE(thrownBy(u"throw new Error('x')"_s), u"Error|x|1"_s);
        QCOMPARE(thrownBy(u"var a;\n\n var = 5"_s).section(u'|', 0, 0), u"SyntaxError"_s);
        QCOMPARE(thrownBy(u"var a;\n\n var = 5"_s).section(u'|', -1), u"3"_s);
        QCOMPARE(
            thrownByCall(u"function f() {\n\n g(); }\nfunction g() {\n no(); }"_s).section(u'|', -1), u"5"_s);
    }

    void anErrorInAnotherFileIsPutDownToTheCallingLine()
    {
        QCOMPARE(thrownBy(u"\n\n\n\n\n\n\nfunction lib(x) { return x.y.z }"_s, u"lib.js"_s), QString());
        QCOMPARE(thrownBy(u"\n\nlib({})"_s).section(u'|', -1), u"3"_s);
        QCOMPARE(thrownBy(u"\n\n\neval('}')"_s).section(u'|', -1), u"4"_s);
    }

    void fileNamesMayBeAnything_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name : {"a b.js", "100%.js", "ÄÖ→💶.js", "a:7.js", "#x?.js", "@.js", ""})
            QTest::newRow(name) << QString::fromUtf8(name);
    }
    void fileNamesMayBeAnything()
    {
        QFETCH(QString, name);
        QCOMPARE(thrownBy(u"\nthrow new Error('x')"_s, name), u"Error|x|2"_s);
    }

    void linesThatAreNoNumberAreTakenFromTheStack_data()
    {
        QTest::addColumn<QString>("line");
        for (const char* line :
            {"'abc'", "-3", "{}", "null", "NaN", "1e99", "{toString: function() { throw 1 }}"})
            QTest::newRow(line) << QString::fromLatin1(line);
    }
    void linesThatAreNoNumberAreTakenFromTheStack()
    {
        QFETCH(QString, line);
        const QString made = u"function f() {\n var e = new Error('m'); e.lineNumber = %1; throw e }"_s;
        QCOMPARE(thrownByCall(made.arg(line)), u"Error|m|2"_s);
    }

    void partsThatThrowWhenReadAreLeftOut()
    {
        QCOMPARE(thrownByCall(u"function f() { throw {get message() { throw 1 }, toString: null} }"_s),
            u"Error||0"_s);
        QCOMPARE(thrownByCall(u"function f() { var e = new Error('m'); Object.defineProperty(e, 'message', "
                              "{get: function() { throw e }}); throw e }"_s)
                     .section(u'|', 0, 1),
            u"Error|"_s);
        QCOMPARE(
            thrownByCall(u"function f() { var o = {}; for (const key of ['name', 'message', 'stack', "
                         "'fileName', 'lineNumber', 'toString', 'valueOf']) Object.defineProperty(o, key, "
                         "{get: function() { throw 2 }}); throw o }"_s),
            u"Error||0"_s);
    }

    void hugeMessagesAreCut()
    {
        const QString thrown = thrownByCall(u"function f() { throw 'x'.repeat(3000000) }"_s);
        QCOMPARE(thrown.section(u'|', 1, 1).size(), ScriptError::longest + 1);
    }

    void whatIsNoFunctionIsNotCallable()
    {
        QCOMPARE(thrownBy(u"var f = 5; var g = {}"_s), QString());
        for (const QString& name : {u"f"_s, u"g"_s, u"absent"_s}) {
            QJSValue function;
            QVERIFY(!m_engine->function(name, function));
            QVERIFY(!function.isCallable());
        }
    }

    void aNameThatThrowsWhenReadIsAnErrorWithItsLine()
    {
        QCOMPARE(thrownByCall(u"Object.defineProperty(this, 'f', {get: function() {\n throw new "
                              "TypeError('no') }})"_s),
            u"TypeError|no|2"_s);
        // The error is told once, and what runs next does not meet it again.
        QCOMPARE(thrownBy(u"1"_s), QString());
    }

    void onlyInvokableMethodsAreExposed()
    {
        Exposed object;
        m_engine->expose(u"thing"_s, object);
        QCOMPARE(
            thrownBy(
                u"if (Reflect.ownKeys(thing).join() !== 'three,twice,toString') throw Reflect.ownKeys(thing)"_s),
            QString());
        QCOMPARE(
            thrownBy(u"if (thing + '' !== 'thing' || Object.keys(thing).length !== 2) throw 1"_s), QString());
        QCOMPARE(thrownBy(u"if (thing.three() !== 3 || thing.twice(2) !== 4) throw 1"_s), QString());
        QCOMPARE(thrownBy(u"if (Object.getPrototypeOf(thing) !== null) throw 1"_s), QString());
    }

    void anExposedObjectStaysItsOwners()
    {
        auto object = std::make_unique<Exposed>();
        const QPointer<Exposed> watched(object.get());
        m_engine->expose(u"thing"_s, *object);
        QCOMPARE(
            thrownBy(
                u"thing = null; var many = []; for (var i = 0; i < 200000; ++i) many.push({}); many = null"_s),
            QString());
        m_engine.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(watched);
        object.reset();
    }

    void arraysWithinThemselvesBecomeTexts()
    {
        QCOMPARE(thrownBy(u"var a = [1]; a.push(a); if ('' + a !== '1,') throw '' + a"_s), QString());
        QCOMPARE(thrownBy(u"var a = [1], b = [a]; a.push(b); if (a.join('-') !== '1-') throw a.join('-')"_s),
            QString());
        QCOMPARE(thrownBy(u"var a = []; a[0] = a; a.toLocaleString()"_s), QString());
        QCOMPARE(thrownBy(u"if ([1, [2, [3]], null].join(';') !== '1;2,3;') throw 1"_s), QString());
    }

    void tooDeeplyNestedArraysAreAnError()
    {
        QVERIFY(thrownBy(u"var a = []; for (var i = 0; i < 100000; ++i) a = [a]; '' + a"_s)
                    .startsWith("RangeError"_L1));
    }
};

TAVORAN_TEST(tst_ScriptEngine)
#include "tst_ScriptEngine.moc"
