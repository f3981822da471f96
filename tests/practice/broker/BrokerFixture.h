#pragma once

#include "practice/Check.h"
#include "practice/core/broker/Broker.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace practice {

inline std::ostream& operator<<(std::ostream& out, CloseReason reason)
{
    return out << "reason " << static_cast<int>(reason);
}

/// Positions of the fixture's symbols.
enum Instrument : std::size_t { EurUsd, GbpUsd, UsdJpy, EurGbp, Gold, Bitcoin, instrumentCount };

inline SymbolSpec makeSpec(std::string base, std::string quote, int digits, double contract,
    double commission, double swapLong, double swapShort, double maxLeverage)
{
    SymbolSpec spec;
    spec.name = base + quote;
    spec.digits = digits;
    spec.contractSize = contract;
    spec.commissionPerLot = commission;
    spec.swapLong = swapLong;
    spec.swapShort = swapShort;
    spec.baseCurrency = std::move(base);
    spec.profitCurrency = std::move(quote);
    spec.maxLeverage = maxLeverage;
    return spec;
}

/// Numbers of our own, so that the expected results below stay true when the catalogue changes.
inline std::vector<SymbolSpec> fixtureSymbols()
{
    return {
        makeSpec("EUR", "USD", 5, 100'000, 7, -7.2, 2.8, 100),
        makeSpec("GBP", "USD", 5, 100'000, 7, -3.1, -1.9, 100),
        makeSpec("USD", "JPY", 3, 100'000, 7, 9.4, -17.8, 100),
        makeSpec("EUR", "GBP", 5, 100'000, 7, -4.6, 0.7, 100),
        makeSpec("XAU", "USD", 2, 100, 7, -42, 18, 50),
        makeSpec("BTC", "USD", 2, 1, 0, -1'800, -600, 5),
    };
}

inline std::vector<Quote> fixtureQuotes()
{
    return {
        {1.08500, 1.08508},
        {1.26494, 1.26506}, // mid 1.265
        {149.995, 150.005}, // mid 150
        {0.85700, 0.85710},
        {2350.00, 2350.24},
        {64000.00, 64018.00},
    };
}

inline constexpr std::int64_t fixtureDay = 20'000;
inline constexpr TimeMs fixtureTime = fixtureDay * dayMs + 10 * hourMs;

inline Account makeAccount(std::string id, AccountKind kind, Cents dollars, int leverage)
{
    Account account;
    account.id = std::move(id);
    account.kind = kind;
    account.balance = account.initialBalance = account.dayStartEquity = dollars * 100;
    account.leverage = leverage;
    account.dayIndex = fixtureDay;
    return account;
}

/// "wallet", "demo" (100 000 USD), "challenge" (two steps, 25 000 USD), "single" (one step, 10 000 USD),
/// "funded" (50 000 USD) and "tight" (a demo with 2 000 USD), all but the wallet at 1:100.
inline std::vector<Account> fixtureAccounts()
{
    std::vector<Account> accounts{
        makeAccount("wallet", AccountKind::Wallet, 2'500, 1),
        makeAccount("demo", AccountKind::Demo, 100'000, 100),
        makeAccount("challenge", AccountKind::Plan, 25'000, 100),
        makeAccount("single", AccountKind::Plan, 10'000, 100),
        makeAccount("funded", AccountKind::Plan, 50'000, 100),
        makeAccount("tight", AccountKind::Demo, 2'000, 100),
    };
    accounts[2].plan = {"Two steps", 2};
    accounts[3].plan = {"One step", 1};
    accounts[4].plan = {"Two steps", 2};
    accounts[4].phase = 2;
    accounts[4].isFunded = true;
    return accounts;
}

/// A broker with the accounts and prices above, and shorthands for what the cases do with it.
class Desk {
public:
    explicit Desk(BrokerState state = {fixtureAccounts(), {}}, bool priced = true, std::uint64_t idSeed = 7)
        : broker(fixtureSymbols(), UuidSource(idSeed), std::move(state))
    {
        if (priced)
            prices(fixtureQuotes());
    }

    /// One quote for each symbol.
    ChangeSet prices(const std::vector<Quote>& quotes)
    {
        std::vector<SymbolQuote> all;
        all.reserve(quotes.size());
        for (std::size_t i = 0; i < quotes.size(); ++i)
            all.push_back({i, quotes[i]});
        return broker.onPrices(all, now);
    }

    ChangeSet price(std::size_t symbol, double bid, double ask)
    {
        const std::vector<SymbolQuote> one{{symbol, {bid, ask}}};
        return broker.onPrices(one, now);
    }

    static PlaceRequest market(
        const std::string& account, const std::string& symbol, const std::string& side, double lots)
    {
        PlaceRequest request;
        request.accountId = account;
        request.symbol = symbol;
        request.orderKind = "MARKET";
        request.type = side;
        request.lots = lots;
        return request;
    }

    static PlaceRequest pending(const std::string& account, const std::string& symbol,
        const std::string& kind, double lots, double price)
    {
        PlaceRequest request = market(account, symbol, "", lots);
        request.orderKind = kind;
        request.pendingPrice = price;
        return request;
    }

    CommandResult place(const PlaceRequest& request) { return broker.place(request, now); }

    /// Places what must be accepted; gives the trade's id.
    std::string id(const PlaceRequest& request)
    {
        const CommandResult result = place(request);
        if (result.refusal)
            std::cout << "  refused: " << result.refusal->message << '\n';
        REQUIRE(result.accepted());
        return result.tradeId;
    }

    std::string buy(const std::string& account, const std::string& symbol, double lots)
    {
        return id(market(account, symbol, "BUY", lots));
    }

    std::string sell(const std::string& account, const std::string& symbol, double lots)
    {
        return id(market(account, symbol, "SELL", lots));
    }

    Trade trade(const std::string& tradeId) const
    {
        REQUIRE(broker.trade(tradeId) != nullptr);
        return *broker.trade(tradeId);
    }

    Account account(const std::string& accountId) const
    {
        REQUIRE(broker.account(accountId) != nullptr);
        return *broker.account(accountId);
    }

    Broker broker;
    TimeMs now = fixtureTime;
};

/// The final state of one trade in a change set.
inline Trade tradeIn(const ChangeSet& changes, const std::string& id)
{
    const auto found = std::find_if(
        changes.trades.begin(), changes.trades.end(), [&](const Trade& trade) { return trade.id == id; });
    REQUIRE(found != changes.trades.end());
    return *found;
}

template <typename Event> std::vector<Event> eventsOf(const ChangeSet& changes)
{
    std::vector<Event> result;
    for (const BrokerEvent& event : changes.events) {
        if (const auto* wanted = std::get_if<Event>(&event))
            result.push_back(*wanted);
    }
    return result;
}

} // namespace practice
