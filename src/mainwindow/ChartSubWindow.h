#pragma once

#include <QMdiSubWindow>

/// One chart in the chart area; deleted when it is closed. The keyboard stays with the chart while the window
/// changes its size or another window comes to the front; Tab leaves it for the rest of the main window.
class ChartSubWindow final : public QMdiSubWindow {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartSubWindow)

public:
    /// Takes the chart.
    explicit ChartSubWindow(QWidget& chart);
    ~ChartSubWindow() override = default;

protected:
    bool focusNextPrevChild(bool next) override;
};
