#include "practice/Check.h"
#include "practice/server/HandClock.h"
#include "practice/storage/TemporaryFolder.h"

#include "lab/core/session/BrokerReplay.h"
#include "lab/core/session/SessionFile.h"
#include "practice/core/market/SimulatedMarket.h"
#include "practice/server/Api.h"
#include "practice/server/FirstUse.h"
#include "practice/server/Platform.h"
#include "practice/server/RecordFile.h"
#include "practice/server/SessionRecorder.h"

#include <random>
#include <set>
#include <utility>

using namespace practice;

namespace {

/// What a session must have held to prove anything.
struct Seen {
    std::set<CloseReason> reasons;
    int commands = 0;
    int refused = 0;
    int nights = 0;
};

/// A random life of the platform, recorded.
void live(unsigned seed, const std::filesystem::path& session, const std::filesystem::path& folder)
{
    std::mt19937 random(seed);
    const auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    HandClock clock;
    SimulatedMarket market(seed, 20);
    Database database(folder / "x.db");
    prepareFirstUse(database, clock.now());
    Platform platform(database, market, clock);
    platform.advance();
    const std::vector<Account> accounts = platform.broker().accounts();
    const auto execute = [&](const TradeCommand& command) {
        try {
            static_cast<void>(platform.execute(command));
        } catch (const ApiError&) {
            // Refused; recorded like the others.
        }
    };
    const auto place = [&] {
        constexpr std::array kinds{"MARKET", "MARKET", "BUY_LIMIT", "SELL_LIMIT", "BUY_STOP", "SELL_STOP"};
        const std::size_t symbol = std::array<std::size_t, 3>{0, 2, 5}.at(static_cast<std::size_t>(pick(3)));
        const Quote quote = platform.quotes()[symbol].quote;
        const double step = (quote.ask + quote.bid) / 2 * 0.0005 * (1 + pick(8));
        PlaceRequest order;
        order.accountId = accounts[static_cast<std::size_t>(pick(4))].id;
        order.symbol = market.symbols()[symbol].name;
        order.orderKind = kinds.at(static_cast<std::size_t>(pick(6)));
        order.type = pick(2) == 0 ? "BUY" : "SELL";
        order.lots = pick(10) == 0 ? 5 : 0.01 * (1 + pick(60));
        const bool isBuy
            = order.orderKind == "MARKET" ? order.type == "BUY" : order.orderKind.starts_with("BUY");
        const bool isBelow = order.orderKind == "BUY_LIMIT" || order.orderKind == "SELL_STOP";
        double entry = quote.bid;
        if (order.orderKind != "MARKET") {
            entry += isBelow ? -step : step;
            order.pendingPrice = entry;
        }
        if (pick(3) > 0)
            order.stopLoss = isBuy ? entry - 2 * step : entry + 2 * step;
        if (pick(3) > 0)
            order.takeProfit = isBuy ? entry + 2 * step : entry - 2 * step;
        order.comment = "of\ta random\\life";
        execute(order);
    };
    const auto touch = [&] {
        const std::vector<Trade> trades = platform.broker().state().liveTrades;
        if (trades.empty())
            return;
        const Trade& trade = trades[static_cast<std::size_t>(pick(static_cast<int>(trades.size())))];
        if (pick(3) == 0)
            execute(ModifyCommand{trade.id, {0.0, std::nullopt, std::nullopt}});
        else if (pick(2) == 0)
            execute(CloseCommand{trade.id});
        else
            execute(CancelCommand{trade.id});
    };
    for (int i = 0; i < 5; ++i)
        place(); // so that there is something at the start

    RecordFile file(session, [](const std::string&) {});
    SessionRecorder recorder(platform, file, "1.2.3");
    platform.addListener(recorder);
    for (int i = 0; i < 250; ++i) {
        clock.pass(pick(4) == 0 ? pick(4 * 3'600'000) : pick(20'000));
        switch (pick(4)) {
        case 0:
            place();
            break;
        case 1:
            touch();
            break;
        default:
            platform.advance();
        }
    }
}

} // namespace

TEST_CASE("the broker comes to the same trades and accounts over any session")
{
    Seen seen;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        const TemporaryFolder folder;
        live(seed, folder / "session", folder.path());
        lab::SessionFile file(folder / "session");
        lab::BrokerReplay replay(file.start());
        std::optional<lab::Difference> difference;
        while (const std::optional<lab::SessionEvent> event = file.next()) {
            difference = replay.take(*event);
            if (difference)
                break;
            if (const auto* trade = std::get_if<lab::TradeEvent>(&event->what)) {
                seen.reasons.insert(trade->trade.closeReason);
                seen.nights += trade->trade.swap != 0 ? 1 : 0;
            } else if (const auto* command = std::get_if<lab::CommandEvent>(&event->what)) {
                ++seen.commands;
                seen.refused += command->status != 200 ? 1 : 0;
            }
        }
        if (!difference)
            difference = replay.finish();
        CHECK_EQ(
            difference ? difference->expected + " | " + difference->recorded : "none", std::string("none"));
        CHECK(file.isWhole());
    }
    CHECK(seen.commands > 200 && seen.refused > 20 && seen.nights > 10);
    for (const CloseReason reason :
        {CloseReason::Manual, CloseReason::StopLoss, CloseReason::TakeProfit, CloseReason::Risk})
        CHECK(seen.reasons.contains(reason));
}

TEST_CASE("a price, a volume or a closing that is another one is a difference")
{
    const TemporaryFolder folder;
    live(1, folder / "session", folder.path());
    const auto differs = [&](const auto& alter) {
        lab::SessionFile file(folder / "session");
        lab::BrokerReplay replay(file.start());
        bool altered = false;
        while (std::optional<lab::SessionEvent> event = file.next()) {
            if (!altered)
                altered = alter(*event);
            if (replay.take(*event))
                return altered;
        }
        return replay.finish().has_value();
    };
    CHECK(!differs([](lab::SessionEvent&) { return false; }));
    CHECK(differs([](lab::SessionEvent& event) {
        auto* command = std::get_if<lab::CommandEvent>(&event.what);
        auto* order = command ? std::get_if<PlaceRequest>(&command->command) : nullptr;
        if (!order || command->status != 200)
            return false;
        order->lots += 0.01;
        return true;
    }));
    CHECK(differs([](lab::SessionEvent& event) {
        auto* trade = std::get_if<lab::TradeEvent>(&event.what);
        if (!trade || trade->trade.status != TradeStatus::Closed)
            return false;
        ++trade->trade.pnl;
        return true;
    }));
    CHECK(differs([](lab::SessionEvent& event) {
        auto* account = std::get_if<lab::AccountEvent>(&event.what);
        if (!account)
            return false;
        ++account->account.balance;
        return true;
    }));
    CHECK(differs([](lab::SessionEvent& event) {
        auto* command = std::get_if<lab::CommandEvent>(&event.what);
        if (!command || command->status == 200)
            return false;
        command->outcome += '!';
        return true;
    }));
    std::string known;
    CHECK(differs([&known](lab::SessionEvent& event) {
        auto* command = std::get_if<lab::CommandEvent>(&event.what);
        if (!command || command->status != 200 || !std::holds_alternative<PlaceRequest>(command->command))
            return false;
        if (known.empty())
            known = command->outcome;
        return std::exchange(command->outcome, known) != known; // two orders become the same trade
    }));
}

TEST_CASE("a change that is not told of is missed at the very next prices or command")
{
    const TemporaryFolder folder;
    live(1, folder / "session", folder.path());
    lab::SessionFile file(folder / "session");
    std::vector<lab::SessionEvent> events;
    while (std::optional<lab::SessionEvent> event = file.next())
        events.push_back(std::move(*event));
    const auto missedBefore = [&](const auto& isNext) {
        lab::BrokerReplay replay(file.start());
        bool left = false;
        for (std::size_t i = 0; i + 1 < events.size(); ++i) {
            const bool isRecord = std::holds_alternative<lab::TradeEvent>(events[i].what)
                || std::holds_alternative<lab::AccountEvent>(events[i].what);
            if (!left && isRecord && isNext(events[i + 1])) {
                left = true;
                continue;
            }
            const std::optional<lab::Difference> difference = replay.take(events[i]);
            if (difference || left)
                return left && difference && difference->recorded == "nothing";
        }
        return false;
    };
    CHECK(missedBefore(
        [](const lab::SessionEvent& event) { return std::holds_alternative<lab::PricesEvent>(event.what); }));
    CHECK(missedBefore([](const lab::SessionEvent& event) {
        return std::holds_alternative<lab::CommandEvent>(event.what);
    }));
}

CHECK_MAIN()
