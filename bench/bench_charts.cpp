#include "scenes/FloorChart.h"
#include "scenes/LiveChart.h"
#include "scenes/Series.h"

#include <benchmark/benchmark.h>

namespace {

constexpr QSize canvas(1600, 900);
constexpr std::size_t few = 5'000;
constexpr std::size_t many = 1'000'000;

using Frame = void (LiveChart::*)();

void live(benchmark::State& state, Frame frame, std::size_t loaded, double barWidth)
{
    LiveChart chart(canvas, loaded, barWidth);
    for ([[maybe_unused]] auto _ : state)
        (chart.*frame)();
}

void floorFrame(benchmark::State& state, double barWidth)
{
    FloorChart chart(canvas, newestOf(few), barWidth);
    int step = 0;
    for ([[maybe_unused]] auto _ : state) {
        ++step;
        chart.setPointer({200 + step % 1000, 100 + step % 600});
        chart.paint();
        benchmark::DoNotOptimize(chart.image().constBits());
    }
}

// Process time: Qt may paint on threads of its own.
BENCHMARK_CAPTURE(floorFrame, 7px, 7.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(floorFrame, 1px, 1.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, pointer_7px, &LiveChart::pointerFrame, few, 7.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, pointer_1px, &LiveChart::pointerFrame, few, 1.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, tick_7px, &LiveChart::tickFrame, few, 7.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, tick_largest_7px, &LiveChart::largestTickFrame, few, 7.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, pan_7px, &LiveChart::panFrame, few, 7.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, pan_1px, &LiveChart::panFrame, few, 1.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, pointer_7px_1000_loaded, &LiveChart::pointerFrame, 1'000, 7.0)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, pointer_7px_1000000_loaded, &LiveChart::pointerFrame, many, 7.0)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, tick_7px_1000_loaded, &LiveChart::tickFrame, 1'000, 7.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, tick_7px_1000000_loaded, &LiveChart::tickFrame, many, 7.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, pan_7px_1000_loaded, &LiveChart::panFrame, 1'000, 7.0)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(live, pan_7px_1000000_loaded, &LiveChart::panFrame, many, 7.0)->MeasureProcessCPUTime();

} // namespace
