#include "lab/core/market/HistorySources.h"

#include "practice/core/PointScale.h"
#include "practice/core/broker/CurrencyConverter.h"
#include "practice/core/market/MinuteFile.h"
#include "practice/core/market/ReplaySpec.h"
#include "practice/core/market/SimulatedMarket.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace lab {
namespace {

using practice::TimeMs;

std::size_t catalogPlace(std::string_view symbol)
{
    const std::vector<practice::SymbolSpec>& known = practice::symbolCatalog();
    if (const auto place = practice::findSymbol(known, symbol))
        return *place;
    std::string names;
    for (const practice::SymbolSpec& spec : known)
        names += (names.empty() ? "" : ", ") + spec.name;
    throw HistoryError("no symbol " + std::string(symbol) + "; there are " + names);
}

// Far beyond any market, and near enough to be counted with.
TimeMs bounded(TimeMs time)
{
    constexpr TimeMs most = 1'000'000 * practice::dayMs;
    return std::clamp(time, -most, most);
}

} // namespace

MinuteHistory readHistory(const std::filesystem::path& path)
{
    const auto symbol = practice::recordedSymbol(path);
    if (!symbol)
        throw HistoryError(path.string() + ": is not named SYMBOL-1m.csv");
    practice::MinuteFile file = [&] {
        try {
            return practice::readMinuteFile(path, 1);
        } catch (const practice::MarketDataError& error) {
            throw HistoryError(error.what());
        }
    }();
    std::vector<std::int32_t> numbers;
    numbers.reserve(file.times.size());
    for (const TimeMs time : file.times) {
        const TimeMs number = time / practice::minuteMs;
        if (number > std::numeric_limits<std::int32_t>::max())
            throw HistoryError(path.string() + ':' + std::to_string(numbers.size() + 2)
                + ": the time is too far in the future");
        numbers.push_back(static_cast<std::int32_t>(number));
    }
    practice::SymbolSpec spec = practice::replaySpec(*symbol, file, practice::symbolCatalog());
    return {std::move(spec), std::move(file.minutes), std::move(numbers), false};
}

MinuteHistory simulatedHistory(
    std::string_view symbol, std::uint64_t seed, double speed, TimeMs from, TimeMs to)
{
    const std::size_t place = catalogPlace(symbol);
    const TimeMs first = practice::floorDivide(bounded(from) + practice::minuteMs - 1, practice::minuteMs);
    const TimeMs end = practice::floorDivide(bounded(to), practice::minuteMs);
    if (first >= end)
        throw HistoryError(std::string(symbol) + ": no whole minute in this period");

    practice::SimulatedMarket market(seed, speed);
    const practice::SymbolSpec& spec = market.symbols()[place];
    const double unit = practice::pointsPerUnit(spec.digits);
    const auto points = [unit](double price) { return std::llround(price * unit); };
    practice::MinuteTable minutes;
    std::vector<std::int32_t> numbers;
    const auto halfSpreadBefore = [&](TimeMs time) {
        const practice::Quote quote = market.quote(place, time - 1);
        return (points(quote.ask) - points(quote.bid)) / 2;
    };
    std::int64_t opening = halfSpreadBefore(first * practice::minuteMs);
    constexpr TimeMs atOnce = practice::dayMs / practice::minuteMs;
    for (TimeMs start = first; start < end; start += atOnce) {
        const TimeMs stop = std::min(end, start + atOnce);
        const auto bars = market.bars(place, practice::Timeframe::M1, static_cast<std::size_t>(stop - start),
            stop * practice::minuteMs - 1);
        if (bars.size() != static_cast<std::size_t>(stop - start)
            || bars.front().time != start * practice::minuteMs)
            throw HistoryError(std::string(symbol) + ": no simulated prices in a part of this period");
        for (const practice::Bar& bar : bars) {
            const std::int64_t closing = halfSpreadBefore(bar.time + practice::minuteMs);
            const std::int64_t between = std::max(opening, closing);
            minutes.append(
                {{points(bar.open), points(bar.high), points(bar.low), points(bar.close), bar.volume},
                    {opening, between, between, closing}});
            opening = closing;
            numbers.push_back(static_cast<std::int32_t>(bar.time / practice::minuteMs));
        }
    }
    minutes.trim();
    numbers.shrink_to_fit();
    return {spec, std::move(minutes), std::move(numbers), true};
}

std::optional<std::string> contractWarning(const MinuteHistory& history)
{
    const practice::SymbolSpec& spec = history.spec;
    if (practice::findSymbol(practice::symbolCatalog(), spec.name))
        return std::nullopt;
    const std::string unit = spec.baseCurrency == spec.name ? std::string() : ' ' + spec.baseCurrency;
    return "The practice platform does not list " + spec.name + ": taken with a contract of "
        + std::to_string(std::llround(spec.contractSize)) + unit
        + " a lot, leverage up to 1:" + std::to_string(std::llround(spec.maxLeverage))
        + ", no commission and no swap. Results in money may mean nothing.";
}

std::optional<std::string> ratePairOf(const practice::SymbolSpec& spec)
{
    const std::vector<practice::SymbolSpec>& known = practice::symbolCatalog();
    const auto pair = practice::CurrencyConverter(known).pairFor(spec.profitCurrency);
    if (!pair || known[*pair].name == spec.name)
        return std::nullopt;
    return known[*pair].name;
}

} // namespace lab
