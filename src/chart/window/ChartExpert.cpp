#include "chart/window/ChartExpert.h"

#include "chart/window/ChartWidget.h"
#include "experts/ExpertEngine.h"
#include "experts/ExpertScript.h"
#include "experts/ScriptOrder.h"
#include "net/records/OrderBody.h"

#include <QPointer>

using namespace Qt::StringLiterals;

ChartExpert::ChartExpert(const ChartWidget& chart, const QString& symbol, QObject* parent)
    : QObject(parent)
    , m_chart(chart)
    , m_symbol(symbol)
    , m_digits(chart.digits())
{
}

ChartExpert::~ChartExpert() = default;

void ChartExpert::attach(const QString& path, std::unique_ptr<ExpertTimer> timer)
{
    const QPointer<ChartExpert> self(this);
    detach();
    // The last words of the old expert may have ended this seat, or attached another expert. That one was
    // chosen later and stays.
    if (!self || m_engine)
        return;

    const QString source = ExpertScript::nameOf(path);
    ExpertHost::Callbacks callbacks;
    callbacks.bid = [this] { return m_chart.bid(); };
    callbacks.ask = [this] { return m_chart.ask(); };
    callbacks.balance = [this] { return m_balance; };
    callbacks.equity = [this] { return m_equity; };
    callbacks.positionsCount = [this] { return m_positions; };
    callbacks.seriesRevision = [this] { return m_chart.seriesRevision(); };
    callbacks.order = [this, source](const QString& side, double lots, double sl, double tp) {
        order(source, side, lots, sl, tp);
    };
    // A copy of the symbol, since a receiver of the signal may end this seat.
    callbacks.closeAll = [this, symbol = m_symbol] { Q_EMIT closeAllRequested(symbol); };
    callbacks.print = [this, source](const QString& text) { Q_EMIT log(source, text, LineKind::Ordinary); };
    callbacks.alert = [this, source](const QString& text) {
        Q_EMIT log(source, tr("ALERT: %1").arg(text), LineKind::Ordinary);
    };
    callbacks.comment = [this](const QString& text) { Q_EMIT commentChanged(text); };

    m_engine = std::make_unique<ExpertEngine>(
        m_symbol, m_digits, m_chart.candles(), std::move(callbacks), std::move(timer));
    connect(m_engine.get(), &ExpertEngine::message, this,
        [this, source](const QString& text, LineKind kind) { Q_EMIT log(source, text, kind); });
    connect(m_engine.get(), &ExpertEngine::failed, this,
        [this, source](const QString& reason) { Q_EMIT log(source, reason, LineKind::Failure); });
    connect(m_engine.get(), &ExpertEngine::started, this, &ChartExpert::nameChanged);
    connect(m_engine.get(), &ExpertEngine::ended, this, [this] {
        m_engine.reset();
        Q_EMIT nameChanged();
    });
    m_engine->load(path);
}

void ChartExpert::detach()
{
    if (m_engine)
        m_engine->stop();
}

void ChartExpert::tick()
{
    if (m_engine)
        m_engine->tick();
}

QString ChartExpert::name() const
{
    return m_engine && m_engine->isRunning() ? m_engine->name() : QString();
}

void ChartExpert::setAccountFigures(double balance, double equity)
{
    m_balance = balance;
    m_equity = equity;
}

void ChartExpert::setDigits(int digits)
{
    m_digits = digits;
    if (m_engine)
        m_engine->setDigits(digits);
}

void ChartExpert::order(const QString& source, const QString& side, double lots, double sl, double tp)
{
    if (const std::optional<QString> reason = reasonToIgnore(lots, sl, tp)) {
        Q_EMIT log(source, *reason, LineKind::Failure);
        return;
    }
    Q_EMIT orderRequested(orderBody(
        {.symbol = m_symbol, .lots = lots, .side = sideOf(side), .stopLoss = sl, .takeProfit = tp}));
}
