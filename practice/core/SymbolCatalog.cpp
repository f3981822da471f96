#include "practice/core/SymbolCatalog.h"

#include <algorithm>
#include <map>

namespace practice {
namespace {

struct Charges {
    double commissionPerLot;
    double swapLong;
    double swapShort;
};

struct Motion {
    double basePrice;
    double dailyVolatility;
    int spreadPoints;
};

SymbolSpec pair(const char* base, const char* quote, const char* description, Charges charges, Motion motion)
{
    SymbolSpec spec;
    spec.name = std::string(base) + quote;
    spec.description = description;
    spec.baseCurrency = base;
    spec.profitCurrency = quote;
    spec.digits = spec.profitCurrency == "JPY" ? 3 : 5;
    spec.commissionPerLot = charges.commissionPerLot;
    spec.swapLong = charges.swapLong;
    spec.swapShort = charges.swapShort;
    spec.basePrice = motion.basePrice;
    spec.dailyVolatility = motion.dailyVolatility;
    spec.spreadPoints = motion.spreadPoints;
    return spec;
}

SymbolSpec dollarContract(const char* name, const char* description, int digits, double contractSize,
    double maxLeverage, Charges charges, Motion motion)
{
    SymbolSpec spec = pair(name, "USD", description, charges, motion);
    spec.name = name;
    spec.digits = digits;
    spec.contractSize = contractSize;
    spec.maxLeverage = maxLeverage;
    return spec;
}

std::vector<SymbolSpec> buildCatalog()
{
    std::vector<SymbolSpec> catalog{
        pair("EUR", "USD", "Euro vs US Dollar", {7, -7.2, 2.8}, {1.08500, 0.0050, 8}),
        pair("GBP", "USD", "British Pound vs US Dollar", {7, -3.1, -1.9}, {1.26500, 0.0058, 12}),
        pair("USD", "JPY", "US Dollar vs Japanese Yen", {7, 9.4, -17.8}, {149.500, 0.0062, 10}),
        pair("AUD", "USD", "Australian Dollar vs US Dollar", {7, -2.9, -0.6}, {0.65800, 0.0066, 10}),
        pair("USD", "CHF", "US Dollar vs Swiss Franc", {7, 5.8, -11.3}, {0.88200, 0.0054, 12}),
        pair("USD", "CAD", "US Dollar vs Canadian Dollar", {7, 0.9, -5.2}, {1.36000, 0.0045, 12}),
        pair("EUR", "GBP", "Euro vs British Pound", {7, -4.6, 0.7}, {0.85700, 0.0040, 10}),
        pair("EUR", "JPY", "Euro vs Japanese Yen", {7, 6.1, -14.9}, {162.200, 0.0065, 16}),
        dollarContract("XAUUSD", "Gold vs US Dollar", 2, 100, 50, {7, -42.0, 18.0}, {2350.00, 0.0095, 24}),
        dollarContract("US500", "US Large Cap Index", 1, 10, 20, {0, -8.0, 2.0}, {5250.0, 0.0105, 6}),
        dollarContract("USOIL", "Crude Oil", 2, 1'000, 20, {0, -1.2, -0.4}, {78.50, 0.0190, 4}),
        dollarContract(
            "BTCUSD", "Bitcoin vs US Dollar", 2, 1, 5, {0, -1'800, -600}, {64'000.00, 0.0300, 1'800}),
        dollarContract("ETHUSD", "Ether vs US Dollar", 2, 10, 5, {0, -90, -30}, {3'200.00, 0.0360, 160}),
    };
    catalog[8].baseCurrency = "XAU";
    catalog[11].baseCurrency = "BTC";
    catalog[12].baseCurrency = "ETH";
    const std::map<std::string_view, FactorShares> shared{{"EURUSD", {-0.85, 0.10, 0}},
        {"GBPUSD", {-0.76, 0.25, 0}}, {"USDJPY", {0.55, 0.35, 0}}, {"AUDUSD", {-0.60, 0.50, 0}},
        {"USDCHF", {0.85, 0.10, 0}}, {"USDCAD", {0.60, -0.45, 0}}, {"XAUUSD", {-0.40, -0.10, 0}},
        {"US500", {-0.10, 0.80, 0}}, {"USOIL", {-0.20, 0.45, 0}}, {"BTCUSD", {-0.10, 0.25, 0.85}},
        {"ETHUSD", {-0.10, 0.25, 0.80}}};
    int order = 0;
    for (SymbolSpec& spec : catalog) {
        spec.sortOrder = ++order;
        if (const auto found = shared.find(spec.name); found != shared.end())
            spec.shared = found->second;
    }
    return catalog;
}

} // namespace

const std::vector<SymbolSpec>& symbolCatalog()
{
    static const std::vector<SymbolSpec> catalog = buildCatalog();
    return catalog;
}

std::optional<std::size_t> findSymbol(const std::vector<SymbolSpec>& symbols, std::string_view name)
{
    const auto found = std::find_if(
        symbols.begin(), symbols.end(), [name](const SymbolSpec& spec) { return spec.name == name; });
    if (found == symbols.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - symbols.begin());
}

} // namespace practice
