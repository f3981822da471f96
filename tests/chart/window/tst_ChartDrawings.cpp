#include "chart/ChartWidgetFixture.h"
#include "chart/DrawingBuilders.h"
#include "chart/DrawingFixtures.h"
#include "chart/layers/ChartFrame.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QSignalSpy>

#include <limits>

using namespace Qt::StringLiterals;
using fixtures::click;
using fixtures::lineAt;
using fixtures::midnight;
using fixtures::quarterHour;
using fixtures::showChart;

namespace {

Drawing objectOf(const QString& type, const QList<DrawingPoint>& points)
{
    return {u"id"_s, type, points, Drawing().color, true};
}

QString selectedIds(const ChartWidget& chart)
{
    return fixtures::selectedIds(chart.drawings());
}

} // namespace

/// Selecting, deleting and keeping the objects of a chart.
class TestChartDrawings final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_press_within_six_pixels_selects_a_line()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setDrawings({lineAt(chart, 100, u"a"_s), lineAt(chart, 200, u"b"_s)});
        click(chart, QPoint(50, 93));
        QCOMPARE(selectedIds(chart), QString());
        click(chart, QPoint(50, 94));
        QCOMPARE(selectedIds(chart), u"a"_s);
        click(chart, QPoint(50, 206));
        QCOMPARE(selectedIds(chart), u"b"_s);
        click(chart, QPoint(50, 207));
        QCOMPARE(selectedIds(chart), QString());
    }

    void a_press_on_nothing_deselects_and_pans()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setDrawings({lineAt(chart, 100, u"a"_s)});
        click(chart, QPoint(50, 100));
        QCOMPARE(selectedIds(chart), u"a"_s);
        fixtures::drag(chart, QPoint(50, 150), QPoint(120, 150));
        QCOMPARE(selectedIds(chart), QString());
        QCOMPARE(chart.rightBarIndex(), 89.0);
    }

    void a_press_on_an_object_neither_pans_nor_moves_it()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QSignalSpy updated(&chart, &ChartWidget::drawingUpdated);
        const Drawing line = lineAt(chart, 100, u"a"_s);
        chart.setDrawings({line});
        QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(50, 100));
        QCOMPARE(chart.cursor().shape(), Qt::ArrowCursor);
        QTest::mouseMove(&chart, QPoint(120, 150));
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(120, 150));
        QCOMPARE(chart.rightBarIndex(), 99.0);
        QCOMPARE(chart.drawings().first().points, line.points);
        QVERIFY(chart.drawings().first().selected);
        QCOMPARE(updated.count(), 0);
    }

    void selecting_and_deleting_paint_once()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setDrawings({lineAt(chart, 100, u"a"_s), lineAt(chart, 200, u"b"_s)});
        PaintCounter paints(chart);
        paints.taken();
        const auto paintsOfClick = [&](const QPoint& position) {
            click(chart, position);
            return paints.taken();
        };
        QCOMPARE(paintsOfClick(QPoint(50, 150)), 0); // nothing was selected, and nothing is
        QCOMPARE(paintsOfClick(QPoint(50, 100)), 1);
        QCOMPARE(paintsOfClick(QPoint(50, 100)), 0);
        QCOMPARE(paintsOfClick(QPoint(50, 200)), 1);
        QCOMPARE(paintsOfClick(QPoint(50, 150)), 1);
        QCOMPARE(paintsOfClick(QPoint(50, 200)), 1);
        QTest::keyClick(&chart, Qt::Key_Delete);
        QCOMPARE(paints.taken(), 1);
        QTest::keyClick(&chart, Qt::Key_Delete);
        QCOMPARE(paints.taken(), 0);
    }

    void while_a_tool_is_active_nothing_is_selected()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setDrawings({lineAt(chart, 100, u"a"_s)});
        chart.setTool(u"trendline"_s);
        click(chart, QPoint(50, 100));
        QCOMPARE(selectedIds(chart), QString());
        click(chart, QPoint(360, 100)); // on the axis, where the line would be hit
        QCOMPARE(selectedIds(chart), QString());
    }

    void the_selection_survives_a_reload()
    {
        ChartWidget chart;
        showChart(chart, 100);
        const Drawing a = lineAt(chart, 100, u"a"_s);
        const Drawing b = lineAt(chart, 200, u"b"_s);
        chart.setDrawings({a, b});
        click(chart, QPoint(50, 200));
        chart.setDrawings({b, a, lineAt(chart, 50, u"c"_s)});
        QCOMPARE(selectedIds(chart), u"b"_s);
        PaintCounter paints(chart);
        paints.taken();
        chart.setDrawings({b, a, lineAt(chart, 50, u"c"_s)}); // the same again
        QCOMPARE(paints.taken(), 0);
        chart.setDrawings({a});
        QCOMPARE(paints.taken(), 1);
        QCOMPARE(selectedIds(chart), QString());
    }

    void delete_and_backspace_remove_the_selected_object()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QSignalSpy deleted(&chart, &ChartWidget::drawingDeleted);
        chart.setDrawings(
            {lineAt(chart, 50, u"a"_s), lineAt(chart, 100, u"b"_s), lineAt(chart, 150, u"c"_s)});
        click(chart, QPoint(50, 100));
        QTest::keyClick(&chart, Qt::Key_Delete);
        QCOMPARE(deleted, QList<QVariantList>({{u"b"_s}}));
        QCOMPARE(chart.drawings().size(), 2);
        click(chart, QPoint(50, 150));
        QTest::keyClick(&chart, Qt::Key_Backspace);
        QCOMPARE(deleted, QList<QVariantList>({{u"b"_s}, {u"c"_s}}));
        click(chart, QPoint(50, 50));
        QVERIFY(chart.deleteSelectedDrawing());
        QCOMPARE(deleted, QList<QVariantList>({{u"b"_s}, {u"c"_s}, {u"a"_s}}));
        QVERIFY(chart.drawings().isEmpty());
    }

    void deleting_an_object_without_id_tells_nobody()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QSignalSpy deleted(&chart, &ChartWidget::drawingDeleted);
        chart.setTool(u"hline"_s);
        click(chart, QPoint(200, 100));
        click(chart, QPoint(50, 100)); // selects what was just placed
        QVERIFY(chart.drawings().first().selected);
        QTest::keyClick(&chart, Qt::Key_Delete);
        QVERIFY(chart.drawings().isEmpty());
        QCOMPARE(deleted.count(), 0);
    }

    void deleting_without_a_selection_does_nothing()
    {
        ChartWidget chart;
        showChart(chart, 100);
        QSignalSpy deleted(&chart, &ChartWidget::drawingDeleted);
        chart.setDrawings({lineAt(chart, 100, u"a"_s)});
        QVERIFY(!chart.deleteSelectedDrawing());
        QTest::keyClick(&chart, Qt::Key_Delete);
        QCOMPARE(chart.drawings().size(), 1);
        QCOMPARE(deleted.count(), 0);
    }

    void other_keys_go_to_the_default_handler()
    {
        ChartWidget chart;
        showChart(chart, 100);
        chart.setDrawings({lineAt(chart, 100, u"a"_s)});
        click(chart, QPoint(50, 100));
        chart.setTool(u"hline"_s);
        for (const int key : {int(Qt::Key_A), int(Qt::Key_Plus), int(Qt::Key_Return), int(Qt::Key_Insert)}) {
            QKeyEvent press(QEvent::KeyPress, key, {});
            QApplication::sendEvent(&chart, &press);
            QVERIFY(!press.isAccepted());
        }
        QCOMPARE(chart.drawings().size(), 1);
        QCOMPARE(chart.tool(), u"hline"_s);
    }

    void broken_objects_are_kept_but_neither_painted_nor_hit()
    {
        ChartWidget chart;
        showChart(chart, 100);
        const QImage before = chart.grab().toImage();
        const double price = chart.view().priceAt(100);
        const double notANumber = std::numeric_limits<double>::quiet_NaN();
        const qint64 farthest = std::numeric_limits<qint64>::max();
        QList<Drawing> broken{objectOf(u"ellipse"_s, {{midnight, price}, {midnight, price}}),
            objectOf(u"hline"_s, {}), objectOf(u"trendline"_s, {{midnight, price}}),
            objectOf(u"hline"_s, {{midnight, notANumber}}), objectOf(u"vline"_s, {{farthest, price}}),
            objectOf(u"vline"_s, {{-farthest, price}}), objectOf(u"hline"_s, {{midnight, 1e300}}),
            objectOf(u"rectangle"_s, {{midnight, notANumber}, {farthest, price}}),
            objectOf(u"fibonacci"_s, {{farthest, 1e15}, {farthest, -1e15}}),
            objectOf(u"trendline"_s, {{farthest, 1e15}, {farthest, -1e15}}),
            objectOf(QString(100'000, u'x'), QList<DrawingPoint>(1000, {midnight, price}))};
        chart.setDrawings(broken);
        QCOMPARE(chart.drawings().size(), broken.size());
        QCOMPARE(chart.grab().toImage(), before);
        for (int y = 0; y < 278; y += 5)
            click(chart, QPoint(100, y));
        QCOMPARE(selectedIds(chart), QString());
    }

    void objects_survive_a_change_of_timeframe()
    {
        ChartWidget chart;
        showChart(chart, 100);
        const double low = chart.view().priceAt(200);
        const double high = chart.view().priceAt(100);
        chart.setTool(u"trendline"_s);
        click(chart, QPoint(331, 100));
        click(chart, QPoint(191, 200));
        chart.setCandles({});
        chart.setTimeframeMs(4 * quarterHour);
        QCOMPARE(chart.drawings().size(), 1);
        chart.setCandles(fixtures::hours(fixtures::wave(25)));
        // The newest bar began at quarter 96; the ends lie at quarters 99 and 79, 0 and 4 whole bars from it.
        click(chart, QPoint(331, chart.view().pricePixel(high)));
        QVERIFY(chart.drawings().first().selected);
        click(chart, QPoint(10, 10));
        click(chart, QPoint(331 - 28, chart.view().pricePixel(low)));
        QVERIFY(chart.drawings().first().selected);
    }

    void objects_of_any_kind_fit_any_size_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("nothing") << QSize(0, 0);
        QTest::newRow("one pixel") << QSize(1, 1);
        QTest::newRow("smallest") << QSize(240, 160);
        QTest::newRow("wide") << QSize(16'000, 160);
        QTest::newRow("high") << QSize(240, 16'000);
    }
    void objects_of_any_kind_fit_any_size()
    {
        QFETCH(QSize, size);
        ChartWidget chart;
        chart.setMinimumSize(0, 0);
        chart.resize(size);
        chart.setCandles(fixtures::wave(3000));
        QList<Drawing> drawings;
        for (const QString& type : {u"hline"_s, u"vline"_s, u"trendline"_s, u"rectangle"_s, u"fibonacci"_s}) {
            drawings.append(objectOf(type, {{fixtures::barTime(2990), 1.1}, {midnight, 1.095}}));
            drawings.append(objectOf(type, {{-4'000'000'000'000'000, -1e15}, {4'000'000'000'000'000, 1e15}}));
            for (Drawing& drawing : drawings)
                drawing.selected = true;
        }
        chart.setDrawings(drawings);
        chart.setMeasureMode(true);
        fixtures::drag(chart, QPoint(1, 1), QPoint(30'000, 30'000));
        chart.setTool(u"rectangle"_s);
        click(chart, QPoint(5, 5));
        fixtures::hover(chart, QPoint(8, 8));
        const QImage picture = chart.grab().toImage();
        QCOMPARE(picture.size(), size);
        if (size.width() < 240)
            return;
        int horizontal = 0;
        for (int y = 0; y < size.height() - 22; ++y)
            horizontal += picture.pixelColor(3, y) == QColor(0xe0, 0xe0, 0xe0) ? 1 : 0;
        QVERIFY(horizontal > 0);
    }
};

TAVORAN_TEST(TestChartDrawings)
#include "tst_ChartDrawings.moc"
