#include "practice/core/market/TickPath.h"

#include "practice/core/market/BarSplitter.h"
#include "practice/core/market/HashRandom.h"

#include <array>
#include <cmath>
#include <utility>

namespace practice {
namespace {

constexpr std::size_t mostSteps = 1200;

struct Corner {
    std::size_t step = 0;
    std::int64_t mid = 0;
};

// Of a step with so many steps remaining: the share of the way that it takes, and the weight of its noise. In
// a table, because cross rates may need whole days of such steps.
struct Remaining {
    double share;
    double noise;
};

const Remaining& remaining(std::size_t steps)
{
    static const std::vector<Remaining> table = [] {
        std::vector<Remaining> rows;
        for (std::size_t left = 0; left <= mostSteps; ++left) {
            const double share = 1 / static_cast<double>(std::max<std::size_t>(left, 1));
            rows.push_back({share, std::sqrt(1 - share)});
        }
        return rows;
    }();
    return table[std::min(steps, mostSteps)];
}

// The prices the path must touch, in the order in which it touches them.
class Route final {
public:
    Route(const GridBar& bar, std::size_t steps, HashRandom& random)
    {
        add(bar.open);
        const bool needsHigh = bar.high > std::max(bar.open, bar.close);
        const bool needsLow = bar.low < std::min(bar.open, bar.close);
        // A rising minute has usually seen its low first, a falling one its high.
        const bool lowFirst = (bar.close >= bar.open) == (random.uniform() < 0.75);
        if (lowFirst && needsLow)
            add(bar.low);
        if (needsHigh)
            add(bar.high);
        if (!lowFirst && needsLow)
            add(bar.low);
        add(bar.close);
        placeInTime(static_cast<double>(bar.high - bar.low), steps, random);
    }

    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] const Corner& operator[](std::size_t i) const { return m_corners[i]; }

private:
    void add(std::int64_t mid) { m_corners[m_size++].mid = mid; }

    // The longer way gets the longer time; at least one step each.
    void placeInTime(double range, std::size_t steps, HashRandom& random)
    {
        std::array<double, 3> weights{};
        double total = 0;
        for (std::size_t i = 0; i + 1 < m_size; ++i) {
            const double way = std::abs(static_cast<double>(m_corners[i + 1].mid - m_corners[i].mid));
            weights[i] = (way + 0.2 * range + 1) * (0.5 + random.uniform());
            total += weights[i];
        }
        const std::size_t last = steps - 1;
        double reached = 0;
        for (std::size_t i = 1; i + 1 < m_size; ++i) {
            reached += weights[i - 1];
            const auto wanted = static_cast<std::size_t>(static_cast<double>(last) * reached / total);
            m_corners[i].step = std::clamp(wanted, m_corners[i - 1].step + 1, last - (m_size - 1 - i));
        }
        m_corners[m_size - 1].step = last;
    }

    std::array<Corner, 4> m_corners{};
    std::size_t m_size = 0;
};

} // namespace

TickPath::TickPath(const BarNode& minute, std::size_t steps, std::uint64_t key)
    : m_mids(steps, minute.bar.open)
    , m_volume(minute.bar.volume)
{
    HashRandom random(key);
    const Route route(minute.bar, steps, random);
    const double stepDeviation = std::sqrt(walkVariance(minute) / static_cast<double>(steps));
    const double low = static_cast<double>(minute.bar.low);
    const double high = static_cast<double>(minute.bar.high);
    for (std::size_t leg = 0; leg + 1 < route.size(); ++leg) {
        const Corner from = route[leg];
        const Corner to = route[leg + 1];
        double mid = static_cast<double>(from.mid);
        for (std::size_t step = from.step + 1; step < to.step; ++step) {
            const Remaining& left = remaining(to.step - step + 1);
            const double drift = (static_cast<double>(to.mid) - mid) * left.share;
            mid = reflectInto(mid + drift + stepDeviation * left.noise * random.bell(), low, high);
            m_mids[step] = static_cast<std::int64_t>(mid + 0.5); // never below 0
        }
        m_mids[to.step] = to.mid;
    }
}

std::int64_t TickPath::mid(std::size_t step) const
{
    return m_mids[std::min(step, m_mids.size() - 1)];
}

std::int64_t TickPath::volumeBefore(std::size_t step) const
{
    return m_volume * static_cast<std::int64_t>(step) / static_cast<std::int64_t>(m_mids.size());
}

GridBar TickPath::until(std::size_t step) const
{
    GridBar bar = between(0, step);
    bar.volume = std::max(bar.volume, std::min<std::int64_t>(m_volume, 1));
    return bar;
}

GridBar TickPath::between(std::size_t from, std::size_t to) const
{
    to = std::min(to, m_mids.size() - 1);
    GridBar bar{
        m_mids[from], m_mids[from], m_mids[from], m_mids[to], volumeBefore(to + 1) - volumeBefore(from)};
    for (std::size_t step = from; step <= to; ++step) {
        bar.high = std::max(bar.high, m_mids[step]);
        bar.low = std::min(bar.low, m_mids[step]);
    }
    return bar;
}

} // namespace practice
