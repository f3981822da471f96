#pragma once

#include <QObject>
#include <QPointer>

class QMessageBox;
class QWidget;
class TerminalActions;

/// Opens files and folders with the desktop's own programs. What could not be opened is told in a box that
/// leaves the rest of the terminal at hand, and in the Journal.
class DesktopLinks final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DesktopLinks)

public:
    /// `window` becomes the parent, of this object and of the box.
    explicit DesktopLinks(QWidget& window);
    ~DesktopLinks() override = default;

    /// Listens to the actions that open something, and to the window's key for help.
    void serve(const TerminalActions& actions);

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
    void tellFailure(const QString& text);

    QWidget& m_window;
    QPointer<QMessageBox> m_notice; ///< until it is closed
};
