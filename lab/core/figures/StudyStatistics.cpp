#include "lab/core/figures/StudyStatistics.h"

#include "lab/core/figures/DailyReturns.h"
#include "lab/core/figures/StableMath.h"

#include <algorithm>
#include <cmath>

namespace lab {

namespace {

constexpr double eulerMascheroni = 0.57721566490153286;
constexpr double euler = 2.71828182845904524;
constexpr double quantile975 = 1.9599639845400542; ///< of the standard normal distribution

} // namespace

Figure dailySharpe(std::span<const double> returns)
{
    const Moments moments = momentsOf(returns);
    if (!moments.spreads())
        return {};
    return finite(moments.mean / moments.deviation);
}

Figure probabilisticSharpe(std::span<const double> returns, double threshold)
{
    const Moments moments = momentsOf(returns);
    if (!moments.spreads() || !moments.skew || !moments.kurtosis)
        return {};
    const double sharpe = moments.mean / moments.deviation;
    const double fourth = *moments.kurtosis + 3;
    const double variance = 1 - *moments.skew * sharpe + (fourth - 1) / 4 * sharpe * sharpe;
    if (!(variance > 0))
        return {};
    const auto count = static_cast<double>(moments.count);
    return finite(stable::normalShare((sharpe - threshold) * std::sqrt(count - 1) / std::sqrt(variance)));
}

Figure expectedMaximumSharpe(std::size_t trials, double variance)
{
    if (trials == 0 || !(variance >= 0))
        return {};
    if (trials == 1)
        return 0.0;
    // Φ⁻¹(1 − x) = −Φ⁻¹(x), which keeps all digits of a small x.
    const auto count = static_cast<double>(trials);
    const double best = -stable::normalQuantile(1 / count);
    const double beyond = -stable::normalQuantile(1 / (count * euler));
    return finite(std::sqrt(variance) * ((1 - eulerMascheroni) * best + eulerMascheroni * beyond));
}

Figure deflatedSharpe(
    std::span<const double> returns, std::span<const double> trialSharpes, std::size_t trials)
{
    if (trialSharpes.size() < 2)
        return {};
    const double deviation = momentsOf(trialSharpes).deviation;
    const Figure threshold
        = expectedMaximumSharpe(std::max(trials, trialSharpes.size()), deviation * deviation);
    return threshold ? probabilisticSharpe(returns, *threshold) : Figure();
}

std::optional<ShareRange> wilsonInterval(std::size_t hits, std::size_t all)
{
    if (all == 0 || hits > all)
        return {};
    const auto count = static_cast<double>(all);
    const double share = static_cast<double>(hits) / count;
    const double square = quantile975 * quantile975 / count;
    const double centre = (share + square / 2) / (1 + square);
    const double half
        = quantile975 * std::sqrt(share * (1 - share) / count + square / (4 * count)) / (1 + square);
    return ShareRange{.share = share,
        .low = hits == 0 ? 0 : std::max(0.0, centre - half),
        .high = hits == all ? 1 : std::min(1.0, centre + half)};
}

namespace {

/// The places of a grid, one number for each axis, the last running fastest.
class GridPlaces {
public:
    explicit GridPlaces(std::span<const std::size_t> sizes)
        : m_sizes(sizes)
    {
    }

    [[nodiscard]] std::size_t count() const
    {
        std::size_t product = 1;
        for (const std::size_t size : m_sizes)
            product *= size;
        return product;
    }

    /// Calls `visit` with each place that is one step away, diagonals included.
    template <typename Visit> void forNeighbours(std::size_t place, Visit visit) const
    {
        walk(place, 0, 0, false, visit);
    }

private:
    template <typename Visit>
    void walk(std::size_t place, std::size_t axis, std::size_t reached, bool moved, Visit& visit) const
    {
        if (axis == m_sizes.size()) {
            if (moved)
                visit(reached);
            return;
        }
        std::size_t stride = 1;
        for (std::size_t later = axis + 1; later < m_sizes.size(); ++later)
            stride *= m_sizes[later];
        const std::size_t step = place / stride % m_sizes[axis];
        if (step > 0)
            walk(place, axis + 1, reached + (step - 1) * stride, true, visit);
        walk(place, axis + 1, reached + step * stride, moved, visit);
        if (step + 1 < m_sizes[axis])
            walk(place, axis + 1, reached + (step + 1) * stride, true, visit);
    }

    std::span<const std::size_t> m_sizes;
};

} // namespace

Figure shareOf(const Figure& part, const Figure& whole)
{
    if (!part || !whole || *whole <= 0 || std::abs(*part) > mostShare * *whole)
        return {};
    return finite(*part / *whole);
}

std::vector<Figure> neighbourhoodStability(std::span<const std::size_t> sizes, std::span<const Figure> values)
{
    std::vector<Figure> stability(values.size());
    const GridPlaces places(sizes);
    if (places.count() != values.size())
        return stability;
    for (std::size_t place = 0; place < values.size(); ++place) {
        if (!values[place] || *values[place] <= 0)
            continue;
        double sum = 0;
        std::size_t count = 0;
        places.forNeighbours(place, [&](std::size_t neighbour) {
            if (values[neighbour]) {
                sum += *values[neighbour];
                ++count;
            }
        });
        if (count > 0)
            stability[place] = shareOf(sum / static_cast<double>(count), values[place]);
    }
    return stability;
}

} // namespace lab
