// What becomes of a script's errors: the first line makes up the parts of what is thrown, as JSON; the rest
// is a script that is read but throws before any of it runs, so that no input can run for ever.

#include "fuzz/FuzzQt.h"

#include "experts/ScriptEngine.h"

#include <QCoreApplication>

using fuzz::demand;
using namespace Qt::StringLiterals;

namespace fuzz_errors {

namespace {

void demandSound(const ScriptError& error, qsizetype lines)
{
    demand(error.name.size() <= ScriptError::longest + 1, "an error's name is bounded");
    demand(error.message.size() <= ScriptError::longest + 1, "an error's message is bounded");
    demand(error.line >= 0 && error.line <= lines, "an error's line is one of the script's");
}

bool hasEngine = false;

int attempt(const std::uint8_t* data, std::size_t size)
{
    hasEngine = true;
    static int count = 0;
    static char* none = nullptr;
    static const QCoreApplication application(count, &none);
    // A new one from time to time: what scripts declare stays with an engine.
    static std::unique_ptr<ScriptEngine> engine;
    static int uses = 0;
    if (uses++ % 64 == 0)
        engine = std::make_unique<ScriptEngine>();

    std::string_view text = fuzz::textOf(data, size);
    const QJsonObject parts = QJsonDocument::fromJson(fuzz::bytesOf(fuzz::takeLine(text))).object();
    const QString thrown
        = u"throw Object.assign(new Error('made up'), %1);"_s.arg(QString::fromUtf8(fuzz::jsonOf(parts)));
    const std::optional<ScriptError> made = engine->run(thrown, u"Made.js"_s);
    demand(made.has_value(), "what is thrown is an error");
    demand(made->name.size() <= ScriptError::longest + 1 && made->message.size() <= ScriptError::longest + 1,
        "a thrown error is bounded");

    const QString script = "throw 5;"_L1 + fuzz::stringOf(text);
    const std::optional<ScriptError> error = engine->run(script, u"Probe.js"_s);
    demand(error.has_value(), "a script that throws has failed");
    demandSound(*error,
        1 + script.count(u'\n') + script.count(u'\r') + script.count(u'\u2028') + script.count(u'\u2029'));
    return 0;
}

const fuzz::Target target("errors", &attempt);

} // namespace

} // namespace fuzz_errors

/// The engine keeps its values in memory of its own, where the search for leaks does not look. Most of what
/// it would call a leak are texts, which no suppression could tell from ours. The other target of this
/// program is searched.
extern "C" int __lsan_is_turned_off()
{
    return fuzz_errors::hasEngine ? 1 : 0;
}
