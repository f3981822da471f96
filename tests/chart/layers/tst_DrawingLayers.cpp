#include "chart/layers/Layers.h"

#include "chart/LayerFixture.h"
#include "support/TestMain.h"

#include <QPainter>

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

/// Objects and previews that lie oddly, or partly beside the plot. How they look otherwise is stored as
/// pictures, which tst_ChartPictures compares.
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
    void a_horizontal_line_outside_the_prices_is_not_drawn()
    {
        for (const double price : {278.01, -0.01, 1e9, -1e9, 1e15}) {
            const QImage image = painted(object(u"hline"_s, {{fixtures::midnight, price}}, true));
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
        }
    }

    void a_vertical_line_beside_the_plot_is_not_drawn()
    {
        const QImage image = painted(object(u"vline"_s, {at(25, 100)}, true));
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void a_rectangle_is_the_same_from_any_corner()
    {
        const QImage image = painted(object(u"rectangle"_s, {at(9, 100), at(19, 170)}));
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 71 * 71);
        QCOMPARE(painted(object(u"rectangle"_s, {at(19, 170), at(9, 100)})), image);
        QCOMPARE(painted(object(u"rectangle"_s, {at(9, 170), at(19, 100)})), image);
        QCOMPARE(painted(object(u"rectangle"_s, {at(19, 100), at(9, 170)})), image);
    }

    void a_retracement_may_be_drawn_from_right_to_left()
    {
        // From row 240 up to row 40; the second point is the left one.
        const QImage image = painted(object(u"fibonacci"_s, {at(12, 240), at(2, 40)}));
        for (const int row : {240, 193, 164, 140, 116, 83, 40}) // 237.5 - 200 x ratio, from the top
            QCOMPARE(pixelsOf(image, QRect(212, row, 71, 1), red), 71);
        QCOMPARE(pixelsOtherThan(image, QRect(0, 0, 283, 300), black), 7 * 71);
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

    void an_invalid_colour_is_the_usual_one()
    {
        Drawing drawing = object(u"vline"_s, {at(9, 100)});
        drawing.color = QColor();
        QCOMPARE(painted(drawing).pixelColor(261, 50), QColor(0xe0, 0xe0, 0xe0));
    }

    void a_preview_of_a_retracement_is_a_box()
    {
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        frame.pointAt(QPoint(320, 220));
        frame.preview = ChartFrame::Preview{DrawingKind::Rectangle, at(9, 100)};
        const QImage box = paint(&layers::paintDrawingPreview, frame);
        frame.preview->kind = DrawingKind::TrendLine;
        QVERIFY(paint(&layers::paintDrawingPreview, frame) != box);
        frame.preview->kind = DrawingKind::Fibonacci;
        QCOMPARE(paint(&layers::paintDrawingPreview, frame), box);
    }

    void a_placed_point_has_a_handle_while_the_crosshair_stands_on_it()
    {
        for (const DrawingKind kind :
            {DrawingKind::TrendLine, DrawingKind::Rectangle, DrawingKind::Fibonacci}) {
            ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
            frame.preview = ChartFrame::Preview{kind, at(9, 100)};
            frame.pointAt(QPoint(261, 100));
            const QImage image = paint(&layers::paintDrawingPreview, frame);
            QCOMPARE(pixelsOf(image, QRect(258, 97, 6, 6), QColor(0xe0, 0xe0, 0xe0)), 36);
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), 36);
            frame.pointAt(QPoint(300, 100));
            QCOMPARE(
                pixelsOtherThan(paint(&layers::paintDrawingPreview, frame), QRect(255, 90, 40, 10), black),
                0);
        }
    }

    void the_handle_of_a_placed_point_stays_within_the_plot()
    {
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        const QRect& plot = frame.view.plot();
        frame.preview = ChartFrame::Preview{DrawingKind::TrendLine, at(9, plot.bottom())};
        frame.pointAt(QPoint(261, plot.bottom()));
        QVERIFY(frame.crosshair);
        const QImage image = paint(&layers::paintDrawingPreview, frame);
        QCOMPARE(pixelsOtherThan(image, plot, black), 6 * 4);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 6 * 4);
    }

    void a_preview_needs_the_pointer_in_the_plot()
    {
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        frame.pointAt(QPoint(350, 220));
        frame.preview = ChartFrame::Preview{DrawingKind::TrendLine, at(9, 100)};
        QImage image = paint(&layers::paintDrawingPreview, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
        frame.pointAt(QPoint(300, 220));
        frame.preview.reset();
        image = paint(&layers::paintDrawingPreview, frame);
        QCOMPARE(pixelsOtherThan(image, image.rect(), black), 0);
    }

    void a_preview_from_far_away_costs_no_more()
    {
        ChartFrame frame = frameOfBars(m_candles, 7.0, m_texts);
        frame.pointAt(QPoint(300, 220));
        for (const DrawingKind kind : {DrawingKind::TrendLine, DrawingKind::Rectangle}) {
            frame.preview = ChartFrame::Preview{kind, {-4'000'000'000'000'000'000, -1e15}};
            for (int i = 0; i < 100; ++i) { // walking along all of it would take minutes
                const QImage image = paint(&layers::paintDrawingPreview, frame);
                QVERIFY(pixelsOtherThan(image, image.rect(), black) > 20);
            }
        }
    }
};

TAVORAN_TEST(TestDrawingLayers)
#include "tst_DrawingLayers.moc"
