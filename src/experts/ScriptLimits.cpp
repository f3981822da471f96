#include "experts/ScriptLimits.h"

#include <QByteArray>
#include <QtGlobal>

#include <algorithm>

#include <sys/resource.h>

namespace {

/// Reading the longest regular expression that the engine takes needs between 100 and 128 MiB.
constexpr rlim_t stackSize = rlim_t{192} * 1024 * 1024;

/// Address space, of which only what is needed is used. The engine's default of 2 MiB is full after a chain
/// of half a million values, which ends the program.
constexpr const char* collectorStackSize = "268435456";

void raise()
{
    // The limit counts at the moment when the main thread's stack grows, so it can be raised now.
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
