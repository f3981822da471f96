#include "practice/core/market/ReplayMarket.h"

#include "practice/core/market/HashRandom.h"
#include "practice/core/market/MarketFill.h"
#include "practice/core/market/ReplaySpec.h"
#include "practice/core/market/ReplayedSymbol.h"

#include <map>
#include <system_error>
#include <utility>

namespace practice {
namespace {

constexpr double shareBeforeStart = 0.4;

std::map<std::string, std::filesystem::path> recordsIn(const std::filesystem::path& folder)
{
    std::map<std::string, std::filesystem::path> records;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (auto name = recordedSymbol(entry->path()))
            records.emplace(std::move(*name), entry->path());
    }
    if (error)
        throw MarketDataError(folder.string() + ": " + error.message());
    if (records.empty())
        throw MarketDataError(folder.string() + ": holds no file named SYMBOL-1m.csv");
    return records;
}

} // namespace

ReplayMarket::ReplayMarket(
    const std::filesystem::path& folder, TimeMs startedAt, double speed, std::uint64_t seed)
{
    speed = boundedSpeed(speed);
    const std::vector<SymbolSpec>& known = symbolCatalog();
    std::vector<SymbolSpec> specs = known;
    std::vector<std::unique_ptr<SymbolPrices>> prices(specs.size());

    for (const auto& [name, path] : recordsIn(folder)) {
        MinuteFile file = readMinuteFile(path);
        m_digest = hashKey(
            {m_digest, hashText(name), static_cast<std::uint64_t>(file.digits), file.minutes.digest()});
        SymbolSpec spec = replaySpec(name, file, known);
        const double lead = shareBeforeStart * static_cast<double>(file.minutes.size() * minuteMs) / speed;
        auto replayed = std::make_unique<ReplayedSymbol>(
            spec, std::move(file.minutes), startedAt - static_cast<TimeMs>(lead), speed, seed);
        if (const auto place = findSymbol(specs, name)) {
            specs[*place] = std::move(spec);
            prices[*place] = std::move(replayed);
        } else {
            spec.sortOrder = specs.back().sortOrder + 1;
            specs.push_back(std::move(spec));
            prices.push_back(std::move(replayed));
        }
    }
    fillMarket(specs, prices, seed, speed);
    for (std::size_t i = 0; i < specs.size(); ++i)
        addSymbol(std::move(specs[i]), std::move(prices[i]));
}

} // namespace practice
