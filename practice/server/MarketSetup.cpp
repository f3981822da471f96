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
#include <utility>

namespace practice {

namespace {

namespace fs = std::filesystem;

constexpr const char* seedKey = "seed";
constexpr const char* speedKey = "speed";
constexpr const char* replayKey = "replay";
constexpr const char* generatorKey = "generator";

// Raise it with every change of the prices that a seed and a moment give, or that a record gives.
constexpr int generator = 3;

// Keys for each folder that was ever played: when that began, and the digest of its record.
constexpr const char* replayStartKey = "replayStart:";
constexpr const char* replayDigestKey = "replayDigest:";

/// What the database remembers of its market. What an older program did not store is absent.
struct Remembered {
    std::optional<std::uint64_t> seed;
    std::optional<double> speed;
    std::optional<fs::path> replay;
    std::optional<int> generator;
};

/// A market, and what has to be remembered to make it again.
struct MadeMarket {
    std::unique_ptr<PriceSource> prices;
    TimeMs replayStart = 0;
    std::string replayDigest; ///< empty where everything is simulated
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

void remember(Database& database, const MarketSetup& setup, const MadeMarket& made)
{
    Transaction transaction(database);
    MetaStore meta(database);
    meta.setValue(seedKey, textOf(setup.seed));
    meta.setValue(speedKey, textOf(setup.speed));
    meta.setValue(replayKey, setup.replay.string());
    meta.setValue(generatorKey, textOf(generator));
    if (!setup.replay.empty()) {
        meta.setValue(replayStartKey + setup.replay.string(), textOf(made.replayStart));
        meta.setValue(replayDigestKey + setup.replay.string(), made.replayDigest);
    }
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
    // The name that is remembered, under which the place in the record is stored.
    if (known.replay && isSameFolder(*options.replay, *known.replay))
        return *known.replay;
    return fs::weakly_canonical(*options.replay);
}

bool isGone(const fs::path& replay)
{
    std::error_code error;
    return !replay.empty() && !fs::is_directory(replay, error);
}

void requireFolder(const MarketSetup& setup, const Options& options)
{
    if (!isGone(setup.replay))
        return;
    throw UsageError("the folder " + setup.replay.string() + ", whose prices " + options.database.string()
        + " plays, is gone; put it back, name another with --replay DIR, or simulate prices with"
          " --no-replay");
}

// A record plays on from where it began the first time this database saw its folder.
MadeMarket makeMarket(Database& database, const MarketSetup& setup, TimeMs now)
{
    if (setup.replay.empty())
        return {std::make_unique<SimulatedMarket>(setup.seed, setup.speed), 0, {}};
    const TimeMs start
        = numberIn<TimeMs>(MetaStore(database).value(replayStartKey + setup.replay.string())).value_or(now);
    auto replay = std::make_unique<ReplayMarket>(setup.replay, start, setup.speed, setup.seed);
    std::string digest = textOf(replay->digest());
    return {std::move(replay), start, std::move(digest)};
}

// An older program remembered the folder alone; then the files there are taken for those that it played.
bool isAsRemembered(Database& database, const MarketSetup& setup, const MadeMarket& made)
{
    return setup.replay.empty()
        || MetaStore(database).value(replayDigestKey + setup.replay.string()).value_or(made.replayDigest)
        == made.replayDigest;
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

std::size_t countOpen(Database& database)
{
    return TradeStore(database).load().liveTrades.size();
}

// Trades whose market is lost can only be cancelled.
void cancelWithoutPrices(
    Database& database, const Options& options, const Clock& clock, const std::string& reason)
{
    const std::size_t open = countOpen(database);
    if (open > 0 && !options.closeOpenTrades) {
        throw UsageError(openTradesText(open) + " in " + options.database.string()
            + " (positions and orders) belong to " + reason
            + ", or add --close-open-trades to cancel them at no cost");
    }
    if (open > 0)
        cancelOpenTrades(database, clock.now());
}

[[noreturn]] void refuseToClose(Database& database, const Options& options, const std::string& reason)
{
    throw UsageError(openTradesText(countOpen(database)) + " in " + options.database.string()
        + " cannot be closed at the old prices: " + reason
        + "; put the record back as it was, or begin the accounts anew with tavoran-practice reset --db "
        + options.database.string());
}

MadeMarket makeOldMarket(Database& database, const MarketSetup& old, const Options& options, TimeMs now)
{
    if (isGone(old.replay))
        refuseToClose(database, options, "the folder " + old.replay.string() + " is gone");
    try {
        MadeMarket made = makeMarket(database, old, now);
        if (isAsRemembered(database, old, made))
            return made;
    } catch (const MarketDataError& error) {
        refuseToClose(database, options, error.what());
    }
    refuseToClose(database, options, "the files in " + old.replay.string() + " have changed");
}

void closeAtOldPrices(Database& database, const MarketSetup& old, const Options& options, const Clock& clock)
{
    const MadeMarket market = makeOldMarket(database, old, options, clock.now());
    Platform platform(database, *market.prices, clock);
    if (!platform.closeEverything())
        refuseToClose(database, options, "the market has no price for a position");
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
    MadeMarket made = makeMarket(database, wanted, clock.now());

    const bool moves = wanted.seed != old.seed || wanted.speed != old.speed || wanted.replay != old.replay;
    if (known.generator.value_or(1) != generator) {
        cancelWithoutPrices(database, options, clock,
            "the market of another version of this program, whose prices are gone; start with that version");
    } else if (wanted.replay == old.replay && !isAsRemembered(database, wanted, made)) {
        cancelWithoutPrices(database, options, clock,
            "what was recorded in " + wanted.replay.string()
                + ", where the files have changed; put the old ones back");
    } else if (const std::size_t open = moves ? countOpen(database) : 0; open > 0) {
        if (!options.closeOpenTrades) {
            throw UsageError(openTradesText(open) + " in " + options.database.string()
                + " (positions and orders) would jump to other prices; start with " + textOf(old)
                + ", or add --close-open-trades to close them at the old prices first");
        }
        closeAtOldPrices(database, old, options, clock);
    }
    remember(database, wanted, made);
    return {wanted, std::move(made.prices)};
}

} // namespace practice
