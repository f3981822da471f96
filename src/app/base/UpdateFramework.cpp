#include "app/base/UpdateFramework.h"

#include <QCoreApplication>
#include <QMetaObject>

#ifdef Q_OS_WIN
#include <QLibrary>
#endif

namespace {

constexpr const char* appcastUrl = "https://tavoran.example/desktop/appcast.xml";
constexpr int checkIntervalSeconds = 86400;

/// Called on a thread of the framework.
void requestQuit()
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), "quit", Qt::QueuedConnection);
}

#ifdef Q_OS_WIN
template <typename... Arguments>
std::function<void(Arguments...)> resolve(QLibrary& library, const char* name)
{
    using Call = void(__cdecl*)(Arguments...);
    const auto call = reinterpret_cast<Call>(library.resolve(name));
    return call ? std::function<void(Arguments...)>(call) : [](Arguments...) {};
}

UpdateCalls installedFramework()
{
    QLibrary library(QStringLiteral("WinSparkle"));
    if (!library.load())
        return {};
    UpdateCalls calls;
    calls.setAppcastUrl = resolve<const char*>(library, "win_sparkle_set_appcast_url");
    calls.setShutdownRequestCallback
        = resolve<void (*)()>(library, "win_sparkle_set_shutdown_request_callback");
    calls.setAppDetails
        = resolve<const wchar_t*, const wchar_t*, const wchar_t*>(library, "win_sparkle_set_app_details");
    calls.setAutomaticCheck = resolve<int>(library, "win_sparkle_set_automatic_check_for_updates");
    calls.setCheckInterval = resolve<int>(library, "win_sparkle_set_update_check_interval");
    calls.init = resolve<>(library, "win_sparkle_init");
    calls.cleanUp = resolve<>(library, "win_sparkle_cleanup");
    calls.checkWithUi = resolve<>(library, "win_sparkle_check_update_with_ui");
    return calls;
}
#else
UpdateCalls installedFramework()
{
    return {};
}
#endif

} // namespace

UpdateFramework& UpdateFramework::instance()
{
    static UpdateFramework framework(installedFramework());
    return framework;
}

UpdateFramework::UpdateFramework(UpdateCalls calls)
    : m_calls(std::move(calls))
{
}

void UpdateFramework::setUp(const QString& version)
{
    if (!isAvailable() || m_running)
        return;
    m_calls.setAppcastUrl(appcastUrl);
    m_calls.setShutdownRequestCallback(requestQuit);
    m_calls.setAppDetails(L"Tavoran", L"Tavoran Terminal", version.toStdWString().c_str());
    m_calls.setAutomaticCheck(1);
    m_calls.setCheckInterval(checkIntervalSeconds);
    m_calls.init();
    m_running = true;
}

void UpdateFramework::checkWithUi()
{
    if (m_running)
        m_calls.checkWithUi();
}

void UpdateFramework::cleanUp()
{
    if (!std::exchange(m_running, false))
        return;
    m_calls.cleanUp();
}
