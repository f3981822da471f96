#include "chart/ChartWidgetFixture.h"
#include "chart/layers/ChartFrame.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using fixtures::showChart;

namespace {

Ruler::Span shown(const ChartWidget& chart)
{
    return chart.frame().ruler.value_or(Ruler::Span{QPoint(-1, -1), QPoint(-1, -1)});
}

const Ruler::Span nothing{QPoint(-1, -1), QPoint(-1, -1)};

} // namespace

class TestChartRuler final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void dragging_measures_and_the_result_stays()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QVERIFY(!chart.measureMode());
        chart.setMeasureMode(true);
        QVERIFY(chart.measureMode());
        QCOMPARE(shown(chart), nothing);
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(100, 100));
        QCOMPARE(shown(chart), (Ruler::Span{QPoint(100, 100), QPoint(100, 100)}));
        QTest::mouseMove(&chart, QPoint(150, 140));
        QCOMPARE(shown(chart), (Ruler::Span{QPoint(100, 100), QPoint(150, 140)}));
        QTest::mouseMove(&chart, QPoint(900, 900));
        QCOMPARE(shown(chart).end, QPoint(331, 277));
        QTest::mouseMove(&chart, QPoint(150, 140));
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(150, 140));
        QTest::mouseMove(&chart, QPoint(200, 200));
        fixtures::leave(chart);
        QCOMPARE(shown(chart), (Ruler::Span{QPoint(100, 100), QPoint(150, 140)}));
        const QColor amber(0xff, 0xb3, 0x00);
        QVERIFY(fixtures::pixelsOf(chart.grab().toImage(), QRect(100, 100, 50, 40), amber) > 25);
    }

    void the_next_press_measures_anew()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setMeasureMode(true);
        fixtures::drag(chart, QPoint(100, 100), QPoint(150, 140));
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(20, 30));
        QCOMPARE(shown(chart), (Ruler::Span{QPoint(20, 30), QPoint(20, 30)}));
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(20, 30));
    }

    void nothing_pans_or_selects_while_measuring()
    {
        ChartWidget chart;
        showChart(chart, 100);
        Drawing line;
        line.type = u"hline"_s;
        line.points = {{fixtures::midnight, (chart.view().priceAt(100) + chart.view().priceAt(101)) / 2}};
        chart.setDrawings({line});
        chart.setMeasureMode(true);
        fixtures::drag(chart, QPoint(100, 100), QPoint(150, 140));
        QCOMPARE(chart.rightBarIndex(), 99.0);
        QVERIFY(!chart.drawings().first().selected);
    }

    void disarming_removes_the_ruler()
    {
        ChartWidget chart;
        showChart(chart, 100);
        const QImage before = chart.grab().toImage();
        chart.setMeasureMode(true);
        fixtures::drag(chart, QPoint(100, 100), QPoint(150, 140));
        chart.setMeasureMode(false);
        QCOMPARE(shown(chart), nothing);
        fixtures::leave(chart);
        QCOMPARE(chart.grab().toImage(), before);
        fixtures::drag(chart, QPoint(100, 100), QPoint(107, 140));
        QCOMPARE(chart.rightBarIndex(), 98.0); // pans again
        chart.setMeasureMode(true);
        fixtures::drag(chart, QPoint(100, 100), QPoint(150, 140));
        chart.setMeasureMode(true); // arming again clears as well
        QVERIFY(chart.measureMode());
        QCOMPARE(shown(chart), nothing);
    }

    void escape_removes_the_ruler_and_leaves_it_armed()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setMeasureMode(true);
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(100, 100));
        QTest::mouseMove(&chart, QPoint(150, 140));
        QTest::keyClick(&chart, Qt::Key_Escape);
        QCOMPARE(shown(chart), nothing);
        QVERIFY(chart.measureMode());
        QTest::mouseMove(&chart, QPoint(160, 140));
        QCOMPARE(shown(chart), nothing);
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(160, 140));
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
        QApplication::sendEvent(&chart, &escape);
        QVERIFY(!escape.isAccepted()); // nothing left to cancel
    }

    void presses_outside_the_plot_do_not_measure()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setMeasureMode(true);
        for (const QPoint& position : {QPoint(332, 100), QPoint(100, 278)}) {
            QTest::mouseClick(&chart, Qt::LeftButton, {}, position);
            QCOMPARE(shown(chart), nothing);
        }
    }

    void without_bars_nothing_is_measured()
    {
        ChartWidget chart;
        showChart(chart, 0);
        chart.setMeasureMode(true);
        fixtures::drag(chart, QPoint(100, 100), QPoint(150, 140));
        QCOMPARE(shown(chart), nothing);
    }

    void the_button_comes_before_the_ruler()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setAutoScroll(false);
        chart.setMeasureMode(true);
        QTest::mouseClick(&chart, Qt::LeftButton, {}, QPoint(310, 260));
        QVERIFY(chart.autoScroll());
        QCOMPARE(shown(chart), nothing);
    }

    void the_cursor_is_a_cross_while_armed()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setMeasureMode(true);
        QCOMPARE(chart.cursor().shape(), Qt::CrossCursor);
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(100, 100));
        QCOMPARE(chart.cursor().shape(), Qt::CrossCursor);
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(100, 100));
        chart.setTool(u"hline"_s);
        chart.setTool(QString());
        QCOMPARE(chart.cursor().shape(), Qt::CrossCursor);
        chart.setMeasureMode(false);
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
    }

    void menus_hear_of_arming_and_disarming()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QSignalSpy changed(&chart, &ChartWidget::settingsChanged);
        chart.setMeasureMode(false);
        QCOMPARE(changed.count(), 0);
        chart.setMeasureMode(true);
        QCOMPARE(changed.count(), 1);
        fixtures::drag(chart, QPoint(100, 100), QPoint(150, 140));
        chart.setMeasureMode(true);
        QCOMPARE(changed.count(), 1);
        chart.setMeasureMode(false);
        QCOMPARE(changed.count(), 2);
    }

    void a_release_that_got_lost_ends_the_stretching()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setMeasureMode(true);
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(100, 100));
        QTest::mouseMove(&chart, QPoint(150, 140));
        fixtures::hover(chart, QPoint(200, 200), Qt::NoButton);
        QCOMPARE(shown(chart).end, QPoint(150, 140));
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(200, 200));
    }

    void a_step_paints_only_where_the_ruler_was_and_is()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setMeasureMode(true);
        fixtures::hover(chart, QPoint(100, 100));
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(100, 100));
        fixtures::hover(chart, QPoint(110, 110), Qt::LeftButton);
        PaintCounter paints(chart);
        paints.taken();
        fixtures::hover(chart, QPoint(120, 120), Qt::LeftButton);
        QCOMPARE(paints.taken(), 1);
        QVERIFY((QRegion(100, 100, 21, 21) - paints.region()).isEmpty());
        QVERIFY((QRegion(128, 98, 100, 18) - paints.region()).isEmpty());
        QVERIFY(!paints.region().intersects(QRect(10, 30, 80, 60)));
        QVERIFY(!paints.region().intersects(QRect(130, 140, 200, 100)));
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(120, 120));
    }
};

TAVORAN_TEST(TestChartRuler)
#include "tst_ChartRuler.moc"
