#include "crash/disk/DiskJournal.h"

#include "crash/disk/FaultyDisk.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace faultydisk {

namespace {

int journal()
{
    static const int descriptor = [] {
        const char* path = variable("TAVORAN_DISK_JOURNAL");
        return *path ? static_cast<int>(
                   ::syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600))
                     : -1;
    }();
    return descriptor;
}

} // namespace

void note(char letter, long long first, long long second, const std::string& one, const std::string& two)
{
    if (journal() < 0)
        return;
    const std::string head = std::string(1, letter) + ' ' + std::to_string(first) + ' '
        + std::to_string(second) + ' ' + std::to_string(one.size()) + ' ' + std::to_string(two.size()) + '\n';
    const std::string line = head + one + two;
    if (::syscall(SYS_write, journal(), line.data(), line.size()) != static_cast<long>(line.size()))
        std::abort();
}

} // namespace faultydisk
