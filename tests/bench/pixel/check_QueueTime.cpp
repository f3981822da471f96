#include "pixel/QueueTime.h"

#include "practice/Check.h"

#include <fstream>
#include <string>

#include <unistd.h>

namespace {

/// What the kernel says of the first thread of this process.
std::int64_t waited()
{
    std::ifstream file("/proc/self/task/" + std::to_string(::getpid()) + "/schedstat");
    std::int64_t ran = 0;
    std::int64_t waited = -1;
    file >> ran >> waited;
    return waited;
}

TEST_CASE("the time in the queue is the kernel's figure, of all processes together")
{
    const std::int64_t own = ::getpid();
    const std::int64_t before = waited();
    if (before < 0)
        check::skip("this kernel keeps no such figures");
    const std::int64_t once = QueueTime({own}).ns();
    const std::int64_t twice = QueueTime({own, own}).ns();
    const std::int64_t after = waited();
    CHECK(once >= before);
    CHECK(twice >= 2 * before);
    CHECK(once <= after);
    CHECK(twice <= 2 * after);
}

TEST_CASE("a process that is not there has waited for nothing")
{
    CHECK_EQ(QueueTime({}).ns(), 0);
    CHECK_EQ(QueueTime({0x7fffffff}).ns(), 0);
}

} // namespace

CHECK_MAIN()
