#pragma once

#include "lab/core/RunResult.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lab {

struct Figures;

/// The most bytes that a page has, however long the run was.
inline constexpr std::size_t maxPageBytes = 3 * 1024 * 1024;

/// What a page says of the study that its result has come out of.
struct StudyWords {
    std::string name;    ///< "Sweep"; before the script in the title
    std::string summary; ///< before the verdict, a sentence: "Sweep, the best of 8 sets."
    std::vector<std::pair<std::string, std::string>> settings; ///< names and values
};

/// What a page says that the result does not know.
struct ReportWords {
    std::string script; ///< the script's name, without its folder
    /// Further parts, behind the figures; HTML that is right already, such as heatMap().
    std::vector<std::string> parts;
    std::optional<StudyWords> study = std::nullopt;
};

/// report.html: one page that loads nothing, for light and dark screens and for paper. The same result gives
/// the same bytes.
[[nodiscard]] std::string reportPage(
    const RunResult& result, const Figures& figures, const ReportWords& words);

} // namespace lab
