#include "lab/core/study/StudyHead.h"

#include "lab/core/output/FigureText.h"
#include "lab/core/output/Texts.h"

namespace lab {

JsonObject studyHead(const RunResult& about, std::string_view version)
{
    JsonObject json;
    json.count("format", 1);
    json.text("version", version);
    json.text("scriptHash", hexText(about.scriptHash));
    json.text("dataHash", hexText(about.dataHash));
    json.text("symbol", about.settings.symbol);
    return json;
}

std::string figureJson(const FigureRow& row, const Figure& value)
{
    const std::string text = figureData(row.kind, value);
    return text.empty() ? "null" : text;
}

std::string triedJson(const Grid& grid)
{
    JsonObject axes;
    for (const GridAxis& axis : grid.axes())
        axes.texts(axis.name, axis.values);
    return axes.value(1);
}

std::string fixedJson(const Grid& grid, const std::vector<RunInput>& inputs)
{
    JsonObject fixed;
    for (const RunInput& input : inputs) {
        if (!grid.isSwept(input.name))
            fixed.text(input.name, input.literal);
    }
    return fixed.value(1);
}

} // namespace lab
