#pragma once

#include "lab/core/figures/Figures.h"

#include <span>
#include <string_view>

namespace lab {

/// How a figure is written.
enum class FigureKind {
    Time,     ///< milliseconds since 1970-01-01T00:00Z; ISO 8601 in files
    Count,    ///< a whole number
    Number,   ///< a ratio without a unit
    Fraction, ///< 0.25; for people 25 %
    Money,    ///< cents, perhaps a part of one (a mean); two decimals of the account's currency in files
    Days,     ///< a whole number of days
    Minutes,
};

/// One figure: its key in files, its name and its formula for people.
struct FigureRow {
    std::string_view key;
    std::string_view name;
    std::string_view formula; ///< printed beside it; UTF-8; empty where there is nothing to work out
    FigureKind kind = FigureKind::Number;
    Figure Figures::*value = nullptr;

    [[nodiscard]] Figure of(const Figures& figures) const { return figures.*value; }
};

/// Every figure once, in the order of `summary.json`; the warnings, which are texts, come after the last.
[[nodiscard]] std::span<const FigureRow> figureRows();

/// The row with this key, null for any other text (keys are case-sensitive).
[[nodiscard]] const FigureRow* figureRow(std::string_view key);

} // namespace lab
