#pragma once

#include "lab/core/RunResult.h"
#include "lab/core/figures/FigureTable.h"
#include "lab/core/output/JsonObject.h"
#include "lab/core/study/Grid.h"

#include <string>
#include <string_view>
#include <vector>

namespace lab {

/// What the file of every study begins with: which script, prices and program it is about, as a run of it
/// knows them.
[[nodiscard]] JsonObject studyHead(const RunResult& about, std::string_view version);

/// A figure as in summary.json.
[[nodiscard]] std::string figureJson(const FigureRow& row, const Figure& value);

/// The values of each input that a study tries, as a JSON object within another one.
[[nodiscard]] std::string triedJson(const Grid& grid);

/// The inputs that all sets of a study have in common, as a JSON object within another one.
[[nodiscard]] std::string fixedJson(const Grid& grid, const std::vector<RunInput>& inputs);

} // namespace lab
