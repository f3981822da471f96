#include "chart/layers/BandCache.h"

#include "chart/ChartFixtures.h"
#include "chart/DrawingFixtures.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/LayerStack.h"
#include "chart/window/ChartWidget.h"
#include "support/TestMain.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QScreen>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

QImage canvas(const ChartWidget& chart, qreal ratio)
{
    const QSizeF size = QSizeF(chart.size()) * ratio;
    QImage image(static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height())),
        QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::magenta); // shows what nobody painted
    return image;
}

QImage plain(const ChartWidget& chart, qreal ratio)
{
    QImage image = canvas(chart, ratio);
    QPainter painter(&image);
    layerstack::paintAll(painter, chart.frame());
    return image;
}

QImage kept(BandCache& cache, const ChartWidget& chart, qreal ratio)
{
    QImage image = canvas(chart, ratio);
    QPainter painter(&image);
    cache.paint(painter, chart.frame(), chart.rect());
    return image;
}

/// Averages that cross each other and the prices, and the lower pane.
void addIndicators(ChartWidget& chart)
{
    chart.setMovingAverages({{IndicatorKind::Sma, 3, QColor(0xff, 0xd5, 0x4f)},
        {IndicatorKind::Ema, 4, QColor(0x4f, 0xc3, 0xf7)}, {IndicatorKind::Sma, 1, QColor(0xba, 0x68, 0xc8)},
        {IndicatorKind::Ema, 2, QColor(0xff, 0x8a, 0x65)}});
    chart.setPane(IndicatorKind::Rsi, true, 5);
}

void changeIndicatorsAtRandom(ChartWidget& chart, QRandomGenerator& random)
{
    QList<MovingAverageSpec> averages = chart.movingAverages();
    if (random.bounded(5) == 0)
        averages.clear();
    else if (random.bounded(5) == 0)
        return chart.setPane(IndicatorKind::Rsi, random.bounded(3) > 0, random.bounded(1, 20));
    averages.append({random.bounded(2) == 0 ? IndicatorKind::Sma : IndicatorKind::Ema,
        static_cast<qint32>(random.bounded(1, 40)), QColor::fromRgb(random.generate() | 0x404040U)});
    chart.setMovingAverages(averages);
}

void changeAtRandom(ChartWidget& chart, QRandomGenerator& random)
{
    const std::vector<Candle>& candles = chart.candles();
    const Candle last = candles.empty() ? Candle() : candles.back();
    const double price = last.low + (last.high - last.low) * random.bounded(1.0);
    switch (random.bounded(15)) {
    case 0:
        return chart.zoomIn();
    case 1:
        return chart.zoomOut();
    case 2:
        return chart.setChartType(random.bounded(3));
    case 3:
        return chart.setChartShift(random.bounded(2) == 1);
    case 4:
        return chart.setAutoScroll(random.bounded(2) == 1);
    case 5:
        return fixtures::leave(chart);
    case 6:
        return chart.onTick(price * 1.002, price * 1.0021, last.time);
    case 7:
        return chart.onTick(price, price + 0.0001, last.time + fixtures::quarterHour);
    case 14:
        return changeIndicatorsAtRandom(chart, random);
    case 8:
    case 9:
    case 10:
    case 11:
        return chart.onTick(price, price + 0.0001, last.time);
    default:
        return fixtures::hover(
            chart, QPoint(random.bounded(chart.width() + 20) - 10, random.bounded(chart.height())));
    }
}

} // namespace

