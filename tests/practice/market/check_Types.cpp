#include "practice/Check.h"

#include "practice/core/SymbolCatalog.h"
#include "practice/core/Types.h"

#include <set>

using namespace practice;

TEST_CASE("every timeframe key leads back to its timeframe and no other text does")
{
    for (const Timeframe timeframe : allTimeframes)
        CHECK(timeframeFromKey(timeframeKey(timeframe)) == timeframe);
    for (const char* key : {"", "1M", "2m", "1mn ", "60", "MN"})
        CHECK(!timeframeFromKey(key));
}

TEST_CASE("a month bar is thirty fixed days")
{
    CHECK_EQ(timeframeLength(Timeframe::MN), 30 * dayMs);
    CHECK_EQ(timeframeLength(Timeframe::W1), 7 * dayMs);
}

TEST_CASE("bar starts are multiples of the length before 1970 as well")
{
    CHECK_EQ(barStart(0, Timeframe::M1), TimeMs(0));
    CHECK_EQ(barStart(-1, Timeframe::M1), -minuteMs);
    CHECK_EQ(barStart(-minuteMs, Timeframe::M1), -minuteMs);
    CHECK_EQ(barStart(minuteMs + 59'999, Timeframe::M1), minuteMs);
    CHECK_EQ(barStart(-1, Timeframe::MN), -30 * dayMs);
}

TEST_CASE("the catalogue is in list order with unique names and even spreads")
{
    std::set<std::string> names;
    int order = 0;
    for (const SymbolSpec& spec : symbolCatalog()) {
        CHECK(spec.sortOrder > order);
        order = spec.sortOrder;
        CHECK(names.insert(spec.name).second);
        CHECK(spec.spreadPoints >= 2 && spec.spreadPoints % 2 == 0);
        CHECK(spec.digits >= 0 && spec.digits <= 8);
        CHECK(spec.basePrice > 0 && spec.dailyVolatility > 0 && spec.contractSize > 0);
        CHECK(!spec.description.empty() && !spec.baseCurrency.empty());
    }
    CHECK(names.size() >= 12);
}

TEST_CASE("yen pairs have three digits and the other pairs five")
{
    const auto& symbols = symbolCatalog();
    CHECK_EQ(symbols[findSymbol(symbols, "USDJPY").value()].digits, 3);
    CHECK_EQ(symbols[findSymbol(symbols, "EURJPY").value()].digits, 3);
    CHECK_EQ(symbols[findSymbol(symbols, "EURUSD").value()].digits, 5);
    CHECK(!findSymbol(symbols, "eurusd"));
}

TEST_CASE("every profit currency can be turned into USD with a pair of the catalogue")
{
    const auto& symbols = symbolCatalog();
    for (const SymbolSpec& spec : symbols) {
        CHECK(spec.profitCurrency == "USD" || findSymbol(symbols, spec.profitCurrency + "USD")
            || findSymbol(symbols, "USD" + spec.profitCurrency));
    }
}

CHECK_MAIN()
