#include "ChartWidgetFixture.h"
#include "chart/ChartFrame.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using fixtures::showChart;

namespace {

/// The price in the middle of a pixel row.
double priceAtRow(const ChartWidget& chart, int row)
{
    return (chart.view().priceAt(row) + chart.view().priceAt(row + 1)) / 2;
}

TradeLevel levelAt(double price, const QString& id = u"trade/1"_s, const QString& kind = u"SL"_s)
{
    return {id, kind, price, u"sl #1"_s, QColor(Qt::red), Qt::DashLine, true};
}

void press(ChartWidget& chart, const QPoint& position)
{
    QTest::mousePress(&chart, Qt::LeftButton, {}, position);
}

void release(ChartWidget& chart, const QPoint& position)
{
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, position);
}

} // namespace

class TestChartLevelDrag final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_dropped_level_asks_for_the_price_under_the_pointer();
    void the_line_stays_where_the_server_has_it();
    void a_press_seven_pixels_away_pans();
    void a_fixed_level_pans();
    void a_click_on_a_level_asks_for_nothing();
    void the_cursor_shows_the_drag();
    void the_dragged_line_shows_its_price_and_tag();
    void a_drag_beyond_the_plot_stops_at_its_edges();
    void escape_cancels_the_drag();
    void a_refresh_of_the_bars_cancels_the_drag();
    void a_level_that_vanished_is_not_asked_for();
    void a_level_whose_price_changed_is_not_asked_for();
    void a_drag_goes_on_while_the_level_stays();
    void ticks_do_not_disturb_a_drag();
    void a_drag_whose_release_got_lost_asks_for_nothing();
    void a_hidden_chart_lets_go();
    void the_level_comes_before_objects();
    void an_armed_ruler_comes_before_levels();
    void without_bars_no_level_is_taken();
    void a_step_paints_only_where_the_line_was_and_is();
};

void TestChartLevelDrag::a_dropped_level_asks_for_the_price_under_the_pointer()
{
    ChartWidget chart;
    showChart(chart, 100);
    chart.setDigits(4);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100)), levelAt(priceAtRow(chart, 200), u"2"_s, u"TP"_s)});
    fixtures::drag(chart, QPoint(50, 103), QPoint(80, 40));
    QCOMPARE(dragged.count(), 1);
    const double price = std::round(chart.view().priceAt(40) * 1e4) / 1e4;
    QCOMPARE(dragged.first(), (QList<QVariant>{u"trade/1"_s, u"SL"_s, price}));
    fixtures::drag(chart, QPoint(50, 194), QPoint(80, 240));
    QCOMPARE(dragged.count(), 2);
    QCOMPARE(dragged.last().at(0).toString(), u"2"_s);
    QCOMPARE(dragged.last().at(1).toString(), u"TP"_s);
    QCOMPARE(chart.rightBarIndex(), 99.0);
}

void TestChartLevelDrag::the_line_stays_where_the_server_has_it()
{
    ChartWidget chart;
    showChart(chart, 100);
    const QList<TradeLevel> levels{levelAt(priceAtRow(chart, 100))};
    chart.setTradeLevels(levels);
    const QImage before = chart.grab().toImage();
    fixtures::drag(chart, QPoint(50, 100), QPoint(50, 40));
    fixtures::leave(chart);
    QCOMPARE(chart.tradeLevels(), levels);
    QCOMPARE(chart.frame().draggedLevel, qsizetype{-1});
    QCOMPARE(chart.grab().toImage(), before);
}

void TestChartLevelDrag::a_press_seven_pixels_away_pans()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    fixtures::drag(chart, QPoint(50, 107), QPoint(57, 40));
    QCOMPARE(chart.rightBarIndex(), 98.0);
    QCOMPARE(dragged.count(), 0);
}

void TestChartLevelDrag::a_fixed_level_pans()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    TradeLevel entry = levelAt(priceAtRow(chart, 100), u"1"_s, u"ENTRY"_s);
    entry.draggable = false;
    chart.setTradeLevels({entry});
    fixtures::drag(chart, QPoint(50, 100), QPoint(57, 40));
    QCOMPARE(chart.rightBarIndex(), 98.0);
    QCOMPARE(dragged.count(), 0);
}

void TestChartLevelDrag::a_click_on_a_level_asks_for_nothing()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))}); // finer than the digits
    QTest::mouseClick(&chart, Qt::LeftButton, {}, QPoint(50, 102));
    fixtures::drag(chart, QPoint(50, 102), QPoint(90, 102));
    QCOMPARE(dragged.count(), 0);
    QCOMPARE(chart.rightBarIndex(), 99.0);
}

void TestChartLevelDrag::the_cursor_shows_the_drag()
{
    ChartWidget chart;
    showChart(chart, 100);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    press(chart, QPoint(50, 100));
    QCOMPARE(chart.cursor().shape(), Qt::SizeVerCursor);
    QTest::mouseMove(&chart, QPoint(50, 60));
    QCOMPARE(chart.cursor().shape(), Qt::SizeVerCursor);
    release(chart, QPoint(50, 60));
    QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
}

