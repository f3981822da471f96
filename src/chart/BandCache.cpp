#include "chart/BandCache.h"

#include "chart/ChartFrame.h"
#include "chart/LayerStack.h"

#include <QPainter>
#include <QTransform>

namespace {

/// Above this a picture would cost more memory than it saves time (256 MB).
constexpr double mostPixels = 64.0 * 1024.0 * 1024.0;

/// Device pixels per unit when the painter only scales evenly and moves, as paint events do; else 0.
qreal evenScale(const QPainter& painter)
{
    const QTransform transform = painter.deviceTransform();
    const bool even = transform.type() <= QTransform::TxScale && transform.m11() > 0.0
        && transform.m11() == transform.m22();
    return even ? transform.m11() : 0.0;
}

/// Copies device pixels one to one.
void copyPicture(QPainter& painter, const QPixmap& picture, qreal scale)
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

} // namespace

void BandCache::paint(QPainter& painter, const ChartFrame& frame, bool whole)
{
    const qreal scale = evenScale(painter);
    const Content content{frame.view, frame.seriesRevision, frame.largestVolume, frame.liveBar, frame.colors,
        frame.type, frame.digits, frame.timeframeMs, scale};
    const bool same = content == m_content;
    if (!same)
        m_picture = QPixmap();
    m_content = content;
    const bool wanted = scale > 0.0 && (same || !whole);
    if (wanted && (!m_picture.isNull() || makePicture(frame, content))) {
        copyPicture(painter, m_picture, scale);
    } else {
        ++m_seriesPaints;
        layerstack::paintKept(painter, frame);
    }
    layerstack::paintLiveBar(painter, frame);
    layerstack::paintLive(painter, frame);
}

bool BandCache::makePicture(const ChartFrame& frame, const Content& content)
{
    // Rounded as the painter rounds the background.
    const QSizeF size = QSizeF(frame.view.size()) * content.scale;
    if (size.isEmpty() || size.width() * size.height() > mostPixels)
        return false;
    QPixmap picture(size.toSize());
    if (picture.isNull())
        return false;
    // Painted through a transform rather than a pixel ratio: copied later, its pixels are device pixels.
    QPainter painter(&picture);
    painter.scale(content.scale, content.scale);
    ++m_seriesPaints;
    layerstack::paintKept(painter, frame);
    m_picture = picture;
    return true;
}
