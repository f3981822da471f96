#include "chart/ChartWidget.h"

#include "ChartFixtures.h"
#include "chart/ChartFrame.h"
#include "support/TestMain.h"

#include <QPaintEvent>
#include <QSignalSpy>

#include <limits>

using namespace Qt::StringLiterals;
using fixtures::midnight;
using fixtures::quarterHour;
using fixtures::wave;

namespace {

/// Counts the paints of a widget.
class PaintCounter final : public QObject {
public:
    explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }

    int taken()
    {
        QCoreApplication::processEvents();
        return std::exchange(m_count, 0);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++m_count;
            m_region = static_cast<QPaintEvent*>(event)->region();
        }
        return QObject::eventFilter(watched, event);
    }

    /// Of the last paint.
    [[nodiscard]] const QRegion& region() const { return m_region; }

private:
    int m_count = 0;
    QRegion m_region;
};

/// A chart of 400 by 300 pixels; 48 of its bars are visible, the last one at column 331.
void show(ChartWidget& chart, int bars)
{
    chart.resize(400, 300);
    chart.setCandles(wave(bars));
    chart.show();
    QVERIFY(QTest::qWaitForWindowExposed(&chart));
    QCoreApplication::processEvents();
}

void drag(ChartWidget& chart, const QPoint& from, const QPoint& to)
{
    QTest::mousePress(&chart, Qt::LeftButton, {}, from);
    QTest::mouseMove(&chart, to);
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, to);
}

} // namespace

class TestChartWidget final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void starts_empty_and_following();
    void a_new_series_is_shown_at_its_end();
    void a_new_series_follows_again_and_says_so_once();
    void following_can_be_switched();
    void ticks_grow_the_newest_bar_and_append();
    void a_late_tick_moves_the_quotes_only();
    void senseless_ticks_are_ignored();
    void ten_wheel_steps_stop_at_forty_and_twenty_back_at_one();
    void a_sideways_wheel_narrows_the_bars_on_purpose();
    void menu_zoom_steps_are_inverse_and_limited();
    void dragging_moves_along_the_series();
    void dragging_stops_at_the_first_bar_and_follows_from_the_last();
    void dragging_an_empty_chart_does_nothing();
    void a_drag_whose_release_got_lost_ends();
    void the_right_button_does_not_drag();
    void the_button_scrolls_to_the_end();
    void the_place_of_a_hidden_button_is_for_dragging();
    void the_pointer_finds_its_bar();
    void no_bar_is_under_a_pointer_beside_the_bars();
    void hovering_reports_the_prices_and_leaving_clears_them();
    void setters_that_change_nothing_paint_nothing();
    void several_changes_make_one_paint();
    void pointer_and_ticks_within_the_range_paint_no_older_candle();
    void a_tick_beyond_the_range_paints_all();
    void a_pointer_move_paints_where_the_crosshair_was_and_is();
    void a_tick_paints_what_tells_the_newest_bar();
    void colours_are_opaque_and_valid();
    void unknown_chart_types_are_candles();
    void the_lower_pane_takes_its_room();
    void the_ruler_can_be_armed();
    void any_size_can_be_painted_data();
    void any_size_can_be_painted();
    void any_digits_can_be_painted();
    void a_million_bars_are_as_good_as_a_few();
    void flat_series_and_large_prices_are_painted();
};

