#include "net/FeedBacklog.h"
#include "support/TestMain.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 millisecond = 1'000'000;

QStringList numbers(int count)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts.append(QString::number(i));
    return texts;
}

} // namespace

/// The messages that wait: how many a turn of the event loop reads, and that none is lost.
class TestFeedBacklog final : public QObject {
    Q_OBJECT

    void add(int count)
    {
        for (const QString& text : numbers(count))
            m_backlog->add(text);
    }

    /// Turns the loop until every message has been read; the most that one turn read.
    int mostInATurn(int count)
    {
        qsizetype most = 0;
        while (m_seen.size() < count) {
            const qsizetype before = m_seen.size();
            QCoreApplication::processEvents();
            most = std::max(most, m_seen.size() - before);
        }
        return static_cast<int>(most);
    }

    std::unique_ptr<FeedBacklog> m_backlog;
    QStringList m_seen;
    qint64 m_now = 0;
    qint64 m_costNs = 0; ///< what reading a message takes
    int m_paints = 0;
    QList<qsizetype> m_seenAtPaint;

private Q_SLOTS:
    void init()
    {
        m_backlog = std::make_unique<FeedBacklog>();
        m_backlog->setClock([this] { return m_now; });
        m_seen.clear();
        m_now = 0;
        m_costNs = millisecond;
        m_paints = 0;
        m_seenAtPaint.clear();
        connect(m_backlog.get(), &FeedBacklog::due, this, [this](const QString& text) {
            m_seen.append(text);
            m_now += m_costNs;
        });
    }

    void every_message_is_handed_on_in_the_order_in_which_it_came()
    {
        constexpr int count = 1000;
        add(count);
        QTRY_COMPARE(m_seen.size(), count);
        QCOMPARE(m_seen, numbers(count));
        QVERIFY(m_backlog->isEmpty());
    }

