#include "scenes/LabBars.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

namespace {

std::size_t bars = 1'000'000;

} // namespace

std::size_t labBars()
{
    return bars;
}

/// tavoran-bench-lab [--benchmark_…] [MINUTES]
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (argc > 1)
        bars = QByteArray(argv[1]).toULongLong();
    if (argc > 2 || bars < 1'000)
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
