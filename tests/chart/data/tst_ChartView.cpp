#include "chart/data/ChartView.h"

#include "support/TestMain.h"

#include <QRandomGenerator>

#include <cmath>
#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

ViewState stateAt(double rightBarIndex, double barWidth = 7.0)
{
    ViewState state;
    state.rightBarIndex = rightBarIndex;
    state.barWidth = barWidth;
    return state;
}

Candle bar(double low, double high)
{
    return {0, low, high, low, high, 1};
}

} // namespace

class TestChartView final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void leaves_room_for_the_axes()
    {
        const ChartView view(QSize(400, 300), stateAt(0), 1, false);
        QCOMPARE(view.plot(), QRect(0, 0, 332, 278));
        QVERIFY(view.pane(0).isEmpty());
        QCOMPARE(view.size(), QSize(400, 300));
    }

    void leaves_room_for_the_lower_pane_data()
    {
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("paneHeight");
        QTest::newRow("smallest") << 160 << 60;
        QTest::newRow("still the smallest") << 304 << 60;
        QTest::newRow("a fifth, cut") << 504 << 100;
        QTest::newRow("largest") << 650 << 130;
        QTest::newRow("still the largest") << 2000 << 130;
    }
    void leaves_room_for_the_lower_pane()
    {
        QFETCH(int, height);
        QFETCH(int, paneHeight);
        const ChartView view(QSize(500, height), stateAt(0), 1, true);
        QCOMPARE(view.pane(0), QRect(0, height - 22 - paneHeight, 432, paneHeight));
        QCOMPARE(view.plot(), QRect(0, 0, 432, height - 22 - paneHeight - 1));
    }

    void panes_lie_one_above_the_other()
    {
        const ChartView view(QSize(500, 500), stateAt(0), 1, 2);
        QCOMPARE(view.pane(0), QRect(0, 378, 432, 100));
        QCOMPARE(view.pane(1), QRect(0, 277, 432, 100));
        QCOMPARE(view.plot(), QRect(0, 0, 432, 276));
        QCOMPARE(view.timeAxisEdge(), 477);
        QVERIFY(view.pane(2).isEmpty() && view.pane(-1).isEmpty());
        QCOMPARE(ChartView(QSize(500, 500), stateAt(0), 1, 40).plot().size(), QSize(432, 10));
        QCOMPARE(ChartView(QSize(500, 500), stateAt(0), 1, -1), ChartView(QSize(500, 500), stateAt(0), 1, 0));
    }

    void keeps_a_plot_at_any_size_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QSize>("plot");
        QTest::newRow("invalid") << QSize() << QSize(10, 10);
        QTest::newRow("nothing") << QSize(0, 0) << QSize(10, 10);
        QTest::newRow("one pixel") << QSize(1, 1) << QSize(10, 10);
        QTest::newRow("axes only") << QSize(68, 22) << QSize(10, 10);
        QTest::newRow("smallest widget") << QSize(240, 160) << QSize(172, 138);
        QTest::newRow("largest widget") << QSize(16777215, 16777215) << QSize(16777147, 16777193);
    }
    void keeps_a_plot_at_any_size()
    {
        QFETCH(QSize, size);
        QFETCH(QSize, plot);
        const ChartView view(size, stateAt(99), 100, false);
        QCOMPARE(view.plot().size(), plot);
        QCOMPARE(view.barAt(view.barX(99)), 99);
        QVERIFY(view.visible().last == 99);
        QVERIFY(std::isfinite(view.priceAt(view.priceY(0.5))));
    }

    void shifts_the_anchor_by_a_share_of_the_plot()
    {
        ViewState state = stateAt(5);
        QCOMPARE(ChartView(QSize(400, 300), state, 6, false).shift(), 0);
        state.chartShift = true;
        QCOMPARE(ChartView(QSize(400, 300), state, 6, false).shift(), 53); // 332 * 0.16 = 53.12
        QCOMPARE(ChartView(QSize(100, 300), state, 6, false).shift(), 24);
        const ChartView view(QSize(400, 300), state, 6, false);
        QCOMPARE(view.barX(5), 331.0 - 53.0);
        QCOMPARE(view.barAt(331 - 53), 5);
    }

    void the_anchor_stands_on_the_last_column_of_the_plot()
    {
        const ChartView view(QSize(400, 300), stateAt(50), 100, false);
        QCOMPARE(view.barX(50), 331.0);
        QCOMPARE(view.barX(49), 324.0);
        QCOMPARE(view.barPixel(49), 324);
        QCOMPARE(view.barAt(331), 50);
        QCOMPARE(view.barAt(328), 50); // 3 of 7 pixels away
        QCOMPARE(view.barAt(327), 49);
        QCOMPARE(view.barAt(338), 51);
    }

    void shows_as_many_bars_as_fit()
    {
        const QSize size(400, 300); // plot 332 wide: 47 bars of 7 pixels and one more
        QCOMPARE(ChartView(size, stateAt(99), 100, false).visible(), (BarRange{52, 99}));
        QCOMPARE(ChartView(size, stateAt(98.5), 100, false).visible(), (BarRange{52, 99}));
        QCOMPARE(ChartView(size, stateAt(98.4), 100, false).visible(), (BarRange{51, 98}));
        QCOMPARE(ChartView(size, stateAt(10), 100, false).visible(), (BarRange{0, 10}));
        QCOMPARE(ChartView(size, stateAt(500), 100, false).visible(), (BarRange{52, 99}));
        QCOMPARE(ChartView(size, stateAt(99, 40), 100, false).visible(), (BarRange{91, 99}));
        QCOMPARE(ChartView(size, stateAt(99, 1), 1'000'000, false).visible(), (BarRange{0, 99}));
        QCOMPARE(
            ChartView(size, stateAt(999'999, 1), 1'000'000, false).visible(), (BarRange{999'667, 999'999}));
    }

    void an_empty_series_shows_no_bars()
    {
        for (const qsizetype count : {0, -1}) {
            const ChartView view(QSize(400, 300), stateAt(0), count, false);
            QVERIFY(view.visible().isEmpty());
            QVERIFY(!view.visible().contains(0));
            QCOMPARE(view.count(), 0);
            QCOMPARE(view.barAt(331), 0);
            QCOMPARE(view.prices().min, 0.0 - (0.06 + 1e-9));
            QCOMPARE(view.prices().max, 1.0 + 0.06 + 1e-9);
        }
    }

    void price_range_has_a_margin_of_six_percent()
    {
        const std::array bars{bar(1.5, 2.0), bar(1.0, 1.7), bar(1.2, 3.0)};
        const PriceRange range = paddedPriceRange(bars, 0.0, 0.0);
        QCOMPARE(range.min, 1.0 - (2.0 * 0.06 + 1e-9));
        QCOMPARE(range.max, 3.0 + (2.0 * 0.06 + 1e-9));
    }

    void price_range_without_bars_is_zero_to_one()
    {
        const PriceRange range = paddedPriceRange({}, 0.0, 5.0);
        QCOMPARE(range.min, -(0.06 + 1e-9));
        QCOMPARE(range.max, 1.0 + 0.06 + 1e-9);
    }

    void price_range_takes_in_the_followed_quote()
    {
        const std::array bars{bar(1.0, 2.0)};
        const auto margin = [](double height) { return height * 0.06 + 1e-9; };
        QCOMPARE(paddedPriceRange(bars, 0.5, 2.5).min, 0.5 - margin(2.0));
        QCOMPARE(paddedPriceRange(bars, 0.5, 2.5).max, 2.5 + margin(2.0));
        QCOMPARE(paddedPriceRange(bars, 2.5, 0.0).max, 2.5 + margin(1.5));
        QCOMPARE(paddedPriceRange(bars, 2.5, -1.0).max, 2.5 + margin(1.5));
        QCOMPARE(paddedPriceRange(bars, 1.5, 1.6).max, 2.0 + margin(1.0));
        QCOMPARE(paddedPriceRange(bars, 0.0, 9.0).max, 2.0 + margin(1.0));
        QCOMPARE(paddedPriceRange(bars, -1.0, 9.0).min, 1.0 - margin(1.0));
    }

    void a_flat_series_still_has_a_range_data()
    {
        QTest::addColumn<double>("price");
        for (const double price : {0.0, 1.1, -40.0, 60000.0, 9e6, 1e12, 1e15, -1e15})
            QTest::newRow(qPrintable(QString::number(price))) << price;
    }
    void a_flat_series_still_has_a_range()
    {
        QFETCH(double, price);
        const std::array bars{bar(price, price)};
        const PriceRange range = paddedPriceRange(bars, 0.0, 0.0);
        QVERIFY(range.min < price);
        QVERIFY(range.max > price);
        const ChartView view = ChartView(QSize(400, 300), stateAt(0), 1, false).withPrices(range);
        QVERIFY(view.pricePixel(price) > 0);
        QVERIFY(view.pricePixel(price) < view.plot().bottom());
    }

    void prices_run_from_the_top_down()
    {
        const ChartView view = ChartView(QSize(400, 300), stateAt(0), 1, false).withPrices({1.0, 3.0});
        QCOMPARE(view.priceY(3.0), 0.0);
        QCOMPARE(view.priceY(1.0), 278.0);
        QCOMPARE(view.priceY(2.0), 139.0);
        QCOMPARE(view.priceAt(0), 3.0);
        QCOMPARE(view.priceAt(278), 1.0);
        QCOMPARE(view.priceAt(139), 2.0);
    }

    void pixels_of_prices_are_cut_not_rounded()
    {
        const ChartView view = ChartView(QSize(400, 300), stateAt(0), 1, false).withPrices({0.0, 278.0});
        QCOMPARE(view.pricePixel(278.0 - 10.9), 10);
        QCOMPARE(view.pricePixel(278.0 - 10.1), 10);
        QCOMPARE(view.pricePixel(278.5), 0);
    }

    void far_prices_and_bars_stay_within_an_integer()
    {
        const ChartView view
            = ChartView(QSize(400, 300), stateAt(0, 40), 1, false).withPrices({1.0, 1.0000001});
        QVERIFY(view.pricePixel(1e15) < 0);
        QVERIFY(view.pricePixel(-1e15) > 300);
        QVERIFY(view.barPixel(std::numeric_limits<qint64>::max()) > 400);
        QVERIFY(view.barPixel(std::numeric_limits<qint64>::min()) < 0);
        QVERIFY(view.barAt(1e300) > 0);
        QVERIFY(view.barAt(-1e300) < 0);
    }

    void senseless_view_states_have_a_defined_view()
    {
        for (const double bad : {notANumber, std::numeric_limits<double>::infinity(), -1.0, 0.0, 1e308}) {
            const ChartView view(QSize(400, 300), stateAt(bad, bad), 10, false);
            QVERIFY(view.barWidth() >= 1.0 && view.barWidth() <= 40.0);
            QVERIFY(std::isfinite(view.barX(0)));
            QVERIFY(view.visible().first >= 0);
            QVERIFY(view.visible().last <= 9);
        }
        QVERIFY(ChartView(QSize(400, 300), stateAt(-5), 10, false).visible().isEmpty());
    }

    void every_mapping_goes_there_and_back()
    {
        QRandomGenerator random(20260602);
        for (int round = 0; round < 2000; ++round) {
            const QSize size
                = round % 10 == 0 ? QSize(240, 160) : QSize(random.bounded(4000), random.bounded(3000));
            const qsizetype count = round % 17 == 0 ? 0 : random.bounded(1, 1'000'000);
            ViewState state
                = stateAt(random.bounded(1.0) * static_cast<double>(count), 1.0 + random.bounded(39.0));
            state.chartShift = random.bounded(2) == 1;
            const double low = random.bounded(100'000.0) - 1000.0;
            const ChartView view = ChartView(size, state, count, random.bounded(2) == 1)
                                       .withPrices({low, low + 1e-6 + random.bounded(1000.0)});
            QVERIFY(view.plot().width() >= 10 && view.plot().height() >= 10);
            QVERIFY(view.visible().isEmpty() == (count == 0));
            for (const qsizetype index : {Q_INT64_C(0), view.visible().first, view.visible().last, count}) {
                QCOMPARE(view.barAt(view.barX(static_cast<double>(index))), index);
                if (view.barWidth() > 2.0) // the column lies less than half a bar beside the centre
                    QCOMPARE(view.barAt(view.barPixel(index)), index);
                QVERIFY(view.barPixel(index + 1) > view.barPixel(index));
            }
            const double height = view.prices().max - view.prices().min;
            for (const double share : {0.0, 0.25, 0.5, 1.0}) {
                const double price = view.prices().min + height * share;
                const double tolerance = height * 1e-9 + std::abs(price) * 1e-12;
                QVERIFY(std::abs(view.priceAt(view.priceY(price)) - price) <= tolerance);
                const double y = view.plot().top() + view.plot().height() * share;
                QVERIFY(std::abs(view.priceY(view.priceAt(y)) - y) <= 0.01);
                QVERIFY(std::abs(view.pricePixel(price) - view.priceY(price)) < 1.0);
            }
        }
    }

    void the_button_sits_in_the_lower_right_corner()
    {
        const ChartView view(QSize(400, 300), stateAt(0), 1, false);
        QCOMPARE(view.scrollToEndButton(), QRect(331 - 30, 277 - 26, 24, 20));
    }

    void a_place_is_told_within_the_plot_only()
    {
        ViewState state;
        state.rightBarIndex = 9;
        const ChartView view(QSize(400, 300), state, 10, 0);
        const QPoint corner = view.plot().bottomRight();
        QCOMPARE(view.placeAt(corner), (CrosshairPlace{9, view.priceAt(corner.y())}));
        QCOMPARE(view.placeAt(QPoint(0, 0))->bar, qsizetype{-38}); // beside the candles
        QVERIFY(!view.placeAt(corner + QPoint(1, 0)));
        QVERIFY(!view.placeAt(corner + QPoint(0, 1)));
        QVERIFY(!view.placeAt(QPoint(-1, -1)));
    }
};

TAVORAN_TEST(TestChartView)
#include "tst_ChartView.moc"
