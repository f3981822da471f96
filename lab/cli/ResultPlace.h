#pragma once

#include "lab/core/output/ResultFolder.h"

#include <filesystem>
#include <string>

namespace lab {

struct Figures;
struct ReportWords;
struct RunResult;

/// Refuses, before any work, a place that a result must not or cannot be written to: a folder that holds
/// something else, a file, a folder without permission. Throws UsageError.
void checkResultPlace(const std::filesystem::path& folder);

/// The files of a run; `words` are for its page.
void addResult(
    ResultFolder& files, const RunResult& result, const Figures& figures, const ReportWords& words);

/// Writes all files of a run. Throws OutputError when that fails.
void writeResult(const std::filesystem::path& folder, const RunResult& result, const Figures& figures,
    const std::string& scriptName);

} // namespace lab
