#pragma once

#include "app/base/LineKind.h"
#include "experts/ExpertHost.h"
#include "experts/ScriptEngine.h"

#include <QCoreApplication>
#include <QTimer>

#include <memory>

class ExpertEngine;

/// One expert from loading to its end: script engine, host, timer and hooks. Kept by its ExpertEngine and,
/// while one of its hooks is running, by that call, so that it can be ended from within. Whatever is told in
/// a row is told from here: it goes on to the end of the row, or until nobody is interested any more.
class ExpertRun final : public std::enable_shared_from_this<ExpertRun> {
    Q_DECLARE_TR_FUNCTIONS(ExpertEngine)
    Q_DISABLE_COPY_MOVE(ExpertRun)

public:
    /// `engine` tells what happens here, until abandon().
    ExpertRun(ExpertEngine& engine, const QString& symbol, int digits, const std::vector<Candle>& candles,
        ExpertHost::Callbacks callbacks, std::unique_ptr<QTimer> timer);
    ~ExpertRun();

    [[nodiscard]] bool load(const QString& path, QString& error);
    void tick();
    void stop();
    /// Nobody is interested any more: no script code runs, apart from the rest of a hook under way.
    void abandon();

    [[nodiscard]] const QString& name() const { return m_name; }
    [[nodiscard]] bool isRunning() const { return m_state == State::Running; }
    /// The symbol's price decimals, known late when the server lists the symbol late.
    void setDigits(int digits);

private:
    enum class State { Created, Starting, Running, Stopping, Stopped };
    class HookScope;

    /// Runs the prelude and the script. The reason why not has been told nobody yet.
    [[nodiscard]] bool evaluate(const QString& path, QString& error);
    /// Fetches the hooks and calls OnInit. The reason why not has been reported.
    [[nodiscard]] bool initialize(QString& error);
    /// Fetches a hook. False, with the composed text of the failure, which has been reported, when reading
    /// its name throws.
    [[nodiscard]] bool find(const QString& hookName, QJSValue& hook, QString& error);
    /// The composed text of a failure, which has been reported; absent when all went well.
    std::optional<QString> call(const QJSValue& hook, const QString& hookName);
    /// Reports a hook's failure; the text that was reported.
    QString reportOf(const QString& hookName, const ScriptError& failure) const;
    void onTimer();
    void startTimer(int seconds);
    void report(const QString& text, LineKind kind) const;

    ExpertEngine* m_engine; ///< none once nobody is interested any more
    ScriptEngine m_script;
    ExpertHost m_host; ///< after the engine, so that it goes first
    std::unique_ptr<QTimer> m_timer;
    QString m_name;
    QJSValue m_digitsChanged; ///< the prelude's own
    QJSValue m_onTick;
    QJSValue m_onTimer;
    QJSValue m_onDeinit;
    State m_state = State::Created;
    bool m_inHook = false;
};
