#include "app/StartUp.h"

#include "app/PublicSettings.h"
#include "app/base/Log.h"
#include "app/base/TerminalSettings.h"
#include "app/base/Translations.h"
#include "app/ui/Banner.h"
#include "app/ui/EnterPress.h"
#include "app/ui/FocusMark.h"
#include "app/ui/MenuKey.h"
#include "app/ui/MenuLetters.h"
#include "app/ui/Theme.h"

#include <QApplication>
#include <QDialog>
#include <QLocale>
#include <QSplashScreen>
#include <QSslConfiguration>
#include <QThreadPool>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

/// Loading the encryption library takes as long as building half of the main window, whose feed client asks
/// for it even on a plain connection.
void loadEncryptionMeanwhile()
{
    QThreadPool::globalInstance()->start([] { (void)QSslConfiguration::defaultConfiguration(); });
}

/// Runs the sign-in dialog; false when it was cancelled.
bool signIn(QSplashScreen& splash, QDialog& dialog)
{
    // finish() waits for the dialog to appear, which it does only once its own event loop runs.
    QTimer::singleShot(0, &dialog, [&] {
        splash.finish(&dialog);
        loadEncryptionMeanwhile();
    });
    const int result = dialog.exec();
    // A trader who leaves at once must not end the application while the library is still being loaded.
    QThreadPool::globalInstance()->waitForDone();
    appLog(u"login.exec() returned %1"_s.arg(result));
    return result == QDialog::Accepted;
}

std::unique_ptr<QWidget> openMainWindow(const StartUpWindows& windows, const QJsonObject& user)
{
    if (!windows.makeMainWindow)
        return nullptr;
    std::unique_ptr<QWidget> window = windows.makeMainWindow();
    appLog(u"MainWindow constructed"_s);
    windows.setUser(*window, user);
    appLog(u"setUser done"_s);
    window->show();
    return window;
}

} // namespace

void nameApplication()
{
    QCoreApplication::setOrganizationName(u"Tavoran"_s);
    QCoreApplication::setApplicationName(u"Tavoran Terminal"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(TAVORAN_VERSION));
    QGuiApplication::setDesktopFileName(u"com.tavoran.Terminal"_s);
    QApplication::setWindowIcon(appIcon());
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

int runTerminal(QApplication& application, const StartUpWindows& windows, UpdateFramework& updates)
{
    nameApplication();
    const Translations translations(QLocale::system().uiLanguages());
    applyTheme(application);
    const FocusMark focusMark(application);
    const MenuKey menuKey(application);
    const MenuLetters menuLetters(application);
    const EnterPress enterPress(application);
    appLog(u"theme applied: %1"_s.arg(isDarkTheme() ? "dark"_L1 : "light"_L1));

    // The splash screen and the sign-in dialog are no reason to end.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    std::unique_ptr<QWidget> mainWindow;
    {
        QSplashScreen splash(renderSplash());
        splash.show();
        QCoreApplication::processEvents();
        TerminalSettings& settings = TerminalSettings::instance();
        adoptPublicSettings(settings);

        QJsonObject user;
        const std::unique_ptr<QDialog> dialog = windows.makeSignIn ? windows.makeSignIn() : nullptr;
        if (dialog) {
            if (!signIn(splash, *dialog))
                return 0;
            // The e-mail address and the choice must last even if this run ends badly.
            settings.sync();
            user = windows.userOf(*dialog);
        }
        mainWindow = openMainWindow(windows, user);
    }
    QGuiApplication::setQuitOnLastWindowClosed(true);

    updates.setUp(QCoreApplication::applicationVersion());
    const QObject thisRun;
    QObject::connect(
        &application, &QCoreApplication::aboutToQuit, &thisRun, [&updates] { updates.cleanUp(); });

    appLog(u"entering app.exec()"_s);
    const int exitCode = QApplication::exec();
    appLog(u"app.exec() returned %1"_s.arg(exitCode));
    return exitCode;
}
