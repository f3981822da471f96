#include "net/records/NewsRecord.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

using namespace fixtures;
using namespace Qt::StringLiterals;

class TestNewsRecord final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void its_fields_are_read()
    {
        const QJsonObject reply = parse(R"({"events":[{"id":"n1"}],"settings":{"notifyMin":30}})");
        QCOMPARE(news::events(reply), QJsonArray{parse(R"({"id":"n1"})")});
        QCOMPARE(news::notifyMinutes(reply, 15), 30);
        QCOMPARE(news::notifyMinutes({}, 15), 15);
        const QJsonObject event = parse(R"({"id":"n1","eventTime":"soon","minutesUntil":-2,"impact":"HIGH",
        "currency":"EUR","title":"Rates"})");
        QCOMPARE(news::id(event), u"n1"_s);
        QCOMPARE(news::time(event), u"soon"_s);
        QCOMPARE(news::minutesUntil(event), -2);
        QCOMPARE(news::minutesUntil({}), 0);
        QCOMPARE(news::impact(event), Impact::High);
        QCOMPARE(news::impactText(event), u"HIGH"_s);
        QCOMPARE(news::currency(event), u"EUR"_s);
        QCOMPARE(news::title(event), u"Rates"_s);
    }

    void an_impact_is_low_unless_it_is_spelt_as_it_should_be()
    {
        QCOMPARE(news::impact({{u"impact"_s, u"MEDIUM"_s}}), Impact::Medium);
        for (const QString& text : {u"LOW"_s, u"high"_s, u" HIGH"_s, QString()})
            QCOMPARE(news::impact({{u"impact"_s, text}}), Impact::Low);
    }
};

TAVORAN_TEST(TestNewsRecord)
#include "tst_NewsRecord.moc"
