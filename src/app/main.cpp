#include "app/StartUp.h"
#include "app/base/Log.h"
#include "app/base/TerminalSettings.h"
#include "mainwindow/MainWindow.h"
#include "net/signin/LoginDialog.h"

#include <QApplication>

int main(int argc, char** argv)
{
    installMessageHandler();
    appLog(QStringLiteral("=== start ==="));
    QApplication application(argc, argv);
    return runTerminal(application,
        {
            .makeSignIn = [] { return std::make_unique<LoginDialog>(TerminalSettings::instance()); },
            .userOf = [](const QDialog& signIn) { return static_cast<const LoginDialog&>(signIn).user(); },
            .makeMainWindow = [] { return std::make_unique<MainWindow>(); },
            .setUser = [](QWidget& mainWindow,
                           const QJsonObject& user) { static_cast<MainWindow&>(mainWindow).setUser(user); },
        });
}
