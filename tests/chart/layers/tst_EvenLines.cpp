#include "chart/LayerFixture.h"
#include "chart/layers/BandCache.h"
#include "chart/layers/LayerStack.h"
#include "chart/layers/Layers.h"
#include "chart/window/ChartWidget.h"
#include "support/TestMain.h"

#include <QSet>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;
using fixtures::frameOfBars;
using fixtures::frameSize;
using fixtures::priceAtRow;

namespace {

using Layer = void (*)(QPainter&, const ChartFrame&);

const QColor black(Qt::black);
const ChartColors colors;

QImage canvas(const QSize& size, qreal ratio, const QColor& ground = Qt::black)
{
    const QSizeF pixels = QSizeF(size) * ratio;
    QImage image(static_cast<int>(std::ceil(pixels.width())), static_cast<int>(std::ceil(pixels.height())),
        QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(ground);
    return image;
}

QImage painted(Layer layer, const ChartFrame& frame, qreal ratio)
{
    QImage image = canvas(frame.view.size(), ratio);
    QPainter painter(&image);
    layer(painter, frame);
    return image;
}

/// How long the runs of painted pixels along a line of pixels are.
class Runs final {
public:
    void add(const QRgb pixel, const QColor& color)
    {
        if (pixel == color.rgb()) {
            ++m_length;
            return;
        }
        end();
    }
    void end()
    {
        if (m_length > 0)
            m_lengths.append(m_length);
        m_length = 0;
    }
    [[nodiscard]] const QList<int>& lengths() const { return m_lengths; }

private:
    int m_length = 0;
    QList<int> m_lengths;
};

QList<int> runsAcross(const QImage& image, int y, const QColor& color, int from = 0)
{
    Runs runs;
    for (int x = from; x < image.width(); ++x)
        runs.add(image.pixel(x, y), color);
    runs.end();
    return runs.lengths();
}

QList<int> runsDown(const QImage& image, int x, const QColor& color)
{
    Runs runs;
    for (int y = 0; y < image.height(); ++y)
        runs.add(image.pixel(x, y), color);
    runs.end();
    return runs.lengths();
}

QSet<int> different(const QList<int>& lengths)
{
    return {lengths.cbegin(), lengths.cend()};
}

int pixelAt(int unit, qreal ratio)
{
    return static_cast<int>(std::lround(unit * ratio));
}

int lineWidth(qreal ratio)
{
    return static_cast<int>(ratio);
}

std::vector<Candle> alike(std::size_t count, int open, int high, int low, int close)
{
    return std::vector<Candle>(count,
        Candle{
            fixtures::midnight, priceAtRow(open), priceAtRow(high), priceAtRow(low), priceAtRow(close), 10});
}

void addRatios()
{
    QTest::addColumn<qreal>("ratio");
    for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 2.5})
        QTest::addRow("%.2f", ratio) << ratio;
}

void addRatiosAndBarWidths()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<double>("barWidth");
    for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 2.5}) {
        for (const double barWidth : {2.6, 4.05, 7.0, 12.1})
            QTest::addRow("ratio %.2f, bars of %.2f", ratio, barWidth) << ratio << barWidth;
    }
}

} // namespace

/// On screens whose device pixel ratio is no whole number every line is as wide as the next one, wherever it
/// lies, and its edges are those of pixels.
class TestEvenLines final : public QObject {
    Q_OBJECT

    void checkHorizontal(const std::function<QImage(int)>& imageOfRow, const QColor& color, qreal ratio)
    {
        for (int y = 20; y < 60; ++y) {
            const QImage image = imageOfRow(y);
            QCOMPARE(runsDown(image, pixelAt(200, ratio), color), QList<int>{lineWidth(ratio)});
            QCOMPARE(image.pixelColor(pixelAt(200, ratio), pixelAt(y, ratio)), color);
        }
    }

    TextPainter m_texts;

private Q_SLOTS:
    void wicks_are_equally_wide_data() { addRatiosAndBarWidths(); }
    void wicks_are_equally_wide()
    {
        QFETCH(const qreal, ratio);
        QFETCH(const double, barWidth);
        const std::vector<Candle> candles = alike(60, 140, 80, 200, 120);
        const ChartFrame frame = frameOfBars(candles, barWidth, m_texts);
        const QList<int> runs
            = runsAcross(painted(&layers::paintPrices, frame, ratio), pixelAt(100, ratio), colors.up);
        QVERIFY(runs.size() > 20);
        QCOMPARE(different(runs), QSet<int>{lineWidth(ratio)});
    }

