#include "net/records/DrawingRecord.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

using namespace fixtures;
using namespace Qt::StringLiterals;

class TestDrawingRecord final : public QObject {
    Q_OBJECT

    const QJsonObject style{{u"color"_s, u"#010203"_s}};

private Q_SLOTS:
    void its_fields_are_read()
    {
        const QJsonObject record{{u"id"_s, u"d1"_s}, {u"toolType"_s, u"hline"_s}, {u"style"_s, style},
            {u"points"_s, parseArray(R"([{"time":"1700000000000","price":"1.25"}])")}};
        QCOMPARE(drawing::id(record), u"d1"_s);
        QCOMPARE(drawing::tool(record), u"hline"_s);
        QCOMPARE(drawing::color(record), QJsonValue(u"#010203"_s));
        QVERIFY(drawing::color({}).isUndefined());
        const QJsonObject point = drawing::points(record).at(0).toObject();
        QCOMPARE(drawing::time(point), 1700000000000);
        QCOMPARE(drawing::price(point), 1.25);
    }

    void a_time_that_64_bits_do_not_hold_is_none()
    {
        QCOMPARE(drawing::time(parse(R"({"time":9e18})")), 9000000000000000000);
        QCOMPARE(drawing::time(parse(R"({"time":1e19})")), 0);
        QCOMPARE(drawing::time(parse(R"({"time":"x"})")), 0);
    }

    void a_body_names_where_it_belongs()
    {
        QJsonObject body = drawing::updateBody({drawing::point(9007199254740993, 1.5)}, u"#010203"_s);
        const QJsonArray points = parseArray(R"([{"time":"9007199254740993","price":1.5}])");
        QCOMPARE(body, QJsonObject({{u"points"_s, points}, {u"style"_s, style}}));
        drawing::addOrigin(body, u"hline"_s, u"EURUSD"_s, {});
        QVERIFY(!body.contains("accountId"_L1));
        drawing::addOrigin(body, u"hline"_s, u"EURUSD"_s, u"a1"_s);
        QCOMPARE(body.value("accountId"_L1), QJsonValue(u"a1"_s));
        QCOMPARE(body.value("toolType"_L1), QJsonValue(u"hline"_s));
        QCOMPARE(body.value("symbol"_L1), QJsonValue(u"EURUSD"_s));
    }
};

TAVORAN_TEST(TestDrawingRecord)
#include "tst_DrawingRecord.moc"
