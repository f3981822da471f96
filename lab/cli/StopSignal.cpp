#include "lab/cli/StopSignal.h"

#include "lab/cli/Screen.h"

#include <csignal>

namespace lab {

namespace {

std::atomic<bool> stopWanted{false};
std::atomic<int> stoppedBy{0};
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void onSignal(int number)
{
    stoppedBy = number;
    stopWanted = true;
}

} // namespace

void watchStopSignals()
{
    struct sigaction action { };
    action.sa_handler = onSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM})
        sigaction(number, &action, nullptr);
}

const std::atomic<bool>& stopFlag()
{
    return stopWanted;
}

int stopStatus()
{
    const int number = stoppedBy;
    return number == 0 ? 0 : 128 + number;
}

int stopStatusAtOnce()
{
    const int status = stopStatus();
    if (status != 0)
        tellError("stopped before the first run; nothing was written");
    return status;
}

} // namespace lab
