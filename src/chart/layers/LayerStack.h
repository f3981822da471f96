#pragma once

class QPainter;
struct ChartFrame;

/// Paints the layers in their order (see LayerOrder.h). Without bars only the first two are painted.
namespace layerstack {

/// Every layer, each with all bars: the picture that all other ways must equal to the pixel.
void paintAll(QPainter& painter, const ChartFrame& frame);

/// The kept layers without the newest bar.
void paintKept(QPainter& painter, const ChartFrame& frame);

/// The kept layers that show no bars, all of which lie below those that do.
void paintGround(QPainter& painter, const ChartFrame& frame);

/// The kept layers that show bars, with all bars.
void paintBars(QPainter& painter, const ChartFrame& frame);

/// What paintKept() left out of the kept layers.
void paintLiveBar(QPainter& painter, const ChartFrame& frame);

/// The live layers, all of which lie over the kept ones.
void paintLive(QPainter& painter, const ChartFrame& frame);

} // namespace layerstack
