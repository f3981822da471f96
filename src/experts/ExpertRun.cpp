#include "experts/ExpertRun.h"

#include "experts/ExpertEngine.h"

#include <QFile>

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr auto preludePath = ":/ea_prelude.js"_L1;
constexpr auto preludeName = "ea_prelude.js"_L1;

} // namespace

/// Lives while this class is calling script code, whose wishes then happen at once.
class ExpertRun::HookScope final {
    Q_DISABLE_COPY_MOVE(HookScope)

public:
    explicit HookScope(ExpertRun& run)
        : m_run(run)
        , m_wasInHook(std::exchange(run.m_inHook, true))
    {
        m_run.m_host.holdActions(false);
    }
    ~HookScope()
    {
        m_run.m_inHook = m_wasInHook;
        m_run.m_host.holdActions(!m_wasInHook);
    }

private:
    ExpertRun& m_run;
    bool m_wasInHook;
};

ExpertRun::ExpertRun(ExpertEngine& engine, const QString& symbol, int digits,
    const std::vector<Candle>& candles, ExpertHost::Callbacks callbacks, std::unique_ptr<ExpertTimer> timer)
    : m_engine(&engine)
    , m_host(symbol, digits, candles, std::move(callbacks))
    , m_timer(std::move(timer))
{
    m_host.holdActions(true);
    m_timer->onTimeout([this] { onTimer(); });
    QObject::connect(&m_host, &ExpertHost::timerRequested, &m_host, [this](int s) { startTimer(s); });
    QObject::connect(&m_host, &ExpertHost::timerKilled, &m_host, [this] { m_timer->stop(); });
}

ExpertRun::~ExpertRun() = default;

bool ExpertRun::load(const QString& path, QString& error)
{
    const auto readAndEvaluate = [this, &path, &error] {
        const std::optional<ExpertScript> script = ExpertScript::read(path, error);
        return script && evaluate(*script, error);
    };
    return start(ExpertScript::nameOf(path), readAndEvaluate, error);
}

bool ExpertRun::load(const ExpertScript& script, QString& error)
{
    return start(
        script.name, [&] { return evaluate(script, error); }, error);
}

bool ExpertRun::start(const QString& name, const std::function<bool()>& evaluate, QString& error)
{
    if (m_state != State::Created) {
        error = tr("An expert can be loaded only once");
        return false;
    }
    const auto alive = shared_from_this();
    m_state = State::Starting;
    m_name = name;
    const bool evaluated = evaluate();
    if (!evaluated && m_engine)
        Q_EMIT m_engine->failed(error);
    if (!evaluated || !initialize(error)) {
        stop();
        return false;
    }
    if (m_state != State::Starting) {
        error = tr("%1 was detached while it was loading").arg(m_name);
        return false;
    }
    m_state = State::Running;
    report(tr("%1 loaded").arg(m_name), LineKind::Ordinary);
    // A receiver of that line may have ended the expert.
    if (isRunning())
        Q_EMIT m_engine->started();
    return isRunning();
}

bool ExpertRun::evaluate(const ExpertScript& script, QString& error)
{
    const HookScope scope(*this);
    if (m_forerun.host) {
        m_script.expose(m_forerun.hostName, *m_forerun.host);
        if (!prepare(m_forerun.text, m_forerun.fileName, error))
            return false;
    }
    m_script.expose(u"__host"_s, m_host);
    QFile prelude(preludePath);
    if (prelude.open(QIODevice::ReadOnly)
        && !prepare(QString::fromUtf8(prelude.readAll()), preludeName, error, &m_digitsChanged))
        return false;
    if (const auto failure = m_script.run(script.text, script.fileName)) {
        //: %1 the kind of error, %3 what it says
        error = failure->line > 0
            ? tr("%1 at line %2: %3").arg(failure->name, QString::number(failure->line), failure->message)
            //: %1 the kind of error, %2 what it says
            : tr("%1: %2").arg(failure->name, failure->message);
        return false;
    }
    return true;
}

