#include "lab/cli/LabProcess.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

struct LabProcess::Child {
    pid_t pid;
    int output;
    int errors;
};

namespace {

int openTerminal(std::string& otherEnd)
{
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0)
        throw std::runtime_error("no terminal");
    otherEnd = ::ptsname(master);
    return master;
}

[[noreturn]] void become(const LabProcess& process, std::vector<std::string>& words)
{
    for (const auto& [name, value] : process.environment)
        ::setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    if (::chdir(process.folder.c_str()) == 0)
        ::execvp(argv.front(), argv.data());
    ::_exit(127);
}

} // namespace

LabProcess::Child LabProcess::start(std::vector<std::string> words, bool isTerminal) const
{
    int output[2];
    int errors[2];
    std::string terminal;
    if (::pipe2(output, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    if (isTerminal) {
        errors[0] = openTerminal(terminal);
        errors[1] = ::open(terminal.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    } else if (::pipe2(errors, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    const pid_t pid = ::fork();
    if (pid < 0)
        throw std::runtime_error("no process");
    if (pid == 0) {
        const int target = outputFile.empty() ? output[1] : ::open(outputFile.c_str(), O_WRONLY);
        ::dup2(target, STDOUT_FILENO);
        ::dup2(errors[1], STDERR_FILENO);
        become(*this, words);
    }
    ::close(output[1]);
    ::close(errors[1]);
    return {pid, output[0], errors[0]};
}

LabProcess::Result LabProcess::resultOf(const Child& child, int signal, const std::string& mark)
{
    Result result;
    std::string* texts[2]{&result.output, &result.errors};
    pollfd ends[2]{{child.output, POLLIN, 0}, {child.errors, POLLIN, 0}};
    // Both at once, so that neither fills up.
    while (ends[0].fd >= 0 || ends[1].fd >= 0) {
        ::poll(ends, 2, -1);
        for (int i = 0; i < 2; ++i) {
            if (ends[i].fd < 0 || ends[i].revents == 0)
                continue;
            char chunk[4096];
            const ssize_t got = ::read(ends[i].fd, chunk, sizeof chunk);
            if (got > 0)
                texts[i]->append(chunk, static_cast<std::size_t>(got));
            else
                ends[i].fd = -1; // the end of a terminal is an error
        }
        if (signal != 0 && result.errors.find(mark) != std::string::npos)
            ::kill(child.pid, std::exchange(signal, 0));
    }
    ::close(child.output);
    ::close(child.errors);
    int status = 0;
    ::waitpid(child.pid, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

LabProcess::Result LabProcess::run(const std::vector<std::string>& arguments) const
{
    return runWithin({}, arguments);
}

LabProcess::Result LabProcess::runWithin(
    const std::vector<std::string>& other, const std::vector<std::string>& arguments) const
{
    return resultOf(start(joined(joined(other, {LAB_EXECUTABLE}), arguments), false), 0, {});
}

LabProcess::Result LabProcess::runOnTerminal(
    const std::vector<std::string>& arguments, int signal, const std::string& mark) const
{
    return resultOf(start(joined({LAB_EXECUTABLE}, arguments), true), signal, mark);
}

std::vector<std::string> joined(std::vector<std::string> words, const std::vector<std::string>& more)
{
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

bool isOneLine(const std::string& text)
{
    return text.starts_with("tavoran-lab: ") && text.find('\n') == text.size() - 1;
}
