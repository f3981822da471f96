// What gives names to files, and takes them away.
#include "crash/disk/DiskJournal.h"
#include "crash/disk/DiskRoom.h"
#include "crash/disk/FaultyDisk.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace faultydisk;

namespace {

/// What has to do with names: rename, link, unlink, mkdir, rmdir.
template <typename Change>
int changeName(char letter, const std::string& one, const std::string& two, bool takesRoom, Change change)
{
    if (one.empty() && two.empty())
        return change();
    const std::lock_guard lock(gate());
    countOperation();
    if (takesRoom && isFullForNames()) {
        errno = ENOSPC;
        return -1;
    }
    const int result = change();
    if (result == 0)
        note(letter, 0, 0, one, two);
    return result;
}

} // namespace

EXPORTED int rename(const char* from, const char* to) noexcept
{
    static auto* const next = real<int(const char*, const char*)>("rename");
    return changeName('R', ours(AT_FDCWD, from), ours(AT_FDCWD, to), false, [&] { return next(from, to); });
}

EXPORTED int renameat2(
    int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    static auto* const next = real<int(int, const char*, int, const char*, unsigned)>("renameat2");
    return changeName('R', ours(fromFolder, from), ours(toFolder, to), false,
        [&] { return next(fromFolder, from, toFolder, to, flags); });
}

EXPORTED int link(const char* from, const char* to) noexcept
{
    static auto* const next = real<int(const char*, const char*)>("link");
    return changeName('L', ours(AT_FDCWD, from), ours(AT_FDCWD, to), true, [&] { return next(from, to); });
}

/// Also gives a name to a file that has none.
EXPORTED int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept
{
    static auto* const next = real<int(int, const char*, int, const char*, int)>("linkat");
    const auto change = [&] { return next(fromFolder, from, toFolder, to, flags); };
    int descriptor = -1;
    if (std::sscanf(from, "/proc/self/fd/%d", &descriptor) != 1)
        return changeName('L', ours(fromFolder, from), ours(toFolder, to), true, change);
    if (!isOurDescriptor(descriptor))
        return change();
    return changeName('N', ours(toFolder, to), std::to_string(descriptor), true, change);
}

EXPORTED int unlink(const char* path) noexcept
{
    static auto* const next = real<int(const char*)>("unlink");
    return changeName('U', ours(AT_FDCWD, path), {}, false, [&] { return next(path); });
}

EXPORTED int rmdir(const char* path) noexcept
{
    static auto* const next = real<int(const char*)>("rmdir");
    return changeName('X', ours(AT_FDCWD, path), {}, false, [&] { return next(path); });
}

EXPORTED int remove(const char* path) noexcept
{
    struct stat status = {};
    return ::lstat(path, &status) == 0 && S_ISDIR(status.st_mode) ? ::rmdir(path) : ::unlink(path);
}

EXPORTED int mkdir(const char* path, mode_t mode) noexcept
{
    static auto* const next = real<int(const char*, mode_t)>("mkdir");
    return changeName('M', ours(AT_FDCWD, path), {}, true, [&] { return next(path, mode); });
}
