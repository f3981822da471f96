#pragma once

#include <QMenu>

class ChartWindow;

/// The context menu of a chart, made anew for each opening: its check marks show the chart as it is now. The
/// keys behind the names are those of the main menu, as a reminder; they do nothing here.
class ChartMenu final : public QMenu {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartMenu)

public:
    /// The window is the parent and must outlive the menu.
    explicit ChartMenu(ChartWindow& window);
    ~ChartMenu() override;

private:
    void addTimeframes();
    void addIndicators();
    void addDrawingTools();
    void addChartTypes();
    void addView();

    ChartWindow& m_window;
};