class TestBandCache final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_picture_equals_all_layers_in_order_data()
    {
        QTest::addColumn<qreal>("ratio");
        QTest::addColumn<int>("type");
        for (const qreal ratio : {1.0, 1.25, 1.5, 2.0}) {
            for (int type = 0; type < 3; ++type)
                QTest::addRow("ratio %.2f, type %d", ratio, type) << ratio << type;
        }
    }
    void the_picture_equals_all_layers_in_order()
    {
        QFETCH(qreal, ratio);
        QFETCH(int, type);
        QRandomGenerator random(static_cast<quint32>(type) + 7);
        ChartWidget chart;
        addIndicators(chart);
        chart.resize(260 + random.bounded(60), 170 + random.bounded(60));
        chart.setSymbolInfo(u"EURUSD"_s, u"M15"_s, u"Euro"_s);
        chart.setTradeLevels({{u"1"_s, u"SL"_s, 1.1, u"sl #1"_s, QColor(Qt::red), Qt::DashLine, true},
            {u"1"_s, u"ENTRY"_s, 1.105, u"buy"_s, QColor(Qt::blue), Qt::SolidLine, false}});
        chart.setCandles(fixtures::wave(150));
        fixtures::addObjects(chart);
        chart.setChartType(type);
        BandCache cache;
        for (int step = 0; step < 120; ++step) {
            changeAtRandom(chart, random);
            const QImage expected = plain(chart, ratio);
            const int looks = 1 + random.bounded(3); // painted straight, then as a picture, then copied
            for (int look = 0; look < looks; ++look)
                QVERIFY2(kept(cache, chart, ratio) == expected,
                    qPrintable(u"step %1, look %2"_s.arg(step).arg(look)));
        }
        QVERIFY(cache.seriesPaints() < 200);
    }

    void the_widget_shows_all_layers_in_order()
    {
        ChartWidget chart;
        chart.resize(300, 200);
        chart.setCandles(fixtures::wave(100));
        chart.onTick(1.1, 1.1002, chart.candles().back().time);
        fixtures::hover(chart, QPoint(60, 60));
        for (int look = 0; look < 3; ++look) {
            const QImage shown = chart.grab().toImage().convertToFormat(QImage::Format_RGB32);
            QCOMPARE(shown, plain(chart, shown.devicePixelRatio()));
            const Candle last = chart.candles().back();
            chart.onTick((last.open + last.close) / 2, last.close, last.time);
        }
    }

    void what_stays_on_the_window_equals_all_layers_in_order()
    {
        // Pointer moves and ticks paint only a part; the rest of the window is what earlier frames left
        // there.
        QRandomGenerator random(11);
        QWidget window;
        window.resize(340, 220);
        auto* chart = new ChartWidget(&window);
        chart->resize(300, 200);
        addIndicators(*chart);
        chart->setSymbolInfo(u"EURUSD"_s, u"M15"_s, u"Euro"_s);
        chart->setTradeLevels({{u"1"_s, u"SL"_s, 1.1, u"sl #1"_s, QColor(Qt::red), Qt::DashLine, true}});
        chart->setCandles(fixtures::wave(150));
        fixtures::addObjects(*chart);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QScreen* screen = window.screen();
        for (int step = 0; step < 300; ++step) {
            for (int change = random.bounded(3); change >= 0; --change)
                changeAtRandom(*chart, random);
            QCoreApplication::processEvents();
            const QImage shown = screen->grabWindow(window.winId(), 0, 0, 300, 200)
                                     .toImage()
                                     .convertToFormat(QImage::Format_RGB32);
            QCOMPARE(shown.size(), QSize(300, 200));
            QVERIFY2(shown == plain(*chart, 1.0), qPrintable(u"step %1"_s.arg(step)));
        }
    }

    void ticks_and_partial_paints_leave_no_old_pixels_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("barWidth");
        for (int type = 0; type < 3; ++type) {
            for (const double barWidth : {1.0, 1.3, 1.7, 2.5, 2.9, 3.4, 4.1, 7.0})
                QTest::addRow("type %d, %.1f pixels", type, barWidth) << type << barWidth;
        }
    }
    void ticks_and_partial_paints_leave_no_old_pixels()
    {
        QFETCH(int, type);
        QFETCH(double, barWidth);
        QRandomGenerator random(23);
        QWidget window;
        window.resize(340, 220);
        auto* chart = new ChartWidget(&window);
        chart->resize(300, 200);
        chart->setChartType(type);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QScreen* screen = window.screen();
        for (int round = 0; round < 20; ++round) {
            if (round == 10)
                addIndicators(*chart);
            // Steep ways from bar to bar, in scales that other bars hold open.
            std::vector<Candle> candles = fixtures::wave(60);
            for (Candle& candle : candles) {
                candle.open = 1.0 + random.bounded(1.0);
                candle.close = 1.0 + random.bounded(1.0);
                candle.high = std::max(candle.open, candle.close);
                candle.low = std::min(candle.open, candle.close);
            }
            candles[50].high = 2.2;
            candles[50].low = 0.9;
            candles[50].volume = 100'000;
            chart->setCandles(candles);
            chart->setChartShift(round % 2 == 0);
            while (chart->barWidth() > barWidth)
                chart->zoomOut();
            QCoreApplication::processEvents();
            for (int step = 0; step < 24; ++step) {
                if (step % 2 == 0) {
                    const double price = 1.0 + random.bounded(1.0);
                    const double ask = random.bounded(4) == 0 ? 0.0 : price + random.bounded(0.1);
                    chart->onTick(random.bounded(4) == 0 ? 0.0 : price, ask, candles.back().time);
                } else {
                    // What a covering window or a level in the hand lets through.
                    const QPoint corner(random.bounded(300), random.bounded(200));
                    chart->update(
                        QRect(corner, QPoint(random.bounded(300), random.bounded(200))).normalized());
                }
                QCoreApplication::processEvents();
                const QImage shown = screen->grabWindow(window.winId(), 0, 0, 300, 200)
                                         .toImage()
                                         .convertToFormat(QImage::Format_RGB32);
                QVERIFY2(
                    shown == plain(*chart, 1.0), qPrintable(u"round %1, step %2"_s.arg(round).arg(step)));
            }
        }
    }

    void a_newest_bar_between_crowded_neighbours_is_the_same_to_the_pixel_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("stepsOut");
        for (int type = 0; type < 3; ++type) {
            for (int steps = 0; steps <= 11; ++steps)
                QTest::addRow("type %d, %d steps", type, steps) << type << steps;
        }
    }
    void a_newest_bar_between_crowded_neighbours_is_the_same_to_the_pixel()
    {
        QFETCH(int, type);
        QFETCH(int, stepsOut);
        ChartWidget chart;
        chart.resize(300, 200);
        addIndicators(chart);
        chart.setChartType(type);
        for (int i = 0; i < stepsOut; ++i)
            chart.zoomOut();
        // Bars as low as the histogram is high, so that prices and volumes of neighbours share pixels.
        std::vector<Candle> candles = fixtures::wave(40);
        for (Candle& candle : candles) {
            candle.volume = 1000;
            candle.low = candle.open = candle.close = 1.0;
            candle.high = 1.001;
        }
        candles.front().high = 1.5;
        chart.setCandles(candles);
        BandCache cache;
        for (const double price : {1.0, 1.02, 1.0, 1.04, 1.01}) {
            chart.onTick(price, price, candles.back().time);
            for (int look = 0; look < 3; ++look)
                QVERIFY(kept(cache, chart, 1.0) == plain(chart, 1.0));
        }
        for (const qreal ratio : {1.25, 1.5, 2.0}) {
            BandCache finer;
            for (const double price : {1.0, 1.02, 1.04}) {
                chart.onTick(price, price, candles.back().time);
                for (int look = 0; look < 3; ++look)
                    QVERIFY(kept(finer, chart, ratio) == plain(chart, ratio));
            }
        }
    }

    void equal_content_is_painted_once_more_and_then_copied()
    {
        ChartWidget chart;
        chart.resize(300, 200);
        chart.setCandles(fixtures::wave(100));
        BandCache cache;
        kept(cache, chart, 1.0);
        QCOMPARE(cache.seriesPaints(), quint64{1});
        kept(cache, chart, 1.0);
        QCOMPARE(cache.seriesPaints(), quint64{2});
        for (int i = 0; i < 10; ++i) {
            fixtures::hover(chart, QPoint(20 + i, 30));
            kept(cache, chart, 1.0);
        }
        QCOMPARE(cache.seriesPaints(), quint64{2});
        kept(cache, chart, 2.0);
        QCOMPARE(cache.seriesPaints(), quint64{3});
    }

    void a_growing_largest_volume_is_the_same_to_the_pixel()
    {
        ChartWidget chart;
        chart.resize(300, 200);
        std::vector<Candle> candles = fixtures::wave(100);
        candles.back().volume = 300;
        chart.setCandles(candles);
        const Candle& last = candles.back();
        for (const qreal ratio : {1.0, 2.0}) {
            BandCache cache;
            for (int tick = 0; tick < 20; ++tick) {
                const double price = last.low + (last.high - last.low) * tick / 20;
                chart.onTick(price, price, last.time);
                for (int look = 0; look <= tick % 3; ++look)
                    QVERIFY(kept(cache, chart, ratio) == plain(chart, ratio));
            }
        }
    }

    void a_clipped_frame_comes_from_the_picture()
    {
        ChartWidget chart;
        chart.resize(300, 200);
        chart.setCandles(fixtures::wave(100));
        const QImage expected = plain(chart, 1.0);
        for (int step = 0; step < 6; ++step) {
            const QRect part(37 + step, 41 + step, 80, 70);
            BandCache cache;
            QImage image = canvas(chart, 1.0);
            QPainter painter(&image);
            painter.setClipRect(part);
            cache.paint(painter, chart.frame(), part);
            painter.end();
            QCOMPARE(image.copy(part), expected.copy(part));
            kept(cache, chart, 1.0);
            QCOMPARE(cache.seriesPaints(), quint64{1});
        }
    }

    void frames_painted_in_parts_have_no_seams_data()
    {
        QTest::addColumn<qreal>("ratio");
        QTest::addColumn<int>("type");
        for (const qreal ratio : {1.0, 1.25, 2.0}) {
            // A slanting line between device pixels is stroked anew within each clip; a chart asks for whole
            // frames there.
            const int types = ratio == 1.25 ? 2 : 3;
            for (int type = 0; type < types; ++type)
                QTest::addRow("ratio %.2f, type %d", ratio, type) << ratio << type;
        }
    }
    void frames_painted_in_parts_have_no_seams()
    {
        QFETCH(qreal, ratio);
        QFETCH(int, type);
        ChartWidget chart;
        addIndicators(chart);
        // A multiple of 4, so that every ratio has whole pixels at the edges of the parts.
        chart.resize(320, 200);
        chart.setChartType(type);
        chart.setChartShift(true);
        chart.setSymbolInfo(u"EURUSD"_s, u"M15"_s, u"Euro"_s);
        chart.setTradeLevels({{u"1"_s, u"SL"_s, 1.1, u"sl #1"_s, QColor(Qt::red), Qt::DashDotLine, true},
            {u"1"_s, u"TP"_s, 1.105, u"tp #1"_s, QColor(Qt::green), Qt::DotLine, true}});
        chart.setCandles(fixtures::wave(150));
        fixtures::addObjects(chart);
        chart.onTick(1.1, 1.1002, chart.candles().back().time);
        fixtures::hover(chart, QPoint(61, 83));
        const QImage expected = plain(chart, ratio);
        BandCache cache;
        QImage image = canvas(chart, ratio);
        QPainter painter(&image);
        for (int y = 0; y < chart.height(); y += 20) {
            // Every other part of a row at once, as a region of several rectangles.
            for (int odd = 0; odd < 2; ++odd) {
                QRegion parts;
                for (int x = odd * 20; x < chart.width(); x += 40)
                    parts += QRect(x, y, 20, 20);
                painter.setClipRegion(parts);
                cache.paint(painter, chart.frame(), parts);
            }
        }
        painter.end();
        QCOMPARE(image, expected);
    }

    void a_turned_painter_gets_the_layers_themselves()
    {
        ChartWidget chart;
        chart.resize(300, 200);
        chart.setCandles(fixtures::wave(100));
        BandCache cache;
        for (int look = 1; look <= 3; ++look) {
            QImage image(200, 300, QImage::Format_RGB32);
            QPainter painter(&image);
            painter.translate(200, 0);
            painter.rotate(90);
            cache.paint(painter, chart.frame(), chart.rect());
            QCOMPARE(cache.seriesPaints(), static_cast<quint64>(look));
        }
    }

    void a_picture_too_large_to_keep_is_painted_as_it_is()
    {
        constexpr int width = 400'000;
        ChartWidget chart;
        addIndicators(chart);
        chart.setCandles(fixtures::wave(150));
        chart.resize(width, 200);
        // Its right end, where the bars are.
        const auto shown = [](const std::function<void(QPainter&)>& paint) {
            QImage image(300, 200, QImage::Format_RGB32);
            image.fill(Qt::magenta);
            QPainter painter(&image);
            painter.translate(300 - width, 0);
            paint(painter);
            return image;
        };
        const QImage expected
            = shown([&chart](QPainter& painter) { layerstack::paintAll(painter, chart.frame()); });
        QCOMPARE(fixtures::pixelsOf(expected, expected.rect(), QColor(Qt::magenta)), 0);
        QVERIFY(fixtures::pixelsOf(expected, expected.rect(), chart.colors().up) > 100);
        BandCache cache;
        for (int look = 1; look <= 3; ++look) {
            const QImage picture
                = shown([&](QPainter& painter) { cache.paint(painter, chart.frame(), chart.rect()); });
            QCOMPARE(picture, expected);
            QCOMPARE(cache.seriesPaints(), static_cast<quint64>(look));
        }
    }
};

TAVORAN_TEST(TestBandCache)
#include "tst_BandCache.moc"
