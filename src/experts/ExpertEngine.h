#pragma once

#include "app/base/LineKind.h"
#include "experts/ExpertHost.h"
#include "experts/ExpertScript.h"
#include "experts/ExpertTimer.h"

#include <QObject>

#include <memory>

class ExpertRun;

/// Runs one Expert Advisor: a JavaScript file with some of the functions OnInit, OnTick, OnTimer and
/// OnDeinit. Loads once; a stopped engine is not started again.
///
/// Everything happens on the GUI thread, and a script that never returns blocks it. Hooks never nest: a tick
/// or a time-out that comes while one is running is dropped. The engine may be stopped and deleted at any
/// time, even from within its own hooks and signals: the script engine then lives until the hook has
/// returned, but what the hook still asks for has no effect. So a caller had better act upon the signals:
/// after a call it could not be sure that the engine still exists.
class ExpertEngine final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ExpertEngine)

public:
    /// `candles` is the chart's own list, which must outlive the engine. `timer` calls OnTimer.
    ExpertEngine(const QString& symbol, int digits, const std::vector<Candle>& candles,
        ExpertHost::Callbacks callbacks,
        std::unique_ptr<ExpertTimer> timer = std::make_unique<SystemExpertTimer>(),
        QObject* parent = nullptr);
    /// Runs no script code; stop() does.
    ~ExpertEngine() override;

    /// Reads the script, runs the runtime prelude and the script, and calls OnInit. True when the expert is
    /// running; else `error` holds the reason, which a signal has told already: message() for a failure in
    /// OnInit or in reading a hook, failed() for any other.
    bool load(const QString& path, QString* error = nullptr);
    /// The same with a script that has been read.
    bool load(const ExpertScript& script, QString* error = nullptr);
    /// What runs before the script; to be called before load().
    void setForerun(const ScriptForerun& forerun);
    /// Calls OnTick; nothing unless running. An error in it ends the expert.
    void tick();
    /// Ends for good what the script is doing, with an error, and whatever it tries to do later. From any
    /// thread.
    void interrupt();
    /// Calls OnDeinit if the expert is running, and ends it.
    void stop();

    /// The script file's name without its last extension; empty before load().
    [[nodiscard]] QString name() const;
    [[nodiscard]] bool isRunning() const;
    /// The symbol's price decimals, when they become known late.
    void setDigits(int digits);

Q_SIGNALS:
    void message(const QString& text, LineKind kind);
    /// The expert runs, and its line about that has been written.
    void started();
    /// The script could not be made ready to start.
    void failed(const QString& reason);
    /// The expert was stopped, has stopped itself, or was never started. The last signal, unless the hook in
    /// which it was stopped fails afterwards.
    void ended();

private:
    std::shared_ptr<ExpertRun> m_run;
};
