#pragma once

#include "app/base/LineKind.h"
#include "experts/ExpertHost.h"
#include "experts/ExpertScript.h"
#include "experts/ExpertTimer.h"
#include "experts/ScriptEngine.h"

#include <QCoreApplication>

#include <memory>

class ExpertEngine;

/// One expert from loading to its end: script engine, host, timer and hooks. Its ExpertEngine keeps it alive,
/// and so does each hook that is running, so that it outlives an end from within a hook. Several signals in a
/// row are emitted from here: all of them, or until abandon().
class ExpertRun final : public std::enable_shared_from_this<ExpertRun> {
    Q_DECLARE_TR_FUNCTIONS(ExpertEngine)
    Q_DISABLE_COPY_MOVE(ExpertRun)

public:
    /// `engine` tells what happens here, until abandon().
    ExpertRun(ExpertEngine& engine, const QString& symbol, int digits, const std::vector<Candle>& candles,
        ExpertHost::Callbacks callbacks, std::unique_ptr<ExpertTimer> timer);
    ~ExpertRun();

    [[nodiscard]] bool load(const QString& path, QString& error);
    [[nodiscard]] bool load(const ExpertScript& script, QString& error);
    void setForerun(const ScriptForerun& forerun) { m_forerun = forerun; }
    /// From any thread.
    void interrupt() { m_script.interrupt(); }
    void tick();
    void stop();
    /// The engine is gone: no script code runs any more, apart from the rest of a hook under way.
    void abandon();

    [[nodiscard]] const QString& name() const { return m_name; }
    [[nodiscard]] bool isRunning() const { return m_state == State::Running; }
    /// The symbol's price decimals, known late when the server lists the symbol late.
    void setDigits(int digits);

private:
    enum class State { Created, Starting, Running, Stopping, Stopped };
    class HookScope;

    /// Starts with what `evaluate` makes of the script.
    [[nodiscard]] bool start(const QString& name, const std::function<bool()>& evaluate, QString& error);
    /// Runs the preludes and the script. On failure `error` holds the reason, which has not been reported.
    [[nodiscard]] bool evaluate(const ExpertScript& script, QString& error);
    /// Runs a text of our own.
    [[nodiscard]] bool prepare(
        const QString& text, const QString& fileName, QString& error, QJSValue* result = nullptr);
    /// Fetches the hooks and calls OnInit. On failure `error` holds the reason, which has been reported.
    [[nodiscard]] bool initialize(QString& error);
    /// Fetches a hook. False when reading its name throws; `error` then holds the text that has been
    /// reported.
    [[nodiscard]] bool find(const QString& hookName, QJSValue& hook, QString& error);
    /// Calls a hook. Gives the text of a failure, which has been reported; nothing when all went well.
    std::optional<QString> call(const QJSValue& hook, const QString& hookName);
    /// Reports a hook's failure and gives the reported text.
    QString reportOf(const QString& hookName, const ScriptError& failure) const;
    void onTimer();
    void startTimer(int seconds);
    void report(const QString& text, LineKind kind) const;

    ExpertEngine* m_engine; ///< null after abandon()
    ScriptEngine m_script;
    ExpertHost m_host; ///< declared after the engine, so that it ends first
    std::unique_ptr<ExpertTimer> m_timer;
    ScriptForerun m_forerun;
    QString m_name;
    QJSValue m_digitsChanged; ///< the prelude's own
    QJSValue m_onTick;
    QJSValue m_onTimer;
    QJSValue m_onDeinit;
    State m_state = State::Created;
    bool m_inHook = false;
};
