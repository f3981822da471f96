#include "lab/cli/Options.h"

#include "lab/cli/NearName.h"
#include "lab/cli/OptionTable.h"
#include "lab/cli/Screen.h"
#include "lab/cli/StudyOptionReaders.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace lab {

namespace {

constexpr std::string_view recordEnd = "-1m.csv";

std::string commandNames()
{
    std::string names;
    for (const CommandRow& row : commandRows())
        names += (names.empty() ? "" : ", ") + std::string(row.name);
    return names;
}

Command commandOf(const std::string& word)
{
    for (const CommandRow& row : commandRows()) {
        if (row.name == word)
            return row.command;
    }
    std::vector<std::string_view> names;
    for (const CommandRow& row : commandRows())
        names.push_back(row.name);
    throw UsageError("unknown command " + word + suggestion(word, names) + "; there are " + commandNames());
}

std::string optionNames(Command command)
{
    std::string names;
    for (const OptionRow& row : optionRows()) {
        if ((row.commands & setOf(command)) != 0)
            names.append(row.name).append(", ");
    }
    return names + "--help, --version";
}

const OptionRow& optionOf(const std::string& name, Command command)
{
    for (const OptionRow& row : optionRows()) {
        if (row.name == name && (row.commands & setOf(command)) != 0)
            return row;
    }
    std::vector<std::string_view> names;
    for (const OptionRow& row : optionRows()) {
        if ((row.commands & setOf(command)) != 0)
            names.push_back(row.name);
    }
    throw UsageError("unknown option " + name + suggestion(name, names) + "; "
        + std::string(rowOf(command).name) + " has " + optionNames(command));
}

void takeOperand(Options& options, const std::string& word)
{
    if (word.empty())
        throw UsageError(std::string(rowOf(options.command).name) + " takes no empty name");
    switch (options.command) {
    case Command::None:
        break;
    case Command::Inputs:
    case Command::Run:
    case Command::Check:
    case Command::Sweep:
    case Command::Walk:
    case Command::Challenge:
    case Command::Plan:
        if (!options.script.empty())
            throw UsageError("one script at a time, not also \"" + word + '"');
        options.script = word;
        return;
    case Command::Verify:
        if (!options.script.empty())
            throw UsageError("one session and one script, not also \"" + word + '"');
        (options.session.empty() ? options.session : options.script) = word;
        return;
    case Command::Report:
        if (!options.results.empty())
            throw UsageError("one file at a time, not also \"" + word + '"');
        options.results.emplace_back(word);
        return;
    case Command::Compare:
        options.results.emplace_back(word);
        return;
    case Command::Work:
    case Command::Merge:
        takePlan(options, word);
        return;
    }
}

/// What only the whole command line tells.
void checkTogether(const Options& options, bool hasSeed, bool hasSpeed)
{
    const std::string name(rowOf(options.command).name);
    const bool needsPrices = (setOf(options.command) & runningCommands) != 0;
    const bool needsScript
        = needsPrices || options.command == Command::Inputs || options.command == Command::Verify;
    if (options.command == Command::Verify && options.session.empty())
        throw UsageError("verify needs a recorded session and a script");
    if (needsScript && options.script.empty())
        throw UsageError(name + " needs a script");
    if (options.command == Command::Report && options.results.empty())
        throw UsageError(name + " needs a file");
    if (options.command == Command::Compare && options.results.size() < 2)
        throw UsageError(name + " needs at least two folders");
    checkStudy(options);
    const RunSettings& settings = options.settings;
    if (settings.from && settings.to && *settings.from >= *settings.to)
        throw UsageError("--from has to be before --to");
    if (!needsPrices)
        return;
    if (options.study.seeds && hasSeed)
        throw UsageError("--seeds names the seeds, there is none for --seed");
    if (options.data.empty() && !hasSeed && !options.study.seeds)
        throw UsageError(
            "where are the prices? --data FILE-1m.csv takes recorded ones, --seed N simulates them");
    if (options.data.empty() && options.settings.symbol.empty())
        throw UsageError("simulated prices need --symbol");
    if (!options.data.empty() && hasSpeed)
        throw UsageError("--speed goes with simulated prices only, not with --data");
}

/// The arguments one after the other.
class ArgumentReader {
public:
    explicit ArgumentReader(const std::vector<std::string>& arguments)
        : m_arguments(arguments)
    {
    }

    [[nodiscard]] Options read()
    {
        for (; m_next < m_arguments.size(); ++m_next)
            take(m_arguments[m_next]);
        if (m_options.showHelp || m_options.showVersion)
            return m_options;
        if (m_options.command == Command::None)
            throw UsageError("which command? There are " + commandNames() + " (see --help)");
        checkTogether(m_options, m_hasSeed, m_hasSpeed);
        return m_options;
    }

private:
    void take(const std::string& word)
    {
        if (m_onlyOperands || !word.starts_with('-') || word == "-")
            takeName(word);
        else if (word == "--help")
            m_options.showHelp = true;
        else if (word == "--version")
            m_options.showVersion = true;
        else if (word == "--")
            m_onlyOperands = true;
        else
            takeOption(word);
    }

