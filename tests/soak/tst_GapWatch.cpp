#include "support/GapWatch.h"
#include "support/TestMain.h"

#include <QEventLoop>
#include <QTimer>
#include <QtTest>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

constexpr int longMs = 30;

double threadMs()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// Takes so much time of the processor, whatever else the machine does.
void work(int ms)
{
    const double end = threadMs() + ms;
    while (threadMs() < end) { }
}

void turnOnce()
{
    QEventLoop loop;
    QTimer::singleShot(10, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

class tst_GapWatch final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void work_in_one_go_is_a_gap_of_what_was_done()
    {
        GapWatch watch(1);
        turnOnce();
        watch.setDoing(u"much"_s);
        work(longMs);
        turnOnce();
        watch.setDoing(u"little"_s);
        turnOnce();
        const GapWatch::Gaps gaps = watch.take();
        QVERIFY(gaps.longestMs >= longMs - 1);
        QVERIFY(gaps.longestRunMs >= longMs);
        QCOMPARE(gaps.during, u"much"_s);
        QVERIFY(watch.byDoing().value(u"much"_s) >= longMs);
    }

    void what_was_taken_is_not_told_again_but_counts_in_the_whole()
    {
        GapWatch watch(1);
        work(longMs);
        turnOnce();
        QVERIFY(watch.take().longestRunMs >= longMs);
        QVERIFY(watch.take().longestRunMs < longMs);
        QVERIFY(watch.all().longestRunMs >= longMs);
        watch.forget();
        QVERIFY(watch.all().longestRunMs < longMs);
    }

    void a_pause_is_not_looked_at()
    {
        GapWatch watch(1);
        turnOnce();
        static_cast<void>(watch.take());
        watch.pause();
        work(longMs);
        watch.resume();
        turnOnce();
        QVERIFY(watch.take().longestRunMs < longMs);
    }

    void one_long_gap_among_few_is_the_worst_hundredth()
    {
        GapWatch watch(1);
        work(longMs);
        turnOnce();
        QVERIFY(watch.all().p99Ms >= longMs - 1);
    }
};

TAVORAN_TEST(tst_GapWatch)

#include "tst_GapWatch.moc"
