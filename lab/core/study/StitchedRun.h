#pragma once

#include "lab/core/RunResult.h"
#include "lab/core/study/Grid.h"

#include <optional>

namespace lab {

/// One run out of several that follow one another, each of which begins with the balance that the one before
/// ended with. Drawdowns reach over their borders: by each day's lowest equity and the days' ends, or within
/// a single run, whichever is deeper.
class StitchedRun final {
public:
    StitchedRun() = default;
    /// Of runs that share all inputs but those that are swept in `grid`.
    explicit StitchedRun(Grid grid);

    void add(const RunResult& run);
    /// What has been added; absent before.
    [[nodiscard]] const std::optional<RunResult>& result() const { return m_result; }

private:
    void addDays(const RunResult& run);
    void deepen();

    Grid m_grid;
    std::optional<RunResult> m_result;
};

} // namespace lab
