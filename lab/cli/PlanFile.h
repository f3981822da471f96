#pragma once

#include "experts/ExpertScript.h"
#include "lab/cli/Options.h"
#include "lab/core/study/StudyStore.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace lab {

/// A sweep in chunks that several machines carry out: all that they need but the prices.
struct PlanFile {
    Options options; ///< of the command line that made it; `data` as seen from the current folder
    ExpertScript script;
    std::uint64_t sets = 0;
    std::uint64_t chunks = 0;
    StudyIdentity identity; ///< what must be the same on every machine
    std::string print;      ///< a digest of the file

    /// Which of the study's sets, by their places in its list, belong to a chunk (from 1): from, to.
    [[nodiscard]] std::pair<std::size_t, std::size_t> span(std::uint64_t chunk) const;
    /// How many sets that are.
    [[nodiscard]] std::size_t setsOf(std::uint64_t chunk) const;
    /// What a chunk's result has to say of itself.
    [[nodiscard]] StudyIdentity identityOf(std::uint64_t chunk) const;
};

/// The file's bytes. Records that were named relative to the current folder are named relative to `file`'s.
[[nodiscard]] std::string planText(const PlanFile& plan, const std::filesystem::path& file);

/// Throws StudyError, which names the file.
[[nodiscard]] PlanFile readPlan(const std::filesystem::path& file);

/// Where the result of a chunk lies: beside the plan.
[[nodiscard]] std::filesystem::path chunkPlace(const std::filesystem::path& plan, std::uint64_t chunk);

} // namespace lab