    void bodies_are_equally_wide_data() { addRatiosAndBarWidths(); }
    void bodies_are_equally_wide()
    {
        QFETCH(const qreal, ratio);
        QFETCH(const double, barWidth);
        const std::vector<Candle> candles = alike(60, 120, 80, 200, 140);
        const ChartFrame frame = frameOfBars(candles, barWidth, m_texts);
        const QList<int> runs
            = runsAcross(painted(&layers::paintPrices, frame, ratio), pixelAt(130, ratio), colors.down);
        QVERIFY(runs.size() > 20);
        QCOMPARE(different(runs.mid(1)).size(), 1);
    }

    void outlines_of_rising_bodies_are_even_data() { addRatiosAndBarWidths(); }
    void outlines_of_rising_bodies_are_even()
    {
        QFETCH(const qreal, ratio);
        QFETCH(const double, barWidth);
        std::vector<Candle> candles = alike(20, 140, 120, 140, 120);
        for (std::size_t i = 0; i < candles.size(); i += 2) // neighbours may touch
            candles[i] = alike(1, 40, 20, 40, 20).front();
        ChartFrame frame = frameOfBars(candles, barWidth, m_texts);
        frame.colors.background = QColor(Qt::blue);
        const QImage image = painted(&layers::paintPrices, frame, ratio);
        const QList<int> sides = runsAcross(image, pixelAt(130, ratio), colors.up);
        const QList<int> insides = runsAcross(image, pixelAt(130, ratio), Qt::blue);
        QCOMPARE(different(insides).size(), insides.isEmpty() ? 0 : 1);
        QCOMPARE(different(sides), QSet<int>{insides.isEmpty() ? 2 * lineWidth(ratio) : lineWidth(ratio)});
        const int middle = pixelAt(frame.view.barPixel(17), ratio);
        for (int x = middle - 8; x < middle + 8; ++x) {
            const QList<int> edges = runsDown(image, x, colors.up);
            if (edges.size() == 2)
                QCOMPARE(edges, (QList<int>{lineWidth(ratio), lineWidth(ratio)}));
        }
    }

    void volumes_are_equally_wide_data() { addRatiosAndBarWidths(); }
    void volumes_are_equally_wide()
    {
        QFETCH(const qreal, ratio);
        QFETCH(const double, barWidth);
        const std::vector<Candle> candles = alike(60, 120, 80, 200, 140);
        ChartFrame frame = frameOfBars(candles, barWidth, m_texts);
        frame.largestVolume = 10;
        const QList<int> runs
            = runsAcross(painted(&layers::paintVolume, frame, ratio), pixelAt(270, ratio), colors.volume);
        QVERIFY(runs.size() > 20);
        QCOMPARE(different(runs.mid(1)).size(), 1);
    }

    void open_and_close_of_bars_are_even_data() { addRatios(); }
    void open_and_close_of_bars_are_even()
    {
        QFETCH(const qreal, ratio);
        for (int row = 100; row < 120; ++row) {
            const std::vector<Candle> candles = alike(20, row, 80, 200, row + 30);
            ChartFrame frame = frameOfBars(candles, 12.0, m_texts);
            frame.type = ChartType::Bars;
            const QImage image = painted(&layers::paintPrices, frame, ratio);
            const int column = pixelAt(331 - 12, ratio);
            QCOMPARE(runsDown(image, column - 2, colors.down), QList<int>{lineWidth(ratio)});
            QCOMPARE(
                runsDown(image, column + 1 + lineWidth(ratio), colors.down), QList<int>{lineWidth(ratio)});
        }
    }

