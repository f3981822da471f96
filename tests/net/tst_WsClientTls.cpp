#include "net/FeedFixture.h"
#include "support/StubHttpServer.h"
#include "support/TestCertificates.h"
#include "support/TestMain.h"

#include <optional>

using namespace Qt::StringLiterals;

/// The feed client over wss.
class TestWsClientTls final : public fixtures::FeedTest {
    Q_OBJECT

    void startClient()
    {
        makeClient();
        m_client->start();
    }

    std::optional<TrustedTestAuthority> m_trust;
    std::optional<StubHttpServer> m_http;

private Q_SLOTS:
    void init()
    {
        m_trust.emplace();
        m_http.emplace(StubHttpServer::Transport::Tls);
        m_feed.emplace(*m_http);
        TerminalSettings::instance().setServerUrl(m_http->url());
        TerminalSettings::instance().setToken(u"token-1234"_s);
    }

    void cleanup()
    {
        end();
        m_http.reset();
        m_trust.reset();
    }

    void an_https_address_is_served_over_wss()
    {
        m_feed->setGreeting(R"({"type":"hello","symbols":[{},{}],"prices":{}})");
        startClient();
        const QSignalSpy hello(&*m_client, &WsClient::helloReceived);
        QTRY_COMPARE(hello.size(), 1);
        const QString address = m_http->url().replace(u"https://"_s, u"wss://"_s) + u"/ws/terminal"_s;
        QCOMPARE(m_log,
            QStringList(
                {u"Connecting to %1..."_s.arg(address), u"Feed connected"_s, u"Feed ready — 2 symbols"_s}));
        QCOMPARE(m_feed->targets(), QList<QByteArray>({"/ws/terminal?token=token-1234"_ba}));

        m_client->sendPing();
        QTRY_COMPARE(m_feed->received(), QStringList({u"{\"type\":\"ping\"}"_s}));
        QCOMPARE(m_retries, QList<int>());
    }

    void a_cut_feed_comes_back()
    {
        startClient();
        QTRY_COMPARE(m_log.count(u"Feed connected"_s), 1);
        QTRY_COMPARE(m_feed->clientCount(), 1);
        m_feed->cut();
        QTRY_COMPARE(m_retries, QList<int>({1}));
        QTRY_COMPARE(m_log.count(u"Feed connected"_s), 2);
        QCOMPARE(m_feed->attempts(), 2);
    }

    void an_untrusted_certificate_is_one_error_and_one_retry_an_attempt()
    {
        m_trust.reset();
        startClient();
        QTRY_VERIFY(m_retries.size() >= 3);
        QCOMPARE(m_retries.first(3), QList<int>({1, 2, 4}));
        // Each attempt tells its start, its one error and its one retry, in this order.
        const QStringList attempts = m_log.first(9);
        for (qsizetype i = 0; i < attempts.size(); i += 3) {
            QVERIFY2(attempts[i].startsWith(u"Connecting to wss://"_s), qPrintable(attempts[i]));
            QVERIFY2(
                attempts[i + 1].startsWith(u"Feed error: "_s) && attempts[i + 1].contains(u"certificate"_s),
                qPrintable(attempts[i + 1]));
            QCOMPARE(attempts[i + 2], u"Feed disconnected — retrying in %1s"_s.arg(1 << (i / 3)));
        }
        // Nobody unknown gets to see the token.
        QCOMPARE(m_feed->attempts(), 0);
        QCOMPARE(m_http->requests().size(), 0);
    }

    void a_failure_of_tls_is_overcome()
    {
        StubFeedServer speaksNoTls;
        speaksNoTls.setMode(StubFeedServer::Mode::CloseAtOnce);
        TerminalSettings::instance().setServerUrl(speaksNoTls.url().replace(u"http:"_s, u"https:"_s));
        startClient();
        QTRY_VERIFY(m_retries.size() >= 3);
        QCOMPARE(m_retries.first(3), QList<int>({1, 2, 4}));
        QCOMPARE(m_log.filter(u"Feed error: "_s).size(), m_retries.size());
        TerminalSettings::instance().setServerUrl(m_http->url());
        QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
        QCOMPARE(m_feed->attempts(), 1);
    }
};

TAVORAN_TEST(TestWsClientTls)
#include "tst_WsClientTls.moc"
