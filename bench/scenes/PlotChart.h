#pragma once

#include "chart/series/Candle.h"

#include <QSize>
#include <qcustomplot.h>

#include <array>
#include <vector>

/// The same content in a widely used plotting widget, without antialiasing, its crosshair on a buffered
/// layer of its own, as its manual advises for speed. It draws no labels for price and crosshair.
class PlotChart final {
public:
    PlotChart(QSize size, std::vector<Candle> candles, double barWidth);

    void pointerFrame();
    void tickFrame();
    void tickFrame(double bid); ///< of the newest bar
    void panFrame();
    void endPan(); ///< back to the newest bar

    /// The same without a frame: the next turn of the event loop paints it.
    void tick(double bid);

    /// The newest of the averages, and of relative strength.
    [[nodiscard]] std::vector<double> values() const;
    [[nodiscard]] double visibleBars() const { return m_visibleBars; }
    [[nodiscard]] QWidget& widget() { return m_plot; }

private:
    void buildPrices();
    void buildPane();
    void buildCrosshair();
    void colorAxes();
    QCPGraph* addLine(QCPAxis* x, QCPAxis* y, const std::vector<double>& values, const QColor& color);
    void takeTick(double bid);
    void show(double last);
    void replot();

    QCustomPlot m_plot;
    std::vector<Candle> m_series;
    double m_close;             ///< of the newest bar as it was loaded
    double m_visibleBars = 1.0; ///< that many fit at the wanted width
    // The plot owns its parts.
    QCPFinancial* m_candles = nullptr;
    QCPBars* m_volume = nullptr;
    QCPAxisRect* m_pane = nullptr;
    QCPItemStraightLine* m_across = nullptr;
    QCPItemStraightLine* m_down = nullptr;
    std::array<QCPGraph*, 4> m_lines{}; ///< averages and relative strength
    int m_step = 0;
};
