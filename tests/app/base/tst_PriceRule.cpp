#include "app/base/PriceRule.h"

#include "support/TestMain.h"

#include <limits>

using namespace Qt::StringLiterals;

/// What counts as a price.
class TestPriceRule final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_price_is_half_a_point_or_more_and_below_a_trillion_data()
    {
        QTest::addColumn<double>("number");
        QTest::addColumn<int>("digits");
        QTest::addColumn<bool>("price");
        QTest::newRow("usual") << 1.1 << 5 << true;
        QTest::newRow("half a point") << 0.000005 << 5 << true;
        QTest::newRow("less than half a point") << 0.0000049 << 5 << false;
        QTest::newRow("small, with decimals for it") << 1e-8 << 8 << true;
        QTest::newRow("small, without") << 1e-8 << 5 << false;
        QTest::newRow("half of a whole number") << 0.5 << 0 << true;
        QTest::newRow("less than that") << 0.49 << 0 << false;
        QTest::newRow("below zero") << -37.5 << 2 << true;
        QTest::newRow("half a point below zero") << -0.005 << 2 << true;
        QTest::newRow("less than half a point below zero") << -0.0049 << 2 << false;
        QTest::newRow("just below a trillion") << 999'999'999'999.0 << 5 << true;
        QTest::newRow("a trillion") << 1e12 << 5 << false;
        QTest::newRow("a trillion below zero") << -1e12 << 5 << false;
        QTest::newRow("zero") << 0.0 << 5 << false;
        QTest::newRow("zero with a sign") << -0.0 << 0 << false;
        QTest::newRow("tiny") << 1e-300 << 15 << false;
        QTest::newRow("the smallest") << std::numeric_limits<double>::denorm_min() << 15 << false;
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 5 << false;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 5 << false;
        QTest::newRow("fewest decimals") << 0.5 << -3 << true;
        QTest::newRow("more decimals than a price holds") << 5e-16 << 400 << true;
        QTest::newRow("less than those") << 4e-16 << 400 << false;
    }
    void a_price_is_half_a_point_or_more_and_below_a_trillion()
    {
        QFETCH(const double, number);
        QFETCH(const int, digits);
        QFETCH(const bool, price);
        QCOMPARE(isPrice(number, digits), price);
        QCOMPARE(priceOrNone(number, digits), price ? number : 0.0);
    }

    void half_a_point_is_the_least_that_is_not_shown_as_zero()
    {
        for (int digits = 0; digits <= mostPriceDigits; ++digits) {
            const QString text = u"0.%1"_s.arg(u"5"_s, digits + 1, QLatin1Char('0'));
            QCOMPARE(halfPoint(digits), text.toDouble());
            QCOMPARE(QString::number(0.999 * halfPoint(digits), 'f', digits).toDouble(), 0.0);
            QVERIFY(QString::number(1.001 * halfPoint(digits), 'f', digits).toDouble() > 0.0);
        }
    }

    void what_is_a_price_anyway_is_one_with_any_decimals()
    {
        for (const double number : {0.5, -0.5, 1.1, 150.0, 999'999'999'999.0}) {
            QVERIFY(isPriceAnyway(number));
            for (int digits = 0; digits <= mostPriceDigits; ++digits)
                QVERIFY(isPrice(number, digits));
        }
        for (const double number : {0.49, 0.0, 1e12, std::numeric_limits<double>::quiet_NaN()})
            QVERIFY(!isPriceAnyway(number));
    }
};

TAVORAN_TEST(TestPriceRule)
#include "tst_PriceRule.moc"
