#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/PanePainter.h"

void layers::paintIndicatorPanes(QPainter& painter, const ChartFrame& frame)
{
    int number = 0;
    for (const IndicatorPane& pane : frame.panes) {
        const IndicatorRow& row = indicatorRow(pane.kind);
        if (!pane.shown || !row.pane || number >= frame.view.panes())
            continue;
        const auto index = static_cast<std::size_t>(number);
        const std::span<const double> values
            = index < frame.paneValues.size() ? frame.paneValues[index] : std::span<const double>();
        paintPane(painter, frame, {frame.view.pane(number), pane, *row.pane, values});
        ++number;
    }
}
