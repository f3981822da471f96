#pragma once

#include <QString>

#include <functional>

/// The calls of the update framework that we use, in the order in which it wants them. All are set,
/// or none where the framework does not exist.
struct UpdateCalls {
    std::function<void(const char* url)> setAppcastUrl;
    std::function<void(void (*callback)())> setShutdownRequestCallback;
    std::function<void(const wchar_t* company, const wchar_t* name, const wchar_t* version)> setAppDetails;
    std::function<void(int on)> setAutomaticCheck;
    std::function<void(int seconds)> setCheckInterval;
    std::function<void()> init;
    std::function<void()> cleanUp;
    std::function<void()> checkWithUi;
};

/// Looks for new versions of the terminal. Exists on Windows when its library is installed beside
/// the program; everywhere else every call does nothing.
class UpdateFramework final {
public:
    /// The one of this process.
    [[nodiscard]] static UpdateFramework& instance();

    explicit UpdateFramework(UpdateCalls calls);

    [[nodiscard]] bool isAvailable() const { return static_cast<bool>(m_calls.init); }

    /// Starts daily checks for versions newer than `version`; once, after the main window is shown.
    void setUp(const QString& version);
    /// Checks now and shows the outcome. Only after setUp().
    void checkWithUi();
    /// Ends the framework's own threads before the process quits.
    void cleanUp();

private:
    UpdateCalls m_calls;
    bool m_running = false;
};
