#include "chart/layers/ChartFrame.h"

#include "chart/data/ChartScene.h"
#include "chart/gestures/ChartGestures.h"

ChartFrame frameOf(
    const ChartScene& scene, const QSize& size, const ChartLook& look, const ChartGestures& gestures)
{
    ChartFrame frame;
    static_cast<ChartLook&>(frame) = look;
    const QuotedView shown = scene.quotedView(size);
    frame.view = shown.view;
    frame.largestVolume = shown.largestVolume;
    frame.bid = shown.bid;
    frame.ask = shown.ask;
    frame.candles = scene.series().candles();
    frame.bars = shown.view.visible();
    const qsizetype newest = scene.series().count() - 1;
    if (!frame.bars.isEmpty() && frame.bars.last == newest)
        frame.liveBar = newest;
    frame.seriesRevision = scene.seriesRevision();
    frame.timeframeMs = scene.series().timeframeMs();
    frame.autoScroll = scene.state().autoScroll;
    frame.chartShift = scene.state().chartShift;
    frame.draggedLevel = gestures.level().index();
    frame.draggedPrice = gestures.level().price();
    if (const DrawingTool& tool = gestures.tool(); tool.placed())
        frame.preview = ChartFrame::Preview{*tool.kind(), *tool.placed()};
    frame.ruler = gestures.ruler().span();
    frame.exposed = QRect(QPoint(0, 0), size);
    return frame;
}
