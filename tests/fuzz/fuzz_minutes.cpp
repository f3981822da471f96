// A file of recorded minutes: refused in one line that names the place, or read so that it can be written
// again.

#include "fuzz/Files.h"

#include "practice/core/PointScale.h"
#include "practice/core/market/MinuteFile.h"
#include "practice/core/market/ReplaySpec.h"
#include "practice/server/JsonText.h"

#include <algorithm>
#include <cmath>
#include <sstream>

using fuzz::demand;
using practice::MinuteFile;
using practice::MinuteRecord;

namespace fuzz_minutes {

namespace {

const std::string& name()
{
    static const std::string text = "EURUSD-1m.csv";
    return text;
}

std::int64_t leastOf(const practice::HalfSpreads& spreads)
{
    return std::min({spreads.open, spreads.high, spreads.low, spreads.close});
}

void demandSound(const MinuteFile& file)
{
    demand(file.minutes.size() >= 2 && file.times.size() == file.minutes.size(),
        "there are two minutes at least");
    demand(file.digits >= 0 && file.digits <= practice::maxPriceDigits, "prices have up to 8 decimals");
    demand(file.firstTime == file.times.front() && file.lastTime == file.times.back(), "the ends are told");
    for (std::size_t i = 0; i < file.times.size(); ++i) {
        demand(file.times[i] % practice::minuteMs == 0, "a time is a whole minute");
        demand(i == 0 || file.times[i - 1] < file.times[i], "times ascend");
        const MinuteRecord record = file.minutes.at(i);
        demand(record.bar.low > 0 && record.bar.high >= std::max(record.bar.open, record.bar.close)
                && record.bar.low <= std::min(record.bar.open, record.bar.close),
            "a bar holds its prices");
        demand(record.bar.volume >= 1 && leastOf(record.halfSpread) >= 0, "there is a volume");
    }
}

/// Mids, as they were read.
std::string textOf(const MinuteFile& file)
{
    std::string text = "time,open,high,low,close,volume\n";
    for (std::size_t i = 0; i < file.times.size(); ++i) {
        const practice::GridBar bar = file.minutes.at(i).bar;
        text += practice::isoTime(file.times[i]).substr(0, 19) + 'Z';
        for (const std::int64_t price : {bar.open, bar.high, bar.low, bar.close})
            text += ','
                + practice::fixedText(
                    static_cast<double>(price) / practice::pointsPerUnit(file.digits), file.digits);
        text += ',' + std::to_string(bar.volume) + '\n';
    }
    return text;
}

MinuteFile read(const std::string& text)
{
    std::istringstream stream(text);
    return practice::readMinutes(stream, name());
}

void demandSame(const MinuteFile& a, const MinuteFile& b)
{
    demand(a.digits == b.digits && a.times == b.times, "the times come back");
    for (std::size_t i = 0; i < a.times.size(); ++i) {
        const practice::GridBar left = a.minutes.at(i).bar;
        const practice::GridBar right = b.minutes.at(i).bar;
        demand(left.open == right.open && left.high == right.high && left.low == right.low
                && left.close == right.close && left.volume == right.volume,
            "the bars come back");
    }
}

/// A file's name says which symbol it is.
void readName(std::string_view name)
{
    const auto symbol = practice::recordedSymbol(std::string(name));
    if (!symbol)
        return;
    demand(!symbol->empty() && symbol->size() <= 32 && symbol->find_first_of("/\\ \n") == std::string::npos,
        "a symbol is a short word");
    demand(name.ends_with(*symbol + "-1m.csv"), "a symbol is what the name says");
}

/// What is made up of a record for a symbol that nobody knows.
void demandSound(const practice::SymbolSpec& spec, const MinuteFile& file)
{
    demand(spec.digits == file.digits, "a symbol has the decimals of its record");
    for (const double number : {spec.contractSize, spec.maxLeverage})
        demand(std::isfinite(number) && number > 0, "a contract is one");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    std::string_view text = fuzz::textOf(data, size);
    readName(fuzz::takeLine(text));
    MinuteFile file;
    try {
        file = read(std::string(fuzz::textOf(data, size)));
    } catch (const practice::MarketDataError& error) {
        demand(fuzz::namesLine(error.what(), name(), fuzz::textOf(data, size)),
            "a refusal is one line that names its line");
        return 0;
    }
    demandSound(file);
    demandSame(read(textOf(file)), file);
    for (const char* symbol : {"EURUSD", "ABCXYZ", "X"})
        demandSound(practice::replaySpec(symbol, file, practice::symbolCatalog()), file);
    return 0;
}

const fuzz::Target target("minutes", &attempt);

} // namespace

} // namespace fuzz_minutes
