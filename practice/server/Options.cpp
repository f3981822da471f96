#include "practice/server/Options.h"

#include <boost/asio/ip/address.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace practice {

namespace {

constexpr double slowest = 0.1;
constexpr double fastest = 1000;
constexpr int longestDelayMs = 60'000;
constexpr double shortestCut = 0.1; // seconds
constexpr double longestCut = 86'400;
constexpr double leastThroughput = 0.1; // kilobytes a second
constexpr double mostThroughput = 1e6;

template <typename T> std::optional<T> wholeNumber(const std::string& text)
{
    T value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

std::uint16_t portOf(const std::string& text)
{
    if (const auto port = wholeNumber<std::uint16_t>(text))
        return *port;
    throw UsageError("--port takes a number from 0 to 65535, not \"" + text + '"');
}

double speedOf(const std::string& text)
{
    const auto speed = wholeNumber<double>(text);
    if (speed && std::isfinite(*speed) && *speed >= slowest && *speed <= fastest)
        return *speed;
    throw UsageError("--speed takes a number from 0.1 to 1000, not \"" + text + '"');
}

std::uint64_t seedOf(const std::string& text)
{
    if (const auto seed = wholeNumber<std::uint64_t>(text))
        return *seed;
    throw UsageError("--seed takes a whole number that is not negative, not \"" + text + '"');
}

std::chrono::milliseconds delayOf(const std::string& name, const std::string& text)
{
    const auto delay = wholeNumber<int>(text);
    if (delay && *delay >= 0 && *delay <= longestDelayMs)
        return std::chrono::milliseconds(*delay);
    throw UsageError(name + " takes whole milliseconds from 0 to 60000, not \"" + text + '"');
}

double shareOf(const std::string& name, const std::string& text)
{
    const auto share = wholeNumber<double>(text);
    if (share && *share >= 0 && *share <= 1)
        return *share;
    throw UsageError(name + " takes a share from 0 to 1, such as 0.05, not \"" + text + '"');
}

std::chrono::milliseconds cutOf(const std::string& text)
{
    const auto seconds = wholeNumber<double>(text);
    if (seconds && *seconds >= shortestCut && *seconds <= longestCut)
        return std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(*seconds));
    throw UsageError("--cut takes seconds from 0.1 to 86400, not \"" + text + '"');
}

double throttleOf(const std::string& text)
{
    constexpr double kilo = 1000;
    const auto rate = wholeNumber<double>(text);
    if (rate && *rate >= leastThroughput && *rate <= mostThroughput)
        return *rate * kilo;
    throw UsageError("--throttle takes kilobytes a second from 0.1 to 1000000, not \"" + text + '"');
}

std::string addressOf(const std::string& text, bool remoteAllowed)
{
    boost::system::error_code error;
    const auto address = boost::asio::ip::make_address(text == "localhost" ? "127.0.0.1" : text, error);
    if (error)
        throw UsageError("--address takes an IP address, not \"" + text + '"');
    if (!address.is_loopback() && !remoteAllowed) {
        throw UsageError("--address " + text
            + " can be reached from other machines, and the practice password"
              " is public; add --allow-remote if that is what you want");
    }
    return address.to_string();
}

std::string hostNameOf(const std::string& text)
{
    const bool usable = !text.empty() && text.size() <= 253 && std::ranges::all_of(text, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.'
            || c == '-';
    });
    if (!usable)
        throw UsageError(
            "--host-name takes a name such as desk.example, without a port, not \"" + text + '"');
    return text;
}

std::filesystem::path directoryOf(const std::string& text)
{
    std::error_code error;
    if (!std::filesystem::is_directory(text, error))
        throw UsageError("--replay takes a folder, and \"" + text + "\" is none");
    return text;
}

std::string accountOf(const std::string& text)
{
    if (text.empty())
        throw UsageError("--account takes the id of an account, not an empty text");
    return text;
}

std::filesystem::path recordingOf(const std::string& text)
{
    if (text.empty())
        throw UsageError("--record takes the name of a file, not an empty text");
    return text;
}

// A reset would ignore other options, and nobody who gives them expects that: so they are refused.
void checkReset(const Options& options, const std::string& servingOption)
{
    if (options.account && !options.reset)
        throw UsageError("--account goes with reset only");
    if (options.reset && !servingOption.empty())
        throw UsageError(servingOption + " does not go with reset");
}

// An empty name may come from an unset variable in a script, and must not mean the default file.
std::filesystem::path fileOf(const std::string& text)
{
    if (text.empty())
        throw UsageError("--db takes the name of a file, not an empty text");
    return text;
}

