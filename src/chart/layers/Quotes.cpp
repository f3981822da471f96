#include "app/base/NumberFormat.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/PriceTag.h"
#include "chart/layers/Strokes.h"

namespace {

constexpr QColor askColor(0xff, 0x4a, 0x4a);
constexpr QColor bidColor(0x3b, 0xa7, 0xff);
constexpr QColor staleColor(0x8a, 0x8a, 0x8a);
constexpr int askTagDarkening = 280;

bool isShown(const ChartFrame& frame, double price)
{
    return price > 0.0 && frame.view.prices().contains(price);
}

void paintLine(QPainter& painter, const ChartFrame& frame, int y, const QColor& color)
{
    const QRect& plot = frame.view.plot();
    Strokes(painter).across(plot.left(), plot.right(), y, color, Qt::DashLine);
}

} // namespace

void layers::paintQuotes(QPainter& painter, const ChartFrame& frame)
{
    if (isShown(frame, frame.ask)) {
        const int y = frame.view.pricePixel(frame.ask);
        const QRect tag = priceTagBox(frame.view, y);
        const QColor color = frame.quoteStale ? staleColor : askColor;
        paintLine(painter, frame, y, color);
        Strokes(painter).outlined(tag, color.darker(askTagDarkening), color);
        frame.texts->draw(
            painter, tag, Qt::AlignHCenter, formatPrice(frame.ask, frame.digits), QColor(Qt::white));
    }
    if (isShown(frame, frame.bid)) {
        const int y = frame.view.pricePixel(frame.bid);
        const QRect tag = priceTagBox(frame.view, y);
        const QColor color = frame.quoteStale ? staleColor : bidColor;
        paintLine(painter, frame, y, color);
        Strokes(painter).box(tag, color);
        frame.texts->draw(painter, tag, Qt::AlignHCenter, formatPrice(frame.bid, frame.digits),
            QColor(Qt::black), TextPainter::Weight::Bold);
    }
}
