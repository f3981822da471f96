#include "lab/core/study/SortFigure.h"

#include "lab/core/study/StudyError.h"

#include <algorithm>
#include <array>
#include <string>

namespace lab {

namespace {

constexpr std::array<std::string_view, 17> lowOnes{"volatility", "maxDrawdown", "maxDrawdownMoney",
    "maxDrawdownBalance", "longestDrawdownDays", "averageDrawdown", "ulcerIndex", "maxConsecutiveLosses",
    "commission", "spreadCost", "var95", "es95", "dailyLimitUse", "totalLimitUse", "ambiguousExits",
    "refusals", "kurtosis"};

} // namespace

bool SortFigure::isBetter(const Figure& one, const Figure& other) const
{
    if (!one || !other)
        return one.has_value() && !other.has_value();
    return lowIsBest ? *one < *other : *one > *other;
}

std::vector<std::string_view> sortKeys()
{
    std::vector<std::string_view> keys;
    for (const FigureRow& row : figureRows()) {
        if (row.kind != FigureKind::Time)
            keys.push_back(row.key);
    }
    return keys;
}

SortFigure sortFigureOf(std::string_view key)
{
    if (const FigureRow* row = figureRow(key); row && row->kind != FigureKind::Time)
        return {row, std::ranges::find(lowOnes, key) != lowOnes.end()};
    throw StudyError("there is no figure " + std::string(key));
}

} // namespace lab
