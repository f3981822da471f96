#include "net/ApiFixture.h"
#include "support/TestMain.h"

#include <QNetworkReply>
#include <QTcpServer>

using namespace Qt::StringLiterals;
using fixtures::finish;

namespace {

const auto orderPath = u"/api/trades/place"_s;
const QByteArray longBody(1'000'000, ' ');

// Long enough for a busy machine to send the request, or to bring a reply's head, in the time.
constexpr int soon = 500;

} // namespace

/// When a request has taken long enough, and what is said of it then.
class TestApiClientLimits final : public fixtures::ApiTest {
    Q_OBJECT

    void limit(const RequestLimits& limits) { m_api->setLimits(limits); }

    /// Drips until the reply has ended, one byte at each turn of the loop.
    ReplyOutcome finishDripping(QNetworkReply* reply)
    {
        const bool finished = QTest::qWaitFor([&] {
            m_server->drip();
            return reply->isFinished();
        });
        return finished ? finish(reply) : ReplyOutcome{};
    }

    QString readError(const QString& path)
    {
        std::optional<QString> result;
        m_api->get(path, [&](const QJsonDocument&, const QString& error) { result = error; });
        const bool answered = QTest::qWaitFor([&] {
            m_server->drip();
            return result.has_value();
        });
        return answered ? *result : u"(no answer)"_s;
    }

private Q_SLOTS:
    void init() { serve(); }

    void cleanup() { end(); }

