#include "experts/ExpertFixture.h"
#include "support/TestMain.h"

#include <thread>

using namespace Qt::StringLiterals;

namespace {

/// What a text that runs before the script may call.
class Counter final : public QObject {
    Q_OBJECT

public:
    Q_INVOKABLE int next() { return ++m_count; }

private:
    int m_count = 0;
};

} // namespace

/// Scripts that come as a value, what runs before them, and what ends them from outside.
class tst_ExpertForerun final : public QObject {
    Q_OBJECT

    std::unique_ptr<ExpertFixture> m_chart;
    Counter m_counter;

    bool load(const QString& script, const QString& forerun = {})
    {
        m_chart->create();
        if (!forerun.isEmpty())
            m_chart->engine->setForerun({forerun, u"forerun.js"_s, u"__counter"_s, &m_counter});
        return m_chart->engine->load(ExpertScript{u"Value"_s, u"Value.js"_s, script}, &m_chart->error);
    }

private Q_SLOTS:
    void init() { m_chart = std::make_unique<ExpertFixture>(); }

    void aScriptNeedsNoFile()
    {
        QVERIFY(load(u"function OnInit() { Print('init') } function OnTick() { Print('tick') }"_s));
        QCOMPARE(m_chart->engine->name(), u"Value"_s);
        QCOMPARE(m_chart->messages, QStringList(u"Value loaded"_s));
        m_chart->engine->tick();
        QCOMPARE(m_chart->done.join(u';'), u"print init;print tick"_s);
        QVERIFY(!m_chart->engine->load(ExpertScript{}));
    }

    void itsErrorsHaveTheLinesOfItsText()
    {
        QVERIFY(!load(u"var a;\nvar b = ;\n"_s));
        QVERIFY2(m_chart->error.startsWith(u"SyntaxError at line 2: "_s), qPrintable(m_chart->error));
        QVERIFY(!load(u"function OnInit() {\n no() }"_s, u"\n\n\nthis.x = 1;"_s));
        QCOMPARE(m_chart->error, u"OnInit: no is not defined (line 2)"_s);
    }

    void theForerunnerIsThereBeforeTheScriptAndItsObjectIsGone()
    {
        QVERIFY(load(u"Print(next(), typeof __counter, typeof Print)"_s,
            u"this.next = __counter.next; this.early = typeof Print; delete this.__counter"_s));
        QCOMPARE(m_chart->done.join(u';'), u"print 1 undefined function"_s);
    }

    void aFailingForerunnerLeavesNoExpert()
    {
        QVERIFY(!load(u"Print(1)"_s, u"no()"_s));
        QCOMPARE(m_chart->error, u"Runtime prelude error: ReferenceError: no is not defined"_s);
        QVERIFY(m_chart->done.isEmpty());
    }

    void withoutOneTheScriptSeesTheTerminalsNamesOnly()
    {
        QVERIFY(load(u"Print(typeof __counter)"_s));
        QCOMPARE(m_chart->done.join(u';'), u"print undefined"_s);
    }

    void anInterruptionEndsAnyLoop_data()
    {
        QTest::addColumn<QString>("body");
        QTest::newRow("plain") << u"while (true);"_s;
        QTest::newRow("catches") << u"while (true) { try { while (true); } catch (e) {} finally {} }"_s;
        QTest::newRow("prints") << u"for (;;) Print('x');"_s;
        QTest::newRow("calls") << u"function f() { return 1 } for (;;) f();"_s;
        QTest::newRow("sorts") << u"var a = [1, 2, 3]; for (;;) a.sort(function(x, y) { return x - y });"_s;
    }

    void anInterruptionEndsAnyLoop()
    {
        QFETCH(QString, body);
        QVERIFY(load(u"function OnTick() { "_s + body + u" } function OnDeinit() { Print('end') }"_s));
        std::thread watch([this] {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            m_chart->engine->interrupt();
        });
        m_chart->engine->tick();
        watch.join();
        QVERIFY(!m_chart->engine->isRunning());
        QVERIFY(!m_chart->done.contains(u"print end"_s));
    }
};

TAVORAN_TEST(tst_ExpertForerun)
#include "tst_ExpertForerun.moc"
