#include "chart/layers/Layers.h"

#include "app/base/NumberFormat.h"
#include "chart/LayerFixture.h"
#include "chart/data/ChartTexts.h"
#include "chart/data/GridSteps.h"
#include "chart/window/ChartWidget.h"
#include "support/TestMain.h"

#include <QPainter>

using namespace Qt::StringLiterals;
using fixtures::paint;

namespace {

constexpr QColor tagGrey(0x33, 0x33, 0x33);
constexpr QColor askRed(0xff, 0x4a, 0x4a);
constexpr QColor bidBlue(0x3b, 0xa7, 0xff);
constexpr QColor axisGrey(0xc0, 0xc0, 0xc0);

using Weight = TextPainter::Weight;

/// The smallest rectangle that holds all that is not black.
QRect inkArea(const QImage& image)
{
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::black))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

} // namespace

/// Every text of the chart: what it says, where, in which colour and weight.
class TestChartLabels final : public QObject {
    Q_OBJECT

    void compareBox(const QImage& image, const QRect& box, const QString& text, Qt::Alignment alignment,
        const QColor& fill, const QColor& ink, Weight weight = Weight::Normal)
    {
        QImage expected(image.size(), QImage::Format_RGB32);
        expected.fill(Qt::black);
        QPainter painter(&expected);
        painter.fillRect(box, fill);
        m_texts.draw(painter, box, alignment, text, ink, weight);
        painter.end();
        QVERIFY(fixtures::pixelsOtherThan(expected, box, fill) > 10);
        QVERIFY2(image.copy(box) == expected.copy(box), qPrintable(text));
    }

    std::unique_ptr<ChartWidget> m_chart;
    TextPainter m_texts;

private Q_SLOTS:
    void init()
    {
        m_chart = std::make_unique<ChartWidget>();
        m_chart->resize(400, 300); // plot (0, 0, 332, 278)
        m_chart->setDigits(4);
        m_chart->setSymbolInfo(u"EURUSD"_s, u"M15"_s, u"Euro"_s);
        m_chart->setCandles(fixtures::wave(100));
    }

    void cleanup() { m_chart.reset(); }

    void texts_are_eight_points_of_the_chart_font_data()
    {
        QTest::addColumn<int>("weight");
        QTest::addColumn<Weight>("face");
        QTest::newRow("normal") << 400 << Weight::Normal;
        QTest::newRow("bold") << 700 << Weight::Bold;
    }
    void texts_are_eight_points_of_the_chart_font()
    {
        QFETCH(int, weight);
        QFETCH(Weight, face);
        QFont font(u"Segoe UI"_s, 8);
        font.setWeight(static_cast<QFont::Weight>(weight));
        const QRect box(20, 20, 120, 18);
        QImage expected(160, 60, QImage::Format_RGB32);
        QImage image = expected;
        expected.fill(Qt::black);
        image.fill(Qt::black);
        QPainter plain(&expected);
        plain.setFont(font);
        plain.setPen(Qt::white);
        plain.drawText(box, Qt::AlignLeft | Qt::AlignVCenter, u"1.09876 Mg"_s);
        plain.end();
        QPainter painter(&image);
        m_texts.draw(painter, box, Qt::AlignLeft, u"1.09876 Mg"_s, QColor(Qt::white), face);
        painter.end();
        // Qt may round the middle of the box the other way.
        QCOMPARE(image.copy(inkArea(image)), expected.copy(inkArea(expected)));
        QCOMPARE(inkArea(image).left(), inkArea(expected).left());
        QVERIFY(std::abs(inkArea(image).top() - inkArea(expected).top()) <= 1);
    }

    void grid_lines_carry_their_price_left_aligned()
    {
        const ChartFrame frame = m_chart->frame();
        const QImage image = paint(&layers::paintPriceGrid, frame);
        const auto lines = priceGridLines(frame.view.prices(), 278);
        QVERIFY(lines.size() >= 3);
        for (const double price : lines) {
            const QRect box(335, frame.view.pricePixel(price) - 8, 62, 16);
            compareBox(image, box, formatPrice(price, 4), Qt::AlignLeft, Qt::black, axisGrey);
        }
    }

    void grid_lines_carry_the_time_of_their_bar_centred()
    {
        const ChartFrame frame = m_chart->frame();
        const QImage image = paint(&layers::paintTimeGrid, frame);
        for (const int bar : {96, 84, 72, 60}) {
            const QRect box(331 - (99 - bar) * 7 - 44, 280, 88, 18);
            // Bars are a quarter of an hour and begin at midnight, UTC.
            const QString time = QTime(0, 0).addSecs(bar * 900).toString(u"HH:mm"_s);
            compareBox(image, box, time, Qt::AlignHCenter, Qt::black, axisGrey);
        }
    }