    void the_usual_limits_hold_for_reads_and_changes()
    {
        const RequestLimits usual;
        QCOMPARE(usual.silence, 15'000);
        QCOMPARE(usual.read, 60'000);
        QCOMPARE(usual.change, 30'000);
        m_server->on("POST", "/x", StubAnswer::json("{}"));
        const QNetworkReply* change = m_api->post(u"/x"_s, {});
        const auto managers = m_api->findChildren<QNetworkAccessManager*>();
        QCOMPARE(managers.size(), 2); // one for reads, one for changes
        for (const QNetworkAccessManager* manager : managers)
            QCOMPARE(manager->transferTimeout(), usual.silence);
        QCOMPARE(change->manager(), managers.last());
    }

    void a_dripping_read_ends_at_its_limit()
    {
        limit({.read = soon});
        m_server->on("GET", "/x", StubAnswer::dripping(longBody));
        QCOMPARE(readError(u"/x"_s), u"Operation canceled (%1)"_s.arg(m_server->url()));
    }

    void a_dripping_change_ends_at_its_limit_with_an_unknown_outcome()
    {
        limit({.change = soon});
        m_server->on("POST", orderPath.toUtf8(), StubAnswer::dripping(longBody));
        const ReplyOutcome outcome = finishDripping(m_api->post(orderPath, {}));
        QCOMPARE(outcome.status, 200);
        QVERIFY(!outcome.ok);
        QVERIFY(outcome.isUncertain());
        QVERIFY(outcome.isUnanswered());
        QCOMPARE(outcome.error, u"no answer; the order may have been carried out"_s);
        QCOMPARE(m_server->count("POST", orderPath.toUtf8()), 1);
    }

    void a_dripping_refusal_is_a_refusal()
    {
        limit({.change = soon});
        StubAnswer refusal = StubAnswer::dripping(longBody);
        refusal.status = 400;
        m_server->on("POST", orderPath.toUtf8(), refusal);
        const ReplyOutcome outcome = finishDripping(m_api->post(orderPath, {}));
        QCOMPARE(outcome.status, 400);
        QVERIFY(!outcome.isUncertain());
        QCOMPARE(outcome.error, u"refused; the reason did not arrive"_s);
    }

    void an_order_that_nobody_answers_may_have_been_carried_out_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("text");
        QTest::newRow("an order") << orderPath << u"no answer; the order may have been carried out"_s;
        QTest::newRow("another change") << u"/api/drawings"_s << u"no answer; it may have been carried out"_s;
    }
    void an_order_that_nobody_answers_may_have_been_carried_out()
    {
        QFETCH(const QString, path);
        QFETCH(const QString, text);
        limit({.silence = soon});
        m_server->on("POST", path.toUtf8(), StubAnswer::held());
        const ReplyOutcome outcome = finish(m_api->post(path, {}));
        QCOMPARE(outcome.error, text);
        QVERIFY(outcome.isUnanswered());
        QCOMPARE(m_server->count("POST", path.toUtf8()), 1);
    }

    void an_order_that_never_left_says_so()
    {
        // Accepts, and never says a word of the handshake.
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        TerminalSettings::instance().setServerUrl(u"https://127.0.0.1:%1"_s.arg(silent.serverPort()));
        limit({.silence = soon});
        const ReplyOutcome outcome = finish(m_api->post(orderPath, {}));
        QCOMPARE(outcome.error,
            u"not sent: no connection to the server (https://127.0.0.1:%1)"_s.arg(silent.serverPort()));
        QVERIFY(!outcome.ok);
        QVERIFY(!outcome.isUncertain());
    }

    void a_change_with_an_empty_body_is_never_called_unsent()
    {
        limit({.silence = soon});
        m_server->on("DELETE", "/api/drawings/1", StubAnswer::held());
        const ReplyOutcome outcome = finish(m_api->del(u"/api/drawings/1"_s));
        QCOMPARE(outcome.error, u"no answer; it may have been carried out"_s);
        QVERIFY(outcome.isUnanswered());
    }

    void a_dripping_change_with_an_empty_body_ends_at_its_limit()
    {
        limit({.change = soon});
        m_server->on("DELETE", "/api/drawings/1", StubAnswer::dripping(longBody));
        QVERIFY(finishDripping(m_api->del(u"/api/drawings/1"_s)).isUnanswered());
    }

    void a_read_that_waited_in_vain_for_a_connection_says_so()
    {
        limit({.silence = soon});
        m_server->on("GET", "/stuck", StubAnswer::held());
        QStringList errors;
        for (int i = 0; i < 7; ++i)
            m_api->get(
                u"/stuck"_s, [&](const QJsonDocument&, const QString& error) { errors.append(error); });
        QTRY_COMPARE(errors.size(), 7);
        QCOMPARE(errors.count(u"Operation canceled (%1)"_s.arg(m_server->url())), 6);
        QCOMPARE(errors.count(u"not sent: no connection to the server (%1)"_s.arg(m_server->url())), 1);
    }

    void the_longest_time_counts_from_when_a_request_is_sent()
    {
        m_server->on("GET", "/stuck", StubAnswer::held());
        QList<qint64> ends;
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < 7; ++i) {
            limit({.read = i < 6 ? soon : 2 * soon});
            m_api->get(
                u"/stuck"_s, [&](const QJsonDocument&, const QString&) { ends.append(clock.elapsed()); });
        }
        QTRY_COMPARE(ends.size(), 7);
        QCOMPARE(m_server->count("GET", "/stuck"), 7);
        // The last one had no connection before the first had ended. Qt's timers may be early by 5 %.
        const qint64 last = ends.last() - ends.first();
        QVERIFY2(last >= 2 * soon * 9 / 10, qPrintable(QString::number(last)));
    }

    void a_refused_connection_leaves_no_doubt()
    {
        const QString server = m_server->url();
        m_server->shutDown();
        const ReplyOutcome outcome = finish(m_api->post(orderPath, {}));
        QCOMPARE(outcome.error, u"Connection refused (%1)"_s.arg(server));
        QVERIFY(!outcome.isUncertain());
    }

    void an_answer_that_breaks_off_leaves_doubt()
    {
        m_server->on("POST", orderPath.toUtf8(), StubAnswer::closed());
        const ReplyOutcome outcome = finish(m_api->post(orderPath, {}));
        QCOMPARE(outcome.error, u"Connection closed"_s);
        QVERIFY(outcome.isUnanswered());
    }

    void an_error_of_the_server_leaves_doubt_but_is_an_answer()
    {
        m_server->on("POST", orderPath.toUtf8(), StubAnswer::message(u"Later"_s, 503));
        const ReplyOutcome outcome = finish(m_api->post(orderPath, {}));
        QCOMPARE(outcome.error, u"Later"_s);
        QVERIFY(outcome.isUncertain());
        QVERIFY(!outcome.isUnanswered());
    }
};

TAVORAN_TEST(TestApiClientLimits)
#include "tst_ApiClientLimits.moc"
