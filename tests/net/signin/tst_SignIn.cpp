#include "app/base/SettingsStore.h"
#include "net/ApiFixture.h"
#include "support/TestMain.h"

#include <QFile>

using namespace Qt::StringLiterals;

/// ApiClient::login against every kind of answer.
class TestSignIn final : public fixtures::ApiTest {
    Q_OBJECT

    QString loginError()
    {
        QSignalSpy failed(&*m_api, &ApiClient::loginFailed);
        const QSignalSpy succeeded(&*m_api, &ApiClient::loginSucceeded);
        m_api->login(u"new@b.c"_s, u"pw"_s);
        if (!QTest::qWaitFor([&] { return failed.size() + succeeded.size() > 0; }))
            return u"(no answer)"_s;
        return failed.isEmpty() ? u"(success)"_s : failed.at(0).at(0).toString();
    }

private Q_SLOTS:
    void init()
    {
        serve();
        TerminalSettings& settings = TerminalSettings::instance();
        settings.setRemember(true);
        settings.setToken(u"old-token"_s);
        settings.setEmail(u"old@b.c"_s);
    }

    void cleanup() { end(); }

    void it_posts_the_credentials_without_any_token()
    {
        loginError();
        QCOMPARE(m_server->requests().size(), 1);
        const StubRequest request = m_server->last("POST", "/api/auth/login");
        QCOMPARE(request.body, R"({"email":"new@b.c","password":"pw"})"_ba);
        QCOMPARE(request.header("Content-Type"), "application/json"_ba);
        QVERIFY(!request.hasHeader("Authorization"));
    }

    void token_and_email_are_stored_before_the_success_is_announced()
    {
        m_server->on("POST", "/api/auth/login",
            StubAnswer::json(R"({"token":"new-token","email":"x@y.z","extra":1})"));
        QJsonObject user;
        QString tokenThen;
        QString emailThen;
        connect(&*m_api, &ApiClient::loginSucceeded, this, [&](const QJsonObject& answer) {
            user = answer;
            tokenThen = TerminalSettings::instance().token();
            emailThen = TerminalSettings::instance().email();
        });
        QCOMPARE(loginError(), u"(success)"_s);
        QCOMPARE(tokenThen, u"new-token"_s);
        QCOMPARE(emailThen, u"new@b.c"_s);
        QCOMPARE(user.value(u"email"_s).toString(), u"x@y.z"_s);
        QCOMPARE(user.value(u"extra"_s).toInt(), 1);
    }

    void a_sign_in_is_on_disk_before_the_success_is_announced()
    {
        m_server->on("POST", "/api/auth/login", StubAnswer::json(R"({"token":"new-token"})"));
        // Asked for now: finding the path out opens the store, and closing that writes it.
        QFile file(SettingsStore::userFilePath());
        QByteArray stored;
        connect(&*m_api, &ApiClient::loginSucceeded, this, [&] {
            if (file.open(QIODevice::ReadOnly))
                stored = file.readAll();
        });
        QCOMPARE(loginError(), u"(success)"_s);
        QVERIFY2(stored.contains("new@b.c"), stored.constData());
        QVERIFY2(stored.contains("new-token"), stored.constData());
    }

