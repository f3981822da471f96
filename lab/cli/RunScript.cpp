#include "lab/cli/RunScript.h"

#include "lab/cli/NearName.h"
#include "lab/cli/PriceSources.h"
#include "lab/cli/ResultPlace.h"
#include "lab/run/ScriptInputs.h"

#include <QFile>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace lab {

namespace {

/// Whether it is what a study takes for a number: 20:40:10 or 20,40.
bool isRange(std::string_view value)
{
    return value.find_first_of(":,") != std::string_view::npos
        && value.find_first_not_of("0123456789.-+eE:,") == std::string_view::npos;
}

/// What to add to the refusal of the values.
std::string rangeHint(const RunSettings& settings, const QList<ScriptInput>& inputs)
{
    for (const ScriptInput& input : inputs) {
        const auto isGiven = [name = input.name.toStdString()](
                                 const auto& given) { return given.first == name && isRange(given.second); };
        if (input.kind == ScriptInput::Kind::Number && std::ranges::any_of(settings.inputs, isGiven))
            return "; ranges and lists of values are for sweep, walk and plan";
    }
    return {};
}

} // namespace

ExpertScript readScript(const std::filesystem::path& path)
{
    QString error;
    auto script = ExpertScript::read(QFile::decodeName(path.c_str()), error);
    if (!script)
        throw UsageError(error.toStdString());
    return *std::move(script);
}

void refuseMistyped(const ExpertScript& script, const std::string& name)
{
    const QList<ScriptInput> inputs = inputsOf(script.text);
    if (std::ranges::find(inputs, QString::fromStdString(name), &ScriptInput::name) != inputs.end())
        return;
    const QStringList names = settableNames(script.text);
    std::vector<std::string> known;
    for (const QString& settable : names)
        known.push_back(settable.toStdString());
    const std::string meant = suggestion(name, {known.begin(), known.end()});
    if (!meant.empty())
        throw UsageError("The script has no input " + name + "; it has "
            + names.join(QStringLiteral(", ")).toStdString() + meant);
}

void settleInputs(RunSettings& settings, const ExpertScript& script)
{
    InputValues values;
    for (const auto& [name, value] : settings.inputs) {
        refuseMistyped(script, name);
        values.append({QString::fromStdString(name), QString::fromStdString(value)});
    }
    QString error;
    const QList<ScriptInput> inputs = inputsOf(script.text);
    if (!withInputs(script.text, values, error))
        throw UsageError(error.toStdString() + rangeHint(settings, inputs));

    std::vector<std::pair<std::string, std::string>> inOrder;
    for (const ScriptInput& input : inputs) {
        const std::string name = input.name.toStdString();
        for (const auto& given : settings.inputs) {
            if (given.first == name)
                inOrder.push_back(given);
        }
    }
    settings.inputs = std::move(inOrder);
}

GivenRun readGivenRun(Options& options)
{
    ExpertScript script = readScript(options.script);
    settleInputs(options.settings, script);
    if (!options.out.empty())
        checkResultPlace(options.out, ResultKind::Run);
    return {std::move(script), loadHistories(options)};
}

} // namespace lab
