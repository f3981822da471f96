#include "experts/ScriptEngine.h"

#include "experts/ScriptLimits.h"

#include <QFile>
#include <QMetaMethod>

using namespace Qt::StringLiterals;

namespace {

/// The facade's text is its name, which the engine's own messages then show.
constexpr QStringView facadeMaker = uR"((function(object, names, ownName) {
    "use strict";
    const facade = Object.create(null);
    for (let i = 0; i < names.length; ++i)
        facade[names[i]] = object[names[i]];
    Object.defineProperty(facade, "toString", { value: function() { return ownName; } });
    return Object.freeze(facade);
}))";

/// Wraps a hook so that a thrown value comes back in an array, and a returned one is dropped. Qt itself
/// cannot tell a thrown number from a returned one, nor a returned error from a thrown one.
constexpr QStringView catcher = uR"((function(hook) {
    "use strict";
    return function() {
        try {
            hook();
        } catch (thrown) {
            return [thrown];
        }
    };
}))";

/// An array with the value of a property, or with nothing and what reading it threw: Qt's own way of reading
/// swallows the error.
constexpr QStringView reader = uR"((function(object, key) {
    "use strict";
    try {
        return [object[key]];
    } catch (thrown) {
        return [undefined, thrown];
    }
}))";

/// Name, message, text, file, line and stack of whatever was thrown, as texts. Each may be missing, be
/// something else, or throw when it is read.
constexpr QStringView describer = uR"((function() {
    "use strict";
    const toText = String;
    return function(thrown) {
        function part(key) {
            try {
                const value = thrown[key];
                return value === undefined ? "" : toText(value);
            } catch (ignored) {
                return "";
            }
        }
        let text = "";
        try {
            text = toText(thrown);
        } catch (ignored) {
        }
        return [part("name"), part("message"), text, part("fileName"), part("lineNumber"), part("stack")];
    };
}))";

QString cut(const QString& text)
{
    return text.size() <= ScriptError::longest ? text : text.first(ScriptError::longest) + u'…';
}

/// The engine's terse messages as sentences.
QString sentence(const QString& message)
{
    if (message == "Insufficient arguments"_L1)
        return u"Too few arguments for a method of the terminal"_s;
    if (message == "Type error"_L1)
        return u"A value or an object does not allow what was tried with it"_s;
    // The engine's message about a call without an object.
    constexpr auto start = "Property '"_L1;
    constexpr auto end = "' of object [null] is not a function"_L1;
    if (message.startsWith(start) && message.endsWith(end))
        return message.sliced(start.size()).chopped(end.size()) + u" is not a function"_s;
    return message;
}

} // namespace

ScriptEngine::Limits::Limits()
{
    raiseScriptLimits();
}

ScriptEngine::ScriptEngine()
{
    m_engine.installExtensions(QJSEngine::ConsoleExtension);
    if (QFile guards(u":/script_guards.js"_s); guards.open(QIODevice::ReadOnly))
        m_engine.evaluate(QString::fromUtf8(guards.readAll()), u"script_guards.js"_s);
    m_facade = m_engine.evaluate(facadeMaker.toString());
    m_catcher = m_engine.evaluate(catcher.toString());
    m_reader = m_engine.evaluate(reader.toString());
    m_describer = m_engine.evaluate(describer.toString()).call();
}

ScriptEngine::~ScriptEngine() = default;

void ScriptEngine::expose(const QString& globalName, QObject& object)
{
    QStringList names;
    const QMetaObject* type = object.metaObject();
    for (int i = type->methodOffset(); i < type->methodCount(); ++i) {
        if (type->method(i).methodType() == QMetaMethod::Method)
            names.append(QString::fromLatin1(type->method(i).name()));
    }
    // Otherwise the engine would delete the object together with the last value that refers to it.
    QJSEngine::setObjectOwnership(&object, QJSEngine::CppOwnership);
    const QJSValue facade
        = m_facade.call({m_engine.newQObject(&object), m_engine.toScriptValue(names), globalName});
    m_engine.globalObject().setProperty(globalName, facade);
}

std::optional<ScriptError> ScriptEngine::run(const QString& text, const QString& fileName, QJSValue* result)
{
    m_source = m_engine.evaluate(u"new Error().fileName"_s, fileName).toString();
    QStringList trace;
    const QJSValue value = m_engine.evaluate(text, fileName, 1, &trace);
    if (!trace.isEmpty())
        return describe(value, trace);
    if (result)
        *result = value;
    return std::nullopt;
}

std::optional<ScriptError> ScriptEngine::function(const QString& globalName, QJSValue& function)
{
    const QJSValue found = m_reader.call({m_engine.globalObject(), globalName});
    if (found.property(u"length"_s).toInt() > 1)
        return describe(found.property(1), {});
    const QJSValue value = found.property(0);
    function = value.isCallable() ? m_catcher.call({value}) : QJSValue();
    return std::nullopt;
}

std::optional<ScriptError> ScriptEngine::call(const QJSValue& function)
{
    const QJSValue result = function.call();
    if (result.isUndefined())
        return std::nullopt;
    // The catcher gives an array with the thrown value, unless the stack ran out inside the catcher itself.
    return describe(result.isArray() ? result.property(0) : result, {});
}

ScriptError ScriptEngine::describe(const QJSValue& thrown, const QStringList& trace)
{
    const QJSValue parts = m_describer.call({thrown});
    const auto part = [&parts](quint32 index) { return parts.property(index).toString(); };
    const bool speaks = thrown.isObject() && !part(1).isEmpty();

    ScriptError error;
    error.name = thrown.isError() && !part(0).isEmpty() ? cut(part(0)) : u"Error"_s;
    error.message = thrown.isError() ? cut(sentence(part(1))) : cut(part(speaks ? 1 : 2));

    // When the stack is full, the topmost functions have not reached a line of their own yet, and Qt reports
    // line 1 for them: take the line of their callers.
    const bool stackFull = thrown.isError() && part(1) == "Maximum call stack size exceeded."_L1;
    bool isNumber = false;
    const int named = part(4).toInt(&isNumber);
    if (isNumber && named > 0 && part(3) == m_source && !stackFull)
        error.line = named;
    const QStringList places = part(5).split(u'\n');
    for (const QString& place : places) {
        if (error.line > (stackFull ? 1 : 0))
            break;
        if (const int line = lineOf(place.mid(place.lastIndexOf(u'@') + 1)); line > 0)
            error.line = line;
    }
    if (stackFull && error.line == 1)
        error.line = 0;
    // For a thrown value that is no error object only the trace is known, as "function:line:column:file".
    for (qsizetype i = 0; error.line == 0 && i < trace.size(); ++i) {
        if (trace[i].endsWith(u':' + m_source))
            error.line = trace[i].chopped(m_source.size() + 1).section(u':', -2, -2).toInt();
    }
    return error;
}

/// The line in a text "file:line"; 0 for another file.
int ScriptEngine::lineOf(const QString& place) const
{
    return place.startsWith(m_source + u':') ? place.mid(m_source.size() + 1).toInt() : 0;
}
