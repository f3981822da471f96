#include "net/records/EventRecord.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

using namespace fixtures;
using namespace Qt::StringLiterals;

class TestEventRecord final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void its_fields_are_read()
    {
        const QJsonObject record
            = parse(R"({"accountId":"a1","filled":true,"closeReason":"SL","status":"FAILED"})");
        QCOMPARE(event::accountId(record), u"a1"_s);
        QVERIFY(event::isFilled(record));
        QCOMPARE(event::closeReason(record), u"SL"_s);
        QCOMPARE(event::status(record), u"FAILED"_s);
    }

    void fields_of_another_type_read_as_nothing()
    {
        const QJsonObject record = parse(R"({"accountId":1,"filled":"true","closeReason":null})");
        QCOMPARE(event::accountId(record), QString());
        QVERIFY(!event::isFilled(record));
        QCOMPARE(event::closeReason(record), QString());
        QCOMPARE(event::status(record), QString());
    }
};

TAVORAN_TEST(TestEventRecord)
#include "tst_EventRecord.moc"