void TestChartLevelDrag::the_dragged_line_shows_its_price_and_tag()
{
    ChartWidget chart;
    showChart(chart, 100);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    press(chart, QPoint(50, 100));
    QTest::mouseMove(&chart, QPoint(50, 60));
    fixtures::leave(chart); // without the crosshair over it
    const ChartFrame frame = chart.frame();
    QCOMPARE(frame.draggedLevel, qsizetype{0});
    QCOMPARE(frame.draggedPrice, chart.view().priceAt(60));
    const QImage picture = chart.grab().toImage();
    const QColor red(Qt::red);
    const int row = chart.view().pricePixel(frame.draggedPrice);
    QCOMPARE(fixtures::pixelsOf(picture, QRect(0, row, 331, 1), red), 331);
    QVERIFY(fixtures::pixelsOf(picture, QRect(332, row - 9, 66, 18), QColor(red.darker(280).rgb())) > 400);
    QCOMPARE(fixtures::pixelsOf(picture, QRect(0, 100, 331, 1), red), 0);
    release(chart, QPoint(50, 60));
}

void TestChartLevelDrag::a_drag_beyond_the_plot_stops_at_its_edges()
{
    ChartWidget chart;
    showChart(chart, 100);
    chart.setDigits(8);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    const auto roundedAt = [&chart](int row) { return std::round(chart.view().priceAt(row) * 1e8) / 1e8; };
    fixtures::drag(chart, QPoint(50, 100), QPoint(50, -200));
    QCOMPARE(dragged.takeFirst().last().toDouble(), roundedAt(0));
    fixtures::drag(chart, QPoint(50, 100), QPoint(50, 900));
    QCOMPARE(dragged.takeFirst().last().toDouble(), roundedAt(277));
}

void TestChartLevelDrag::escape_cancels_the_drag()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    QSignalSpy finished(&chart, &ChartWidget::toolFinished);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    press(chart, QPoint(50, 100));
    QTest::mouseMove(&chart, QPoint(50, 60));
    QTest::keyClick(&chart, Qt::Key_Escape);
    QCOMPARE(chart.frame().draggedLevel, qsizetype{-1});
    QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
    QTest::mouseMove(&chart, QPoint(80, 40));
    release(chart, QPoint(80, 40));
    QCOMPARE(dragged.count(), 0);
    QCOMPARE(finished.count(), 0);
    QCOMPARE(chart.rightBarIndex(), 99.0); // and nothing pans instead
}

void TestChartLevelDrag::a_refresh_of_the_bars_cancels_the_drag()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    for (const int bars : {120, 0}) {
        press(chart, QPoint(50, chart.view().pricePixel(chart.tradeLevels().first().price)));
        QCOMPARE(chart.frame().draggedLevel, qsizetype{0});
        QTest::mouseMove(&chart, QPoint(50, 60));
        chart.setCandles(fixtures::wave(bars));
        QCOMPARE(chart.frame().draggedLevel, qsizetype{-1});
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
        QTest::mouseMove(&chart, QPoint(50, 40));
        release(chart, QPoint(50, 40));
    }
    QCOMPARE(dragged.count(), 0);
}

void TestChartLevelDrag::a_level_that_vanished_is_not_asked_for()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    const TradeLevel level = levelAt(priceAtRow(chart, 100));
    const TradeLevel other = levelAt(priceAtRow(chart, 150), u"2"_s);
    for (const QList<TradeLevel>& left : {QList<TradeLevel>(), QList{other}}) {
        chart.setTradeLevels({level, other});
        press(chart, QPoint(50, 100));
        QTest::mouseMove(&chart, QPoint(50, 60));
        chart.setTradeLevels(left);
        QCOMPARE(chart.frame().draggedLevel, qsizetype{-1});
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
        release(chart, QPoint(50, 60));
    }
    QCOMPARE(dragged.count(), 0);
}

void TestChartLevelDrag::a_level_whose_price_changed_is_not_asked_for()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    press(chart, QPoint(50, 100));
    QTest::mouseMove(&chart, QPoint(50, 60));
    chart.setTradeLevels({levelAt(priceAtRow(chart, 120))});
    QCOMPARE(chart.frame().draggedLevel, qsizetype{-1});
    release(chart, QPoint(50, 60));
    QCOMPARE(dragged.count(), 0);
}

void TestChartLevelDrag::a_drag_goes_on_while_the_level_stays()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    const TradeLevel level = levelAt(priceAtRow(chart, 100));
    chart.setTradeLevels({level});
    press(chart, QPoint(50, 100));
    QTest::mouseMove(&chart, QPoint(50, 60));
    const double price = chart.frame().draggedPrice;
    chart.setTradeLevels({levelAt(priceAtRow(chart, 30), u"2"_s), level}); // another trade was opened
    QCOMPARE(chart.frame().draggedLevel, qsizetype{1});
    QCOMPARE(chart.frame().draggedPrice, price);
    QCOMPARE(chart.cursor().shape(), Qt::SizeVerCursor);
    release(chart, QPoint(50, 60));
    QCOMPARE(dragged.count(), 1);
    QCOMPARE(dragged.first().first().toString(), u"trade/1"_s);
}

