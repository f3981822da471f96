#include "crash/disk/FaultyDisk.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace faultydisk {

namespace {

constexpr int watched = 4096; ///< descriptors above are not followed
bool isOurs[watched];

long killAt = -1;
long operations = 0;

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

} // namespace

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

bool isSet(const char* name)
{
    return *variable(name) == '1';
}

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

bool follow(int descriptor)
{
    if (descriptor < 0 || descriptor >= watched)
        return false;
    isOurs[descriptor] = true;
    return true;
}

void forget(int descriptor)
{
    isOurs[descriptor] = false;
}

void countOperation()
{
    if (killAt < 0)
        killAt = std::atol(variable("TAVORAN_DISK_KILL"));
    if (++operations == killAt)
        ::kill(::getpid(), SIGKILL);
}

} // namespace faultydisk
