#include "app/base/NumberFormat.h"
#include "chart/data/ChartTexts.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/CrosshairBoxes.h"
#include "chart/layers/Layers.h"
#include "chart/layers/PriceTag.h"
#include "chart/layers/Strokes.h"

namespace {

constexpr QColor lineColor(0x77, 0x77, 0x77);
constexpr QColor tagColor(0x33, 0x33, 0x33);

void paintTag(QPainter& painter, const ChartFrame& frame, const QRect& box, const QString& text)
{
    Strokes(painter).box(box, tagColor);
    frame.texts->draw(painter, box, Qt::AlignHCenter, text, QColor(Qt::white));
}

} // namespace

void layers::paintCrosshair(QPainter& painter, const ChartFrame& frame)
{
    if (!frame.crosshair)
        return;
    const ChartView& view = frame.view;
    const QRect& plot = view.plot();
    const int x = frame.pointer.x();
    const int y = frame.pointer.y();
    const Strokes strokes(painter);
    strokes.across(plot.left(), plot.right(), y, lineColor, Qt::DashLine);
    strokes.down(x, plot.top(), plot.bottom(), lineColor, Qt::DashLine);
    paintTag(painter, frame, priceTagBox(view, y), formatPrice(frame.crosshair->price, frame.digits));

    const qsizetype index = frame.crosshair->bar;
    if (index < 0 || index >= view.count())
        return;
    const Candle& candle = frame.candle(index);
    paintTag(painter, frame, crosshair::timeTag(view, x), barTimeText(candle.time, frame.timeframeMs, true));
    frame.texts->draw(painter, crosshair::priceLine(view), Qt::AlignLeft, crosshairText(candle, frame.digits),
        frame.colors.axis);
}
