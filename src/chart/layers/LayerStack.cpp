#include "chart/layers/LayerStack.h"

#include "chart/layers/ChartFrame.h"
#include "chart/layers/LayerOrder.h"

#include <algorithm>

namespace {

constexpr bool keptLayersComeFirst()
{
    return std::is_partitioned(layerOrder.begin(), layerOrder.end(),
        [](const LayerEntry& entry) { return entry.band == Band::Kept; });
}
static_assert(keptLayersComeFirst(), "a kept picture below the live layers must hold all kept ones");

constexpr bool groundComesFirst()
{
    return std::is_partitioned(layerOrder.begin(), layerOrder.end(),
        [](const LayerEntry& entry) { return entry.band == Band::Kept && entry.liveBars == 0; });
}
static_assert(groundComesFirst(), "a picture of the ground lies below all candles");

bool isPainted(const LayerEntry& entry, const ChartFrame& frame)
{
    return entry.layer <= Layer::EmptySeries || !frame.candles.empty();
}

void paintBand(QPainter& painter, const ChartFrame& frame, Band band)
{
    for (const LayerEntry& entry : layerOrder) {
        if (entry.band == band && isPainted(entry, frame))
            entry.paint(painter, frame);
    }
}

} // namespace

void layerstack::paintAll(QPainter& painter, const ChartFrame& frame)
{
    for (const LayerEntry& entry : layerOrder) {
        if (isPainted(entry, frame))
            entry.paint(painter, frame);
    }
}

void layerstack::paintKept(QPainter& painter, const ChartFrame& frame)
{
    if (frame.liveBar < 0)
        return paintBand(painter, frame, Band::Kept);
    ChartFrame older = frame;
    older.bars.last = frame.liveBar - 1;
    paintBand(painter, older, Band::Kept);
}

void layerstack::paintGround(QPainter& painter, const ChartFrame& frame)
{
    for (const LayerEntry& entry : layerOrder) {
        if (entry.band == Band::Kept && entry.liveBars == 0 && isPainted(entry, frame))
            entry.paint(painter, frame);
    }
}

void layerstack::paintSeries(QPainter& painter, const ChartFrame& frame)
{
    for (const LayerEntry& entry : layerOrder) {
        if (entry.liveBars > 0 && isPainted(entry, frame))
            entry.paint(painter, frame);
    }
}

void layerstack::paintLiveBar(QPainter& painter, const ChartFrame& frame)
{
    if (frame.liveBar < 0)
        return;
    ChartFrame newest = frame;
    for (const LayerEntry& entry : layerOrder) {
        if (entry.liveBars == 0 || !isPainted(entry, frame))
            continue;
        newest.bars = {std::max(frame.bars.first, frame.liveBar - entry.liveBars + 1), frame.liveBar};
        entry.paint(painter, newest);
    }
}

void layerstack::paintLive(QPainter& painter, const ChartFrame& frame)
{
    paintBand(painter, frame, Band::Live);
}
