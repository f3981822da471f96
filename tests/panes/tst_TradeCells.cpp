#include "panes/TradeCells.h"
#include "support/ParseJson.h"
#include "support/Records.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace tradeCells;
using fixtures::parse;

class TestTradeCells final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // A zone with summer time: the night of 2024-03-31 has no 02:30 here.
        qputenv("TZ", "Europe/Berlin");
        tzset();
    }

    void timesAreShownInTheZoneTheyState_data()
    {
        QTest::addColumn<QString>("iso");
        QTest::addColumn<QString>("shown");
        QTest::newRow("UTC with milliseconds") << u"2024-05-06T07:08:09.123Z"_s << u"2024.05.06 07:08:09"_s;
        QTest::newRow("UTC without") << u"2024-05-06T07:08:09Z"_s << u"2024.05.06 07:08:09"_s;
        QTest::newRow("offset") << u"2024-05-06T07:08:09+05:30"_s << u"2024.05.06 07:08:09"_s;
        QTest::newRow("no zone") << u"2024-05-06T07:08:09"_s << u"2024.05.06 07:08:09"_s;
        QTest::newRow("no zone, an hour that summer time skips here")
            << u"2024-03-31T02:30:00"_s << u"2024.03.31 02:30:00"_s;
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("no time") << u"yesterday"_s << QString();
        QTest::newRow("no such day") << u"2024-02-30T00:00:00Z"_s << QString();
        QTest::newRow("five-digit year") << u"12024-02-03T00:00:00Z"_s << QString();
    }
    void timesAreShownInTheZoneTheyState()
    {
        QFETCH(QString, iso);
        QFETCH(QString, shown);
        QCOMPARE(timeText(iso), shown);
    }

    void typeLabels_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("label");
        QTest::newRow("market buy") << QByteArray(R"({"orderKind":"MARKET","type":"BUY"})") << u"buy"_s;
        QTest::newRow("no kind") << QByteArray(R"({"type":"SELL"})") << u"sell"_s;
        QTest::newRow("limit") << QByteArray(R"({"orderKind":"BUY_LIMIT","type":"BUY"})") << u"buy limit"_s;
        QTest::newRow("stop") << QByteArray(R"({"orderKind":"SELL_STOP"})") << u"sell stop"_s;
        QTest::newRow("every underscore")
            << QByteArray(R"({"orderKind":"BUY_STOP_LIMIT"})") << u"buy stop limit"_s;
        QTest::newRow("market is compared exactly")
            << QByteArray(R"({"orderKind":"Market","type":"BUY"})") << u"market"_s;
        QTest::newRow("wrong types") << QByteArray(R"({"orderKind":5,"type":[]})") << QString();
    }
    void typeLabels()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, label);
        QCOMPARE(typeLabel(parse(json)), label);
    }

    void onlyBuyIsBlue()
    {
        QCOMPARE(typeColor(parse(R"({"type":"BUY"})")), QColor(u"#3ba7ff"_s));
        QCOMPARE(typeColor(parse(R"({"type":"SELL"})")), QColor(u"#ff4a4a"_s));
        QCOMPARE(typeColor(parse(R"({"type":"buy"})")), QColor(u"#ff4a4a"_s));
        QCOMPARE(typeColor({}), QColor(u"#ff4a4a"_s));
    }

    void aPositionsCells()
    {
        const QJsonObject trade = records::position("0123456789")
                                      .buy("0.5")
                                      .at("1.071234")
                                      .awaits(9)
                                      .stopLoss(1.05)
                                      .takeProfit("1.1")
                                      .profit("-1234.5")
                                      .with("swap", 0.126)
                                      .with("commission", "-1234.5")
                                      .with("createdAt", "2024-05-06T07:08:09Z");
        QCOMPARE(tradeTexts(trade, 4),
            (QStringList{u"EURUSD"_s, u"01234567"_s, u"2024.05.06 07:08:09"_s, u"buy"_s, u"0.50"_s,
                u"1.0712"_s, u"1.0500"_s, u"1.1000"_s, QString(), u"-1,234.50"_s, u"0.13"_s,
                u"-1,234.50"_s}));
    }

    void aPendingOrderShowsItsTriggerPriceAndNoProfit()
    {
        const QJsonObject order = records::pendingOrder("short")
                                      .symbol("X")
                                      .sell(1)
                                      .with("orderKind", "SELL_LIMIT")
                                      .at(7)
                                      .awaits("2.5")
                                      .stopLoss(0)
                                      .takeProfit(-1)
                                      .profit(5)
                                      .without("createdAt");
        QCOMPARE(tradeTexts(order, 2),
            (QStringList{u"X"_s, u"short"_s, QString(), u"sell limit"_s, u"1.00"_s, u"2.50"_s, QString(),
                QString(), QString(), u"0.00"_s, u"0.00"_s, QString()}));
    }

    void anEmptyRecordReadsAsZerosAndEmptyTexts()
    {
        QCOMPARE(tradeTexts({}, 5),
            (QStringList{QString(), QString(), QString(), QString(), u"0.00"_s, u"0.00000"_s, QString(),
                QString(), QString(), u"0.00"_s, u"0.00"_s, u"0.00"_s}));
    }

    void aClosedTradesCells()
    {
        const QJsonObject trade = records::position("0123456789")
                                      .symbol("XAUUSD")
                                      .sell("2")
                                      .at("1900.129")
                                      .closedAt("1890.5")
                                      .stopLoss(0)
                                      .takeProfit(1890.5)
                                      .profit("1234.5")
                                      .with("swap", "-3")
                                      .with("commission", 7)
                                      .with("createdAt", "2024-05-06T07:08:09Z")
                                      .with("closedAt", "2024-05-07T00:00:00Z")
                                      .with("updatedAt", "2024-05-08T00:00:00Z");
        QCOMPARE(historyTexts(trade, 2),
            (QStringList{u"XAUUSD"_s, u"01234567"_s, u"2024.05.06 07:08:09"_s, u"sell"_s, u"2.00"_s,
                u"1900.13"_s, QString(), u"1890.50"_s, u"2024.05.07 00:00:00"_s, u"1890.50"_s, u"7.00"_s,
                u"-3.00"_s, u"1,234.50"_s}));
    }

    void theCloseTimeFallsBackOnlyForNull()
    {
        QCOMPARE(historyTexts(parse(R"({"closedAt":null,"updatedAt":"2024-05-08T00:00:00Z"})"), 2)
                     .at(HistoryCloseTime),
            u"2024.05.08 00:00:00"_s);
        QCOMPARE(historyTexts(parse(R"({"updatedAt":"2024-05-08T00:00:00Z"})"), 2).at(HistoryCloseTime),
            QString());
    }

    void absurdNumbersReadAsZero()
    {
        const QStringList cells = tradeTexts(
            parse(R"({"lotSize":1e308,"entryPrice":"nan","stopLoss":"inf","takeProfit":"1e999","pnl":"x"})"),
            99);
        QCOMPARE(cells.at(TradeVolume), u"0.00"_s);
        QCOMPARE(cells.at(TradePrice), u"0.000000000000000"_s);
        QCOMPARE(cells.at(TradeStopLoss), QString());
        QCOMPARE(cells.at(TradeTakeProfit), QString());
        QCOMPARE(cells.at(TradeProfit), u"0.00"_s);
        QCOMPARE(tradeTexts({}, -7).at(TradePrice), u"0"_s);
    }

    void serverTextsStayOnOneLine()
    {
        const QStringList cells
            = tradeTexts(records::position("1\r2").symbol("A\nB").with("orderKind", "X\tY"), 2);
        QCOMPARE(cells.at(TradeSymbol), u"A B"_s);
        QCOMPARE(cells.at(TradeTicket), u"1 2"_s);
        QCOMPARE(cells.at(TradeType), u"x y"_s);
    }
};

TAVORAN_TEST(TestTradeCells)
#include "tst_TradeCells.moc"
