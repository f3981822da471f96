#include "lab/cli/Commands.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/Screen.h"
#include "lab/core/output/Texts.h"
#include "lab/run/ScriptInputs.h"

#include <iostream>

namespace lab {

int listInputs(const Options& options)
{
    const ExpertScript script = readScript(options.script);
    const QList<ScriptInput> inputs = inputsOf(script.text);
    if (inputs.isEmpty()) {
        std::cout << script.fileName.toStdString() << " has no inputs\n";
        return succeeded;
    }
    std::vector<std::vector<std::string>> rows{{"input", "value", "comment"}};
    for (const ScriptInput& input : inputs)
        rows.push_back({input.name.toStdString(), oneLine(input.literal.toStdString()),
            oneLine(input.comment.toStdString())});
    std::cout << columns(rows);
    return succeeded;
}

} // namespace lab
