#include "lab/core/figures/FigureTable.h"
#include "lab/core/output/JsonObject.h"
#include "lab/core/output/ResultFiles.h"
#include "lab/core/output/Texts.h"

#include <cmath>

namespace lab {

namespace {

std::string valueJson(FigureKind kind, double value)
{
    switch (kind) {
    case FigureKind::Time:
        return jsonString(isoTime(static_cast<practice::TimeMs>(value)));
    case FigureKind::Money:
        return fixedText(value / 100, 2);
    case FigureKind::Count:
    case FigureKind::Days:
        return fixedText(value, 0);
    case FigureKind::Number:
    case FigureKind::Fraction:
    case FigureKind::Minutes:
        break;
    }
    return shortestText(value);
}

} // namespace

std::string summaryJson(const Figures& figures)
{
    JsonObject summary;
    for (const FigureRow& row : figureRows()) {
        const Figure value = row.of(figures);
        if (value && std::isfinite(*value))
            summary.raw(row.key, valueJson(row.kind, *value));
        else
            summary.nothing(row.key);
    }
    summary.texts("warnings", figures.warnings);
    return summary.document();
}

} // namespace lab
