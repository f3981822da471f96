#include "faults/Heartbeat.h"
#include "support/TestMain.h"

#include <QThread>
#include <QtTest>

using faults::Heartbeat;

/// What the faults' tests tell of a window that does not answer.
class tst_Heartbeat final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void who_sleeps_does_not_answer_in_time();
    void who_has_little_to_do_answers_in_time();
};

void tst_Heartbeat::who_sleeps_does_not_answer_in_time()
{
    static constexpr std::chrono::milliseconds longer{500}; // than the limit with a sanitizer, too
    Heartbeat heart([] {});
    QTRY_VERIFY(heart.longest().hold != std::chrono::nanoseconds{});
    heart.restart();
    QTimer::singleShot(0, &heart, [] { QThread::msleep(longer.count()); });
    QTRY_VERIFY(heart.longest().gap >= longer - 2 * Heartbeat::period);
    QVERIFY2(!heart.answersInTime(), qPrintable(heart.told()));
    QVERIFY2(heart.longest().work < Heartbeat::answerLimit, qPrintable(heart.told()));
}

void tst_Heartbeat::who_has_little_to_do_answers_in_time()
{
    int beats = 0;
    Heartbeat heart([&] { ++beats; });
    QTRY_VERIFY(beats >= 10);
    QVERIFY2(heart.answersInTime(), qPrintable(heart.told()));
}

TAVORAN_TEST(tst_Heartbeat)
#include "tst_Heartbeat.moc"