    void grid_lines_are_even_data() { addRatios(); }
    void grid_lines_are_even()
    {
        QFETCH(const qreal, ratio);
        const std::vector<Candle> candles = fixtures::wave(200);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        for (const double shift : {0.0, 0.3, 1.1, 2.7, 3.9}) {
            frame.view = frame.view.withPrices({shift, 278.0 + shift});
            const QImage image = painted(&layers::paintPriceGrid, frame, ratio);
            QList<int> runs;
            for (int x = 0; x < 12; ++x)
                runs += runsDown(image, x, colors.grid);
            QVERIFY(runs.size() > 4);
            QCOMPARE(different(runs), QSet<int>{1});
            const QImage times = painted(&layers::paintTimeGrid, frame, ratio);
            runs.clear();
            for (int y = 0; y < 12; ++y)
                runs += runsAcross(times, y, colors.grid);
            QVERIFY(runs.size() > 3);
            QCOMPARE(different(runs), QSet<int>{1});
        }
    }

    void a_time_line_runs_through_the_wick_of_its_bar_data() { addRatios(); }
    void a_time_line_runs_through_the_wick_of_its_bar()
    {
        QFETCH(const qreal, ratio);
        const std::vector<Candle> candles = fixtures::wave(200);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        const QImage image = painted(&layers::paintTimeGrid, frame, ratio);
        const qsizetype last = frame.bars.last - frame.bars.last % 12;
        int lines = 0;
        for (qsizetype bar = last; bar > frame.bars.first; bar -= 12) {
            const int column = pixelAt(frame.view.barPixel(bar), ratio);
            bool found = false;
            for (int y = 0; y < 6; ++y)
                found = found || image.pixelColor(column, y) == colors.grid;
            QVERIFY(found);
            ++lines;
        }
        QVERIFY(lines > 2);
    }

    void level_lines_are_even_data() { addRatios(); }
    void level_lines_are_even()
    {
        QFETCH(const qreal, ratio);
        const std::vector<Candle> candles = alike(3, 9, 9, 9, 9);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        const auto levelAt = [&](int row) {
            const QList<TradeLevel> levels{
                {u"1"_s, u"SL"_s, priceAtRow(row), QString(), QColor(Qt::red), Qt::SolidLine, true}};
            frame.levels = levels;
            return painted(&layers::paintTradeLevels, frame, ratio);
        };
        checkHorizontal(levelAt, Qt::red, ratio);
    }

    void crosshairs_are_even_data() { addRatios(); }
    void crosshairs_are_even()
    {
        QFETCH(const qreal, ratio);
        const std::vector<Candle> candles = alike(3, 9, 9, 9, 9);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        const QColor color(0x77, 0x77, 0x77);
        for (int place = 20; place < 60; ++place) {
            frame.pointAt(QPoint(place, place));
            const QImage image = painted(&layers::paintCrosshair, frame, ratio);
            QCOMPARE(runsAcross(image, 0, color), QList<int>{lineWidth(ratio)});
            QCOMPARE(runsDown(image, 0, color), QList<int>{lineWidth(ratio)});
        }
    }

    void dashes_are_equally_long_data() { addRatios(); }
    void dashes_are_equally_long()
    {
        QFETCH(const qreal, ratio);
        const std::vector<Candle> candles = alike(3, 9, 9, 9, 9);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        for (const Qt::PenStyle style : {Qt::DashLine, Qt::DotLine}) {
            const QList<TradeLevel> levels{
                {u"1"_s, u"SL"_s, priceAtRow(50), QString(), QColor(Qt::red), style, true}};
            frame.levels = levels;
            const QImage image = painted(&layers::paintTradeLevels, frame, ratio);
            const QList<int> drawn = runsAcross(image, pixelAt(50, ratio), Qt::red);
            QVERIFY(drawn.size() > 40);
            QCOMPARE(different(drawn.mid(0, drawn.size() - 1)).size(), 1);
            const QList<int> gaps = runsAcross(
                image.copy(0, 0, pixelAt(300, ratio), image.height()), pixelAt(50, ratio), black);
            QCOMPARE(different(gaps.mid(0, gaps.size() - 1)).size(), 1);
        }
    }

