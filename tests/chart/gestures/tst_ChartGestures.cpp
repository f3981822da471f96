#include "chart/gestures/ChartGestures.h"

#include "chart/ChartFixtures.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

using Taker = ChartGestures::Taker;

constexpr int bars = 60;
constexpr QPoint inPlot(150, 100);
constexpr QPoint onPriceAxis(380, 100);

/// A chart of 400 x 300 pixels with a level and an object in the row of `inPlot`.
struct Chart {
    explicit Chart(int count = bars)
        : candles(fixtures::wave(count))
    {
        state.rightBarIndex = count - 1;
        view = ChartView(QSize(400, 300), state, count, false).withPrices({1.08, 1.12});
    }

    [[nodiscard]] ChartGestures::Ground ground() const
    {
        return {view, state, candles, fixtures::quarterHour, levels, drawings};
    }

    void addLevel()
    {
        levels = {{u"7"_s, u"SL"_s, view.priceAt(inPlot.y()), u"SL"_s, QColor(Qt::red), Qt::DashLine, true}};
    }

    void addLine()
    {
        Drawing line;
        line.type = u"hline"_s;
        line.points = {{fixtures::midnight, view.priceAt(inPlot.y())}};
        drawings = {line};
    }

    std::vector<Candle> candles;
    ViewState state;
    ChartView view;
    QList<TradeLevel> levels;
    QList<Drawing> drawings;
};

} // namespace