    void a_message_is_read_in_a_later_turn_of_the_loop()
    {
        add(1);
        QVERIFY(m_seen.isEmpty());
        QVERIFY(!m_backlog->isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(m_seen, numbers(1));
    }

    void a_slice_lasts_eight_milliseconds()
    {
        add(100);
        QCOMPARE(mostInATurn(100), 8);
    }

    void a_message_that_takes_long_is_a_slice_of_its_own()
    {
        m_costNs = 50 * millisecond;
        add(10);
        QCOMPARE(mostInATurn(10), 1);
    }

    void whoever_is_waiting_has_a_turn_between_two_slices()
    {
        QTimer timer;
        QList<qsizetype> seenAtTimeout;
        connect(&timer, &QTimer::timeout, this, [&] { seenAtTimeout.append(m_seen.size()); });
        timer.start(0);
        add(64);
        QTRY_COMPARE(m_seen.size(), 64);
        for (qsizetype slice = 1; slice < 8; ++slice)
            QVERIFY2(seenAtTimeout.contains(8 * slice), qPrintable(QString::number(slice)));
    }

    void painting_has_a_turn_without_a_slice()
    {
        // As Qt asks for a repaint: by an event of low priority, in the turn that changed something.
        bool asked = false;
        connect(m_backlog.get(), &FeedBacklog::due, this, [&] {
            if (!std::exchange(asked, true))
                QCoreApplication::postEvent(this, new QEvent(QEvent::User), Qt::LowEventPriority);
        });
        add(100);
        while (m_seen.size() < 100) {
            asked = false;
            const qsizetype before = m_seen.size();
            const int paintsBefore = m_paints;
            QCoreApplication::processEvents();
            QVERIFY2(
                m_paints == paintsBefore || m_seen.size() == before, qPrintable(QString::number(before)));
        }
        for (qsizetype slice = 1; slice < 12; ++slice)
            QVERIFY2(m_seenAtPaint.contains(8 * slice), qPrintable(QString::number(slice)));
    }

    void the_end_of_the_messages_is_told_once()
    {
        const QSignalSpy drained(m_backlog.get(), &FeedBacklog::drained);
        add(20);
        connect(m_backlog.get(), &FeedBacklog::due, this, [&] { QCOMPARE(drained.size(), 0); });
        QTRY_COMPARE(drained.size(), 1);
        QCOMPARE(m_seen.size(), 20);
        QCoreApplication::processEvents();
        QCOMPARE(drained.size(), 1);
    }

    void what_is_forgotten_is_not_handed_on()
    {
        const QSignalSpy drained(m_backlog.get(), &FeedBacklog::drained);
        add(20);
        QCoreApplication::processEvents();
        QCOMPARE(m_seen.size(), 8);
        m_backlog->clear();
        QVERIFY(m_backlog->isEmpty());
        m_backlog->add(u"new"_s);
        QTRY_COMPARE(drained.size(), 1);
        QCOMPARE(m_seen, numbers(8) + QStringList(u"new"_s));
    }

    void what_comes_during_a_slice_is_handed_on_too()
    {
        connect(m_backlog.get(), &FeedBacklog::due, this, [this](const QString& text) {
            if (text == "0"_L1)
                m_backlog->add(u"late"_s);
        });
        add(1);
        QTRY_COMPARE(m_seen, QStringList({u"0"_s, u"late"_s}));
    }

    void where_too_much_waits_that_is_told_and_nothing_is_read_at_once()
    {
        const QSignalSpy filled(m_backlog.get(), &FeedBacklog::filled);
        const QSignalSpy eased(m_backlog.get(), &FeedBacklog::eased);
        m_backlog->setLimit(10 * FeedBacklog::charactersBeside);
        m_costNs = 4 * millisecond; // two of them fill a slice
        for (int i = 0; i < 10; ++i)
            m_backlog->add({});
        QCOMPARE(filled.size(), 0);
        for (int i = 0; i < 3; ++i)
            m_backlog->add({});
        QCOMPARE(filled.size(), 3); // of thirteen
        QVERIFY(m_seen.isEmpty());
        while (m_seen.empty())
            QCoreApplication::processEvents();
        QCOMPARE(m_seen.size(), 2);
        QCOMPARE(eased.size(), 0);
        while (eased.empty())
            QCoreApplication::processEvents();
        QCOMPARE(m_seen.size(), 4);
        QTRY_COMPARE(m_seen.size(), 13);
        QCOMPARE(filled.size(), 3);
        QCOMPARE(eased.size(), 1);
    }

    void whoever_filled_it_hears_of_room_though_more_came_within_a_message()
    {
        const QSignalSpy eased(m_backlog.get(), &FeedBacklog::eased);
        m_backlog->setLimit(2 * FeedBacklog::charactersBeside);
        bool more = true;
        connect(m_backlog.get(), &FeedBacklog::due, this, [&] {
            if (std::exchange(more, false)) {
                m_backlog->clear();
                m_backlog->add({});
            }
        });
        for (int i = 0; i < 3; ++i)
            m_backlog->add({});
        QTRY_VERIFY(m_backlog->isEmpty());
        QCOMPARE(eased.size(), 0); // what was forgotten asks for nothing
        m_costNs = 8 * millisecond;
        more = true;
        disconnect(m_backlog.get(), &FeedBacklog::due, this, nullptr);
        connect(m_backlog.get(), &FeedBacklog::due, this, [&] {
            m_now += m_costNs;
            if (std::exchange(more, false))
                m_backlog->add({});
        });
        for (int i = 0; i < 3; ++i)
            m_backlog->add({});
        QTRY_VERIFY(m_backlog->isEmpty());
        QCOMPARE(eased.size(), 1);
    }

    void where_twice_too_much_waits_the_oldest_are_read_at_once()
    {
        m_backlog->setLimit(3 + 2 * FeedBacklog::charactersBeside);
        const QStringList texts{u"aaaa"_s, u"bb"_s, u"cc"_s, u"d"_s, u"e"_s, u"f"_s};
        for (const QString& text : texts)
            m_backlog->add(text);
        QCOMPARE(m_seen, texts.first(2)); // what is left are four messages of five characters
        QTRY_COMPARE(m_seen, texts);
    }

    void a_message_above_the_limit_waits_like_any_other()
    {
        m_backlog->setLimit(3);
        m_backlog->add(u"longer"_s);
        QVERIFY(m_seen.isEmpty());
        QTRY_COMPARE(m_seen, QStringList(u"longer"_s));
    }

    void fifty_thousand_messages_of_several_prices_each_may_wait()
    {
        const QString message(300, u'x');
        const QSignalSpy filled(m_backlog.get(), &FeedBacklog::filled);
        for (int i = 0; i < 50'000; ++i)
            m_backlog->add(message);
        QCOMPARE(filled.size(), 0);
    }

    void thirty_two_million_characters_may_wait_and_twice_as_many_do_not()
    {
        const QSignalSpy filled(m_backlog.get(), &FeedBacklog::filled);
        const QString megabyte(
            qsizetype{1024} * 1024 - FeedBacklog::charactersBeside, u'x'); // shared, not copied
        for (int i = 0; i < 32; ++i)
            m_backlog->add(megabyte);
        QCOMPARE(filled.size(), 0);
        for (int i = 0; i < 32; ++i)
            m_backlog->add(megabyte);
        QCOMPARE(filled.size(), 32);
        QVERIFY(m_seen.isEmpty());
        m_backlog->add(u"y"_s);
        QCOMPARE(m_seen.size(), 1);
    }

    void messages_without_text_take_room_too()
    {
        m_backlog->setLimit(5 * FeedBacklog::charactersBeside);
        for (int i = 0; i < 10; ++i)
            m_backlog->add({});
        QVERIFY(m_seen.isEmpty());
        m_backlog->add({});
        QCOMPARE(m_seen.size(), 1);
        QTRY_COMPARE(m_seen.size(), 11);
    }

    void an_event_loop_within_a_message_reads_on()
    {
        QStringList begun;
        connect(m_backlog.get(), &FeedBacklog::due, this, [&](const QString& text) {
            begun.append(text);
            if (text == "0"_L1)
                QTRY_COMPARE(begun.size(), 20);
        });
        add(20);
        QTRY_COMPARE(begun.size(), 20);
        QCOMPARE(begun, numbers(20));
    }

    void it_may_be_deleted_by_whoever_hears_of_a_message()
    {
        connect(m_backlog.get(), &FeedBacklog::due, this, [this] { m_backlog.reset(); });
        add(20);
        QTRY_VERIFY(!m_backlog);
        QCoreApplication::processEvents();
        QCOMPARE(m_seen, numbers(1));
    }

protected:
    void customEvent(QEvent* /*event*/) override
    {
        ++m_paints;
        m_seenAtPaint.append(m_seen.size());
    }
};

TAVORAN_TEST(TestFeedBacklog)
#include "tst_FeedBacklog.moc"
