#pragma once

#include "app/base/LineKind.h"
#include "app/ui/SoundPlayer.h"
#include "mainwindow/TrayIcon.h"

#include <QObject>

class TerminalPane;
class TerminalSettings;

/// Takes what the collaborators report to where it belongs: lines to the Journal and the Experts tab, sounds,
/// and balloons.
class Reports final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Reports)

public:
    /// All must outlive it. Without a tray balloons are dropped.
    Reports(TerminalPane& toolbox, TerminalSettings& settings, TrayIcon* tray, QObject* parent = nullptr);
    ~Reports() override;

    /// Listens to these signals of a collaborator. The arguments of a signal tell which kind of report it is.
    template <typename Reporter, typename... Signals>
    void follow(const Reporter& reporter, Signals... signalsOfIt)
    {
        (listen(reporter, signalsOfIt), ...);
    }
    /// Writes the notices of the settings to the Journal.
    void followSettings();

public Q_SLOTS:
    /// A line for the Journal tab and the log file.
    void journal(const QString& source, const QString& message);
    /// A line for the Experts tab; a failure is one for the log file too.
    void expert(const QString& source, const QString& message, LineKind kind);

private:
    template <typename Reporter>
    void listen(const Reporter& reporter, void (Reporter::*line)(const QString&, const QString&))
    {
        connect(&reporter, line, this, &Reports::journal);
    }
    template <typename Reporter>
    void listen(const Reporter& reporter, void (Reporter::*line)(const QString&, const QString&, LineKind))
    {
        connect(&reporter, line, this, &Reports::expert);
    }
    template <typename Reporter> void listen(const Reporter& reporter, void (Reporter::*sound)(SoundKind))
    {
        connect(&reporter, sound, this, &play);
    }
    template <typename Reporter>
    void listen(const Reporter& reporter, void (Reporter::*balloon)(const Balloon&))
    {
        if (m_tray)
            connect(&reporter, balloon, m_tray, &TrayIcon::showBalloon);
    }

    TerminalPane& m_toolbox;
    TerminalSettings& m_settings;
    TrayIcon* m_tray;
};
