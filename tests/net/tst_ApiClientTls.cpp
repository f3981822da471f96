#include "app/base/TerminalSettings.h"
#include "net/ApiClient.h"
#include "net/ReplyOutcome.h"
#include "support/StubHttpServer.h"
#include "support/TestCertificates.h"
#include "support/TestMain.h"

#include <QJsonDocument>
#include <QNetworkReply>
#include <optional>

using namespace Qt::StringLiterals;

/// The REST client over https: what holds over http must hold there too.
class TestApiClientTls final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void a_read_succeeds_with_its_token();
    void a_change_succeeds_and_arrives_whole_data();
    void a_change_succeeds_and_arrives_whole();
    void a_change_arrives_once_when_the_server_closes_after_reading_it_data();
    void a_change_arrives_once_when_the_server_closes_after_reading_it();
    void a_change_arrives_once_when_a_kept_connection_closes_data();
    void a_change_arrives_once_when_a_kept_connection_closes();
    void a_sign_in_arrives_once_when_the_server_closes_after_reading_it();
    void nothing_is_sent_to_a_server_whose_certificate_is_not_trusted();

private:
    ReplyOutcome change(const QByteArray& verb, const QString& path);
    QString readError(const QString& path);

    std::optional<TrustedTestAuthority> m_trust;
    std::optional<StubHttpServer> m_server;
    std::optional<ApiClient> m_api;
};

void TestApiClientTls::init()
{
    m_trust.emplace();
    m_server.emplace(StubHttpServer::Transport::Tls);
    m_api.emplace(TerminalSettings::instance());
    QVERIFY(m_server->url().startsWith(u"https://127.0.0.1:"_s));
    TerminalSettings::instance().setServerUrl(m_server->url());
    TerminalSettings::instance().setToken(u"token-1234"_s);
}

void TestApiClientTls::cleanup()
{
    m_api.reset();
    m_server.reset();
    m_trust.reset();
}

ReplyOutcome TestApiClientTls::change(const QByteArray& verb, const QString& path)
{
    const QJsonObject body{{u"lotSize"_s, 1}};
    QNetworkReply* const reply = verb == "POST" ? m_api->post(path, body)
        : verb == "PUT"                         ? m_api->put(path, body)
                                                : m_api->del(path);
    const bool finished = QTest::qWaitFor([reply] { return reply->isFinished(); }, 10000);
    reply->deleteLater();
    return finished ? ReplyOutcome::read(reply) : ReplyOutcome{};
}

QString TestApiClientTls::readError(const QString& path)
{
    std::optional<QString> result;
    m_api->get(path, [&](const QJsonDocument& document, const QString& error) {
        result = document.isNull() ? error : u"(a document)"_s;
    });
    return QTest::qWaitFor([&] { return result.has_value(); }, 10000) ? *result : u"(no answer)"_s;
}

void TestApiClientTls::a_read_succeeds_with_its_token()
{
    m_server->on("GET", "/api/accounts", StubAnswer::json("[1]"));
    QCOMPARE(readError(u"/api/accounts"_s), u"(a document)"_s);
    QCOMPARE(m_server->requests().size(), 1);
    QCOMPARE(m_server->requests().first().header("Authorization"), "Bearer token-1234"_ba);
}

void TestApiClientTls::a_change_succeeds_and_arrives_whole_data()
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

void TestApiClientTls::a_change_succeeds_and_arrives_whole()
{
    QFETCH(const QByteArray, verb);
    QFETCH(const QByteArray, body);
    m_server->on(verb, "/api/order", StubAnswer::json("{}"));
    const ReplyOutcome outcome = change(verb, u"/api/order"_s);
    QVERIFY2(outcome.ok, qPrintable(outcome.error));
    QCOMPARE(m_server->count(verb, "/api/order"), 1);
    QCOMPARE(m_server->last(verb, "/api/order").body, body);
}

void TestApiClientTls::a_change_arrives_once_when_the_server_closes_after_reading_it_data()
{
    a_change_succeeds_and_arrives_whole_data();
}

void TestApiClientTls::a_change_arrives_once_when_the_server_closes_after_reading_it()
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

void TestApiClientTls::a_change_arrives_once_when_a_kept_connection_closes_data()
{
    a_change_succeeds_and_arrives_whole_data();
}

void TestApiClientTls::a_change_arrives_once_when_a_kept_connection_closes()
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

void TestApiClientTls::a_sign_in_arrives_once_when_the_server_closes_after_reading_it()
{
    m_server->on("POST", "/api/auth/login", StubAnswer::closed());
    QSignalSpy failed(&*m_api, &ApiClient::loginFailed);
    m_api->login(u"a@b.c"_s, u"pw"_s);
    QTRY_COMPARE(failed.size(), 1);
    QCOMPARE(failed.at(0).at(0).toString(), u"Connection closed"_s);
    QVERIFY(readError(u"/later"_s).contains(u"stub has no"_s));
    QCOMPARE(m_server->count("POST", "/api/auth/login"), 1);
}

void TestApiClientTls::nothing_is_sent_to_a_server_whose_certificate_is_not_trusted()
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

TAVORAN_TEST(TestApiClientTls)
#include "tst_ApiClientTls.moc"
