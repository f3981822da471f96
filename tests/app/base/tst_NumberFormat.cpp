#include "app/base/NumberFormat.h"
#include "support/TestMain.h"

#include <limits>

using namespace Qt::StringLiterals;

class TestNumberFormat : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void pricesAreFixedWithThePointWhateverTheLocale()
    {
        QCOMPARE(formatPrice(1.1, 5), u"1.10000"_s);
        QCOMPARE(formatPrice(1234567.125, 2), u"1234567.13"_s);
        QCOMPARE(formatPrice(0.00001, 5), u"0.00001"_s);
        QCOMPARE(formatPrice(42.0, 0), u"42"_s);
    }

    void digitsOutsideZeroToFifteenAreClamped()
    {
        QCOMPARE(clampDigits(-3), 0);
        QCOMPARE(clampDigits(5), 5);
        QCOMPARE(clampDigits(15), 15);
        QCOMPARE(clampDigits(1000000), 15);
        QCOMPARE(formatPrice(1.5, -1), u"2"_s);
        QCOMPARE(formatPrice(1.5, std::numeric_limits<int>::max()), u"1.500000000000000"_s);
        QCOMPARE(formatPrice(0.000000012345, 12), u"0.000000012345"_s);
    }

    void volumesHaveTwoDecimals()
    {
        QCOMPARE(formatVolume(0.1), u"0.10"_s);
        QCOMPARE(formatVolume(1234.5), u"1234.50"_s);
    }

    void moneyHasEnglishGroupsAndTwoDecimals()
    {
        QCOMPARE(formatMoney(100000), u"100,000.00"_s);
        QCOMPARE(formatMoney(-1234567.891), u"-1,234,567.89"_s);
        QCOMPARE(formatMoney(0.5), u"0.50"_s);
    }

    void aPluralIsChosenByWhatTrTakes()
    {
        QCOMPARE(pluralCount(1), 1);
        QCOMPARE(pluralCount(-1), 0);
        QCOMPARE(pluralCount(std::numeric_limits<qint64>::max()), std::numeric_limits<int>::max());
    }

    void generalNumbersHaveSixSignificantDigits()
    {
        QCOMPARE(formatGeneral(0.01), u"0.01"_s);
        QCOMPARE(formatGeneral(100.0), u"100"_s);
        QCOMPARE(formatGeneral(1.23456789), u"1.23457"_s);
    }

    void whatIsNoNumberIsShownAsZero()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double infinity = std::numeric_limits<double>::infinity();
        QCOMPARE(formatPrice(nan, 2), u"0.00"_s);
        QCOMPARE(formatMoney(-infinity), u"0.00"_s);
        QCOMPARE(formatVolume(infinity), u"0.00"_s);
        QCOMPARE(formatGeneral(nan), u"0"_s);
    }

    void shortIdsAreTheFirstEightCharacters()
    {
        QCOMPARE(shortId(u"123e4567-e89b"_s), u"123e4567"_s);
        QCOMPARE(shortId(u"abc"_s), u"abc"_s);
        QCOMPARE(shortId(QString()), QString());
    }
};

TAVORAN_TEST(TestNumberFormat)
#include "tst_NumberFormat.moc"