void TestChartWidget::starts_empty_and_following()
{
    const ChartWidget chart;
    QVERIFY(chart.candles().empty());
    QCOMPARE(chart.timeframeMs(), 900'000);
    QCOMPARE(chart.digits(), 5);
    QCOMPARE(chart.bid(), 0.0);
    QCOMPARE(chart.ask(), 0.0);
    QCOMPARE(chart.barWidth(), 7.0);
    QCOMPARE(chart.rightBarIndex(), 0.0);
    QVERIFY(chart.autoScroll());
    QVERIFY(!chart.chartShift());
    QVERIFY(!chart.measureMode());
    QVERIFY(!chart.rsiEnabled());
    QCOMPARE(chart.rsiPeriod(), 14);
    QCOMPARE(chart.chartType(), 0);
    QCOMPARE(chart.minimumSize(), QSize(240, 160));
    QCOMPARE(chart.focusPolicy(), Qt::StrongFocus);
    QVERIFY(chart.hasMouseTracking());
    QVERIFY(!chart.hoveredBar());
    const ChartColors& colors = chart.colors();
    QCOMPARE(colors.background.name(), u"#000000"_s);
    QCOMPARE(colors.grid.name(), u"#232323"_s);
    QCOMPARE(colors.axis.name(), u"#c0c0c0"_s);
    QCOMPARE(colors.up.name(), u"#00e600"_s);
    QCOMPARE(colors.down.name(), u"#ffffff"_s);
    QCOMPARE(colors.line.name(), u"#4fc3f7"_s);
    QCOMPARE(colors.volume.name(), u"#2f6b3f"_s);
}

void TestChartWidget::a_new_series_is_shown_at_its_end()
{
    ChartWidget chart;
    chart.setCandles(wave(100));
    QCOMPARE(chart.rightBarIndex(), 99.0);
    chart.setCandles({});
    QCOMPARE(chart.rightBarIndex(), 0.0);
    QVERIFY(chart.candles().empty());
    QVERIFY(chart.view().visible().isEmpty());
}

void TestChartWidget::a_new_series_follows_again_and_says_so_once()
{
    ChartWidget chart;
    QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
    chart.setCandles(wave(100));
    QCOMPARE(follows.count(), 0);
    chart.setAutoScroll(false);
    follows.clear();
    chart.setCandles(wave(50));
    QCOMPARE(follows.count(), 1);
    QCOMPARE(follows.first().first().toBool(), true);
    QVERIFY(chart.autoScroll());
}

void TestChartWidget::following_can_be_switched()
{
    ChartWidget chart;
    chart.setCandles(wave(100));
    QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
    chart.setAutoScroll(true);
    QCOMPARE(follows.count(), 0);
    chart.setAutoScroll(false);
    chart.setAutoScroll(false);
    QCOMPARE(follows.count(), 1);
    QCOMPARE(follows.takeFirst().first().toBool(), false);
    QCOMPARE(chart.rightBarIndex(), 99.0);
    const Candle last = chart.candles().back();
    chart.onTick(last.close, last.close, last.time + quarterHour);
    QCOMPARE(chart.rightBarIndex(), 99.0);
    chart.setAutoScroll(true);
    QCOMPARE(chart.rightBarIndex(), 100.0);
    QCOMPARE(follows.takeFirst().first().toBool(), true);
    chart.setAutoScroll(false);
    follows.clear();
    chart.scrollToEnd();
    QCOMPARE(follows.count(), 1);
    QVERIFY(chart.autoScroll());
}

void TestChartWidget::ticks_grow_the_newest_bar_and_append()
{
    ChartWidget chart;
    chart.setTimeframeMs(60'000);
    chart.onTick(1.0, 1.2, midnight + 5);
    chart.onTick(1.4, 1.6, midnight + 59'999);
    chart.onTick(1.2, 1.2, midnight + 60'000);
    QCOMPARE(chart.candles().size(), std::size_t{2});
    const Candle first{midnight, 1.1, 1.5, 1.1, 1.5, 2};
    QCOMPARE(chart.candles().front().open, first.open);
    QVERIFY(chart.candles().front() == first);
    QCOMPARE(chart.rightBarIndex(), 1.0);
    QCOMPARE(chart.bid(), 1.2);
}

void TestChartWidget::a_late_tick_moves_the_quotes_only()
{
    ChartWidget chart;
    chart.setCandles(wave(10));
    const std::vector<Candle> before = chart.candles();
    chart.onTick(1.11, 1.12, midnight);
    QVERIFY(chart.candles() == before);
    QCOMPARE(chart.bid(), 1.11);
    QCOMPARE(chart.ask(), 1.12);
}

void TestChartWidget::senseless_ticks_are_ignored()
{
    ChartWidget chart;
    chart.setCandles(wave(10));
    chart.onTick(1.1, 1.2, midnight);
    const std::vector<Candle> before = chart.candles();
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), 1e308, -1e308}) {
        chart.onTick(bad, 1.0, midnight + 1'000'000'000);
        chart.onTick(1.0, bad, midnight + 1'000'000'000);
    }
    QVERIFY(chart.candles() == before);
    QCOMPARE(chart.bid(), 1.1);
    QCOMPARE(chart.ask(), 1.2);
}

void TestChartWidget::ten_wheel_steps_stop_at_forty_and_twenty_back_at_one()
{
    ChartWidget chart;
    chart.setCandles(wave(100));
    fixtures::turnWheel(chart, QPoint(0, 120));
    QCOMPARE(chart.barWidth(), 7.0 * 1.2);
    QCOMPARE(chart.rightBarIndex(), 99.0);
    for (int i = 1; i < 10; ++i)
        fixtures::turnWheel(chart, QPoint(0, 120));
    QCOMPARE(chart.barWidth(), 40.0);
    fixtures::turnWheel(chart, QPoint(0, -120));
    QCOMPARE(chart.barWidth(), 40.0 * 0.8333333333333334);
    for (int i = 0; i < 20; ++i)
        fixtures::turnWheel(chart, QPoint(0, -120));
    QCOMPARE(chart.barWidth(), 1.0);
}

void TestChartWidget::a_sideways_wheel_narrows_the_bars_on_purpose()
{
    ChartWidget chart;
    fixtures::turnWheel(chart, QPoint(120, 0));
    QCOMPARE(chart.barWidth(), 7.0 * 0.8333333333333334);
}

void TestChartWidget::menu_zoom_steps_are_inverse_and_limited()
{
    ChartWidget chart;
    chart.zoomIn();
    QCOMPARE(chart.barWidth(), 7.0 * 1.2);
    chart.zoomOut();
    QCOMPARE(chart.barWidth(), 7.0 * 1.2 / 1.2);
    for (int i = 0; i < 30; ++i)
        chart.zoomIn();
    QCOMPARE(chart.barWidth(), 40.0);
    for (int i = 0; i < 30; ++i)
        chart.zoomOut();
    QCOMPARE(chart.barWidth(), 1.0);
}

void TestChartWidget::dragging_moves_along_the_series()
{
    ChartWidget chart;
    show(chart, 100);
    QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
    QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(100, 100));
    QCOMPARE(chart.cursor().shape(), Qt::ClosedHandCursor);
    QVERIFY(chart.autoScroll());
    QTest::mouseMove(&chart, QPoint(110, 140));
    QCOMPARE(chart.rightBarIndex(), 99.0 - 10.0 / 7.0);
    QVERIFY(!chart.autoScroll());
    QTest::mouseMove(&chart, QPoint(170, 140));
    QCOMPARE(chart.rightBarIndex(), 89.0);
    QCOMPARE(follows.count(), 1);
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(170, 140));
    QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
    fixtures::hover(chart, QPoint(20, 20));
    QCOMPARE(chart.rightBarIndex(), 89.0);
}

void TestChartWidget::dragging_stops_at_the_first_bar_and_follows_from_the_last()
{
    ChartWidget chart;
    show(chart, 20);
    QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
    drag(chart, QPoint(50, 100), QPoint(390, 100));
    QCOMPARE(chart.rightBarIndex(), 0.0);
    QCOMPARE(follows.takeFirst().first().toBool(), false);
    QVERIFY(follows.isEmpty());
    drag(chart, QPoint(250, 100), QPoint(117, 100)); // exactly the 19 bars back
    QCOMPARE(chart.rightBarIndex(), 19.0);
    QVERIFY(chart.autoScroll());
    QCOMPARE(follows.takeFirst().first().toBool(), true);
    drag(chart, QPoint(250, 100), QPoint(10, 100));
    QCOMPARE(chart.rightBarIndex(), 19.0);
    QVERIFY(follows.isEmpty());
}

void TestChartWidget::dragging_an_empty_chart_does_nothing()
{
    ChartWidget chart;
    show(chart, 0);
    QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
    drag(chart, QPoint(50, 100), QPoint(150, 100));
    QCOMPARE(chart.rightBarIndex(), 0.0);
    QVERIFY(chart.autoScroll());
    QVERIFY(follows.isEmpty());
}

void TestChartWidget::a_drag_whose_release_got_lost_ends()
{
    ChartWidget chart;
    show(chart, 100);
    QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(100, 100));
    QTest::mouseMove(&chart, QPoint(170, 100));
    fixtures::hover(chart, QPoint(200, 100), Qt::NoButton);
    QCOMPARE(chart.rightBarIndex(), 89.0);
    QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(200, 100));
}

