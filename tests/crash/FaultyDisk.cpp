// To be preloaded: a disk that is full, that loses power, or whose user is killed. What the program does to
// files below TAVORAN_DISK is
//   - written down in TAVORAN_DISK_JOURNAL, one operation after the other, so that power_loss.py can work out
//   what
//     a disk may hold when the power goes after any of them;
//   - counted: before operation number TAVORAN_DISK_KILL the program kills itself;
//   - refused with ENOSPC when there is no room left, see tavoran_disk_room(), or TAVORAN_DISK_ROOM: a file
//   of
//     eight bytes with the number of those that still fit, which others may change at any time. With
//     TAVORAN_DISK_ROOM_NAMES=1 names take room as well, and with TAVORAN_DISK_ROOM_GROWTH=1 bytes take none
//     that are written over others, as on a disk that writes them in place.
// With TAVORAN_DISK_NAMES=1 every file has a name from the start, as where O_TMPFILE is not known.
// Only what goes through the named functions of the C library is seen: streams of stdio and mapped files are
// not.

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <limits>
#include <mutex>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

constexpr int watched = 4096; ///< descriptors above are not followed
bool isOurs[watched];

std::recursive_mutex& gate()
{
    static auto* mutex = new std::recursive_mutex; // outlives whatever writes at the end
    return *mutex;
}

const char* variable(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// Empty in what this process forks and starts, whose descriptors are others.
const std::string& folder()
{
    static const std::string* const value = [] {
        auto* const read = new std::string(variable("TAVORAN_DISK"));
        ::unsetenv("TAVORAN_DISK");
        return read;
    }();
    static const pid_t process = ::getpid();
    static const auto* const none = new std::string;
    return ::getpid() == process ? *value : *none;
}

__attribute__((constructor)) void readFolder()
{
    static_cast<void>(folder());
}

template <typename Function> Function* real(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// The path from the root; empty when it is none of ours.
std::string ours(int directory, const char* path)
{
    if (!path || folder().empty())
        return {};
    std::string whole = path;
    if (whole.empty() || whole[0] != '/') {
        char base[4096];
        const std::string link
            = directory == AT_FDCWD ? "/proc/self/cwd" : "/proc/self/fd/" + std::to_string(directory);
        const ssize_t size = ::readlink(link.c_str(), base, sizeof base);
        if (size <= 0)
            return {};
        whole = std::string(base, static_cast<std::size_t>(size)) + '/' + whole;
    }
    for (std::size_t at = 0; (at = whole.find("/./", at)) != std::string::npos;)
        whole.erase(at, 2);
    for (std::size_t at = 0; (at = whole.find("//", at)) != std::string::npos;)
        whole.erase(at, 1);
    while (whole.size() > 1 && whole.back() == '/')
        whole.pop_back();
    if (whole != folder() && !whole.starts_with(folder() + '/'))
        return {};
    return whole;
}

bool isOurDescriptor(int descriptor)
{
    return descriptor >= 0 && descriptor < watched && isOurs[descriptor] && !folder().empty();
}

// --- being killed

long killAt = -1;
long operations = 0;

void countOperation()
{
    if (killAt < 0)
        killAt = std::atol(variable("TAVORAN_DISK_KILL"));
    if (++operations == killAt)
        ::kill(::getpid(), SIGKILL);
}

// --- a full disk

constexpr std::int64_t plenty = std::numeric_limits<std::int64_t>::max();

bool isSet(const char* name)
{
    return *variable(name) == '1';
}

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

bool isFullForNames()
{
    return namesTakeRoom && roomLeft() == 0;
}

/// How much of it there is room for, which is taken.
std::size_t taken(std::size_t size)
{
    const std::int64_t left = roomLeft();
    const std::int64_t fits = std::min(static_cast<std::int64_t>(size), left);
    if (left != plenty)
        roomLeft() -= fits;
    return static_cast<std::size_t>(fits);
}

/// The same of bytes that are to be written at a place in a file.
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

// --- the journal: for each operation a line "LETTER NUMBER NUMBER SIZE SIZE", then so many bytes, twice

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

void note(
    char letter, long long first, long long second, const std::string& one = {}, const std::string& two = {})
{
    if (journal() < 0)
        return;
    const std::string head = std::string(1, letter) + ' ' + std::to_string(first) + ' '
        + std::to_string(second) + ' ' + std::to_string(one.size()) + ' ' + std::to_string(two.size()) + '\n';
    const std::string line = head + one + two;
    if (::syscall(SYS_write, journal(), line.data(), line.size()) != static_cast<long>(line.size()))
        std::abort();
}

int opened(int descriptor, const std::string& path, int flags, bool wasThere)
{
    if (descriptor < 0 || descriptor >= watched)
        return descriptor;
    isOurs[descriptor] = true;
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
        if (descriptor >= 0 && descriptor < watched) {
            isOurs[descriptor] = true;
            note('O', descriptor, 4, path);
        }
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

ssize_t write(int descriptor, const char* bytes, std::size_t size, long long offset)
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

/// From now on there is room for so many more bytes; with `names`, for no new file either once they are used
/// up.
EXPORTED void tavoran_disk_room(long long bytes, int names)
{
    roomLeft() = bytes;
    namesTakeRoom = names != 0;
}

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
        isOurs[descriptor] = false;
        note('C', descriptor, 0);
    }
    return next(descriptor);
}

EXPORTED ssize_t write(int descriptor, const void* bytes, size_t size)
{
    return write(descriptor, static_cast<const char*>(bytes), size, -1);
}

EXPORTED ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset)
{
    return write(descriptor, static_cast<const char*>(bytes), size, offset);
}

EXPORTED ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t offset)
{
    return write(descriptor, static_cast<const char*>(bytes), size, offset);
}

EXPORTED ssize_t writev(int descriptor, const struct iovec* parts, int count)
{
    static auto* const next = real<ssize_t(int, const struct iovec*, int)>("writev");
    if (!isOurDescriptor(descriptor))
        return next(descriptor, parts, count);
    std::string whole;
    for (int i = 0; i < count; ++i)
        whole.append(static_cast<const char*>(parts[i].iov_base), parts[i].iov_len);
    return write(descriptor, whole.data(), whole.size(), -1);
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
