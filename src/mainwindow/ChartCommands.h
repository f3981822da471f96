#pragma once

#include <QObject>
#include <QPointer>

class ChartArea;
class ChartWindow;
class TerminalActions;

/// Carries the commands that act on charts to the active chart, and shows its truth in their check marks:
/// type, timeframe, scrolling, shift, tool and ruler. Tells what its tool waits for.
class ChartCommands final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartCommands)

public:
    /// Actions and area must outlive it.
    ChartCommands(TerminalActions& actions, ChartArea& charts, QObject* parent);
    ~ChartCommands() override;

public Q_SLOTS:
    /// Adds an indicator, by its key, to the active chart; see ChartWindow::addIndicator().
    void addIndicator(const QString& key);
    /// Call when another chart, or none, has become the active one.
    void followActiveChart();

Q_SIGNALS:
    void logMessage(const QString& source, const QString& message);
    /// What the next click on the active chart does; empty when that is nothing special. Comes with each
    /// change of what the check marks show, too.
    void hintChanged(const QString& hint);

private:
    void connectIndicators();
    void connectPointers();
    void connectView();
    void connectWindows();
    /// Runs `command` on the active chart whenever the action is triggered. The check marks then show what
    /// the chart has become, whatever came of the command.
    template <typename Command> void onTriggered(const class QAction* action, Command command);
    void choosePointer(ChartWindow& chart, const QString& tool, bool ruler);
    void showTruth();

    TerminalActions& m_actions;
    ChartArea& m_charts;
    QPointer<ChartWindow> m_followed;
};
