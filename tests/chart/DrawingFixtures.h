#pragma once

#include "chart/ChartFixtures.h"
#include "chart/DrawingBuilders.h"
#include "chart/window/ChartWidget.h"

#include <QList>

/// Objects and gestures of a chart, shared by the tests that look at its pictures.
namespace fixtures {

inline void press(QWidget& widget, const QPoint& position)
{
    QMouseEvent event(
        QEvent::MouseButtonPress, position, widget.mapToGlobal(position), Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(&widget, &event);
}

inline void release(QWidget& widget, const QPoint& position)
{
    QMouseEvent event(
        QEvent::MouseButtonRelease, position, widget.mapToGlobal(position), Qt::LeftButton, Qt::NoButton, {});
    QApplication::sendEvent(&widget, &event);
}

/// A horizontal line through the middle of a row.
inline Drawing lineAt(const ChartWidget& chart, int row, const QString& id)
{
    return horizontalLine(id, (chart.view().priceAt(row) + chart.view().priceAt(row + 1)) / 2);
}

/// An object of each kind about the bars of wave(), some of them crossing, one of them selected.
inline QList<Drawing> oneOfEachKind(int bars)
{
    const auto at = [bars](int back, double price) {
        return DrawingPoint{midnight + (bars - back) * quarterHour, price};
    };
    const auto object = [](const char16_t* type, const QList<DrawingPoint>& points, const QColor& color) {
        const QString name = QString::fromUtf16(type);
        return Drawing{name, name, points, color};
    };
    QList<Drawing> drawings{object(u"rectangle", {at(20, 1.108), at(6, 1.095)}, QColor(0xff, 0xd5, 0x4f)),
        object(u"rectangle", {at(12, 1.102), at(-4, 1.09)}, QColor(0x4f, 0xc3, 0xf7)),
        object(u"hline", {at(5, 1.1043)}, QColor(0xe0, 0xe0, 0xe0)),
        object(u"vline", {at(9, 1.1)}, QColor(0xba, 0x68, 0xc8)),
        object(u"fibonacci", {at(25, 1.092), at(3, 1.109)}, QColor(0x81, 0xc7, 0x84)),
        object(u"trendline", {at(60, 1.08), at(-10, 1.12)}, QColor(0xff, 0x8a, 0x65))};
    drawings.last().selected = true;
    return drawings;
}

/// All objects, a ruler and an object that waits for its second point. The chart must have its size and bars.
inline void addObjects(ChartWidget& chart)
{
    chart.setDrawings(oneOfEachKind(static_cast<int>(chart.candles().size())));
    chart.setMeasureMode(true);
    press(chart, QPoint(40, 30));
    hover(chart, QPoint(103, 77), Qt::LeftButton);
    release(chart, QPoint(103, 77));
    chart.setTool(QStringLiteral("trendline"));
    press(chart, QPoint(33, 90));
    release(chart, QPoint(33, 90));
}

} // namespace fixtures
