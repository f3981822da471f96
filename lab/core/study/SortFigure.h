#pragma once

#include "lab/core/figures/FigureTable.h"

#include <string_view>
#include <vector>

namespace lab {

/// The figure that a study goes by.
struct SortFigure {
    const FigureRow* row = nullptr;
    bool lowIsBest = false; ///< falls, risks and costs

    /// One value is better than the other; any is better than none.
    [[nodiscard]] bool isBetter(const Figure& one, const Figure& other) const;
};

/// The keys that there are.
[[nodiscard]] std::vector<std::string_view> sortKeys();

/// Throws StudyError for an unknown key.
[[nodiscard]] SortFigure sortFigureOf(std::string_view key);

} // namespace lab
