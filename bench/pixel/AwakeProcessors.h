#pragma once

/// Keeps processors from going to sleep as long as it lives, where the system lets it (root may). One that
/// sleeps takes its time to wake: a virtual one waits for its host, which lies in the measured times and says
/// nothing of the program.
class AwakeProcessors final {
public:
    AwakeProcessors();
    ~AwakeProcessors();
    AwakeProcessors(const AwakeProcessors&) = delete;
    AwakeProcessors& operator=(const AwakeProcessors&) = delete;

    /// Whether the system has agreed.
    [[nodiscard]] bool areKept() const { return m_file >= 0; }

private:
    int m_file = -1;
};
