#pragma once

#include <QColor>
#include <QList>
#include <QMetaType>
#include <QString>

/// An anchor of a drawing.
struct DrawingPoint {
    qint64 time = 0; ///< the first moment of a bar, ms since the epoch, UTC
    double price = 0.0;

    bool operator==(const DrawingPoint&) const = default;
};

/// A drawing that the user placed on the chart.
struct Drawing {
    QString id;                 ///< server id; empty until the server has stored the drawing
    QString type;               ///< "hline", "vline", "trendline", "rectangle" or "fibonacci"
    QList<DrawingPoint> points; ///< 1 for "hline" and "vline", else 2; with fewer it is not drawn
    QColor color = QColor(0xe0, 0xe0, 0xe0);
    bool selected = false;

    bool operator==(const Drawing&) const = default;
};

Q_DECLARE_METATYPE(Drawing)
