#include "net/records/TradeRecord.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

using namespace fixtures;
using namespace Qt::StringLiterals;

class TestTradeRecord final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void its_fields_are_read()
    {
        const QJsonObject record = parse(R"({"id":"t1","accountId":"a1","symbol":"EURUSD","type":"SELL",
        "orderKind":"SELL_STOP","lotSize":"0.10","entryPrice":"1.1","exitPrice":1.2,"pendingPrice":1.3,
        "stopLoss":"1.4","takeProfit":1.5,"pnl":"-7.25","margin":50,"swap":-0.5,"commission":"0.7",
        "createdAt":"2024-05-06T07:08:09.000Z","updatedAt":"later","closedAt":"last"})");
        QCOMPARE(trade::id(record), u"t1"_s);
        QCOMPARE(trade::accountId(record), u"a1"_s);
        QCOMPARE(trade::symbol(record), u"EURUSD"_s);
        QCOMPARE(trade::typeText(record), u"SELL"_s);
        QCOMPARE(trade::orderKind(record), u"SELL_STOP"_s);
        QCOMPARE(trade::lots(record), 0.1);
        QCOMPARE(trade::entryPrice(record), 1.1);
        QCOMPARE(trade::exitPrice(record), 1.2);
        QCOMPARE(trade::pendingPrice(record), 1.3);
        QCOMPARE(trade::stopLoss(record), 1.4);
        QCOMPARE(trade::takeProfit(record), 1.5);
        QCOMPARE(trade::profit(record), -7.25);
        QCOMPARE(trade::margin(record), 50.0);
        QCOMPARE(trade::swap(record), -0.5);
        QCOMPARE(trade::commission(record), 0.7);
        QCOMPARE(trade::createdAt(record), u"2024-05-06T07:08:09.000Z"_s);
        QCOMPARE(trade::closedAt(record), u"last"_s);
    }

    void words_that_are_no_sale_buy()
    {
        QCOMPARE(sideOf(sideText(Side::Sell)), Side::Sell);
        for (const QString& text : {sideText(Side::Buy), u"sell"_s, u"SELL "_s, QString()})
            QCOMPARE(sideOf(text), Side::Buy);
    }

    void only_the_word_BUY_is_a_buy()
    {
        QCOMPARE(trade::side(parse(R"({"type":"BUY"})")), Side::Buy);
        for (const char* record : {R"({"type":"SELL"})", R"({"type":"buy"})", R"({"type":null})", "{}"})
            QCOMPARE(trade::side(parse(record)), Side::Sell);
    }

    void only_the_word_PENDING_is_pending()
    {
        QVERIFY(trade::isPending(parse(R"({"status":"PENDING"})")));
        QVERIFY(!trade::isPending(parse(R"({"status":"pending"})")));
        QVERIFY(!trade::isPending({}));
    }

    void a_level_of_zero_is_none()
    {
        for (const char* record : {R"({"stopLoss":0,"takeProfit":"0.00"})", R"({"stopLoss":"no"})", "{}"}) {
            QCOMPARE(trade::stopLoss(parse(record)), std::nullopt);
            QCOMPARE(trade::takeProfit(parse(record)), std::nullopt);
        }
        QCOMPARE(trade::stopLoss(parse(R"({"stopLoss":-1})")), -1.0);
    }

    void a_trade_that_was_not_closed_tells_its_last_change()
    {
        QCOMPARE(trade::closedAt(parse(R"({"updatedAt":"later","closedAt":null})")), u"later"_s);
        QCOMPARE(trade::closedAt(parse(R"({"updatedAt":"later","closedAt":""})")), QString());
        QCOMPARE(trade::closedAt(parse(R"({"updatedAt":"later"})")), QString());
    }
};

TAVORAN_TEST(TestTradeRecord)
#include "tst_TradeRecord.moc"
