#pragma once

#include "chart/window/ChartWidget.h"

#include <QEvent>

/// The terminal's chart, shown and driven by events as a person and the feed drive it. Each of the
/// calls changes one thing and paints one frame.
class LiveChart final {
public:
    LiveChart(QSize size, std::size_t loaded, double barWidth);

    void pointerFrame();
    void tickFrame();
    void largestTickFrame(); ///< a tick that makes the newest bar the one with the largest volume
    void panFrame();

    [[nodiscard]] ChartWidget& widget() { return m_chart; }

private:
    void paintWhatChanged();
    void sendMouse(QEvent::Type type, QPoint position, Qt::MouseButtons buttons);

    ChartWidget m_chart;
    double m_mid = 0.0;
    int m_step = 0;
    bool m_panning = false;
};
