#pragma once

#include "practice/core/market/MinuteTable.h"

#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace practice {

/// Recorded minutes of one instrument, ascending in time, with holes where nothing was recorded.
struct MinuteFile {
    int digits = 0;       ///< the most decimals that any price of the file is written with
    TimeMs firstTime = 0; ///< of the first minute
    TimeMs lastTime = 0;  ///< of the last one
    MinuteTable minutes;  ///< at least so many as asked for; volumes are at least 1, half spreads too where
                          ///< there are any
    std::vector<TimeMs> times; ///< of each minute
};

/// A market data file that cannot be used; what() is one line that names the file and, if a line of it is
/// wrong, that line: "EURUSD-1m.csv:17: high is below open or close".
class MarketDataError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The symbol whose minutes a file of this name holds: SYMBOL-1m.csv, SYMBOL made of letters, digits, '.' and
/// '_', 32 of them at most. Nothing for another name.
[[nodiscard]] std::optional<std::string> recordedSymbol(const std::filesystem::path& path);

/// Reads comma-separated minutes: a header "time,open,high,low,close,volume", optionally followed by
/// ",ask_open,ask_high,ask_low,ask_close", then rows like "2014-05-01T00:00:00Z,1.38676,...". Times are
/// UTC, whole minutes, strictly ascending. Prices are plain decimals above 0 and below 10^7 with at most 8
/// decimals. With ask columns the first prices are bids, and each price has its own spread, rounded up to an
/// even number of points: its ask is as recorded then and its bid a point lower. Without, the prices are
/// taken for mids. A volume of 0 is replaced by a believable one. Throws MarketDataError, also for fewer
/// minutes than `fewest`, which is at least 1: a market of one would stand still.
[[nodiscard]] MinuteFile readMinuteFile(const std::filesystem::path& path, std::size_t fewest = 2);

/// The same from a stream; `name` stands for the file in messages.
[[nodiscard]] MinuteFile readMinutes(std::istream& input, const std::string& name, std::size_t fewest = 2);

} // namespace practice
