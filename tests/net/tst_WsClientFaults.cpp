#include "net/FeedFixture.h"
#include "net/SocketError.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

/// The feed client against servers that refuse, stall or lie.
class TestWsClientFaults final : public fixtures::FeedTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { serve(); }

    void cleanup() { end(); }

    void the_delays_are_1_2_4_8_16_and_then_30_seconds()
    {
        m_feed->shutDown();
        m_client->start();
        QTRY_VERIFY(m_retries.size() >= 8);
        QCOMPARE(m_retries.first(8), QList<int>({1, 2, 4, 8, 16, 30, 30, 30}));
        QStringList expected;
        for (const int seconds : m_retries)
            expected.append(u"Feed disconnected — retrying in %1s"_s.arg(seconds));
        QCOMPARE(m_log.filter(u"retrying"_s), expected);
    }

    void a_second_of_delay_lasts_a_second()
    {
        m_feed->shutDown();
        WsClient client{TerminalSettings::instance()};
        QTimer* const timer = client.findChild<QTimer*>(u"retryTimer"_s);
        QVERIFY(timer);
        client.start();
        for (const int milliseconds : {1000, 2000, 4000, 8000, 16000, 30000, 30000}) {
            QTRY_VERIFY(timer->isActive());
            QCOMPARE(timer->interval(), milliseconds);
            timer->start(0);
            QTRY_VERIFY(timer->interval() != 0);
        }
    }

    void a_success_starts_the_delays_anew()
    {
        m_feed->setMode(StubFeedServer::Mode::RefuseAndClose);
        m_client->start();
        QTRY_VERIFY(m_retries.size() >= 3);
        m_feed->setMode(StubFeedServer::Mode::Serve);
        QTRY_COMPARE(m_feed->clientCount(), 1);
        QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
        m_retries.clear();
        m_feed->setMode(StubFeedServer::Mode::RefuseAndClose);
        m_feed->cut();
        QTRY_VERIFY(m_retries.size() >= 2);
        QCOMPARE(m_retries.first(2), QList<int>({1, 2}));
    }

    void starting_again_starts_the_delays_anew()
    {
        m_feed->shutDown();
        m_client->start();
        QTRY_VERIFY(m_retries.size() >= 3);
        m_retries.clear();
        m_client->start();
        QTRY_VERIFY(m_retries.size() >= 2);
        QCOMPARE(m_retries.first(2), QList<int>({1, 2}));
    }

    void an_attempt_has_ten_seconds()
    {
        const QTimer* const timer = m_client->findChild<QTimer*>(u"attemptTimer"_s);
        QVERIFY(timer);
        QCOMPARE(timer->interval(), 10000);
        m_feed->setMode(StubFeedServer::Mode::Silent);
        m_client->start();
        QVERIFY(timer->isActive());
        m_feed->setMode(StubFeedServer::Mode::Serve);
        m_client->start();
        QTRY_COMPARE(m_feed->clientCount(), 1);
        QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
        QVERIFY(!timer->isActive());
    }

    void every_broken_handshake_ends_in_one_retry_and_recovery_data()
    {
        using Mode = StubFeedServer::Mode;
        QTest::addColumn<Mode>("mode");
        QTest::newRow("401 and closed") << Mode::RefuseAndClose;
        QTest::newRow("401 kept open") << Mode::RefuseAndKeepOpen;
        QTest::newRow("302 kept open") << Mode::RedirectAndKeepOpen;
        QTest::newRow("garbage kept open") << Mode::GarbageAndKeepOpen;
        QTest::newRow("silent") << Mode::Silent;
        QTest::newRow("half a header") << Mode::HalfHeader;
        QTest::newRow("closed at once") << Mode::CloseAtOnce;
    }
    void every_broken_handshake_ends_in_one_retry_and_recovery()
    {
        QFETCH(const StubFeedServer::Mode, mode);
        m_feed->setMode(mode);
        m_client->setAttemptTimeout(100);
        m_client->start();
        QTRY_VERIFY(m_retries.size() >= 3);
        QCOMPARE(m_retries.first(3), QList<int>({1, 2, 4}));
        m_client->setAttemptTimeout(10000);
        m_feed->setMode(StubFeedServer::Mode::Serve);
        m_feed->cut();
        QTRY_COMPARE(m_feed->clientCount(), 1);
        QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
        QCOMPARE(m_feed->attempts(), m_retries.size() + 1);
        QCOMPARE(m_log.filter(u"Connecting"_s).size(), m_retries.size() + 1);
    }

    void a_silent_peer_of_an_encrypted_feed_is_retried_too()
    {
        m_feed->setMode(StubFeedServer::Mode::Silent);
        TerminalSettings::instance().setServerUrl(m_feed->url().replace(u"http:"_s, u"https:"_s));
        m_client->setAttemptTimeout(100);
        m_client->start();
        QTRY_VERIFY(m_retries.size() >= 3);
        QCOMPARE(m_retries.first(3), QList<int>({1, 2, 4}));
        QVERIFY(m_feed->attempts() >= 3);
    }

    void an_invalid_address_is_retried_too()
    {
        TerminalSettings::instance().setServerUrl(u"http://[not-an-address"_s);
        m_client->setAttemptTimeout(10);
        m_client->start();
        QTRY_VERIFY(m_retries.size() >= 2);
        TerminalSettings::instance().setServerUrl(m_feed->url());
        m_client->setAttemptTimeout(1000);
        QTRY_COMPARE(m_feed->clientCount(), 1);
    }

    void a_retry_never_starts_inside_the_disconnect()
    {
        m_client->setRetrySecond(0);
        m_feed->shutDown();
        bool nested = false;
        int depth = 0;
        connect(&*m_client, &WsClient::logMessage, this, [&](const QString&, const QString& message) {
            if (message.startsWith(u"Connecting"_s) && depth > 0)
                nested = true;
        });
        connect(&*m_client, &WsClient::disconnected, this, [&] {
            ++depth;
            QMetaObject::invokeMethod(
                this, [&] { --depth; }, Qt::QueuedConnection);
        });
        m_client->start();
        QTRY_VERIFY(m_retries.size() >= 20);
        QVERIFY(!nested);
    }

    void an_attempt_replaced_by_another_asks_for_no_retry()
    {
        m_feed->setMode(StubFeedServer::Mode::Silent);
        m_client->start();
        QTRY_COMPARE(m_feed->targets().size(), 1);
        m_feed->setMode(StubFeedServer::Mode::Serve);
        m_client->start();
        QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
        QCOMPARE(m_retries, QList<int>());
        QCOMPARE(m_feed->attempts(), 2);
    }

    void starting_on_a_disconnect_makes_one_attempt_not_two()
    {
        m_feed->setMode(StubFeedServer::Mode::CloseAtOnce);
        bool restarted = false;
        connect(&*m_client, &WsClient::disconnected, this, [&] {
            if (std::exchange(restarted, true))
                return;
            m_feed->setMode(StubFeedServer::Mode::Serve);
            m_client->start();
            QVERIFY(!m_client->findChild<QTimer*>(u"retryTimer"_s)->isActive());
        });
        m_client->start();
        QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
        m_feed->send("x");
        const QSignalSpy traffic(&*m_client, &WsClient::trafficChanged);
        QTRY_VERIFY(!traffic.isEmpty());
        QCOMPARE(m_feed->attempts(), 2);
        QCOMPARE(m_log.filter(u"Connecting"_s).size(), 2);
    }

    void an_error_is_told_once_an_attempt_and_before_the_retry()
    {
        const QString address = m_feed->url().replace(u"http:"_s, u"ws:"_s);
        m_feed->shutDown();
        QStringList expected;
        for (const int seconds : {1, 2, 4}) {
            expected.append({u"Connecting to %1/ws/terminal..."_s.arg(address),
                u"Feed error: Connection refused"_s, u"Feed disconnected — retrying in %1s"_s.arg(seconds)});
        }
        m_client->start();
        QTRY_VERIFY(m_log.size() > expected.size());
        QCOMPARE(m_log.first(expected.size()), expected);
    }

    void an_error_reported_twice_is_told_once()
    {
        m_feed->setMode(StubFeedServer::Mode::Silent);
        m_client->start();
        auto* const socket = m_client->findChild<QWebSocket*>();
        QVERIFY(socket);
        for (int time = 0; time < 2; ++time)
            Q_EMIT(socket->*socketError)(QAbstractSocket::RemoteHostClosedError);
        QCOMPARE(m_log.filter(u"Feed error: "_s).size(), 1);
        QCOMPARE(m_retries, QList<int>());
    }

    void a_given_up_attempt_leaves_no_connection_behind()
    {
        m_client->setRetrySecond(60000);
        m_client->setAttemptTimeout(100);
        m_feed->setMode(StubFeedServer::Mode::Silent);
        m_client->start();
        QTRY_COMPARE(m_feed->halfOpenCount(), 1);
        QTRY_COMPARE(m_retries, QList<int>({1}));
        QTRY_COMPARE(m_feed->halfOpenCount(), 0);
    }

    void errors_never_carry_token_or_query()
    {
        using Mode = StubFeedServer::Mode;
        m_client->setAttemptTimeout(30);
        // Whether Qt repeats the server's own words, which hold the token here, depends on its version.
        const auto* const socket = m_client->findChild<QWebSocket*>();
        bool tempted = false;
        connect(socket, socketError, this,
            [&] { tempted = tempted || socket->errorString().contains("token"_L1); });
        m_client->start();
        for (const Mode mode : {Mode::RefuseAndClose, Mode::RefuseAndKeepOpen, Mode::RedirectAndKeepOpen,
                 Mode::GarbageAndKeepOpen, Mode::CloseAtOnce, Mode::TokenInReason}) {
            m_feed->setMode(mode);
            m_feed->cut();
            const qsizetype before = m_retries.size();
            QTRY_VERIFY(m_retries.size() >= before + 2);
        }
        TerminalSettings::instance().setServerUrl(u"http://[not-an-address"_s);
        const qsizetype before = m_retries.size();
        QTRY_VERIFY(m_retries.size() >= before + 2);
        QVERIFY(m_log.filter(u"Feed error: "_s).size() >= 4);
        QCOMPARE(m_log.join(u'\n').contains(u"[hidden]"_s), tempted);
        QCOMPARE(m_log.filter(u"token"_s), QStringList());
    }

    void a_message_above_32_megabytes_closes_the_connection()
    {
        const QSignalSpy traffic(&*m_client, &WsClient::trafficChanged);
        m_client->start();
        QTRY_COMPARE(m_feed->clientCount(), 1);
        m_feed->send(QByteArray(qsizetype{33} * 1024 * 1024, ' '));
        QTRY_COMPARE_WITH_TIMEOUT(m_retries, QList<int>({1}), 30000);
        QCOMPARE(traffic.size(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_feed->attempts(), 2, 30000);
        QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
    }

    void it_may_be_deleted_in_any_state_data()
    {
        every_broken_handshake_ends_in_one_retry_and_recovery_data();
    }
    void it_may_be_deleted_in_any_state()
    {
        QFETCH(const StubFeedServer::Mode, mode);
        m_feed->setMode(mode);
        m_client->start();
        QTRY_COMPARE(m_feed->attempts(), 1);
        const qsizetype entries = m_log.size();
        m_client.reset();
        QCoreApplication::processEvents();
        QCOMPARE(m_log.size(), entries);
    }
};

TAVORAN_TEST(TestWsClientFaults)
#include "tst_WsClientFaults.moc"
