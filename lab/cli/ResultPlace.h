#pragma once

#include "lab/core/output/ResultFolder.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace lab {

struct Figures;
struct ReportWords;
struct RunResult;

/// What a folder holds, by the commands that write it.
enum class ResultKind { Run, Sweep, Walk, Challenge, Comparison };

/// "sweep", "walk" or "challenge": what a study's own files are named after. Empty for other kinds.
[[nodiscard]] std::string_view studyName(ResultKind kind);
/// The file that keeps a study's runs in its folder; empty for other kinds.
[[nodiscard]] std::string storeName(ResultKind kind);

/// Refuses, before any work, a place that a result must not or cannot be written to. One rule for all
/// commands: a new or empty folder is written to, and so is a former result of the same kind, whose files
/// are replaced; what is anything else stays, and so does a study that is not finished. Throws UsageError.
void checkResultPlace(const std::filesystem::path& folder, ResultKind kind);

/// Takes a run's files away, where they are: they tell of something that is no more.
void removeRun(const std::filesystem::path& folder);

/// The files of a run; `words` are for its page.
void addResult(
    ResultFolder& files, const RunResult& result, const Figures& figures, const ReportWords& words);

/// Writes all files of a run. Throws OutputError when that fails.
void writeResult(const std::filesystem::path& folder, const RunResult& result, const Figures& figures,
    const std::string& scriptName);

} // namespace lab