std::filesystem::path defaultDatabase()
{
    const auto fromEnvironment = [](const char* name) -> std::filesystem::path {
        const char* value = std::getenv(name);
        return value ? value : "";
    };
    std::filesystem::path data = fromEnvironment("XDG_DATA_HOME");
    if (!data.is_absolute()) {
        const std::filesystem::path home = fromEnvironment("HOME");
        if (!home.is_absolute())
            throw UsageError(
                "neither XDG_DATA_HOME nor HOME is set; say where to keep the data with --db FILE");
        data = home / ".local" / "share";
    }
    return data / "tavoran-practice" / "practice.db";
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    bool remoteAllowed = false;
    std::string servingOption; // the last option that says how to serve
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::size_t equals = arguments[i].find('=');
        const std::string name = arguments[i].substr(0, equals);
        const auto value = [&]() -> std::string {
            if (equals != std::string::npos)
                return arguments[i].substr(equals + 1);
            if (i + 1 == arguments.size())
                throw UsageError(name + " needs a value");
            return arguments[++i];
        };
        const bool goesWithReset = name == "reset" || name == "--db" || name == "--account"
            || name == "--quiet" || name == "--help" || name == "--version";
        if (!goesWithReset)
            servingOption = name;
        if (name == "--port")
            options.port = portOf(value());
        else if (name == "--address")
            options.address = value();
        else if (name == "--host-name")
            options.hostName = hostNameOf(value());
        else if (name == "--db")
            options.database = fileOf(value());
        else if (name == "--record")
            options.recording = recordingOf(value());
        else if (name == "--account")
            options.account = accountOf(value());
        else if (name == "--seed")
            options.seed = seedOf(value());
        else if (name == "--speed")
            options.speed = speedOf(value());
        else if (name == "--latency")
            options.line.latency = delayOf(name, value());
        else if (name == "--jitter")
            options.line.jitter = delayOf(name, value());
        else if (name == "--drop")
            options.line.drop = shareOf(name, value());
        else if (name == "--cut")
            options.line.cutInterval = cutOf(value());
        else if (name == "--throttle")
            options.line.throttle = throttleOf(value());
        else if (name == "--refuse")
            options.line.refuse = shareOf(name, value());
        else if (name == "--replay") {
            options.replay = directoryOf(value());
            options.simulate = false;
        } else if (equals != std::string::npos)
            throw UsageError("unknown option " + arguments[i] + " (see --help)");
        else if (name == "reset")
            options.reset = true;
        else if (name == "--no-replay") {
            options.replay.reset();
            options.simulate = true;
        } else if (name == "--close-open-trades")
            options.closeOpenTrades = true;
        else if (name == "--allow-remote")
            remoteAllowed = true;
        else if (name == "--quiet")
            options.quiet = true;
        else if (name == "--help")
            options.showHelp = true;
        else if (name == "--version")
            options.showVersion = true;
        else
            throw UsageError("unknown argument " + name + " (see --help)");
    }
    if (options.showHelp || options.showVersion)
        return options;
    checkReset(options, servingOption);
    options.address = addressOf(options.address, remoteAllowed);
    if (options.database.empty())
        options.database = defaultDatabase();
    return options;
}

std::string helpText()
{
    return "Usage: tavoran-practice [options]\n"
           "       tavoran-practice reset [--account ID] [--db FILE]\n"
           "A trading platform of one's own to practise on: simulated prices, no real money.\n"
           "reset begins an account or a challenge, or all of them, anew.\n"
           "\n"
           "  --port N         port to listen on (default 5001; 0 chooses a free one)\n"
           "  --address IP     address to listen on (default 127.0.0.1)\n"
           "  --allow-remote   let --address be one that other machines can reach\n"
           "  --host-name NAME another name by which this platform is called\n"
           "  --db FILE        where accounts and trades are kept\n"
           "                   (default $XDG_DATA_HOME/tavoran-practice/practice.db)\n"
           "  --seed N         which market to simulate; remembered in the database\n"
           "  --speed X        how fast the market moves, 0.1 to 1000; remembered\n"
           "  --replay DIR     play prices from files SYMBOL-1m.csv instead of simulating\n"
           "                   them; remembered\n"
           "  --no-replay      simulate all prices again\n"
           "  --close-open-trades\n"
           "                   close open trades at the old prices when seed, speed or\n"
           "                   record change; without it such a change is refused\n"
           "  --record FILE    write prices, commands and what became of them to a new\n"
           "                   file, which tavoran-lab verify reads\n"
           "  --latency MS     how long everything is under way, each way: a bad line\n"
           "  --jitter MS      up to so much longer, by chance\n"
           "  --drop SHARE     share of packets with which a connection falls silent, 0 to 1\n"
           "  --cut EVERY      break all connections every so many seconds\n"
           "  --throttle KBPS  kilobytes a second that the line carries, each way\n"
           "  --refuse SHARE   share of connections that are broken at once, 0 to 1\n"
           "  --account ID     the account to reset, by its id or the beginning of it\n"
           "  --quiet          print nothing but the address\n"
           "  --help           print this text\n"
           "  --version        print the version\n"
           "\n"
           "Sign in as trader@practice.local with the password: practice\n";
}

} // namespace practice
