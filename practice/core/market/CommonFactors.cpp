#include "practice/core/market/CommonFactors.h"

#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace practice {

CommonFactors::CommonFactors(std::uint64_t seed, const FactorShares& shares)
    : m_seed(seed)
    , m_shares(shares)
    , m_ownWeight(std::sqrt(std::max(0.0,
          1 - shares.dollar * shares.dollar - shares.risk * shares.risk - shares.crypto * shares.crypto)))
{
}

void CommonFactors::draw(std::uint64_t kind, std::int64_t number, std::span<double> steps) const
{
    std::fill(steps.begin(), steps.end(), 0.0);
    const auto add = [&](std::uint64_t factor, double share) {
        if (share == 0)
            return;
        HashRandom random(hashKey({m_seed, factor, kind, static_cast<std::uint64_t>(number)}));
        for (double& step : steps)
            step += share * random.gaussian();
    };
    add(hashText("dollar"), m_shares.dollar);
    add(hashText("risk"), m_shares.risk);
    add(hashText("crypto"), m_shares.crypto);
}

double CommonFactors::draw(std::uint64_t kind, std::int64_t number) const
{
    double step = 0;
    draw(kind, number, {&step, 1});
    return step;
}

} // namespace practice
