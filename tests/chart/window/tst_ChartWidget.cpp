#include "chart/window/ChartWidget.h"

#include "chart/ChartFixtures.h"
#include "chart/layers/ChartFrame.h"
#include "support/TestMain.h"

#include <QSignalSpy>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using fixtures::midnight;
using fixtures::quarterHour;
using fixtures::wave;

class TestChartWidget final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void starts_empty_and_following()
    {
        const ChartWidget chart;
        QVERIFY(chart.candles().empty());
        QCOMPARE(chart.timeframeMs(), 900'000);
        QCOMPARE(chart.digits(), 5);
        QCOMPARE(chart.bid(), 0.0);
        QCOMPARE(chart.ask(), 0.0);
        QCOMPARE(chart.barWidth(), 7.0);
        QCOMPARE(chart.rightBarIndex(), 0.0);
        QVERIFY(chart.autoScroll());
        QVERIFY(!chart.chartShift());
        QVERIFY(!chart.measureMode());
        QVERIFY(!chart.pane(IndicatorKind::Rsi).shown);
        QCOMPARE(chart.pane(IndicatorKind::Rsi).period, 14);
        QCOMPARE(chart.chartType(), 0);
        QCOMPARE(chart.minimumSize(), QSize(240, 160));
        QCOMPARE(chart.focusPolicy(), Qt::StrongFocus);
        QVERIFY(chart.hasMouseTracking());
        QVERIFY(!chart.hoveredCandle());
        QCOMPARE(chart.frame().pointer, QPoint(-1, -1));
        QVERIFY(!chart.frame().ruler);
        QVERIFY(chart.tool().isEmpty());
        QVERIFY(chart.drawings().isEmpty());
        QVERIFY(chart.movingAverages().isEmpty());
        QVERIFY(chart.tradeLevels().isEmpty());
        QCOMPARE(chart.frame().draggedLevel, -1);
        const ChartColors& colors = chart.colors();
        QCOMPARE(colors.background.name(), u"#000000"_s);
        QCOMPARE(colors.grid.name(), u"#232323"_s);
        QCOMPARE(colors.axis.name(), u"#c0c0c0"_s);
        QCOMPARE(colors.up.name(), u"#00e600"_s);
        QCOMPARE(colors.down.name(), u"#ffffff"_s);
        QCOMPARE(colors.line.name(), u"#4fc3f7"_s);
        QCOMPARE(colors.volume.name(), u"#2f6b3f"_s);
    }

    void a_new_series_is_shown_at_its_end()
    {
        ChartWidget chart;
        chart.setCandles(wave(100));
        QCOMPARE(chart.rightBarIndex(), 99.0);
        chart.setCandles({});
        QCOMPARE(chart.rightBarIndex(), 0.0);
        QVERIFY(chart.candles().empty());
        QVERIFY(chart.view().visible().isEmpty());
    }

    void a_new_series_follows_again_and_says_so_once()
    {
        ChartWidget chart;
        QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
        chart.setCandles(wave(100));
        QCOMPARE(follows.count(), 0);
        chart.setAutoScroll(false);
        follows.clear();
        chart.setCandles(wave(50));
        QCOMPARE(follows.count(), 1);
        QCOMPARE(follows.first().first().toBool(), true);
        QVERIFY(chart.autoScroll());
    }

    void following_can_be_switched()
    {
        ChartWidget chart;
        chart.setCandles(wave(100));
        QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
        chart.setAutoScroll(true);
        QCOMPARE(follows.count(), 0);
        chart.setAutoScroll(false);
        chart.setAutoScroll(false);
        QCOMPARE(follows.count(), 1);
        QCOMPARE(follows.takeFirst().first().toBool(), false);
        QCOMPARE(chart.rightBarIndex(), 99.0);
        const Candle last = chart.candles().back();
        chart.onTick(last.close, last.close, last.time + quarterHour);
        QCOMPARE(chart.rightBarIndex(), 99.0);
        chart.setAutoScroll(true);
        QCOMPARE(chart.rightBarIndex(), 100.0);
        QCOMPARE(follows.takeFirst().first().toBool(), true);
        chart.setAutoScroll(false);
        follows.clear();
        chart.scrollToEnd();
        QCOMPARE(follows.count(), 1);
        QVERIFY(chart.autoScroll());
    }

    void ticks_grow_the_newest_bar_and_append()
    {
        ChartWidget chart;
        chart.setTimeframeMs(60'000);
        chart.onTick(1.0, 1.2, midnight + 5);
        chart.onTick(1.4, 1.6, midnight + 59'999);
        chart.onTick(1.2, 1.2, midnight + 60'000);
        QCOMPARE(chart.candles().size(), std::size_t{2});
        const Candle first{midnight, 1.1, 1.5, 1.1, 1.5, 2};
        QCOMPARE(chart.candles().front().open, first.open);
        QVERIFY(chart.candles().front() == first);
        QCOMPARE(chart.rightBarIndex(), 1.0);
        QCOMPARE(chart.bid(), 1.2);
    }

    void a_late_tick_moves_the_quotes_only()
    {
        ChartWidget chart;
        chart.setCandles(wave(10));
        const std::vector<Candle> before = chart.candles();
        chart.onTick(1.11, 1.12, midnight);
        QVERIFY(chart.candles() == before);
        QCOMPARE(chart.bid(), 1.11);
        QCOMPARE(chart.ask(), 1.12);
    }

    void senseless_ticks_are_ignored()
    {
        ChartWidget chart;
        chart.setCandles(wave(10));
        chart.onTick(1.1, 1.2, midnight);
        const std::vector<Candle> before = chart.candles();
        for (const double bad : {std::numeric_limits<double>::quiet_NaN(), 1e308, -1e308}) {
            chart.onTick(bad, 1.0, midnight + 1'000'000'000);
            chart.onTick(1.0, bad, midnight + 1'000'000'000);
        }
        QVERIFY(chart.candles() == before);
        QCOMPARE(chart.bid(), 1.1);
        QCOMPARE(chart.ask(), 1.2);
    }

    void menu_zoom_steps_are_inverse_and_limited()
    {
        ChartWidget chart;
        chart.zoomIn();
        QCOMPARE(chart.barWidth(), 7.0 * 1.2);
        chart.zoomOut();
        QCOMPARE(chart.barWidth(), 7.0 * 1.2 / 1.2);
        for (int i = 0; i < 30; ++i)
            chart.zoomIn();
        QCOMPARE(chart.barWidth(), 40.0);
        for (int i = 0; i < 30; ++i)
            chart.zoomOut();
        QCOMPARE(chart.barWidth(), 1.0);
    }

    void colours_are_opaque_and_valid()
    {
        ChartWidget chart;
        ChartColors colors;
        colors.background = QColor(10, 20, 30, 40);
        colors.grid = QColor();
        colors.up = QColor(1, 2, 3);
        chart.setColors(colors);
        QCOMPARE(chart.colors().background, QColor(10, 20, 30));
        QCOMPARE(chart.colors().grid, QColor(0x23, 0x23, 0x23));
        QCOMPARE(chart.colors().up, QColor(1, 2, 3));
    }

    void unknown_chart_types_are_candles()
    {
        ChartWidget chart;
        for (const int type : {3, -1, 1000}) {
            chart.setChartType(2);
            QCOMPARE(chart.chartType(), 2);
            chart.setChartType(type);
            QCOMPARE(chart.chartType(), 0);
        }
    }

    void the_lower_pane_takes_its_room()
    {
        ChartWidget chart;
        chart.resize(400, 500);
        chart.setPane(IndicatorKind::Rsi, true, 1);
        QCOMPARE(chart.pane(IndicatorKind::Rsi).period, 2);
        QCOMPARE(chart.view().pane(0), QRect(0, 378, 332, 100));
        QCOMPARE(chart.view().plot(), QRect(0, 0, 332, 377));
        chart.setPane(IndicatorKind::Rsi, false, -9);
        QVERIFY(chart.view().pane(0).isEmpty());
        QCOMPARE(chart.pane(IndicatorKind::Rsi).period, 2);
    }

    void the_ruler_can_be_armed()
    {
        ChartWidget chart;
        chart.setMeasureMode(true);
        QVERIFY(chart.measureMode());
        chart.setMeasureMode(false);
        QVERIFY(!chart.measureMode());
    }

    void quotes_widen_the_scale_only_while_following()
    {
        ChartWidget chart;
        chart.resize(400, 300);
        chart.setCandles(wave(100));
        const PriceRange bars = chart.view().prices();
        chart.onTick(1.0, 1.3, midnight); // late: only the quotes move
        const PriceRange quotes{1.0 - (0.3 * 0.06 + 1e-9), 1.3 + (0.3 * 0.06 + 1e-9)};
        QCOMPARE(chart.view().prices().min, quotes.min);
        QCOMPARE(chart.view().prices().max, quotes.max);
        chart.setAutoScroll(false);
        QCOMPARE(chart.view().prices(), bars);
        chart.setAutoScroll(true);
        QCOMPARE(chart.view().prices().max, quotes.max);
        chart.onTick(1.2, 0.0, midnight); // no ask: the bid is the highest
        const double lowest = bars.min + (bars.max - bars.min - 2e-9) * 0.06 / 1.12 + 1e-9;
        QVERIFY(std::abs(chart.view().prices().max - (1.2 + (1.2 - lowest) * 0.06)) < 1e-8);
    }

    void volumes_are_a_share_of_the_largest_in_view()
    {
        ChartWidget chart;
        chart.resize(400, 300); // 48 bars in view
        std::vector<Candle> candles = wave(100);
        candles[51].volume = 1'000'000; // the last one out of view
        candles[52].volume = 5'000;
        chart.setCandles(candles);
        QCOMPARE(chart.frame().largestVolume, 5'000);
        chart.zoomOut();
        QCOMPARE(chart.frame().largestVolume, 1'000'000);
        for (Candle& candle : candles)
            candle.volume = 0;
        chart.setCandles(candles);
        QCOMPARE(chart.frame().largestVolume, 1);
    }

    void zooming_keeps_anchor_and_following()
    {
        for (const bool following : {true, false}) {
            ChartWidget chart;
            chart.resize(400, 300);
            chart.setCandles(wave(100));
            chart.setAutoScroll(following);
            for (int i = 0; i < 20; ++i)
                fixtures::turnWheel(chart, QPoint(0, -120));
            QCOMPARE(chart.barWidth(), 1.0);
            QCOMPARE(chart.rightBarIndex(), 99.0);
            QCOMPARE(chart.autoScroll(), following);
            QCOMPARE(chart.view().barPixel(99), 331);
            for (int i = 0; i < 40; ++i)
                fixtures::turnWheel(chart, QPoint(0, 1));
            QCOMPARE(chart.barWidth(), 40.0);
            QCOMPARE(chart.autoScroll(), following);
            QCOMPARE(chart.view().barPixel(99), 331);
        }
    }

    void the_last_pointer_is_forgotten_when_it_leaves()
    {
        ChartWidget chart;
        chart.resize(400, 300);
        fixtures::hover(chart, QPoint(20, 30));
        QVERIFY(!chart.hoveredCandle()); // no bars yet
        chart.setCandles(wave(100));
        QVERIFY(chart.hoveredCandle());
        QCOMPARE(chart.frame().pointer, QPoint(20, 30));
        fixtures::leave(chart);
        QCOMPARE(chart.frame().pointer, QPoint(-1, -1));
        QVERIFY(!chart.hoveredCandle());
    }
};

TAVORAN_TEST(TestChartWidget)
#include "tst_ChartWidget.moc"
