#include "experts/ScriptLimits.h"

#include <QtGlobal>

#include <algorithm>

#include <sys/resource.h>

namespace {

/// Reading the longest regular expression that the engine takes needs between 100 and 128 MiB.
constexpr rlim_t stackSize = rlim_t{192} * 1024 * 1024;

/// Address space, used as far as need be. The engine's own 2 MiB are full after a chain of half a million
/// values, and a full one ends the program.
constexpr const char* collectorStackSize = "268435456";

void raise()
{
    // The main thread's stack grows up to the limit that is valid when it grows.
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY
        && limit.rlim_cur < stackSize) {
        limit.rlim_cur = limit.rlim_max == RLIM_INFINITY ? stackSize : std::min(limit.rlim_max, stackSize);
        setrlimit(RLIMIT_STACK, &limit);
    }
    if (!qEnvironmentVariableIsSet("QV4_GC_MAX_STACK_SIZE"))
        qputenv("QV4_GC_MAX_STACK_SIZE", collectorStackSize);
}

} // namespace

void raiseScriptLimits()
{
    [[maybe_unused]] static const bool once = [] {
        raise();
        return true;
    }();
}
