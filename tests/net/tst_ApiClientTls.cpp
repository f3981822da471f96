#include "net/ApiFixture.h"
#include "support/TestCertificates.h"
#include "support/TestMain.h"

#include <QNetworkReply>

using namespace Qt::StringLiterals;

/// The REST client over https: what holds over http must hold there too.
class TestApiClientTls final : public fixtures::ApiTest {
    Q_OBJECT

    std::optional<TrustedTestAuthority> m_trust;

private Q_SLOTS:
    void init()
    {
        m_trust.emplace();
        serve(StubHttpServer::Transport::Tls);
        QVERIFY(m_server->url().startsWith(u"https://127.0.0.1:"_s));
    }

    void cleanup()
    {
        end();
        m_trust.reset();
    }

    void a_read_succeeds_with_its_token()
    {
        m_server->on("GET", "/api/accounts", StubAnswer::json("[1]"));
        QCOMPARE(readError(u"/api/accounts"_s), u"(a document)"_s);
        QCOMPARE(m_server->requests().size(), 1);
        QCOMPARE(m_server->requests().first().header("Authorization"), "Bearer token-1234"_ba);
    }

    void a_change_succeeds_and_arrives_whole_data()
    {
        QTest::addColumn<QByteArray>("verb");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("POST") << "POST"_ba
                              << R"({"lotSize":1})"_ba;
        QTest::newRow("PUT") << "PUT"_ba
                             << R"({"lotSize":1})"_ba;
        QTest::newRow("DELETE") << "DELETE"_ba
                                << ""_ba;
    }
    void a_change_succeeds_and_arrives_whole()
    {
        QFETCH(const QByteArray, verb);
        QFETCH(const QByteArray, body);
        m_server->on(verb, "/api/order", StubAnswer::json("{}"));
        const ReplyOutcome outcome = change(verb, u"/api/order"_s);
        QVERIFY2(outcome.ok, qPrintable(outcome.error));
        QCOMPARE(m_server->count(verb, "/api/order"), 1);
        QCOMPARE(m_server->last(verb, "/api/order").body, body);
    }

    void a_change_arrives_once_when_the_server_closes_after_reading_it_data()
    {
        a_change_succeeds_and_arrives_whole_data();
    }
    void a_change_arrives_once_when_the_server_closes_after_reading_it()
    {
        QFETCH(const QByteArray, verb);
        QFETCH(const QByteArray, body);
        m_server->on(verb, "/api/order", StubAnswer::closed());
        const ReplyOutcome outcome = change(verb, u"/api/order"_s);
        QVERIFY(!outcome.ok);
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.error, u"Connection closed"_s);
        // A second copy would come on a new connection; this read shows that none is on its way.
        QVERIFY(readError(u"/later"_s).contains(u"stub has no"_s));
        QCOMPARE(m_server->count(verb, "/api/order"), 1);
        QCOMPARE(m_server->last(verb, "/api/order").body, body);
    }

    void a_change_arrives_once_when_a_kept_connection_closes_data()
    {
        a_change_succeeds_and_arrives_whole_data();
    }
    void a_change_arrives_once_when_a_kept_connection_closes()
    {
        QFETCH(const QByteArray, verb);
        m_server->on("GET", "/warm", StubAnswer::json("[]"));
        m_server->on(verb, "/api/order", StubAnswer::closed());
        QCOMPARE(readError(u"/warm"_s), u"(a document)"_s);
        QCOMPARE(m_server->connectionCount(), 1);
        const ReplyOutcome outcome = change(verb, u"/api/order"_s);
        QVERIFY(!outcome.ok);
        QCOMPARE(outcome.error, u"Connection closed"_s);
        QCOMPARE(readError(u"/warm"_s), u"(a document)"_s);
        QCOMPARE(m_server->count(verb, "/api/order"), 1);
    }

    void a_sign_in_arrives_once_when_the_server_closes_after_reading_it()
    {
        m_server->on("POST", "/api/auth/login", StubAnswer::closed());
        QSignalSpy failed(&*m_api, &ApiClient::loginFailed);
        m_api->login(u"a@b.c"_s, u"pw"_s);
        QTRY_COMPARE(failed.size(), 1);
        QCOMPARE(failed.at(0).at(0).toString(), u"Connection closed"_s);
        QVERIFY(readError(u"/later"_s).contains(u"stub has no"_s));
        QCOMPARE(m_server->count("POST", "/api/auth/login"), 1);
    }

    void nothing_is_sent_to_a_server_whose_certificate_is_not_trusted()
    {
        m_trust.reset();
        QStringList errors{readError(u"/api/accounts"_s)};
        for (const char* verb : {"POST", "PUT", "DELETE"}) {
            const ReplyOutcome outcome = change(verb, u"/api/order"_s);
            QVERIFY(!outcome.ok);
            QCOMPARE(outcome.status, 0);
            errors.append(outcome.error);
        }
        QSignalSpy failed(&*m_api, &ApiClient::loginFailed);
        m_api->login(u"a@b.c"_s, u"pw"_s);
        QTRY_COMPARE(failed.size(), 1);
        errors.append(failed.at(0).at(0).toString());
        for (const QString& error : std::as_const(errors))
            QVERIFY2(error.contains(u"certificate"_s), qPrintable(error));
        QCOMPARE(m_server->requests().size(), 0);
    }
};

TAVORAN_TEST(TestApiClientTls)
#include "tst_ApiClientTls.moc"
