#include "net/records/LevelsBody.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

#include <QtTest>

using namespace Qt::StringLiterals;
using fixtures::parse;

class TestLevelsBody final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void typedLevelsLeaveEmptyFieldsOut()
    {
        QCOMPARE(typedLevelsBody({}), QJsonObject());
        QCOMPARE(typedLevelsBody({1.05, std::nullopt, std::nullopt}), parse(R"({"stopLoss":1.05})"));
        QCOMPARE(typedLevelsBody({1.05, 1.2, 1.1}),
            parse(R"({"stopLoss":1.05,"takeProfit":1.2,"pendingPrice":1.1})"));
    }

    void aTypedZeroIsSentOnPurpose()
    {
        QCOMPARE(typedLevelsBody({std::nullopt, 0.0, std::nullopt}), parse(R"({"takeProfit":0})"));
    }

    void movingALevelKeepsTheOthers_data()
    {
        QTest::addColumn<QByteArray>("trade");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("stop of a position without target") << QByteArray(R"({"stopLoss":1.0,"takeProfit":0})")
                                                           << u"SL"_s << QByteArray(R"({"stopLoss":1.5})");
        QTest::newRow("target of a position with stop") << QByteArray(R"({"stopLoss":1.0})") << u"TP"_s
                                                        << QByteArray(R"({"stopLoss":1.0,"takeProfit":1.5})");
        QTest::newRow("levels as text") << QByteArray(R"({"stopLoss":"1.0750","takeProfit":"2.5"})")
                                        << u"TP"_s << QByteArray(R"({"stopLoss":1.075,"takeProfit":1.5})");
        QTest::newRow("entry of a pending order with stop")
            << QByteArray(R"({"status":"PENDING","stopLoss":1.0,"pendingPrice":"1.2"})") << u"PRICE"_s
            << QByteArray(R"({"stopLoss":1.0,"pendingPrice":1.5})");
        QTest::newRow("stop of a pending order carries its entry")
            << QByteArray(R"({"status":"PENDING","stopLoss":1.0,"takeProfit":3,"pendingPrice":"1.2"})")
            << u"SL"_s << QByteArray(R"({"stopLoss":1.5,"takeProfit":3,"pendingPrice":1.2})");
        QTest::newRow("negative and unreadable levels are none")
            << QByteArray(R"({"stopLoss":-1,"takeProfit":"NaN"})") << u"PRICE"_s
            << QByteArray(R"({"pendingPrice":1.5})");
        QTest::newRow("texts that are no levels above zero are none")
            << QByteArray(R"({"stopLoss":"-1.5","takeProfit":"1e999"})") << u"PRICE"_s
            << QByteArray(R"({"pendingPrice":1.5})");
        QTest::newRow("text zero and half a number are none")
            << QByteArray(R"({"stopLoss":"0.000","takeProfit":"1,5"})") << u"PRICE"_s
            << QByteArray(R"({"pendingPrice":1.5})");
        QTest::newRow("a position has no entry to carry")
            << QByteArray(R"({"status":"OPEN","stopLoss":1,"pendingPrice":1.2})") << u"TP"_s
            << QByteArray(R"({"stopLoss":1,"takeProfit":1.5})");
        QTest::newRow("nothing else of the trade is sent")
            << QByteArray(R"({"id":"x","symbol":"S","lotSize":1,"type":"BUY","comment":"c","stopLoss":1})")
            << u"SL"_s << QByteArray(R"({"stopLoss":1.5})");
        QTest::newRow("an unknown kind means the entry") << QByteArray(
            R"({"stopLoss":1})") << u"?"_s << QByteArray(R"({"stopLoss":1,"pendingPrice":1.5})");
    }
    void movingALevelKeepsTheOthers()
    {
        QFETCH(QByteArray, trade);
        QFETCH(QString, kind);
        QFETCH(QByteArray, body);
        QCOMPARE(movedLevelBody(parse(trade), levelKind(kind), 1.5), parse(body));
    }

    void a_level_is_known_by_its_text()
    {
        for (const QString& text : {u"ENTRY"_s, u"SL"_s, u"TP"_s, u"PRICE"_s})
            QCOMPARE(levelText(levelKind(text)), text);
        QCOMPARE(levelKind(u"anything"_s), LevelKind::Price);
    }
};

TAVORAN_TEST(TestLevelsBody)
#include "tst_LevelsBody.moc"
