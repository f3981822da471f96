#include "practice/Check.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/server/Options.h"

#include <cstdlib>

using namespace practice;

namespace {

std::string errorOf(const std::vector<std::string>& arguments)
{
    try {
        static_cast<void>(parseOptions(arguments));
    } catch (const UsageError& error) {
        return error.what();
    }
    return {};
}

struct Environment {
    Environment(const char* dataHome, const char* home)
    {
        set("XDG_DATA_HOME", dataHome);
        set("HOME", home);
    }
    static void set(const char* name, const char* value)
    {
        if (value)
            ::setenv(name, value, 1);
        else
            ::unsetenv(name);
    }
};

} // namespace

TEST_CASE("without arguments it listens on the loopback, port 5001, with a database in the data folder")
{
    const Environment environment("/data", "/home/x");
    const Options options = parseOptions({});
    CHECK_EQ(options.address, std::string("127.0.0.1"));
    CHECK_EQ(options.port, std::uint16_t(5001));
    CHECK_EQ(options.database.string(), std::string("/data/tavoran-practice/practice.db"));
    CHECK(!options.seed && !options.speed && !options.replay && !options.quiet);
    CHECK(!options.simulate && !options.closeOpenTrades);
}

TEST_CASE("a data folder that is unset or relative falls back to the home folder")
{
    const Environment unset(nullptr, "/home/x");
    CHECK_EQ(
        parseOptions({}).database.string(), std::string("/home/x/.local/share/tavoran-practice/practice.db"));
    const Environment relative("data", "/home/x");
    CHECK_EQ(
        parseOptions({}).database.string(), std::string("/home/x/.local/share/tavoran-practice/practice.db"));
    const Environment nothing(nullptr, nullptr);
    CHECK(errorOf({}).find("--db") != std::string::npos);
    CHECK_EQ(errorOf({"--db", "x.db"}), std::string());
    // An unset variable in a script must not end at the file of every day.
    CHECK(errorOf({"--db", ""}).find("--db") != std::string::npos);
    CHECK(errorOf({"--db="}).find("empty") != std::string::npos);
}

TEST_CASE("every option is understood in both spellings and the last of a kind counts")
{
    const TemporaryFolder folder;
    const Options options
        = parseOptions({"--port", "1", "--port=7", "--db=a=b.db", "--seed", "18446744073709551615", "--speed",
            "2.5", "--replay", folder.path().string(), "--quiet", "--address=::1"});
    CHECK_EQ(options.port, std::uint16_t(7));
    CHECK_EQ(options.database.string(), std::string("a=b.db"));
    CHECK(options.seed == 18446744073709551615ULL);
    CHECK(options.speed == 2.5);
    CHECK(options.replay == folder.path());
    CHECK(options.quiet);
    CHECK(options.hostName.empty());
    CHECK(options.recording.empty());
    CHECK_EQ(parseOptions({"--db=x", "--record", "a b"}).recording.string(), std::string("a b"));
    CHECK(errorOf({"--db=x", "--record="}).find("--record") != std::string::npos);
    CHECK(errorOf({"reset", "--record", "x"}).find("--record") != std::string::npos);
    CHECK_EQ(parseOptions({"--db=x", "--host-name", "Desk.example"}).hostName, std::string("Desk.example"));
    CHECK_EQ(options.address, std::string("::1"));
    CHECK_EQ(parseOptions({"--db", "x", "--address", "localhost"}).address, std::string("127.0.0.1"));
}

TEST_CASE("a line is as bad as asked for, and good without being asked")
{
    using std::chrono::milliseconds;
    CHECK(!parseOptions({"--db=x"}).line.isBad());
    const LineQuality line = parseOptions({"--db=x", "--latency", "120", "--jitter=30", "--drop", "0.05",
                                              "--cut", "2.5", "--throttle", "16", "--refuse=1"})
                                 .line;
    CHECK(line.latency == milliseconds(120));
    CHECK(line.jitter == milliseconds(30));
    CHECK_NEAR(line.drop, 0.05, 0);
    CHECK(line.cutInterval == milliseconds(2500));
    CHECK_NEAR(line.throttle, 16000, 0);
    CHECK_NEAR(line.refuse, 1, 0);
    for (const char* one :
        {"--latency=1", "--jitter=1", "--drop=0.1", "--cut=1", "--throttle=1", "--refuse=0.1"})
        CHECK(parseOptions({"--db=x", one}).line.isBad());
    for (const char* none : {"--latency=0", "--jitter=0", "--drop=0", "--refuse=0"})
        CHECK(!parseOptions({"--db=x", none}).line.isBad());
    CHECK(errorOf({"reset", "--latency", "5"}).find("--latency") != std::string::npos);
}