bool ExpertRun::prepare(const QString& text, const QString& fileName, QString& error, QJSValue* result)
{
    const auto failure = m_script.run(text, fileName, result);
    if (failure)
        error = tr("Runtime prelude error: %1").arg(failure->name + u": "_s + failure->message);
    return !failure;
}

bool ExpertRun::initialize(QString& error)
{
    const HookScope scope(*this);
    QJSValue onInit;
    if (!find(u"OnInit"_s, onInit, error) || !find(u"OnTick"_s, m_onTick, error)
        || !find(u"OnDeinit"_s, m_onDeinit, error) || !find(u"OnTimer"_s, m_onTimer, error))
        return false;
    // Code at the top of the file may have led to the end already.
    if (m_state != State::Starting)
        return true;
    if (const auto failure = call(onInit, u"OnInit"_s)) {
        error = *failure;
        return false;
    }
    return true;
}

bool ExpertRun::find(const QString& hookName, QJSValue& hook, QString& error)
{
    const std::optional<ScriptError> failure = m_script.function(hookName, hook);
    if (failure)
        error = reportOf(hookName, *failure);
    return !failure;
}

std::optional<QString> ExpertRun::call(const QJSValue& hook, const QString& hookName)
{
    if (!hook.isCallable())
        return std::nullopt;
    const HookScope scope(*this);
    const std::optional<ScriptError> failure = m_script.call(hook);
    return failure ? std::optional(reportOf(hookName, *failure)) : std::nullopt;
}

QString ExpertRun::reportOf(const QString& hookName, const ScriptError& failure) const
{
    const QString text = failure.line > 0
        //: %1 the function of the script, %2 what went wrong
        ? tr("%1: %2 (line %3)").arg(hookName, failure.message, QString::number(failure.line))
        //: %1 the function of the script, %2 what went wrong
        : tr("%1: %2").arg(hookName, failure.message);
    report(text, LineKind::Failure);
    return text;
}

void ExpertRun::tick()
{
    // What a hook asks for may open a message box, which lets prices in while the hook waits.
    if (m_state != State::Running || m_inHook || !m_onTick.isCallable())
        return;
    const auto alive = shared_from_this();
    const std::optional<QString> failure = call(m_onTick, u"OnTick"_s);
    if (!failure || m_state != State::Running)
        return;
    report(tr("Stopped after error in OnTick: %1").arg(*failure), LineKind::Failure);
    stop();
}

void ExpertRun::setDigits(int digits)
{
    m_host.setDigits(digits);
    if (m_digitsChanged.isCallable())
        m_digitsChanged.call();
}

void ExpertRun::onTimer()
{
    if (m_state != State::Running || m_inHook)
        return;
    const auto alive = shared_from_this();
    call(m_onTimer, u"OnTimer"_s);
}

void ExpertRun::startTimer(int seconds)
{
    constexpr int most = std::numeric_limits<int>::max() / 1000;
    if (seconds > 0 && m_state < State::Stopping)
        m_timer->start(std::min(seconds, most) * 1000);
}

void ExpertRun::stop()
{
    if (m_state == State::Stopped)
        return;
    const auto alive = shared_from_this();
    m_timer->stop();
    if (std::exchange(m_state, State::Stopping) == State::Running)
        call(m_onDeinit, u"OnDeinit"_s);
    // OnDeinit may have led here again.
    if (std::exchange(m_state, State::Stopped) == State::Stopped)
        return;
    m_host.disconnectChart();
    Q_EMIT m_engine->ended();
}

void ExpertRun::abandon()
{
    m_timer->stop();
    m_state = State::Stopped;
    m_host.disconnectChart();
    m_engine = nullptr;
}

void ExpertRun::report(const QString& text, LineKind kind) const
{
    if (m_engine)
        Q_EMIT m_engine->message(text, kind);
}
