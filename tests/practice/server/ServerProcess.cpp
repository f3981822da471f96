#include "practice/server/ServerProcess.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

struct Child {
    pid_t pid;
    int output;
    int errors;
};

Child start(const std::vector<std::string>& arguments)
{
    int output[2];
    int errors[2];
    if (::pipe2(output, O_CLOEXEC) != 0 || ::pipe2(errors, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors[1], STDERR_FILENO);
    std::vector<std::string> words{PRACTICE_EXECUTABLE};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    Child child{-1, output[0], errors[0]};
    const int failed
        = ::posix_spawn(&child.pid, PRACTICE_EXECUTABLE, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(output[1]);
    ::close(errors[1]);
    if (failed != 0)
        throw std::runtime_error("cannot start " PRACTICE_EXECUTABLE);
    return child;
}

std::string readAll(int descriptor)
{
    std::string text;
    char chunk[4096];
    for (ssize_t got = 0; (got = ::read(descriptor, chunk, sizeof chunk)) > 0;)
        text.append(chunk, static_cast<std::size_t>(got));
    ::close(descriptor);
    return text;
}

int exitCodeOf(pid_t pid)
{
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Neither text is long enough to fill a pipe.
ServerProcess::Result resultOf(const Child& child)
{
    ServerProcess::Result result;
    result.output = readAll(child.output);
    result.errors = readAll(child.errors);
    result.exitCode = exitCodeOf(child.pid);
    return result;
}

} // namespace

ServerProcess::ServerProcess(const std::string& database, std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), {"--quiet", "--port", "0", "--db", database});
    const Child child = start(arguments);
    m_pid = child.pid;
    m_output = child.output;
    std::string line;
    char byte = 0;
    while (::read(m_output, &byte, 1) == 1 && byte != '\n')
        line.push_back(byte);
    const std::string prefix = "Listening on http://127.0.0.1:";
    if (line.rfind(prefix, 0) != 0) {
        ::kill(m_pid, SIGKILL);
        const std::string reason = readAll(child.errors);
        exitCodeOf(m_pid);
        ::close(m_output);
        throw std::runtime_error("the server did not start: " + line + reason);
    }
    // What it complains about later goes nowhere; a full pipe must not hold it up.
    ::close(child.errors);
    m_port = static_cast<std::uint16_t>(std::stoi(line.substr(prefix.size())));
}

ServerProcess::~ServerProcess()
{
    kill();
    ::close(m_output);
}

void ServerProcess::kill()
{
    terminate(SIGKILL);
}

int ServerProcess::terminate(int signal)
{
    if (m_pid < 0)
        return -1;
    ::kill(m_pid, signal);
    const int code = exitCodeOf(m_pid);
    m_pid = -1;
    return code;
}

ServerProcess::Result ServerProcess::run(const std::vector<std::string>& arguments)
{
    return resultOf(start(arguments));
}

ServerProcess::Result ServerProcess::interrupt(
    const std::vector<std::string>& arguments, int signal, const std::function<bool()>& isTime)
{
    const Child child = start(arguments);
    const auto hasEnded = [&] {
        siginfo_t info{};
        ::waitid(P_PID, static_cast<id_t>(child.pid), &info, WEXITED | WNOHANG | WNOWAIT);
        return info.si_pid != 0;
    };
    while (!isTime() && !hasEnded())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ::kill(child.pid, signal);
    return resultOf(child);
}
