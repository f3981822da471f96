#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

/// How much of its movement a symbol shares with others: its correlation with the strength of the dollar,
/// with the appetite for risk and with the fashion for coins. The squares add up to 1 at most.
struct FactorShares {
    double dollar = 0;
    double risk = 0;
    double crypto = 0;
};

/// One tradable instrument: what a trader sees of it, what the broker charges for it, how it moves.
struct SymbolSpec {
    std::string name;
    std::string description;
    int digits = 5;                ///< decimals of a price; one point is 10^-digits
    int sortOrder = 0;             ///< position in lists, ascending, unique
    double contractSize = 100'000; ///< units per lot
    double commissionPerLot = 0;   ///< USD per lot, charged once when the position opens; >= 0
    double swapLong = 0;        ///< points per lot and night for a long position; negative costs the trader
    double swapShort = 0;       ///< the same for a short position
    std::string baseCurrency;   ///< what one unit is: "EUR" in EURUSD, the instrument itself elsewhere
    std::string profitCurrency; ///< currency of price and profit: "USD" in EURUSD, "JPY" in USDJPY
    double maxLeverage = 100; ///< margin never uses a higher leverage than this, whatever the account allows
    double minLots = 0.01;
    double maxLots = 1'000;
    double lotStep = 0.01;

    double basePrice = 1;           ///< the level the simulated price keeps returning to
    double dailyVolatility = 0.006; ///< typical standard deviation of one day's log return
    int spreadPoints = 10;          ///< typical spread in points; even and >= 2
    FactorShares shared;            ///< none for cross rates: these get it from their legs
};

/// The built-in instruments in list order. Every profit currency that is not USD has a pair against USD
/// in the catalogue ("XXXUSD" or "USDXXX"), so each result can be expressed in USD.
[[nodiscard]] const std::vector<SymbolSpec>& symbolCatalog();

/// Position of the symbol with exactly this name (case-sensitive); nothing when there is none.
[[nodiscard]] std::optional<std::size_t> findSymbol(
    const std::vector<SymbolSpec>& symbols, std::string_view name);

} // namespace practice
