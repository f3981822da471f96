#include "crash/disk/DiskRoom.h"

#include "crash/disk/FaultyDisk.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace faultydisk {

namespace {

constexpr std::int64_t plenty = std::numeric_limits<std::int64_t>::max();

/// This process's own number, or the one in a file.
std::atomic_ref<std::int64_t> roomLeft()
{
    static std::int64_t own = plenty;
    static std::int64_t* const place = [] {
        const char* path = variable("TAVORAN_DISK_ROOM");
        if (!*path)
            return &own;
        const auto file = static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC, 0));
        void* const mapped
            = ::mmap(nullptr, sizeof(std::int64_t), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (mapped == MAP_FAILED)
            std::abort();
        ::syscall(SYS_close, file);
        return static_cast<std::int64_t*>(mapped);
    }();
    return std::atomic_ref(*place);
}

bool namesTakeRoom = isSet("TAVORAN_DISK_ROOM_NAMES");

/// How much of it there is room for, which is taken.
std::size_t taken(std::size_t size)
{
    const std::int64_t left = roomLeft();
    const std::int64_t fits = std::min(static_cast<std::int64_t>(size), left);
    if (left != plenty)
        roomLeft() -= fits;
    return static_cast<std::size_t>(fits);
}

} // namespace

bool isFullForNames()
{
    return namesTakeRoom && roomLeft() == 0;
}

std::size_t takenAt(int descriptor, std::int64_t place, std::size_t size)
{
    static const bool isInPlace = isSet("TAVORAN_DISK_ROOM_GROWTH");
    struct stat status = {};
    if (!isInPlace || ::fstat(descriptor, &status) != 0)
        return taken(size);
    const auto over = static_cast<std::size_t>(
        std::clamp<std::int64_t>(status.st_size - place, 0, static_cast<std::int64_t>(size)));
    return over + taken(size - over);
}

} // namespace faultydisk

/// From now on there is room for so many more bytes; with `names`, for no new file either once they are used
/// up.
EXPORTED void tavoran_disk_room(long long bytes, int names)
{
    faultydisk::roomLeft() = bytes;
    faultydisk::namesTakeRoom = names != 0;
}
