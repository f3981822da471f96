#pragma once

#include <QPainter>
#include <QTransform>

/// Device pixels per unit when the painter only scales evenly and moves, as paint events do; else 0.
[[nodiscard]] inline qreal evenDeviceScale(const QPainter& painter)
{
    const QTransform transform = painter.deviceTransform();
    const bool even = transform.type() <= QTransform::TxScale && transform.m11() > 0.0
        && transform.m11() == transform.m22();
    return even ? transform.m11() : 0.0;
}
