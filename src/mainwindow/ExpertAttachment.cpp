#include "mainwindow/ExpertAttachment.h"

#include "app/base/ServerText.h"
#include "chart/series/Timeframe.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/account/TradeActions.h"

#include <QPointer>

ExpertAttachment::ExpertAttachment(const ChartArea& charts, const TradeActions& actions, QObject* parent)
    : QObject(parent)
    , m_charts(charts)
    , m_actions(actions)
{
}

void ExpertAttachment::attach(const QString& path)
{
    const QPointer<ChartWindow> chart = m_charts.activeChart();
    if (!chart) {
        Q_EMIT expertLine(
            tr("Expert"), tr("Open a chart first, then attach the Expert Advisor."), LineKind::Failure);
        return;
    }
    chart->attachExpert(path);
    // A script may lead to its chart's end as soon as it runs.
    const QString name = chart ? chart->expertName() : QString();
    if (name.isEmpty())
        return;
    Q_EMIT expertLine(name,
        //: %1 the symbol, %2 the timeframe
        tr("Attached to %1 %2").arg(shownName(chart->symbol()), timeframeLabel(chart->timeframe())),
        LineKind::Ordinary);
    if (!m_actions.isAlgoTradingOn()) {
        Q_EMIT expertLine(name,
            tr("Note: Algo Trading is OFF — the EA runs but cannot trade. Enable it from the toolbar."),
            LineKind::Ordinary);
    }
}