    void an_answer_without_a_token_fails_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("message");
        const QString unexpected = u"Unexpected server response"_s;
        QTest::newRow("empty object") << "{}"_ba << unexpected;
        QTest::newRow("empty body") << QByteArray() << unexpected;
        QTest::newRow("html") << "<html>Welcome</html>"_ba << unexpected;
        QTest::newRow("array") << R"([{"token":"t"}])"_ba << unexpected;
        QTest::newRow("other letters") << R"({"Token":"t"})"_ba << unexpected;
        QTest::newRow("token further in") << R"({"user":{"token":"t"}})"_ba << unexpected;
        QTest::newRow("message instead") << R"({"message":"Account locked"})"_ba << u"Account locked"_s;
        QTest::newRow("message of a wrong type") << R"({"message":["x"]})"_ba << unexpected;
    }
    void an_answer_without_a_token_fails()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QString, message);
        m_server->on("POST", "/api/auth/login", StubAnswer::json(body));
        QCOMPARE(loginError(), message);
        QCOMPARE(TerminalSettings::instance().token(), u"old-token"_s);
        QCOMPARE(TerminalSettings::instance().email(), u"old@b.c"_s);
    }

    void the_presence_of_a_token_is_a_success_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("token");
        QTest::newRow("text") << R"({"token":" t "})"_ba << u" t "_s;
        QTest::newRow("empty") << R"({"token":""})"_ba << QString();
        QTest::newRow("null") << R"({"token":null})"_ba << QString();
        QTest::newRow("a number") << R"({"token":5})"_ba << QString();
        QTest::newRow("an object") << R"({"token":{"value":"t"}})"_ba << QString();
        QTest::newRow("with a message") << R"({"token":"","message":"Welcome"})"_ba << QString();
    }
    void the_presence_of_a_token_is_a_success()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QString, token);
        m_server->on("POST", "/api/auth/login", StubAnswer::json(body));
        QCOMPARE(loginError(), u"(success)"_s);
        QCOMPARE(TerminalSettings::instance().token(), token);
        QCOMPARE(TerminalSettings::instance().email(), u"new@b.c"_s);

        bool answered = false;
        m_api->get(u"/x"_s, this, [&answered](const QJsonDocument&, const QString&) { answered = true; });
        QTRY_VERIFY(answered);
        QCOMPARE(m_server->last("GET", "/x").hasHeader("Authorization"), !token.isEmpty());
    }

    void a_failed_sign_in_shows_the_servers_message()
    {
        m_server->on("POST", "/api/auth/login", StubAnswer::message(u"Wrong password"_s, 401));
        const QSignalSpy unauthorized(&*m_api, &ApiClient::unauthorized);
        QCOMPARE(loginError(), u"Wrong password"_s);
        QCOMPARE(unauthorized.size(), 0);
    }

    void a_failed_sign_in_without_a_message_shows_the_text_of_qt_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : {400, 401, 404, 500, 502})
            QTest::addRow("%d", status) << status;
    }
    void a_failed_sign_in_without_a_message_shows_the_text_of_qt()
    {
        QFETCH(const int, status);
        m_server->on("POST", "/api/auth/login", StubAnswer::html("<h1>Sorry</h1>", status));
        const QString error = loginError();
        QVERIFY(!error.isEmpty());
        QVERIFY2(!error.contains(u"Sorry"_s) && error != u"Unexpected server response"_s, qPrintable(error));
    }

    void an_error_status_with_a_token_is_no_success()
    {
        m_server->on(
            "POST", "/api/auth/login", StubAnswer::json(R"({"token":"new-token","message":"Locked"})", 403));
        QCOMPARE(loginError(), u"Locked"_s);
        QCOMPARE(TerminalSettings::instance().token(), u"old-token"_s);
    }

    void a_redirect_does_not_carry_the_password_away_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("302") << 302;
        QTest::newRow("307") << 307;
    }
    void a_redirect_does_not_carry_the_password_away()
    {
        StubHttpServer other;
        QFETCH(const int, status);
        m_server->on("POST", "/api/auth/login", StubAnswer::redirect(other.url() + u"/login"_s, status));
        QCOMPARE(loginError(), u"The server answered with a redirect"_s);
        QCOMPARE(other.requests().size(), 0);
    }

    void an_unreachable_server_fails_with_a_text_that_names_it()
    {
        const QString server = m_server->url();
        m_server->shutDown();
        QCOMPARE(loginError(), u"Connection refused (%1)"_s.arg(server));
    }

    void a_message_echoing_the_old_token_hides_it()
    {
        m_server->on("POST", "/api/auth/login", StubAnswer::json(R"({"message":"old-token is over"})"));
        QCOMPARE(loginError(), u"[hidden] is over"_s);
    }
};

TAVORAN_TEST(TestSignIn)
#include "tst_SignIn.moc"
