#include "pixel/OwnProcessors.h"

#include <filesystem>
#include <string>

#include <sched.h>

namespace {

bool keep(std::int64_t process, const cpu_set_t& processors)
{
    std::error_code error;
    const std::string tasks = "/proc/" + std::to_string(process) + "/task";
    for (std::filesystem::directory_iterator task(tasks, error), last; !error && task != last;
         task.increment(error)) {
        const pid_t thread = std::stoi(task->path().filename().string());
        if (sched_setaffinity(thread, sizeof processors, &processors) != 0)
            return false;
    }
    return !error;
}

} // namespace

bool ownprocessors::separate(std::int64_t program, const std::vector<std::int64_t>& others)
{
    cpu_set_t first;
    if (sched_getaffinity(0, sizeof first, &first) != 0 || CPU_COUNT(&first) < 2)
        return false;
    int last = CPU_SETSIZE - 1;
    while (!CPU_ISSET(last, &first))
        --last;
    CPU_CLR(last, &first);
    cpu_set_t alone;
    CPU_ZERO(&alone);
    CPU_SET(last, &alone);
    bool isKept = keep(program, first);
    for (const std::int64_t other : others)
        isKept = keep(other, alone) && isKept;
    return isKept;
}
