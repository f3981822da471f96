#include "lab/cli/Commands.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/Screen.h"
#include "lab/core/output/Texts.h"
#include "lab/run/ScriptInputs.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace lab {

int listInputs(const Options& options)
{
    const ExpertScript script = readScript(options.script);
    QList<ScriptInput> inputs = inputsOf(script.text);
    if (inputs.isEmpty()) {
        std::cout << script.fileName.toStdString() << " has no inputs\n";
        return succeeded;
    }
    std::vector<std::vector<std::string>> rows{{"input", "value", "comment"}};
    // What a script counts or remembers by is seldom what somebody wants to set.
    std::ranges::stable_partition(inputs, [](const ScriptInput& input) { return !input.isChanged; });
    for (const ScriptInput& input : inputs) {
        std::string comment = oneLine(input.comment.toStdString());
        if (input.isChanged)
            comment += comment.empty() ? "(changed by the script)" : " (changed by the script)";
        rows.push_back({input.name.toStdString(), oneLine(input.literal.toStdString()), std::move(comment)});
    }
    std::cout << columns(rows);
    return succeeded;
}

} // namespace lab
