#include "chart/layers/Layers.h"

#include "chart/LayerFixture.h"
#include "chart/data/ChartColorRoles.h"
#include "chart/data/GridSteps.h"
#include "chart/window/ChartWidget.h"
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

class TestChartLayers final : public QObject {
    Q_OBJECT

    TextPainter m_texts;

private Q_SLOTS:
    void background_fills_the_widget()
    {
        ChartFrame frame = frameOfBars({}, 7.0, m_texts);
        frame.colors.background = QColor(1, 2, 3);
        const QImage image = paint(&layers::paintBackground, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), QColor(1, 2, 3)), 0);
    }

    void an_empty_chart_says_that_it_waits()
    {
        const QImage image = paint(&layers::paintEmptySeries, frameOfBars({}, 7.0, m_texts));
        const int left = pixelsOtherThan(image, QRect(100, 135, 100, 30), black);
        const int right = pixelsOtherThan(image, QRect(200, 135, 100, 30), black);
        QVERIFY(left > 30 && right > 30);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), left + right);
        const std::vector<Candle> one{candleOfRows(10, 10, 20, 20)};
        const QImage none = paint(&layers::paintEmptySeries, frameOfBars(one, 7.0, m_texts));
        QCOMPARE(pixelsOtherThan(none, none.rect(), black), 0);
    }

    void price_grid_is_dotted_and_labelled()
    {
        const std::vector<Candle> one{candleOfRows(10, 10, 20, 20)};
        const QImage image = paint(&layers::paintPriceGrid, frameOfBars(one, 7.0, m_texts));
        // 278 pixels want 6 lines of 46.3: every 50.
        for (const int price : {50, 100, 150, 200, 250}) {
            const int y = 278 - price;
            const int dots = pixelsOf(image, QRect(0, y, 332, 1), colors.grid);
            QVERIFY2(dots > 80 && dots < 200, qPrintable(QString::number(dots)));
            QVERIFY(pixelsOtherThan(image, QRect(335, y - 8, 62, 16), black) > 10);
            QCOMPARE(pixelsOtherThan(image, QRect(0, y + 10, 400, 20), black), 0);
        }
        QCOMPARE(pixelsOtherThan(image, QRect(332, 0, 3, 278), black), 0);
    }

    void time_grid_stands_on_multiples_of_its_step()
    {
        const std::vector<Candle> candles = fixtures::wave(100);
        const ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        const QImage image = paint(&layers::paintTimeGrid, frame);
        // Step 12: bars 96, 84, 72, 60; the last bar is 99 at column 331.
        QList<int> lines;
        for (int x = 0; x < 400; ++x) {
            if (pixelsOf(image, QRect(x, 0, 1, 278), colors.grid) > 50)
                lines.append(x);
        }
        QCOMPARE(lines, (QList<int>{331 - 39 * 7, 331 - 27 * 7, 331 - 15 * 7, 331 - 3 * 7}));
        for (const int x : lines)
            QVERIFY(pixelsOtherThan(image, QRect(x - 44, 280, 88, 18), black) > 20);
    }

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

    void volume_bars_are_a_share_of_the_plot()
    {
        std::vector<Candle> candles(3, candleOfRows(10, 10, 20, 20));
        candles[0].volume = 200;
        candles[1].volume = 100;
        candles[2].volume = 0;
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.largestVolume = 200;
        const QImage image = paint(&layers::paintVolume, frame);
        // 14 % of 278 are 38 rows; 60 % of 7 are 4 columns, the bar's own the third of them.
        QCOMPARE(pixelsOf(image, QRect(331 - 14 - 2, 277 - 38, 4, 38), colors.volume), 4 * 38);
        QCOMPARE(pixelsOf(image, QRect(331 - 7 - 2, 277 - 19, 4, 19), colors.volume), 4 * 19);
        QCOMPARE(pixelsOf(image, image.rect(), colors.volume), 4 * (38 + 19));
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 4 * (38 + 19));
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

    void a_rising_candle_is_hollow()
    {
        const std::vector<Candle> candles{candleOfRows(120, 80, 140, 100)};
        const QImage image = paint(&layers::paintPrices, frameOfBars(candles, 10.0, m_texts));
        // 72 % of 10 are 7 columns: the body is columns 328 to 334 and rows 100 to 119, its outline one more.
        QCOMPARE(pixelsOf(image, QRect(328, 100, 8, 1), colors.up), 8);
        QCOMPARE(pixelsOf(image, QRect(328, 120, 8, 1), colors.up), 8);
        QCOMPARE(pixelsOf(image, QRect(328, 100, 1, 21), colors.up), 21);
        QCOMPARE(pixelsOf(image, QRect(335, 100, 1, 21), colors.up), 21);
        QCOMPARE(pixelsOf(image, QRect(329, 101, 6, 19), colors.background), 6 * 19);
        QCOMPARE(pixelsOf(image, QRect(331, 80, 1, 20), colors.up), 20);
        QCOMPARE(pixelsOf(image, QRect(331, 121, 1, 20), colors.up), 20);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 2 * 8 + 2 * 19 + 20 + 20);
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

    void a_falling_candle_is_filled()
    {
        const std::vector<Candle> candles{candleOfRows(100, 80, 140, 120)};
        const QImage image = paint(&layers::paintPrices, frameOfBars(candles, 10.0, m_texts));
        QCOMPARE(pixelsOf(image, QRect(328, 100, 7, 20), colors.down), 7 * 20);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 7 * 20 + 20 + 21);
    }

    void in_one_colour_rising_candles_are_the_hollow_ones()
    {
        const std::vector<Candle> candles{candleOfRows(120, 80, 140, 100), candleOfRows(100, 80, 140, 120)};
        ChartFrame frame = frameOfBars(candles, 10.0, m_texts);
        frame.colors = blackOnWhiteColors();
        const QImage image = paint(&layers::paintPrices, frame, frame.colors.background);
        QCOMPARE(pixelsOf(image, QRect(318, 100, 8, 21), black), 2 * 8 + 2 * 19);
        QCOMPARE(pixelsOf(image, QRect(319, 101, 6, 19), QColor(Qt::white)), 6 * 19);
        QCOMPARE(pixelsOf(image, QRect(328, 100, 7, 20), black), 7 * 20);
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

    void the_outline_of_a_flat_candle_has_two_rows()
    {
        const std::vector<Candle> candles{candleOfRows(100, 100, 100, 100)};
        const QImage image = paint(&layers::paintPrices, frameOfBars(candles, 10.0, m_texts));
        QCOMPARE(pixelsOf(image, QRect(328, 100, 8, 2), colors.up), 16); // equal open and close is rising
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 16);
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

    void bars_have_their_ticks_at_open_and_close()
    {
        const std::vector<Candle> candles{candleOfRows(120, 80, 140, 100)};
        ChartFrame frame = frameOfBars(candles, 10.0, m_texts);
        frame.type = ChartType::Bars;
        const QImage image = paint(&layers::paintPrices, frame);
        QCOMPARE(pixelsOf(image, QRect(331, 80, 1, 61), colors.up), 61);
        QCOMPARE(pixelsOf(image, QRect(328, 120, 3, 1), colors.up), 3); // 36 % of 10 are 3 columns
        QCOMPARE(pixelsOf(image, QRect(332, 100, 3, 1), colors.up), 3);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 61 + 3 + 3);
        const std::vector<Candle> falling{candleOfRows(100, 80, 140, 120)};
        ChartFrame down = frameOfBars(falling, 1.0, m_texts);
        down.type = ChartType::Bars;
        const QImage thin = paint(&layers::paintPrices, down);
        QCOMPARE(pixelsOf(thin, thin.rect(), colors.down), 61 + 1 + 1);
    }

    void line_connects_the_closes()
    {
        const std::vector<Candle> candles{
            candleOfRows(9, 9, 9, 150), candleOfRows(9, 9, 9, 150), candleOfRows(9, 9, 9, 110)};
        ChartFrame frame = frameOfBars(candles, 40.0, m_texts);
        frame.type = ChartType::Line;
        const QImage image = paint(&layers::paintPrices, frame);
        for (int x = 331 - 80; x < 331 - 42; ++x) // the flat part
            QVERIFY(pixelsOf(image, QRect(x, 149, 1, 3), colors.line) >= 1);
        for (int step = 2; step < 38; ++step) // the slope of one up per column
            QVERIFY(pixelsOf(image, QRect(291 + step - 1, 150 - step - 1, 3, 3), colors.line) >= 1);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 0, 400, 100), black), 0);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 0, 249, 278), black), 0);
    }

    void header_shows_until_the_pointer_enters_the_plot()
    {
        const std::vector<Candle> candles = fixtures::wave(3);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.symbol = u"EURUSD"_s;
        const QImage shown = paint(&layers::paintHeader, frame);
        const int ink = pixelsOtherThan(shown, QRect(6, 2, 320, 15), black);
        QVERIFY(ink > 100);
        QCOMPARE(pixelsOtherThan(shown, shown.rect(), black), ink);
        QVERIFY(pixelsOf(shown, shown.rect(), QColor(0xb8, 0xb8, 0xb8)) > 5);
        // Little hangs below the baseline.
        QVERIFY(pixelsOtherThan(shown, QRect(0, 14, 400, 1), black) < 20);
        frame.pointerInPlot = true;
        const QImage hidden = paint(&layers::paintHeader, frame);
        QCOMPARE(pixelsOtherThan(hidden, hidden.rect(), black), 0);
    }

    void header_needs_a_symbol()
    {
        const std::vector<Candle> candles = fixtures::wave(3);
        const QImage image = paint(&layers::paintHeader, frameOfBars(candles, 7.0, m_texts));
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void markup_in_server_texts_is_plain_text()
    {
        const auto inkOf = [this](const QString& text) {
            QImage image(frameSize, QImage::Format_RGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            m_texts.draw(painter, QRect(0, 100, 400, 20), Qt::AlignLeft, text, QColor(Qt::white));
            return pixelsOtherThan(image, image.rect(), black);
        };
        QVERIFY(inkOf(u"<b>A</b>"_s) > inkOf(u"A"_s) + 20);
        QVERIFY(inkOf(u"<img src='file:///dev/zero'>"_s) > 100);
        QCOMPARE(inkOf(QString()), 0);
        QVERIFY(inkOf(QString(2'000'000, u'A')) > 0);
    }

    void levels_are_lines_with_their_text()
    {
        const std::vector<Candle> candles{candleOfRows(9, 9, 9, 9)};
        const QList<TradeLevel> levels{
            {u"1"_s, u"ENTRY"_s, priceAtRow(100), u"buy 0.10"_s, QColor(Qt::blue), Qt::SolidLine, false},
            {u"1"_s, u"SL"_s, priceAtRow(200), u"sl"_s, QColor(Qt::red), Qt::DashLine, true}};
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.levels = levels;
        const QImage image = paint(&layers::paintTradeLevels, frame);
        QCOMPARE(pixelsOf(image, QRect(0, 100, 332, 1), QColor(Qt::blue)), 332);
        const int dashes = pixelsOf(image, QRect(0, 200, 332, 1), QColor(Qt::red));
        QVERIFY(dashes > 150 && dashes < 300);
        QVERIFY(pixelsOtherThan(image, QRect(6, 85, 80, 13), black) > 20);
        QVERIFY(pixelsOtherThan(image, QRect(6, 185, 30, 13), black) > 5);
        QCOMPARE(pixelsOtherThan(image, QRect(332, 0, 68, 300), black), 0);
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

    void a_dragged_level_is_solid_and_has_a_tag()
    {
        const std::vector<Candle> candles{candleOfRows(9, 9, 9, 9)};
        const QColor red(Qt::red);
        const QList<TradeLevel> levels{{u"1"_s, u"SL"_s, priceAtRow(200), u"sl"_s, red, Qt::DashLine, true}};
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.levels = levels;
        frame.draggedLevel = 0;
        frame.draggedPrice = priceAtRow(50);
        const QImage image = paint(&layers::paintTradeLevels, frame);
        QCOMPARE(pixelsOf(image, QRect(0, 50, 332, 1), red), 332);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 190, 332, 20), black), 0);
        QVERIFY(pixelsOf(image, QRect(332, 41, 66, 18), QColor(red.darker(280).rgb())) > 400);
        QVERIFY(pixelsOtherThan(image, QRect(6, 35, 100, 13), black) > 40);
    }

    void quotes_are_dashed_lines_with_tags()
    {
        const std::vector<Candle> candles{candleOfRows(9, 9, 9, 9)};
        const QColor askColor(0xff, 0x4a, 0x4a);
        const QColor bidColor(0x3b, 0xa7, 0xff);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.ask = priceAtRow(60);
        frame.bid = priceAtRow(160);
        const QImage image = paint(&layers::paintQuotes, frame);
        for (const auto& [row, color] : {std::pair(60, askColor), std::pair(160, bidColor)}) {
            const int dashes = pixelsOf(image, QRect(0, row, 332, 1), color);
            QVERIFY(dashes > 150 && dashes < 300);
        }
        const QRect askTag(332, 51, 66, 18);
        QCOMPARE(pixelsOf(image, QRect(askTag.left(), askTag.top(), 66, 1), askColor), 66);
        QCOMPARE(pixelsOf(image, QRect(askTag.left(), askTag.bottom(), 66, 1), askColor), 66);
        QCOMPARE(pixelsOf(image, QRect(askTag.right(), askTag.top(), 1, 18), askColor), 18);
        QVERIFY(pixelsOf(image, askTag.adjusted(1, 1, -1, -1), QColor(askColor.darker(280).rgb())) > 400);
        const QRect bidTag(332, 151, 66, 18);
        QVERIFY(pixelsOf(image, bidTag, bidColor) > 600);
        QVERIFY(pixelsOf(image, bidTag, black) > 10);
        QCOMPARE(pixelsOtherThan(image, QRect(398, 0, 2, 300), black), 0);
    }

    void a_quote_of_zero_or_out_of_range_is_not_drawn()
    {
        const std::vector<Candle> candles{candleOfRows(9, 9, 9, 9)};
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        for (const double price : {0.0, -1.0, 278.5}) {
            frame.ask = price;
            frame.bid = price;
            const QImage image = paint(&layers::paintQuotes, frame);
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
        }
    }

    void a_quote_below_zero_is_not_drawn_even_among_such_bars()
    {
        const std::vector<Candle> candles{candleOfRows(9, 9, 9, 9)};
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.view = frame.view.withPrices({-139.0, 139.0});
        for (const double price : {-37.25, 0.0}) {
            frame.ask = price;
            frame.bid = price;
            const QImage image = paint(&layers::paintQuotes, frame);
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
        }
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

    void crosshair_has_price_time_and_prices_of_the_bar()
    {
        const std::vector<Candle> candles = fixtures::wave(100);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.pointer = QPoint(200, 120);
        frame.pointerInPlot = true;
        const QImage image = paint(&layers::paintCrosshair, frame);
        const QColor line(0x77, 0x77, 0x77);
        const QColor tag(0x33, 0x33, 0x33);
        QVERIFY(pixelsOf(image, QRect(0, 120, 332, 1), line) > 150);
        QVERIFY(pixelsOf(image, QRect(200, 0, 1, 278), line) > 150);
        QVERIFY(pixelsOf(image, QRect(332, 111, 66, 18), tag) > 600);
        QVERIFY(pixelsOf(image, QRect(150, 279, 100, 19), tag) > 1000);
        QVERIFY(pixelsOtherThan(image, QRect(6, 4, 180, 16), black) > 100);
        // Everything lies on the two lines, in the two tags and in the line of prices.
        QCOMPARE(pixelsOtherThan(image, QRect(0, 22, 199, 98), black), 0);
        QCOMPARE(pixelsOtherThan(image, QRect(201, 121, 131, 157), black), 0);
    }

    void crosshair_beside_the_bars_has_no_time()
    {
        const std::vector<Candle> candles = fixtures::wave(10); // bars reach back to column 268
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.pointer = QPoint(100, 120);
        frame.pointerInPlot = true;
        const QImage image = paint(&layers::paintCrosshair, frame);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 278, 332, 22), black), 0);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 0, 99, 119), black), 0);
        QVERIFY(pixelsOf(image, QRect(332, 111, 66, 18), QColor(0x33, 0x33, 0x33)) > 600);
    }

    void no_crosshair_outside_the_plot()
    {
        const std::vector<Candle> candles = fixtures::wave(10);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        frame.pointer = QPoint(350, 120);
        const QImage image = paint(&layers::paintCrosshair, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void button_shows_while_the_view_does_not_follow()
    {
        const std::vector<Candle> candles = fixtures::wave(10);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        QCOMPARE(
            pixelsOtherThan(paint(&layers::paintScrollButton, frame), QRect(QPoint(), frameSize), black), 0);
        frame.autoScroll = false;
        const QImage image = paint(&layers::paintScrollButton, frame);
        const QRect box(301, 251, 24, 20);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 24 * 20);
        QCOMPARE(pixelsOtherThan(image, box, black), 24 * 20);
        QCOMPARE(pixelsOf(image, QRect(301, 251, 24, 1), colors.axis), 24);
        QCOMPARE(pixelsOf(image, QRect(301, 251, 1, 20), colors.axis), 20);
        QVERIFY(pixelsOf(image, box, QColor(0x33, 0x33, 0x33)) > 300);
        QVERIFY(pixelsOtherThan(image, box.adjusted(6, 4, -6, -4), QColor(0x33, 0x33, 0x33)) > 5);
    }

    void shift_marker_points_at_the_last_visible_bar()
    {
        const std::vector<Candle> candles = fixtures::wave(10);
        ChartFrame frame = frameOfBars(candles, 7.0, m_texts);
        ViewState state;
        state.rightBarIndex = 9;
        state.chartShift = true;
        frame.view = ChartView(frameSize, state, 10, false);
        QCOMPARE(
            pixelsOtherThan(paint(&layers::paintShiftMarker, frame), QRect(QPoint(), frameSize), black), 0);
        frame.chartShift = true;
        const QImage image = paint(&layers::paintShiftMarker, frame);
        const int x = 331 - 53;
        const QColor grey(0x8a, 0x8a, 0x8a);
        QVERIFY(pixelsOf(image, QRect(x - 4, 1, 8, 1), grey) >= 6);
        QCOMPARE(pixelsOf(image, QRect(x - 4, 1, 9, 5), grey), pixelsOtherThan(image, image.rect(), black));
        state.rightBarIndex = 4; // scrolled back: the newest bar has left the plot
        frame.view = ChartView(frameSize, state, 10, false);
        QCOMPARE(paint(&layers::paintShiftMarker, frame), image);
        state.rightBarIndex = 9;
        state.chartShift = false; // the last bar stands on the edge of the plot, not inside
        frame.view = ChartView(frameSize, state, 10, false);
        QCOMPARE(
            pixelsOtherThan(paint(&layers::paintShiftMarker, frame), QRect(QPoint(), frameSize), black), 0);
    }

    void border_is_the_last_column_and_row_of_the_plot()
    {
        const std::vector<Candle> candles = fixtures::wave(10);
        const QImage image = paint(&layers::paintBorder, frameOfBars(candles, 7.0, m_texts));
        QCOMPARE(pixelsOf(image, QRect(331, 0, 1, 278), colors.grid), 278);
        QCOMPARE(pixelsOf(image, QRect(0, 277, 332, 1), colors.grid), 332);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 278 + 332 - 1);
    }
};

TAVORAN_TEST(TestChartLayers)
#include "tst_ChartLayers.moc"
