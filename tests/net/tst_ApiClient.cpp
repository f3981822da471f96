#include "net/ApiFixture.h"
#include "net/SafeRequest.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QNetworkCookie>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using fixtures::finish;

namespace {

struct Answer {
    QJsonDocument document;
    QString error;
};

} // namespace

class TestApiClient final : public fixtures::ApiTest {
    Q_OBJECT

    Answer read(const QString& path)
    {
        std::optional<Answer> answer;
        m_api->get(path, [&](const QJsonDocument& document, const QString& error) {
            answer = {document, error};
        });
        if (!QTest::qWaitFor([&] { return answer.has_value(); }))
            return {{}, u"(no answer)"_s};
        return *answer;
    }

private Q_SLOTS:
    void init() { serve(); }

    void cleanup() { end(); }

    void a_read_carries_content_type_and_token_and_returns_the_parsed_body()
    {
        m_server->on("GET", "/api/accounts", StubAnswer::json(R"([{"id":"a1"}])"));
        const Answer answer = read(u"/api/accounts"_s);
        QCOMPARE(answer.error, QString());
        QCOMPARE(answer.document.array().at(0).toObject().value(u"id"_s).toString(), u"a1"_s);
        const StubRequest request = m_server->last("GET", "/api/accounts");
        QCOMPARE(request.header("Content-Type"), "application/json"_ba);
        QCOMPARE(request.header("Authorization"), "Bearer token-1234"_ba);
    }

    void without_a_token_no_authorization_is_sent()
    {
        TerminalSettings::instance().setToken({});
        m_server->on("GET", "/api/accounts", StubAnswer::json("[]"));
        QCOMPARE(read(u"/api/accounts"_s).error, QString());
        QVERIFY(!m_server->last("GET", "/api/accounts").hasHeader("Authorization"));
    }

    void a_token_that_could_break_the_header_is_never_sent_data()
    {
        QTest::addColumn<QString>("token");
        QTest::newRow("line break") << u"good\r\nX-Evil: 1"_s;
        QTest::newRow("control") << u"good\x01"_s;
        QTest::newRow("delete") << u"good\x7f"_s;
        QTest::newRow("tab") << u"good\tbad"_s;
        QTest::newRow("next line") << u"good\u0085"_s;
        QTest::newRow("null") << u"go"_s + QChar(u'\0') + u"od"_s;
    }
    void a_token_that_could_break_the_header_is_never_sent()
    {
        QFETCH(const QString, token);
        TerminalSettings::instance().setToken(token);
        m_server->on("GET", "/api/accounts", StubAnswer::json("[]"));
        QCOMPARE(read(u"/api/accounts"_s).error, QString());
        const StubRequest request = m_server->last("GET", "/api/accounts");
        QVERIFY(!request.hasHeader("Authorization"));
        QVERIFY(!request.hasHeader("X-Evil"));
    }

    void any_other_token_is_sent_in_utf_8_data()
    {
        QTest::addColumn<QString>("token");
        QTest::newRow("one letter") << u"x"_s;
        QTest::newRow("beyond ASCII") << u"göod-жетон-鍵"_s;
        QTest::newRow("beyond the basic plane") << u"key-\U0001f511"_s;
        QTest::newRow("blanks") << u" a  b "_s;
        QTest::newRow("no-break space") << u"a\u00a0b"_s;
        QTest::newRow("signs") << u"a+b/c==\"%0d%0a\",;:~"_s;
    }
    void any_other_token_is_sent_in_utf_8()
    {
        QFETCH(const QString, token);
        TerminalSettings::instance().setToken(token);
        m_server->on("GET", "/x", StubAnswer::json("[]"));
        m_server->on("POST", "/x", StubAnswer::json("{}"));
        QCOMPARE(read(u"/x"_s).error, QString());
        QVERIFY(finish(m_api->post(u"/x"_s, {})).ok);
        // Blanks at the end of a line are no part of a header's value for any server.
        const QByteArray expected = ("Bearer " + token.toUtf8()).trimmed();
        QCOMPARE(m_server->last("GET", "/x").header("Authorization"), expected);
        QCOMPARE(m_server->last("POST", "/x").header("Authorization"), expected);
    }

