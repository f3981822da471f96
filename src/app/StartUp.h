#pragma once

#include "app/base/UpdateFramework.h"

#include <QJsonObject>

#include <functional>
#include <memory>

class QApplication;
class QDialog;
class QWidget;

/// The windows that the start-up sequence opens. They live in libraries above this one, so they are
/// handed in; the sequence skips a window that is not handed in.
struct StartUpWindows {
    /// The sign-in dialog.
    std::function<std::unique_ptr<QDialog>()> makeSignIn;
    /// The user record of an accepted sign-in dialog.
    std::function<QJsonObject(const QDialog& signIn)> userOf;
    /// The main window.
    std::function<std::unique_ptr<QWidget>()> makeMainWindow;
    /// Hands the user record to the main window.
    std::function<void(QWidget& mainWindow, const QJsonObject& user)> setUser;
};

/// Names, icon and layout direction of the application; before anything reads settings.
void nameApplication();

/// Everything from the theme to the end of the event loop; returns the process's exit code.
int runTerminal(QApplication& application, const StartUpWindows& windows,
    UpdateFramework& updates = UpdateFramework::instance());