TEST_CASE("a record and none of them: the last wish counts")
{
    const TemporaryFolder folder;
    const std::string record = folder.path().string();
    const Options none = parseOptions({"--db=x", "--replay", record, "--no-replay"});
    CHECK(none.simulate && !none.replay);
    const Options played = parseOptions({"--db=x", "--no-replay", "--replay", record});
    CHECK(!played.simulate && played.replay == folder.path());
    CHECK(parseOptions({"--db=x", "--close-open-trades"}).closeOpenTrades);
}

TEST_CASE("an address that others can reach needs the flag that says so")
{
    CHECK(errorOf({"--db", "x", "--address", "0.0.0.0"}).find("--allow-remote") != std::string::npos);
    CHECK(errorOf({"--db", "x", "--address", "::"}).find("--allow-remote") != std::string::npos);
    CHECK(errorOf({"--db", "x", "--address", "192.168.1.5"}).find("--allow-remote") != std::string::npos);
    CHECK_EQ(parseOptions({"--db", "x", "--allow-remote", "--address", "0.0.0.0"}).address,
        std::string("0.0.0.0"));
    CHECK_EQ(errorOf({"--db", "x", "--address", "127.0.0.9"}), std::string());
}

TEST_CASE("values that make no sense are refused in one line that names the option")
{
    const std::vector<std::vector<std::string>> bad{{"--port", "65536"}, {"--port", "-1"}, {"--port", "80x"},
        {"--port", ""}, {"--port"}, {"--seed", "-1"}, {"--seed", "1.5"}, {"--seed", "18446744073709551616"},
        {"--latency", "-1"}, {"--latency", "60001"}, {"--latency", "1.5"}, {"--latency", ""}, {"--latency"},
        {"--jitter", "20ms"}, {"--jitter", "-5"}, {"--drop", "1.1"}, {"--drop", "-0.1"}, {"--drop", "nan"},
        {"--drop", "5%"}, {"--cut", "0"}, {"--cut", "inf"}, {"--cut", "86401"}, {"--throttle", "0"},
        {"--throttle", "fast"}, {"--throttle", "1e7"}, {"--refuse", "2"}, {"--refuse", ""}, {"--speed", "0"},
        {"--speed", "nan"}, {"--speed", "inf"}, {"--speed", "1001"}, {"--speed", "1,5"}, {"--host-name", ""},
        {"--host-name", "desk:80"}, {"--host-name", "a b"}, {"--replay", "/none/at/all"},
        {"--address", "example.org"}, {"--address", "127.0.0.1:80"}};
    for (auto arguments : bad) {
        const std::string name = arguments.front();
        arguments.insert(arguments.begin(), "--db=x");
        const std::string error = errorOf(arguments);
        CHECK(error.find(name) != std::string::npos);
        CHECK(error.find('\n') == std::string::npos);
    }
}

TEST_CASE("what is no option is refused")
{
    for (const char* argument : {"--prot", "-p", "5001", "", "--quiet=1", "--unknown=3"})
        CHECK(errorOf({"--db=x", argument}).find("unknown") != std::string::npos);
}

TEST_CASE("help and version need nothing else")
{
    const Environment nothing(nullptr, nullptr);
    CHECK(parseOptions({"--help"}).showHelp);
    CHECK(parseOptions({"--version"}).showVersion);
    for (const char* option : {"--port", "--address", "--allow-remote", "--host-name", "--db", "--seed",
             "--speed", "--replay", "--no-replay", "--close-open-trades", "--latency", "--jitter", "--drop",
             "--cut", "--throttle", "--refuse", "reset", "--account", "--quiet", "--help", "--version"})
        CHECK(helpText().find(option) != std::string::npos);
}

CHECK_MAIN()
