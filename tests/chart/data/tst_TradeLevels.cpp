#include "chart/data/TradeLevels.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

records::Trade buy()
{
    return records::position("0123456789abcdef").at(1.1).stopLoss(1.05).takeProfit(1.2);
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
            const QList<TradeLevel> levels = buildTradeLevels(u"EURUSD"_s, {buy().with("type", type)}, {});
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
        const QJsonObject trade = buy().stopLoss(level).takeProfit(level);
        const QList<TradeLevel> levels = buildTradeLevels(u"EURUSD"_s, {trade}, {});
        QCOMPARE(levels.size(), 1);
        QCOMPARE(levels[0].kind, u"ENTRY"_s);
        QVERIFY(buildTradeLevels(
            u"EURUSD"_s, {buy().at(level).stopLoss(level).takeProfit(level)}, {buy().awaits(level)})
                    .isEmpty());
    }

    void aPendingOrderIsOneDraggablePriceLine()
    {
        const QJsonObject order = buy().with("orderKind", "BUY_LIMIT").awaits(1.07);
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
        const QJsonObject trade
            = buy().with("lotSize", "1.5").at("1.11").stopLoss("1.0750").takeProfit("1.25");
        const QJsonObject order = buy().with("lotSize", "0.2").awaits("1.0625");
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
        const QJsonObject other = buy().symbol("eurusd").awaits(1.0);
        QVERIFY(buildTradeLevels(u"EURUSD"_s, {other}, {other}).isEmpty());
    }

    void shortIdsHaveAtMostEightCharacters()
    {
        QCOMPARE(buildTradeLevels(u"EURUSD"_s, {buy().with("id", "42")}, {})[0].label, u"buy 0.10 #42"_s);
    }

    void everyLevelCarriesTheWholeId()
    {
        const QList<TradeLevel> levels = buildTradeLevels(u"EURUSD"_s, {buy()}, {buy().awaits(1.07)});
        QCOMPARE(levels.size(), 4);
        for (const TradeLevel& level : levels)
            QCOMPARE(level.tradeId, u"0123456789abcdef"_s);
    }

    void serverTextIsNeverSubstitutedAgain()
    {
        const QJsonObject order = buy().with("id", "%1%2\n%3").with("orderKind", "%2 %3").awaits(1.0);
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
