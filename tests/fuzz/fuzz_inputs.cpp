// The inputs at the top of a script: the text of the script is anybody's, and so are the values for them.
// The last line is a value, what stands before it the script.

#include "fuzz/FuzzQt.h"

#include "lab/run/ScriptInputs.h"
#include "lab/run/ScriptScanner.h"

using fuzz::demand;

namespace fuzz_inputs {

namespace {

bool isLineEnd(const QString& text, qsizetype place)
{
    const QChar c = text[place];
    return c == u'\n' || c == u'\u2028' || c == u'\u2029'
        || (c == u'\r' && (place + 1 == text.size() || text[place + 1] != u'\n'));
}

int lineEnds(const QString& text, qsizetype from, qsizetype to)
{
    int count = 0;
    for (qsizetype i = from; i < to; ++i)
        count += isLineEnd(text, i) ? 1 : 0;
    return count;
}

void scan(const QString& script)
{
    lab::ScriptScanner scanner(script);
    qsizetype start = 0;
    qsizetype end = 0;
    int line = 1;
    for (lab::ScriptToken token = scanner.next(); token.kind != lab::ScriptToken::Kind::End;
         token = scanner.next()) {
        demand(token.start >= end && token.end > token.start && token.end <= script.size(),
            "words follow each other");
        line += lineEnds(script, start, token.start);
        start = token.start;
        demand(token.line == line, "a word's line is where it stands");
        demand(token.depth >= 0, "brackets are not closed before they are opened");
        end = token.end;
    }
    demand(scanner.next().kind == lab::ScriptToken::Kind::End, "the end stays the end");
}

void giveValue(
    const QString& script, const QList<lab::ScriptInput>& inputs, const QString& name, const QString& value)
{
    QString error;
    const std::optional<QString> changed = lab::withInputs(script, {{name, value}}, error);
    demand(changed.has_value() == error.isEmpty(), "a refusal has a reason");
    if (!changed)
        return;
    const QList<lab::ScriptInput> after = lab::inputsOf(*changed);
    demand(after.size() == inputs.size(), "another value makes no other inputs");
    for (qsizetype i = 0; i < after.size(); ++i) {
        const bool isIt = inputs[i].name == name;
        demand(after[i].name == inputs[i].name && after[i].line == inputs[i].line
                && after[i].kind == inputs[i].kind && after[i].comment == inputs[i].comment
                && (isIt || after[i].literal == inputs[i].literal),
            "nothing but the value is another one");
    }
    const std::optional<QString> twice = lab::withInputs(*changed, {{name, value}}, error);
    demand(twice == changed, "the same value once more changes nothing");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    const QString text = fuzz::stringOf(fuzz::textOf(data, size));
    const qsizetype last = text.lastIndexOf(u'\n');
    const QString script = text.left(last);
    const QString value = text.mid(last + 1);
    scan(script);
    const QList<lab::ScriptInput> inputs = lab::inputsOf(script);
    const int lines = 1 + lineEnds(script, 0, script.size());
    for (const lab::ScriptInput& input : inputs) {
        demand(!input.name.isEmpty() && !input.literal.isEmpty(), "an input has a name and a value");
        demand(input.line >= 1 && input.line <= lines, "an input has a line");
    }
    if (inputs.isEmpty())
        return 0;
    // One of them: each look at a script takes a while. Which one is in the fuzzer's hands.
    giveValue(script, inputs, inputs[value.size() % inputs.size()].name, value);
    return 0;
}

const fuzz::Target target("inputs", &attempt);

} // namespace

} // namespace fuzz_inputs
