#include "chart/data/TradeLevels.h"
#include "support/TestMain.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

QJsonObject buy(const QJsonObject& more = {})
{
    QJsonObject trade{{u"id"_s, u"0123456789abcdef"_s}, {u"symbol"_s, u"EURUSD"_s}, {u"type"_s, u"BUY"_s},
        {u"lotSize"_s, 0.1}, {u"entryPrice"_s, 1.1}, {u"stopLoss"_s, 1.05}, {u"takeProfit"_s, 1.2}};
    for (auto it = more.begin(); it != more.end(); ++it)
        trade.insert(it.key(), it.value());
    return trade;
}

} // namespace

class tst_TradeLevels final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLevelIsDashedAndFixedUnlessSaidOtherwise()
    {
        const TradeLevel level;
        QCOMPARE(level.penStyle, Qt::DashLine);
        QVERIFY(!level.draggable);
    }

    void aBuyHasAnEntryAStopAndATarget()
    {
        const QList<TradeLevel> levels = buildTradeLevels(u"EURUSD"_s, {buy()}, {});
        QCOMPARE(levels.size(), 3);

        QCOMPARE(levels[0].tradeId, u"0123456789abcdef"_s);
        QCOMPARE(levels[0].kind, u"ENTRY"_s);
        QCOMPARE(levels[0].price, 1.1);
        QCOMPARE(levels[0].label, u"buy 0.10 #01234567"_s);
        QCOMPARE(levels[0].color.name(), u"#3ba7ff"_s);
        QCOMPARE(levels[0].penStyle, Qt::SolidLine);
        QVERIFY(!levels[0].draggable);

        QCOMPARE(levels[1].kind, u"SL"_s);
        QCOMPARE(levels[1].price, 1.05);
        QCOMPARE(levels[1].label, u"sl #01234567"_s);
        QCOMPARE(levels[1].color.name(), u"#ff4a4a"_s);
        QCOMPARE(levels[1].penStyle, Qt::DashLine);
        QVERIFY(levels[1].draggable);

        QCOMPARE(levels[2].kind, u"TP"_s);
        QCOMPARE(levels[2].price, 1.2);
        QCOMPARE(levels[2].label, u"tp #01234567"_s);
        QCOMPARE(levels[2].color.name(), u"#00e676"_s);
        QCOMPARE(levels[2].penStyle, Qt::DashLine);
        QVERIFY(levels[2].draggable);
    }

    void aSellIsRedAndAnythingThatIsNotBuyCountsAsSell()
    {
        for (const QString& type : {u"SELL"_s, u"buy"_s, QString()}) {
            const QList<TradeLevel> levels = buildTradeLevels(u"EURUSD"_s, {buy({{u"type"_s, type}})}, {});
            QCOMPARE(levels[0].label, u"sell 0.10 #01234567"_s);
            QCOMPARE(levels[0].color.name(), u"#ff4a4a"_s);
        }
    }

    void levelsOfZeroOrWithoutANumberAreLeftOut_data()
    {
        QTest::addColumn<QJsonValue>("level");
        QTest::newRow("zero") << QJsonValue(0);
        QTest::newRow("zero as text") << QJsonValue(u"0.00000"_s);
        QTest::newRow("null") << QJsonValue();
        QTest::newRow("no number") << QJsonValue(u"none"_s);
        QTest::newRow("not a number") << QJsonValue(u"nan"_s);
        QTest::newRow("absurd") << QJsonValue(1e308);
        QTest::newRow("an object") << QJsonValue(QJsonObject());
    }
    void levelsOfZeroOrWithoutANumberAreLeftOut()
    {
        QFETCH(QJsonValue, level);
        const QJsonObject trade = buy({{u"stopLoss"_s, level}, {u"takeProfit"_s, level}});
        const QList<TradeLevel> levels = buildTradeLevels(u"EURUSD"_s, {trade}, {});
        QCOMPARE(levels.size(), 1);
        QCOMPARE(levels[0].kind, u"ENTRY"_s);
        QVERIFY(buildTradeLevels(u"EURUSD"_s,
            {buy({{u"entryPrice"_s, level}, {u"stopLoss"_s, level}, {u"takeProfit"_s, level}})},
            {buy({{u"pendingPrice"_s, level}})})
                    .isEmpty());
    }

    void aPendingOrderIsOneDraggablePriceLine()
    {
        const QJsonObject order = buy({{u"orderKind"_s, u"BUY_LIMIT"_s}, {u"pendingPrice"_s, 1.07}});
        const QList<TradeLevel> levels = buildTradeLevels(u"EURUSD"_s, {}, {order});
        QCOMPARE(levels.size(), 1);
        QCOMPARE(levels[0].kind, u"PRICE"_s);
        QCOMPARE(levels[0].price, 1.07);
        QCOMPARE(levels[0].label, u"BUY_LIMIT 0.10 #01234567"_s);
        QCOMPARE(levels[0].color.name(), u"#ffa726"_s);
        QCOMPARE(levels[0].penStyle, Qt::DashLine);
        QVERIFY(levels[0].draggable);
    }

    void numbersMayArriveAsStrings()
    {
        const QJsonObject trade = buy({{u"lotSize"_s, u"1.5"_s}, {u"entryPrice"_s, u"1.11"_s},
            {u"stopLoss"_s, u"1.0750"_s}, {u"takeProfit"_s, u"1.25"_s}});
        const QJsonObject order = buy({{u"lotSize"_s, u"0.2"_s}, {u"pendingPrice"_s, u"1.0625"_s}});
        const QList<TradeLevel> levels = buildTradeLevels(u"EURUSD"_s, {trade}, {order});
        QCOMPARE(levels.size(), 4);
        QCOMPARE(levels[0].label, u"buy 1.50 #01234567"_s);
        QCOMPARE(levels[0].price, 1.11);
        QCOMPARE(levels[1].price, 1.075);
        QCOMPARE(levels[2].price, 1.25);
        QCOMPARE(levels[3].price, 1.0625);
        QVERIFY(levels[3].label.contains(u" 0.20 #"_s));
    }

    void otherSymbolsAreLeftOut()
    {
        const QJsonObject other = buy({{u"symbol"_s, u"eurusd"_s}, {u"pendingPrice"_s, 1.0}});
        QVERIFY(buildTradeLevels(u"EURUSD"_s, {other}, {other}).isEmpty());
    }

    void shortIdsHaveAtMostEightCharacters()
    {
        QCOMPARE(buildTradeLevels(u"EURUSD"_s, {buy({{u"id"_s, u"42"_s}})}, {})[0].label, u"buy 0.10 #42"_s);
    }

    void everyLevelCarriesTheWholeId()
    {
        const QList<TradeLevel> levels
            = buildTradeLevels(u"EURUSD"_s, {buy()}, {buy({{u"pendingPrice"_s, 1.07}})});
        QCOMPARE(levels.size(), 4);
        for (const TradeLevel& level : levels)
            QCOMPARE(level.tradeId, u"0123456789abcdef"_s);
    }

    void serverTextIsNeverSubstitutedAgain()
    {
        const QJsonObject order
            = buy({{u"id"_s, u"%1%2\n%3"_s}, {u"orderKind"_s, u"%2 %3"_s}, {u"pendingPrice"_s, 1.0}});
        QCOMPARE(buildTradeLevels(u"EURUSD"_s, {}, {order})[0].label, u"%2 %3 0.10 #%1%2 %3"_s);
    }

    void elementsOfAWrongTypeAreSkipped()
    {
        const QJsonArray rows{1, u"EURUSD"_s, QJsonValue::Null, QJsonArray{buy()}, QJsonObject()};
        QVERIFY(buildTradeLevels(u"EURUSD"_s, rows, rows).isEmpty());
    }
};

TAVORAN_TEST(tst_TradeLevels)
#include "tst_TradeLevels.moc"