    void address_and_token_apply_to_the_next_request()
    {
        StubHttpServer other;
        other.on("GET", "/x", StubAnswer::json("{}"));
        m_server->on("GET", "/x", StubAnswer::json("{}"));
        read(u"/x"_s);
        TerminalSettings::instance().setServerUrl(other.url() + u"//"_s);
        TerminalSettings::instance().setToken(u"token-5678"_s);
        read(u"/x"_s);
        QCOMPARE(m_server->count("GET", "/x"), 1);
        QCOMPARE(other.count("GET", "/x"), 1);
        QCOMPARE(other.last("GET", "/x").header("Authorization"), "Bearer token-5678"_ba);
    }

    void an_address_without_scheme_and_with_a_slash_becomes_https()
    {
        TerminalSettings::instance().setServerUrl(u" 127.0.0.1:1/ "_s);
        QNetworkReply* reply = m_api->del(u"/api/drawings/7"_s);
        QCOMPARE(reply->request().url(), QUrl(u"https://127.0.0.1:1/api/drawings/7"_s));
        QVERIFY(!finish(reply).ok);
    }

    void state_changing_calls_send_compact_json()
    {
        const QJsonObject body{{u"symbol"_s, u"EURUSD"_s}, {u"lotSize"_s, 0.1}};
        m_server->on("POST", "/api/trades/place", StubAnswer::json(R"({"id":"t1"})"));
        m_server->on("PUT", "/api/trades/modify/t1", StubAnswer::json("{}"));
        const ReplyOutcome placed = finish(m_api->post(u"/api/trades/place"_s, body));
        QVERIFY(placed.ok);
        QCOMPARE(placed.status, 200);
        QCOMPARE(QJsonDocument::fromJson(placed.content).object().value(u"id"_s).toString(), u"t1"_s);
        QVERIFY(finish(m_api->put(u"/api/trades/modify/t1"_s, body)).ok);
        for (const StubRequest& request : m_server->requests()) {
            QCOMPARE(request.body, R"({"lotSize":0.1,"symbol":"EURUSD"})"_ba);
            QCOMPARE(request.header("Content-Length"), QByteArray::number(request.body.size()));
            QCOMPARE(request.header("Content-Type"), "application/json"_ba);
            QCOMPARE(request.header("Authorization"), "Bearer token-1234"_ba);
        }
        QCOMPARE(m_server->requests().size(), 2);
    }

    void a_delete_has_no_body_and_says_so()
    {
        m_server->on("DELETE", "/api/drawings/7", StubAnswer::json("{}"));
        QVERIFY(finish(m_api->del(u"/api/drawings/7"_s)).ok);
        const StubRequest request = m_server->last("DELETE", "/api/drawings/7");
        QCOMPARE(request.header("Content-Length"), "0"_ba);
        QCOMPARE(request.header("Content-Type"), "application/json"_ba);
        QVERIFY(!request.hasHeader("Transfer-Encoding"));
    }

    void the_query_goes_out_as_encoded_by_the_caller()
    {
        m_server->on("GET", "/api/candles", StubAnswer::json("[]"));
        QCOMPARE(read(u"/api/candles?symbol=A%2BB%26C%20D&timeframe=1m"_s).error, QString());
        QCOMPARE(m_server->requests().at(0).target, "/api/candles?symbol=A%2BB%26C%20D&timeframe=1m"_ba);
    }

    void http_2_is_off()
    {
        m_server->on("POST", "/x", StubAnswer::json("{}"));
        QNetworkReply* reply = m_api->post(u"/x"_s, {});
        QCOMPARE(reply->request().attribute(QNetworkRequest::Http2AllowedAttribute), QVariant(false));
        QVERIFY(finish(reply).ok);
    }

    void requests_are_given_up_after_fifteen_seconds_without_progress()
    {
        auto* manager = m_api->findChild<QNetworkAccessManager*>();
        QVERIFY(manager);
        QCOMPARE(manager->transferTimeout(), 15000);
        manager->setTransferTimeout(500); // enough for a busy machine to connect and send
        m_server->on("GET", "/slow", StubAnswer::held());
        const Answer answer = read(u"/slow"_s);
        QVERIFY(answer.document.isNull());
        QCOMPARE(answer.error, u"Operation canceled (%1)"_s.arg(m_server->url()));
    }

    void a_failed_read_passes_the_servers_message()
    {
        m_server->on("GET", "/x", StubAnswer::message(u"<b>No</b> %1 such"_s, 403));
        const Answer answer = read(u"/x"_s);
        QVERIFY(answer.document.isNull());
        QCOMPARE(answer.error, u"<b>No</b> %1 such"_s);
    }

