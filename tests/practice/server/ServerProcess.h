#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

/// The real executable, run on a database of the test's choice and a free port.
class ServerProcess final {
public:
    struct Result {
        int exitCode = -1; ///< -1 when a signal ended it
        std::string output;
        std::string errors;
    };

    /// Starts `--port 0 --db database` plus the arguments and waits until it listens. Throws, with what it
    /// wrote to stderr, when it ends instead.
    explicit ServerProcess(const std::string& database, std::vector<std::string> arguments = {});
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    [[nodiscard]] std::uint16_t port() const { return m_port; }
    [[nodiscard]] pid_t pid() const { return m_pid; }
    /// Ends it without warning.
    void kill();
    /// Asks it to end and returns its exit code; -1 when a signal ended it.
    int terminate(int signal);

    /// Runs the executable with exactly these arguments until it ends by itself.
    [[nodiscard]] static Result run(const std::vector<std::string>& arguments);
    /// Runs it like this and sends it a signal as soon as it is time, however far it is.
    [[nodiscard]] static Result interrupt(
        const std::vector<std::string>& arguments, int signal, const std::function<bool()>& isTime);

private:
    pid_t m_pid = -1;
    int m_output = -1;
    std::uint16_t m_port = 0;
};
