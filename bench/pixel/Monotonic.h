#pragma once

#include <cstdint>
#include <ctime>

/// CLOCK_MONOTONIC in nanoseconds: the same for every process of the machine, so that whoever sends a price
/// and whoever sees it can be two. Python's time.monotonic_ns() and Node's process.hrtime.bigint() tell it
/// too.
inline std::int64_t monotonicNs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

inline double inMs(std::int64_t ns)
{
    return static_cast<double>(ns) / 1e6;
}
