#include "net/records/JsonNumber.h"

#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QRandomGenerator>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

class TestJsonNumber final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reads_numbers_and_decimal_strings_alike_data()
    {
        QTest::addColumn<QJsonValue>("value");
        QTest::addColumn<double>("expected");
        QTest::newRow("number") << QJsonValue(1234.56) << 1234.56;
        QTest::newRow("string") << QJsonValue(u"1234.56"_s) << 1234.56;
        QTest::newRow("negative string") << QJsonValue(u"-0.5"_s) << -0.5;
        QTest::newRow("plus sign") << QJsonValue(u"+1.5"_s) << 1.5;
        QTest::newRow("no leading digit") << QJsonValue(u".5"_s) << 0.5;
        QTest::newRow("no trailing digit") << QJsonValue(u"5."_s) << 5.0;
        QTest::newRow("blanks around") << QJsonValue(u" 1.5 "_s) << 1.5;
        QTest::newRow("very exact") << QJsonValue(u"1.1000000000000000000000000000000000000001"_s) << 1.1;
        QTest::newRow("vanishing") << QJsonValue(u"1e-999"_s) << 0.0;
        QTest::newRow("exponent string") << QJsonValue(u"1.5e3"_s) << 1500.0;
        QTest::newRow("largest kept") << QJsonValue(1e15) << 1e15;
        QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined) << 0.0;
        QTest::newRow("null") << QJsonValue(QJsonValue::Null) << 0.0;
        QTest::newRow("bool") << QJsonValue(true) << 0.0;
        QTest::newRow("array") << QJsonValue(QJsonArray{1}) << 0.0;
        QTest::newRow("object") << QJsonValue(QJsonObject{{u"a"_s, 1}}) << 0.0;
        QTest::newRow("empty string") << QJsonValue(QString()) << 0.0;
        QTest::newRow("words") << QJsonValue(u"abc"_s) << 0.0;
        QTest::newRow("number and words") << QJsonValue(u"1.5 lots"_s) << 0.0;
        QTest::newRow("two numbers") << QJsonValue(u"1.5 2"_s) << 0.0;
        QTest::newRow("comma") << QJsonValue(u"1,5"_s) << 0.0;
        QTest::newRow("groups") << QJsonValue(u"1,000.5"_s) << 0.0;
        QTest::newRow("hexadecimal") << QJsonValue(u"0x10"_s) << 0.0;
        QTest::newRow("minus alone") << QJsonValue(u"-"_s) << 0.0;
        QTest::newRow("two signs") << QJsonValue(u"+-1"_s) << 0.0;
        QTest::newRow("null letter inside") << QJsonValue(QString(u"1\0002"_s)) << 0.0;
        QTest::newRow("null letter behind") << QJsonValue(u"1"_s + QChar(0)) << 0.0;
        QTest::newRow("letter beyond Latin-1 behind") << QJsonValue(u"1€"_s) << 0.0;
        QTest::newRow("endless") << QJsonValue(QString(100000, u'9')) << 0.0;
        QTest::newRow("not a number") << QJsonValue(u"nan"_s) << 0.0;
        QTest::newRow("infinity") << QJsonValue(u"inf"_s) << 0.0;
        QTest::newRow("minus infinity") << QJsonValue(u"-Infinity"_s) << 0.0;
        QTest::newRow("overflowing string") << QJsonValue(u"1e999"_s) << 0.0;
        QTest::newRow("1e308 as number") << QJsonValue(1e308) << 0.0;
        QTest::newRow("1e308 as string") << QJsonValue(u"1e308"_s) << 0.0;
        QTest::newRow("just too large") << QJsonValue(-1.1e15) << 0.0;
        QTest::newRow("not-a-number value") << QJsonValue(std::numeric_limits<double>::quiet_NaN()) << 0.0;
        QTest::newRow("infinite value") << QJsonValue(std::numeric_limits<double>::infinity()) << 0.0;
    }
    void reads_numbers_and_decimal_strings_alike()
    {
        QFETCH(const QJsonValue, value);
        QFETCH(const double, expected);
        QCOMPARE(jsonNumber(value), expected);
    }

    void reads_strings_the_same_under_a_comma_locale()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German));
        const double read = jsonNumber(QJsonValue(u"1.25"_s));
        QLocale::setDefault(before);
        QCOMPARE(read, 1.25);
    }

    void reads_each_decimal_as_the_nearest_double()
    {
        QRandomGenerator random(7);
        for (int i = 0; i < 20000; ++i) {
            const double value = (random.generateDouble() - 0.5) * std::pow(10.0, random.bounded(13));
            const QString text = QString::number(value, 'f', random.bounded(9));
            QCOMPARE(jsonNumber(QJsonValue(text)), text.toDouble());
            QCOMPARE(jsonNumber(QJsonValue(QString::number(value, 'g', 17))), value);
        }
    }

    void reads_counters_of_a_wrong_type_as_their_default_data()
    {
        QTest::addColumn<QJsonValue>("value");
        QTest::addColumn<int>("expected");
        QTest::newRow("integer") << QJsonValue(3) << 3;
        QTest::newRow("negative") << QJsonValue(-1) << -1;
        QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined) << 5;
        QTest::newRow("string") << QJsonValue(u"3"_s) << 5;
        QTest::newRow("bool") << QJsonValue(true) << 5;
        QTest::newRow("fraction") << QJsonValue(5.7) << 5;
        QTest::newRow("huge") << QJsonValue(1e308) << 5;
        QTest::newRow("above int") << QJsonValue(4294967296.0) << 5;
    }
    void reads_counters_of_a_wrong_type_as_their_default()
    {
        QFETCH(const QJsonValue, value);
        QFETCH(const int, expected);
        QCOMPARE(jsonInt(value, 5), expected);
    }

    void reads_flags_of_a_wrong_type_as_their_default()
    {
        QCOMPARE(jsonBool(QJsonValue(true), false), true);
        QCOMPARE(jsonBool(QJsonValue(false), true), false);
        QCOMPARE(jsonBool(QJsonValue(u"true"_s), false), false);
        QCOMPARE(jsonBool(QJsonValue(1), false), false);
        QCOMPARE(jsonBool(QJsonValue(QJsonValue::Undefined), true), true);
    }
};

TAVORAN_TEST(TestJsonNumber)
#include "tst_JsonNumber.moc"