void TestChartLevelDrag::ticks_do_not_disturb_a_drag()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    press(chart, QPoint(50, 100));
    QTest::mouseMove(&chart, QPoint(50, 60));
    const double price = chart.frame().draggedPrice;
    const qint64 time = chart.candles().back().time;
    chart.onTick(1.2, 1.2, time); // the scale grows
    chart.onTick(1.2, 1.2, time + fixtures::quarterHour);
    QCOMPARE(chart.frame().draggedPrice, price);
    release(chart, QPoint(50, 60));
    QCOMPARE(dragged.count(), 1);
    QCOMPARE(dragged.first().last().toDouble(), std::round(price * 1e5) / 1e5);
}

void TestChartLevelDrag::a_drag_whose_release_got_lost_asks_for_nothing()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    press(chart, QPoint(50, 100));
    QTest::mouseMove(&chart, QPoint(50, 60));
    fixtures::hover(chart, QPoint(50, 50), Qt::NoButton);
    QCOMPARE(chart.frame().draggedLevel, qsizetype{-1});
    QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
    release(chart, QPoint(50, 50));
    QCOMPARE(dragged.count(), 0);
}

void TestChartLevelDrag::a_hidden_chart_lets_go()
{
    ChartWidget chart;
    showChart(chart, 100);
    QSignalSpy dragged(&chart, &ChartWidget::levelDragged);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    press(chart, QPoint(50, 100));
    fixtures::hover(chart, QPoint(50, 60), Qt::LeftButton);
    QCOMPARE(chart.frame().draggedLevel, qsizetype{0});
    chart.hide();
    QCOMPARE(chart.frame().draggedLevel, qsizetype{-1});
    QMouseEvent up(
        QEvent::MouseButtonRelease, QPointF(50, 60), QPointF(50, 60), Qt::LeftButton, Qt::NoButton, {});
    QApplication::sendEvent(&chart, &up);
    QCOMPARE(dragged.count(), 0);
}

void TestChartLevelDrag::the_level_comes_before_objects()
{
    ChartWidget chart;
    showChart(chart, 100);
    const double price = priceAtRow(chart, 100);
    chart.setTradeLevels({levelAt(price)});
    Drawing line;
    line.type = u"hline"_s;
    line.points = {{fixtures::midnight, price}};
    chart.setDrawings({line});
    press(chart, QPoint(50, 100));
    QCOMPARE(chart.frame().draggedLevel, qsizetype{0});
    QVERIFY(!chart.drawings().first().selected);
    release(chart, QPoint(50, 100));
}

void TestChartLevelDrag::an_armed_ruler_comes_before_levels()
{
    ChartWidget chart;
    showChart(chart, 100);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    chart.setMeasureMode(true);
    press(chart, QPoint(50, 100));
    QCOMPARE(chart.frame().draggedLevel, qsizetype{-1});
    release(chart, QPoint(50, 100));
}

void TestChartLevelDrag::without_bars_no_level_is_taken()
{
    ChartWidget chart;
    showChart(chart, 0);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    press(chart, QPoint(50, 100));
    QCOMPARE(chart.frame().draggedLevel, qsizetype{-1});
    QCOMPARE(chart.cursor().shape(), Qt::ClosedHandCursor);
    release(chart, QPoint(50, 100));
}

void TestChartLevelDrag::a_step_paints_only_where_the_line_was_and_is()
{
    ChartWidget chart;
    showChart(chart, 100);
    chart.setTradeLevels({levelAt(priceAtRow(chart, 100))});
    fixtures::hover(chart, QPoint(50, 100));
    press(chart, QPoint(50, 100));
    fixtures::hover(chart, QPoint(50, 110), Qt::LeftButton);
    PaintCounter paints(chart);
    paints.taken();
    const quint64 before = chart.seriesPaints();
    fixtures::hover(chart, QPoint(50, 120), Qt::LeftButton);
    QCOMPARE(paints.taken(), 1);
    for (const int row : {110, 120})
        QVERIFY((QRegion(0, row - 15, 332, 16) + QRegion(332, row - 9, 66, 18) - paints.region()).isEmpty());
    QVERIFY(!paints.region().intersects(QRect(60, 30, 250, 50)));
    QVERIFY(!paints.region().intersects(QRect(110, 140, 200, 100)));
    fixtures::hover(chart, QPoint(50, 130), Qt::LeftButton);
    paints.taken();
    QVERIFY(chart.seriesPaints() <= before + 1);
    release(chart, QPoint(50, 130));
}

TAVORAN_TEST_MAIN(TestChartLevelDrag)
#include "tst_ChartLevelDrag.moc"
