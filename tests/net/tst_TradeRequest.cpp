#include "net/ApiFixture.h"
#include "net/TradeRequest.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

#include <QNetworkReply>
#include <QPointer>
#include <QtTest>
#include <functional>
#include <type_traits>

using namespace Qt::StringLiterals;
using fixtures::parse;

// Two of the same order would be twice the money.
static_assert(!std::is_copy_constructible_v<TradeRequest> && !std::is_copy_assignable_v<TradeRequest>);

namespace {

using Maker = std::function<std::optional<TradeRequest>(const QJsonObject& trade)>;

std::optional<TradeRequest> placed(const QJsonObject&)
{
    return TradeRequest::place(parse(R"({"symbol":"EURUSD","lotSize":0.1})"), u"42"_s);
}

std::optional<TradeRequest> modified(const QJsonObject& trade)
{
    return TradeRequest::modify(trade, {.stopLoss = 0.0, .takeProfit = std::nullopt, .pendingPrice = 1.2});
}

std::optional<TradeRequest> moved(const QJsonObject& trade)
{
    return TradeRequest::moveLevel(trade, LevelKind::TakeProfit, 1.3);
}

QJsonObject tradeOf(const QString& id)
{
    return {{u"id"_s, id}, {u"stopLoss"_s, u"1.05"_s}};
}

} // namespace

Q_DECLARE_METATYPE(Maker)

class TestTradeRequest final : public fixtures::ApiTest {
    Q_OBJECT

    static void addRequests()
    {
        addRequestsById();
        QTest::newRow("place") << Maker(placed) << "POST /api/trades/place"_ba
                               << parse(R"({"symbol":"EURUSD","lotSize":0.1,"accountId":"42"})");
    }

    static void addRequestsById()
    {
        QTest::addColumn<Maker>("make");
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QJsonObject>("body");
        QTest::newRow("close") << Maker(TradeRequest::close) << "POST /api/trades/close/"_ba << QJsonObject();
        QTest::newRow("cancel") << Maker(TradeRequest::cancel) << "POST /api/trades/cancel/"_ba
                                << QJsonObject();
        QTest::newRow("modify") << Maker(modified) << "PUT /api/trades/modify/"_ba
                                << parse(R"({"stopLoss":0,"pendingPrice":1.2})");
        QTest::newRow("move a level")
            << Maker(moved) << "PUT /api/trades/modify/"_ba << parse(R"({"stopLoss":1.05,"takeProfit":1.3})");
    }

