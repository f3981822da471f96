#pragma once

#include "practice/core/market/PriceSource.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace practice {

class Clock;
class Database;
struct Options;

/// What determines the prices of a database.
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
/// is remembered, so that yesterday's market is still there today.
///
/// Another market would put other prices to trades that are open. It is refused while there are any, or, if
/// the options say so, they are closed at the prices of the old one first, all of them or none. If the old
/// market was made by another version of the program, or the files of its record have changed, its prices are
/// lost, and the trades are cancelled instead. Throws UsageError when the market is refused, MarketDataError
/// when a record cannot be used, and StorageError; nothing is remembered then.
[[nodiscard]] ChosenMarket chooseMarket(Database& database, const Options& options, const Clock& clock);

} // namespace practice
