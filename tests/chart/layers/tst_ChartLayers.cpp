#include "chart/layers/Layers.h"

#include "chart/LayerFixture.h"
#include "chart/data/ChartColorRoles.h"
#include "chart/window/ChartWidget.h"
#include "support/Contrast.h"
#include "support/TestMain.h"

#include <QPainter>

using namespace Qt::StringLiterals;
using fixtures::frameOfBars;
using fixtures::frameSize;
using fixtures::paint;
using fixtures::pixelsOf;
using fixtures::pixelsOtherThan;
using fixtures::priceAtRow;

namespace {

const QColor black(Qt::black);
const ChartColors colors;

Candle candleOfRows(int open, int high, int low, int close)
{
    return {fixtures::midnight, priceAtRow(open), priceAtRow(high), priceAtRow(low), priceAtRow(close), 10};
}

} // namespace

/// What single layers make of odd bars, prices and pointers. How they look otherwise, each with its texts, is
/// stored as pictures, which tst_ChartPictures compares.
class TestChartLayers final : public QObject {
    Q_OBJECT

    void checkThatQuotesAreNotDrawn(const PriceRange& range, const QList<double>& prices)
    {
        const std::vector<Candle> candles{candleOfRows(9, 9, 9, 9)};
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.view = frame.view.withPrices(range);
        for (const double price : prices) {
            frame.ask = price;
            frame.bid = price;
            const QImage image = paint(&layers::paintQuotes, frame);
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
        }
    }

    TextPainter m_texts;

private Q_SLOTS:
    void times_end_at_the_left_edge_of_the_plot()
    {
        // With the margin of 53 columns bar 96 stands at column 257, bar 60 at column 5.
        std::vector<Candle> candles = fixtures::wave(100);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        const auto leftmost = [&](double anchor) {
            ViewState state;
            state.chartShift = true;
            state.rightBarIndex = anchor;
            frame.view = ChartView(frameSize, state, 100, false).withPrices({0.0, 278.0});
            frame.bars = frame.view.visible();
            return pixelsOtherThan(paint(&layers::paintTimeGrid, frame), QRect(0, 280, 60, 18), black);
        };
        QVERIFY(leftmost(99.0) > 20);
        // One bar further it has left the plot, and its text with it, which would else reach column 42.
        QCOMPARE(leftmost(99.8), 0);
    }

    void a_bar_without_volume_has_none()
    {
        std::vector<Candle> candles(3, candleOfRows(10, 10, 20, 20));
        candles[0].volume = 200;
        candles[1].volume = 0;
        candles[2].volume = 1;
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.largestVolume = 200;
        const QImage image = paint(&layers::paintVolume, frame);
        QVERIFY(pixelsOf(image, image.rect(), colors.volume) > 100);
        QCOMPARE(pixelsOtherThan(image, QRect(331 - 7 - 3, 0, 11, 278), black), 0); // less than a row of it
    }

