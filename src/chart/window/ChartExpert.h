#pragma once

#include "app/base/LineKind.h"
#include "experts/ExpertTimer.h"

#include <QJsonObject>
#include <QObject>

#include <memory>

class ChartWidget;
class ExpertEngine;

/// The seat of an Expert Advisor on a chart: attaches one script at a time, hands it the chart's data and
/// turns what it asks for into signals. Any of these may lead to this object's end, so nothing is done here
/// after one: what has to follow is a signal of the engine.
class ChartExpert final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartExpert)

public:
    /// The chart must outlive this object.
    ChartExpert(const ChartWidget& chart, const QString& symbol, QObject* parent = nullptr);
    /// Runs no script code; detach() does.
    ~ChartExpert() override;

    /// Detaches what is attached, and loads and starts this script. A failure is told by log(), and leaves
    /// no expert. `timer` becomes the script's own.
    void attach(
        const QString& path, std::unique_ptr<ExpertTimer> timer = std::make_unique<SystemExpertTimer>());
    /// Ends the expert, which is told so.
    void detach();
    /// Lets the expert know of a price that the chart has taken in.
    void tick();

    /// The running expert's name; empty when none is running, also after one that ended with an error.
    [[nodiscard]] QString name() const;

    /// Balance and equity, in account currency.
    void setAccountFigures(double balance, double equity);
    /// How many positions are open on the symbol.
    void setPositionsCount(int count) { m_positions = count; }
    void setDigits(int digits);

Q_SIGNALS:
    /// `source` is the expert's name.
    void log(const QString& source, const QString& message, LineKind kind);
    /// A market order, complete but for the account.
    void orderRequested(const QJsonObject& body);
    void closeAllRequested(const QString& symbol);
    /// An empty text means no comment. When an expert ends its comment ends too, which nameChanged() alone
    /// tells.
    void commentChanged(const QString& text);
    /// An expert has started, or has ended, perhaps before it had started.
    void nameChanged();

private:
    void order(const QString& source, const QString& side, double lots, double sl, double tp);

    const ChartWidget& m_chart;
    QString m_symbol;
    int m_digits;
    double m_balance = 0.0;
    double m_equity = 0.0;
    int m_positions = 0;
    std::unique_ptr<ExpertEngine> m_engine;
};
