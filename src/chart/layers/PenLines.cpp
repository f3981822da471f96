#include "chart/layers/PenLines.h"

#include "chart/layers/ChartFrame.h"
#include "chart/layers/DeviceScale.h"

#include <QPainter>
#include <QPen>
#include <QPixmap>
#include <QVarLengthArray>

#include <algorithm>
#include <cmath>

namespace {

using Segments = QVarLengthArray<QLineF, 512>;

/// How far a pen reaches beside its line: half its width, its square end, and rounding.
constexpr double penReach = 2.0;

QRect reachOf(const QLineF& segment)
{
    const double left = std::min(segment.x1(), segment.x2()) - penReach;
    const double top = std::min(segment.y1(), segment.y2()) - penReach;
    const double right = std::max(segment.x1(), segment.x2()) + penReach;
    const double bottom = std::max(segment.y1(), segment.y2()) + penReach;
    return QRectF(QPointF(left, top), QPointF(right, bottom)).toAlignedRect();
}

void draw(QPainter& painter, const QPen& pen, const Segments& segments)
{
    painter.setPen(pen);
    painter.drawLines(segments.constData(), static_cast<int>(segments.size()));
}

/// Paints the part of the segments that lies in `area`, by way of a picture in whole device pixels.
void drawAsPicture(QPainter& painter, const QPen& pen, const Segments& segments, const QRect& area, int scale)
{
    QPixmap picture(area.size() * scale);
    if (picture.isNull())
        return draw(painter, pen, segments);
    picture.fill(Qt::transparent);
    QPainter whole(&picture);
    whole.scale(scale, scale);
    whole.translate(-area.topLeft());
    draw(whole, pen, segments);
    whole.end();
    painter.save();
    painter.translate(area.topLeft());
    painter.scale(1.0 / scale, 1.0 / scale);
    painter.drawPixmap(0, 0, picture);
    painter.restore();
}

} // namespace

void strokes::withPen(
    QPainter& painter, const ChartFrame& frame, const QPen& pen, std::span<const QLineF> segments)
{
    const QRect all(QPoint(0, 0), frame.view.size());
    const QRect exposed = frame.exposed.boundingRect();
    const qreal scale = evenDeviceScale(painter);
    if (exposed.contains(all) || scale < 1.0 || scale != std::floor(scale)) {
        painter.setPen(pen);
        painter.drawLines(segments.data(), static_cast<int>(segments.size()));
        return;
    }
    Segments within;
    Segments crossing;
    QRect crossed;
    for (const QLineF& segment : segments) {
        // Beyond the frame's own edge nothing is ever shown, so a segment may be cut there.
        const QRect reach = reachOf(segment) & all;
        if (exposed.contains(reach)) {
            within.append(segment);
        } else if (exposed.intersects(reach)) {
            crossing.append(segment);
            crossed |= reach;
        }
    }
    draw(painter, pen, within);
    if (!crossing.isEmpty())
        drawAsPicture(painter, pen, crossing, crossed, static_cast<int>(scale));
}
