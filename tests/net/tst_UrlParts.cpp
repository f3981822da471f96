#include "net/UrlParts.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class TestUrlParts final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void encodes_what_would_end_or_change_a_query_value()
    {
        QCOMPARE(encodeQueryValue(u"EURUSD.pro"_s), u"EURUSD.pro"_s);
        QCOMPARE(encodeQueryValue(u"a+b&c=d#e f%1"_s), u"a%2Bb%26c%3Dd%23e%20f%251"_s);
        QCOMPARE(encodeQueryValue(u"ü€"_s), u"%C3%BC%E2%82%AC"_s);
        QCOMPARE(encodeQueryValue(QString()), QString());
    }

    void keeps_an_id_one_segment_of_the_path()
    {
        QCOMPARE(encodePathSegment(u"6f1c-42"_s), std::optional(u"6f1c-42"_s));
        QCOMPARE(encodePathSegment(u"../accounts?x=1"_s), std::optional(u"..%2Faccounts%3Fx%3D1"_s));
        QCOMPARE(encodePathSegment(u"%2e%2e"_s), std::optional(u"%252e%252e"_s));
        QCOMPARE(encodePathSegment(u"..."_s), std::optional(u"..."_s));
    }

    void refuses_ids_that_name_another_resource()
    {
        QVERIFY(!encodePathSegment(QString()));
        QVERIFY(!encodePathSegment(u"."_s));
        QVERIFY(!encodePathSegment(u".."_s));
    }

    void finds_dot_segments_however_they_are_written_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("expected");
        QTest::newRow("plain") << u"/api/trades/close/7"_s << false;
        QTest::newRow("dots") << u"/api/trades/close/.."_s << true;
        QTest::newRow("dot") << u"/api/./x"_s << true;
        QTest::newRow("encoded") << u"/api/trades/close/%2e%2e"_s << true;
        QTest::newRow("half encoded") << u"/api/trades/close/.%2E/x"_s << true;
        QTest::newRow("in the query") << u"/api/candles?symbol=../.."_s << false;
        QTest::newRow("part of an id") << u"/api/trades/close/..%2F.."_s << false;
        QTest::newRow("encoded percent") << u"/api/trades/close/%252e%252e"_s << false;
    }
    void finds_dot_segments_however_they_are_written()
    {
        QFETCH(const QString, path);
        QFETCH(const bool, expected);
        QCOMPARE(hasDotSegment(path), expected);
    }
};

TAVORAN_TEST(TestUrlParts)
#include "tst_UrlParts.moc"
