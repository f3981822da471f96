#pragma once

#include "app/base/LineKind.h"

#include <QObject>

class ChartArea;
class TradeActions;

/// Attaches a script chosen by the trader to the active chart, and says what came of it.
class ExpertAttachment final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ExpertAttachment)

public:
    /// Both must outlive this object.
    ExpertAttachment(const ChartArea& charts, const TradeActions& actions, QObject* parent = nullptr);

public Q_SLOTS:
    /// `path` of a script file. Why one does not run is told by its chart.
    void attach(const QString& path);

Q_SIGNALS:
    void expertLine(const QString& source, const QString& message, LineKind kind);

private:
    const ChartArea& m_charts;
    const TradeActions& m_actions;
};