void TestChartWidget::the_right_button_does_not_drag()
{
    ChartWidget chart;
    show(chart, 100);
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(100, 100), chart.mapToGlobal(QPointF(100, 100)),
        Qt::RightButton, Qt::RightButton, {});
    QApplication::sendEvent(&chart, &press);
    QVERIFY(!press.isAccepted()); // the window's menu may have it
    fixtures::hover(chart, QPoint(200, 100), Qt::RightButton);
    QCOMPARE(chart.rightBarIndex(), 99.0);
}

void TestChartWidget::the_button_scrolls_to_the_end()
{
    ChartWidget chart;
    show(chart, 100);
    drag(chart, QPoint(50, 100), QPoint(150, 100));
    QVERIFY(!chart.autoScroll());
    QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
    QTest::mouseClick(&chart, Qt::LeftButton, {}, QPoint(300, 250)); // one pixel outside its corner
    QVERIFY(!chart.autoScroll());
    QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(301, 251));
    QVERIFY(chart.autoScroll());
    QCOMPARE(chart.rightBarIndex(), 99.0);
    QCOMPARE(follows.count(), 1);
    QVERIFY(chart.cursor().shape() != Qt::ClosedHandCursor);
    QTest::mouseMove(&chart, QPoint(330, 251));
    QCOMPARE(chart.rightBarIndex(), 99.0);
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(330, 251));
}

