#include "experts/ExpertEngine.h"

#include "experts/ExpertRun.h"

#include <utility>

ExpertEngine::ExpertEngine(const QString& symbol, int digits, const std::vector<Candle>& candles,
    ExpertHost::Callbacks callbacks, std::unique_ptr<ExpertTimer> timer, QObject* parent)
    : QObject(parent)
    , m_run(
          std::make_shared<ExpertRun>(*this, symbol, digits, candles, std::move(callbacks), std::move(timer)))
{
}

ExpertEngine::~ExpertEngine()
{
    m_run->abandon();
}

// Script code may delete this object, so nothing here is touched after a call into the run.

bool ExpertEngine::load(const QString& path, QString* error)
{
    QString reason;
    const bool running = m_run->load(path, reason);
    if (error)
        *error = reason;
    return running;
}

bool ExpertEngine::load(const ExpertScript& script, QString* error)
{
    QString reason;
    const bool running = m_run->load(script, reason);
    if (error)
        *error = reason;
    return running;
}

void ExpertEngine::setForerun(const ScriptForerun& forerun)
{
    m_run->setForerun(forerun);
}

void ExpertEngine::interrupt()
{
    m_run->interrupt();
}

void ExpertEngine::tick()
{
    m_run->tick();
}

void ExpertEngine::stop()
{
    m_run->stop();
}

QString ExpertEngine::name() const
{
    return m_run->name();
}

bool ExpertEngine::isRunning() const
{
    return m_run->isRunning();
}

void ExpertEngine::setDigits(int digits)
{
    m_run->setDigits(digits);
}