    void takeName(const std::string& word)
    {
        if (m_options.command == Command::None)
            m_options.command = commandOf(word);
        // A shell makes several names of data/*-1m.csv; they stand behind the option together.
        else if (m_isBehindData && word.ends_with(recordEnd))
            m_options.data.emplace_back(word);
        else
            takeOperand(m_options, word);
        m_isBehindData = m_isBehindData && word.ends_with(recordEnd);
    }

    void takeOption(const std::string& word)
    {
        if (m_options.command == Command::None)
            throw UsageError("the command comes first: " + commandNames() + " (see --help)");
        const std::size_t equals = word.find('=');
        const OptionRow& row = optionOf(word.substr(0, equals), m_options.command);
        if (row.value.empty() && equals != std::string::npos)
            throw UsageError(std::string(row.name) + " takes no value");
        if (!row.value.empty() && equals == std::string::npos && m_next + 1 == m_arguments.size())
            throw UsageError(std::string(row.name) + " needs a value");
        if (row.value.empty())
            row.read(m_options, {});
        else
            row.read(
                m_options, equals == std::string::npos ? m_arguments[++m_next] : word.substr(equals + 1));
        m_isBehindData = row.name == "--data";
        m_hasSeed = m_hasSeed || row.name == "--seed";
        m_hasSpeed = m_hasSpeed || row.name == "--speed";
    }

    const std::vector<std::string>& m_arguments;
    std::size_t m_next = 0;
    Options m_options;
    bool m_onlyOperands = false;
    bool m_isBehindData = false;
    bool m_hasSeed = false;
    bool m_hasSpeed = false;
};

/// Names on the left, what they mean beside them, line by line.
void addEntry(std::string& text, const std::string& name, std::string_view help, std::size_t column = 21)
{
    std::string left = "  " + name;
    while (!help.empty()) {
        const std::size_t end = std::min(help.find('\n'), help.size());
        left.resize(std::max(column, left.size() + 1), ' ');
        text.append(left).append(help.substr(0, end)).append("\n");
        help.remove_prefix(std::min(end + 1, help.size()));
        left.clear();
    }
}

std::string programHelp()
{
    std::string text = "Usage: tavoran-lab COMMAND [options]\n"
                       "Runs Expert Advisors over history, with the practice platform's broker.\n\n";
    constexpr std::size_t column = 25; // commands are longer than options
    for (const CommandRow& row : commandRows())
        addEntry(text, std::string(row.name) + ' ' + std::string(row.arguments), row.summary, column);
    text += "\n";
    addEntry(text, "--help", "print this text; behind a command, its options", column);
    addEntry(text, "--version", "print the version", column);
    return text
        + "\nA first run, over simulated prices:\n"
          "  tavoran-lab run MA_Cross.js --symbol EURUSD --seed 1\n"
          "and over recorded ones, with another value for an input:\n"
          "  tavoran-lab run MA_Cross.js --data EURUSD-1m.csv --set Fast=5\n";
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options = ArgumentReader(arguments).read();
    options.arguments = arguments;
    return options;
}

std::string helpText(Command command)
{
    if (command == Command::None)
        return programHelp();
    const CommandRow& about = rowOf(command);
    const bool hasOptions = std::ranges::any_of(
        optionRows(), [command](const OptionRow& row) { return (row.commands & setOf(command)) != 0; });
    std::string usage = "Usage: tavoran-lab";
    for (const std::string_view part :
        {about.name, about.arguments, about.required, std::string_view(hasOptions ? "[options]" : "")})
        usage.append(part.empty() ? "" : " ").append(part);
    std::string text = wrapped(usage, screenWidth, "       ") + '\n';
    std::string summary(about.summary);
    summary.front() = static_cast<char>(summary.front() - 'a' + 'A');
    text.append(summary).append(".\n");
    if (about.required.starts_with("PRICES"))
        text += "PRICES: --data FILE-1m.csv, recorded, or --seed N --symbol S, simulated.\n";
    if (hasOptions)
        text += '\n';
    std::string named;
    for (const OptionRow& row : optionRows()) {
        if ((row.commands & row.onlyNamed & setOf(command)) != 0)
            named.append(" ").append(row.name);
        else if ((row.commands & setOf(command)) != 0)
            addEntry(text, std::string(row.name) + (row.value.empty() ? "" : " ") + std::string(row.value),
                row.help);
    }
    if (!named.empty())
        text += "  " + wrapped("as of run, see its --help:" + named, 77, "  ") + '\n';
    if (!about.help.empty())
        text.append("\n").append(about.help);
    return text;
}

} // namespace lab
