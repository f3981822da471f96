#include "chart/ChartWidgetFixture.h"
#include "chart/layers/ChartFrame.h"
#include "support/TestMain.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using fixtures::drag;
using fixtures::midnight;
using fixtures::showChart;
using fixtures::wave;

class TestChartWidgetMouse final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ten_wheel_steps_stop_at_forty_and_twenty_back_at_one()
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

    void a_sideways_wheel_narrows_the_bars_on_purpose()
    {
        ChartWidget chart;
        fixtures::turnWheel(chart, QPoint(120, 0));
        QCOMPARE(chart.barWidth(), 7.0 * 0.8333333333333334);
    }

    void dragging_moves_along_the_series()
    {
        ChartWidget chart;
        showChart(chart, 100);
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

    void dragging_stops_at_the_first_bar_and_follows_from_the_last()
    {
        ChartWidget chart;
        showChart(chart, 20);
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

    void dragging_an_empty_chart_does_nothing()
    {
        ChartWidget chart;
        showChart(chart, 0);
        QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
        drag(chart, QPoint(50, 100), QPoint(150, 100));
        QCOMPARE(chart.rightBarIndex(), 0.0);
        QVERIFY(chart.autoScroll());
        QVERIFY(follows.isEmpty());
    }

    void a_drag_whose_release_got_lost_ends()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(100, 100));
        QTest::mouseMove(&chart, QPoint(170, 100));
        fixtures::hover(chart, QPoint(200, 100), Qt::NoButton);
        QCOMPARE(chart.rightBarIndex(), 89.0);
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(200, 100));
    }

    void the_right_button_does_not_drag()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(100, 100), chart.mapToGlobal(QPointF(100, 100)),
            Qt::RightButton, Qt::RightButton, {});
        QApplication::sendEvent(&chart, &press);
        QVERIFY(!press.isAccepted()); // the window's menu may have it
        fixtures::hover(chart, QPoint(200, 100), Qt::RightButton);
        QCOMPARE(chart.rightBarIndex(), 99.0);
    }

    void the_button_scrolls_to_the_end()
    {
        ChartWidget chart;
        showChart(chart, 100);
        drag(chart, QPoint(50, 100), QPoint(150, 100));
        QVERIFY(!chart.autoScroll());
        QSignalSpy follows(&chart, &ChartWidget::autoScrollChanged);
        QTest::mouseClick(&chart, Qt::LeftButton, {}, QPoint(300, 250)); // one pixel outside its corner
        QVERIFY(!chart.autoScroll());
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(301, 251), chart.mapToGlobal(QPointF(301, 251)),
            Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(&chart, &press);
        QVERIFY(press.isAccepted()); // nothing for the window around the chart
        QVERIFY(chart.autoScroll());
        QCOMPARE(chart.rightBarIndex(), 99.0);
        QCOMPARE(follows.count(), 1);
        QVERIFY(chart.cursor().shape() != Qt::ClosedHandCursor);
        QTest::mouseMove(&chart, QPoint(330, 251));
        QCOMPARE(chart.rightBarIndex(), 99.0);
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(330, 251));
    }

    void the_place_of_a_hidden_button_is_for_dragging()
    {
        ChartWidget chart;
        showChart(chart, 100);
        drag(chart, QPoint(310, 260), QPoint(317, 260));
        QCOMPARE(chart.rightBarIndex(), 98.0);
    }

    void the_pointer_finds_its_bar()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QTest::mouseMove(&chart, QPoint(331, 100));
        QTRY_VERIFY(chart.hoveredCandle());
        QVERIFY(*chart.hoveredCandle() == chart.candles().back());
        fixtures::hover(chart, QPoint(324, 0));
        QVERIFY(*chart.hoveredCandle() == chart.candles()[98]);
        fixtures::hover(chart, QPoint(0, 277));
        QVERIFY(*chart.hoveredCandle() == chart.candles()[52]); // 331 / 7 = 47.3 bars back
        fixtures::leave(chart);
        QVERIFY(!chart.hoveredCandle());
    }

    void no_bar_is_under_a_pointer_beside_the_bars()
    {
        ChartWidget chart;
        showChart(chart, 10);
        for (const QPoint& position :
            {QPoint(332, 100), QPoint(100, 278), QPoint(-1, 100), QPoint(200, 100)}) {
            fixtures::hover(chart, position);
            QVERIFY(!chart.hoveredCandle());
        }
        chart.setChartShift(true);
        fixtures::hover(chart, QPoint(320, 100)); // in the margin, six bars past the newest
        QVERIFY(!chart.hoveredCandle());
        fixtures::hover(chart, QPoint(278, 100));
        QVERIFY(chart.hoveredCandle());
    }

    void hovering_reports_the_prices_and_leaving_clears_them()
    {
        ChartWidget chart;
        showChart(chart, 100);
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
        QVERIFY(!chart.crosshair());
    }
};

TAVORAN_TEST(TestChartWidgetMouse)
#include "tst_ChartWidgetMouse.moc"
