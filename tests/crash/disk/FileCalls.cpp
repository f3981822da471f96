// What opens files, and what changes the bytes in them.
#include "crash/disk/DiskJournal.h"
#include "crash/disk/DiskRoom.h"
#include "crash/disk/FaultyDisk.h"

#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

using namespace faultydisk;

namespace {

int opened(int descriptor, const std::string& path, int flags, bool wasThere)
{
    if (!follow(descriptor))
        return descriptor;
    note('O', descriptor,
        (flags & O_DIRECTORY) != 0   ? 3
            : (flags & O_TRUNC) != 0 ? 2
            : wasThere               ? 0
                                     : 1,
        path);
    return descriptor;
}

template <typename Open> int openAs(int directory, const char* name, int flags, Open open)
{
    const std::string path = ours(directory, name);
    if (path.empty())
        return open();
    const std::lock_guard lock(gate());
    struct stat status = {};
    const bool wasThere = ::stat(path.c_str(), &status) == 0;
    const bool changes = (!wasThere && (flags & O_CREAT) != 0) || (flags & O_TRUNC) != 0;
    if ((flags & O_TMPFILE) == O_TMPFILE) {
        if (isSet("TAVORAN_DISK_NAMES")) {
            errno = EOPNOTSUPP;
            return -1;
        }
        countOperation();
        const int descriptor = open();
        if (follow(descriptor))
            note('O', descriptor, 4, path);
        return descriptor;
    }
    if (changes)
        countOperation();
    if (!wasThere && (flags & O_CREAT) != 0 && isFullForNames()) {
        errno = ENOSPC;
        return -1;
    }
    return opened(open(), path, wasThere && S_ISDIR(status.st_mode) ? flags | O_DIRECTORY : flags, wasThere);
}

mode_t modeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
}

ssize_t writeAt(int descriptor, const char* bytes, std::size_t size, long long offset)
{
    static auto* const put = real<ssize_t(int, const void*, size_t)>("write");
    static auto* const putAt = real<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
    if (!isOurDescriptor(descriptor))
        return offset < 0 ? put(descriptor, bytes, size) : putAt(descriptor, bytes, size, offset);
    const std::lock_guard lock(gate());
    countOperation();
    long long place = offset;
    if (place < 0) {
        const bool append = (::fcntl(descriptor, F_GETFL) & O_APPEND) != 0;
        place = ::lseek(descriptor, 0, append ? SEEK_END : SEEK_CUR);
    }
    const std::size_t fits = takenAt(descriptor, place, size);
    if (fits == 0 && size > 0) {
        errno = ENOSPC;
        return -1;
    }
    const ssize_t count = offset < 0 ? put(descriptor, bytes, fits) : putAt(descriptor, bytes, fits, offset);
    if (count > 0)
        note('W', descriptor, place, std::string(bytes, static_cast<std::size_t>(count)));
    return count;
}

template <typename Sync> int syncAs(int descriptor, Sync sync)
{
    if (!isOurDescriptor(descriptor))
        return sync();
    const std::lock_guard lock(gate());
    countOperation();
    note('S', descriptor, 0); // the journal does not lose power, so there is nothing to wait for
    return 0;
}

template <typename Cut> int cutAs(int descriptor, long long size, Cut cut)
{
    if (!isOurDescriptor(descriptor))
        return cut();
    const std::lock_guard lock(gate());
    countOperation();
    const int result = cut();
    if (result == 0)
        note('T', descriptor, size);
    return result;
}

} // namespace

EXPORTED int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static auto* const next = real<int(const char*, int, ...)>("open");
    return openAs(AT_FDCWD, path, flags, [&] { return next(path, flags, mode); });
}

EXPORTED int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static auto* const next = real<int(const char*, int, ...)>("open64");
    return openAs(AT_FDCWD, path, flags, [&] { return next(path, flags, mode); });
}

EXPORTED int openat(int directory, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static auto* const next = real<int(int, const char*, int, ...)>("openat");
    return openAs(directory, path, flags, [&] { return next(directory, path, flags, mode); });
}

EXPORTED int openat64(int directory, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    static auto* const next = real<int(int, const char*, int, ...)>("openat64");
    return openAs(directory, path, flags, [&] { return next(directory, path, flags, mode); });
}

EXPORTED int close(int descriptor)
{
    static auto* const next = real<int(int)>("close");
    if (isOurDescriptor(descriptor)) {
        const std::lock_guard lock(gate());
        forget(descriptor);
        note('C', descriptor, 0);
    }
    return next(descriptor);
}

EXPORTED ssize_t write(int descriptor, const void* bytes, size_t size)
{
    return writeAt(descriptor, static_cast<const char*>(bytes), size, -1);
}

EXPORTED ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset)
{
    return writeAt(descriptor, static_cast<const char*>(bytes), size, offset);
}

EXPORTED ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t offset)
{
    return writeAt(descriptor, static_cast<const char*>(bytes), size, offset);
}

EXPORTED ssize_t writev(int descriptor, const struct iovec* parts, int count)
{
    static auto* const next = real<ssize_t(int, const struct iovec*, int)>("writev");
    if (!isOurDescriptor(descriptor))
        return next(descriptor, parts, count);
    std::string whole;
    for (int i = 0; i < count; ++i)
        whole.append(static_cast<const char*>(parts[i].iov_base), parts[i].iov_len);
    return writeAt(descriptor, whole.data(), whole.size(), -1);
}

EXPORTED int fsync(int descriptor)
{
    static auto* const next = real<int(int)>("fsync");
    return syncAs(descriptor, [&] { return next(descriptor); });
}

EXPORTED int fdatasync(int descriptor)
{
    static auto* const next = real<int(int)>("fdatasync");
    return syncAs(descriptor, [&] { return next(descriptor); });
}

EXPORTED int ftruncate(int descriptor, off_t size) noexcept
{
    static auto* const next = real<int(int, off_t)>("ftruncate");
    return cutAs(descriptor, size, [&] { return next(descriptor, size); });
}

EXPORTED int ftruncate64(int descriptor, off64_t size) noexcept
{
    static auto* const next = real<int(int, off64_t)>("ftruncate64");
    return cutAs(descriptor, size, [&] { return next(descriptor, size); });
}
