#include "net/records/OrderBody.h"
#include "support/TestMain.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

OrderTicket marketBuy()
{
    return {.symbol = u"EURUSD"_s, .lots = 0.1};
}

} // namespace

class TestOrderBody final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aMarketOrderSendsItsSideAsType()
    {
        OrderTicket ticket = marketBuy();
        QCOMPARE(orderBody(ticket),
            (QJsonObject{{"symbol"_L1, "EURUSD"_L1}, {"lotSize"_L1, 0.1}, {"orderKind"_L1, "MARKET"_L1},
                {"type"_L1, "BUY"_L1}}));
        ticket.side = Side::Sell;
        ticket.stopLoss = 1.075;
        ticket.comment = u"note"_s;
        QCOMPARE(orderBody(ticket),
            (QJsonObject{{"symbol"_L1, "EURUSD"_L1}, {"lotSize"_L1, 0.1}, {"orderKind"_L1, "MARKET"_L1},
                {"type"_L1, "SELL"_L1}, {"stopLoss"_L1, 1.075}, {"comment"_L1, "note"_L1}}));
    }

    void aPendingOrderHasNoTypeKey_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("buy");
        QTest::addColumn<QString>("kind");
        QTest::newRow("buy limit") << 1 << true << u"BUY_LIMIT"_s;
        QTest::newRow("sell limit") << 1 << false << u"SELL_LIMIT"_s;
        QTest::newRow("buy stop") << 2 << true << u"BUY_STOP"_s;
        QTest::newRow("sell stop") << 2 << false << u"SELL_STOP"_s;
        QTest::newRow("a stop limit is sent as a stop") << 3 << true << u"BUY_STOP"_s;
    }
    void aPendingOrderHasNoTypeKey()
    {
        QFETCH(int, type);
        QFETCH(bool, buy);
        QFETCH(QString, kind);
        OrderTicket ticket = marketBuy();
        ticket.type = OrderType(type);
        ticket.side = buy ? Side::Buy : Side::Sell;
        ticket.triggerPrice = 1.07;
        ticket.takeProfit = 1.1;
        QCOMPARE(orderBody(ticket),
            (QJsonObject{{"symbol"_L1, "EURUSD"_L1}, {"lotSize"_L1, 0.1}, {"orderKind"_L1, kind},
                {"pendingPrice"_L1, 1.07}, {"takeProfit"_L1, 1.1}}));
    }

    void aMarketOrderNeverSendsATriggerPrice()
    {
        OrderTicket ticket = marketBuy();
        ticket.triggerPrice = 1.07;
        QVERIFY(!orderBody(ticket).contains("pendingPrice"_L1));
    }

    void levelsAreSentOnlyAboveZero_data()
    {
        QTest::addColumn<double>("level");
        QTest::addColumn<bool>("sent");
        QTest::newRow("positive") << 1.05 << true;
        QTest::newRow("tiny") << 1e-8 << true;
        QTest::newRow("zero") << 0.0 << false;
        QTest::newRow("negative") << -1.0 << false;
        QTest::newRow("not a number") << std::nan("") << false;
        QTest::newRow("infinite") << HUGE_VAL << false;
    }
    void levelsAreSentOnlyAboveZero()
    {
        QFETCH(double, level);
        QFETCH(bool, sent);
        OrderTicket ticket = marketBuy();
        ticket.stopLoss = level;
        QCOMPARE(orderBody(ticket).contains("stopLoss"_L1), sent);
        QVERIFY(!orderBody(ticket).contains("takeProfit"_L1));
        ticket = marketBuy();
        ticket.takeProfit = level;
        QCOMPARE(orderBody(ticket).contains("takeProfit"_L1), sent);
        QVERIFY(!orderBody(ticket).contains("stopLoss"_L1));
    }

    void theCommentIsTrimmedAndNeverEmpty()
    {
        OrderTicket ticket = marketBuy();
        QVERIFY(!orderBody(ticket).contains("comment"_L1));
        ticket.comment = u" \t "_s;
        QVERIFY(!orderBody(ticket).contains("comment"_L1));
        ticket.comment = u"  two words "_s;
        QCOMPARE(orderBody(ticket).value("comment"_L1).toString(), u"two words"_s);
    }

    void pendingOrdersNeedATriggerPrice_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("price");
        QTest::addColumn<bool>("lacks");
        QTest::newRow("market needs none") << 0 << 0.0 << false;
        QTest::newRow("limit with") << 1 << 1.07 << false;
        QTest::newRow("limit without") << 1 << 0.0 << true;
        QTest::newRow("stop negative") << 2 << -1.0 << true;
        QTest::newRow("stop not a number") << 2 << std::nan("") << true;
        QTest::newRow("stop infinite") << 2 << HUGE_VAL << true;
    }
    void pendingOrdersNeedATriggerPrice()
    {
        QFETCH(int, type);
        QFETCH(double, price);
        QFETCH(bool, lacks);
        OrderTicket ticket = marketBuy();
        ticket.type = OrderType(type);
        ticket.triggerPrice = price;
        QCOMPARE(lacksTriggerPrice(ticket), lacks);
    }

    void numbersAreSentAsNumbersAndNamesAsTheyAre()
    {
        OrderTicket ticket = marketBuy();
        ticket.symbol = u"US\"30 %1"_s;
        ticket.lots = 0.01;
        const QByteArray wire = QJsonDocument(orderBody(ticket)).toJson(QJsonDocument::Compact);
        const QByteArray lots = "\"lotSize\":0.01";
        QVERIFY(wire.contains(lots));
        QCOMPARE(QJsonDocument::fromJson(wire).object().value("symbol"_L1).toString(), ticket.symbol);
    }
};

TAVORAN_TEST(TestOrderBody)
#include "tst_OrderBody.moc"
