#pragma once

#include <QColor>

/// The seven colours of a chart that the user may choose.
struct ChartColors {
    QColor background = QColor(0x00, 0x00, 0x00); ///< whole widget, body of rising candles
    QColor grid = QColor(0x23, 0x23, 0x23);       ///< grid and border lines
    QColor axis = QColor(0xc0, 0xc0, 0xc0);       ///< labels and texts
    QColor up = QColor(0x00, 0xe6, 0x00);         ///< rising candles and bars
    QColor down = QColor(0xff, 0xff, 0xff);       ///< falling candles and bars
    QColor line = QColor(0x4f, 0xc3, 0xf7);       ///< line chart
    QColor volume = QColor(0x2f, 0x6b, 0x3f);     ///< volume histogram

    bool operator==(const ChartColors&) const = default;
};
