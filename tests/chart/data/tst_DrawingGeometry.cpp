#include "chart/data/DrawingGeometry.h"

#include "chart/ChartFixtures.h"
#include "support/TestMain.h"

#include <limits>

using namespace Qt::StringLiterals;
using fixtures::barTime;
using fixtures::midnight;
using fixtures::priceAtRow;
using fixtures::quarterHour;

namespace {

constexpr qint64 farthest = std::numeric_limits<qint64>::max();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

/// Plot (0, 0, 332, 278); one unit of price is one pixel, 278 at the top; bar 19 at column 331, 7 pixels a
/// bar.
ChartView viewOf(qsizetype count = 20, double rightBarIndex = 19.0)
{
    ViewState state;
    state.rightBarIndex = rightBarIndex;
    return ChartView(QSize(400, 300), state, count, false).withPrices({0.0, 278.0});
}

Drawing drawing(const QString& type, const QList<DrawingPoint>& points)
{
    return {{}, type, points};
}

} // namespace

class TestDrawingGeometry final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_five_keys_and_no_others_name_kinds()
    {
        QVERIFY(drawingKind(u"hline") == DrawingKind::HorizontalLine);
        QVERIFY(drawingKind(u"vline") == DrawingKind::VerticalLine);
        QVERIFY(drawingKind(u"trendline") == DrawingKind::TrendLine);
        QVERIFY(drawingKind(u"rectangle") == DrawingKind::Rectangle);
        QVERIFY(drawingKind(u"fibonacci") == DrawingKind::Fibonacci);
        for (const QString& key : {u""_s, u"HLINE"_s, u"hline "_s, u"ellipse"_s})
            QVERIFY(!drawingKind(key));
        QCOMPARE(pointsNeeded(DrawingKind::HorizontalLine), 1);
        QCOMPARE(pointsNeeded(DrawingKind::VerticalLine), 1);
        QCOMPARE(pointsNeeded(DrawingKind::TrendLine), 2);
        QCOMPARE(pointsNeeded(DrawingKind::Rectangle), 2);
        QCOMPARE(pointsNeeded(DrawingKind::Fibonacci), 2);
    }

    void a_point_lies_on_its_bar()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        QCOMPARE(geometry.pixel({barTime(19), priceAtRow(100)}), QPoint(331, 100));
        QCOMPARE(geometry.pixel({barTime(9), priceAtRow(0)}), QPoint(261, 0));
        // Bar 15 is the last one visible.
        const DrawingGeometry panned(viewOf(20, 15.0), candles, quarterHour);
        QCOMPARE(panned.pixel({barTime(15), priceAtRow(100)}), QPoint(331, 100));
        QCOMPARE(panned.pixel({barTime(17), priceAtRow(100)}), QPoint(345, 100));
    }

    void points_beside_the_bars_lie_on_the_grid_of_the_bars()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        QCOMPARE(geometry.pixel({barTime(22), priceAtRow(100)}), QPoint(352, 100));
        QCOMPARE(geometry.pixel({barTime(-30), priceAtRow(100)}), QPoint(331 - 49 * 7, 100));
        QCOMPARE(geometry.pixel({barTime(19), priceAtRow(-40)})->y(), -39); // cut towards zero
    }

    void a_time_within_a_bar_is_cut_towards_the_last_visible_bar()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        QCOMPARE(geometry.pixel({barTime(9) + 1, 1.0})->x(), 268);
        QCOMPARE(geometry.pixel({barTime(10), 1.0})->x(), 268);
        QCOMPARE(geometry.pixel({barTime(9), 1.0})->x(), 261);
        QCOMPARE(geometry.pixel({barTime(20) - 1, 1.0})->x(), 331);
        QCOMPARE(geometry.pixel({barTime(20) + 1, 1.0})->x(), 338);
    }

    void points_are_counted_from_the_last_visible_bar_on_purpose()
    {
        // Ten bars, a weekend of ten bars, and ten bars more.
        std::vector<Candle> candles = fixtures::wave(20);
        for (int i = 10; i < 20; ++i)
            candles[static_cast<std::size_t>(i)].time = barTime(i + 10);
        const DrawingPoint point{barTime(5), priceAtRow(100)};
        const DrawingGeometry before(viewOf(20, 9.0), candles, quarterHour);
        QCOMPARE(before.pixel(point), QPoint(331 - 4 * 7, 100)); // on its bar
        const DrawingGeometry after(viewOf(20, 19.0), candles, quarterHour);
        QCOMPARE(after.pixel(point), QPoint(331 - 24 * 7, 100)); // the weekend counts as bars
    }

    void after_a_change_of_timeframe_points_lie_on_the_new_grid()
    {
        const std::vector<Candle> candles = fixtures::hours(fixtures::wave(20));
        const DrawingGeometry geometry(viewOf(), candles, 4 * quarterHour);
        QCOMPARE(geometry.pixel({barTime(40), priceAtRow(50)}), QPoint(331 - 9 * 7, 50));
    }

    void absurd_times_lie_far_away_and_overflow_nothing()
    {
        std::vector<Candle> candles = fixtures::wave(20);
        for (const qint64 timeframe : {quarterHour, qint64{1}, qint64{0}, farthest, -farthest - 1}) {
            const DrawingGeometry geometry(viewOf(), candles, timeframe);
            for (const qint64 time : {farthest, -farthest - 1, qint64{0}})
                QVERIFY(geometry.pixel({time, 1.0}));
        }
        const DrawingGeometry geometry(viewOf(), candles, 1);
        QVERIFY(geometry.pixel({farthest, 1.0})->x() >= 100'000'000);
        QVERIFY(geometry.pixel({-farthest - 1, 1.0})->x() <= -100'000'000);
        // A segment this long still has a distance.
        const Drawing line
            = drawing(u"trendline"_s, {{-farthest, priceAtRow(100)}, {farthest, priceAtRow(100)}});
        QVERIFY(geometry.isHit(line, QPoint(100, 106)));
        QVERIFY(!geometry.isHit(line, QPoint(100, 107)));
        candles.back().time = -farthest - 1;
        const DrawingGeometry opposite(viewOf(), candles, 1);
        QVERIFY(opposite.pixel({farthest, 1.0})->x() >= 100'000'000);
    }

    void prices_that_are_no_prices_lie_nowhere()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        for (const double price : {notANumber, infinite, -infinite, 1e16, -1e16}) {
            QVERIFY(!geometry.pixel({barTime(5), price}));
            QVERIFY(!geometry.isShown(price));
            QVERIFY(!geometry.shape(drawing(u"hline"_s, {{barTime(5), price}})));
            QVERIFY(!geometry.shape(drawing(u"trendline"_s, {{barTime(5), 1.0}, {barTime(7), price}})));
            QVERIFY(!geometry.isHit(drawing(u"hline"_s, {{barTime(5), price}}), QPoint(100, 0)));
        }
        QCOMPARE(geometry.pixel({barTime(5), 1e15})->y(), -100'000'000);
    }

    void without_bars_nothing_lies_anywhere()
    {
        const DrawingGeometry geometry(viewOf(0, 0.0), {}, quarterHour);
        QVERIFY(!geometry.pixel({midnight, 100.0}));
        QVERIFY(!geometry.anchor(QPoint(100, 100)));
        QVERIFY(!geometry.isHit(drawing(u"hline"_s, {{midnight, priceAtRow(100)}}), QPoint(100, 100)));
    }

    void an_anchor_sits_on_the_time_of_a_loaded_bar()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        QCOMPARE(geometry.anchor(QPoint(331, 0)), (DrawingPoint{barTime(19), 278.0}));
        QCOMPARE(geometry.anchor(QPoint(263, 100)), (DrawingPoint{barTime(9), 178.0}));
        QCOMPARE(geometry.anchor(QPoint(265, 278)), (DrawingPoint{barTime(10), 0.0}));
        QCOMPARE(geometry.anchor(QPoint(10, 5))->time, barTime(0)); // far left of the first bar
        const DrawingGeometry panned(viewOf(20, 19.4), candles, quarterHour);
        QCOMPARE(panned.anchor(QPoint(331, 5))->time, barTime(19));
        ViewState shifted;
        shifted.rightBarIndex = 19.0;
        shifted.chartShift = true;
        const ChartView view = ChartView(QSize(400, 300), shifted, 20, false).withPrices({0.0, 278.0});
        QCOMPARE(DrawingGeometry(view, candles, quarterHour).anchor(QPoint(330, 5))->time, barTime(19));
    }

    void an_anchor_is_drawn_where_it_was_taken()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        for (const double right : {19.0, 12.3, 0.0}) {
            const DrawingGeometry geometry(viewOf(20, right), candles, quarterHour);
            for (int x = 331; x > 200; x -= 3) {
                for (const int y : {0, 1, 77, 277}) {
                    const std::optional<DrawingPoint> point = geometry.anchor(QPoint(x, y));
                    const QPoint drawn = *geometry.pixel(*point);
                    QVERIFY(std::abs(drawn.y() - y) <= 1);
                    if (point->time > barTime(0) && point->time < barTime(19))
                        QVERIFY(std::abs(drawn.x() - x) <= 4); // half a bar, cut to a pixel
                }
            }
        }
    }

    void broken_objects_have_no_shape()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        const DrawingPoint point{barTime(5), 100.0};
        for (const QString& type : {u"hline"_s, u"vline"_s, u"trendline"_s, u"rectangle"_s, u"fibonacci"_s}) {
            const int needed = pointsNeeded(*drawingKind(type));
            for (int count = 0; count < 4; ++count) {
                const bool has = geometry.shape(drawing(type, QList<DrawingPoint>(count, point))).has_value();
                QCOMPARE(has, count >= needed);
            }
        }
        const DrawingPoint other{barTime(7), 120.0};
        const DrawingPoint third{barTime(9), 140.0};
        QVERIFY(geometry.shape(drawing(u"trendline"_s, {point, other, third}))->second == other);
        QVERIFY(geometry.shape(drawing(u"hline"_s, {point, other}))->second == point);
        QVERIFY(!geometry.shape(drawing(u"ellipse"_s, {point, point})));
        QVERIFY(!geometry.shape(Drawing()));
    }

    void a_drawing_takes_up_a_part_of_the_plot()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        const DrawingPoint high{barTime(9), priceAtRow(50)};
        const DrawingPoint low{barTime(15), priceAtRow(100)};
        QCOMPARE(geometry.area(drawing(u"hline"_s, {high})), QRect(0, 49, 332, 3));
        QCOMPARE(geometry.area(drawing(u"vline"_s, {high})), QRect(260, 0, 3, 278));
        for (const QString& type : {u"trendline"_s, u"rectangle"_s, u"fibonacci"_s}) {
            QCOMPARE(geometry.area(drawing(type, {high, low})), QRect(QPoint(260, 49), QPoint(304, 101)));
            QCOMPARE(geometry.area(drawing(type, {low, high})), QRect(QPoint(260, 49), QPoint(304, 101)));
        }
        QCOMPARE(geometry.area(drawing(u"rectangle"_s, {{-farthest, 1e14}, {farthest, -1e14}})),
            QRect(0, 0, 332, 278));
    }

    void what_is_out_of_view_takes_up_nothing()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        QVERIFY(geometry.area(drawing(u"hline"_s, {{midnight, 279.0}})).isEmpty());
        QVERIFY(geometry.area(drawing(u"vline"_s, {{farthest, 100.0}})).isEmpty());
        QVERIFY(geometry.area(drawing(u"trendline"_s, {{barTime(3), 500.0}, {barTime(9), 400.0}})).isEmpty());
        QVERIFY(geometry.area(drawing(u"trendline"_s, {{midnight, 1.0}})).isEmpty());
        QVERIFY(geometry.lineArea(notANumber).isEmpty());
    }

    void a_horizontal_line_is_hit_within_six_pixels()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        const Drawing line = drawing(u"hline"_s, {{barTime(5), priceAtRow(100)}});
        for (int y = 80; y < 120; ++y) {
            QCOMPARE(geometry.isHit(line, QPoint(20, y)), y >= 94 && y <= 106);
            QCOMPARE(geometry.isHit(line, QPoint(331, y)), y >= 94 && y <= 106);
        }
    }

    void a_horizontal_line_outside_the_prices_cannot_be_hit()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        QVERIFY(!geometry.isHit(drawing(u"hline"_s, {{barTime(5), 278.5}}), QPoint(20, 0)));
        QVERIFY(!geometry.isHit(drawing(u"hline"_s, {{barTime(5), -0.5}}), QPoint(20, 277)));
        QVERIFY(geometry.isHit(drawing(u"hline"_s, {{barTime(5), 278.0}}), QPoint(20, 0)));
        QVERIFY(geometry.isHit(drawing(u"hline"_s, {{barTime(5), 0.0}}), QPoint(20, 277)));
    }

    void a_trend_line_is_hit_within_six_pixels_of_its_segment()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        // From (261, 100) to (331, 170): at 45 degrees.
        const Drawing line
            = drawing(u"trendline"_s, {{barTime(9), priceAtRow(100)}, {barTime(19), priceAtRow(170)}});
        QVERIFY(geometry.isHit(line, QPoint(300, 139)));
        QVERIFY(geometry.isHit(line, QPoint(300, 139 + 8)));  // 8 down is 5.7 away
        QVERIFY(!geometry.isHit(line, QPoint(300, 139 + 9))); // 9 down is 6.4 away
        QVERIFY(geometry.isHit(line, QPoint(300, 139 - 8)));
        QVERIFY(!geometry.isHit(line, QPoint(300, 139 - 9)));
        const Drawing level
            = drawing(u"trendline"_s, {{barTime(19), priceAtRow(50)}, {barTime(9), priceAtRow(50)}});
        QVERIFY(geometry.isHit(level, QPoint(300, 56)));
        QVERIFY(!geometry.isHit(level, QPoint(300, 57)));
    }

    void beyond_the_ends_of_a_trend_line_the_distance_to_the_end_counts()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        // From 261 to 296.
        const Drawing line
            = drawing(u"trendline"_s, {{barTime(9), priceAtRow(50)}, {barTime(14), priceAtRow(50)}});
        QVERIFY(geometry.isHit(line, QPoint(255, 50)));
        QVERIFY(!geometry.isHit(line, QPoint(254, 50)));
        QVERIFY(geometry.isHit(line, QPoint(302, 50)));
        QVERIFY(!geometry.isHit(line, QPoint(303, 50)));
        QVERIFY(!geometry.isHit(line, QPoint(301, 55)));
    }

    void a_trend_line_shorter_than_a_pixel_is_never_hit()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        const DrawingPoint point{barTime(9), priceAtRow(50)};
        QVERIFY(!geometry.isHit(drawing(u"trendline"_s, {point, point}), QPoint(261, 50)));
        const DrawingPoint below{barTime(9), priceAtRow(51)};
        QVERIFY(geometry.isHit(drawing(u"trendline"_s, {point, below}), QPoint(261, 50)));
    }

    void vertical_lines_rectangles_and_retracements_are_never_hit_on_purpose()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        const QList<DrawingPoint> points{{barTime(9), priceAtRow(50)}, {barTime(19), priceAtRow(170)}};
        for (const QString& type : {u"vline"_s, u"rectangle"_s, u"fibonacci"_s}) {
            for (int x = 240; x < 332; x += 3) {
                for (int y = 30; y < 200; y += 3)
                    QVERIFY(!geometry.isHit(drawing(type, points), QPoint(x, y)));
            }
        }
    }

    void the_topmost_of_several_objects_is_hit()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        const QList<Drawing> drawings{drawing(u"hline"_s, {{barTime(5), priceAtRow(100)}}),
            drawing(u"hline"_s, {{barTime(5), priceAtRow(104)}}), drawing(u"ellipse"_s, {}),
            drawing(u"rectangle"_s, {{barTime(0), priceAtRow(10)}, {barTime(19), priceAtRow(200)}})};
        QCOMPARE(geometry.topmostHit(drawings, QPoint(20, 100)), qsizetype{1});
        QCOMPARE(geometry.topmostHit(drawings, QPoint(20, 97)), qsizetype{0});
        QCOMPARE(geometry.topmostHit(drawings, QPoint(20, 150)), qsizetype{-1});
        QCOMPARE(geometry.topmostHit({}, QPoint(20, 150)), qsizetype{-1});
    }

    void retracement_levels_run_from_the_first_point_to_the_second()
    {
        DrawingGeometry::Shape shape;
        shape.first.price = 100.0;
        shape.second.price = 200.0;
        const std::array prices{100.0, 123.6, 138.2, 150.0, 161.8, 178.6, 200.0};
        QCOMPARE(DrawingGeometry::fibonacciRatios.size(), prices.size());
        for (std::size_t i = 0; i < prices.size(); ++i)
            QCOMPARE(
                DrawingGeometry::fibonacciPrice(shape, DrawingGeometry::fibonacciRatios.at(i)), prices.at(i));
        std::swap(shape.first, shape.second);
        QCOMPARE(DrawingGeometry::fibonacciPrice(shape, 0.0), 200.0);
        QCOMPARE(DrawingGeometry::fibonacciPrice(shape, 0.236), 176.4);
        QCOMPARE(DrawingGeometry::fibonacciPrice(shape, 1.0), 100.0);
    }

    void retracement_texts_tell_percent_and_price()
    {
        QStringList texts;
        for (const double ratio : DrawingGeometry::fibonacciRatios)
            texts.append(DrawingGeometry::fibonacciText(ratio, 1.5, 3));
        QCOMPARE(texts,
            (QStringList{u"0.0  1.500"_s, u"23.6  1.500"_s, u"38.2  1.500"_s, u"50.0  1.500"_s,
                u"61.8  1.500"_s, u"78.6  1.500"_s, u"100.0  1.500"_s}));
        QCOMPARE(DrawingGeometry::fibonacciText(0.5, 1.23456, 5), u"50.0  1.23456"_s);
    }

    void handles_are_squares_of_six_pixels_about_their_point()
    {
        const std::vector<Candle> candles = fixtures::wave(20);
        const DrawingGeometry geometry(viewOf(), candles, quarterHour);
        QCOMPARE(DrawingGeometry::handle(QPoint(50, 60)), QRect(47, 57, 6, 6));
        QCOMPARE(geometry.horizontalLineHandle(60), QRect(2, 57, 6, 6));
        QCOMPARE(geometry.verticalLineHandle(QPoint(50, 60)), QRect(47, 57, 6, 6));
        QCOMPARE(geometry.verticalLineHandle(QPoint(50, -900)), QRect(47, -3, 6, 6));
        QCOMPARE(geometry.verticalLineHandle(QPoint(50, 900)), QRect(47, 274, 6, 6));
    }
};

TAVORAN_TEST(TestDrawingGeometry)
#include "tst_DrawingGeometry.moc"
