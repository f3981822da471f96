#include "chart/layers/Layers.h"

#include "chart/LayerFixture.h"
#include "chart/data/Indicators.h"
#include "chart/layers/Curve.h"
#include "chart/window/ChartWidget.h"
#include "support/TestMain.h"

#include <QPainter>
#include <QRandomGenerator>

#include <array>
#include <cmath>
#include <limits>

using fixtures::paint;
using fixtures::pixelsOf;
using fixtures::pixelsOtherThan;
using fixtures::priceAtRow;

namespace {

constexpr double gap = std::numeric_limits<double>::quiet_NaN();
const QColor black(Qt::black);
const QColor yellow(0xff, 0xd5, 0x4f);
const QColor blue(0x4f, 0xc3, 0xf7);
const QColor lilac(0xc7, 0x92, 0xea);

constexpr QSize size = fixtures::frameSize;
/// With the pane: plot (0, 0, 332, 217), pane (0, 218, 332, 60).
constexpr QRect pane(0, 218, 332, 60);

/// A frame with the scale set so that one unit of price is one pixel, the height of the plot at its top.
/// The last of six bars stands at column 331 of the plot, the others 40 pixels apart before it.
ChartFrame frameOf(const std::vector<Candle>& candles, bool rsi, TextPainter& texts)
{
    ViewState state;
    state.barWidth = 40.0;
    state.rightBarIndex = static_cast<double>(candles.size()) - 1.0;
    ChartFrame frame;
    const ChartView view(size, state, static_cast<qsizetype>(candles.size()), rsi);
    frame.view = view.withPrices({0.0, static_cast<double>(view.plot().height())});
    frame.candles = candles;
    frame.bars = frame.view.visible();
    frame.timeframeMs = fixtures::quarterHour;
    frame.panes = {{IndicatorKind::Rsi, 14, rsi}};
    frame.exposed = QRect(QPoint(0, 0), size);
    frame.texts = &texts;
    return frame;
}

/// The RSI that lies in a row of the pane.
double rsiAtRow(int y)
{
    return 100.0 - (y + 0.5) * 100.0 / pane.height();
}

} // namespace

class TestIndicatorLayers final : public QObject {
    Q_OBJECT

    std::vector<Candle> m_candles = fixtures::wave(6);
    TextPainter m_texts;

private Q_SLOTS:
    void a_slope_holds_the_nearest_pixels()
    {
        QRandomGenerator random(1);
        const QRect whole(QPoint(0, 0), size);
        for (int round = 0; round < 300; ++round) {
            const QPoint from(random.bounded(300), random.bounded(300));
            const QPoint to = from + QPoint(random.bounded(41), random.bounded(81) - 40);
            QImage image(size, QImage::Format_RGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            curve::slope(painter, from, to, whole, yellow);
            painter.end();
            const int width = to.x() - from.x();
            const int height = to.y() - from.y();
            const int longer = std::max(width, std::abs(height));
            int inside = 0;
            for (int step = 0; step <= longer; ++step) {
                // One pixel a step along the longer side; halfway, either one will do.
                const double share = longer == 0 ? 0.0 : static_cast<double>(step) / longer;
                const QPointF exact(from.x() + width * share, from.y() + height * share);
                int found = 0;
                for (const double nudge : {-0.001, 0.001}) {
                    const QPoint pixel = (exact + QPointF(nudge, nudge)).toPoint();
                    const QPoint mixed = (exact + QPointF(nudge, -nudge)).toPoint();
                    found += whole.contains(pixel) && image.pixelColor(pixel) == yellow ? 1 : 0;
                    found += whole.contains(mixed) && image.pixelColor(mixed) == yellow ? 1 : 0;
                }
                const bool offScreen = !whole.adjusted(1, 1, -1, -1).contains(exact.toPoint());
                QVERIFY(found > 0 || offScreen);
                inside += whole.contains(exact.toPoint()) ? 1 : 0;
            }
            if (whole.contains(from) && whole.contains(to))
                QCOMPARE(pixelsOf(image, whole, yellow), inside);
        }
    }

    void a_slope_painted_in_parts_is_the_same()
    {
        QRandomGenerator random(2);
        for (int round = 0; round < 100; ++round) {
            const QPoint from(random.bounded(100), random.bounded(300));
            const QPoint to(from.x() + random.bounded(41), random.bounded(300));
            QImage whole(size, QImage::Format_RGB32);
            whole.fill(Qt::black);
            QImage parts = whole;
            QPainter painter(&whole);
            curve::slope(painter, from, to, whole.rect(), yellow);
            QPainter partPainter(&parts);
            for (int y = 0; y < size.height(); y += 13) {
                curve::slope(partPainter, from, to, QRect(0, y, 50, 13), yellow);
                curve::slope(partPainter, from, to, QRect(50, y, 350, 13), yellow);
            }
            painter.end();
            partPainter.end();
            QCOMPARE(parts, whole);
        }
    }

    void a_missing_value_breaks_the_average()
    {
        ChartFrame frame = frameOf(m_candles, false, m_texts);
        const std::vector<double> values{
            gap, priceAtRow(50), priceAtRow(50), gap, priceAtRow(70), priceAtRow(70)};
        const std::array<std::span<const double>, 1> lines{values};
        frame.averages = {{IndicatorKind::Sma, 3, yellow}};
        frame.averageValues = lines;
        const QImage image = paint(&layers::paintMovingAverages, frame);
        QCOMPARE(pixelsOf(image, QRect(171, 50, 41, 1), yellow), 41);
        QCOMPARE(pixelsOf(image, QRect(291, 70, 41, 1), yellow), 41);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 82);
    }

