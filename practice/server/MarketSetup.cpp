#include "practice/server/MarketSetup.h"

#include "practice/core/market/ReplayMarket.h"
#include "practice/core/market/SimulatedMarket.h"
#include "practice/server/Clock.h"
#include "practice/server/Options.h"
#include "practice/server/Platform.h"
#include "practice/server/Reset.h"
#include "practice/storage/MetaStore.h"
#include "practice/storage/TradeStore.h"

#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <system_error>

namespace practice {

namespace {

namespace fs = std::filesystem;

constexpr const char* seedKey = "seed";
constexpr const char* speedKey = "speed";
constexpr const char* replayKey = "replay";
constexpr const char* generatorKey = "generator";

// To be raised with every change of the prices that a seed and a moment give.
constexpr int generator = 2;

/// What the database knows of its market; nothing of what an older program did not write down.
struct Remembered {
    std::optional<std::uint64_t> seed;
    std::optional<double> speed;
    std::optional<fs::path> replay;
    std::optional<int> generator;
};

template <typename T> std::string textOf(T number)
{
    std::array<char, 40> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

template <typename T> std::optional<T> numberIn(const std::optional<std::string>& text)
{
    T number{};
    if (!text || std::from_chars(text->data(), text->data() + text->size(), number).ec != std::errc())
        return std::nullopt;
    return number;
}

Remembered recall(Database& database)
{
    MetaStore meta(database);
    return {numberIn<std::uint64_t>(meta.value(seedKey)), numberIn<double>(meta.value(speedKey)),
        meta.value(replayKey), numberIn<int>(meta.value(generatorKey))};
}

void remember(Database& database, const MarketSetup& setup)
{
    Transaction transaction(database);
    MetaStore meta(database);
    meta.setValue(seedKey, textOf(setup.seed));
    meta.setValue(speedKey, textOf(setup.speed));
    meta.setValue(replayKey, setup.replay.string());
    meta.setValue(generatorKey, textOf(generator));
    transaction.commit();
}

bool isSameFolder(const fs::path& left, const fs::path& right)
{
    std::error_code error;
    return left == right || fs::equivalent(left, right, error);
}

fs::path replayOf(const Options& options, const Remembered& known)
{
    if (options.simulate)
        return {};
    if (!options.replay)
        return known.replay.value_or(fs::path());
    // By the name it is known by, under which the place in the record is kept.
    if (known.replay && isSameFolder(*options.replay, *known.replay))
        return *known.replay;
    return fs::weakly_canonical(*options.replay);
}

void requireFolder(const MarketSetup& setup, const Options& options)
{
    std::error_code error;
    if (setup.replay.empty() || fs::is_directory(setup.replay, error))
        return;
    throw UsageError("the folder " + setup.replay.string() + ", whose prices " + options.database.string()
        + " plays, is gone; put it back, name another with --replay DIR, or simulate prices with"
          " --no-replay");
}

// A record plays on from where it began the first time this database saw its folder.
TimeMs replayStart(Database& database, const fs::path& folder, TimeMs now)
{
    const std::string key = "replayStart:" + folder.string();
    MetaStore meta(database);
    if (const auto stored = numberIn<TimeMs>(meta.value(key)))
        return *stored;
    meta.setValue(key, textOf(now));
    return now;
}

std::unique_ptr<PriceSource> makeMarket(Database& database, const MarketSetup& setup, TimeMs now)
{
    if (setup.replay.empty())
        return std::make_unique<SimulatedMarket>(setup.seed, setup.speed);
    return std::make_unique<ReplayMarket>(
        setup.replay, replayStart(database, setup.replay, now), setup.speed, setup.seed);
}

std::string textOf(const MarketSetup& setup)
{
    return "--seed " + textOf(setup.seed) + " --speed " + textOf(setup.speed)
        + (setup.replay.empty() ? " --no-replay" : " --replay " + setup.replay.string());
}

std::string openTradesText(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " open trade" : " open trades");
}

// What was opened in the market of another version of this program has no prices any more, not even old ones.
void requireNothingOpen(Database& database, const Options& options, const Clock& clock)
{
    const std::size_t open = TradeStore(database).load().liveTrades.size();
    if (open > 0 && !options.closeOpenTrades) {
        throw UsageError(openTradesText(open) + " in " + options.database.string()
            + " (positions and orders) belong to the market of another version of this program, whose prices"
              " are gone; add --close-open-trades to cancel them at no cost");
    }
    if (open > 0)
        cancelOpenTrades(database, clock.now());
}

void closeAtOldPrices(Database& database, const MarketSetup& old, const Options& options, const Clock& clock)
{
    requireFolder(old, options);
    const auto market = makeMarket(database, old, clock.now());
    Platform platform(database, *market, clock);
    platform.closeEverything();
    const std::size_t left = platform.broker().state().liveTrades.size();
    if (left > 0) {
        throw UsageError(openTradesText(left) + " in " + options.database.string()
            + " cannot be closed, for the old market has no price for them either; start with "
            + textOf(old));
    }
}

} // namespace

ChosenMarket chooseMarket(Database& database, const Options& options, const Clock& clock)
{
    const Remembered known = recall(database);
    const MarketSetup wanted{options.seed.value_or(known.seed.value_or(1)),
        options.speed.value_or(known.speed.value_or(1)), replayOf(options, known)};
    const MarketSetup old{known.seed.value_or(wanted.seed), known.speed.value_or(wanted.speed),
        known.replay.value_or(wanted.replay)};
    requireFolder(wanted, options);
    ChosenMarket chosen{wanted, makeMarket(database, wanted, clock.now())};

    if (known.generator.value_or(1) != generator) {
        requireNothingOpen(database, options, clock);
        remember(database, wanted);
        return chosen;
    }
    const bool moves = wanted.seed != old.seed || wanted.speed != old.speed || wanted.replay != old.replay;
    const std::size_t open = moves ? TradeStore(database).load().liveTrades.size() : 0;
    if (open > 0 && !options.closeOpenTrades) {
        throw UsageError(openTradesText(open) + " in " + options.database.string()
            + " (positions and orders) would jump to other prices; start with " + textOf(old)
            + ", or add --close-open-trades to close them at the old prices first");
    }
    if (open > 0)
        closeAtOldPrices(database, old, options, clock);
    remember(database, wanted);
    return chosen;
}

} // namespace practice
