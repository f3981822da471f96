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
    constexpr int longer = 500; // than the limit with a sanitizer, too
    Heartbeat heart([] {});
    QTRY_VERIFY(heart.longestHold() != std::chrono::nanoseconds{});
    heart.restart();
    QTimer::singleShot(0, &heart, [] { QThread::msleep(longer); });
    QTRY_VERIFY(heart.longestGap() >= longer - 2 * Heartbeat::period.count());
    QVERIFY2(!heart.answersInTime(), qPrintable(heart.told()));
    QVERIFY2(heart.longestWork() < Heartbeat::answerLimit, qPrintable(heart.told()));
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
