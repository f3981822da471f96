#include "chart/ChartFixtures.h"
#include "chart/gestures/ChartGestures.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

using Taker = ChartGestures::Taker;

constexpr int digits = 5;

/// A chart of 400 x 300 pixels whose prices go up by half a point a pixel, with a level and an object at
/// 1.10080, and a crosshair of the keyboard four pixels above.
struct Chart {
    Chart()
        : candles(fixtures::wave(60))
    {
        state.rightBarIndex = 59;
        view = ChartView(QSize(400, 300), state, 60, 0).withPrices({1.1, 1.10139});
        levels = {{u"7"_s, u"SL"_s, 1.1008, u"SL"_s, QColor(Qt::red), Qt::DashLine, true}};
        Drawing line;
        line.type = u"hline"_s;
        line.points = {{fixtures::midnight, 1.1008}};
        drawings = {line};
        crosshairTo({50, 1.10082});
    }

    [[nodiscard]] ChartGestures::Ground ground() const
    {
        return {view, state, candles, fixtures::quarterHour, levels, drawings};
    }

    void crosshairTo(const CrosshairPlace& place)
    {
        gestures.hideCrosshair();
        (void)gestures.walk(ground(), 0, place);
    }

    [[nodiscard]] Taker enter() { return gestures.enter(ground()).taker; }

    /// A key that moves the crosshair.
    void move(qsizetype bars, int prices)
    {
        state = gestures.walk(ground(), bars, std::nullopt);
        gestures.climb(ground(), prices, digits);
    }

    std::vector<Candle> candles;
    ViewState state;
    ChartView view;
    QList<TradeLevel> levels;
    QList<Drawing> drawings;
    ChartGestures gestures;
};

} // namespace

