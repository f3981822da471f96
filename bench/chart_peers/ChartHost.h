#pragma once

#include "chart_peers/HostedChart.h"

#include <QJsonObject>
#include <QWebSocket>

#include <array>

/// Shows a chart and does with it what the measuring program says over a WebSocket; bench/chart_peers/page.js
/// is the same for pages. Two binary messages bring candles and ticks, rows of numbers; then come
///   {"do": "load", "width": 7}                 opens the chart
///   {"do": "frames", "kind": ..., "count": N}  paints that many frames, one after the other
///   {"do": "rest"}                             throws away what is not needed, where there is such a thing
///   {"do": "shown"}                            tells the newest values and how many bars are in view
///   {"bid": ..., "ask": ...}                   a live price; the only one without an answer
/// The program ends with the connection.
class ChartHost final {
public:
    explicit ChartHost(OpenChart open);

    void connectTo(quint16 port);

private:
    void takeNumbers(const QByteArray& message);
    void takeText(const QString& message);
    [[nodiscard]] QJsonObject load(double barWidth);
    [[nodiscard]] QJsonObject frames(const QString& kind, int count);
    [[nodiscard]] QJsonObject shown() const;
    void frame(const QString& kind);

    QWebSocket m_socket;
    OpenChart m_open;
    std::unique_ptr<HostedChart> m_chart;
    std::vector<Candle> m_candles;
    std::vector<std::array<double, 2>> m_ticks; ///< bid and ask
    bool m_ticksNext = false;
    std::size_t m_step = 0;
};

/// A program around it: its arguments are those of main(), the last of them the port.
[[nodiscard]] int runChartHost(int argc, char** argv, OpenChart open);
