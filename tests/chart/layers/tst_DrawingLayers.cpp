#include "chart/layers/Layers.h"

#include "chart/LayerFixture.h"
#include "chart/layers/LineStrokes.h"
#include "support/TestMain.h"

#include <QPainter>
#include <QRandomGenerator>

#include <limits>

using namespace Qt::StringLiterals;
using fixtures::frameOfBars;
using fixtures::frameSize;
using fixtures::paint;
using fixtures::pixelsOf;
using fixtures::pixelsOtherThan;

namespace {

constexpr QColor black(0, 0, 0);
constexpr QColor red(0xff, 0, 0);
constexpr QRect plot(0, 0, 332, 278);

DrawingPoint at(int bar, int row)
{
    return {fixtures::barTime(bar), fixtures::priceAtRow(row)};
}

Drawing object(const QString& type, const QList<DrawingPoint>& points, bool selected = false)
{
    return {{}, type, points, red, selected};
}

} // namespace

class TestDrawingLayers final : public QObject {
    Q_OBJECT

    [[nodiscard]] QImage painted(const Drawing& drawing)
    {
        const QList<Drawing> drawings{drawing};
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        frame.drawings = drawings;
        return paint(&layers::paintDrawings, frame);
    }

    const std::vector<Candle> m_candles = fixtures::wave(20);
    TextPainter m_texts;

private Q_SLOTS:
    void a_horizontal_line_crosses_the_plot_and_tells_its_price()
    {
        const QImage image = painted(object(u"hline"_s, {at(5, 100)}));
        QCOMPARE(pixelsOf(image, QRect(0, 100, 332, 1), red), 332);
        QVERIFY(pixelsOtherThan(image, QRect(6, 84, 60, 15), black) > 20);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 101, 400, 199), black), 0);
        QCOMPARE(pixelsOtherThan(image, QRect(332, 0, 68, 300), black), 0);
        QCOMPARE(pixelsOf(image, QRect(2, 97, 6, 3), red), 0);

        const QImage selected = painted(object(u"hline"_s, {at(5, 100)}, true));
        QCOMPARE(pixelsOf(selected, QRect(0, 99, 332, 2), red), 664);
        QCOMPARE(pixelsOf(selected, QRect(2, 97, 6, 6), red), 36);
        QCOMPARE(pixelsOtherThan(selected, QRect(0, 97, 2, 2), black), 0);
        QCOMPARE(pixelsOtherThan(selected, QRect(8, 101, 324, 5), black), 0);
    }

    void a_horizontal_line_outside_the_prices_is_not_drawn()
    {
        for (const double price : {278.01, -0.01, 1e9, -1e9, 1e15}) {
            const QImage image = painted(object(u"hline"_s, {{fixtures::midnight, price}}, true));
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
        }
    }

    void a_vertical_line_runs_from_top_to_bottom()
    {
        const QImage image = painted(object(u"vline"_s, {at(9, 100)}));
        QCOMPARE(pixelsOf(image, QRect(261, 0, 1, 278), red), 278);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 278);
        const QImage selected = painted(object(u"vline"_s, {at(9, 100)}, true));
        QCOMPARE(pixelsOf(selected, QRect(260, 0, 2, 278), red), 556);
        QCOMPARE(pixelsOf(selected, QRect(258, 97, 6, 6), red), 36);
        QCOMPARE(pixelsOtherThan(selected, selected.rect(), black), 556 + 24);
        const QImage aside = painted(object(u"vline"_s, {at(25, 100)}, true));
        QCOMPARE(pixelsOtherThan(aside, aside.rect(), black), 0);
    }

    void a_trend_line_joins_its_points()
    {
        const QImage image = painted(object(u"trendline"_s, {at(9, 100), at(19, 170)}));
        for (int i = 0; i <= 70; ++i)
            QCOMPARE(image.pixelColor(261 + i, 100 + i), red);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 71);
        const QImage selected = painted(object(u"trendline"_s, {at(9, 100), at(14, 135)}, true));
        QCOMPARE(pixelsOf(selected, QRect(258, 97, 6, 6), red), 36);
        QCOMPARE(pixelsOf(selected, QRect(293, 132, 6, 6), red), 36);
        QVERIFY(pixelsOf(selected, QRect(266, 105, 26, 25), red) > 40); // twice as wide
    }

    void a_rectangle_is_filled_thinly_and_outlined()
    {
        for (const bool turned : {false, true}) {
            const DrawingPoint a = at(9, turned ? 170 : 100);
            const DrawingPoint b = at(19, turned ? 100 : 170);
            const QImage image = painted(object(u"rectangle"_s, {a, b}));
            const QRect box(QPoint(261, 100), QPoint(331, 170));
            QCOMPARE(pixelsOf(image, QRect(261, 100, 71, 1), red), 71);
            QCOMPARE(pixelsOf(image, QRect(261, 170, 71, 1), red), 71);
            QCOMPARE(pixelsOf(image, QRect(261, 100, 1, 71), red), 71);
            QCOMPARE(pixelsOf(image, QRect(331, 100, 1, 71), red), 71);
            const QColor inside = image.pixelColor(300, 140);
            QCOMPARE(inside.red(), 28); // 28 parts of 255 over black
            QCOMPARE(inside.green(), 0);
            QCOMPARE(pixelsOf(image, box.adjusted(1, 1, -1, -1), inside), 69 * 69);
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), 71 * 71);
        }
        const QImage selected = painted(object(u"rectangle"_s, {at(9, 100), at(14, 170)}, true));
        QCOMPARE(pixelsOf(selected, QRect(261, 99, 36, 2), red), 72);
        QCOMPARE(pixelsOf(selected, QRect(260, 110, 2, 50), red), 100);
        // It has no handles, neither outside nor inside its corners.
        QCOMPARE(pixelsOtherThan(selected, QRect(250, 90, 60, 9), black), 0);
        QCOMPARE(pixelsOtherThan(selected, QRect(250, 90, 10, 100), black), 0);
        QCOMPARE(pixelsOf(selected, QRect(262, 101, 33, 68), selected.pixelColor(280, 140)), 33 * 68);
    }

    void a_retracement_has_seven_lines_with_texts()
    {
        // From row 240 up to row 40; the second point is the left one.
        const QImage image = painted(object(u"fibonacci"_s, {at(12, 240), at(2, 40)}));
        const std::array rows{240, 193, 164, 140, 116, 83, 40}; // 237.5 - 200 x ratio, from the top
        for (const int row : rows) {
            QCOMPARE(pixelsOf(image, QRect(212, row, 71, 1), red), 71);
            QVERIFY(pixelsOtherThan(image, QRect(285, row - 6, 60, 11), black) > 20);
        }
        QCOMPARE(pixelsOtherThan(image, QRect(0, 0, 212, 300), black), 0);
        QCOMPARE(pixelsOtherThan(image, QRect(212, 0, 71, 300), black), 7 * 71);
        const QImage selected = painted(object(u"fibonacci"_s, {at(12, 240), at(2, 40)}, true));
        QCOMPARE(pixelsOf(selected, QRect(279, 237, 6, 6), red), 36);
        QCOMPARE(pixelsOf(selected, QRect(209, 37, 6, 6), red), 36);
        QCOMPARE(pixelsOf(selected, QRect(215, 139, 64, 2), red), 128);
    }

    void retracement_levels_outside_the_prices_are_not_drawn()
    {
        // The upper half of it is above the plot.
        const QImage image = painted(object(u"fibonacci"_s, {at(2, 100), at(12, -100)}));
        int lines = 0;
        for (int y = 0; y < 300; ++y)
            lines += image.pixelColor(220, y) == red ? 1 : 0;
        QCOMPARE(lines, 4); // 0, 23.6, 38.2 and, in the topmost row, 50
    }

    void retracement_texts_are_smaller_than_others()
    {
        const auto inkHeight = [this](bool small) {
            QImage image(frameSize, QImage::Format_RGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            const QString text(200, u'8');
            if (small)
                m_texts.drawSmallAt(painter, QPoint(0, 100), text, Qt::white);
            else
                m_texts.drawAt(painter, QPoint(0, 100), text, Qt::white);
            painter.end();
            return pixelsOtherThan(image, QRect(0, 0, 300, 300), black);
        };
        QVERIFY(inkHeight(true) > 0);
        QVERIFY(inkHeight(true) < inkHeight(false));
    }

    void retracement_texts_reach_in_from_the_left()
    {
        // The last bar stands at column 331: 49 bars before it, the object ends at column -12.
        const QImage image = painted(object(u"fibonacci"_s, {at(-40, 240), at(-30, 40)}));
        QVERIFY(pixelsOtherThan(image, QRect(0, 234, 60, 11), black) > 20);
        QCOMPARE(pixelsOtherThan(image, QRect(60, 0, 340, 300), black), 0);
        const QImage away = painted(object(u"fibonacci"_s, {at(-80, 240), at(-70, 40)}));
        QCOMPARE(pixelsOtherThan(away, away.rect(), black), 0);
    }

    void shapes_stay_within_the_plot()
    {
        for (const QString& type : {u"hline"_s, u"vline"_s, u"trendline"_s, u"rectangle"_s}) {
            const QImage image = painted(object(type, {at(5, 100), at(300, 400)}, true));
            QVERIFY(pixelsOtherThan(image, plot, black) > 0);
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), pixelsOtherThan(image, plot, black));
        }
        const QImage image = painted(object(u"fibonacci"_s, {at(5, 100), at(300, 400)}, true));
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), pixelsOtherThan(image, plot, black));
        // A text beside an object that ends at the newest bar is the exception.
        const QImage newest = painted(object(u"fibonacci"_s, {at(5, 100), at(19, 200)}));
        QVERIFY(pixelsOtherThan(newest, QRect(333, 90, 60, 14), black) > 20);
    }

    void a_missing_time_or_price_matters_only_where_it_shows()
    {
        const DrawingPoint point = at(9, 100);
        for (const bool selected : {false, true})
            QCOMPARE(painted(object(u"hline"_s, {{0, point.price}}, selected)),
                painted(object(u"hline"_s, {point}, selected)));
        QCOMPARE(painted(object(u"vline"_s, {{point.time, 0.0}})), painted(object(u"vline"_s, {point})));
    }

    void objects_that_begin_nowhere_stay_within_the_plot()
    {
        constexpr qint64 farthest = std::numeric_limits<qint64>::max();
        for (const QString& type : {u"hline"_s, u"vline"_s, u"trendline"_s, u"rectangle"_s, u"fibonacci"_s}) {
            for (const qint64 time : {qint64{0}, farthest, -farthest - 1}) {
                for (const bool first : {true, false}) {
                    QList<DrawingPoint> points{{time, 0.0}, at(14, 135)};
                    if (!first)
                        points.swapItemsAt(0, 1);
                    const QImage image = painted(object(type, points, true));
                    if (type != u"fibonacci"_s) // whose texts stand beside it
                        QCOMPARE(
                            pixelsOtherThan(image, image.rect(), black), pixelsOtherThan(image, plot, black));
                }
            }
            const QImage none = painted(object(type, {}, true));
            QCOMPARE(pixelsOtherThan(none, none.rect(), black), 0);
        }
        const QImage half = painted(object(u"trendline"_s, {at(14, 135)}, true));
        QCOMPARE(pixelsOtherThan(half, half.rect(), black), 0);
    }

    void later_objects_cover_earlier_ones()
    {
        Drawing blue = object(u"vline"_s, {at(9, 100)});
        blue.color = Qt::blue;
        const QList<Drawing> drawings{object(u"hline"_s, {at(5, 100)}), blue};
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        frame.drawings = drawings;
        const QImage image = paint(&layers::paintDrawings, frame);
        QCOMPARE(image.pixelColor(261, 100), QColor(Qt::blue));
        QCOMPARE(image.pixelColor(262, 100), red);
    }

    void an_invalid_colour_is_the_usual_one()
    {
        Drawing drawing = object(u"vline"_s, {at(9, 100)});
        drawing.color = QColor();
        QCOMPARE(painted(drawing).pixelColor(261, 50), QColor(0xe0, 0xe0, 0xe0));
    }

    void a_preview_is_a_line_or_a_box()
    {
        const QColor color(0xe0, 0xe0, 0xe0);
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        frame.pointer = QPoint(320, 220);
        frame.pointerInPlot = true;
        for (const DrawingKind kind :
            {DrawingKind::TrendLine, DrawingKind::Rectangle, DrawingKind::Fibonacci}) {
            frame.preview = ChartFrame::Preview{kind, at(9, 100)};
            const QImage image = paint(&layers::paintDrawingPreview, frame);
            const bool box = kind != DrawingKind::TrendLine;
            QCOMPARE(image.pixelColor(261, 100), color);
            for (const QRect& side : {QRect(263, 100, 56, 1), QRect(263, 220, 56, 1), QRect(261, 102, 1, 116),
                     QRect(320, 102, 1, 116)}) {
                const int dashes = pixelsOf(image, side, color);
                const int whole = side.width() * side.height();
                QVERIFY(box ? dashes > whole / 2 && dashes < whole : dashes == 0);
            }
            const int inside = pixelsOf(image, QRect(265, 104, 50, 112), color);
            QVERIFY(box ? inside == 0 : inside > 50 && inside < 112);
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), pixelsOf(image, image.rect(), color));
        }
    }

    void a_preview_needs_the_pointer_in_the_plot()
    {
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        frame.pointer = QPoint(350, 220);
        frame.preview = ChartFrame::Preview{DrawingKind::TrendLine, at(9, 100)};
        QImage image = paint(&layers::paintDrawingPreview, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
        frame.pointer = QPoint(300, 220);
        frame.pointerInPlot = true;
        frame.preview.reset();
        image = paint(&layers::paintDrawingPreview, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void a_preview_from_far_away_costs_no_more()
    {
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        frame.pointer = QPoint(300, 220);
        frame.pointerInPlot = true;
        for (const DrawingKind kind : {DrawingKind::TrendLine, DrawingKind::Rectangle}) {
            frame.preview = ChartFrame::Preview{kind, {-4'000'000'000'000'000'000, -1e15}};
            for (int i = 0; i < 100; ++i) { // walking along all of it would take minutes
                const QImage image = paint(&layers::paintDrawingPreview, frame);
                QVERIFY(pixelsOtherThan(image, image.rect(), black) > 20);
            }
        }
    }

    void a_ruler_is_a_broken_line_with_a_box()
    {
        const QColor amber(0xff, 0xb3, 0x00);
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        QImage image = paint(&layers::paintRuler, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
        frame.ruler = Ruler::Span{QPoint(20, 200), QPoint(83, 137)};
        image = paint(&layers::paintRuler, frame, Qt::white);
        int dashes = 0;
        for (int i = 0; i <= 63; ++i)
            dashes += image.pixelColor(20 + i, 200 - i) == amber ? 1 : 0;
        QVERIFY(dashes > 35 && dashes < 50);
        const QString text = Ruler::text(frame.view, *frame.ruler, frame.digits);
        QCOMPARE(text, u"9 bars,  6300 points  (80.77%)"_s);
        const QRect box = Ruler::box(frame.view, QPoint(83, 137), m_texts.advance(text));
        QCOMPARE(box.topLeft(), QPoint(91, 115));
        QCOMPARE(pixelsOf(image, QRect(box.left(), box.top(), box.width(), 1), amber), box.width());
        QCOMPARE(pixelsOf(image, QRect(box.left(), box.bottom(), box.width(), 1), amber), box.width());
        QCOMPARE(pixelsOf(image, QRect(box.left(), box.top(), 1, 18), amber), 18);
        QCOMPARE(pixelsOf(image, QRect(box.right(), box.top(), 1, 18), amber), 18);
        // 200 of 255 black.
        QVERIFY(std::abs(image.pixelColor(box.left() + 2, box.top() + 2).red() - 55) <= 1);
        QVERIFY(
            pixelsOtherThan(image, box.adjusted(5, 2, -5, -2), image.pixelColor(box.topLeft() + QPoint(2, 2)))
            > 60);
        frame.ruler = Ruler::Span{QPoint(20, 20), QPoint(325, 5)};
        image = paint(&layers::paintRuler, frame);
        QCOMPARE(pixelsOtherThan(image, QRect(332, 0, 68, 300), black), 0); // the box is left of the end
        QVERIFY(pixelsOf(image, QRect(200, 13, 110, 1), amber) > 80);       // and below it
    }

    void lines_hold_both_ends_and_have_no_gaps()
    {
        QRandomGenerator random(3);
        for (int i = 0; i < 300; ++i) {
            const QPoint a(random.bounded(100), random.bounded(100));
            const QPoint b = i == 0 ? a : QPoint(random.bounded(100), random.bounded(100));
            QImage image(100, 100, QImage::Format_RGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            strokes::between(painter, a, b, image.rect(), red);
            painter.end();
            QCOMPARE(image.pixelColor(a), red);
            QCOMPARE(image.pixelColor(b), red);
            const QPoint run = b - a;
            const int steps = std::max(std::abs(run.x()), std::abs(run.y()));
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), steps + 1);
            for (int step = 0; step <= steps; ++step) {
                const double part = steps == 0 ? 0.0 : static_cast<double>(step) / steps;
                const double x = a.x() + run.x() * part;
                const double y = a.y() + run.y() * part;
                bool found = false; // within half a pixel of the ideal line
                for (const double away : {-0.5, 0.5}) {
                    const double shift = away * 0.999;
                    const bool steep = std::abs(run.y()) > std::abs(run.x());
                    const QPoint near(static_cast<int>(std::lround(x + (steep ? shift : 0.0))),
                        static_cast<int>(std::lround(y + (steep ? 0.0 : shift))));
                    found = found || (image.rect().contains(near) && image.pixelColor(near) == red);
                }
                QVERIFY(found);
            }
        }
    }

    void broken_lines_are_drawn_four_pixels_out_of_six()
    {
        QImage image(120, 120, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        strokes::between(painter, QPoint(0, 5), QPoint(119, 5), image.rect(), red, {1, Qt::DashLine});
        strokes::between(painter, QPoint(7, 119), QPoint(7, 10), image.rect(), red, {1, Qt::DashLine});
        painter.end();
        for (int x = 0; x < 120; ++x)
            QCOMPARE(image.pixelColor(x, 5) == red, x % 6 < 4);
        for (int y = 119; y >= 10; --y)
            QCOMPARE(image.pixelColor(7, y) == red, (119 - y) % 6 < 4);
    }

    void lines_are_the_same_in_parts_data()
    {
        QTest::addColumn<qreal>("ratio");
        QTest::addColumn<int>("width");
        QTest::addColumn<Qt::PenStyle>("pen");
        for (const qreal ratio : {1.0, 2.0, 3.0}) {
            for (const int width : {1, 2}) {
                QTest::addRow("ratio %.0f, solid, width %d", ratio, width) << ratio << width << Qt::SolidLine;
                QTest::addRow("ratio %.0f, broken, width %d", ratio, width) << ratio << width << Qt::DashLine;
            }
        }
    }
    void lines_are_the_same_in_parts()
    {
        QFETCH(qreal, ratio);
        QFETCH(int, width);
        QFETCH(Qt::PenStyle, pen);
        QRandomGenerator random(17);
        const auto canvas = [ratio] {
            QImage image(static_cast<int>(100 * ratio), static_cast<int>(100 * ratio), QImage::Format_RGB32);
            image.setDevicePixelRatio(ratio);
            image.fill(Qt::black);
            return image;
        };
        const QRect bounds(0, 0, 100, 100);
        for (int i = 0; i < 24; ++i) {
            const int reach = i % 3 == 0 ? 100'000'000 : 150;
            const auto anywhere = [&] { return random.bounded(-reach, reach); };
            const QPoint a(anywhere(), anywhere());
            const QPoint b = i % 3 == 1 ? QPoint(anywhere(), anywhere()) : QPoint(50, 50);
            QImage whole = canvas();
            QPainter painter(&whole);
            strokes::between(painter, a, b, bounds, red, {width, pen});
            painter.end();
            QImage parts = canvas();
            painter.begin(&parts);
            for (int y = 0; y < 100; y += 21) {
                for (int x = 0; x < 100; x += 21) {
                    painter.setClipRect(QRect(x, y, 21, 21));
                    strokes::between(painter, a, b, bounds, red, {width, pen});
                }
            }
            painter.end();
            QCOMPARE(parts, whole);
            QImage bounded = canvas();
            painter.begin(&bounded);
            for (int y = 0; y < 100; y += 21) {
                for (int x = 0; x < 100; x += 21)
                    strokes::between(painter, a, b, QRect(x, y, 21, 21) & bounds, red, {width, pen});
            }
            painter.end();
            QCOMPARE(bounded, whole);
        }
    }

    void at_two_device_pixels_slopes_are_finer()
    {
        QImage image(200, 200, QImage::Format_RGB32);
        image.setDevicePixelRatio(2.0);
        image.fill(Qt::black);
        QPainter painter(&image);
        strokes::between(painter, QPoint(0, 0), QPoint(99, 33), QRect(0, 0, 100, 100), red);
        painter.end();
        int odd = 0;
        for (int x = 0; x < 200; ++x) {
            int rows = 0;
            int top = -1;
            for (int y = 0; y < 200; ++y) {
                if (image.pixelColor(x, y) != red)
                    continue;
                top = rows == 0 ? y : top;
                ++rows;
            }
            QCOMPARE(rows, 2); // one pixel is two device pixels wide
            odd += top % 2;
        }
        QVERIFY(odd > 50);
    }

    void lines_stay_within_the_box_of_their_ends_data()
    {
        QTest::addColumn<int>("ratio");
        for (const int ratio : {1, 2, 3})
            QTest::addRow("ratio %d", ratio) << ratio;
    }
    void lines_stay_within_the_box_of_their_ends()
    {
        // Only this box is painted anew when a line in the hand moves on.
        QFETCH(int, ratio);
        QRandomGenerator random(29);
        for (int i = 0; i < 200; ++i) {
            const auto anywhere = [&] { return random.bounded(30); };
            const QPoint a(anywhere(), anywhere());
            const QPoint b(anywhere(), anywhere());
            QImage image(30 * ratio, 30 * ratio, QImage::Format_RGB32);
            image.setDevicePixelRatio(ratio);
            image.fill(Qt::black);
            QPainter painter(&image);
            strokes::between(painter, a, b, QRect(0, 0, 30, 30), red);
            painter.end();
            const QRect box = QRect(a * ratio, QSize(ratio, ratio)) | QRect(b * ratio, QSize(ratio, ratio));
            QCOMPARE(pixelsOf(image, image.rect(), red), pixelsOf(image, box, red));
            for (const QRect& side : {QRect(box.left(), box.top(), 1, box.height()),
                     QRect(box.right(), box.top(), 1, box.height()),
                     QRect(box.left(), box.top(), box.width(), 1),
                     QRect(box.left(), box.bottom(), box.width(), 1)})
                QVERIFY(pixelsOf(image, side, red) > 0);
        }
    }
};

TAVORAN_TEST(TestDrawingLayers)
#include "tst_DrawingLayers.moc"
