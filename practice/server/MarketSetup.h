#pragma once

#include "practice/core/market/PriceSource.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace practice {

class Clock;
class Database;
struct Options;

/// Which prices a database lives on.
struct MarketSetup {
    std::uint64_t seed = 1;
    double speed = 1;
    std::filesystem::path replay; ///< folder of the record; empty where everything is simulated
};

struct ChosenMarket {
    MarketSetup setup;
    std::unique_ptr<PriceSource> prices;
};

/// The market that the options ask for. What they leave open is as the database remembers it, and the choice
/// is remembered: the market of yesterday is still there today.
///
/// Another market would put other prices to trades that are open. It is refused while there are any, or, if
/// the options say so, they are closed at the prices of the old one first, all of them or none. Where another
/// version of the program made the old market, or the files of its record have changed, it has no prices any
/// more, and they are cancelled instead. Throws UsageError when it is refused, MarketDataError when a record
/// cannot be used, StorageError; nothing is remembered then.
[[nodiscard]] ChosenMarket chooseMarket(Database& database, const Options& options, const Clock& clock);

} // namespace practice
