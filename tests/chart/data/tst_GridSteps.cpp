#include "chart/data/GridSteps.h"

#include "support/TestMain.h"

#include <cmath>
#include <limits>

class TestGridSteps final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void steps_are_one_two_or_five_data()
    {
        QTest::addColumn<double>("raw");
        QTest::addColumn<double>("step");
        QTest::newRow("1") << 1.0 << 1.0;
        QTest::newRow("just above 1") << 1.0001 << 2.0;
        QTest::newRow("2") << 2.0 << 2.0;
        QTest::newRow("3") << 3.0 << 5.0;
        QTest::newRow("5") << 5.0 << 5.0;
        QTest::newRow("7") << 7.0 << 10.0;
        QTest::newRow("small") << 0.00034 << 0.0005;
        QTest::newRow("large") << 160000.0 << 200000.0;
        QTest::newRow("nothing") << 0.0 << 1.0;
        QTest::newRow("negative") << -4.0 << 1.0;
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 1.0;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 1.0;
    }
    void steps_are_one_two_or_five()
    {
        QFETCH(double, raw);
        QFETCH(double, step);
        QCOMPARE(niceStep(raw), step);
    }

    void lines_stand_on_multiples_within_the_range()
    {
        // 278 pixels want 6 lines; 0.02 / 6 = 0.0033 gives steps of 0.005.
        const auto lines = priceGridLines({1.0912, 1.1112}, 278);
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines[0], 1.095);
        QCOMPARE(lines[1], 1.100);
        QCOMPARE(lines[2], 1.105);
        QCOMPARE(lines[3], 1.110);
        // A line on the lower edge counts, one on the upper edge does not.
        const auto edges = priceGridLines({0.0, 4.0}, 92);
        QCOMPARE(edges.size(), 2);
        QCOMPARE(edges[0], 0.0);
        QCOMPARE(edges[1], 2.0);
    }

    void the_line_at_zero_is_not_a_negative_zero()
    {
        for (const double line : priceGridLines({-0.3, 1.0}, 300)) {
            if (line == 0.0)
                QVERIFY(!std::signbit(line));
        }
    }

    void a_low_plot_asks_for_two_lines()
    {
        QCOMPARE(priceGridLines({0.5, 2.5}, 10).size(), 2);
        QCOMPARE(priceGridLines({0.5, 2.5}, 91).size(), 2);
    }

    void a_step_too_small_for_its_prices_ends()
    {
        QVERIFY(priceGridLines({8e6, std::nextafter(8e6, 9e6)}, 300).size() <= 7);
        QVERIFY(priceGridLines({1e15 - 1e6, 1e15 + 1e6}, 300).size() <= 7);
        QVERIFY(priceGridLines({1.0, 2.0}, 16'777'215).size() <= 16'777'215 / 46 + 1);
    }

    void vertical_lines_are_ninety_pixels_apart()
    {
        QCOMPARE(timeGridStep(7.0), 12);
        QCOMPARE(timeGridStep(1.0), 90);
        QCOMPARE(timeGridStep(40.0), 2);
        QCOMPARE(timeGridStep(100.0), 1);
    }
};

TAVORAN_TEST(TestGridSteps)
#include "tst_GridSteps.moc"
