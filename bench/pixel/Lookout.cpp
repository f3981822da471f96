#include "pixel/Lookout.h"

#include <pthread.h>
#include <sched.h>
#include <sys/prctl.h>

Lookout::Lookout(std::int64_t pauseNs)
    : m_pauseNs(pauseNs)
{
    // The kernel would otherwise add up to 50 microseconds to each sleep of this thread.
    prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
}

void Lookout::goFirst()
{
    // One above the least, at which the programs that are looked at may run on a busy machine.
    sched_param low{};
    low.sched_priority = sched_get_priority_min(SCHED_FIFO) + 1;
    // A user without that right looks like anybody else, and sees in each AGO what it costs.
    static_cast<void>(pthread_setschedparam(pthread_self(), SCHED_FIFO, &low));
}

void Lookout::pause(std::int64_t ns)
{
    if (ns <= 0)
        return;
    const timespec time{ns / 1'000'000'000, ns % 1'000'000'000};
    nanosleep(&time, nullptr);
}
