#include "experts/ExpertFixture.h"
#include "support/TestMain.h"
#include "support/Timers.h"

using namespace Qt::StringLiterals;

/// When OnTimer is called, and when not. Only one case lets the event loop do so: the others compare the
/// interval, and let the timer time out themselves.
class tst_ExpertTimer final : public QObject {
    Q_OBJECT

    std::unique_ptr<ExpertFixture> m_chart;

private Q_SLOTS:
    void init() { m_chart = std::make_unique<ExpertFixture>(); }

    void theTimerFiresInWholeSecondsAndSurvivesErrors()
    {
        QVERIFY(m_chart->load(
            "var n = 0; function OnInit() { EventSetTimer(1); EventSetTimer(0); EventSetTimer(-4) }\n"
            "function OnTimer() { Print('timer'); if (++n == 2) EventKillTimer(); throw 5 }"));
        m_chart->messages.clear();
        QCOMPARE(m_chart->timer->interval(), 1000);
        timeOut(*m_chart->timer);
        QCOMPARE(m_chart->done.size(), 1);
        timeOut(*m_chart->timer);
        QCOMPARE(m_chart->messages, QStringList({u"OnTimer: 5"_s, u"OnTimer: 5"_s}));
        QVERIFY(m_chart->engine->isRunning());
        QVERIFY(!m_chart->timer->isActive());
        QCOMPARE(m_chart->done.size(), 2);
    }

    void theTimerNeedsNobodyToFire()
    {
        QVERIFY(m_chart->load("EventSetTimer(3); function OnTimer() { Print('timer') }"));
        QCOMPARE(m_chart->timer->interval(), 3000);
        m_chart->timer->setInterval(0); // nobody waits for three seconds
        QTRY_VERIFY(m_chart->done.size() > 1);
    }

    void theTimersSecondsAreMadeAnIntegerOfThirtyTwoBits()
    {
        QVERIFY(m_chart->load(
            "function OnInit() { EventSetTimer(4294967297); EventSetTimer(); EventSetTimer(0.9) }"
            "\nfunction OnTimer() {\n Print('timer'); EventKillTimer(); no() }"));
        m_chart->messages.clear();
        QCOMPARE(m_chart->timer->interval(), 1000);
        timeOut(*m_chart->timer);
        QCOMPARE(m_chart->done.size(), 1);
        QCOMPARE(m_chart->messages, QStringList(u"OnTimer: no is not defined (line 3)"_s));
    }

    void aTimerOfManyDaysDoesNotFireSoon()
    {
        // In milliseconds it is 704 more than an integer of 32 bits has values.
        QVERIFY(m_chart->load("EventSetTimer(4294968); function OnTimer() { Print('timer') }"));
        QVERIFY(m_chart->timer->isActive());
        QCOMPARE(m_chart->timer->interval(), 2'147'483'000);
    }

    void stoppingEndsTheTimerAndOnDeinitCannotStartIt()
    {
        QVERIFY(m_chart->load("function OnInit() { EventSetTimer(1) } function OnTimer() { Print('timer') }"
                              "function OnDeinit() { EventSetTimer(1) }"));
        QVERIFY(m_chart->timer->isActive());
        m_chart->engine->stop();
        QVERIFY(!m_chart->timer->isActive());
    }

    void aTickDuringAHookIsDropped()
    {
        ExpertHost::Callbacks calls = m_chart->callbacks();
        calls.closeAll = [this] {
            m_chart->done.append(m_chart->timer->isActive() ? u"box"_s : u"box without timer"_s);
            m_chart->engine->tick();
            timeOut(*m_chart->timer);
        };
        m_chart->create(calls);
        QVERIFY(m_chart->engine->load(m_chart->file(
            "function OnInit() { EventSetTimer(1) } function OnTimer() { Print('timer') }"
            "function OnTick() { Print('in'); Trade.closeAll(); Print('out'); EventKillTimer() }")));
        m_chart->engine->tick();
        QCOMPARE(m_chart->done.join(u';'), u"print in;box;print out"_s);
        m_chart->engine->tick();
        QCOMPARE(m_chart->done.mid(3).join(u';'), u"print in;box without timer;print out"_s);
    }
};

TAVORAN_TEST(tst_ExpertTimer)
#include "tst_ExpertTimer.moc"