    void an_average_without_values_has_no_line()
    {
        ChartFrame frame = frameOf(m_candles, false, m_texts);
        const std::array<std::span<const double>, 1> lines{};
        frame.averages = {{IndicatorKind::Sma, 400, yellow}};
        frame.averageValues = lines;
        QCOMPARE(
            pixelsOtherThan(paint(&layers::paintMovingAverages, frame), QRect(QPoint(), size), black), 0);
    }

    void later_averages_cover_earlier_ones()
    {
        ChartFrame frame = frameOf(m_candles, false, m_texts);
        const std::vector<double> values(6, priceAtRow(80));
        const std::array<std::span<const double>, 2> lines{values, values};
        frame.averages = {{IndicatorKind::Sma, 3, yellow}, {IndicatorKind::Ema, 3, blue}};
        frame.averageValues = lines;
        const QImage image = paint(&layers::paintMovingAverages, frame);
        QCOMPARE(pixelsOf(image, image.rect(), yellow), 0);
        QCOMPARE(pixelsOf(image, QRect(131, 80, 201, 1), blue), 201);
    }

    void an_average_far_from_the_prices_leaves_the_axes_alone()
    {
        ChartFrame frame = frameOf(m_candles, false, m_texts);
        const std::vector<double> values{
            priceAtRow(100), priceAtRow(100'000'000), 1e15, -1e15, priceAtRow(290), priceAtRow(200)};
        const std::array<std::span<const double>, 1> lines{values};
        frame.averages = {{IndicatorKind::Sma, 3, yellow}};
        frame.averageValues = lines;
        const QImage image = paint(&layers::paintMovingAverages, frame);
        QVERIFY(pixelsOf(image, frame.view.plot(), yellow) > 100);
        QCOMPARE(pixelsOf(image, frame.view.plot(), yellow), pixelsOf(image, image.rect(), yellow));
    }

