#include "practice/Check.h"
#include "practice/server/HandClock.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/core/PointScale.h"
#include "practice/core/market/HashRandom.h"
#include "practice/core/market/SimulatedMarket.h"
#include "practice/server/Api.h"
#include "practice/server/FirstUse.h"
#include "practice/server/Platform.h"

#include <cmath>
#include <map>
#include <memory>
#include <set>

/// What happens while nobody watches: the platform is put to sleep and started again at random, and every
/// trade is compared with a search through every single millisecond of its life.
using namespace practice;

namespace {

/// A platform that can be ended and started again.
struct Place {
    TemporaryFolder folder;
    HandClock clock;
    SimulatedMarket market;
    Database database{folder / "x.db"};
    std::unique_ptr<Platform> platform;

    Place(std::uint64_t seed, double speed)
        : market(seed, speed)
    {
        clock.shown = 1'795'251'600'123;
        prepareFirstUse(database, clock.now());
        restart();
    }
    void restart()
    {
        platform.reset();
        platform = std::make_unique<Platform>(database, market, clock);
        platform->advance();
    }
    [[nodiscard]] Account account(AccountKind kind) const
    {
        for (const Account& account : platform->broker().accounts()) {
            if (account.kind == kind && !account.isFunded)
                return account;
        }
        throw std::runtime_error("no such account");
    }
    Trade place(const PlaceRequest& request) { return platform->execute(request); }
    /// By id: live, or out of the history.
    [[nodiscard]] std::map<std::string, Trade> trades(const std::string& account)
    {
        std::map<std::string, Trade> result;
        for (const auto& list : {platform->broker().openTrades(account),
                 platform->broker().pendingOrders(account), platform->trades().history(account, 100'000)}) {
            for (const Trade& trade : list)
                CHECK(result.emplace(trade.id, trade).second); // none is there twice
        }
        return result;
    }
};

CloseReason reasonAt(const Trade& trade, const Quote& quote)
{
    const bool buy = trade.side == Side::Buy;
    const double price = buy ? quote.bid : quote.ask;
    if (trade.stopLoss > 0 && (buy ? price <= trade.stopLoss : price >= trade.stopLoss))
        return CloseReason::StopLoss;
    if (trade.takeProfit > 0 && (buy ? price >= trade.takeProfit : price <= trade.takeProfit))
        return CloseReason::TakeProfit;
    return CloseReason::None;
}

bool fillsAt(const Trade& trade, const Quote& quote)
{
    return (trade.orderKind == OrderKind::BuyLimit && quote.ask <= trade.pendingPrice)
        || (trade.orderKind == OrderKind::BuyStop && quote.ask >= trade.pendingPrice)
        || (trade.orderKind == OrderKind::SellLimit && quote.bid >= trade.pendingPrice)
        || (trade.orderKind == OrderKind::SellStop && quote.bid <= trade.pendingPrice);
}

/// What must have become of an order by `end`, found millisecond by millisecond.
Trade expected(PriceSource& market, Trade trade, TimeMs end)
{
    const std::size_t symbol = findSymbol(market.symbols(), trade.symbol).value();
    const double room
        = 15 * market.symbols()[symbol].spreadPoints / pointsPerUnit(market.symbols()[symbol].digits);
    const auto isFar = [&](const Bar& bar, double level) {
        return level <= 0 || level < bar.low - room || level > bar.high + room;
    };
    for (TimeMs now = trade.createdAt + 1; now <= end; ++now) {
        if (now % minuteMs == 0) {
            const Bar bar = market.bars(symbol, Timeframe::M1, 1, now + minuteMs - 1).back();
            if (isFar(bar, trade.stopLoss) && isFar(bar, trade.takeProfit)
                && (trade.status == TradeStatus::Open || isFar(bar, trade.pendingPrice))) {
                now += minuteMs - 1;
                continue;
            }
        }
        const Quote quote = market.quote(symbol, now);
        if (trade.status == TradeStatus::Pending && fillsAt(trade, quote)) {
            trade.status = TradeStatus::Open;
            trade.createdAt = now;
            trade.entryPrice = trade.side == Side::Buy ? quote.ask : quote.bid;
        }
        if (trade.status == TradeStatus::Open && reasonAt(trade, quote) != CloseReason::None) {
            trade.status = TradeStatus::Closed;
            trade.closeReason = reasonAt(trade, quote);
            trade.closedAt = now;
            trade.exitPrice = trade.side == Side::Buy ? quote.bid : quote.ask;
            return trade;
        }
    }
    return trade;
}

/// Places a random order near the market; what it was.
Trade placeAny(Place& place, const std::string& account, HashRandom& random)
{
    const auto& symbols = place.market.symbols();
    const auto symbol = static_cast<std::size_t>(random.uniform() * static_cast<double>(symbols.size()));
    const Quote quote = place.market.quote(symbol, place.clock.now());
    const double unit = pointsPerUnit(symbols[symbol].digits);
    const auto away = [&](double from, bool up) {
        const double distance = symbols[symbol].spreadPoints * (2 + 25 * random.uniform() * random.uniform());
        return std::round(from * unit + (up ? distance : -distance)) / unit;
    };
    PlaceRequest request;
    request.accountId = account;
    request.symbol = symbols[symbol].name;
    request.lots = 0.01;
    const bool buy = random.uniform() < 0.5;
    const bool up = random.uniform() < 0.5;
    double from = buy ? quote.bid : quote.ask;
    if (random.uniform() < 0.5) {
        request.orderKind = "MARKET";
        request.type = buy ? "BUY" : "SELL";
    } else {
        request.orderKind = std::string(buy ? "BUY" : "SELL") + (buy == up ? "_STOP" : "_LIMIT");
        from = away(up ? quote.ask : quote.bid, up);
        request.pendingPrice = from;
    }
    if (random.uniform() < 0.8)
        request.stopLoss = away(from, !buy);
    if (random.uniform() < 0.8)
        request.takeProfit = away(from, buy);
    return place.place(request);
}

PlaceRequest euroBuy(const std::string& account, double lots)
{
    PlaceRequest request;
    request.accountId = account;
    request.symbol = "EURUSD";
    request.orderKind = "MARKET";
    request.type = "BUY";
    request.lots = lots;
    return request;
}

/// The stop lies so far below the bid.
Trade buyWithStop(Place& place, const std::string& account, double lots, double distance)
{
    PlaceRequest request = euroBuy(account, lots);
    request.stopLoss = std::round((place.market.quote(0, place.clock.now()).bid - distance) * 1e5) / 1e5;
    return place.place(request);
}

void checkIs(const Trade& found, const Trade& wanted)
{
    CHECK_EQ(static_cast<int>(found.status), static_cast<int>(wanted.status));
    CHECK_EQ(static_cast<int>(found.closeReason), static_cast<int>(wanted.closeReason));
    CHECK_EQ(found.closedAt, wanted.closedAt);
    CHECK_EQ(found.createdAt, wanted.createdAt);
    CHECK_EQ(found.entryPrice, wanted.entryPrice);
    CHECK_EQ(found.exitPrice, wanted.exitPrice);
}

/// Random orders, stalls and restarts; how many trades were closed by a level.
int sleepThroughIt(std::uint64_t seed, double speed, int rounds, TimeMs longestStall)
{
    Place place(seed, speed);
    HashRandom random(seed + 1000);
    const std::string account = place.account(AccountKind::Demo).id;
    const Cents initial = place.account(AccountKind::Demo).balance;
    std::map<std::string, Trade> placed;
    for (int round = 0; round < rounds; ++round) {
        for (int i = 0; i < 3; ++i) {
            const Trade trade = placeAny(place, account, random);
            placed.emplace(trade.id, trade);
        }
        const int beats = static_cast<int>(4 * random.uniform());
        for (int i = 0; i < beats; ++i) {
            place.clock.pass(250);
            place.platform->advance();
        }
        place.clock.pass(static_cast<TimeMs>(static_cast<double>(longestStall) * random.uniform()));
        if (random.uniform() < 0.3)
            place.restart();
        else
            place.platform->advance();
    }
    int closed = 0;
    Cents result = 0;
    const auto trades = place.trades(account);
    CHECK_EQ(trades.size(), placed.size());
    for (const auto& [id, trade] : placed) {
        const Trade& found = trades.at(id);
        checkIs(found, expected(place.market, trade, place.clock.now()));
        closed += found.status == TradeStatus::Closed ? 1 : 0;
        result += found.status == TradeStatus::Closed ? found.pnl : 0;
    }
    CHECK_EQ(place.account(AccountKind::Demo).balance, initial + result);
    return closed;
}

} // namespace

TEST_CASE("every level that a price touched during a stall has closed its trade, at that price and once")
{
    int closed = 0;
    for (const double speed : {1.0, 200.0, 1000.0}) {
        for (std::uint64_t seed = 1; seed <= 2; ++seed)
            closed += sleepThroughIt(seed, speed, 10, 60'000);
    }
    CHECK(closed > 30);
}

TEST_CASE("a stop that a bar shows as touched is closed after a night, a week and a month")
{
    CHECK(sleepThroughIt(7, 1, 5, 9 * hourMs) > 3);
    CHECK(sleepThroughIt(8, 1, 3, 7 * dayMs) > 3);
    CHECK(sleepThroughIt(9, 20, 2, 30 * dayMs) > 3);
}

TEST_CASE("a challenge that fell to its limit while nobody watched has failed at that moment")
{
    Place place(3, 200);
    const Account before = place.account(AccountKind::Plan);
    const Trade trade = place.place(euroBuy(before.id, 15));
    TimeMs now = trade.createdAt;
    const auto equityAt = [&](TimeMs moment) {
        const double risen = place.market.quote(0, moment).bid - trade.entryPrice;
        return before.balance + std::llround(risen * 15 * 100'000 * 100) - trade.commission;
    };
    while (equityAt(now) * 100 > before.dayStartEquity * 95)
        ++now;
    REQUIRE(floorDivide(now, dayMs) == floorDivide(trade.createdAt, dayMs));
    place.clock.pass(now - place.clock.now() + 3 * hourMs);
    place.restart();
    const Trade found = place.trades(before.id).at(trade.id);
    CHECK_EQ(static_cast<int>(found.closeReason), static_cast<int>(CloseReason::Risk));
    CHECK_EQ(found.closedAt, now);
    CHECK_EQ(found.exitPrice, place.market.quote(0, now).bid);
    CHECK_EQ(
        static_cast<int>(place.account(AccountKind::Plan).status), static_cast<int>(AccountStatus::Failed));
}

TEST_CASE("swap is charged for the nights that a position was held, not for those after its stop")
{
    Place place(4, 1);
    const std::string account = place.account(AccountKind::Demo).id;
    const Trade trade = buyWithStop(place, account, 1, 0.006);
    const TimeMs end = place.clock.now() + 60 * dayMs;
    const Trade wanted = expected(place.market, trade, end);
    REQUIRE(wanted.status == TradeStatus::Closed);
    place.clock.pass(60 * dayMs);
    place.restart();
    const Trade found = place.trades(account).at(trade.id);
    checkIs(found, wanted);
    const std::int64_t nights = floorDivide(wanted.closedAt, dayMs) - floorDivide(trade.createdAt, dayMs);
    CHECK_EQ(found.swap, nights * -720); // 7.2 points of 1 USD a lot
}

TEST_CASE("a command after a stall finds what happened before it")
{
    Place place(5, 200);
    const std::string account = place.account(AccountKind::Demo).id;
    const Trade trade = buyWithStop(place, account, 0.1, 0.0005);
    const Trade wanted = expected(place.market, trade, place.clock.now() + dayMs / 2);
    REQUIRE(wanted.status == TradeStatus::Closed);
    place.clock.pass(wanted.closedAt - place.clock.now() + 5000);
    bool refused = false;
    try {
        place.platform->execute(CloseCommand{trade.id});
    } catch (const ApiError&) {
        refused = true;
    }
    CHECK(refused);
    checkIs(place.trades(account).at(trade.id), wanted);
}

CHECK_MAIN()
