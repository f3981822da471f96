#include "panes/SymbolOrder.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

class TestSymbolOrder final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void order_data();
    void order();
};

void TestSymbolOrder::order_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("ascending") << QByteArray(R"([{"name":"A","sortOrder":3},{"name":"B","sortOrder":-1}])")
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

void TestSymbolOrder::order()
{
    QFETCH(QByteArray, json);
    QFETCH(QStringList, names);
    QStringList sorted;
    for (const QJsonObject& record : symbolsInListOrder(QJsonDocument::fromJson(json).array()))
        sorted.append(record.value("name"_L1).toString());
    QCOMPARE(sorted, names);
}

TAVORAN_TEST(TestSymbolOrder)
#include "tst_SymbolOrder.moc"
