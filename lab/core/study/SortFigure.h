#pragma once

#include "lab/core/figures/FigureTable.h"

#include <string_view>

namespace lab {

/// The figure that a study goes by.
struct SortFigure {
    const FigureRow* row = nullptr;
    bool lowIsBest = false; ///< falls, risks and costs

    /// One value is better than the other; any is better than none.
    [[nodiscard]] bool isBetter(const Figure& one, const Figure& other) const;
};

/// Throws StudyError, which names those that there are, for an unknown key.
[[nodiscard]] SortFigure sortFigureOf(std::string_view key);

} // namespace lab
