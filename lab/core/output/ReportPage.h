#pragma once

#include "lab/core/RunResult.h"

#include <cstddef>
#include <string>
#include <vector>

namespace lab {

struct Figures;

/// The most bytes that a page has, however long the run was.
inline constexpr std::size_t maxPageBytes = 3 * 1024 * 1024;

/// What a page says that the result does not know.
struct ReportWords {
    std::string script; ///< the script's name, without its folder
    /// Further parts, behind the journal; HTML that is right already, such as heatMap().
    std::vector<std::string> parts;
};

/// report.html: one page that loads nothing, for light and dark screens and for paper. The same result gives
/// the same bytes.
[[nodiscard]] std::string reportPage(
    const RunResult& result, const Figures& figures, const ReportWords& words);

} // namespace lab
