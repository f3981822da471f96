#pragma once

#include <QIcon>
#include <QImage>
#include <QPainter>

namespace pictures {

/// Icons of 16 pixels side by side on white. Each of their pixels is nine here, so that one alone makes two
/// sheets differ.
[[nodiscard]] inline QImage iconSheet(const QList<QIcon>& icons, qreal ratio = 1.0)
{
    constexpr int side = 16;
    constexpr int enlarged = 3;
    const int cell = qRound(side * ratio);
    QImage sheet(cell * static_cast<int>(icons.size()), cell, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (qsizetype i = 0; i < icons.size(); ++i) {
        QImage icon = icons[i].pixmap(QSize(side, side), ratio).toImage();
        icon.setDevicePixelRatio(1.0);
        painter.drawImage(QPoint(cell * static_cast<int>(i), 0), icon);
    }
    painter.end();
    return sheet.scaled(sheet.size() * enlarged);
}

} // namespace pictures