void TestChartWidget::the_place_of_a_hidden_button_is_for_dragging()
{
    ChartWidget chart;
    show(chart, 100);
    drag(chart, QPoint(310, 260), QPoint(317, 260));
    QCOMPARE(chart.rightBarIndex(), 98.0);
}

void TestChartWidget::the_pointer_finds_its_bar()
{
    ChartWidget chart;
    show(chart, 100);
    QTest::mouseMove(&chart, QPoint(331, 100));
    QTRY_VERIFY(chart.hoveredBar());
    QVERIFY(*chart.hoveredBar() == chart.candles().back());
    fixtures::hover(chart, QPoint(324, 0));
    QVERIFY(*chart.hoveredBar() == chart.candles()[98]);
    fixtures::hover(chart, QPoint(0, 277));
    QVERIFY(*chart.hoveredBar() == chart.candles()[52]); // 331 / 7 = 47.3 bars back
    fixtures::leave(chart);
    QVERIFY(!chart.hoveredBar());
}

void TestChartWidget::no_bar_is_under_a_pointer_beside_the_bars()
{
    ChartWidget chart;
    show(chart, 10);
    for (const QPoint& position : {QPoint(332, 100), QPoint(100, 278), QPoint(-1, 100), QPoint(200, 100)}) {
        fixtures::hover(chart, position);
        QVERIFY(!chart.hoveredBar());
    }
    chart.setChartShift(true);
    fixtures::hover(chart, QPoint(320, 100)); // in the margin, six bars past the newest
    QVERIFY(!chart.hoveredBar());
    fixtures::hover(chart, QPoint(278, 100));
    QVERIFY(chart.hoveredBar());
}

