#include "practice/line/BadLine.h"
#include "practice/server/Failure.h"
#include "practice/server/FirstUse.h"
#include "practice/server/ListeningPort.h"
#include "practice/server/MarketSetup.h"
#include "practice/server/Options.h"
#include "practice/server/PlatformTime.h"
#include "practice/server/RecordFile.h"
#include "practice/server/Reset.h"
#include "practice/server/Server.h"
#include "practice/storage/Database.h"

#include <boost/asio/signal_set.hpp>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

namespace practice {

namespace {

constexpr const char* loopback = "127.0.0.1";

// Four times a second suits a person; a faster market is shown more often, as far as screens follow.
std::chrono::milliseconds priceInterval(double speed)
{
    constexpr double usualMs = 250;
    constexpr double shortestMs = 50;
    return std::chrono::milliseconds(static_cast<int>(std::clamp(usualMs / speed, shortestMs, usualMs)));
}

void run(const Options& options)
{
    // Before anything is changed for a session that would not be recorded.
    if (!options.recording.empty())
        RecordFile::requireNew(options.recording);
    const SystemClock machine;
    Database database(options.database);
    const PlatformTime clock(machine, earliestMoment(database, machine.now()));
    prepareFirstUse(database, clock.now());
    // Before the market may change, so that nothing is closed for that by a program that cannot listen.
    boost::asio::io_context context(1);
    auto acceptor = listenOn(context, options.address, options.port);
    const ChosenMarket market = chooseMarket(database, options, clock);

    std::optional<RecordFile> recording;
    if (!options.recording.empty())
        recording.emplace(options.recording,
            [](const std::string& text) { std::cerr << "tavoran-practice: --record " << text << std::endl; });

    // A bad line takes the port, and the platform listens behind it.
    std::optional<BadLine> line;
    const std::uint16_t port = acceptor.local_endpoint().port();
    if (options.line.isBad()) {
        auto behind = listenOn(context, loopback, 0);
        LineQuality quality = options.line;
        quality.seed = market.setup.seed;
        line.emplace(context, std::move(acceptor), behind.local_endpoint(), quality);
        acceptor = std::move(behind);
    }

    Server server(context, std::move(acceptor), database, *market.prices, clock,
        {options.address, options.hostName, market.setup.seed, priceInterval(market.setup.speed), {},
            recording ? &*recording : nullptr, TAVORAN_VERSION});
    // Signals are handled from here on. While the missed time is played nobody would act on them, and a
    // signal may then end the program at any moment, since each change is stored whole.
    boost::asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([&server, &line](boost::system::error_code error, int) {
        if (error)
            return;
        if (line)
            line->stop();
        server.stop();
    });

    const bool v6 = options.address.find(':') != std::string::npos;
    std::cout << "Listening on http://" << (v6 ? "[" + options.address + "]" : options.address) << ':' << port
              << std::endl;
    if (!options.quiet) {
        std::cout << "Sign in as " << practiceEmail << " with the password: " << practicePassword << '\n'
                  << "Data: " << options.database.string() << std::endl;
    }
    context.run();
}

void reset(const Options& options)
{
    std::error_code error;
    if (!std::filesystem::exists(options.database, error))
        throw UsageError(options.database.string() + ": there is no such database");
    Database database(options.database);
    const SystemClock machine;
    const PlatformTime clock(machine, earliestMoment(database, machine.now()));
    const std::vector<Account> accounts = resetAccounts(database, options.account, clock.now());
    if (options.quiet)
        return;
    for (const Account& account : accounts) {
        std::cout << account.id << ' ' << accountName(account) << ": begins anew with "
                  << moneyText(account.balance) << " USD\n";
    }
}

int main(const std::vector<std::string>& arguments)
{
    try {
        const Options options = parseOptions(arguments);
        if (options.showHelp)
            std::cout << helpText();
        else if (options.showVersion)
            std::cout << "tavoran-practice " << TAVORAN_VERSION << '\n';
        else if (options.reset)
            reset(options);
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
    // The reader of our output may be gone, which is no reason to end.
    std::signal(SIGPIPE, SIG_IGN);
    return practice::main({argv + 1, argv + argc});
}
