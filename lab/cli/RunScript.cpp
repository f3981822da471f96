#include "lab/cli/RunScript.h"

#include "lab/run/ScriptInputs.h"

#include <QFile>

#include <utility>

namespace lab {

ExpertScript readScript(const std::filesystem::path& path)
{
    QString error;
    auto script = ExpertScript::read(QFile::decodeName(path.c_str()), error);
    if (!script)
        throw UsageError(error.toStdString());
    return *std::move(script);
}

void settleInputs(RunSettings& settings, const ExpertScript& script)
{
    InputValues values;
    for (const auto& [name, value] : settings.inputs)
        values.append({QString::fromStdString(name), QString::fromStdString(value)});
    QString error;
    if (!withInputs(script.text, values, error))
        throw UsageError(error.toStdString());

    std::vector<std::pair<std::string, std::string>> inOrder;
    for (const ScriptInput& input : inputsOf(script.text)) {
        const std::string name = input.name.toStdString();
        for (const auto& given : settings.inputs) {
            if (given.first == name)
                inOrder.push_back(given);
        }
    }
    settings.inputs = std::move(inOrder);
}

} // namespace lab
