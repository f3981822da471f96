#pragma once

#include "chart/series/Candle.h"

#include <QColor>
#include <QImage>
#include <QPoint>

#include <array>
#include <vector>

/// What a bare program does to show the same chart: everything repainted each frame onto an RGB32
/// image, rectangles filled one by one, lines without antialiasing, no layers, no caches other than the
/// values of its indicators.
class FloorChart final {
public:
    FloorChart(QSize size, std::vector<Candle> candles, double barWidth);

    void paint();
    [[nodiscard]] const QImage& image() const { return m_image; }

    void setPointer(QPoint pointer) { m_pointer = pointer; }
    void setLastClose(double close);
    void pan(double bars) { m_rightBar -= bars; }

private:
    void paintGrid(QPainter& painter);
    void paintBars(QPainter& painter);
    void paintAverages(QPainter& painter);
    void paintRsi(QPainter& painter);
    void paintOverlays(QPainter& painter);
    [[nodiscard]] int x(qsizetype index) const;
    [[nodiscard]] int y(double price) const;

    QImage m_image;
    std::vector<Candle> m_candles;
    double m_barWidth;
    double m_rightBar;
    QPoint m_pointer{-1, -1};
    QRect m_plot;
    QRect m_pane;
    std::array<std::vector<double>, 3> m_averages;
    std::vector<double> m_rsi;
    qsizetype m_first = 0;
    qsizetype m_last = 0;
    double m_min = 0.0;
    double m_max = 1.0;
};
