#pragma once

#include "lab/cli/LabFolder.h"

#include <algorithm>

inline const std::string crossing = std::string(PROJECT_ROOT) + "/resources/examples/MA_Cross.js";

inline const std::set<std::string> resultFiles{
    "report.html", "summary.json", "trades.csv", "equity.csv", "daily.csv", "journal.txt", "run.json"};

/// A folder with six days of minutes in it, for runs with a warm-up of 100 bars.
struct RunFolder : LabFolder {
    RunFolder()
        : LabFolder(6)
    {
    }

    [[nodiscard]] LabProcess::Result run(
        const std::string& script, const std::vector<std::string>& more = {}) const
    {
        return lab.run(joined({"run", script, "--data", "EURUSD-1m.csv", "--warmup", "100"}, more));
    }
    /// Whether two folders hold the same result, to the byte.
    [[nodiscard]] bool haveSameResult(const std::string& one, const std::string& other) const
    {
        return filesIn(one) == resultFiles && filesIn(other) == resultFiles
            && std::ranges::all_of(resultFiles, [&](const std::string& name) {
                   return contentOf(one + '/' + name) == contentOf(other + '/' + name);
               });
    }
};
