#pragma once

#include <QObject>

class QWidget;
class TerminalActions;

/// Opens files and folders with the desktop's own programs.
class DesktopLinks final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DesktopLinks)

public:
    using QObject::QObject;
    ~DesktopLinks() override = default;

    /// Listens to the actions that open something, and to the key for help in a window.
    void serve(const TerminalActions& actions, QWidget& window);

    /// Where openGuide() puts the guide for the browser.
    [[nodiscard]] static QString guidePath();

public Q_SLOTS:
    /// The folder of Expert Advisor scripts, created if need be.
    void openExpertsFolder();
    /// Writes the guide out of the program into a file, which replaces that of an earlier version, and
    /// opens it.
    void openGuide();

Q_SIGNALS:
    /// Something could not be opened.
    void logMessage(const QString& source, const QString& message);

private:
    void open(const QString& path);
};