class TestChartKeyGestures final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void enter_goes_to_the_first_that_wants_it()
    {
        Chart chart;
        chart.gestures.armRuler(true);
        chart.gestures.chooseTool(u"trendline"_s);
        const auto takerOfEnter = [&] {
            const Taker taker = chart.enter();
            chart.gestures.letGo();
            return taker;
        };
        QCOMPARE(takerOfEnter(), Taker::Tool);
        chart.gestures.chooseTool({});
        QCOMPARE(takerOfEnter(), Taker::Ruler);
        chart.gestures.armRuler(false);
        QCOMPARE(takerOfEnter(), Taker::Level);
        chart.levels.clear();
        QCOMPARE(takerOfEnter(), Taker::Drawing);
        chart.drawings.clear();
        QCOMPARE(takerOfEnter(), Taker::Chart);
    }

    void enter_without_a_crosshair_in_view_does_nothing()
    {
        Chart chart;
        chart.gestures.chooseTool(u"hline"_s);
        chart.gestures.hideCrosshair();
        QVERIFY(!chart.gestures.enter(chart.ground()).created);
        chart.crosshairTo({50, 1.2}); // above the plot
        QVERIFY(!chart.gestures.enter(chart.ground()).created);
        chart.crosshairTo({50, 1.101});
        QVERIFY(chart.gestures.enter(chart.ground()).created);
    }

    void a_tool_takes_bar_and_price_as_they_are()
    {
        Chart chart;
        chart.gestures.chooseTool(u"hline"_s);
        const std::optional<Drawing> line = chart.gestures.enter(chart.ground()).created;
        QVERIFY(line);
        QCOMPARE(line->points.size(), 1);
        QCOMPARE(line->points.first().time, fixtures::barTime(50));
        QCOMPARE(line->points.first().price, 1.10082); // not the price of its pixel row
        QVERIFY(chart.view.priceAt(chart.view.pricePixel(1.10082)) != 1.10082);
    }

    void enter_on_the_empty_chart_deselects_and_does_not_pan()
    {
        Chart chart;
        chart.levels.clear();
        chart.drawings.clear();
        const ChartGestures::Press press = chart.gestures.enter(chart.ground());
        QCOMPARE(press.taker, Taker::Chart);
        QCOMPARE(press.selected, qsizetype{-1});
        QVERIFY(!chart.gestures.isHeldByMouse());
        QVERIFY(!chart.gestures.isHeldByKeys());
        QCOMPARE(chart.gestures.panned(100, chart.state, 60), chart.state);
    }

    void a_taken_level_starts_at_its_own_price()
    {
        Chart chart;
        QCOMPARE(chart.enter(), Taker::Level);
        QVERIFY(chart.gestures.isHeldByKeys());
        QVERIFY(!chart.gestures.isHeldByMouse());
        QCOMPARE(chart.gestures.crosshair().place(chart.candles), (CrosshairPlace{50, 1.1008}));
        chart.move(0, 3);
        QCOMPARE(chart.gestures.level().price(), 1.10083);
        QCOMPARE(chart.gestures.release(digits), (LevelDrag::Drop{u"7"_s, u"SL"_s, 1.10083}));
        QVERIFY(!chart.gestures.isHeldByKeys());
        QVERIFY(!chart.gestures.release(digits));
    }

    void a_level_that_has_not_moved_asks_for_nothing()
    {
        Chart chart;
        chart.levels.first().price = 1.100803; // finer than the digits
        QCOMPARE(chart.enter(), Taker::Level);
        chart.move(-1, 0);
        QVERIFY(!chart.gestures.release(digits));
        chart.levels.first().price = 1.1008;
        QCOMPARE(chart.enter(), Taker::Level);
        chart.move(0, 1);
        chart.move(0, -1);
        QVERIFY(!chart.gestures.release(digits));
    }

    void a_level_in_the_hand_keeps_its_price_when_the_scales_change()
    {
        Chart chart;
        QCOMPARE(chart.enter(), Taker::Level);
        chart.move(0, 1);
        chart.view = chart.view.withPrices({1.2, 1.3});
        chart.move(-1, 0);
        QCOMPARE(chart.gestures.level().price(), 1.10081);
        QCOMPARE(chart.gestures.release(digits)->price, 1.10081);
    }

    void the_crosshair_itself_stays_in_the_plot()
    {
        Chart chart;
        chart.view = chart.view.withPrices({1.2, 1.3});
        chart.move(-1, 0);
        const std::optional<CrosshairPlace> place
            = chart.gestures.crosshair().placeIn(chart.view, chart.candles);
        QVERIFY(place);
        QCOMPARE(place->bar, qsizetype{49});
    }

    void a_level_that_goes_ends_what_enter_has_taken()
    {
        Chart chart;
        QCOMPARE(chart.enter(), Taker::Level);
        chart.move(0, 5);
        chart.gestures.followLevels({});
        QVERIFY(!chart.gestures.isHeldByKeys());
        QVERIFY(!chart.gestures.release(digits));
    }

    void escape_cancels_what_enter_has_taken()
    {
        Chart chart;
        QCOMPARE(chart.enter(), Taker::Level);
        chart.move(0, 5);
        QCOMPARE(chart.gestures.cancel(), Taker::Level);
        QVERIFY(!chart.gestures.isHeldByKeys());
        QVERIFY(!chart.gestures.release(digits));
    }

    void the_ruler_measures_between_two_enters()
    {
        Chart chart;
        chart.gestures.armRuler(true);
        const QPoint start = *chart.gestures.crosshair().pixel(chart.view, chart.candles);
        QCOMPARE(chart.enter(), Taker::Ruler);
        chart.move(-10, 4);
        const QPoint end = *chart.gestures.crosshair().pixel(chart.view, chart.candles);
        QVERIFY(start.x() - end.x() == 70 && start.y() - end.y() == 8);
        QCOMPARE(chart.gestures.ruler().span(), (Ruler::Span{start, end}));
        QVERIFY(!chart.gestures.release(digits));
        chart.move(5, 0);
        QCOMPARE(chart.gestures.ruler().span(), (Ruler::Span{start, end}));
    }

    void the_ruler_keeps_its_start_when_the_chart_moves()
    {
        Chart chart;
        chart.gestures.armRuler(true);
        QCOMPARE(chart.enter(), Taker::Ruler);
        chart.state.rightBarIndex = 55;
        chart.view = ChartView(QSize(400, 300), chart.state, 60, 0).withPrices(chart.view.prices());
        chart.move(-10, 0);
        QCOMPARE(chart.gestures.ruler().span()->start.x(), chart.view.barPixel(50));
        QCOMPARE(chart.gestures.ruler().span()->end.x(), chart.view.barPixel(40));
    }

    void a_press_of_the_mouse_is_no_keys_hold()
    {
        Chart chart;
        QCOMPARE(chart.enter(), Taker::Level);
        chart.gestures.letGo();
        const QPoint onLevel(50, chart.view.pricePixel(1.1008));
        QCOMPARE(chart.gestures.press(chart.ground(), onLevel).taker, Taker::Level);
        QVERIFY(!chart.gestures.isHeldByKeys());
        QVERIFY(chart.gestures.isHeldByMouse());
    }
};

TAVORAN_TEST(TestChartKeyGestures)
#include "tst_ChartKeyGestures.moc"
