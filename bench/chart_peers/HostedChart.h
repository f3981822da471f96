#pragma once

#include "chart/series/Candle.h"

#include <functional>
#include <memory>
#include <vector>

/// A chart that ChartHost shows. A frame has been painted when its function returns.
class HostedChart {
public:
    HostedChart() = default;
    HostedChart(const HostedChart&) = delete;
    HostedChart& operator=(const HostedChart&) = delete;
    virtual ~HostedChart() = default;

    /// A price, whose middle is the newest candle's; painted with the next turn of the event loop.
    virtual void tick(double bid, double ask) = 0;

    virtual void tickFrame(double bid, double ask) = 0;
    virtual void pointerFrame() = 0;
    virtual void panFrame() = 0;
    virtual void endPan() = 0;

    /// The newest values of the averages and of relative strength: whether all charts show the same.
    [[nodiscard]] virtual std::vector<double> values() const = 0;
    /// How many bars there is room for.
    [[nodiscard]] virtual double bars() const = 0;
};

/// Opens a chart of these candles, each so many pixels wide.
using OpenChart = std::function<std::unique_ptr<HostedChart>(std::vector<Candle> candles, double barWidth)>;
