#include "chart/data/DrawingRecords.h"
#include "support/TestMain.h"

#include <QRegularExpression>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

QJsonObject point(const QJsonValue& time = u"1600000000000"_s, const QJsonValue& price = 1.5)
{
    return {{u"time"_s, time}, {u"price"_s, price}};
}

QJsonObject record(const QString& type = u"hline"_s, const QJsonArray& points = {point()})
{
    return {{u"id"_s, u"d1"_s}, {u"toolType"_s, type}, {u"points"_s, points},
        {u"style"_s, QJsonObject{{u"color"_s, u"#ff8800"_s}}}};
}

QList<Drawing> readAll(const QJsonArray& records)
{
    return readDrawings(QJsonDocument(records));
}

} // namespace

class tst_DrawingRecords final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsEveryKind_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("points");
        QTest::newRow("hline") << u"hline"_s << 1;
        QTest::newRow("vline") << u"vline"_s << 1;
        QTest::newRow("trendline") << u"trendline"_s << 2;
        QTest::newRow("rectangle") << u"rectangle"_s << 2;
        QTest::newRow("fibonacci") << u"fibonacci"_s << 2;
    }
    void readsEveryKind()
    {
        QFETCH(QString, type);
        QFETCH(int, points);
        QJsonArray sent;
        QList<DrawingPoint> expected;
        for (int i = 0; i < points; ++i) {
            sent.append(point(QString::number(1'600'000'000'000 + i), 1.5 + i));
            expected.append({1'600'000'000'000 + i, 1.5 + i});
        }
        const Drawing drawing{u"d1"_s, type, expected, QColor(0xff, 0x88, 0), false};
        QCOMPARE(readAll({record(type, sent)}), QList<Drawing>{drawing});
    }

    void readsTimesFromTextAndFromNumbers_data()
    {
        QTest::addColumn<QJsonValue>("sent");
        QTest::addColumn<qint64>("time");
        QTest::newRow("text") << QJsonValue(u"1600000000123"_s) << Q_INT64_C(1600000000123);
        QTest::newRow("number") << QJsonValue(1600000000123.0) << Q_INT64_C(1600000000123);
        QTest::newRow("number with a fraction") << QJsonValue(1600000000123.9) << Q_INT64_C(1600000000123);
        QTest::newRow("before the epoch") << QJsonValue(u"-1000"_s) << Q_INT64_C(-1000);
        QTest::newRow("more than a double holds")
            << QJsonValue(u"8639999999999999"_s) << Q_INT64_C(8639999999999999);
    }
    void readsTimesFromTextAndFromNumbers()
    {
        QFETCH(QJsonValue, sent);
        QFETCH(qint64, time);
        const QList<Drawing> drawings = readAll({record(u"vline"_s, {point(sent)})});
        QCOMPARE(drawings.size(), 1);
        QCOMPARE(drawings.first().points.first().time, time);
    }

    void readsPricesFromNumbersAndText_data()
    {
        QTest::addColumn<QJsonValue>("sent");
        QTest::addColumn<double>("price");
        QTest::newRow("number") << QJsonValue(1.25) << 1.25;
        QTest::newRow("text") << QJsonValue(u"1.25"_s) << 1.25;
        QTest::newRow("zero") << QJsonValue(0) << 0.0;
        QTest::newRow("zero as text") << QJsonValue(u"0.00"_s) << 0.0;
        QTest::newRow("below zero") << QJsonValue(-37.63) << -37.63;
    }
    void readsPricesFromNumbersAndText()
    {
        QFETCH(QJsonValue, sent);
        QFETCH(double, price);
        const QList<Drawing> drawings = readAll({record(u"hline"_s, {point(1, sent)})});
        QCOMPARE(drawings.size(), 1);
        QCOMPARE(drawings.first().points.first().price, price);
    }

    void leavesOutWhatHasNoKnownType_data()
    {
        QTest::addColumn<QJsonValue>("bad");
        QJsonObject noType = record();
        noType.remove(u"toolType"_s);
        QJsonObject typeInList = record();
        typeInList.insert(u"toolType"_s, QJsonArray{u"hline"_s});
        QTest::newRow("number") << QJsonValue(5);
        QTest::newRow("null") << QJsonValue();
        QTest::newRow("list") << QJsonValue(QJsonArray{record()});
        QTest::newRow("empty object") << QJsonValue(QJsonObject());
        QTest::newRow("no type") << QJsonValue(noType);
        QTest::newRow("unknown type") << QJsonValue(record(u"pitchfork"_s));
        QTest::newRow("type in capitals") << QJsonValue(record(u"HLINE"_s));
        QTest::newRow("list of types") << QJsonValue(typeInList);
    }
    void leavesOutWhatHasNoKnownType()
    {
        QFETCH(QJsonValue, bad);
        const QList<Drawing> drawings = readAll({record(), bad, record(u"vline"_s)});
        QCOMPARE(drawings.size(), 2);
        QCOMPARE(drawings.first().type, u"hline"_s);
        QCOMPARE(drawings.last().type, u"vline"_s);
    }

    void whatCannotBeReadOfAPointIsZero_data()
    {
        QTest::addColumn<QJsonValue>("sent");
        QTest::addColumn<qint64>("time");
        QTest::addColumn<double>("price");
        const auto row = [](const char* name, const QJsonValue& sent, qint64 time, double price) {
            QTest::newRow(name) << sent << time << price;
        };
        row("no time", point(QJsonValue::Undefined), 0, 1.5);
        row("no price", point(1, QJsonValue::Undefined), 1, 0.0);
        row("price null", point(1, QJsonValue::Null), 1, 0.0);
        row("neither", QJsonObject(), 0, 0.0);
        row("text instead of a point", u"1,1.5"_s, 0, 0.0);
        row("time in words", point(u"yesterday"_s), 0, 1.5);
        row("time as text with a fraction", point(u"1.5"_s), 0, 1.5);
        row("time as text beyond 64 bits", point(u"99999999999999999999"_s), 0, 1.5);
        row("largest time of 64 bits", point(u"9223372036854775807"_s), std::numeric_limits<qint64>::max(),
            1.5);
        row("least time of 64 bits", point(u"-9223372036854775808"_s), std::numeric_limits<qint64>::min(),
            1.5);
        row("number beyond 64 bits", point(1e300), 0, 1.5);
        row("first number beyond 64 bits", point(9223372036854775808.0), 0, 1.5);
        row("time in a list", point(QJsonArray{1}), 0, 1.5);
        row("price in words", point(1, u"high"_s), 1, 0.0);
        row("absurd price", point(1, 1e300), 1, 0.0);
        row("price that is no number", point(1, u"nan"_s), 1, 0.0);
    }
    void whatCannotBeReadOfAPointIsZero()
    {
        QFETCH(QJsonValue, sent);
        QFETCH(qint64, time);
        QFETCH(double, price);
        const DrawingPoint expected{time, price};
        for (const QString& type : {u"hline"_s, u"vline"_s}) {
            const QList<Drawing> drawings = readAll({record(type, {sent})});
            QCOMPARE(drawings.size(), 1);
            QCOMPARE(drawings.first().points, QList<DrawingPoint>{expected});
        }
        for (const QString& type : {u"trendline"_s, u"rectangle"_s, u"fibonacci"_s}) {
            const QList<Drawing> drawings = readAll({record(type, {point(), sent})});
            QCOMPARE(drawings.size(), 1);
            QCOMPARE(drawings.first().points, (QList<DrawingPoint>{{1'600'000'000'000, 1.5}, expected}));
        }
    }

    void anObjectKeepsTheFewPointsThatItHas_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QJsonValue>("points");
        QTest::addColumn<int>("kept");
        QTest::newRow("missing") << u"hline"_s << QJsonValue(QJsonValue::Undefined) << 0;
        QTest::newRow("none") << u"vline"_s << QJsonValue(QJsonArray()) << 0;
        QTest::newRow("a point without a list") << u"rectangle"_s << QJsonValue(point()) << 0;
        QTest::newRow("one of two") << u"trendline"_s << QJsonValue(QJsonArray{point()}) << 1;
    }
    void anObjectKeepsTheFewPointsThatItHas()
    {
        QFETCH(QString, type);
        QFETCH(QJsonValue, points);
        QFETCH(int, kept);
        QJsonObject sent = record(type);
        sent.insert(u"points"_s, points);
        const QList<Drawing> drawings = readAll({sent});
        QCOMPARE(drawings.size(), 1);
        QCOMPARE(drawings.first().id, u"d1"_s);
        QCOMPARE(drawings.first().points.size(), kept);
    }

    void aColourThatDoesNotParseIsTheUsualOne_data()
    {
        QTest::addColumn<QJsonValue>("style");
        QTest::addColumn<QColor>("expected");
        const QColor usual(0xe0, 0xe0, 0xe0);
        QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined) << usual;
        QTest::newRow("text") << QJsonValue(u"#ff0000"_s) << usual;
        QTest::newRow("no colour") << QJsonValue(QJsonObject()) << usual;
        QTest::newRow("number") << QJsonValue(QJsonObject{{u"color"_s, 255}}) << usual;
        QTest::newRow("unknown name") << QJsonValue(QJsonObject{{u"color"_s, u"bleen"_s}}) << usual;
        QTest::newRow("markup") << QJsonValue(QJsonObject{{u"color"_s, u"<b>red</b>"_s}}) << usual;
        QTest::newRow("name") << QJsonValue(QJsonObject{{u"color"_s, u"red"_s}}) << QColor(0xff, 0, 0);
        QTest::newRow("transparency is not kept")
            << QJsonValue(QJsonObject{{u"color"_s, u"#00123456"_s}}) << QColor(0x12, 0x34, 0x56);
    }
    void aColourThatDoesNotParseIsTheUsualOne()
    {
        QFETCH(QJsonValue, style);
        QFETCH(QColor, expected);
        QJsonObject sent = record();
        sent.insert(u"style"_s, style);
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        const QList<Drawing> drawings = readAll({sent});
        QCOMPARE(drawings.size(), 1);
        QCOMPARE(drawings.first().color, expected);
    }

    void pointsBeyondThoseOfTheKindAreNotRead()
    {
        const QList<Drawing> drawings = readAll({record(u"hline"_s, {point(), u"junk"_s})});
        QCOMPARE(drawings.size(), 1);
        QCOMPARE(drawings.first().points.size(), 1);
    }

    void objectsWithTheSameIdAreAllRead() { QCOMPARE(readAll({record(), record(u"vline"_s)}).size(), 2); }

    void anObjectWithoutAnIdIsShownAllTheSame()
    {
        QJsonObject sent = record();
        sent.remove(u"id"_s);
        QCOMPARE(readAll({sent, sent}).size(), 2);
    }

    void anythingButAnArrayIsAnEmptyList_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("empty body") << QByteArray();
        QTest::newRow("object") << QByteArray("{\"drawings\":[]}");
        QTest::newRow("cut") << QByteArray("[{\"id\":\"d1\"");
    }
    void anythingButAnArrayIsAnEmptyList()
    {
        QFETCH(QByteArray, body);
        QCOMPARE(readDrawings(QJsonDocument::fromJson(body)), QList<Drawing>());
    }

    void sendsTimesAsTextOnPurpose()
    {
        const Drawing drawing{{}, u"trendline"_s, {{1'600'000'000'123, 1.25}, {1'600'000'900'123, 1.5}}};
        const QJsonObject expected{{u"symbol"_s, u"EURUSD"_s}, {u"toolType"_s, u"trendline"_s},
            {u"accountId"_s, u"acc"_s}, {u"style"_s, QJsonObject{{u"color"_s, u"#e0e0e0"_s}}},
            {u"points"_s, QJsonArray{point(u"1600000000123"_s, 1.25), point(u"1600000900123"_s, 1.5)}}};
        QCOMPARE(createDrawingBody(drawing, u"EURUSD"_s, u"acc"_s), expected);
    }

    void sendsTheAccountOnlyWhenThereIsOne()
    {
        const Drawing drawing{{}, u"hline"_s, {{1, 1.25}}};
        QVERIFY(!createDrawingBody(drawing, u"EURUSD"_s, {}).contains(u"accountId"_s));
    }

    void anUpdateCarriesPointsAndStyleOnly()
    {
        const Drawing drawing{u"d1"_s, u"hline"_s, {{1, 1.25}}, QColor(1, 2, 3)};
        const QJsonObject expected{{u"points"_s, QJsonArray{point(u"1"_s, 1.25)}},
            {u"style"_s, QJsonObject{{u"color"_s, u"#010203"_s}}}};
        QCOMPARE(updateDrawingBody(drawing), expected);
    }

    void whatIsSentIsReadBackTheSame()
    {
        const Drawing drawing{
            u"d9"_s, u"fibonacci"_s, {{1'600'000'000'123, 0.1 + 0.2}, {-5, 1e-7}}, QColor(9, 8, 7)};
        QJsonObject body = createDrawingBody(drawing, u"X"_s, {});
        body.insert(u"id"_s, u"d9"_s);
        const QByteArray wire = QJsonDocument(QJsonArray{body}).toJson();
        QCOMPARE(readDrawings(QJsonDocument::fromJson(wire)), QList<Drawing>{drawing});
    }
};

TAVORAN_TEST(tst_DrawingRecords)
#include "tst_DrawingRecords.moc"
