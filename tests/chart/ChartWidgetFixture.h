#pragma once

#include "chart/ChartFixtures.h"
#include "chart/window/ChartWidget.h"

#include <QtTest>

/// A shown chart and what a hand does to it, shared by the tests of the chart widget.
namespace fixtures {

/// A chart of 400 by 300 pixels; 48 of its bars are visible, the last one at column 331.
inline void showChart(ChartWidget& chart, int bars)
{
    chart.resize(400, 300);
    chart.setCandles(wave(bars));
    chart.show();
    QVERIFY(QTest::qWaitForWindowExposed(&chart));
    QCoreApplication::processEvents();
}

inline void click(ChartWidget& chart, const QPoint& position)
{
    QTest::mouseClick(&chart, Qt::LeftButton, {}, position);
}

inline void drag(ChartWidget& chart, const QPoint& from, const QPoint& to)
{
    QTest::mousePress(&chart, Qt::LeftButton, {}, from);
    QTest::mouseMove(&chart, to);
    QTest::mouseRelease(&chart, Qt::LeftButton, {}, to);
}

} // namespace fixtures
