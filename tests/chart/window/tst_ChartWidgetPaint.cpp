#include "chart/ChartWidgetFixture.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <limits>

using namespace Qt::StringLiterals;
using fixtures::midnight;
using fixtures::showChart;
using fixtures::wave;

using Change = void (*)(ChartWidget&);

class TestChartWidgetPaint final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void setters_that_change_nothing_paint_nothing()
    {
        ChartWidget chart;
        showChart(chart, 100);
        const QList<TradeLevel> levels{{u"1"_s, u"SL"_s, 1.1, u"sl"_s, QColor(Qt::red), Qt::DashLine, true}};
        chart.setTradeLevels(levels);
        chart.setSymbolInfo(u"A"_s, u"B"_s, u"C"_s);
        chart.onTick(1.1, 1.2, midnight);
        PaintCounter paints(chart);
        paints.taken();
        chart.setTradeLevels(levels);
        chart.setSymbolInfo(u"A"_s, u"B"_s, u"C"_s);
        chart.setDigits(5);
        chart.setTimeframeMs(900'000);
        chart.setAutoScroll(true);
        chart.scrollToEnd();
        chart.setChartShift(false);
        chart.setChartType(0);
        chart.setColors(ChartColors());
        chart.setPane(IndicatorKind::Rsi, false, 14);
        chart.setMeasureMode(false);
        chart.onTick(1.1, 1.2, midnight); // late, same prices
        fixtures::leave(chart);
        fixtures::hover(chart, QPoint(350, 100)); // over the price axis
        fixtures::hover(chart, QPoint(350, 110));
        QCOMPARE(paints.taken(), 0);
    }

    void every_change_paints_data()
    {
        QTest::addColumn<Change>("change");
        const auto row = [](const char* name, Change change) { QTest::newRow(name) << change; };
        row("series", [](ChartWidget& chart) { chart.setCandles(wave(99)); });
        row("same series", [](ChartWidget& chart) { chart.setCandles(wave(100)); });
        row("late tick", [](ChartWidget& chart) { chart.onTick(1.1, 1.2, midnight); });
        row("newest bar", [](ChartWidget& chart) { chart.onTick(1.1, 1.1, chart.candles().back().time); });
        row("new bar", [](ChartWidget& chart) { chart.onTick(1.1, 1.1, chart.candles().back().time * 2); });
        row("bar length", [](ChartWidget& chart) { chart.setTimeframeMs(86'400'000); });
        row("symbol", [](ChartWidget& chart) { chart.setSymbolInfo(u"A"_s, u""_s, u""_s); });
        row("timeframe label", [](ChartWidget& chart) { chart.setSymbolInfo(u""_s, u"B"_s, u""_s); });
        row("description", [](ChartWidget& chart) { chart.setSymbolInfo(u""_s, u""_s, u"C"_s); });
        row("digits", [](ChartWidget& chart) { chart.setDigits(3); });
        row("not following", [](ChartWidget& chart) { chart.setAutoScroll(false); });
        row("margin", [](ChartWidget& chart) { chart.setChartShift(true); });
        row("narrower", [](ChartWidget& chart) { chart.zoomOut(); });
        row("wheel", [](ChartWidget& chart) { fixtures::turnWheel(chart, QPoint(0, 120)); });
        row("type", [](ChartWidget& chart) { chart.setChartType(2); });
        row("colours", [](ChartWidget& chart) {
            ChartColors colors;
            colors.volume = QColor(Qt::red);
            chart.setColors(colors);
        });
        row("averages", [](ChartWidget& chart) {
            chart.setMovingAverages({{IndicatorKind::Sma, 5, QColor(Qt::red)}});
        });
        row("lower pane", [](ChartWidget& chart) { chart.setPane(IndicatorKind::Rsi, true, 14); });
        row("objects", [](ChartWidget& chart) { chart.setDrawings({{{}, u"vline"_s, {{midnight, 1.0}}}}); });
        row("tool", [](ChartWidget& chart) { chart.setTool(u"vline"_s); });
        row("ruler", [](ChartWidget& chart) { chart.setMeasureMode(true); });
        row("levels", [](ChartWidget& chart) {
            chart.setTradeLevels({{u"1"_s, u"SL"_s, 1.1, u"sl"_s, QColor(Qt::red), Qt::DashLine, true}});
        });
        row("pointer", [](ChartWidget& chart) { fixtures::hover(chart, QPoint(100, 100)); });
    }
    void every_change_paints()
    {
        QFETCH(const Change, change);
        ChartWidget chart;
        showChart(chart, 100);
        PaintCounter paints(chart);
        paints.taken();
        change(chart);
        QCOMPARE(paints.taken(), 1);
    }

    void several_changes_make_one_paint()
    {
        ChartWidget chart;
        showChart(chart, 100);
        PaintCounter paints(chart);
        paints.taken();
        chart.setDigits(3);
        chart.setChartShift(true);
        chart.setChartType(1);
        chart.setSymbolInfo(u"A"_s, u"B"_s, u"C"_s);
        chart.zoomIn();
        fixtures::hover(chart, QPoint(50, 50));
        for (int i = 0; i < 20; ++i)
            chart.onTick(1.1 + i * 0.001, 1.1 + i * 0.001, chart.candles().back().time + i * Q_INT64_C(1000));
        QCOMPARE(paints.taken(), 1);
    }

    void pointer_and_ticks_within_the_range_paint_no_older_candle()
    {
        ChartWidget chart;
        showChart(chart, 100);
        const Candle last = chart.candles().back();
        PaintCounter paints(chart);
        fixtures::hover(chart, QPoint(10, 100));
        chart.onTick(last.close, last.close, last.time);
        paints.taken();
        fixtures::hover(chart, QPoint(11, 100));
        paints.taken();
        const quint64 before = chart.seriesPaints();
        for (int i = 0; i < 20; ++i) {
            fixtures::hover(chart, QPoint(20 + i * 5, 50 + i));
            QCOMPARE(paints.taken(), 1);
            const double price = last.low + (last.high - last.low) * i / 20.0;
            chart.onTick(price, price, last.time + i);
            QCOMPARE(paints.taken(), 1);
        }
        QCOMPARE(chart.seriesPaints(), before);
    }

    void another_history_of_the_same_span_is_painted()
    {
        ChartWidget chart;
        showChart(chart, 100);
        PaintCounter paints(chart);
        for (int x = 10; x < 13; ++x) { // until the older candles are kept as a picture
            fixtures::hover(chart, QPoint(x, 100));
            paints.taken();
        }
        fixtures::leave(chart);
        const QImage before = chart.grab().toImage();
        std::vector<Candle> candles = chart.candles();
        std::swap(candles.at(80).open, candles.at(80).close);
        QVERIFY(candles.at(80).open != candles.at(80).close);
        chart.setCandles(std::move(candles));
        QVERIFY(chart.grab().toImage() != before);
    }

    void frames_compute_no_older_indicator_value()
    {
        ChartWidget chart;
        chart.setMovingAverages(
            {{IndicatorKind::Sma, 5, QColor(Qt::red)}, {IndicatorKind::Ema, 9, QColor(Qt::blue)}});
        chart.setPane(IndicatorKind::Rsi, true, 14);
        showChart(chart, 1000);
        const Candle last = chart.candles().back();
        PaintCounter paints(chart);
        paints.taken();
        const quint64 before = chart.indicatorValues();
        QVERIFY(before >= 3 * 1000);
        quint64 frames = 0;
        for (int i = 0; i < 10; ++i) {
            fixtures::hover(chart, QPoint(20 + i * 5, 50 + i));
            frames += static_cast<quint64>(paints.taken());
            const double price = last.low + (last.high - last.low) * i / 10.0;
            chart.onTick(price, price, last.time + i);
            frames += static_cast<quint64>(paints.taken());
        }
        QCOMPARE(frames, quint64{20});
        QVERIFY(chart.indicatorValues() >= before + 3 * 10);
        QVERIFY(chart.indicatorValues() <= before + 3 * frames);
    }

    void a_tick_beyond_the_range_paints_all()
    {
        ChartWidget chart;
        showChart(chart, 100);
        PaintCounter paints(chart);
        paints.taken();
        const quint64 before = chart.seriesPaints();
        const PriceRange range = chart.view().prices();
        chart.onTick(2.0, 2.0, chart.candles().back().time);
        QCOMPARE(paints.taken(), 1);
        QVERIFY(chart.seriesPaints() > before);
        QVERIFY(chart.view().prices().max > range.max);
        QVERIFY(chart.view().prices().contains(2.0));
    }

    void a_pointer_move_paints_where_the_crosshair_was_and_is()
    {
        ChartWidget chart;
        showChart(chart, 100);
        PaintCounter paints(chart);
        fixtures::hover(chart, QPoint(100, 100));
        QCOMPARE(paints.taken(), 1);
        QCOMPARE(paints.region(), QRegion(chart.rect())); // the header goes
        fixtures::hover(chart, QPoint(200, 150));
        QCOMPARE(paints.taken(), 1);
        for (const QPoint& pointer : {QPoint(100, 100), QPoint(200, 150)}) {
            for (const QRect& part : {QRect(0, pointer.y(), 332, 1), QRect(pointer.x(), 0, 1, 278),
                     QRect(332, pointer.y() - 9, 66, 18), QRect(pointer.x() - 50, 279, 100, 19),
                     QRect(6, 4, 320, 16)})
                QVERIFY((QRegion(part) - paints.region()).isEmpty());
        }
        QVERIFY(!paints.region().intersects(QRect(20, 30, 60, 60)));
        fixtures::leave(chart);
        QCOMPARE(paints.taken(), 1);
        QCOMPARE(paints.region(), QRegion(chart.rect()));
    }

    void a_tick_paints_what_tells_the_newest_bar()
    {
        ChartWidget chart;
        showChart(chart, 100);
        std::vector<Candle> candles = wave(100);
        candles.back().volume = 1;
        chart.setCandles(candles);
        const Candle& last = candles.back();
        const double middle = (last.low + last.high) / 2;
        chart.onTick(middle, middle, last.time);
        PaintCounter paints(chart);
        paints.taken();
        chart.onTick(last.low, last.high, last.time);
        QCOMPARE(paints.taken(), 1);
        const ChartView& view = chart.view();
        for (const QRect& part :
            {QRect(324, 0, 76, 300), QRect(0, 0, 332, 18), QRect(0, view.pricePixel(middle), 332, 1),
                QRect(0, view.pricePixel(last.low), 332, 1), QRect(0, view.pricePixel(last.high), 332, 1)})
            QVERIFY((QRegion(part) - paints.region()).isEmpty());
        int painted = 0;
        for (const QRect& part : paints.region().intersected(QRect(0, 30, 300, 247)))
            painted += part.width() * part.height();
        QVERIFY(painted <= 4 * 300); // lines of the quotes, before and now

        candles.back().volume = 1000;
        chart.setCandles(candles);
        paints.taken();
        chart.onTick(last.low, last.high, last.time); // every bar of the histogram shrinks
        QCOMPARE(paints.taken(), 1);
        QVERIFY((QRegion(QRect(0, 278 - 39, 332, 39)) - paints.region()).isEmpty());
    }

    void any_size_can_be_painted_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("nothing") << QSize(0, 0);
        QTest::newRow("one pixel") << QSize(1, 1);
        QTest::newRow("a line") << QSize(500, 1);
        QTest::newRow("a column") << QSize(1, 500);
        QTest::newRow("smallest") << QSize(240, 160);
        QTest::newRow("very wide") << QSize(30'000, 200);
        QTest::newRow("very high") << QSize(200, 30'000);
    }
    void any_size_can_be_painted()
    {
        QFETCH(QSize, size);
        for (const int bars : {0, 1, 2000}) {
            for (int type = 0; type < 3; ++type) {
                ChartWidget chart;
                chart.setMinimumSize(0, 0);
                chart.resize(size);
                chart.setChartType(type);
                chart.setChartShift(bars == 1);
                chart.setPane(IndicatorKind::Rsi, bars == 1, 14);
                chart.setCandles(wave(bars));
                chart.setAutoScroll(bars != 1);
                fixtures::hover(chart, QPoint(0, 0));
                for (int look = 0; look < 2; ++look)
                    QCOMPARE(chart.grab().size(), size);
            }
        }
    }

    void any_digits_can_be_painted()
    {
        ChartWidget chart;
        chart.resize(300, 200);
        chart.setCandles(wave(50));
        chart.setSymbolInfo(u"A"_s, u"M15"_s, u"%1 <b>"_s);
        for (const int digits : {-1, std::numeric_limits<int>::min(), 9, std::numeric_limits<int>::max()}) {
            chart.setDigits(digits);
            QCOMPARE(chart.digits(), digits);
            QVERIFY(!chart.grab().isNull());
        }
    }

    void a_million_bars_are_as_good_as_a_few()
    {
        ChartWidget few;
        ChartWidget many;
        std::vector<Candle> bars = wave(1'000'000);
        few.resize(500, 300);
        many.resize(500, 300);
        few.setCandles({bars.end() - 500, bars.end()});
        many.setCandles(std::move(bars));
        QCOMPARE(many.view().visible(), (BarRange{999'938, 999'999}));
        QCOMPARE(many.view().prices(), few.view().prices());
        // Vertical lines stand on other bars; without them the pictures are the same.
        ChartColors colors;
        colors.grid = colors.background;
        few.setColors(colors);
        many.setColors(colors);
        const QRect plot = few.view().plot();
        QCOMPARE(many.grab(plot).toImage(), few.grab(plot).toImage());
    }

    void flat_series_and_large_prices_are_painted()
    {
        for (const double price : {1.1, 0.0, -37.0, 8e6, 1e15}) {
            ChartWidget chart;
            chart.resize(300, 200);
            chart.setCandles(
                {{midnight, price, price, price, price, 0}, {midnight + 1, price, price, price, price, 0}});
            const QImage image = chart.grab().toImage();
            QVERIFY(fixtures::pixelsOf(image, chart.view().plot(), chart.colors().up) > 5);
        }
    }
};

TAVORAN_TEST(TestChartWidgetPaint)
#include "tst_ChartWidgetPaint.moc"