    void thin_volume_bars_have_one_column()
    {
        std::vector<Candle> candles(3, candleOfRows(10, 10, 20, 20));
        for (Candle& candle : candles)
            candle.volume = 1;
        const QImage image = paint(&layers::paintVolume, frameOfBars(candles, 1.0, m_texts));
        QCOMPARE(pixelsOf(image, QRect(329, 277 - 38, 3, 38), colors.volume), 3 * 38);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 3 * 38);
    }

    void a_rising_body_is_outlined_as_by_a_pen_data()
    {
        QTest::addColumn<double>("barWidth");
        QTest::addColumn<int>("height");
        for (const double barWidth : {2.5, 2.8, 3.38, 4.05, 4.86, 5.83, 7.0, 40.0}) {
            for (const int height : {0, 1, 2, 3, 20})
                QTest::addRow("%.2f pixels, %d rows", barWidth, height) << barWidth << height;
        }
    }
    void a_rising_body_is_outlined_as_by_a_pen()
    {
        QFETCH(double, barWidth);
        QFETCH(int, height);
        const std::vector<Candle> candles{candleOfRows(100 + height, 80, 140, 100)};
        const ChartFrame frame = frameOfBars(candles, barWidth, m_texts);
        const int width = static_cast<int>(barWidth * 0.72);
        const QRect body(331 - width / 2, 100, width, std::max(height, 1));
        for (const int ratio : {1, 2}) {
            const auto paintedBy = [&](const auto& paint) {
                QImage image(frameSize * ratio, QImage::Format_RGB32);
                image.fill(Qt::gray);
                QPainter painter(&image);
                painter.scale(ratio, ratio);
                paint(painter);
                return image;
            };
            const QImage shown = paintedBy([&](QPainter& painter) { layers::paintPrices(painter, frame); });
            const QImage expected = paintedBy([&](QPainter& painter) {
                // A pen runs along the middle of pixels, which at two to the pixel lies between them.
                const double middle = ratio == 2 ? 0.5 : 0.0;
                painter.fillRect(QRect(331, 80, 1, 61), colors.up);
                painter.translate(middle, middle);
                painter.setPen(QPen(colors.up, 1.0, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
                painter.setBrush(colors.background);
                painter.drawRect(body);
            });
            QCOMPARE(shown, expected);
            const bool hollow = width >= 2 && height >= 2;
            QCOMPARE(pixelsOf(shown, shown.rect(), colors.background) > 0, hollow);
        }
    }

    void in_one_colour_narrow_and_low_candles_differ_too()
    {
        // The widths of three to five steps out, and bodies of two rows.
        for (const double barWidth : {2.813, 3.376, 4.051, 10.0}) {
            for (const int height : {2, 20}) {
                const auto whiteIn = [&](int open, int close) {
                    const std::vector<Candle> candles{candleOfRows(open, 80, 140, close)};
                    ChartFrame frame = frameOfBars(candles, barWidth, m_texts);
                    frame.colors = blackOnWhiteColors();
                    const QImage image = paint(&layers::paintPrices, frame, QColor(Qt::gray));
                    return pixelsOf(image, image.rect(), QColor(Qt::white));
                };
                QVERIFY(whiteIn(100 + height, 100) > 0);
                QCOMPARE(whiteIn(100, 100 + height), 0);
            }
        }
    }

    void thin_candles_have_a_close_tick()
    {
        const std::vector<Candle> candles{candleOfRows(120, 80, 140, 100)};
        const QImage one = paint(&layers::paintPrices, frameOfBars(candles, 1.0, m_texts));
        QCOMPARE(pixelsOf(one, QRect(331, 80, 1, 61), colors.up), 61);
        QCOMPARE(pixelsOtherThan(one, one.rect(), black), 61);
        const std::vector<Candle> falling{candleOfRows(100, 100, 120, 120)};
        const QImage two = paint(&layers::paintPrices, frameOfBars(falling, 2.4, m_texts));
        QCOMPARE(pixelsOf(two, QRect(331, 100, 1, 21), colors.down), 21);
        QCOMPARE(pixelsOtherThan(two, two.rect(), black), 21);
    }

    void ticks_of_thin_bars_have_one_column()
    {
        const std::vector<Candle> candles{candleOfRows(100, 80, 140, 120)};
        ChartFrame frame = frameOfBars(candles, 1.0, m_texts);
        frame.type = ChartType::Bars;
        const QImage image = paint(&layers::paintPrices, frame);
        QCOMPARE(pixelsOf(image, image.rect(), colors.down), 61 + 1 + 1);
    }

    void the_header_tells_the_newest_bar_wherever_the_view_is()
    {
        ChartWidget chart;
        chart.resize(frameSize);
        chart.setDigits(4);
        chart.setSymbolInfo(u"EURUSD"_s, u"M15"_s, u"Euro"_s);
        chart.setCandles(fixtures::wave(100));
        const QImage atEnd = paint(&layers::paintHeader, chart.frame());
        chart.setAutoScroll(false);
        const Candle last = chart.candles().back();
        chart.onTick(1.5, 1.5, last.time + fixtures::quarterHour);
        QVERIFY(chart.view().visible().last < 100);
        const QImage image = paint(&layers::paintHeader, chart.frame());
        QVERIFY(image != atEnd);
        QImage expected(image.size(), QImage::Format_RGB32);
        expected.fill(Qt::black);
        QPainter painter(&expected);
        m_texts.drawAt(painter, QPoint(6, 13),
            u"EURUSD,M15: Euro   O: 1.5000  H: 1.5000  L: 1.5000  C: 1.5000"_s, QColor(0xb8, 0xb8, 0xb8));
        painter.end();
        QCOMPARE(image, expected);
    }

    void header_needs_a_symbol()
    {
        const std::vector<Candle> candles = fixtures::wave(3);
        const QImage image = paint(&layers::paintHeader, frameOfBars(candles, 7.0, m_texts));
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void levels_outside_the_range_are_not_drawn()
    {
        const std::vector<Candle> candles{candleOfRows(9, 9, 9, 9)};
        const double notANumber = std::numeric_limits<double>::quiet_NaN();
        QList<TradeLevel> levels;
        for (const double price : {-0.1, 278.1, 1e300, notANumber})
            levels.append({u"1"_s, u"SL"_s, price, u"far"_s, QColor(Qt::red), Qt::DashLine, true});
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.levels = levels;
        const QImage image = paint(&layers::paintTradeLevels, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void a_quote_of_zero_or_out_of_range_is_not_drawn()
    {
        checkThatQuotesAreNotDrawn({0.0, 278.0}, {0.0, -1.0, 278.5});
    }

    void a_quote_below_zero_is_not_drawn_even_among_such_bars()
    {
        checkThatQuotesAreNotDrawn({-139.0, 139.0}, {-37.25, 0.0});
    }

    void no_end_of_a_price_is_cut_by_its_tag_data()
    {
        QTest::addColumn<int>("digits");
        for (const int digits : {4, 8, 9, 12, 15})
            QTest::addRow("%d", digits) << digits;
    }
    void no_end_of_a_price_is_cut_by_its_tag()
    {
        QFETCH(int, digits);
        ChartWidget chart;
        chart.resize(frameSize);
        chart.setDigits(digits);
        chart.setCandles(fixtures::wave(100));
        const Candle last = chart.candles().back();
        chart.onTick(last.low, last.high, last.time);
        const ChartFrame frame = chart.frame();
        const QImage image = paint(&layers::paintQuotes, frame);
        const QColor bidColor(0x3b, 0xa7, 0xff);
        const QRect tag(332, frame.view.pricePixel(last.low) - 9, 66, 18);
        QVERIFY(pixelsOtherThan(image, tag, bidColor) > 10);
        for (const int edge : {tag.left(), tag.right()})
            QCOMPARE(pixelsOtherThan(image, QRect(edge, tag.top(), 1, tag.height()), bidColor), 0);
    }

    void the_bid_covers_the_ask()
    {
        const std::vector<Candle> candles{candleOfRows(9, 9, 9, 9)};
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.ask = priceAtRow(100);
        frame.bid = priceAtRow(100);
        const QImage image = paint(&layers::paintQuotes, frame);
        QCOMPARE(pixelsOf(image, image.rect(), QColor(0xff, 0x4a, 0x4a)), 0);
    }

    void old_prices_have_no_color_and_stay_legible()
    {
        const std::vector<Candle> candles{candleOfRows(9, 9, 9, 9)};
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.ask = priceAtRow(100);
        frame.bid = priceAtRow(200);
        frame.quoteStale = true;
        const QImage image = paint(&layers::paintQuotes, frame);
        bool isGrey = true;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                isGrey &= QColor(image.pixel(x, y)).saturation() == 0;
        }
        QVERIFY(isGrey);
        QVERIFY(contrastRatio(Qt::white, image.pixelColor(334, 93)) >= 4.5);
        QVERIFY(contrastRatio(Qt::black, image.pixelColor(334, 193)) >= 4.5);
        QVERIFY(image.pixelColor(334, 93) != image.pixelColor(334, 193)); // still two tags
    }

    void crosshair_beside_the_bars_has_no_time()
    {
        const std::vector<Candle> candles = fixtures::wave(10); // bars reach back to column 268
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.pointAt(QPoint(100, 120));
        const QImage image = paint(&layers::paintCrosshair, frame);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 278, 332, 22), black), 0);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 0, 99, 119), black), 0);
        QVERIFY(pixelsOf(image, QRect(332, 111, 66, 18), QColor(0x33, 0x33, 0x33)) > 600);
    }

    void crosshair_tells_the_bar_and_the_price_that_it_is_given()
    {
        const std::vector<Candle> candles = fixtures::wave(10);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.pointAt(QPoint(300, 120));
        const QRect priceTag(332, 111, 66, 18);
        const QRect timeTag(250, 279, 100, 19);
        const QImage mouse = paint(&layers::paintCrosshair, frame);
        frame.crosshair->price += 1.0; // keys stand between the prices of two rows
        const QImage otherPrice = paint(&layers::paintCrosshair, frame);
        QVERIFY(otherPrice.copy(priceTag) != mouse.copy(priceTag));
        QCOMPARE(otherPrice.copy(timeTag), mouse.copy(timeTag));
        --frame.crosshair->bar; // and on one of two bars in a column
        const QImage otherBar = paint(&layers::paintCrosshair, frame);
        QCOMPARE(otherBar.copy(priceTag), otherPrice.copy(priceTag));
        QVERIFY(otherBar.copy(timeTag) != otherPrice.copy(timeTag));
    }

    void no_crosshair_outside_the_plot()
    {
        const std::vector<Candle> candles = fixtures::wave(10);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.pointAt(QPoint(350, 120));
        const QImage image = paint(&layers::paintCrosshair, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void the_shift_marker_shows_with_the_margin_inside_the_plot()
    {
        const std::vector<Candle> candles = fixtures::wave(10);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        const auto marker = [&](bool shift, bool margin, double rightBar) {
            ViewState state;
            state.rightBarIndex = rightBar;
            state.chartShift = margin;
            frame.chartShift = shift;
            frame.view = ChartView(frameSize, state, 10, false);
            return paint(&layers::paintShiftMarker, frame);
        };
        const auto isThere
            = [](const QImage& image) { return pixelsOtherThan(image, image.rect(), black) > 0; };
        const QImage shown = marker(true, true, 9);
        QVERIFY(isThere(shown));
        QVERIFY(!isThere(marker(false, true, 9)));
        QCOMPARE(marker(true, true, 4), shown);    // scrolled back: the newest bar has left the plot
        QVERIFY(!isThere(marker(true, false, 9))); // the last bar stands on the edge of the plot, not inside
    }
};

TAVORAN_TEST(TestChartLayers)
#include "tst_ChartLayers.moc"
