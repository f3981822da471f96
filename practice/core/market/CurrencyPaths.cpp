#include "practice/core/market/CurrencyPaths.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <string>
#include <utility>

namespace practice {
namespace {

bool isPair(const SymbolSpec& spec)
{
    return spec.name == spec.baseCurrency + spec.profitCurrency;
}

class CurrencyTree final {
public:
    explicit CurrencyTree(const std::vector<SymbolSpec>& symbols)
        : m_symbols(symbols)
    {
    }

    void add(std::size_t symbol) { m_branches.push_back(symbol); }

    /// The way from the one currency to the other; empty when there is none.
    [[nodiscard]] std::vector<CrossLeg> path(const std::string& from, const std::string& to) const
    {
        std::vector<CrossLeg> legs;
        std::set<std::string> seen{from};
        return find(from, to, seen, legs) ? legs : std::vector<CrossLeg>();
    }

private:
    bool find(const std::string& from, const std::string& to, std::set<std::string>& seen,
        std::vector<CrossLeg>& legs) const
    {
        if (from == to)
            return true;
        for (const std::size_t branch : m_branches) {
            const SymbolSpec& spec = m_symbols[branch];
            const bool inverted = spec.profitCurrency == from;
            if (!inverted && spec.baseCurrency != from)
                continue;
            const std::string& next = inverted ? spec.baseCurrency : spec.profitCurrency;
            if (!seen.insert(next).second)
                continue;
            legs.push_back({branch, inverted});
            if (find(next, to, seen, legs))
                return true;
            legs.pop_back();
        }
        return false;
    }

    const std::vector<SymbolSpec>& m_symbols;
    std::vector<std::size_t> m_branches;
};

} // namespace

std::vector<std::vector<CrossLeg>> crossLegs(
    const std::vector<SymbolSpec>& symbols, const std::vector<bool>& recorded)
{
    const auto rank = [&](std::size_t symbol) {
        const SymbolSpec& spec = symbols[symbol];
        if (recorded[symbol])
            return 0;
        return spec.baseCurrency == "USD" || spec.profitCurrency == "USD" ? 1 : 2;
    };
    std::vector<std::size_t> order(symbols.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, rank);

    CurrencyTree tree(symbols);
    std::vector<std::vector<CrossLeg>> legs(symbols.size());
    for (const std::size_t symbol : order) {
        const SymbolSpec& spec = symbols[symbol];
        if (!isPair(spec))
            continue;
        std::vector<CrossLeg> path = tree.path(spec.baseCurrency, spec.profitCurrency);
        if (path.empty())
            tree.add(symbol);
        else if (!recorded[symbol])
            legs[symbol] = std::move(path);
    }
    return legs;
}

} // namespace practice
