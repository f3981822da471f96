#include "mainwindow/ChartCommands.h"

#include "chart/data/IndicatorTable.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/TerminalActions.h"

#include <QAction>
#include <QActionGroup>

using namespace Qt::StringLiterals;

namespace {

/// Checks the action whose data is `value`; none when no chart has it.
void checkOnly(const QActionGroup& group, const QVariant& value)
{
    const QList<QAction*> actions = group.actions();
    for (QAction* action : actions)
        action->setChecked(action->data() == value);
}

} // namespace

ChartCommands::ChartCommands(TerminalActions& actions, ChartArea& charts, QObject* parent)
    : QObject(parent)
    , m_actions(actions)
    , m_charts(charts)
{
    connectIndicators();
    connectPointers();
    connectView();
    connectWindows();
    followActiveChart();
}

ChartCommands::~ChartCommands() = default;

template <typename Command> void ChartCommands::onTriggered(const QAction* action, Command command)
{
    connect(action, &QAction::triggered, this, [this, command](bool checked) {
        if (ChartWindow* chart = m_charts.activeChart())
            command(*chart, checked);
        showTruth();
    });
}

void ChartCommands::connectIndicators()
{
    for (const QAction* action : m_actions.indicators) {
        connect(action, &QAction::triggered, this,
            [this, key = action->data().toString()] { addIndicator(key); });
    }
}

void ChartCommands::addIndicator(const QString& key)
{
    ChartWindow* chart = m_charts.activeChart();
    if (!chart) {
        Q_EMIT logMessage(tr("Chart"), tr("Open a chart first, then add the indicator."));
        return;
    }
    if (const IndicatorRow* row = findIndicator(key))
        chart->addIndicator(row->kind);
}

void ChartCommands::connectPointers()
{
    onTriggered(m_actions.cursor, [this](ChartWindow& chart, bool) { choosePointer(chart, {}, false); });
    onTriggered(m_actions.crosshair, [this](ChartWindow& chart, bool) { choosePointer(chart, {}, true); });
    for (QAction* tool : m_actions.drawingTools()) {
        onTriggered(tool,
            [this, tool](ChartWindow& chart, bool) { choosePointer(chart, tool->data().toString(), false); });
    }
}

void ChartCommands::choosePointer(ChartWindow& chart, const QString& tool, bool ruler)
{
    chart.setMeasureMode(ruler);
    chart.setTool(tool);
}

void ChartCommands::connectView()
{
    for (QAction* type : m_actions.chartTypes->actions())
        onTriggered(type, [type](ChartWindow& chart, bool) { chart.setChartType(type->data().toInt()); });
    onTriggered(m_actions.autoScroll, [](ChartWindow& chart, bool on) { chart.setAutoScroll(on); });
    onTriggered(m_actions.chartShift, [](ChartWindow& chart, bool on) { chart.setChartShift(on); });
    onTriggered(m_actions.zoomIn, [](ChartWindow& chart, bool) { chart.zoomIn(); });
    onTriggered(m_actions.zoomOut, [](ChartWindow& chart, bool) { chart.zoomOut(); });
    onTriggered(m_actions.refresh, [](ChartWindow& chart, bool) { chart.reload(); });
    onTriggered(m_actions.dataWindow, [](ChartWindow& chart, bool) { chart.showDataWindow(); });
    onTriggered(m_actions.properties, [](ChartWindow& chart, bool) { chart.showProperties(); });
    onTriggered(m_actions.specification, [](ChartWindow& chart, bool) { chart.requestSpecification(); });
}

void ChartCommands::connectWindows()
{
    connect(m_actions.tile, &QAction::triggered, &m_charts, &QMdiArea::tileSubWindows);
    connect(m_actions.cascade, &QAction::triggered, &m_charts, &ChartArea::cascade);
    connect(m_actions.closeChart, &QAction::triggered, &m_charts, &ChartArea::closeActiveChart);
}

void ChartCommands::followActiveChart()
{
    ChartWindow* chart = m_charts.activeChart();
    if (m_followed && m_followed != chart)
        m_followed->disconnect(this);
    if (chart && m_followed != chart) {
        connect(chart, &ChartWindow::settingsChanged, this, &ChartCommands::showTruth);
        connect(chart, &ChartWindow::timeframeChanged, this, &ChartCommands::showTruth);
        // Qt tells nobody that a chart is gone which it had never called active, as one restored at the
        // start.
        connect(chart, &QObject::destroyed, this, &ChartCommands::followActiveChart, Qt::QueuedConnection);
    }
    m_followed = chart;
    m_actions.setChartActive(chart != nullptr);
    showTruth();
}

void ChartCommands::showTruth()
{
    const ChartWindow* window = m_charts.activeChart();
    const ChartWidget* chart = window ? &window->chart() : nullptr;
    checkOnly(*m_actions.timeframes, window ? QVariant(window->timeframe()) : QVariant());
    checkOnly(*m_actions.chartTypes, chart ? QVariant(chart->chartType()) : QVariant());
    m_actions.autoScroll->setChecked(chart && chart->autoScroll());
    m_actions.chartShift->setChecked(chart && chart->chartShift());

    QAction* pointer = chart && chart->measureMode() ? m_actions.crosshair : m_actions.cursor;
    for (QAction* tool : m_actions.drawingTools()) {
        if (chart && !chart->tool().isEmpty() && tool->data() == chart->tool())
            pointer = tool;
    }
    pointer->setChecked(true);
    Q_EMIT hintChanged(chart ? chart->hint() : QString());
}
