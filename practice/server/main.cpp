#include "practice/core/market/ReplayMarket.h"
#include "practice/core/market/SimulatedMarket.h"
#include "practice/server/Failure.h"
#include "practice/server/FirstUse.h"
#include "practice/server/Options.h"
#include "practice/server/Server.h"
#include "practice/storage/MetaStore.h"

#include <boost/asio/signal_set.hpp>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <iostream>
#include <memory>

namespace practice {

namespace {

// The seed on the command line, else the one this database has always had: the market of yesterday is still
// there today.
std::uint64_t chooseSeed(Database& database, const std::optional<std::uint64_t>& wanted)
{
    constexpr const char* key = "seed";
    std::uint64_t seed = 1;
    MetaStore meta(database);
    if (wanted) {
        seed = *wanted;
    } else if (const auto stored = meta.value(key)) {
        std::from_chars(stored->data(), stored->data() + stored->size(), seed);
    }
    meta.setValue(key, std::to_string(seed));
    return seed;
}

// A record plays on from where it began the first time this database saw its folder.
TimeMs replayStart(Database& database, const std::filesystem::path& folder, TimeMs now)
{
    const std::string key = "replayStart:" + std::filesystem::weakly_canonical(folder).string();
    MetaStore meta(database);
    TimeMs start = now;
    if (const auto stored = meta.value(key))
        std::from_chars(stored->data(), stored->data() + stored->size(), start);
    else
        meta.setValue(key, std::to_string(start));
    return start;
}

std::unique_ptr<PriceSource> makeMarket(
    Database& database, const Options& options, std::uint64_t seed, TimeMs now)
{
    if (!options.replay)
        return std::make_unique<SimulatedMarket>(seed, options.speed);
    return std::make_unique<ReplayMarket>(
        *options.replay, replayStart(database, *options.replay, now), options.speed, seed);
}

// Four times a second suits a person; a faster market is shown more often, as far as screens follow.
std::chrono::milliseconds priceInterval(double speed)
{
    constexpr double usualMs = 250;
    constexpr double shortestMs = 50;
    return std::chrono::milliseconds(static_cast<int>(std::clamp(usualMs / speed, shortestMs, usualMs)));
}

void run(const Options& options)
{
    const SystemClock clock;
    Database database(options.database);
    prepareFirstUse(database, clock.now());
    const std::uint64_t seed = chooseSeed(database, options.seed);
    const auto market = makeMarket(database, options, seed, clock.now());

    boost::asio::io_context context(1);
    boost::asio::signal_set signals(context, SIGINT, SIGTERM);
    Server server(context, database, *market, clock,
        {options.address, options.port, seed, priceInterval(options.speed), {}});
    signals.async_wait([&server](boost::system::error_code error, int) {
        if (!error)
            server.stop();
    });

    const bool v6 = options.address.find(':') != std::string::npos;
    std::cout << "Listening on http://" << (v6 ? "[" + options.address + "]" : options.address) << ':'
              << server.port() << std::endl;
    if (!options.quiet) {
        std::cout << "Sign in as " << practiceEmail << " with the password: " << practicePassword << '\n'
                  << "Data: " << options.database.string() << std::endl;
    }
    context.run();
}

int main(const std::vector<std::string>& arguments)
{
    try {
        const Options options = parseOptions(arguments);
        if (options.showHelp)
            std::cout << helpText();
        else if (options.showVersion)
            std::cout << "tavoran-practice " << TAVORAN_VERSION << '\n';
        else
            run(options);
        return EXIT_SUCCESS;
    } catch (...) {
        const Failure failure = describeFailure(std::current_exception());
        std::cerr << "tavoran-practice: " << failure.text << std::endl;
        return failure.exitCode;
    }
}

} // namespace

} // namespace practice

int main(int argc, char** argv)
{
    // Whoever read our output may be gone; that is no reason to end.
    std::signal(SIGPIPE, SIG_IGN);
    return practice::main({argv + 1, argv + argc});
}
