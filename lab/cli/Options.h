#pragma once

#include "lab/cli/StudyOptions.h"
#include "lab/cli/UsageError.h"
#include "lab/core/RunSettings.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lab {

/// What the program can do; None stands for the program as a whole.
enum class Command {
    None,
    Inputs,
    Run,
    Report,
    Compare,
    Check,
    Sweep,
    Walk,
    Challenge,
    Plan,
    Work,
    Merge,
    Verify
};

/// What the command line asked for.
struct Options {
    Command command = Command::None;
    std::filesystem::path script;               ///< of all that run or read one
    std::filesystem::path session;              ///< recorded, of Verify
    std::string account;                        ///< an id in the session; empty where it was not named
    std::vector<std::filesystem::path> results; ///< folders to compare, or the one file to report on
    std::vector<std::filesystem::path> data;    ///< recorded minutes; none: simulated prices
    RunSettings settings;                       ///< `symbol` empty where it was not named
    bool hasTimeframe = false;                  ///< the timeframe was named
    bool hasBalance = false;                    ///< the balance was named
    std::filesystem::path out;                  ///< empty where it was not named
    std::chrono::milliseconds limit{0};         ///< for each run; 0: none
    std::vector<std::string> arguments;         ///< as they were given
    StudyOptions study;
    bool showHelp = false;
    bool showVersion = false;
};

/// Reads the arguments (without the program's name). Options take their value as the next argument or
/// behind "="; of a repeated option the last one counts, except of --data and --set, which add up. Throws
/// UsageError.
[[nodiscard]] Options parseOptions(const std::vector<std::string>& arguments);

/// The text of --help, of the program or of one of its commands.
[[nodiscard]] std::string helpText(Command command);

} // namespace lab
