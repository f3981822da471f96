#include "chart/series/Timeframe.h"

#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class TestTimeframe final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void every_key_has_its_length_and_label_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<qint64>("length");
        QTest::addColumn<QString>("label");
        QTest::newRow("1m") << u"1m"_s << Q_INT64_C(60000) << u"M1"_s;
        QTest::newRow("5m") << u"5m"_s << Q_INT64_C(300000) << u"M5"_s;
        QTest::newRow("15m") << u"15m"_s << Q_INT64_C(900000) << u"M15"_s;
        QTest::newRow("1h") << u"1h"_s << Q_INT64_C(3600000) << u"H1"_s;
        QTest::newRow("4h") << u"4h"_s << Q_INT64_C(14400000) << u"H4"_s;
        QTest::newRow("1d") << u"1d"_s << Q_INT64_C(86400000) << u"D1"_s;
        QTest::newRow("1w") << u"1w"_s << Q_INT64_C(604800000) << u"W1"_s;
        QTest::newRow("1mn") << u"1mn"_s << Q_INT64_C(2592000000) << u"MN"_s;
    }
    void every_key_has_its_length_and_label()
    {
        QFETCH(QString, key);
        QFETCH(qint64, length);
        QFETCH(QString, label);
        QCOMPARE(timeframeMs(key), length);
        QCOMPARE(timeframeLabel(key), label);
        QVERIFY(timeframeKeys().contains(key));
    }

    void an_unknown_key_is_a_quarter_hour_under_its_own_name()
    {
        QCOMPARE(timeframeMs(u"2h"_s), Q_INT64_C(900000));
        QCOMPARE(timeframeLabel(u"2h"_s), u"2H"_s);
        QCOMPARE(timeframeMs(QString()), Q_INT64_C(900000));
        QCOMPARE(timeframeLabel(QString()), QString());
        QCOMPARE(timeframeMs(u"1M"_s), Q_INT64_C(900000));
    }

    void a_month_is_thirty_days_on_purpose() { QCOMPARE(timeframeMs(u"1mn"_s), 30 * dayMs); }

    void keys_are_listed_from_short_to_long()
    {
        QCOMPARE(timeframeKeys().size(), 8);
        for (qsizetype i = 1; i < timeframeKeys().size(); ++i)
            QVERIFY(timeframeMs(timeframeKeys().at(i - 1)) < timeframeMs(timeframeKeys().at(i)));
    }
};

TAVORAN_TEST(TestTimeframe)
#include "tst_Timeframe.moc"