    void the_header_stands_on_its_baseline()
    {
        const QImage image = paint(&layers::paintHeader, m_chart->frame());
        QImage expected(image.size(), QImage::Format_RGB32);
        expected.fill(Qt::black);
        QPainter painter(&expected);
        painter.setFont(QFont(u"Segoe UI"_s, 8));
        painter.setPen(QColor(0xb8, 0xb8, 0xb8));
        painter.drawText(
            QPoint(6, 13), headerText(u"EURUSD"_s, u"M15"_s, u"Euro"_s, m_chart->candles().back(), 4));
        painter.end();
        QCOMPARE(image, expected);
    }

    void the_header_tells_the_newest_bar_wherever_the_view_is()
    {
        const QImage atEnd = paint(&layers::paintHeader, m_chart->frame());
        m_chart->setAutoScroll(false);
        const Candle last = m_chart->candles().back();
        m_chart->onTick(1.5, 1.5, last.time + fixtures::quarterHour);
        QVERIFY(m_chart->view().visible().last < 100);
        const QImage image = paint(&layers::paintHeader, m_chart->frame());
        QVERIFY(image != atEnd);
        QImage expected(image.size(), QImage::Format_RGB32);
        expected.fill(Qt::black);
        QPainter painter(&expected);
        m_texts.drawAt(painter, QPoint(6, 13),
            u"EURUSD,M15: Euro   O: 1.5000  H: 1.5000  L: 1.5000  C: 1.5000"_s, QColor(0xb8, 0xb8, 0xb8));
        painter.end();
        QCOMPARE(image, expected);
    }

    void a_level_carries_its_text_above_the_line()
    {
        const double price = m_chart->candles().back().close;
        m_chart->setTradeLevels({{u"1"_s, u"SL"_s, price, u"sl #1"_s, QColor(Qt::red), Qt::DashLine, true}});
        const ChartFrame frame = m_chart->frame();
        const QImage image = paint(&layers::paintTradeLevels, frame);
        const QRect box(6, frame.view.pricePixel(price) - 15, 332 - 12, 13);
        compareBox(image, box, u"sl #1"_s, Qt::AlignLeft, Qt::black, QColor(Qt::red));
    }

    void a_dragged_level_carries_its_text_and_price()
    {
        m_chart->setTradeLevels({{u"1"_s, u"SL"_s, 1.0, u"sl #1"_s, QColor(Qt::red), Qt::DashLine, true}});
        ChartFrame frame = m_chart->frame();
        frame.draggedLevel = 0;
        frame.draggedPrice = m_chart->candles().back().close;
        const QString price = formatPrice(frame.draggedPrice, 4);
        const int y = frame.view.pricePixel(frame.draggedPrice);
        const QImage image = paint(&layers::paintTradeLevels, frame);
        compareBox(image, QRect(6, y - 15, 332 - 12, 13), u"sl #1  "_s + price, Qt::AlignLeft, Qt::black,
            QColor(Qt::red));
        compareBox(image, QRect(332, y - 9, 66, 18), price, Qt::AlignHCenter, QColor(Qt::red).darker(280),
            QColor(Qt::white));
    }

    void a_horizontal_line_carries_its_price_above_it()
    {
        const double price = m_chart->candles().back().close;
        m_chart->setDrawings({{{}, u"hline"_s, {{fixtures::midnight, price}}, QColor(Qt::red), false}});
        const ChartFrame frame = m_chart->frame();
        const QImage image = paint(&layers::paintDrawings, frame);
        const QRect box(6, frame.view.pricePixel(price) - 14, 120, 12);
        compareBox(image, box, QString::number(price, 'f', 4), Qt::AlignLeft, Qt::black, QColor(Qt::red));
    }

