#include "chart/window/ChartMenu.h"

#include "chart/data/IndicatorTable.h"
#include "chart/series/Timeframe.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

QAction* addCheckable(QMenu& menu, const QString& text, bool checked)
{
    QAction* action = menu.addAction(text);
    action->setCheckable(true);
    action->setChecked(checked);
    return action;
}

} // namespace

ChartMenu::ChartMenu(ChartWindow& window)
    : QMenu(&window)
    , m_window(window)
{
    connect(addCheckable(*this, tr("One Click Trading"), m_window.oneClickTrading()), &QAction::triggered,
        &m_window, &ChartWindow::setOneClickTrading);
    addTimeframes();
    addIndicators();
    addDrawingTools();
    addChartTypes();
    addView();
}

ChartMenu::~ChartMenu() = default;

void ChartMenu::addTimeframes()
{
    QMenu& menu = *addMenu(tr("Timeframes"));
    for (const QString& key : timeframeKeys()) {
        connect(addCheckable(menu, timeframeLabel(key), key == m_window.timeframe()), &QAction::triggered,
            this, [this, key] { m_window.setTimeframe(key); });
    }
}

void ChartMenu::addIndicators()
{
    QMenu& menu = *addMenu(tr("Indicators"));
    for (const IndicatorRow& row : indicatorTable()) {
        if (row.pane) {
            const QString text = tr("%1 (%2)", "indicator: name and period")
                                     .arg(row.label, QString::number(row.usualPeriod));
            connect(addCheckable(menu, text, m_window.chart().pane(row.kind).shown), &QAction::triggered,
                this, [this, kind = row.kind](bool on) { m_window.showPane(kind, on); });
        } else {
            //: %1 an indicator, whose period is asked for
            connect(menu.addAction(tr("%1...").arg(indicatorText(row.command))), &QAction::triggered, this,
                [this, kind = row.kind] { m_window.addIndicator(kind); });
        }
    }
    menu.addSeparator();
    if (!m_window.chart().movingAverages().isEmpty()) {
        connect(menu.addAction(tr("Remove All Moving Averages")), &QAction::triggered, &m_window,
            &ChartWindow::removeMovingAverages);
    }
}

void ChartMenu::addDrawingTools()
{
    struct Tool {
        QString text;
        QString key;
    };
    const std::array<Tool, 5> tools{{
        {tr("Horizontal Line"), u"hline"_s},
        {tr("Vertical Line"), u"vline"_s},
        {tr("Trend Line"), u"trendline"_s},
        {tr("Rectangle"), u"rectangle"_s},
        {tr("Fibonacci Retracement"), u"fibonacci"_s},
    }};
    QMenu& menu = *addMenu(tr("Objects"));
    for (const Tool& tool : tools) {
        connect(menu.addAction(tool.text), &QAction::triggered, this,
            [this, key = tool.key] { m_window.setTool(key); });
    }
    menu.addSeparator();
    connect(menu.addAction(tr("Delete Selected")), &QAction::triggered, &m_window,
        &ChartWindow::deleteSelectedDrawing);
}

void ChartMenu::addChartTypes()
{
    QMenu& menu = *addMenu(tr("Chart Type"));
    int type = 0;
    for (const QString& text : {tr("Candlesticks"),
             //: a type of chart
             tr("Bars"),
             //: a type of chart
             tr("Line")}) {
        connect(addCheckable(menu, text, type == m_window.chart().chartType()), &QAction::triggered, this,
            [this, type] { m_window.setChartType(type); });
        ++type;
    }
}

void ChartMenu::addView()
{
    addSeparator();
    connect(addCheckable(*this, tr("Auto Scroll"), m_window.chart().autoScroll()), &QAction::triggered,
        &m_window, &ChartWindow::setAutoScroll);
    connect(addCheckable(*this, tr("Chart Shift"), m_window.chart().chartShift()), &QAction::triggered,
        &m_window, &ChartWindow::setChartShift);
    addSeparator();
    connect(addAction(tr("Zoom In\t+")), &QAction::triggered, &m_window, &ChartWindow::zoomIn);
    connect(addAction(tr("Zoom Out\t-")), &QAction::triggered, &m_window, &ChartWindow::zoomOut);
    connect(addAction(tr("Refresh")), &QAction::triggered, &m_window, &ChartWindow::reload);
    connect(
        addAction(tr("Data Window\tCtrl+D")), &QAction::triggered, &m_window, &ChartWindow::showDataWindow);
    addSeparator();
    connect(addAction(tr("Properties...\tF8")), &QAction::triggered, &m_window, &ChartWindow::showProperties);
    connect(addAction(tr("Specification...")), &QAction::triggered, &m_window,
        &ChartWindow::requestSpecification);
}
