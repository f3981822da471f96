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
        QCOMPARE(event::state(record), AccountState::Failed);
    }

    void fields_of_another_type_read_as_nothing()
    {
        const QJsonObject record = parse(R"({"accountId":1,"filled":"true","closeReason":null})");
        QCOMPARE(event::accountId(record), QString());
        QVERIFY(!event::isFilled(record));
        QCOMPARE(event::closeReason(record), QString());
        QCOMPARE(event::status(record), QString());
        QCOMPARE(event::state(record), AccountState::Other);
    }

    void a_level_is_hit_where_the_reason_is_its_very_name()
    {
        for (const QString& reason : {u"SL"_s, u"TP"_s})
            QVERIFY(event::isLevelHit({{u"closeReason"_s, reason}}));
        for (const QString& reason : {u"sl"_s, u"MANUAL"_s, u"SL "_s, QString()})
            QVERIFY(!event::isLevelHit({{u"closeReason"_s, reason}}));
    }

    void a_state_is_read_where_it_is_spelt_as_it_should_be()
    {
        QCOMPARE(event::state({{u"status"_s, u"PASSED"_s}}), AccountState::Passed);
        for (const QString& status : {u"passed"_s, u"ACTIVE"_s, u"FAILED!"_s})
            QCOMPARE(event::state({{u"status"_s, status}}), AccountState::Other);
    }
};

TAVORAN_TEST(TestEventRecord)
#include "tst_EventRecord.moc"
