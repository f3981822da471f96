#include "chart/layers/BandCache.h"

#include "chart/layers/ChartFrame.h"
#include "chart/layers/DeviceScale.h"
#include "chart/layers/LayerStack.h"

#include <QPainter>
#include <QRegion>
#include <QTransform>

#include <cmath>

namespace {

/// Above this a picture would cost more memory than it saves time (256 MB).
constexpr double mostPixels = 64.0 * 1024.0 * 1024.0;

/// The layers as a picture in device pixels; null when there is no room for it.
QPixmap pictureOf(const ChartFrame& frame, qreal scale, void (*paint)(QPainter&, const ChartFrame&))
{
    // Where the size is no whole number of pixels, the widget's last one may be rounded either way.
    const qreal more = scale == std::floor(scale) ? 0.0 : 1.0;
    const QSizeF size = QSizeF(frame.view.size()) * scale + QSizeF(more, more);
    if (scale <= 0.0 || size.isEmpty() || size.width() * size.height() > mostPixels)
        return {};
    QPixmap picture(size.toSize());
    if (picture.isNull())
        return {};
    ChartFrame whole = frame;
    whole.exposed = QRect(QPoint(0, 0), frame.view.size());
    // Painted through a transform and without a pixel ratio of its own, so that it can be copied pixel by
    // pixel.
    QPainter painter(&picture);
    painter.scale(scale, scale);
    paint(painter, whole);
    return picture;
}

/// Copies device pixels one to one.
void copyWhole(QPainter& painter, const QPixmap& picture, qreal scale)
{
    if (scale == 1.0) {
        painter.drawPixmap(0, 0, picture);
        return;
    }
    const QTransform transform = painter.transform();
    painter.scale(1.0 / scale, 1.0 / scale);
    painter.drawPixmap(0, 0, picture);
    painter.setTransform(transform);
}

bool isWhole(const ChartFrame& frame, const QRegion& exposed)
{
    return exposed.rectCount() == 1
        && exposed.boundingRect().contains(QRect(QPoint(0, 0), frame.view.size()));
}

/// Copies the part of a picture that lies in `exposed`.
void copyPicture(QPainter& painter, const QPixmap& picture, qreal scale, const QRegion& exposed)
{
    // At a fractional scale only the painter's own clip knows how the rectangles of the region were rounded.
    if (exposed.rectCount() <= 1 || scale != std::floor(scale))
        return copyWhole(painter, picture, scale);
    // Qt copies a single rectangle row by row, but a region run by run, which is slower.
    painter.save();
    for (const QRect& part : exposed) {
        painter.setClipRect(part);
        copyWhole(painter, picture, scale);
    }
    painter.restore();
}

/// Within a window a chart may begin between two device pixels. It is shown as a picture is, from the nearest
/// one on, so that all of it is rounded alike.
void beginAtWholePixel(QPainter& painter)
{
    const qreal scale = evenDeviceScale(painter);
    if (scale <= 0.0)
        return;
    const QTransform transform = painter.deviceTransform();
    const QPointF corner(transform.dx(), transform.dy());
    painter.translate((QPointF(corner.toPoint()) - corner) / scale);
}

} // namespace

bool BandCache::sameGround(const Content& a, const Content& b)
{
    Content other = b;
    other.largestVolume = a.largestVolume;
    return a == other;
}

void BandCache::paint(QPainter& painter, const ChartFrame& frame, const QRegion& exposed)
{
    beginAtWholePixel(painter);
    const Content content{frame.view, frame.seriesRevision, frame.largestVolume, frame.liveBar,
        frame.averages, frame.colors, frame.type, frame.digits, frame.timeframeMs, evenDeviceScale(painter)};
    ChartFrame part = frame;
    part.exposed = exposed;
    paintKept(painter, part, content, exposed);
    layerstack::paintLive(painter, part);
}

void BandCache::paintKept(
    QPainter& painter, const ChartFrame& frame, const Content& content, const QRegion& exposed)
{
    const bool same = m_content && content == *m_content;
    const bool ground = m_content && sameGround(content, *m_content);
    if (!same)
        m_picture = QPixmap();
    if (!ground)
        m_ground = QPixmap();
    m_content = content;

    if (ground && !same) {
        if (m_ground.isNull())
            m_ground = pictureOf(frame, content.scale, &layerstack::paintGround);
        ++m_seriesPaints;
        if (m_ground.isNull())
            layerstack::paintGround(painter, frame);
        else
            copyPicture(painter, m_ground, content.scale, exposed);
        return layerstack::paintSeries(painter, frame);
    }
    if ((same || !isWhole(frame, exposed)) && m_picture.isNull()) {
        m_picture = pictureOf(frame, content.scale, &layerstack::paintKept);
        m_seriesPaints += m_picture.isNull() ? 0 : 1;
    }
    if (!m_picture.isNull()) {
        copyPicture(painter, m_picture, content.scale, exposed);
    } else {
        ++m_seriesPaints;
        layerstack::paintKept(painter, frame);
    }
    layerstack::paintLiveBar(painter, frame);
}
