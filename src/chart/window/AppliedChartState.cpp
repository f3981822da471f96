// Apart from ChartState.cpp, so that the text of a state can be read without a widget.

#include "chart/window/ChartState.h"
#include "chart/window/ChartWidget.h"

ChartState ChartState::of(const ChartWidget& chart)
{
    ChartState state;
    state.averages = chart.movingAverages();
    state.panes = chart.panes();
    state.chartType = chart.chartType();
    state.chartShift = chart.chartShift();
    state.autoScroll = chart.autoScroll();
    state.colors = chart.colors();
    return state;
}

void ChartState::applyTo(ChartWidget& chart) const
{
    chart.setMovingAverages(averages);
    for (const IndicatorPane& pane : panes)
        chart.setPane(pane.kind, pane.shown, pane.period);
    if (chartType)
        chart.setChartType(*chartType);
    if (chartShift)
        chart.setChartShift(*chartShift);
    if (autoScroll)
        chart.setAutoScroll(*autoScroll);
    chart.setColors(colors);
}
