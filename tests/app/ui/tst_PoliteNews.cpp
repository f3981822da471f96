#include "app/ui/PoliteNews.h"
#include "support/ReaderEars.h"
#include "support/TestMain.h"
#include "support/Timers.h"

class TestPoliteNews final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothing_is_worked_out_while_no_reader_is_there()
    {
        int calls = 0;
        PoliteNews news([&] { return ++calls > 0; });
        news.note();
        QVERIFY(!news.pause().isActive());
        QCoreApplication::processEvents();
        QCOMPARE(calls, 0);
    }

    void what_one_turn_changes_is_told_together_and_then_a_second_passes()
    {
        const ReaderEars reader;
        int calls = 0;
        PoliteNews news([&] { return ++calls > 0; });
        news.note();
        news.note();
        QCOMPARE(calls, 0);
        QTRY_COMPARE(calls, 1);
        QVERIFY(news.pause().isActive());
        QCOMPARE(news.pause().interval(), 1000);
        news.note();
        QCOMPARE(calls, 1);
        QCOMPARE(news.pause().interval(), 1000);
        timeOut(news.pause());
        QCOMPARE(calls, 2);
        QVERIFY(news.pause().isActive());
        timeOut(news.pause());
        QCOMPARE(calls, 2);
        QVERIFY(!news.pause().isActive());
    }

    void what_is_the_same_as_before_needs_no_pause()
    {
        const ReaderEars reader;
        int calls = 0;
        PoliteNews news([&] { return ++calls < 0; });
        news.note();
        QTRY_COMPARE(calls, 1);
        QVERIFY(!news.pause().isActive());
    }

    void a_reader_that_has_left_is_told_nothing_more()
    {
        int calls = 0;
        PoliteNews news([&] { return ++calls > 0; });
        {
            const ReaderEars reader;
            news.note();
        }
        timeOut(news.pause());
        QCOMPARE(calls, 0);
        QVERIFY(!news.pause().isActive());
    }
};

TAVORAN_TEST(TestPoliteNews)
#include "tst_PoliteNews.moc"
