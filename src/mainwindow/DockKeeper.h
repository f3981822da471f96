#pragma once

#include <QByteArray>
#include <QObject>
#include <QTimer>

class QDockWidget;
class QMainWindow;
class TerminalSettings;
class QWidget;

/// Owns the arrangement of the main window's docks: builds the default one, remembers the last one
/// that looked right, repairs it after the window comes back from the task bar (docks can collapse to
/// nothing there), and restores and stores it together with the window's geometry.
class DockKeeper final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DockKeeper)

public:
    /// Adds three empty docks to the window, which is also the keeper's parent. The docks are made before the
    /// panes, so that panes can be made as children of their docks: under a style sheet, a change of parent
    /// styles everything in a widget anew. The settings must outlive the keeper.
    DockKeeper(QMainWindow& window, TerminalSettings& settings);
    ~DockKeeper() override;

    [[nodiscard]] QDockWidget& marketWatchDock() const { return *m_marketWatch; }
    [[nodiscard]] QDockWidget& navigatorDock() const { return *m_navigator; }
    [[nodiscard]] QDockWidget& toolboxDock() const { return *m_toolbox; }

    /// Puts the panes into their docks. Call once.
    void setPanes(QWidget& marketWatch, QWidget& navigator, QWidget& toolbox);
    /// From now on remembers the docks once a second.
    void startSnapshots();
    /// Brings geometry and docks back from the settings. A damaged state, or a restoring that an
    /// earlier run never finished, leaves the default arrangement; returns a text about it for a
    /// person, else nothing.
    [[nodiscard]] QString restoreFromSettings();
    /// Whether the window has a place from an earlier run.
    [[nodiscard]] bool hasRestoredGeometry() const { return m_geometryRestored; }
    /// Call when the window has been shown: what was restored has proved harmless.
    void confirmRestored();
    /// Writes geometry and docks to the settings; the caller syncs them.
    void storeInSettings() const;

public Q_SLOTS:
    void restoreDefault();
    /// Remembers the docks, unless they are hidden, floating or collapsed.
    void takeSnapshot();
    /// Repairs now and twice more a little later, when the window system has settled.
    void scheduleRepair();
    void repair();

private:
    QDockWidget* addDock(const QString& title, const QString& name, Qt::DockWidgetArea area);
    void restoreGeometry(const QByteArray& geometry);

    QMainWindow& m_window;
    TerminalSettings& m_settings;
    QDockWidget* m_marketWatch;
    QDockWidget* m_navigator;
    QDockWidget* m_toolbox;
    QTimer m_snapshotTimer{this};
    QByteArray m_lastGoodState;
    int m_lastGoodWidth = 0;
    int m_lastGoodHeight = 0;
    bool m_restoring = false;
    bool m_geometryRestored = false;
};
