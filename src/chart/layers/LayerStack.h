#pragma once

class QPainter;
struct ChartFrame;

/// Paints the layers in their order (see LayerOrder.h). Without candles only the first two are painted.
namespace layerstack {

/// Every layer, each with the whole series: the picture that all other ways must equal to the pixel.
void paintAll(QPainter& painter, const ChartFrame& frame);

/// The kept layers without the newest candle.
void paintKept(QPainter& painter, const ChartFrame& frame);

/// The kept layers that show nothing of the series, all of which lie below those that do.
void paintGround(QPainter& painter, const ChartFrame& frame);

/// The kept layers that show the series, with all of it.
void paintSeries(QPainter& painter, const ChartFrame& frame);

/// The part of the kept layers that paintKept() leaves out.
void paintLiveBar(QPainter& painter, const ChartFrame& frame);

/// The live layers, all of which lie over the kept ones.
void paintLive(QPainter& painter, const ChartFrame& frame);

} // namespace layerstack