    void drawn_lines_are_even_data() { addRatios(); }
    void drawn_lines_are_even()
    {
        QFETCH(const qreal, ratio);
        const std::vector<Candle> candles = fixtures::wave(200);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.view = frame.view.withPrices({0.0, 278.0});
        const QColor color(0xe0, 0xe0, 0xe0);
        const auto imageOf = [&](const QString& type, int row, int otherRow) {
            const QList<Drawing> drawings{{u"1"_s, type,
                {{fixtures::barTime(170), priceAtRow(row)}, {fixtures::barTime(190), priceAtRow(otherRow)}},
                color, false}};
            frame.drawings = drawings;
            return painted(&layers::paintDrawings, frame, ratio);
        };
        checkHorizontal([&](int row) { return imageOf(u"hline"_s, row, row); }, color, ratio);
        checkHorizontal([&](int row) { return imageOf(u"trendline"_s, row, row); }, color, ratio);
        for (int row = 40; row < 60; ++row) {
            // A slope has as many pixels in each column, whatever its height.
            const QImage slope = imageOf(u"trendline"_s, row, row + 27);
            for (int x = pixelAt(200, ratio); x < pixelAt(220, ratio); ++x)
                QCOMPARE(runsDown(slope, x, color), QList<int>{lineWidth(ratio)});
            const QImage fibonacci = imageOf(u"fibonacci"_s, row, row + 200);
            const QList<int> lines = runsDown(fibonacci, pixelAt(200, ratio), color);
            QCOMPARE(lines.size(), 7);
            QCOMPARE(different(lines), QSet<int>{lineWidth(ratio)});
        }
    }

    void averages_are_even_data() { addRatios(); }
    void averages_are_even()
    {
        QFETCH(const qreal, ratio);
        const std::vector<Candle> candles = alike(60, 120, 80, 200, 140);
        std::vector<double> values;
        for (int i = 0; i < 60; ++i)
            values.push_back(priceAtRow(60 + i * 2));
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        const std::vector<std::span<const double>> spans{values};
        frame.averageValues = spans;
        frame.averages = {{IndicatorKind::Sma, 5, QColor(Qt::yellow)}};
        const QImage image = painted(&layers::paintMovingAverages, frame, ratio);
        for (int x = pixelAt(60, ratio); x < pixelAt(300, ratio); ++x)
            QCOMPARE(runsDown(image, x, Qt::yellow), QList<int>{ratio < 2.0 ? 1 : 2});
    }

    void a_chart_between_two_pixels_is_shown_from_the_nearest_one_data()
    {
        QTest::addColumn<qreal>("ratio");
        QTest::addColumn<QPoint>("place");
        for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0}) {
            for (const QPoint place : {QPoint(0, 0), QPoint(1, 3), QPoint(2, 1), QPoint(3, 2)})
                QTest::addRow("ratio %.2f at %d, %d", ratio, place.x(), place.y()) << ratio << place;
        }
    }
    void a_chart_between_two_pixels_is_shown_from_the_nearest_one()
    {
        QFETCH(const qreal, ratio);
        QFETCH(const QPoint, place);
        ChartWidget chart;
        chart.resize(301, 203);
        chart.setCandles(fixtures::wave(150));
        chart.setMovingAverages({{IndicatorKind::Sma, 3, QColor(0xff, 0xd5, 0x4f)}});
        chart.setPane(IndicatorKind::Rsi, true, 5);
        const QSize size(320, 220);
        const QRect own(QPointF(QPointF(place) * ratio).toPoint(),
            QPointF(QPointF(place + QPoint(301, 203)) * ratio).toPoint() - QPoint(1, 1));
        BandCache cache;
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(100, 60));
        for (int pan = 0; pan < 12; ++pan) {
            fixtures::hover(chart, QPoint(100 + pan, 60), Qt::LeftButton);
            QImage expected = canvas(size, ratio, Qt::magenta);
            QPainter alone(&expected);
            alone.translate(QPointF(own.topLeft()) / ratio);
            layerstack::paintAll(alone, chart.frame());
            alone.end();
            for (int look = 0; look < 3; ++look) { // straight, then as a picture, then copied
                QImage shown = canvas(size, ratio, Qt::magenta);
                QPainter painter(&shown);
                painter.translate(place);
                painter.setClipRect(chart.rect());
                cache.paint(painter, chart.frame(), chart.rect());
                painter.end();
                QCOMPARE(shown.copy(own), expected.copy(own));
                QCOMPARE(fixtures::pixelsOf(shown, own, Qt::magenta), 0);
                QCOMPARE(fixtures::pixelsOf(shown, shown.rect(), Qt::magenta),
                    shown.width() * shown.height() - own.width() * own.height());
            }
        }
    }
};

TAVORAN_TEST(TestEvenLines)
#include "tst_EvenLines.moc"
