#pragma once

#include "chart/layers/Layers.h"

#include <array>

/// The layers of a chart.
enum class Layer {
    Background,
    EmptySeries,
    PriceGrid,
    TimeGrid,
    Volume,
    Prices,
    MovingAverages,
    Drawings,
    Header,
    AverageLegend,
    TradeLevels,
    Quotes,
    Crosshair,
    Ruler,
    DrawingPreview,
    IndicatorPanes,
    ScrollButton,
    ShiftMarker,
    Border,
};

/// How often a layer changes.
enum class Band {
    Kept, ///< with the series or the view; kept as a picture between frames
    Live, ///< with each tick or pointer move; painted anew in every frame
};

/// One row of the order of painting.
struct LayerEntry {
    Layer layer;
    Band band;
    /// For a kept layer that shows the series: at how many of the newest bars it is painted anew over the
    /// kept picture, which holds nothing of the newest candle. More than one where an earlier layer, painted
    /// anew, may cover what this one shows at neighbouring bars.
    int liveBars;
    void (*paint)(QPainter&, const ChartFrame&);
};

/// The order of painting, first painted first: later layers cover earlier ones.
inline constexpr std::array layerOrder{
    LayerEntry{Layer::Background, Band::Kept, 0, &layers::paintBackground},
    LayerEntry{Layer::EmptySeries, Band::Kept, 0, &layers::paintEmptySeries},
    LayerEntry{Layer::PriceGrid, Band::Kept, 0, &layers::paintPriceGrid},
    LayerEntry{Layer::TimeGrid, Band::Kept, 0, &layers::paintTimeGrid},
    LayerEntry{Layer::Volume, Band::Kept, 1, &layers::paintVolume},
    LayerEntry{Layer::Prices, Band::Kept, 3, &layers::paintPrices},
    LayerEntry{Layer::MovingAverages, Band::Kept, 5, &layers::paintMovingAverages},
    LayerEntry{Layer::Drawings, Band::Live, 0, &layers::paintDrawings},
    LayerEntry{Layer::Header, Band::Live, 0, &layers::paintHeader},
    LayerEntry{Layer::AverageLegend, Band::Live, 0, &layers::paintAverageLegend},
    LayerEntry{Layer::TradeLevels, Band::Live, 0, &layers::paintTradeLevels},
    LayerEntry{Layer::Quotes, Band::Live, 0, &layers::paintQuotes},
    LayerEntry{Layer::Crosshair, Band::Live, 0, &layers::paintCrosshair},
    LayerEntry{Layer::Ruler, Band::Live, 0, &layers::paintRuler},
    LayerEntry{Layer::DrawingPreview, Band::Live, 0, &layers::paintDrawingPreview},
    LayerEntry{Layer::IndicatorPanes, Band::Live, 0, &layers::paintIndicatorPanes},
    LayerEntry{Layer::ScrollButton, Band::Live, 0, &layers::paintScrollButton},
    LayerEntry{Layer::ShiftMarker, Band::Live, 0, &layers::paintShiftMarker},
    LayerEntry{Layer::Border, Band::Live, 0, &layers::paintBorder},
};
