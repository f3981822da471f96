#include "net/records/SymbolRecord.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

#include <QJsonDocument>

using namespace fixtures;
using namespace Qt::StringLiterals;

class TestSymbolRecord final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_record_without_fields_reads_as_nothing_with_the_usual_decimals()
    {
        QCOMPARE(symbol::name({}), QString());
        QCOMPARE(symbol::description({}), QString());
        QCOMPARE(symbol::digits({}), 5);
        QCOMPARE(symbol::dailyOpen({}), 0.0);
        QCOMPARE(symbol::contractSize({}), 0.0);
    }

    void its_fields_are_read()
    {
        const QJsonObject record
            = parse(R"({"name":"EURUSD","description":"Euro","digits":3,"dailyOpen":"1.25",
        "contractSize":100000,"commission":"3.5","swapLong":-1.5,"swapShort":"0.25"})");
        QCOMPARE(symbol::name(record), u"EURUSD"_s);
        QCOMPARE(symbol::description(record), u"Euro"_s);
        QCOMPARE(symbol::digits(record), 3);
        QCOMPARE(symbol::dailyOpen(record), 1.25);
        QCOMPARE(symbol::contractSize(record), 100000.0);
        QCOMPARE(symbol::commission(record), 3.5);
        QCOMPARE(symbol::swapLong(record), -1.5);
        QCOMPARE(symbol::swapShort(record), 0.25);
    }

    void order_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("ascending") << QByteArray(
            R"([{"name":"A","sortOrder":3},{"name":"B","sortOrder":-1}])")
                                   << QStringList{u"B"_s, u"A"_s};
        QTest::newRow("equal orders by code unit, upper case first")
            << QByteArray(R"([{"name":"a"},{"name":"Z"},{"name":"B"},{"name":"_"}])")
            << QStringList{u"B"_s, u"Z"_s, u"_"_s, u"a"_s};
        QTest::newRow("no or a wrong order counts as 0")
            << QByteArray(R"([{"name":"C","sortOrder":1},{"name":"B"},{"name":"A","sortOrder":"7"},
                          {"name":"D","sortOrder":-1},{"name":"E","sortOrder":null}])")
            << QStringList{u"D"_s, u"A"_s, u"B"_s, u"E"_s, u"C"_s};
        QTest::newRow("entries without a name are left out")
            << QByteArray(R"([1,null,"x",[],{},{"name":""},{"name":5},{"name":"A"}])") << QStringList{u"A"_s};
        QTest::newRow("empty") << QByteArray("[]") << QStringList{};
    }
    void order()
    {
        QFETCH(QByteArray, json);
        QFETCH(QStringList, names);
        QStringList sorted;
        for (const QJsonObject& record : symbol::inListOrder(QJsonDocument::fromJson(json).array()))
            sorted.append(symbol::name(record));
        QCOMPARE(sorted, names);
    }
};

TAVORAN_TEST(TestSymbolRecord)
#include "tst_SymbolRecord.moc"
