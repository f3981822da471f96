#include "pixel/WakeSampler.h"

#include "practice/Check.h"

#include <sys/prctl.h>
#include <unistd.h>

namespace {

TEST_CASE("a thread that wakes ten times is found to have done so, under its name")
{
    std::vector<Wake> wakes;
    std::thread sleeper([&wakes] {
        WakeSampler sampler(getpid());
        prctl(PR_SET_NAME, "sleeper"); // now, since the sampler's thread would be called the same
        const timespec pause{0, 20'000'000};
        for (int i = 0; i < 10; ++i)
            nanosleep(&pause, nullptr);
        wakes = sampler.finish();
    });
    sleeper.join();
    int found = 0;
    for (const Wake& wake : wakes) {
        if (wake.thread == "sleeper" && !wake.mainThread)
            found += wake.count;
    }
    CHECK(found >= 9);
    CHECK(found <= 12);
}

TEST_CASE("a process that is not there does not wake")
{
    WakeSampler sampler(0x7fffffff);
    CHECK(sampler.finish().empty());
}

} // namespace

CHECK_MAIN()
