// The saved layout: charts with their states, panes, and the geometry that Qt has written.

#include "fuzz/FuzzQt.h"

#include "chart/window/ChartState.h"
#include "mainwindow/ChartsLayout.h"
#include "mainwindow/PanesLayout.h"
#include "mainwindow/SavedGeometry.h"

using fuzz::demand;

namespace fuzz_layout {

namespace {

bool areEqual(const SavedChart& a, const SavedChart& b)
{
    return a.symbol == b.symbol && a.timeframe == b.timeframe && a.geometry == b.geometry
        && a.maximized == b.maximized && a.state == b.state;
}

void readGeometry(const QByteArray& bytes)
{
    const QRect screen(0, 0, 1920, 1080);
    const QRect otherwise(100, 100, 800, 600);
    const QByteArray placed = geometryOnScreen(bytes, {screen}, otherwise);
    const std::optional<SavedGeometry> saved = SavedGeometry::read(placed);
    if (!saved) {
        demand(placed == bytes, "bytes in another format come back as they are");
        return;
    }
    for (const QRect& rect : {saved->frame, saved->normal, saved->rectangle})
        demand(rect.isValid() && rect.intersects(screen), "a window can be seen");
    demand(saved->bytes() == placed, "a geometry is written as it was read");
    demand(geometryOnScreen(placed, {screen}, otherwise) == placed, "a window that is in place stays there");
}

void readState(const QJsonObject& json)
{
    const ChartState state = ChartState::fromJson(json);
    demand(state.averages.size() <= ChartState::mostAverages, "there are not too many averages");
    for (const MovingAverageSpec& average : state.averages)
        demand(average.period >= 1, "an average has a period");
    const QJsonObject written = QJsonDocument::fromJson(fuzz::jsonOf(state.toJson())).object();
    demand(ChartState::fromJson(written) == state, "a chart's state comes back");
}

void readPanes(const QString& text)
{
    const std::optional<PanesLayout> panes = readPanesLayout(text);
    if (!panes)
        return;
    demand(!isLaterPanesLayout(text), "what was read is not of a later version");
    demand(readPanesLayout(panesLayoutText(*panes)) == panes, "the panes come back");
    for (const PanesLayout::Columns& columns : panes->columns) {
        for (const int width : columns.widths) {
            const int fitted = fittedColumnWidth(width, columns.fontHeight, 17);
            demand(fitted >= 0 && fitted <= 2000, "a column is no wider than a screen");
        }
    }
    readGeometry(panes->popup);
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    const QString text = fuzz::stringOf(fuzz::textOf(data, size));
    const QList<SavedChart> charts = readChartsLayout(text);
    demand(charts.size() <= 100, "there are not too many charts");
    const QList<SavedChart> again = readChartsLayout(chartsLayoutText(charts));
    demand(std::equal(charts.begin(), charts.end(), again.begin(), again.end(),
               [](const SavedChart& a, const SavedChart& b) { return areEqual(a, b); }),
        "the charts come back");
    for (const SavedChart& chart : charts) {
        readState(chart.state);
        readGeometry(chart.geometry);
    }
    readState(QJsonDocument::fromJson(text.toUtf8()).object());
    readPanes(text);
    readGeometry(fuzz::bytesOf(fuzz::textOf(data, size)));
    return 0;
}

const fuzz::Target target("layout", &attempt);

} // namespace

} // namespace fuzz_layout
