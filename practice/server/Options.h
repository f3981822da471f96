#pragma once

#include "practice/line/LineQuality.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace practice {

/// What the command line asked for.
struct Options {
    std::string address = "127.0.0.1";
    std::string hostName;           ///< another name by which the platform is called; empty: none
    std::uint16_t port = 5001;      ///< 0 lets the system choose a free one
    std::filesystem::path database; ///< never empty after parsing
    // Of these, what is absent is as the database remembers it.
    std::optional<std::uint64_t> seed;
    std::optional<double> speed;
    std::optional<std::filesystem::path> replay;
    std::filesystem::path recording;    ///< a new file to write the session to; empty: none
    LineQuality line;                   ///< between the clients and the platform; its seed is the market's
    bool simulate = false;              ///< no record, not even the remembered one
    bool closeOpenTrades = false;       ///< when the market changes
    bool reset = false;                 ///< begin accounts anew instead of serving
    std::optional<std::string> account; ///< the one to reset; absent: all
    bool quiet = false;
    bool showHelp = false;
    bool showVersion = false;
};

/// The command line cannot be understood; the text is one line for a person.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments (without the program's name). Options take their value as the next argument or
/// behind "="; of a repeated option the last one counts. Throws UsageError.
[[nodiscard]] Options parseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
[[nodiscard]] std::string helpText();

} // namespace practice