    void a_retracement_carries_percent_and_price_beside_each_level()
    {
        const double low = m_chart->view().priceAt(250);
        const double high = m_chart->view().priceAt(20);
        m_chart->setDrawings(
            {{{}, u"fibonacci"_s, {{m_chart->candles()[60].time, low}, {m_chart->candles()[80].time, high}},
                QColor(Qt::red), false}});
        const ChartFrame frame = m_chart->frame();
        const int right = 331 - 19 * 7;
        const QRect beside(QPoint(right + 1, 0), QPoint(399, 299));
        QImage expected(frame.view.size(), QImage::Format_RGB32);
        expected.fill(Qt::black);
        QPainter painter(&expected);
        painter.setFont(QFont(u"Segoe UI"_s, 7));
        painter.setPen(Qt::red);
        for (const auto& [ratio, percent] : {std::pair(0.0, u"0.0"_s), std::pair(0.236, u"23.6"_s),
                 std::pair(0.382, u"38.2"_s), std::pair(0.5, u"50.0"_s), std::pair(0.618, u"61.8"_s),
                 std::pair(0.786, u"78.6"_s), std::pair(1.0, u"100.0"_s)}) {
            const double price = low + (high - low) * ratio;
            painter.drawText(QPoint(right + 4, frame.view.pricePixel(price) + 4),
                percent + u"  "_s + QString::number(price, 'f', 4));
        }
        painter.end();
        QCOMPARE(paint(&layers::paintDrawings, frame).copy(beside), expected.copy(beside));
    }

    void the_ask_is_white_and_the_bid_bold_and_black()
    {
        const Candle last = m_chart->candles().back();
        m_chart->onTick(last.low, last.high, last.time);
        const ChartFrame frame = m_chart->frame();
        const QImage image = paint(&layers::paintQuotes, frame);
        const QRect askTag(332, frame.view.pricePixel(last.high) - 9, 66, 18);
        const QRect bidTag(332, frame.view.pricePixel(last.low) - 9, 66, 18);
        QVERIFY(!askTag.intersects(bidTag));
        compareBox(image, askTag.adjusted(1, 1, -1, -1), formatPrice(last.high, 4), Qt::AlignHCenter,
            askRed.darker(280), QColor(Qt::white));
        compareBox(image, bidTag, formatPrice(last.low, 4), Qt::AlignHCenter, bidBlue, QColor(Qt::black),
            Weight::Bold);
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
        m_chart->setDigits(digits);
        const Candle last = m_chart->candles().back();
        m_chart->onTick(last.low, last.high, last.time);
        const ChartFrame frame = m_chart->frame();
        const QImage image = paint(&layers::paintQuotes, frame);
        const QRect tag(332, frame.view.pricePixel(last.low) - 9, 66, 18);
        QVERIFY(fixtures::pixelsOtherThan(image, tag, bidBlue) > 10);
        for (const int edge : {tag.left(), tag.right()})
            QCOMPARE(fixtures::pixelsOtherThan(image, QRect(edge, tag.top(), 1, tag.height()), bidBlue), 0);
    }

    void the_crosshair_tells_the_price_at_the_pointer_and_the_bar()
    {
        fixtures::hover(*m_chart, QPoint(331 - 5 * 7 + 2, 120));
        const ChartFrame frame = m_chart->frame();
        const QImage image = paint(&layers::paintCrosshair, frame);
        const PriceRange range = frame.view.prices();
        const QString price = formatPrice(range.max - 120 * (range.max - range.min) / 278, 4);
        compareBox(image, QRect(332, 111, 66, 18), price, Qt::AlignHCenter, tagGrey, QColor(Qt::white));
        compareBox(image, QRect(298 - 50, 279, 100, 19), u"02 Jun 23:30"_s, Qt::AlignHCenter, tagGrey,
            QColor(Qt::white)); // bar 94 of a day of 96
        QImage line = image;
        QPainter(&line).fillRect(QRect(298, 0, 1, 278), Qt::black); // the vertical line passes the box
        compareBox(line, QRect(6, 4, 280, 16), crosshairText(m_chart->candles()[94], 4), Qt::AlignLeft,
            Qt::black, axisGrey);
    }

    void the_button_shows_a_double_arrow()
    {
        m_chart->setAutoScroll(false);
        const QImage image = paint(&layers::paintScrollButton, m_chart->frame());
        compareBox(image, QRect(301, 251, 24, 20).adjusted(1, 1, -1, -1), u"\u00bb"_s, Qt::AlignHCenter,
            tagGrey, axisGrey);
    }

    void an_empty_chart_waits_in_its_middle()
    {
        m_chart->setCandles({});
        const QImage image = paint(&layers::paintEmptySeries, m_chart->frame());
        compareBox(image, image.rect(), u"Waiting for data..."_s, Qt::AlignHCenter, Qt::black, axisGrey);
    }
};

TAVORAN_TEST(TestChartLabels)
#include "tst_ChartLabels.moc"
