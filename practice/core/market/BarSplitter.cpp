#include "practice/core/market/BarSplitter.h"

#include "practice/core/market/HashRandom.h"

#include <cmath>
#include <limits>

namespace practice {
namespace {

// Spread of the parts' log variances at each split: what makes volatility cluster inside the day.
constexpr double varianceSpread = 0.40;

// Several walks are drawn and the one that fits the bar's high and low best is bent to fit exactly.
constexpr int maxDraws = 6;
constexpr double goodFit = 0.35;

struct Walk {
    std::array<double, maxBarParts + 1> ends{};
    std::array<double, maxBarParts> highs{};
    std::array<double, maxBarParts> lows{};
    double top = 0;
    double bottom = 0;
};

struct Frame {
    double open;
    double close;
    double high;
    double low;
    [[nodiscard]] double upper() const { return std::max(open, close); }
    [[nodiscard]] double lower() const { return std::min(open, close); }
};

Walk drawWalk(
    const Frame& frame, std::span<const double> variances, const SharedSteps& shared, HashRandom& random)
{
    const std::size_t count = variances.size();
    double remaining = 0;
    for (const double variance : variances)
        remaining += variance;

    Walk walk;
    walk.ends[0] = frame.open;
    walk.ends[count] = frame.close;
    for (std::size_t i = 0; i + 1 < count; ++i) {
        const double share = variances[i] / remaining;
        const double step = shared.steps[i] + shared.ownWeight * random.gaussian();
        const double drift = (frame.close - walk.ends[i]) * share;
        const double noise = std::sqrt(variances[i] * (1 - share)) * step;
        walk.ends[i + 1] = reflectInto(walk.ends[i] + drift + noise, frame.low, frame.high);
        remaining -= variances[i];
    }
    walk.top = -std::numeric_limits<double>::infinity();
    walk.bottom = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < count; ++i) {
        const double from = walk.ends[i];
        const double to = walk.ends[i + 1];
        walk.highs[i] = bridgeMaximum(from, to, variances[i], random.uniform());
        walk.lows[i] = -bridgeMaximum(-from, -to, variances[i], random.uniform());
        walk.top = std::max(walk.top, walk.highs[i]);
        walk.bottom = std::min(walk.bottom, walk.lows[i]);
    }
    return walk;
}

double misfit(const Walk& walk, const Frame& frame, double slack)
{
    const double above = (walk.top - frame.upper() + slack) / (frame.high - frame.upper() + slack);
    const double below = (frame.lower() - walk.bottom + slack) / (frame.lower() - frame.low + slack);
    return std::abs(std::log(above)) + std::abs(std::log(below));
}

// Stretches what lies above both ends of the bar so that the walk's top becomes the bar's high, and the
// same below. Monotone, and leaves the ends where they are.
std::int64_t bend(double value, const Walk& walk, const Frame& frame)
{
    const double upper = frame.upper();
    const double lower = frame.lower();
    if (value > upper)
        value = upper + (value - upper) * (frame.high - upper) / (walk.top - upper);
    else if (value < lower)
        value = lower - (lower - value) * (lower - frame.low) / (lower - walk.bottom);
    return std::llround(std::clamp(value, frame.low, frame.high));
}

void placeVolumes(BarParts& parts, std::span<const double> variances, std::int64_t volume,
    std::int64_t minutesPerPart, HashRandom& random)
{
    const std::size_t count = variances.size();
    std::array<double, maxBarParts> weights{};
    double total = 0;
    for (std::size_t i = 0; i < count; ++i) {
        weights[i] = std::sqrt(variances[i]) * (0.8 + 0.4 * random.uniform());
        total += weights[i];
    }
    const std::int64_t spare = std::max<std::int64_t>(0, volume - minutesPerPart * std::int64_t(count));
    const std::int64_t least = spare > 0 ? minutesPerPart : volume / std::int64_t(count);
    double reached = 0;
    std::int64_t placed = 0;
    for (std::size_t i = 0; i + 1 < count; ++i) {
        reached += weights[i];
        const auto upTo = static_cast<std::int64_t>(static_cast<double>(spare) * (reached / total));
        parts[i].bar.volume = least + upTo - placed;
        placed = upTo;
        volume -= parts[i].bar.volume;
    }
    parts[count - 1].bar.volume = volume;
}

} // namespace

double walkVariance(const BarNode& node)
{
    const double open = static_cast<double>(node.bar.open);
    const double range = static_cast<double>(node.bar.high - node.bar.low);
    return std::max({node.variance * open * open, range * range / 4, 1e-6});
}

BarParts splitBar(const BarNode& parent, std::span<const double> shares, std::int64_t minutesPerPart,
    std::uint64_t key, const SharedSteps& shared)
{
    const std::size_t count = shares.size();
    HashRandom random(key);

    std::array<double, maxBarParts> parts{};
    double total = 0;
    for (std::size_t i = 0; i < count; ++i) {
        parts[i] = shares[i] * std::exp(varianceSpread * random.gaussian());
        total += parts[i];
    }
    const double walked = walkVariance(parent);
    std::array<double, maxBarParts> walkVariances{};
    BarParts result;
    for (std::size_t i = 0; i < count; ++i) {
        walkVariances[i] = walked * parts[i] / total;
        result[i].variance = parent.variance * parts[i] / total;
    }
    const std::span<const double> variances(walkVariances.data(), count);

    const GridBar& bar = parent.bar;
    const Frame frame{static_cast<double>(bar.open), static_cast<double>(bar.close),
        static_cast<double>(bar.high), static_cast<double>(bar.low)};
    const double slack = 0.1 * std::sqrt(walked);
    Walk best = drawWalk(frame, variances, shared, random);
    double bestMisfit = misfit(best, frame, slack);
    for (int draw = 1; draw < maxDraws && bestMisfit > goodFit; ++draw) {
        const Walk walk = drawWalk(frame, variances, shared, random);
        const double fit = misfit(walk, frame, slack);
        if (fit < bestMisfit) {
            best = walk;
            bestMisfit = fit;
        }
    }

    std::size_t highest = 0;
    std::size_t lowest = 0;
    for (std::size_t i = 0; i < count; ++i) {
        GridBar& part = result[i].bar;
        part.open = i == 0 ? bar.open : result[i - 1].bar.close;
        part.close = i + 1 == count ? bar.close : bend(best.ends[i + 1], best, frame);
        part.high = std::max({bend(best.highs[i], best, frame), part.open, part.close});
        part.low = std::min({bend(best.lows[i], best, frame), part.open, part.close});
        highest = best.highs[i] > best.highs[highest] ? i : highest;
        lowest = best.lows[i] < best.lows[lowest] ? i : lowest;
    }
    result[highest].bar.high = bar.high;
    result[lowest].bar.low = bar.low;
    placeVolumes(result, variances, bar.volume, minutesPerPart, random);
    return result;
}

} // namespace practice
