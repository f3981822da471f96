#pragma once

#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

/// The number of a process that is no more.
inline pid_t goneProcess()
{
    const pid_t gone = ::fork();
    if (gone == 0)
        ::_exit(0);
    if (::waitpid(gone, nullptr, 0) != gone)
        throw std::runtime_error("no process can be made");
    return gone;
}

inline std::string machineName()
{
    char name[256] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? name : "";
}

/// What a process of a machine calls a file while it makes it, without an ending.
inline std::string draftName(const std::string& file, const std::string& machine, pid_t process)
{
    return '.' + file + '.' + machine + '.' + std::to_string(process);
}
