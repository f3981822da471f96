#include "net/FeedFixture.h"
#include "support/StubHttpServer.h"
#include "support/TestCertificates.h"
#include "support/TestMain.h"

#include <QDeadlineTimer>
#include <QTcpSocket>

#include <algorithm>
#include <numeric>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype messageSize = qsizetype{16} * 1024;
/// So many may wait, and with what one turn brings on top so many will.
constexpr qsizetype limit = 200;
constexpr qsizetype mostWaiting = limit + limit / 2;

/// An orders_changed with this number, and with a text of this length beside it.
QByteArray message(int number, qsizetype size = 0)
{
    return R"({"type":"orders_changed","n":)" + QByteArray::number(number) + R"(,"x":")"
        + QByteArray(size, 'x') + R"("})";
}

QList<int> numbersBelow(int count)
{
    QList<int> all(count);
    std::iota(all.begin(), all.end(), 0);
    return all;
}

} // namespace

/// A feed that sends faster than the client reads, plain and encrypted.
class TestFeedOverload final : public fixtures::FeedTest {
    Q_OBJECT

    /// A connected client that reads one message a turn.
    void connectFeed()
    {
        QFETCH(const StubHttpServer::Transport, transport);
        m_http.emplace(transport);
        m_feed.emplace(*m_http);
        TerminalSettings::instance().setServerUrl(m_http->url());
        TerminalSettings::instance().setToken(u"token-1234"_s);
        makeClient();
        m_backlog = m_client->findChild<FeedBacklog*>();
        QVERIFY(m_backlog);
        m_backlog->setLimit(limit * (messageSize + FeedBacklog::charactersBeside));
        m_backlog->setClock([now = qint64{0}]() mutable { return now += FeedBacklog::sliceNs; });
        connect(m_client->findChild<QWebSocket*>(), &QWebSocket::textMessageReceived, this, [this] {
            ++m_come;
            m_mostWaiting = std::max(m_mostWaiting, m_come - m_seen.size());
        });
        connect(&*m_client, &WsClient::ordersChanged, this,
            [this](const QJsonObject& event) { m_seen.append(event.value(u"n"_s).toInt()); });
        m_client->start();
        QTRY_COMPARE(m_feed->clientCount(), 1);
        QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
    }

    /// Turns the loop until so many messages have been read; the most that one turn read.
    qsizetype mostInATurn(qsizetype count)
    {
        qsizetype most = 0;
        const QDeadlineTimer deadline(30000);
        while (m_seen.size() < count && !deadline.hasExpired()) {
            const qsizetype before = m_seen.size();
            QCoreApplication::processEvents();
            most = std::max(most, m_seen.size() - before);
        }
        return most;
    }

    static void transports()
    {
        QTest::addColumn<StubHttpServer::Transport>("transport");
        QTest::newRow("plain") << StubHttpServer::Transport::Plain;
        QTest::newRow("encrypted") << StubHttpServer::Transport::Tls;
    }

    std::optional<TrustedTestAuthority> m_trust;
    std::optional<StubHttpServer> m_http;
    FeedBacklog* m_backlog = nullptr;
    QList<int> m_seen;
    qsizetype m_come = 0;
    qsizetype m_mostWaiting = 0;

private Q_SLOTS:
    void init()
    {
        m_trust.emplace();
        m_seen.clear();
        m_come = 0;
        m_mostWaiting = 0;
    }

    void cleanup()
    {
        end();
        m_http.reset();
        m_trust.reset();
    }

    void the_sender_waits_and_no_turn_reads_more_than_its_slice_data() { transports(); }
    void the_sender_waits_and_no_turn_reads_more_than_its_slice()
    {
        connectFeed();
        constexpr int count = 1000;
        for (int i = 0; i < count; ++i)
            m_feed->send(message(i, messageSize));
        QList<qsizetype> seenAtEnd;
        connect(&*m_client, &WsClient::disconnected, this, [&] { seenAtEnd.append(m_seen.size()); });
        m_feed->closeAll();
        const qsizetype most = mostInATurn(count);
        QCOMPARE(m_seen, numbersBelow(count));
        QVERIFY2(most <= 2, qPrintable(QString::number(most)));
        QVERIFY2(m_mostWaiting > limit && m_mostWaiting <= mostWaiting,
            qPrintable(QString::number(m_mostWaiting)));
        QTRY_COMPARE(seenAtEnd, QList<qsizetype>{count});
    }

    void one_turn_brings_no_more_than_a_few_milliseconds_of_reading_data() { transports(); }
    void one_turn_brings_no_more_than_a_few_milliseconds_of_reading()
    {
        connectFeed();
        auto* connection = m_client->findChild<QWebSocket*>()->findChild<QTcpSocket*>();
        QVERIFY(connection);
        // A turn reads whatever the system has kept. Some systems keep as much again for their own records.
        const int kept = connection->socketOption(QAbstractSocket::ReceiveBufferSizeSocketOption).toInt();
        QVERIFY2(kept == SocketIntake::mostAtOnce || kept == 2 * SocketIntake::mostAtOnce,
            qPrintable(QString::number(kept)));
    }

    void a_message_of_many_times_what_may_wait_comes_whole_data() { transports(); }
    void a_message_of_many_times_what_may_wait_comes_whole()
    {
        connectFeed();
        m_backlog->setLimit(messageSize);
        constexpr int count = 300;
        for (int i = 0; i < count; ++i)
            m_feed->send(message(i, i % 100 == 50 ? 256 * messageSize : 100));
        mostInATurn(count);
        QCOMPARE(m_seen, numbersBelow(count));
    }

    void a_rest_that_nothing_ends_is_no_end_of_the_feed_data() { transports(); }
    void a_rest_that_nothing_ends_is_no_end_of_the_feed()
    {
        connectFeed();
        auto* const longest = m_client->findChild<QTimer*>(u"longestRest"_s);
        QVERIFY(longest);
        // A socket that gets nothing more of a frame for five seconds gives up.
        QVERIFY(longest->intervalAsDuration() <= std::chrono::seconds(2));
        longest->setInterval(20);
        Q_EMIT m_backlog->filled();
        m_feed->send(message(0));
        QTRY_COMPARE(m_seen, numbersBelow(1));
        QVERIFY(!longest->isActive());
    }

    void a_new_connection_is_read_though_the_old_one_was_at_rest_data() { transports(); }
    void a_new_connection_is_read_though_the_old_one_was_at_rest()
    {
        connectFeed();
        for (int i = 0; i < 1000; ++i)
            m_feed->send(message(i, messageSize));
        m_feed->flush();
        QTRY_VERIFY(m_mostWaiting > limit);
        m_seen.clear();
        m_client->start();
        QTRY_COMPARE(m_log.count(u"Feed connected"_s), 2);
        QTRY_COMPARE(m_feed->clientCount(), 1);
        m_seen.clear();
        for (int i = 0; i < 10; ++i)
            m_feed->send(message(i));
        QTRY_COMPARE(m_seen, numbersBelow(10));
    }
};

TAVORAN_TEST(TestFeedOverload)
#include "tst_FeedOverload.moc"
