#pragma once

#include "lab/cli/Options.h"

#include <span>
#include <string_view>

namespace lab {

/// A command of the program.
struct CommandRow {
    Command command = Command::None;
    std::string_view name;      ///< "run"
    std::string_view arguments; ///< what stands behind it: "SCRIPT"
    std::string_view required;  ///< options that it cannot do without
    std::string_view summary;   ///< what it does, in a few words
    std::string_view help;      ///< what else --help says of it; lines
};

/// Which commands an option belongs to; may be joined by |.
using CommandSet = unsigned;

[[nodiscard]] constexpr CommandSet setOf(Command command)
{
    return 1U << static_cast<unsigned>(command);
}

/// Those that run a script over prices.
inline constexpr CommandSet runningCommands = setOf(Command::Run) | setOf(Command::Check)
    | setOf(Command::Sweep) | setOf(Command::Walk) | setOf(Command::Challenge) | setOf(Command::Plan);

/// An option.
struct OptionRow {
    std::string_view name;  ///< "--symbol"
    std::string_view value; ///< how the help names its value; empty: it takes none
    std::string_view help;  ///< lines
    CommandSet commands = 0;
    /// Puts the value into the options. Throws UsageError with what it takes instead.
    void (*read)(Options& options, const std::string& value) = nullptr;
    CommandSet onlyNamed = 0; ///< those whose help names it and refers to that of `run`
};

[[nodiscard]] std::span<const CommandRow> commandRows();
[[nodiscard]] const CommandRow& rowOf(Command command); ///< not of None
[[nodiscard]] std::span<const OptionRow> optionRows();

} // namespace lab