    /// Sends it and waits for what becomes of it.
    ReplyOutcome outcomeOf(TradeRequest request)
    {
        const QObject waiter;
        QList<ReplyOutcome> told;
        std::move(request).send(*m_api, &waiter, [&](const ReplyOutcome& outcome) { told.append(outcome); });
        const bool ended = QTest::qWaitFor([&] { return !told.isEmpty() && replies() == 0; }, 10'000);
        return ended && told.size() == 1 ? told.first() : ReplyOutcome{};
    }

    [[nodiscard]] int replies() const { return int(m_api->findChildren<QNetworkReply*>().size()); }

private Q_SLOTS:
    void init() { serve(); }

    void cleanup() { end(); }

    void each_request_has_its_verb_path_and_body_data() { addRequests(); }
    void each_request_has_its_verb_path_and_body()
    {
        QFETCH(Maker, make);
        QFETCH(QByteArray, line);
        QFETCH(QJsonObject, body);
        if (line.endsWith('/'))
            line += "t1";
        const QList<QByteArray> words = line.split(' ');
        m_server->on(words.at(0), words.at(1), StubAnswer::json("{}"));
        const ReplyOutcome outcome = outcomeOf(*make(tradeOf(u"t1"_s)));
        QVERIFY2(outcome.ok, qPrintable(outcome.error));
        QCOMPARE(m_server->requests().size(), 1);
        QCOMPARE(m_server->requests().first().json(), body);
    }

    void an_order_is_for_the_account_it_is_placed_for()
    {
        m_server->on("POST", "/api/trades/place", StubAnswer::json("{}"));
        const ReplyOutcome outcome
            = outcomeOf(TradeRequest::place(parse(R"({"accountId":"another","symbol":"X"})"), u"42"_s));
        QVERIFY(outcome.ok);
        QCOMPARE(m_server->requests().first().body, R"({"accountId":"42","symbol":"X"})"_ba);
    }

    void an_id_stays_one_segment_of_the_path_data() { addRequestsById(); }

    void an_id_stays_one_segment_of_the_path()
    {
        QFETCH(Maker, make);
        QFETCH(QByteArray, line);
        outcomeOf(*make(tradeOf(u"a/b?c=1#%2e ü"_s)));
        QCOMPARE(m_server->requests().size(), 1);
        const StubRequest request = m_server->requests().first();
        QCOMPARE(request.method + ' ' + request.target, line + "a%2Fb%3Fc%3D1%23%252e%20%C3%BC");
    }

    void a_trade_without_a_usable_id_has_no_request_data() { addRequestsById(); }

    void a_trade_without_a_usable_id_has_no_request()
    {
        QFETCH(Maker, make);
        for (const QString& id : {u""_s, u"."_s, u".."_s})
            QVERIFY2(!make(tradeOf(id)), qPrintable(id));
        QVERIFY(!make({}));
        QVERIFY(make(tradeOf(u"..."_s)));
    }

    void a_request_arrives_once_when_the_server_closes_after_reading_it_data() { addRequests(); }

    void a_request_arrives_once_when_the_server_closes_after_reading_it()
    {
        QFETCH(Maker, make);
        QFETCH(QByteArray, line);
        if (line.endsWith('/'))
            line += "t1";
        const QList<QByteArray> words = line.split(' ');
        m_server->on(words.at(0), words.at(1), StubAnswer::closed());
        const ReplyOutcome outcome = outcomeOf(*make(tradeOf(u"t1"_s)));
        QCOMPARE(outcome.error, u"Connection closed"_s);
        QVERIFY(outcome.isUnanswered());
        QCOMPARE(m_server->requests().size(), 1);
    }

    void a_request_that_was_sent_is_not_sent_again_data() { addRequests(); }

    void a_request_that_was_sent_is_not_sent_again()
    {
        QFETCH(Maker, make);
        const QObject waiter;
        int told = 0;
        TradeRequest request = *make(tradeOf(u"t1"_s));
        for (int sending = 0; sending < 2; ++sending) {
            // NOLINTNEXTLINE(bugprone-use-after-move): what becomes of such a mistake is the point
            std::move(request).send(*m_api, &waiter, [&](const ReplyOutcome&) { ++told; });
        }
        QTRY_COMPARE(told, 2);
        QCOMPARE(m_server->requests().size(), 1);
    }

    void a_waiter_that_is_gone_hears_nothing_and_the_reply_goes()
    {
        m_server->on("POST", "/api/trades/close/t1", StubAnswer::held());
        int told = 0;
        {
            const QObject waiter;
            TradeRequest::close(tradeOf(u"t1"_s)).value().send(*m_api, &waiter, [&](const ReplyOutcome&) {
                ++told;
            });
            QTRY_COMPARE(m_server->heldCount(), 1);
        }
        QCOMPARE(replies(), 1);
        QVERIFY(m_server->release(StubAnswer::json("{}")));
        QTRY_COMPARE(replies(), 0);
        QCOMPARE(told, 0);
    }

    void a_waiter_may_go_while_it_is_told()
    {
        m_server->on("POST", "/api/trades/close/t1", StubAnswer::message(u"No"_s, 400));
        const QPointer<QObject> waiter(new QObject);
        QString error;
        TradeRequest::close(tradeOf(u"t1"_s))
            .value()
            .send(*m_api, waiter, [&error, waiter](const ReplyOutcome& outcome) {
                delete waiter.data();
                error = outcome.error; // what the callback holds must have outlived the waiter
            });
        QTRY_COMPARE(replies(), 0);
        QVERIFY(!waiter);
        QCOMPARE(error, u"No"_s);
    }

    void a_client_that_is_gone_leaves_its_waiters_untold()
    {
        m_server->on("POST", "/api/trades/close/t1", StubAnswer::held());
        const QObject waiter;
        int told = 0;
        TradeRequest::close(tradeOf(u"t1"_s)).value().send(*m_api, &waiter, [&](const ReplyOutcome&) {
            ++told;
        });
        QTRY_COMPARE(m_server->heldCount(), 1);
        m_api.reset();
        QTRY_COMPARE(m_server->heldCount(), 0);
        QCOMPARE(told, 0);
    }
};

TAVORAN_TEST(TestTradeRequest)
#include "tst_TradeRequest.moc"
