#include "lab/run/ScriptStage.h"

#include "experts/ScriptOrder.h"

#include <QFile>

#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace lab {

namespace {

constexpr auto preludeName = "lab_prelude.js"_L1;

ScriptForerun forerun(LabHost& host)
{
    QFile file(u":/lab/"_s + preludeName);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The lab's prelude is missing");
    return {QString::fromUtf8(file.readAll()), preludeName, u"__lab"_s, &host};
}

} // namespace

ScriptStage::ScriptStage(Settings settings, ExpertHost::Callbacks account, Refusal refused)
    : m_host(m_clock, settings.seed)
{
    m_series.setTimeframeMs(settings.barMs);
    m_series.setCandles(std::move(settings.bars));
    if (settings.barsAgain)
        m_past.emplace(std::move(settings.barsAgain), settings.barsAtATime);
    auto timer = std::make_unique<VirtualTimer>(m_clock);
    m_timer = timer.get();
    m_engine = std::make_unique<ExpertEngine>(settings.symbol, settings.digits, m_series.candles(),
        connected(std::move(account), std::move(refused)), std::move(timer));
    m_engine->setForerun(forerun(m_host));
    QObject::connect(m_engine.get(), &ExpertEngine::failed, m_engine.get(), [this](const QString& reason) {
        m_failure = reason;
        note(reason);
    });
    QObject::connect(
        m_engine.get(), &ExpertEngine::message, m_engine.get(), [this](const QString& text, LineKind kind) {
            if (kind != LineKind::Failure || m_isInterrupted)
                return;
            if (!m_failure)
                m_failure = text;
            note(text);
        });
}

ExpertHost::Callbacks ScriptStage::connected(ExpertHost::Callbacks account, Refusal refused)
{
    account.seriesRevision = [this] { return m_revision; };
    account.olderCandles = m_past ? &*m_past : nullptr;
    account.print = [this](const QString& text) { note(text); };
    account.alert = [this](const QString& text) { note(u"ALERT: "_s + text); };
    account.comment = nullptr;
    account.order = [this, place = std::move(account.order), refused = std::move(refused)](
                        const QString& side, double lots, double stopLoss, double takeProfit) {
        const std::optional<QString> reason = reasonToIgnore(lots, stopLoss, takeProfit);
        if (!reason) {
            place(side, lots, stopLoss, takeProfit);
            return;
        }
        note(*reason);
        refused(side, lots, stopLoss, takeProfit);
    };
    return account;
}

void ScriptStage::renewBars(std::vector<Candle> bars)
{
    m_series.setCandles(std::move(bars));
    ++m_revision;
}

void ScriptStage::fold(double bid, double ask)
{
    if (m_series.foldTick(bid, ask, m_clock.now) == TickEffect::Appended)
        turnBar();
    m_hasBegun = m_hasBegun || !m_series.isEmpty();
}

void ScriptStage::turnBar()
{
    ++m_revision;
    if (m_hasBegun && m_series.count() > 1)
        m_barsBefore.add(*std::prev(m_series.candles().end(), 2));
    if (m_past)
        m_past->relieve(m_series);
}

void ScriptStage::load(const ExpertScript& script)
{
    m_engine->load(script);
    m_events.handOut();
    findError();
}

void ScriptStage::tick()
{
    if (m_timer->run())
        m_events.handOut();
    m_failure.reset(); // an error in OnTimer ends nothing
    m_engine->tick();
    m_events.handOut();
    findError();
}

void ScriptStage::interrupt()
{
    m_isInterrupted = true;
    m_engine->interrupt();
}

void ScriptStage::findError()
{
    if (!m_error && !m_engine->isRunning())
        m_error = m_failure.value_or(QString());
}

ChartBars ScriptStage::takeBarsOfRun()
{
    if (m_hasBegun && !m_series.isEmpty())
        m_barsBefore.add(m_series.candles().back());
    return std::move(m_barsBefore);
}

} // namespace lab
