#pragma once

#include <QJSEngine>

#include <optional>

/// Why a script failed.
struct ScriptError {
    QString name;    ///< such as "SyntaxError"
    QString message; ///< at most `longest` characters
    int line = 0;    ///< in the script's own file, from 1; 0 when it cannot be told

    static constexpr qsizetype longest = 1000;
};

/// A JavaScript engine for code that nobody has checked. Tells any thrown value from a returned one, and
/// traces errors to lines of the script even when they arise in functions that the script was given. As far
/// as possible, what would end the whole program becomes an error of the script (script_guards.js).
class ScriptEngine final {
    Q_DISABLE_COPY_MOVE(ScriptEngine)

public:
    ScriptEngine();
    ~ScriptEngine();

    /// Gives scripts a global object with the invokable methods of `object` and a text, its name. It has
    /// nothing else: no properties, signals or slots, no prototype, nothing that can be assigned. `object`
    /// stays the caller's and must live as long as the engine is used.
    void expose(const QString& globalName, QObject& object);

    /// Runs a text whose first line is line 1. Later errors are traced to lines of the text that was run
    /// last. `result` gets what the text evaluates to, unless it fails.
    [[nodiscard]] std::optional<ScriptError> run(
        const QString& text, const QString& fileName, QJSValue* result = nullptr);

    /// The global function of this name, made ready for call(); undefined when it is none. Fails when the
    /// name is a property that throws when it is read.
    [[nodiscard]] std::optional<ScriptError> function(const QString& globalName, QJSValue& function);
    /// Calls what function() gave, without arguments.
    [[nodiscard]] std::optional<ScriptError> call(const QJSValue& function);

    /// From now on scripts end with an error wherever they are, and however they would catch it. From any
    /// thread.
    void interrupt() { m_engine.setInterrupted(true); }

private:
    [[nodiscard]] ScriptError describe(const QJSValue& thrown, const QStringList& trace);
    [[nodiscard]] int lineOf(const QString& place) const;

    /// Set before the engine is made; see raiseScriptLimits().
    struct Limits {
        Limits();
    };

    Limits m_limits;
    QJSEngine m_engine;
    QString m_source; ///< how the engine names the file of the text that was run last
    // Made before any script ran, and out of reach for all of them.
    QJSValue m_facade;
    QJSValue m_catcher;
    QJSValue m_reader;
    QJSValue m_describer;
};