    void a_failed_read_with_another_body_passes_the_text_of_qt_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("html") << "<html><body>Bad gateway</body></html>"_ba;
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("message is a number") << R"({"message":5})"_ba;
        QTest::newRow("message is empty") << R"({"message":""})"_ba;
        QTest::newRow("array") << R"(["message"])"_ba;
        QTest::newRow("number out of range") << R"({"message":"x","n":1e999})"_ba;
    }
    void a_failed_read_with_another_body_passes_the_text_of_qt()
    {
        QFETCH(const QByteArray, body);
        m_server->on("GET", "/x", StubAnswer::html(body, 502));
        const Answer answer = read(u"/x"_s);
        QVERIFY(answer.document.isNull());
        QVERIFY2(answer.error.contains(u"server replied: Stub"_s), qPrintable(answer.error));
        QVERIFY(!answer.error.contains(u"token-1234"_s));
    }

    void a_body_is_handed_over_as_it_came()
    {
        m_server->on("GET", "/cut", StubAnswer::json("[1.50 ,\n2"));
        m_server->on("GET", "/refused", StubAnswer::message(u"Not today"_s, 400));
        QStringList seen;
        const auto note = [&seen](const QByteArray& body, const QString& error) {
            seen.append(QString::fromLatin1(body) + u'|' + error);
        };
        m_api->getBody(u"/cut"_s, &*m_server, note);
        QTRY_COMPARE(seen, QStringList(u"[1.50 ,\n2|"_s));
        m_api->getBody(u"/refused"_s, &*m_server, note);
        QTRY_COMPARE(seen.size(), 2);
        QCOMPARE(seen.at(1), u"|Not today"_s);
    }

    void a_success_that_is_not_json_is_a_null_document_without_error_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("html") << "<html></html>"_ba;
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("cut short") << R"([{"id":"a1"},)"_ba;
        QTest::newRow("number out of range") << R"([{"balance":1e999}])"_ba;
        QTest::newRow("bare number") << "5"_ba;
        QTest::newRow("too deep") << QByteArray(2000, '[') + QByteArray(2000, ']');
    }
    void a_success_that_is_not_json_is_a_null_document_without_error()
    {
        QFETCH(const QByteArray, body);
        m_server->on("GET", "/x", StubAnswer::html(body, 200));
        const Answer answer = read(u"/x"_s);
        QVERIFY(answer.document.isNull());
        QCOMPARE(answer.error, QString());
    }

    void callbacks_run_in_the_order_of_completion()
    {
        m_server->on("GET", "/first", StubAnswer::held());
        m_server->on("GET", "/second", StubAnswer::json("[]"));
        QStringList order;
        m_api->get(u"/first"_s, [&](const QJsonDocument&, const QString&) { order.append(u"first"_s); });
        m_api->get(u"/second"_s, [&](const QJsonDocument&, const QString&) { order.append(u"second"_s); });
        QTRY_COMPARE(order.size(), 1);
        QTRY_VERIFY(m_server->heldCount() > 0);
        m_server->release(StubAnswer::json("[]"));
        QTRY_COMPARE(order, QStringList({u"second"_s, u"first"_s}));
    }

    void every_401_of_a_read_says_unauthorized_before_its_callback()
    {
        const StubAnswer expired = StubAnswer::message(u"Token expired"_s, 401);
        m_server->once("GET", "/x", expired);
        m_server->once("GET", "/x", expired.with("WWW-Authenticate", "Bearer error=\"invalid_token\""));
        QStringList events;
        connect(&*m_api, &ApiClient::unauthorized, this, [&] { events.append(u"unauthorized"_s); });
        for (int i = 0; i < 2; ++i) {
            const qsizetype before = events.size();
            m_api->get(u"/x"_s, [&](const QJsonDocument&, const QString& error) { events.append(error); });
            QTRY_COMPARE(events.size(), before + 2);
        }
        QCOMPARE(events,
            QStringList({u"unauthorized"_s, u"Token expired"_s, u"unauthorized"_s, u"Token expired"_s}));
    }

    void a_401_of_a_change_is_left_to_its_caller()
    {
        const StubAnswer challenge
            = StubAnswer::message(u"Token expired"_s, 401).with("WWW-Authenticate", "Basic realm=\"x\"");
        m_server->on("POST", "/x", challenge);
        m_server->on("PUT", "/x", challenge);
        m_server->on("DELETE", "/x", challenge);
        const QSignalSpy unauthorized(&*m_api, &ApiClient::unauthorized);
        for (QNetworkReply* reply :
            {m_api->post(u"/x"_s, {}), m_api->put(u"/x"_s, {}), m_api->del(u"/x"_s)}) {
            const ReplyOutcome outcome = finish(reply);
            QVERIFY(!outcome.ok);
            QCOMPARE(outcome.status, 401);
            QCOMPARE(outcome.error, u"Token expired"_s);
        }
        QCOMPARE(unauthorized.size(), 0);
        QCOMPARE(m_server->requests().size(), 3);
    }

    void changes_without_an_answer_are_known_and_sign_ins_are_not()
    {
        for (const char* method : {"POST", "PUT", "DELETE", "GET"}) {
            for (const char* path : {"/a", "/b", "/c", "/api/auth/login"})
                m_server->on(method, path, StubAnswer::held());
        }
        QNetworkReply* const first = m_api->post(u"/a"_s, {{u"lots"_s, 0.5}, {u"note"_s, u"%1"_s}});
        (void)m_api->put(u"/b"_s, {});
        (void)m_api->del(u"/b"_s);
        m_api->get(u"/c"_s, [](const QJsonDocument&, const QString&) {});
        m_api->login(u"a@b.c"_s, u"secret password"_s);
        QTRY_COMPARE(m_server->heldCount(), 5);
        QCOMPARE(m_api->unansweredChanges(),
            QStringList({uR"(POST /a {"lots":0.5,"note":"%1"})"_s, u"PUT /b {}"_s, u"DELETE /b"_s}));
        m_server->release(StubAnswer::message(u"No"_s, 400), "/a");
        QTRY_VERIFY(first->isFinished());
        QCOMPARE(m_api->unansweredChanges(), QStringList({u"PUT /b {}"_s, u"DELETE /b"_s}));
    }

    void cookies_are_neither_kept_nor_sent()
    {
        m_server->on("GET", "/x", StubAnswer::json("[]").with("Set-Cookie", "session=1; Path=/"));
        read(u"/x"_s);
        read(u"/x"_s);
        QCOMPARE(m_server->count("GET", "/x"), 2);
        QVERIFY(!m_server->last("GET", "/x").hasHeader("Cookie"));
    }

    void a_cookie_that_is_there_is_not_sent()
    {
        QNetworkAccessManager manager;
        const QUrl url(TerminalSettings::instance().serverUrl() + u"/x"_s);
        QVERIFY(manager.cookieJar()->setCookiesFromUrl({QNetworkCookie("session", "1")}, url));
        m_server->on("GET", "/x", StubAnswer::json("[]"));
        QVERIFY(finish(manager.get(QNetworkRequest(url))).ok);
        QVERIFY(m_server->last("GET", "/x").hasHeader("Cookie"));
        QVERIFY(finish(manager.get(safeRequest(url))).ok);
        QCOMPARE(m_server->count("GET", "/x"), 2);
        QVERIFY(!m_server->last("GET", "/x").hasHeader("Cookie"));
    }

    void paths_that_reach_elsewhere_are_refused_before_sending_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("another host") << u"@%1/x"_s;
        QTest::newRow("another port") << u"0/x"_s;
        QTest::newRow("parent") << u"/api/trades/close/.."_s;
        QTest::newRow("encoded parent") << u"/api/trades/close/%2e%2e"_s;
        QTest::newRow("mixed parent") << u"/api/trades/close/.%2E/place"_s;
        QTest::newRow("fragment") << u"/api/trades/close/7#8"_s;
        QTest::newRow("empty") << QString();
    }
    void paths_that_reach_elsewhere_are_refused_before_sending()
    {
        StubHttpServer other;
        QFETCH(QString, path);
        path.replace(u"%1"_s, other.url().mid(7));
        const Answer answer = read(path);
        QCOMPARE(answer.error, u"The request address is not valid"_s);
        QVERIFY(answer.document.isNull());
        QCOMPARE(m_server->requests().size(), 0);
        QCOMPARE(other.requests().size(), 0);
    }

    void an_address_that_names_no_server_is_an_error_with_a_text_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("empty") << QString();
        QTest::newRow("broken brackets") << u"http://[::1"_s;
        QTest::newRow("broken port") << u"http://127.0.0.1:port"_s;
    }
    void an_address_that_names_no_server_is_an_error_with_a_text()
    {
        QFETCH(const QString, address);
        TerminalSettings::instance().setServerUrl(address);
        QCOMPARE(read(u"/api/accounts"_s).error, u"The request address is not valid"_s);
        QCOMPARE(
            finish(m_api->post(u"/api/trades/place"_s, {})).error, u"The request address is not valid"_s);
        QSignalSpy failed(&*m_api, &ApiClient::loginFailed);
        m_api->login(u"a@b.c"_s, u"pw"_s);
        QTRY_COMPARE(failed.size(), 1);
        QCOMPARE(failed.at(0).at(0).toString(), u"The request address is not valid"_s);
    }

    void a_refused_change_finishes_from_the_event_loop_with_an_error()
    {
        QNetworkReply* reply = m_api->post(u"/api/trades/close/%2e%2e"_s, {});
        const QSignalSpy finished(reply, &QNetworkReply::finished);
        QVERIFY(!reply->isFinished());
        const ReplyOutcome outcome = finish(reply);
        QCOMPARE(finished.size(), 1);
        QVERIFY(!outcome.ok);
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.error, u"The request address is not valid"_s);
        QCOMPARE(m_server->requests().size(), 0);
    }

    void a_callback_is_dropped_with_its_context()
    {
        m_server->on("GET", "/x", StubAnswer::held());
        const QSignalSpy unauthorized(&*m_api, &ApiClient::unauthorized);
        int calls = 0;
        auto context = std::make_unique<QObject>();
        m_api->get(u"/x"_s, context.get(), [&](const QJsonDocument&, const QString&) { ++calls; });
        QTRY_COMPARE(m_server->heldCount(), 1);
        context.reset();
        m_server->release(StubAnswer::message(u"no"_s, 401));
        QTRY_COMPARE(unauthorized.size(), 1);
        QCOMPARE(calls, 0);
    }

    void a_callback_is_dropped_with_the_client()
    {
        m_server->on("GET", "/x", StubAnswer::held());
        int calls = 0;
        m_api->get(u"/x"_s, [&](const QJsonDocument&, const QString&) { ++calls; });
        m_api->get(u"/x"_s, this, [&](const QJsonDocument&, const QString&) { ++calls; });
        QTRY_COMPARE(m_server->heldCount(), 2);
        m_api.reset();
        QTRY_COMPARE(m_server->heldCount(), 0);
        QCOMPARE(calls, 0);
    }

    void the_client_may_be_deleted_inside_its_callback()
    {
        m_server->on("GET", "/x", StubAnswer::json("[]"));
        auto* client = new ApiClient(TerminalSettings::instance());
        bool called = false;
        client->get(u"/x"_s, [&called, client](const QJsonDocument&, const QString&) {
            delete client;
            called = true;
        });
        QTRY_VERIFY(called);
        QCOMPARE(read(u"/x"_s).error, QString());
    }

    void the_client_may_be_deleted_on_unauthorized()
    {
        m_server->on("GET", "/x", StubAnswer::message(u"no"_s, 401));
        auto* client = new ApiClient(TerminalSettings::instance());
        bool called = false;
        bool unauthorized = false;
        connect(client, &ApiClient::unauthorized, this, [&] {
            delete client;
            unauthorized = true;
        });
        client->get(u"/x"_s, [&](const QJsonDocument&, const QString&) { called = true; });
        QTRY_VERIFY(unauthorized);
        QVERIFY(!called);
    }

    void a_client_knows_only_the_settings_it_was_given()
    {
        const QTemporaryDir folder;
        TerminalSettings own(folder.filePath(u"own.conf"_s));
        own.setServerUrl(m_server->url());
        own.setToken(u"own-token"_s);
        TerminalSettings::instance().setServerUrl(u"http://127.0.0.1:1"_s);
        TerminalSettings::instance().setEmail(u"other@b.c"_s);
        m_api.emplace(own);

        m_server->on("GET", "/x", StubAnswer::json("[]"));
        QCOMPARE(read(u"/x"_s).error, QString());
        QCOMPARE(m_server->last("GET", "/x").header("Authorization"), "Bearer own-token"_ba);

        m_server->on("POST", "/api/auth/login", StubAnswer::json(R"({"token":"new-token"})"));
        QSignalSpy succeeded(&*m_api, &ApiClient::loginSucceeded);
        m_api->login(u"own@b.c"_s, u"pw"_s);
        QVERIFY(succeeded.wait());
        QCOMPARE(own.email(), u"own@b.c"_s);
        QCOMPARE(own.token(), u"new-token"_s);
        QCOMPARE(TerminalSettings::instance().email(), u"other@b.c"_s);
        QCOMPARE(TerminalSettings::instance().token(), u"token-1234"_s);
        m_api.reset(); // before its settings
    }
};

TAVORAN_TEST(TestApiClient)
#include "tst_ApiClient.moc"