    void the_legend_ends_at_the_edge_of_the_plot()
    {
        ChartFrame frame = frameOf(m_candles, false, m_texts);
        for (int i = 0; i < 5000; ++i)
            frame.averages.append({IndicatorKind::Sma, 1000 + i, yellow});
        const QImage image = paint(&layers::paintAverageLegend, frame);
        QVERIFY(pixelsOtherThan(image, QRect(200, 15, 132, 16), black) > 40);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 40, 400, 260), black), 0);
    }

    void without_averages_there_is_no_legend()
    {
        const QImage image = paint(&layers::paintAverageLegend, frameOf(m_candles, false, m_texts));
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void the_line_of_the_pane_joins_neighbours_and_breaks()
    {
        ChartFrame frame = frameOf(m_candles, true, m_texts);
        const std::vector<double> values{gap, rsiAtRow(10), rsiAtRow(50), gap, rsiAtRow(25), rsiAtRow(25)};
        const std::array<std::span<const double>, 1> lines{values};
        frame.paneValues = lines;
        const QImage image = paint(&layers::paintIndicatorPanes, frame);
        QCOMPARE(image.pixelColor(171, 218 + 10), lilac);
        QCOMPARE(image.pixelColor(191, 218 + 30), lilac);
        QCOMPARE(image.pixelColor(211, 218 + 50), lilac);
        QCOMPARE(pixelsOf(image, QRect(291, 218 + 25, 41, 1), lilac), 41);
        QCOMPARE(pixelsOf(image, image.rect(), lilac), 82);
    }

    void rsi_values_of_0_and_100_lie_at_the_edges_of_the_pane()
    {
        ChartFrame frame = frameOf(m_candles, true, m_texts);
        std::vector<double> values(6, 100.0);
        const std::array<std::span<const double>, 1> lines{values};
        frame.paneValues = lines;
        QCOMPARE(pixelsOf(paint(&layers::paintIndicatorPanes, frame), QRect(131, 218, 201, 1), lilac), 201);
        values.assign(6, 0.0);
        QCOMPARE(pixelsOf(paint(&layers::paintIndicatorPanes, frame), QRect(131, 278, 201, 1), lilac), 201);
    }

    void without_the_pane_nothing_is_painted()
    {
        ChartFrame frame = frameOf(m_candles, false, m_texts);
        const std::vector<double> values(6, 50.0);
        const std::array<std::span<const double>, 1> lines{values};
        frame.paneValues = lines;
        const QImage image = paint(&layers::paintIndicatorPanes, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void the_pane_painted_in_parts_is_the_same()
    {
        for (const double barWidth : {1.0, 2.4, 7.0, 40.0}) {
            const std::vector<Candle> candles = fixtures::wave(400);
            const std::vector<double> values = indicators::rsi(candles, 3);
            ViewState state;
            state.barWidth = barWidth;
            state.rightBarIndex = 350.4;
            ChartFrame frame = frameOf(candles, true, m_texts);
            frame.view = ChartView(size, state, 400, true);
            frame.bars = frame.view.visible();
            const std::array<std::span<const double>, 1> lines{values};
            frame.paneValues = lines;
            const QImage whole = paint(&layers::paintIndicatorPanes, frame);
            QImage parts(size, QImage::Format_RGB32);
            parts.fill(Qt::black);
            QPainter painter(&parts);
            for (int x = 0; x < size.width(); x += 23) {
                for (int y = 0; y < size.height(); y += 31) {
                    frame.exposed = QRect(x, y, 23, 31);
                    painter.setClipRegion(frame.exposed);
                    layers::paintIndicatorPanes(painter, frame);
                }
            }
            painter.end();
            QCOMPARE(parts, whole);
        }
    }

    void time_labels_and_time_tag_stand_under_the_pane()
    {
        ChartWidget chart;
        chart.resize(size);
        chart.setCandles(fixtures::wave(100));
        const QImage without = chart.grab().toImage();
        chart.setPane(IndicatorKind::Rsi, true, 400);
        const int axisTop = size.height() - ChartView::timeAxisHeight;
        QCOMPARE(chart.view().timeAxisEdge(), axisTop - 1);
        const QRect labels(0, axisTop, chart.view().plot().width(), ChartView::timeAxisHeight);
        QVERIFY(pixelsOtherThan(without, labels, black) > 100);
        QCOMPARE(chart.grab().toImage().copy(labels), without.copy(labels));
        fixtures::hover(chart, QPoint(150, 100));
        const QImage hovered = chart.grab().toImage();
        QCOMPARE(hovered.pixelColor(101, axisTop + 3), QColor(0x33, 0x33, 0x33));
        const QRect pane(100, 220, 150, 14); // right of the title, above the line at 70
        QCOMPARE(pixelsOtherThan(hovered, pane, QColor(0x0a, 0x0a, 0x0a)), 0);
    }

    void a_chart_shows_the_values_of_its_closes()
    {
        ChartWidget chart;
        chart.resize(size);
        chart.setCandles(fixtures::wave(100));
        const QImage before = chart.grab().toImage();
        QCOMPARE(pixelsOf(before, before.rect(), yellow), 0);
        chart.setMovingAverages({{IndicatorKind::Sma, 20, yellow}});
        const QImage image = chart.grab().toImage();
        const ChartView& view = chart.view();
        const std::vector<double> values
            = indicators::movingAverage(chart.candles(), chart.movingAverages().first());
        for (qsizetype i = view.visible().first; i < view.visible().last; ++i) {
            const QPoint pixel(view.barPixel(i), view.pricePixel(values[static_cast<std::size_t>(i)]));
            if (pixel.x() >= 0)
                QCOMPARE(image.pixelColor(pixel), yellow);
        }
        const QRect legend(6, 15, 60, 16);
        QVERIFY(image.copy(legend) != before.copy(legend));
        chart.setMovingAverages({});
        QCOMPARE(chart.grab().toImage(), before);
    }

    void values_follow_ticks_new_bars_and_reloads()
    {
        ChartWidget chart;
        chart.resize(size);
        const MovingAverageSpec average{IndicatorKind::Ema, 9, yellow};
        chart.setMovingAverages({average});
        chart.setPane(IndicatorKind::Rsi, true, 7);
        const auto areRight = [&chart, &average] {
            const ChartFrame frame = chart.frame();
            const std::vector<double> values = indicators::movingAverage(chart.candles(), average);
            const std::vector<double> rsiValues = indicators::rsi(chart.candles(), 7);
            return frame.averageValues.front().size() == values.size()
                && frame.averageValues.front().back() == values.back()
                && frame.paneValues.front().back() == rsiValues.back() && frame.panes.first().period == 7;
        };
        chart.setCandles(fixtures::wave(100));
        QVERIFY(areRight());
        const qint64 last = chart.candles().back().time;
        chart.onTick(1.13, 1.14, last);
        QVERIFY(areRight());
        chart.onTick(1.12, 1.13, last + fixtures::quarterHour);
        chart.onTick(1.11, 1.12, last + 2 * fixtures::quarterHour);
        QVERIFY(areRight());
        std::vector<Candle> other = fixtures::wave(102);
        for (Candle& candle : other)
            candle.close = candle.low;
        chart.setCandles(other);
        QVERIFY(areRight());
    }
};

TAVORAN_TEST(TestIndicatorLayers)
#include "tst_IndicatorLayers.moc"
