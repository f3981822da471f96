#include "scenes/PlotChart.h"
#include "scenes/Series.h"

#include <benchmark/benchmark.h>

namespace {

using Frame = void (PlotChart::*)();

void plotFrame(benchmark::State& state, Frame frame)
{
    PlotChart plot(QSize(1600, 900), walk(5'000), 7.0);
    for ([[maybe_unused]] auto _ : state)
        (plot.*frame)();
}

BENCHMARK_CAPTURE(plotFrame, pointer_7px, &PlotChart::pointerFrame)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(plotFrame, tick_7px, &PlotChart::tickFrame)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(plotFrame, pan_7px, &PlotChart::panFrame)->MeasureProcessCPUTime();

} // namespace
