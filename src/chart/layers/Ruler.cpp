#include "chart/gestures/Ruler.h"

#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/LineStrokes.h"
#include "chart/layers/Strokes.h"

void layers::paintRuler(QPainter& painter, const ChartFrame& frame)
{
    if (!frame.ruler)
        return;
    constexpr QColor color(0xff, 0xb3, 0x00);
    constexpr QColor fill(0, 0, 0, 200);
    strokes::between(
        painter, frame.ruler->start, frame.ruler->end, frame.view.plot(), color, {1, Qt::DashLine});
    const QString text = ::Ruler::text(frame.view, *frame.ruler, frame.digits);
    const QRect box = ::Ruler::box(frame.view, frame.ruler->end, frame.texts->advance(text));
    const Strokes strokes(painter);
    strokes.inside(box, fill);
    strokes.frame(box, color);
    frame.texts->draw(painter, box, Qt::AlignHCenter, text, color);
}
