#include "lab/core/figures/FigureTable.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/JsonObject.h"
#include "lab/core/output/ResultFiles.h"

namespace lab {

std::string summaryJson(const Figures& figures)
{
    JsonObject summary;
    for (const FigureRow& row : figureRows()) {
        const std::string value = figureData(row.kind, row.of(figures));
        if (value.empty())
            summary.nothing(row.key);
        else
            summary.raw(row.key, row.kind == FigureKind::Time ? jsonString(value) : value);
    }
    summary.texts("warnings", figures.warnings);
    return summary.document();
}

} // namespace lab