class TestChartGestures final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_press_goes_to_the_first_that_wants_it()
    {
        Chart chart;
        chart.addLevel();
        chart.addLine();
        ChartGestures gestures;
        gestures.armRuler(true);
        gestures.chooseTool(u"trendline"_s);
        const auto takerOfPress = [&] {
            const Taker taker = gestures.press(chart.ground(), inPlot).taker;
            gestures.letGo();
            return taker;
        };
        QCOMPARE(takerOfPress(), Taker::Tool);
        gestures.chooseTool({});
        QCOMPARE(takerOfPress(), Taker::Ruler);
        gestures.armRuler(false);
        QCOMPARE(takerOfPress(), Taker::Level);
        chart.levels.clear();
        QCOMPARE(takerOfPress(), Taker::Drawing);
        chart.drawings.clear();
        QCOMPARE(takerOfPress(), Taker::Chart);
    }

    void a_press_beside_the_plot_passes_tool_and_ruler_by()
    {
        const Chart chart;
        ChartGestures gestures;
        gestures.armRuler(true);
        gestures.chooseTool(u"hline"_s);
        QCOMPARE(gestures.press(chart.ground(), onPriceAxis).taker, Taker::Chart);
    }

    void without_bars_every_press_pans()
    {
        Chart chart(0);
        chart.addLevel();
        chart.addLine();
        ChartGestures gestures;
        gestures.armRuler(true);
        for (const QString& tool : {u"hline"_s, QString()}) {
            gestures.chooseTool(tool);
            const ChartGestures::Press press = gestures.press(chart.ground(), inPlot);
            QCOMPARE(press.taker, Taker::Chart);
            QVERIFY(!press.created);
            QVERIFY(!press.selected); // the selection stays as it is
            gestures.letGo();
        }
    }

    void a_press_beside_all_objects_selects_none()
    {
        Chart chart;
        chart.addLine();
        ChartGestures gestures;
        QCOMPARE(gestures.press(chart.ground(), inPlot).selected, std::optional<qsizetype>(0));
        QCOMPARE(
            gestures.press(chart.ground(), inPlot + QPoint(0, 40)).selected, std::optional<qsizetype>(-1));
    }

    void a_tool_leaves_the_selection_as_it_is()
    {
        const Chart chart;
        ChartGestures gestures;
        gestures.chooseTool(u"hline"_s);
        QVERIFY(!gestures.press(chart.ground(), inPlot).selected);
        QVERIFY(!gestures.press(chart.ground(), onPriceAxis).selected);
    }

    void the_last_click_of_a_tool_gives_the_object()
    {
        const Chart chart;
        ChartGestures gestures;
        gestures.chooseTool(u"rectangle"_s);
        QVERIFY(!gestures.press(chart.ground(), inPlot).created);
        const std::optional<Drawing> created
            = gestures.press(chart.ground(), inPlot + QPoint(50, 20)).created;
        QVERIFY(created);
        QCOMPARE(created->type, u"rectangle"_s);
        QCOMPARE(created->points.size(), 2);
    }

    void only_the_chart_in_the_hand_pans()
    {
        Chart chart;
        ChartGestures gestures;
        QCOMPARE(gestures.panned(170, chart.state, bars), chart.state);
        QCOMPARE(gestures.press(chart.ground(), inPlot).taker, Taker::Chart);
        const ViewState moved = gestures.panned(inPlot.x() + 70, chart.state, bars);
        QCOMPARE(moved.rightBarIndex, bars - 1 - 10.0);
        gestures.letGo();
        QCOMPARE(gestures.panned(200, chart.state, bars), chart.state);
    }

    void a_release_gives_what_a_dropped_level_asks_for()
    {
        Chart chart;
        chart.addLevel();
        ChartGestures gestures;
        QCOMPARE(gestures.press(chart.ground(), inPlot).taker, Taker::Level);
        gestures.drag(chart.view, inPlot + QPoint(0, 30));
        const std::optional<LevelDrag::Drop> drop = gestures.release(5);
        QVERIFY(drop);
        QCOMPARE(drop->tradeId, u"7"_s);
        QVERIFY(drop->price < chart.levels.first().price);
        QVERIFY(!gestures.isDragging());
        QVERIFY(!gestures.release(5));
    }

    void letting_go_tells_of_a_level_only()
    {
        Chart chart;
        ChartGestures gestures;
        QVERIFY(!gestures.letGo());
        gestures.armRuler(true);
        QCOMPARE(gestures.press(chart.ground(), inPlot).taker, Taker::Ruler);
        QVERIFY(!gestures.letGo());
        const auto span = gestures.ruler().span();
        QVERIFY(span);
        gestures.drag(chart.view, inPlot + QPoint(0, 30)); // nothing is held any more
        QCOMPARE(gestures.ruler().span(), span);
        gestures.armRuler(false);
        chart.addLevel();
        QCOMPARE(gestures.press(chart.ground(), inPlot).taker, Taker::Level);
        QVERIFY(gestures.letGo());
    }

    void escape_gives_up_level_then_tool_then_ruler()
    {
        Chart chart;
        chart.addLevel();
        ChartGestures gestures;
        gestures.armRuler(true);
        QCOMPARE(gestures.press(chart.ground(), inPlot).taker, Taker::Ruler);
        gestures.letGo();
        // The tool asks first, and passes on presses beside the plot; levels take those in their row.
        gestures.chooseTool(u"hline"_s);
        QCOMPARE(gestures.press(chart.ground(), onPriceAxis).taker, Taker::Level);
        QCOMPARE(gestures.cancel(), std::optional(Taker::Level));
        QCOMPARE(gestures.cancel(), std::optional(Taker::Tool));
        QCOMPARE(gestures.cancel(), std::optional(Taker::Ruler));
        QCOMPARE(gestures.cancel(), std::nullopt);
        QVERIFY(gestures.ruler().isArmed());
    }

    void the_cursor_shows_what_is_in_the_hand()
    {
        Chart chart;
        ChartGestures gestures;
        QCOMPARE(gestures.cursor(), Qt::ArrowCursor);
        QCOMPARE(gestures.press(chart.ground(), inPlot).taker, Taker::Chart);
        QCOMPARE(gestures.cursor(), Qt::ClosedHandCursor);
        gestures.letGo();
        gestures.armRuler(true);
        QCOMPARE(gestures.cursor(), Qt::CrossCursor);
        chart.addLevel();
        QCOMPARE(gestures.press(chart.ground(), onPriceAxis).taker, Taker::Level);
        QCOMPARE(gestures.cursor(), Qt::SizeVerCursor);
    }
};

TAVORAN_TEST(TestChartGestures)
#include "tst_ChartGestures.moc"
