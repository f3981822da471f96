#pragma once

class QPainter;
struct ChartFrame;

/// One function per layer of the chart, each in its own file. A layer reads nothing but the frame, and need
/// not restore pen, brush and font. Layers that show the series paint the bars in ChartFrame::bars. What lies
/// outside ChartFrame::exposed may be left out.
namespace layers {

void paintBackground(QPainter& painter, const ChartFrame& frame);
void paintEmptySeries(QPainter& painter, const ChartFrame& frame);
void paintPriceGrid(QPainter& painter, const ChartFrame& frame);
void paintTimeGrid(QPainter& painter, const ChartFrame& frame);
void paintVolume(QPainter& painter, const ChartFrame& frame);
void paintPrices(QPainter& painter, const ChartFrame& frame);
void paintMovingAverages(QPainter& painter, const ChartFrame& frame);
void paintDrawings(QPainter& painter, const ChartFrame& frame);
void paintHeader(QPainter& painter, const ChartFrame& frame);
void paintAverageLegend(QPainter& painter, const ChartFrame& frame);
void paintTradeLevels(QPainter& painter, const ChartFrame& frame);
void paintQuotes(QPainter& painter, const ChartFrame& frame);
void paintCrosshair(QPainter& painter, const ChartFrame& frame);
void paintIndicatorPanes(QPainter& painter, const ChartFrame& frame);
void paintRuler(QPainter& painter, const ChartFrame& frame);
void paintDrawingPreview(QPainter& painter, const ChartFrame& frame);
void paintScrollButton(QPainter& painter, const ChartFrame& frame);
void paintShiftMarker(QPainter& painter, const ChartFrame& frame);
void paintBorder(QPainter& painter, const ChartFrame& frame);

} // namespace layers
