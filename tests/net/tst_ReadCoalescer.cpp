#include "net/ApiFixture.h"
#include "net/ReadCoalescer.h"
#include "support/TestMain.h"

#include <QAbstractEventDispatcher>
#include <QJsonArray>
#include <QNetworkAccessManager>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class TestReadCoalescer final : public fixtures::ApiTest {
    Q_OBJECT

    ReplyCallback note(const QString& name)
    {
        return [this, name](const QJsonDocument& document, const QString& error) {
            m_calls.append(
                name + u':' + (error.isEmpty() ? QString::number(document.array().at(0).toInt()) : error));
        };
    }

    /// Timers that are to fire once and have not yet.
    static qsizetype singleShots()
    {
        const QObjectList all = QAbstractEventDispatcher::instance()->children();
        return std::count_if(all.cbegin(), all.cend(), [](const QObject* object) {
            return qstrcmp(object->metaObject()->className(), "QSingleShotTimer") == 0;
        });
    }

    QStringList m_calls;

private Q_SLOTS:
    void init()
    {
        serve();
        m_calls.clear();
        m_server->on("GET", "/x", StubAnswer::held());
        m_server->on("GET", "/y", StubAnswer::held());
    }

    void cleanup() { end(); }

    void the_same_read_in_flight_is_not_sent_twice_and_fresh_data_follows()
    {
        ReadCoalescer reads(*m_api);
        reads.refresh(u"/x"_s, note(u"a"_s));
        QTRY_COMPARE(m_server->heldCount(), 1);
        reads.refresh(u"/x"_s, note(u"b"_s));
        m_server->release(StubAnswer::json("[1]"));
        QTRY_COMPARE(m_calls, QStringList({u"a:1"_s}));
        QTRY_COMPARE(m_server->heldCount(), 1);
        QCOMPARE(m_server->count("GET", "/x"), 2);
        m_server->release(StubAnswer::json("[2]"));
        QTRY_COMPARE(m_calls, QStringList({u"a:1"_s, u"b:2"_s}));
        QCOMPARE(m_server->count("GET", "/x"), 2);
    }

    void of_those_waiting_only_the_last_one_is_called()
    {
        ReadCoalescer reads(*m_api);
        for (const QChar name : u"abcd"_s)
            reads.refresh(u"/x"_s, note(QString(name)));
        QTRY_VERIFY(m_server->heldCount() > 0);
        m_server->release(StubAnswer::json("[1]"));
        QTRY_VERIFY(m_server->heldCount() > 0);
        m_server->release(StubAnswer::json("[2]"));
        QTRY_COMPARE(m_calls, QStringList({u"a:1"_s, u"d:2"_s}));
        QCOMPARE(m_server->count("GET", "/x"), 2);
    }

    void reads_of_different_paths_do_not_wait_for_each_other()
    {
        ReadCoalescer reads(*m_api);
        reads.refresh(u"/x"_s, note(u"x"_s));
        reads.refresh(u"/y"_s, note(u"y"_s));
        QTRY_COMPARE(m_server->heldCount(), 2);
        m_server->release(StubAnswer::json("[1]"), "/y");
        QTRY_COMPARE(m_calls, QStringList({u"y:1"_s}));
    }

    void a_failed_read_lets_the_next_one_through()
    {
        ReadCoalescer reads(*m_api);
        reads.refresh(u"/x"_s, note(u"a"_s));
        reads.refresh(u"/x"_s, note(u"b"_s));
        QTRY_VERIFY(m_server->heldCount() > 0);
        m_server->release(StubAnswer::message(u"down"_s, 503));
        QTRY_VERIFY(m_server->heldCount() > 0);
        m_server->release(StubAnswer::json("[2]"));
        QTRY_COMPARE(m_calls, QStringList({u"a:down"_s, u"b:2"_s}));
    }

    void a_newer_wish_ends_a_read_that_brings_nothing()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(0ms);
        m_server->once("GET", "/x", StubAnswer::dripping("[1]"));
        reads.refresh(u"/x"_s, note(u"a"_s));
        QTRY_COMPARE(m_server->count("GET", "/x"), 1);
        reads.refresh(u"/x"_s, note(u"b"_s));
        QTRY_COMPARE(m_server->heldCount(), 1);
        QCOMPARE(m_calls, QStringList());
        m_server->release(StubAnswer::json("[2]"));
        QTRY_COMPARE(m_calls, QStringList({u"b:2"_s}));
        QCOMPARE(m_server->count("GET", "/x"), 2);
    }

    void a_wish_made_while_a_silent_read_ends_is_the_one_that_follows()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(0ms);
        reads.refresh(u"/x"_s, note(u"a"_s));
        QTRY_COMPARE(m_server->heldCount(), 1);
        int ended = 0;
        for (const QNetworkAccessManager* manager : m_api->findChildren<QNetworkAccessManager*>()) {
            connect(manager, &QNetworkAccessManager::finished, &reads, [&] {
                if (++ended == 1)
                    reads.refresh(u"/x"_s, note(u"newest"_s));
            });
        }
        m_server->on("GET", "/x", StubAnswer::json("[2]"));
        reads.refresh(u"/x"_s, note(u"older"_s));
        QCOMPARE(ended, 1);
        QTRY_COMPARE(m_calls, QStringList({u"newest:2"_s}));
        QCOMPARE(m_server->count("GET", "/x"), 2);
    }

    void a_read_that_ends_while_another_one_is_ended_is_followed_once()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(0ms);
        for (const QString& path : {u"/x"_s, u"/y"_s})
            reads.refresh(path, note(path + u" first"_s));
        QTRY_COMPARE(m_server->heldCount(), 2);
        int ended = 0;
        for (const QNetworkAccessManager* manager : m_api->findChildren<QNetworkAccessManager*>()) {
            connect(manager, &QNetworkAccessManager::finished, &reads, [&] {
                if (++ended == 1)
                    reads.refresh(u"/y"_s, note(u"/y"_s));
            });
        }
        m_server->on("GET", "/x", StubAnswer::json("[1]"));
        m_server->on("GET", "/y", StubAnswer::json("[2]"));
        reads.refresh(u"/x"_s, note(u"/x"_s));
        QTRY_COMPARE(m_calls.size(), 2);
        QVERIFY(m_calls.contains(u"/x:1"_s));
        QVERIFY(m_calls.contains(u"/y:2"_s));
        QTRY_COMPARE(ended, 2); // those that were answered have come on new connections
        QCOMPARE(m_server->count("GET", "/x"), 2);
        QCOMPARE(m_server->count("GET", "/y"), 2);
    }

    void ended_reads_make_room_for_others()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(0ms);
        const auto refreshAll = [&](const StubAnswer& answer) {
            for (int i = 0; i < 8; ++i) {
                m_server->on("GET", "/" + QByteArray::number(i), answer);
                reads.refresh(u"/%1"_s.arg(i), note(u"read"_s));
            }
        };
        refreshAll(StubAnswer::dripping("[1]"));
        QTRY_COMPARE(m_server->requests().size(), 6);
        refreshAll(StubAnswer::json("[2]"));
        QTRY_COMPARE(m_calls.size(), 8);
        QCOMPARE(m_calls.count(u"read:2"_s), 8);
    }

    void a_wish_that_came_early_ends_the_read_once_it_is_silent()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(100ms);
        reads.refresh(u"/x"_s, note(u"a"_s));
        reads.refresh(u"/x"_s, note(u"b"_s));
        reads.refresh(u"/x"_s, note(u"c"_s));
        QTRY_COMPARE(m_server->count("GET", "/x"), 2);
        QTRY_COMPARE(m_server->heldCount(), 1);
        m_server->release(StubAnswer::json("[2]"));
        QTRY_COMPARE(m_calls, QStringList({u"c:2"_s}));
    }

    void answered_reads_leave_no_timers_behind()
    {
        ReadCoalescer reads(*m_api);
        m_server->on("GET", "/x", StubAnswer::json("[1]"));
        const qsizetype before = singleShots();
        for (qsizetype answers = 2; answers <= 20; answers += 2) {
            reads.refresh(u"/x"_s, note(u"a"_s));
            reads.refresh(u"/x"_s, note(u"b"_s));
            QTRY_COMPARE(m_calls.size(), answers);
        }
        QCOMPARE(singleShots(), before);
        QVERIFY(reads.findChildren<QTimer*>().size() <= 1);
    }

    void of_several_silent_reads_each_ends_in_its_time()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(50ms);
        for (const QString& path : {u"/x"_s, u"/y"_s}) {
            reads.refresh(path, note(path + u" first"_s));
            QTRY_COMPARE(m_server->count("GET", path.toLatin1()), 1);
            reads.refresh(path, note(path));
        }
        QTRY_COMPARE(m_server->count("GET", "/x"), 2);
        QTRY_COMPARE(m_server->count("GET", "/y"), 2);
        m_server->release(StubAnswer::json("[1]"), "/x");
        m_server->release(StubAnswer::json("[2]"), "/y");
        QTRY_COMPARE(m_calls.size(), 2);
        QVERIFY(m_calls.contains(u"/x:1"_s));
        QVERIFY(m_calls.contains(u"/y:2"_s));
    }

    void a_silent_read_without_a_newer_wish_goes_on()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(0ms);
        reads.refresh(u"/x"_s, note(u"a"_s));
        QTRY_COMPARE(m_server->heldCount(), 1);
        reads.refresh(u"/y"_s, note(u"y"_s));
        QTRY_COMPARE(m_server->heldCount(), 2);
        m_server->release(StubAnswer::json("[1]"), "/y");
        QTRY_COMPARE(m_calls, QStringList({u"y:1"_s}));
        m_server->release(StubAnswer::json("[2]"), "/x");
        QTRY_COMPARE(m_calls, QStringList({u"y:1"_s, u"a:2"_s}));
    }

    void each_successor_of_an_ended_read_gets_twice_the_time()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(20ms);
        connect(&*m_server, &StubHttpServer::requestReceived, &reads,
            [&] { reads.refresh(u"/x"_s, note(u"again"_s)); });
        QElapsedTimer clock;
        clock.start();
        reads.refresh(u"/x"_s, note(u"first"_s));
        QTRY_COMPARE(m_server->count("GET", "/x"), 5);
        QVERIFY2(clock.elapsed() >= 20 + 40 + 80 + 160, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(m_calls, QStringList());
    }

    void an_answer_that_drips_wins_its_successors_no_time()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(20ms);
        m_server->on("GET", "/x", StubAnswer::dripping("[1]"));
        connect(&*m_server, &StubHttpServer::requestReceived, &reads,
            [&] { reads.refresh(u"/x"_s, note(u"again"_s)); });
        reads.refresh(u"/x"_s, note(u"first"_s));
        // With twice the time for each it would be minutes.
        QTRY_VERIFY(m_server->count("GET", "/x") >= 14);
        QCOMPARE(m_calls, QStringList());
    }

    void an_answer_that_begins_late_has_the_usual_time_from_then_on()
    {
        ReadCoalescer reads(*m_api);
        m_server->once("GET", "/x", StubAnswer::dripping("[1]"));
        reads.setPatience(1h); // as after many that brought nothing
        reads.refresh(u"/x"_s, note(u"a"_s));
        reads.setPatience(20ms);
        reads.refresh(u"/x"_s, note(u"b"_s));
        QTRY_COMPARE(m_server->heldCount(), 1);
        m_server->release(StubAnswer::json("[2]"));
        QTRY_COMPARE(m_calls, QStringList({u"b:2"_s}));
    }

    void a_refresh_from_inside_the_callback_waits_its_turn()
    {
        ReadCoalescer reads(*m_api);
        reads.refresh(
            u"/x"_s, [&](const QJsonDocument&, const QString&) { reads.refresh(u"/x"_s, note(u"b"_s)); });
        QTRY_VERIFY(m_server->heldCount() > 0);
        m_server->release(StubAnswer::json("[1]"));
        QTRY_VERIFY(m_server->heldCount() > 0);
        m_server->release(StubAnswer::json("[2]"));
        QTRY_COMPARE(m_calls, QStringList({u"b:2"_s}));
        QCOMPARE(m_server->count("GET", "/x"), 2);
    }

    void a_refresh_from_inside_the_callback_of_a_silent_read_is_answered()
    {
        ReadCoalescer reads(*m_api);
        reads.setPatience(0ms);
        m_server->once("GET", "/x", StubAnswer::message(u"down"_s, 503));
        reads.refresh(
            u"/x"_s, [&](const QJsonDocument&, const QString&) { reads.refresh(u"/x"_s, note(u"b"_s)); });
        QTRY_COMPARE(m_server->heldCount(), 1);
        m_server->release(StubAnswer::json("[2]"));
        QTRY_COMPARE(m_calls, QStringList({u"b:2"_s}));
    }

    void callbacks_die_with_the_coalescer()
    {
        auto reads = std::make_unique<ReadCoalescer>(*m_api);
        reads->refresh(u"/x"_s, note(u"a"_s));
        reads->refresh(u"/x"_s, note(u"b"_s));
        QTRY_COMPARE(m_server->heldCount(), 1);
        reads.reset();
        m_server->release(StubAnswer::message(u"no"_s, 401));
        QSignalSpy unauthorized(&*m_api, &ApiClient::unauthorized);
        QVERIFY(unauthorized.wait());
        QCOMPARE(m_calls, QStringList());
    }

    void the_coalescer_may_be_deleted_inside_a_callback()
    {
        auto* reads = new ReadCoalescer(*m_api);
        bool called = false;
        reads->refresh(u"/x"_s, [&](const QJsonDocument&, const QString&) {
            delete reads;
            called = true;
        });
        reads->refresh(u"/x"_s, note(u"b"_s));
        QTRY_VERIFY(m_server->heldCount() > 0);
        m_server->release(StubAnswer::json("[1]"));
        QTRY_VERIFY(called);
        QCOMPARE(m_calls, QStringList());
    }
};

TAVORAN_TEST(TestReadCoalescer)
#include "tst_ReadCoalescer.moc"
