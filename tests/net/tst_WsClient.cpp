#include "net/FeedFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

/// The feed client with a working server: messages, ping, counters, reconnect.
class TestWsClient final : public fixtures::FeedTest {
    Q_OBJECT

    void connectFeed()
    {
        const QSignalSpy connected(&*m_client, &WsClient::connected);
        m_client->start();
        QTRY_COMPARE(connected.size(), 1);
        QTRY_COMPARE(m_feed->clientCount(), 1);
    }

    /// Makes every message take as long as a slice of them.
    void readOneMessageATurn()
    {
        auto* const backlog = m_client->findChild<FeedBacklog*>();
        QVERIFY(backlog);
        backlog->setClock([now = qint64{0}]() mutable { return now += FeedBacklog::sliceNs; });
    }

    QTimer* pingTimer() { return m_client->findChild<QTimer*>(u"pingTimer"_s); }

private Q_SLOTS:
    void init() { serve(); }

    void cleanup() { end(); }

    void it_connects_with_the_token_percent_encoded_in_the_query()
    {
        TerminalSettings::instance().setToken(u"a+b&c d/e=f#g%h"_s);
        connectFeed();
        QCOMPARE(
            m_feed->targets(), QList<QByteArray>({"/ws/terminal?token=a%2Bb%26c%20d%2Fe%3Df%23g%25h"_ba}));
        const QByteArray head = m_feed->lastHead().toLower();
        QVERIFY(head.contains("sec-websocket-version: 13"));
        QVERIFY(!head.contains("\r\norigin:"));
        QVERIFY(!head.contains("authorization"));
    }

