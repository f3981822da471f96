#include "lab/cli/PriceSources.h"

#include "lab/cli/Progress.h"
#include "lab/core/market/HistorySources.h"
#include "practice/core/market/MinuteFile.h"

#include <algorithm>
#include <string>
#include <utility>

namespace lab {

namespace {

/// 2024-01-01T00:00:00Z: simulated runs have to begin somewhere, and be the same tomorrow.
constexpr practice::TimeMs usualStart = 1'704'067'200'000;
constexpr practice::TimeMs usualLength = 365 * practice::dayMs;

using Record = std::pair<std::string, std::filesystem::path>;

std::vector<Record> recordsOf(const std::vector<std::filesystem::path>& files)
{
    std::vector<Record> records;
    for (const std::filesystem::path& file : files) {
        const auto symbol = practice::recordedSymbol(file);
        if (!symbol)
            throw UsageError(file.string() + ": is not named SYMBOL-1m.csv");
        if (std::ranges::find(records, *symbol, &Record::first) != records.end())
            throw UsageError("two files for " + *symbol + ": one record each");
        records.emplace_back(*symbol, file);
    }
    return records;
}

const std::filesystem::path* fileFor(const std::vector<Record>& records, const std::string& symbol)
{
    const auto found = std::ranges::find(records, symbol, &Record::first);
    return found == records.end() ? nullptr : &found->second;
}

std::string namesOf(const std::vector<Record>& records)
{
    std::string names;
    for (const Record& record : records)
        names += (names.empty() ? "" : ", ") + record.first;
    return names;
}

std::vector<MinuteHistory> recorded(Options& options, Told told)
{
    const std::vector<Record> records = recordsOf(options.data);
    std::string& symbol = options.settings.symbol;
    if (symbol.empty() && records.size() > 1)
        throw UsageError("which symbol? --symbol takes one of " + namesOf(records));
    if (symbol.empty())
        symbol = records.front().first;
    const std::filesystem::path* file = fileFor(records, symbol);
    if (!file)
        throw UsageError("no file for the symbol " + symbol + "; there are " + namesOf(records));

    std::vector<MinuteHistory> histories;
    const auto read = [told](const std::filesystem::path& path) {
        Progress progress("Reading " + path.filename().string());
        if (told == Told::Progress)
            progress.showLabel();
        return readHistory(path);
    };
    histories.push_back(read(*file));
    if (const auto pair = ratePairOf(histories.front().spec)) {
        const std::filesystem::path* rates = fileFor(records, *pair);
        if (!rates)
            throw UsageError(symbol + " pays in " + histories.front().spec.profitCurrency + "; add " + *pair
                + "-1m.csv to --data, which turns that into USD");
        histories.push_back(read(*rates));
    }
    return histories;
}

std::vector<MinuteHistory> simulated(Options& options, Told told)
{
    RunSettings& settings = options.settings;
    if (!settings.from)
        settings.from = settings.to ? *settings.to - usualLength : usualStart;
    if (!settings.to)
        settings.to = *settings.from + usualLength;
    const practice::TimeMs warmup = settings.warmup() * practice::timeframeLength(settings.timeframe);
    const practice::TimeMs start = practice::barStart(*settings.from, settings.timeframe) - warmup;
    const auto history = [&](const std::string& symbol) {
        Progress progress("Simulating " + symbol);
        if (told == Told::Progress)
            progress.showLabel();
        return simulatedHistory(symbol, settings.seed, settings.speed, start, *settings.to);
    };
    std::vector<MinuteHistory> histories;
    histories.push_back(history(settings.symbol));
    if (const auto pair = ratePairOf(histories.front().spec))
        histories.push_back(history(*pair));
    return histories;
}

} // namespace

std::vector<MinuteHistory> loadHistories(Options& options, Told told)
{
    return options.data.empty() ? simulated(options, told) : recorded(options, told);
}

std::vector<const MinuteHistory*> historiesAt(const std::vector<MinuteHistory>& histories)
{
    std::vector<const MinuteHistory*> places;
    for (const MinuteHistory& history : histories)
        places.push_back(&history);
    return places;
}

} // namespace lab
