#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/LeftTexts.h"
#include "chart/layers/PriceTag.h"
#include "chart/layers/Strokes.h"

#include <QCoreApplication>

namespace {

constexpr int tagDarkening = 280;

void paintLevel(QPainter& painter, const ChartFrame& frame, const TradeLevel& level, bool dragged)
{
    const ChartView& view = frame.view;
    const QRect& plot = view.plot();
    const double price = dragged ? frame.draggedPrice : level.price;
    if (!view.prices().contains(price))
        return;
    const int y = view.pricePixel(price);
    const Strokes strokes(painter);
    strokes.across(plot.left(), plot.right(), y, level.color, dragged ? Qt::SolidLine : level.penStyle);
    QString label = oneLine(level.label);
    if (dragged)
        //: %1 a level of a trade, %2 its price
        label = QCoreApplication::translate("ChartWidget", "%1  %2")
                    .arg(label, formatPrice(price, frame.digits));
    frame.texts->draw(painter, lefttexts::aboveLine(frame, y, 13), Qt::AlignLeft, label, level.color);
    if (!dragged)
        return;
    const QRect tag = priceTagBox(view, y);
    strokes.box(tag, level.color.darker(tagDarkening));
    frame.texts->draw(painter, tag, Qt::AlignHCenter, formatPrice(price, frame.digits), QColor(Qt::white));
}

} // namespace

void layers::paintTradeLevels(QPainter& painter, const ChartFrame& frame)
{
    for (std::size_t i = 0; i < frame.levels.size(); ++i)
        paintLevel(painter, frame, frame.levels[i], static_cast<qsizetype>(i) == frame.draggedLevel);
}
