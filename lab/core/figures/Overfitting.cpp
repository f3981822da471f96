#include "lab/core/figures/StudyStatistics.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace lab {

namespace {

/// What the Sharpe ratio of any union of blocks can be worked out from.
struct BlockSums {
    double sum = 0;     ///< of the distances from the trial's mean over all blocks
    double squares = 0; ///< of these
    double least = 0;   ///< of the returns themselves
    double most = 0;
};

class Halves {
public:
    Halves(const ReturnMatrix& matrix, std::size_t blocks)
        : m_trials(matrix.trials)
        , m_blocks(blocks)
        , m_blockDays(matrix.days / blocks)
        , m_means(matrix.trials)
        , m_sums(matrix.trials * blocks)
    {
        const std::size_t first = matrix.days - m_blockDays * blocks;
        for (std::size_t trial = 0; trial < m_trials; ++trial)
            addTrial(matrix, first, trial);
    }

    /// The Sharpe ratio of each trial over the blocks whose bits are set; 0 without a deviation, as of a
    /// trial that has not traded.
    void sharpes(std::uint32_t chosen, std::vector<double>& ratios) const
    {
        for (std::size_t trial = 0; trial < m_trials; ++trial)
            ratios[trial] = sharpe(chosen, trial);
    }

private:
    void addTrial(const ReturnMatrix& matrix, std::size_t first, std::size_t trial)
    {
        double total = 0;
        for (std::size_t day = first; day < matrix.days; ++day)
            total += matrix.values[day * m_trials + trial];
        const double mean = total / static_cast<double>(matrix.days - first);
        m_means[trial] = mean;
        for (std::size_t block = 0; block < m_blocks; ++block) {
            BlockSums& sums = m_sums[trial * m_blocks + block];
            const std::size_t begin = first + block * m_blockDays;
            sums.least = sums.most = matrix.values[begin * m_trials + trial];
            for (std::size_t day = begin; day < begin + m_blockDays; ++day) {
                const double value = matrix.values[day * m_trials + trial];
                sums.sum += value - mean;
                sums.squares += (value - mean) * (value - mean);
                sums.least = std::min(sums.least, value);
                sums.most = std::max(sums.most, value);
            }
        }
    }

    [[nodiscard]] double sharpe(std::uint32_t chosen, std::size_t trial) const
    {
        BlockSums all;
        bool isFirst = true;
        for (std::size_t block = 0; block < m_blocks; ++block) {
            if ((chosen >> block & 1U) == 0)
                continue;
            const BlockSums& sums = m_sums[trial * m_blocks + block];
            all.sum += sums.sum;
            all.squares += sums.squares;
            all.least = isFirst ? sums.least : std::min(all.least, sums.least);
            all.most = isFirst ? sums.most : std::max(all.most, sums.most);
            isFirst = false;
        }
        if (all.least == all.most)
            return 0;
        const auto days = static_cast<double>(m_blockDays * m_blocks / 2);
        const double off = all.sum / days;
        const double variance = (all.squares - off * all.sum) / (days - 1);
        return variance > 0 ? (m_means[trial] + off) / std::sqrt(variance) : 0;
    }

    std::size_t m_trials;
    std::size_t m_blocks;
    std::size_t m_blockDays;
    std::vector<double> m_means;
    std::vector<BlockSums> m_sums; ///< trial by trial
};

/// The best of `before` (of equal ones the first) does not lie above the median of `after`; trials with equal
/// ratios share the mean of their ranks.
bool losesItsLead(const std::vector<double>& before, const std::vector<double>& after)
{
    const auto best
        = static_cast<std::size_t>(std::max_element(before.begin(), before.end()) - before.begin());
    std::size_t less = 0;
    std::size_t equal = 0;
    for (const double ratio : after) {
        less += ratio < after[best] ? 1 : 0;
        equal += ratio == after[best] ? 1 : 0;
    }
    // rank / (N + 1) <= 1/2, where rank = less + (equal + 1) / 2
    return 2 * less + equal <= after.size();
}

} // namespace

Figure overfittingProbability(const ReturnMatrix& matrix, std::size_t blocks)
{
    const bool isEven = blocks >= 2 && blocks <= 20 && blocks % 2 == 0;
    if (!isEven || matrix.trials < 2 || matrix.days < 2 * blocks
        || matrix.values.size() != matrix.days * matrix.trials)
        return {};
    const Halves halves(matrix, blocks);
    std::vector<double> one(matrix.trials);
    std::vector<double> other(matrix.trials);
    const std::uint32_t all = (std::uint32_t{1} << blocks) - 1;
    std::size_t lost = 0;
    std::size_t count = 0;
    // Each pair of halves once, the half with the newest block as `one`; either half may come first.
    for (std::uint32_t chosen = std::uint32_t{1} << (blocks - 1); chosen <= all; ++chosen) {
        if (static_cast<std::size_t>(std::popcount(chosen)) != blocks / 2)
            continue;
        halves.sharpes(chosen, one);
        halves.sharpes(all & ~chosen, other);
        lost += losesItsLead(one, other) ? 1 : 0;
        lost += losesItsLead(other, one) ? 1 : 0;
        count += 2;
    }
    return static_cast<double>(lost) / static_cast<double>(count);
}

} // namespace lab