void TestChartWidget::hovering_reports_the_prices_and_leaving_clears_them()
{
    ChartWidget chart;
    show(chart, 100);
    chart.setDigits(2);
    Candle bar{midnight, 1.0, 2.0, 0.5, 1.5, 77};
    chart.setCandles({bar});
    QSignalSpy texts(&chart, &ChartWidget::crosshairMoved);
    fixtures::hover(chart, QPoint(330, 100));
    QCOMPARE(texts.count(), 1);
    QCOMPARE(texts.takeFirst().first().toString(), u"O: 1.00  H: 2.00  L: 0.50  C: 1.50  V: 77"_s);
    fixtures::hover(chart, QPoint(100, 100)); // no bar there
    QCOMPARE(texts.count(), 0);
    fixtures::leave(chart);
    QCOMPARE(texts.count(), 1);
    QCOMPARE(texts.first().first().toString(), QString());
    QVERIFY(!chart.frame().pointerInPlot);
}

void TestChartWidget::setters_that_change_nothing_paint_nothing()
{
    ChartWidget chart;
    show(chart, 100);
    const QList<TradeLevel> levels{{u"1"_s, u"SL"_s, 1.1, u"sl"_s, QColor(Qt::red), Qt::DashLine, true}};
    chart.setTradeLevels(levels);
    chart.setSymbolInfo(u"A"_s, u"B"_s, u"C"_s);
    chart.onTick(1.1, 1.2, midnight);
    PaintCounter paints(chart);
    paints.taken();
    chart.setTradeLevels(levels);
    chart.setSymbolInfo(u"A"_s, u"B"_s, u"C"_s);
    chart.setDigits(5);
    chart.setTimeframeMs(900'000);
    chart.setAutoScroll(true);
    chart.scrollToEnd();
    chart.setChartShift(false);
    chart.setChartType(0);
    chart.setColors(ChartColors());
    chart.setRsi(false, 14);
    chart.setMeasureMode(false);
    chart.onTick(1.1, 1.2, midnight); // late, same prices
    fixtures::leave(chart);
    fixtures::hover(chart, QPoint(350, 100)); // over the price axis
    fixtures::hover(chart, QPoint(350, 110));
    QCOMPARE(paints.taken(), 0);
}

void TestChartWidget::several_changes_make_one_paint()
{
    ChartWidget chart;
    show(chart, 100);
    PaintCounter paints(chart);
    paints.taken();
    chart.setDigits(3);
    chart.setChartShift(true);
    chart.setChartType(1);
    chart.setSymbolInfo(u"A"_s, u"B"_s, u"C"_s);
    chart.zoomIn();
    fixtures::hover(chart, QPoint(50, 50));
    for (int i = 0; i < 20; ++i)
        chart.onTick(1.1 + i * 0.001, 1.1 + i * 0.001, chart.candles().back().time + i * 1000);
    QCOMPARE(paints.taken(), 1);
}

void TestChartWidget::pointer_and_ticks_within_the_range_paint_no_older_candle()
{
    ChartWidget chart;
    show(chart, 100);
    const Candle last = chart.candles().back();
    PaintCounter paints(chart);
    fixtures::hover(chart, QPoint(10, 100));
    chart.onTick(last.close, last.close, last.time);
    paints.taken();
    fixtures::hover(chart, QPoint(11, 100));
    paints.taken();
    const quint64 before = chart.seriesPaints();
    for (int i = 0; i < 20; ++i) {
        fixtures::hover(chart, QPoint(20 + i * 5, 50 + i));
        QCOMPARE(paints.taken(), 1);
        const double price = last.low + (last.high - last.low) * i / 20.0;
        chart.onTick(price, price, last.time + i);
        QCOMPARE(paints.taken(), 1);
    }
    QCOMPARE(chart.seriesPaints(), before);
}

void TestChartWidget::a_tick_beyond_the_range_paints_all()
{
    ChartWidget chart;
    show(chart, 100);
    PaintCounter paints(chart);
    paints.taken();
    const quint64 before = chart.seriesPaints();
    const PriceRange range = chart.view().prices();
    chart.onTick(2.0, 2.0, chart.candles().back().time);
    QCOMPARE(paints.taken(), 1);
    QVERIFY(chart.seriesPaints() > before);
    QVERIFY(chart.view().prices().max > range.max);
    QVERIFY(chart.view().prices().contains(2.0));
}

void TestChartWidget::a_pointer_move_paints_where_the_crosshair_was_and_is()
{
    ChartWidget chart;
    show(chart, 100);
    PaintCounter paints(chart);
    fixtures::hover(chart, QPoint(100, 100));
    QCOMPARE(paints.taken(), 1);
    QCOMPARE(paints.region(), QRegion(chart.rect())); // the header goes
    fixtures::hover(chart, QPoint(200, 150));
    QCOMPARE(paints.taken(), 1);
    for (const QPoint& pointer : {QPoint(100, 100), QPoint(200, 150)}) {
        for (const QRect& part : {QRect(0, pointer.y(), 332, 1), QRect(pointer.x(), 0, 1, 278),
                 QRect(332, pointer.y() - 9, 66, 18), QRect(pointer.x() - 50, 279, 100, 19),
                 QRect(6, 4, 320, 16)})
            QVERIFY((QRegion(part) - paints.region()).isEmpty());
    }
    QVERIFY(!paints.region().intersects(QRect(20, 30, 60, 60)));
    fixtures::leave(chart);
    QCOMPARE(paints.taken(), 1);
    QCOMPARE(paints.region(), QRegion(chart.rect()));
}

void TestChartWidget::a_tick_paints_what_tells_the_newest_bar()
{
    ChartWidget chart;
    show(chart, 100);
    std::vector<Candle> candles = wave(100);
    candles.back().volume = 1;
    chart.setCandles(candles);
    const Candle& last = candles.back();
    const double middle = (last.low + last.high) / 2;
    chart.onTick(middle, middle, last.time);
    PaintCounter paints(chart);
    paints.taken();
    chart.onTick(last.low, last.high, last.time);
    QCOMPARE(paints.taken(), 1);
    const ChartView& view = chart.view();
    for (const QRect& part :
        {QRect(324, 0, 76, 300), QRect(0, 0, 332, 18), QRect(0, view.pricePixel(middle), 332, 1),
            QRect(0, view.pricePixel(last.low), 332, 1), QRect(0, view.pricePixel(last.high), 332, 1)})
        QVERIFY((QRegion(part) - paints.region()).isEmpty());
    int painted = 0;
    for (const QRect& part : paints.region().intersected(QRect(0, 30, 300, 247)))
        painted += part.width() * part.height();
    QVERIFY(painted <= 4 * 300); // lines of the quotes, before and now

    candles.back().volume = 1000;
    chart.setCandles(candles);
    paints.taken();
    chart.onTick(last.low, last.high, last.time); // every bar of the histogram shrinks
    QCOMPARE(paints.taken(), 1);
    QVERIFY((QRegion(QRect(0, 278 - 39, 332, 39)) - paints.region()).isEmpty());
}

void TestChartWidget::colours_are_opaque_and_valid()
{
    ChartWidget chart;
    ChartColors colors;
    colors.background = QColor(10, 20, 30, 40);
    colors.grid = QColor();
    colors.up = QColor(1, 2, 3);
    chart.setColors(colors);
    QCOMPARE(chart.colors().background, QColor(10, 20, 30));
    QCOMPARE(chart.colors().grid, QColor(0x23, 0x23, 0x23));
    QCOMPARE(chart.colors().up, QColor(1, 2, 3));
}

void TestChartWidget::unknown_chart_types_are_candles()
{
    ChartWidget chart;
    for (const int type : {3, -1, 1000}) {
        chart.setChartType(2);
        QCOMPARE(chart.chartType(), 2);
        chart.setChartType(type);
        QCOMPARE(chart.chartType(), 0);
    }
}

void TestChartWidget::the_lower_pane_takes_its_room()
{
    ChartWidget chart;
    chart.resize(400, 500);
    chart.setRsi(true, 1);
    QCOMPARE(chart.rsiPeriod(), 2);
    QCOMPARE(chart.view().rsi(), QRect(0, 378, 332, 100));
    QCOMPARE(chart.view().plot(), QRect(0, 0, 332, 377));
    chart.setRsi(false, -9);
    QVERIFY(chart.view().rsi().isEmpty());
    QCOMPARE(chart.rsiPeriod(), 2);
}

void TestChartWidget::the_ruler_can_be_armed()
{
    ChartWidget chart;
    chart.setMeasureMode(true);
    QVERIFY(chart.measureMode());
    chart.setMeasureMode(false);
    QVERIFY(!chart.measureMode());
}

void TestChartWidget::any_size_can_be_painted_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("a line") << QSize(500, 1);
    QTest::newRow("a column") << QSize(1, 500);
    QTest::newRow("smallest") << QSize(240, 160);
    QTest::newRow("very wide") << QSize(30'000, 200);
    QTest::newRow("very high") << QSize(200, 30'000);
}

void TestChartWidget::any_size_can_be_painted()
{
    QFETCH(QSize, size);
    for (const int bars : {0, 1, 2000}) {
        for (int type = 0; type < 3; ++type) {
            ChartWidget chart;
            chart.setMinimumSize(0, 0);
            chart.resize(size);
            chart.setChartType(type);
            chart.setChartShift(bars == 1);
            chart.setRsi(bars == 1, 14);
            chart.setCandles(wave(bars));
            chart.setAutoScroll(bars != 1);
            fixtures::hover(chart, QPoint(0, 0));
            for (int look = 0; look < 2; ++look)
                QCOMPARE(chart.grab().size(), size);
        }
    }
}

void TestChartWidget::any_digits_can_be_painted()
{
    ChartWidget chart;
    chart.resize(300, 200);
    chart.setCandles(wave(50));
    chart.setSymbolInfo(u"A"_s, u"M15"_s, u"%1 <b>"_s);
    for (const int digits : {-1, std::numeric_limits<int>::min(), 9, std::numeric_limits<int>::max()}) {
        chart.setDigits(digits);
        QCOMPARE(chart.digits(), digits);
        QVERIFY(!chart.grab().isNull());
    }
}

void TestChartWidget::a_million_bars_are_as_good_as_a_few()
{
    ChartWidget few;
    ChartWidget many;
    std::vector<Candle> bars = wave(1'000'000);
    few.resize(500, 300);
    many.resize(500, 300);
    few.setCandles({bars.end() - 500, bars.end()});
    many.setCandles(std::move(bars));
    QCOMPARE(many.view().visible(), (BarRange{999'938, 999'999}));
    QCOMPARE(many.view().prices(), few.view().prices());
    // Vertical lines stand on other bars; without them the pictures are the same.
    ChartColors colors;
    colors.grid = colors.background;
    few.setColors(colors);
    many.setColors(colors);
    const QRect plot = few.view().plot();
    QCOMPARE(many.grab(plot).toImage(), few.grab(plot).toImage());
}

void TestChartWidget::flat_series_and_large_prices_are_painted()
{
    for (const double price : {1.1, 0.0, -37.0, 8e6, 1e15}) {
        ChartWidget chart;
        chart.resize(300, 200);
        chart.setCandles(
            {{midnight, price, price, price, price, 0}, {midnight + 1, price, price, price, price, 0}});
        const QImage image = chart.grab().toImage();
        QVERIFY(fixtures::pixelsOf(image, chart.view().plot(), chart.colors().up) > 5);
    }
}

TAVORAN_TEST_MAIN(TestChartWidget)
#include "tst_ChartWidget.moc"
