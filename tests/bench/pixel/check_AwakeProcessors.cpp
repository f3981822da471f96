#include "pixel/AwakeProcessors.h"

#include "practice/Check.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr const char* device = "/dev/cpu_dma_latency";

/// How many files of this process hold the system to its word.
int holds()
{
    int found = 0;
    for (const auto& file : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        found += std::filesystem::read_symlink(file.path(), gone) == device ? 1 : 0;
    }
    return found;
}

/// What the system promises now, in microseconds, if it tells.
std::optional<std::int32_t> longestWakeUp()
{
    const int file = ::open(device, O_RDONLY | O_CLOEXEC);
    std::int32_t value = -1;
    const bool told = file >= 0 && ::read(file, &value, sizeof value) == sizeof value;
    if (file >= 0)
        ::close(file);
    return told ? std::optional(value) : std::nullopt;
}

bool mayBeWritten()
{
    const int file = ::open(device, O_WRONLY | O_CLOEXEC);
    if (file >= 0)
        ::close(file);
    return file >= 0;
}

TEST_CASE("processors are kept from sleeping for as long as it lives, or it says that they are not")
{
    const bool allowed = mayBeWritten();
    {
        const AwakeProcessors awake;
        CHECK_EQ(awake.areKept(), allowed);
        CHECK_EQ(holds(), allowed ? 1 : 0);
        CHECK(!allowed || longestWakeUp().value_or(0) == 0);
    }
    CHECK_EQ(holds(), 0);
}

} // namespace

CHECK_MAIN()
