#pragma once

#include "chart/data/ChartLook.h"
#include "chart/data/ChartView.h"
#include "chart/data/CrosshairPlace.h"
#include "chart/data/Drawing.h"
#include "chart/data/DrawingKind.h"
#include "chart/data/TradeLevel.h"
#include "chart/gestures/Ruler.h"
#include "chart/layers/TextPainter.h"
#include "chart/series/Candle.h"

#include <QList>
#include <QPoint>
#include <QRegion>
#include <QString>

#include <optional>
#include <span>

/// Everything that one picture of a chart shows, taken once a frame; layers read nothing else. Valid as
/// long as the widget that took it does not change.
struct ChartFrame : ChartLook {
    ChartView view;
    std::span<const Candle> candles; ///< the whole series; layers walk `bars` only
    BarRange bars;                   ///< the bars to paint, within the visible ones
    qsizetype liveBar = -1;          ///< the newest bar when it is visible, else -1
    quint64 seriesRevision = 0;      ///< differs when a candle other than the newest has changed
    qint32 largestVolume = 1;        ///< of the visible candles, at least 1

    qint64 timeframeMs = 0;

    std::span<const std::span<const double>> averageValues; ///< see IndicatorCache::averages()
    std::span<const std::span<const double>> paneValues;    ///< see IndicatorCache::panes()

    std::span<const Drawing> drawings; ///< later ones on top
    double bid = 0.0;                  ///< 0 means none
    double ask = 0.0;                  ///< 0 means none
    bool quoteStale = false;           ///< bid and ask may not hold any more
    std::span<const TradeLevel> levels;
    qsizetype draggedLevel = -1; ///< index of the dragged level, or -1
    double draggedPrice = 0.0;

    /// A drawing that waits for its second point.
    struct Preview {
        DrawingKind kind = DrawingKind::TrendLine;
        DrawingPoint placed;
    };
    std::optional<Preview> preview;
    std::optional<Ruler::Span> ruler;

    bool autoScroll = true;
    bool chartShift = false;
    QPoint pointer = {-1, -1};               ///< without one, outside of everything
    std::optional<CrosshairPlace> crosshair; ///< what the pointer is on; absent while it is outside the plot

    QRegion exposed;              ///< the part of the picture that is to be painted
    TextPainter* texts = nullptr; ///< never null while painting

    void pointAt(const QPoint& position)
    {
        pointer = position;
        crosshair = view.placeAt(position);
    }

    [[nodiscard]] const Candle& candle(qsizetype index) const
    {
        return candles[static_cast<std::size_t>(index)];
    }
};

class ChartGestures;
class ChartScene;

/// A frame of this size from scene, look and gestures. The caller adds indicator values, drawings, levels and
/// the pointer.
[[nodiscard]] ChartFrame frameOf(
    const ChartScene& scene, const QSize& size, const ChartLook& look, const ChartGestures& gestures);
