#pragma once

#include "chart/window/ChartWidget.h"

#include <QEvent>

#include <vector>

/// The terminal's chart, shown and driven by events as a person and the feed drive it. Each of the
/// calls changes one thing and paints one frame.
class LiveChart final {
public:
    LiveChart(QSize size, std::size_t loaded, double barWidth);
    LiveChart(QSize size, std::vector<Candle> candles, double barWidth);

    void pointerFrame();
    void tickFrame();
    void tickFrame(double bid, double ask); ///< of the newest bar
    void largestTickFrame(); ///< a tick that makes the newest bar the one with the largest volume
    void panFrame();
    void endPan(); ///< lets the mouse button go

    /// The same without a frame: the next turn of the event loop paints it.
    void tick(double bid, double ask);

    [[nodiscard]] ChartWidget& widget() { return m_chart; }
    [[nodiscard]] const ChartWidget& widget() const { return m_chart; }

private:
    void paintWhatChanged();
    void sendMouse(QEvent::Type type, QPoint position, Qt::MouseButtons buttons);

    ChartWidget m_chart;
    double m_mid = 0.0;
    int m_step = 0;
    bool m_panning = false;
};