    void every_token_arrives_as_it_is_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<QByteArray>("query");
        QTest::newRow("none") << QString() << "token="_ba;
        QTest::newRow("beyond ASCII") << u"göod-ж"_s << "token=g%C3%B6od-%D0%B6"_ba;
        QTest::newRow("beyond the basic plane") << u"\U0001f511"_s << "token=%F0%9F%94%91"_ba;
        QTest::newRow("blanks") << u" a  b "_s << "token=%20a%20%20b%20"_ba;
        QTest::newRow("escapes") << u"%41+%2B"_s << "token=%2541%2B%252B"_ba;
    }
    void every_token_arrives_as_it_is()
    {
        QFETCH(const QString, token);
        QFETCH(const QByteArray, query);
        TerminalSettings::instance().setToken(token);
        connectFeed();
        QCOMPARE(m_feed->targets(), QList<QByteArray>({"/ws/terminal?" + query}));
    }

    void the_log_tells_the_address_without_the_query()
    {
        connectFeed();
        QCOMPARE(m_log,
            QStringList(
                {u"Connecting to ws://%1/ws/terminal..."_s.arg(m_feed->url().mid(7)), u"Feed connected"_s}));
    }

    void an_https_address_becomes_wss()
    {
        TerminalSettings::instance().setServerUrl(u"https://127.0.0.1:1"_s);
        m_client->start();
        QCOMPARE(m_log.value(0), u"Connecting to wss://127.0.0.1:1/ws/terminal..."_s);
    }

    void an_address_with_a_percent_sign_stays_as_it_is_in_the_log()
    {
        TerminalSettings::instance().setServerUrl(m_feed->url() + u"/%1"_s);
        m_client->start();
        QCOMPARE(m_log.value(0), u"Connecting to ws://"_s + m_feed->url().mid(7) + u"/%1/ws/terminal..."_s);
    }

    void a_hello_is_announced_with_its_number_of_symbols_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("entry");
        QTest::newRow("two") << u"{\"type\":\"hello\",\"symbols\":[{},{}],\"prices\":{}}"_s
                             << u"Feed ready — 2 symbols"_s;
        QTest::newRow("none") << u"{\"type\":\"hello\"}"_s << u"Feed ready — 0 symbols"_s;
        QTest::newRow("no list") << u"{\"type\":\"hello\",\"symbols\":\"x\"}"_s
                                 << u"Feed ready — 0 symbols"_s;
    }
    void a_hello_is_announced_with_its_number_of_symbols()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, entry);
        QStringList loggedBefore;
        QJsonObject hello;
        connect(&*m_client, &WsClient::helloReceived, this, [&](const QJsonObject& message) {
            loggedBefore = m_log;
            hello = message;
        });
        m_client->onTextMessage(text);
        QCOMPARE(loggedBefore, QStringList({entry}));
        QCOMPARE(hello.value(u"type"_s).toString(), u"hello"_s);
    }

    void each_type_raises_its_signal()
    {
        const QSignalSpy prices(&*m_client, &WsClient::pricesUpdated);
        const QSignalSpy trades(&*m_client, &WsClient::tradesUpdated);
        const QSignalSpy orders(&*m_client, &WsClient::ordersChanged);
        const QSignalSpy account(&*m_client, &WsClient::accountUpdated);
        connectFeed();
        m_feed->send(R"({"type":"price_update","data":{"EURUSD":{"bid":"1.1","ask":1.2}}})");
        m_feed->send(R"({"type":"trades_update","data":[{"id":"t1"}]})");
        m_feed->send(R"({"type":"orders_changed","filled":true})");
        m_feed->send(R"({"type":"account_update","id":"a1"})");
        QTRY_COMPARE(account.size(), 1);
        QCOMPARE(prices.size(), 1);
        QCOMPARE(trades.size(), 1);
        QCOMPARE(orders.size(), 1);
        const QJsonObject data = prices.at(0).at(0).toJsonObject();
        QCOMPARE(data.value(u"EURUSD"_s).toObject().value(u"bid"_s).toString(), u"1.1"_s);
        QCOMPARE(trades.at(0).at(0).toJsonArray().at(0).toObject().value(u"id"_s).toString(), u"t1"_s);
        QCOMPARE(orders.at(0).at(0).toJsonObject().value(u"type"_s).toString(), u"orders_changed"_s);
        QCOMPARE(account.at(0).at(0).toJsonObject().value(u"id"_s).toString(), u"a1"_s);
    }

    void a_message_is_counted_before_it_is_handed_on()
    {
        QStringList order;
        connect(&*m_client, &WsClient::trafficChanged, this, [&] { order.append(u"counted"_s); });
        connect(&*m_client, &WsClient::pricesUpdated, this, [&] { order.append(u"handed on"_s); });
        m_client->onTextMessage(u"{\"type\":\"price_update\",\"data\":{}}"_s);
        QCOMPARE(order, QStringList({u"counted"_s, u"handed on"_s}));
    }

    void data_of_a_wrong_type_reads_as_empty()
    {
        const QSignalSpy prices(&*m_client, &WsClient::pricesUpdated);
        const QSignalSpy trades(&*m_client, &WsClient::tradesUpdated);
        m_client->onTextMessage(u"{\"type\":\"price_update\",\"data\":[1]}"_s);
        m_client->onTextMessage(u"{\"type\":\"trades_update\",\"data\":\"x\"}"_s);
        QCOMPARE(prices.size(), 1);
        QCOMPARE(trades.size(), 1);
        QVERIFY(prices.at(0).at(0).toJsonObject().isEmpty());
        QVERIFY(trades.at(0).at(0).toJsonArray().isEmpty());
    }

    void anything_else_is_dropped_but_counted_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("no JSON") << u"<html>"_s;
        QTest::newRow("array") << u"[{\"type\":\"hello\"}]"_s;
        QTest::newRow("unknown type") << u"{\"type\":\"gossip\"}"_s;
        QTest::newRow("other case") << u"{\"type\":\"Hello\"}"_s;
        QTest::newRow("type is a number") << u"{\"type\":1}"_s;
        QTest::newRow("no type") << u"{\"data\":{}}"_s;
        QTest::newRow("number out of range") << u"{\"type\":\"hello\",\"x\":1e999}"_s;
        QTest::newRow("bare NaN") << u"{\"type\":\"price_update\",\"data\":{\"A\":{\"bid\":NaN}}}"_s;
        QTest::newRow("lone surrogate") << QString(QChar(0xd800));
    }
    void anything_else_is_dropped_but_counted()
    {
        QFETCH(const QString, text);
        const QSignalSpy hello(&*m_client, &WsClient::helloReceived);
        const QSignalSpy prices(&*m_client, &WsClient::pricesUpdated);
        const QSignalSpy trades(&*m_client, &WsClient::tradesUpdated);
        const QSignalSpy orders(&*m_client, &WsClient::ordersChanged);
        const QSignalSpy account(&*m_client, &WsClient::accountUpdated);
        const QSignalSpy latency(&*m_client, &WsClient::latencyChanged);
        const QSignalSpy traffic(&*m_client, &WsClient::trafficChanged);
        m_client->onTextMessage(text);
        QCOMPARE(
            hello.size() + prices.size() + trades.size() + orders.size() + account.size() + latency.size(),
            0);
        QCOMPARE(m_log, QStringList());
        QCOMPARE(traffic.size(), 1);
        QCOMPARE(traffic.at(0).at(0).toULongLong(), static_cast<quint64>(text.toUtf8().size()));
    }

    void traffic_counts_utf8_bytes_and_survives_a_reconnect()
    {
        const QSignalSpy traffic(&*m_client, &WsClient::trafficChanged);
        connectFeed();
        m_feed->send("é€"); // 2 + 3 bytes
        QTRY_COMPARE(traffic.size(), 1);
        QCOMPARE(traffic.at(0), QVariantList({5ULL, 0ULL}));
        m_client->sendPing();
        QCOMPARE(traffic.at(1), QVariantList({5ULL, 15ULL}));
        m_feed->cut();
        QTRY_COMPARE(m_feed->attempts(), 2);
        QTRY_COMPARE(m_feed->clientCount(), 1);
        m_feed->send("x");
        QTRY_COMPARE(traffic.size(), 3);
        QCOMPARE(traffic.at(2), QVariantList({6ULL, 15ULL}));
    }

    void a_ping_is_sent_once_until_its_pong_comes()
    {
        const QSignalSpy latency(&*m_client, &WsClient::latencyChanged);
        connectFeed();
        m_client->sendPing();
        m_client->sendPing();
        m_feed->send(R"({"type":"pong"})");
        QTRY_COMPARE(latency.size(), 1);
        QVERIFY(latency.at(0).at(0).toInt() >= 0);
        QCOMPARE(m_feed->received(), QStringList({u"{\"type\":\"ping\"}"_s}));
        m_client->sendPing();
        QTRY_COMPARE(m_feed->received().size(), 2);
    }

    void the_latency_is_the_time_from_ping_to_pong()
    {
        const QSignalSpy latency(&*m_client, &WsClient::latencyChanged);
        connectFeed();
        m_client->sendPing();
        QElapsedTimer sincePing;
        sincePing.start();
        QTRY_VERIFY(sincePing.elapsed() >= 30);
        m_client->onTextMessage(u"{\"type\":\"pong\"}"_s);
        QCOMPARE(latency.size(), 1);
        QVERIFY(latency.at(0).at(0).toInt() >= 30);

        m_client->sendPing();
        sincePing.restart();
        m_client->onTextMessage(u"{\"type\":\"pong\"}"_s);
        // The clock starts anew with each ping, however long this machine takes for two lines.
        QVERIFY(latency.at(1).at(0).toInt() < sincePing.elapsed() + 30);
    }

    void no_ping_is_sent_without_a_connection()
    {
        const QSignalSpy traffic(&*m_client, &WsClient::trafficChanged);
        m_client->sendPing();
        QCOMPARE(traffic.size(), 0);
        connectFeed();
        m_client->sendPing();
        QCOMPARE(traffic.size(), 1);
    }

    void the_ping_timer_runs_only_while_connected()
    {
        QVERIFY(pingTimer());
        QCOMPARE(pingTimer()->interval(), 15000);
        QVERIFY(!pingTimer()->isActive());
        connectFeed();
        QVERIFY(pingTimer()->isActive());
        const QSignalSpy disconnected(&*m_client, &WsClient::disconnected);
        m_feed->shutDown();
        m_feed->cut();
        QTRY_VERIFY(!disconnected.empty());
        QVERIFY(!pingTimer()->isActive());
    }

    void a_lost_pong_stops_pings_until_the_next_connection_on_purpose()
    {
        connectFeed();
        const QSignalSpy traffic(&*m_client, &WsClient::trafficChanged);
        pingTimer()->setInterval(1);
        QTRY_COMPARE(m_feed->received().size(), 1);
        const QSignalSpy timeout(pingTimer(), &QTimer::timeout);
        QTRY_VERIFY(timeout.size() >= 3);
        QCOMPARE(traffic.size(), 1);
        m_feed->cut();
        QTRY_COMPARE(m_feed->received().size(), 2);
        QCOMPARE(m_feed->attempts(), 2);
    }

    void a_pong_without_a_ping_still_reports_a_latency()
    {
        const QSignalSpy latency(&*m_client, &WsClient::latencyChanged);
        m_client->onTextMessage(u"{\"type\":\"pong\"}"_s);
        QCOMPARE(latency.size(), 1);
        QCOMPARE(latency.at(0).at(0).toInt(), 0);
    }

    void it_reconnects_after_a_lost_connection()
    {
        connectFeed();
        const QSignalSpy disconnected(&*m_client, &WsClient::disconnected);
        for (int i = 1; i <= 3; ++i) {
            if (i == 2)
                m_feed->closeAll();
            else
                m_feed->cut();
            QTRY_COMPARE(m_feed->attempts(), i + 1);
            QTRY_COMPARE(m_feed->clientCount(), 1);
            QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
            QCOMPARE(disconnected.size(), i);
            QCOMPARE(disconnected.at(i - 1).at(0).toInt(), 1); // each success starts the delays anew
        }
        QCOMPARE(m_log.count(u"Feed disconnected — retrying in 1s"_s), 3);
    }

    void before_start_nothing_is_wanted()
    {
        const QSignalSpy disconnected(&*m_client, &WsClient::disconnected);
        m_client->onDisconnected();
        QCOMPARE(disconnected.size(), 0);
        QCOMPARE(m_log, QStringList());
    }

    void starting_again_keeps_one_connection()
    {
        connectFeed();
        const QSignalSpy connected(&*m_client, &WsClient::connected);
        const QSignalSpy disconnected(&*m_client, &WsClient::disconnected);
        m_client->start();
        QTRY_COMPARE(connected.size(), 1);
        QTRY_COMPARE(m_feed->clientCount(), 1);
        QCOMPARE(m_feed->attempts(), 2);
        QCOMPARE(disconnected.size(), 0);
    }

    void a_flood_arrives_complete_and_in_order()
    {
        QList<int> seen;
        connect(&*m_client, &WsClient::pricesUpdated, this,
            [&](const QJsonObject& data) { seen.append(data.value(u"n"_s).toInt()); });
        connectFeed();
        constexpr int messages = 20000;
        for (int i = 0; i < messages; ++i)
            m_feed->send("{\"type\":\"price_update\",\"data\":{\"n\":" + QByteArray::number(i) + "}}");
        QTRY_COMPARE_WITH_TIMEOUT(seen.size(), messages, 30000);
        for (int i = 0; i < messages; ++i)
            QCOMPARE(seen.at(i), i);
    }

    void a_burst_leaves_the_event_loop_its_turns()
    {
        QStringList told;
        const auto takeTime = [&](const QString& what) {
            told.append(what);
            QElapsedTimer clock;
            clock.start();
            while (clock.elapsed() < 4)
                continue;
        };
        connect(&*m_client, &WsClient::helloReceived, this, [&] { takeTime(u"hello"_s); });
        connect(&*m_client, &WsClient::pricesUpdated, this, [&] { takeTime(u"prices"_s); });
        connect(&*m_client, &WsClient::tradesUpdated, this, [&] { takeTime(u"trades"_s); });
        connect(&*m_client, &WsClient::ordersChanged, this, [&] { takeTime(u"orders"_s); });
        connect(&*m_client, &WsClient::accountUpdated, this, [&] { takeTime(u"account"_s); });
        connectFeed();
        QTimer other;
        QList<qsizetype> toldAtTurn;
        connect(&other, &QTimer::timeout, this, [&] { toldAtTurn.append(told.size()); });
        other.start(0);
        QStringList sent;
        for (int i = 0; i < 5; ++i) {
            m_feed->send(R"({"type":"hello"})");
            m_feed->send(R"({"type":"price_update","data":{}})");
            m_feed->send(R"({"type":"orders_changed"})");
            m_feed->send(R"({"type":"price_update","data":{}})");
            m_feed->send(R"({"type":"trades_update","data":[]})");
            m_feed->send(R"({"type":"account_update"})");
            sent.append({u"hello"_s, u"prices"_s, u"orders"_s, u"prices"_s, u"trades"_s, u"account"_s});
        }
        QTRY_COMPARE(told.size(), sent.size());
        QCOMPARE(told, sent);
        // Two of them fill a slice.
        for (qsizetype i = 1; i < toldAtTurn.size(); ++i)
            QVERIFY2(toldAtTurn[i] <= toldAtTurn[i - 1] + 2, qPrintable(QString::number(i)));
    }

    void what_came_before_the_end_of_a_connection_is_told_before_it()
    {
        QStringList told;
        connect(&*m_client, &WsClient::ordersChanged, this,
            [&](const QJsonObject& event) { told.append(event.value(u"n"_s).toString()); });
        connect(&*m_client, &WsClient::disconnected, this, [&] { told.append(u"end"_s); });
        connect(&*m_client, &WsClient::helloReceived, this, [&] { told.append(u"hello"_s); });
        readOneMessageATurn();
        connectFeed();
        for (const char* number : {"1", "2", "3", "4", "5"})
            m_feed->send("{\"type\":\"orders_changed\",\"n\":\"" + QByteArray(number) + "\"}");
        m_feed->setGreeting(R"({"type":"hello"})");
        m_feed->closeAll();
        QTRY_VERIFY(told.contains(u"hello"_s));
        QCOMPARE(told, QStringList({u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"end"_s, u"hello"_s}));
        QCOMPARE(m_log.filter(u"Feed disconnected"_s).size(), 1);
    }

    void starting_again_forgets_what_the_old_connection_left_unread()
    {
        QStringList told;
        connect(&*m_client, &WsClient::ordersChanged, this, [&](const QJsonObject& event) {
            told.append(event.value(u"n"_s).toString());
            m_feed->setGreeting(R"({"type":"hello"})");
            m_client->start();
        });
        connect(&*m_client, &WsClient::disconnected, this, [&] { told.append(u"end"_s); });
        connect(&*m_client, &WsClient::helloReceived, this, [&] { told.append(u"hello"_s); });
        readOneMessageATurn();
        connectFeed();
        for (const char* number : {"1", "2", "3"})
            m_feed->send("{\"type\":\"orders_changed\",\"n\":\"" + QByteArray(number) + "\"}");
        QTRY_VERIFY(told.contains(u"hello"_s));
        QCOMPARE(told, QStringList({u"1"_s, u"hello"_s}));
    }

    void starting_again_forgets_an_end_that_was_not_told_yet()
    {
        constexpr int messages = 200;
        QStringList told;
        int afterTheEnd = 0;
        int unread = messages;
        connect(&*m_client, &WsClient::ordersChanged, this, [&] {
            --unread;
            if (m_feed->clientCount() == 0 && ++afterTheEnd == 10)
                m_client->start();
        });
        connect(&*m_client, &WsClient::disconnected, this, [&] { told.append(u"end"_s); });
        connect(&*m_client, &WsClient::helloReceived, this, [&] { told.append(u"hello"_s); });
        readOneMessageATurn();
        connectFeed();
        m_feed->setGreeting(R"({"type":"hello"})");
        for (int i = 0; i < messages; ++i)
            m_feed->send(R"({"type":"orders_changed"})");
        m_feed->closeAll();
        QTRY_VERIFY(!told.isEmpty());
        QCOMPARE(told, QStringList(u"hello"_s));
        QVERIFY(unread > 0);
        QCOMPARE(m_feed->attempts(), 2);
        QCOMPARE(m_log.filter(u"Feed disconnected"_s).size(), 0);
    }

    void a_message_of_five_megabytes_is_taken()
    {
        const QSignalSpy hello(&*m_client, &WsClient::helloReceived);
        connectFeed();
        m_feed->send(R"({"type":"hello","filler":")" + QByteArray(5'000'000, 'x') + R"("})");
        QTRY_COMPARE_WITH_TIMEOUT(hello.size(), 1, 20000);
    }

    void it_may_be_deleted_while_connected()
    {
        connectFeed();
        const qsizetype entries = m_log.size();
        m_client.reset();
        QTRY_COMPARE(m_feed->clientCount(), 0);
        QCOMPARE(m_log.size(), entries);
        QCOMPARE(m_feed->attempts(), 1);
    }

    void it_knows_only_the_settings_it_was_given()
    {
        const QTemporaryDir folder;
        TerminalSettings own(folder.filePath(u"own.conf"_s));
        own.setServerUrl(m_feed->url());
        own.setToken(u"own-token"_s);
        TerminalSettings::instance().setServerUrl(u"http://127.0.0.1:1"_s);
        m_client.emplace(own);
        connectFeed();
        QCOMPARE(m_feed->targets(), QList<QByteArray>({"/ws/terminal?token=own-token"_ba}));
        m_client.reset(); // before its settings
    }
};

TAVORAN_TEST(TestWsClient)
#include "tst_WsClient.moc"

#include <QTemporaryDir>
