#pragma once

#include "practice/core/broker/Broker.h"
#include "practice/core/market/PriceSource.h"
#include "practice/server/Clock.h"
#include "practice/server/PlatformListener.h"
#include "practice/storage/Database.h"
#include "practice/storage/DrawingStore.h"
#include "practice/storage/TradeStore.h"
#include "practice/storage/UserStore.h"

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

/// Joins market, broker and storage: every change is on the disk before anybody hears of it, and a change
/// that cannot be stored is undone.
class Platform final {
public:
    /// Loads the accounts and live trades. Throws StorageError when the stored state cannot be used.
    Platform(Database& database, PriceSource& market, const Clock& clock);

    /// Each hears of everything from now on, in the order in which they were added. They outlive the
    /// platform, or its last call.
    void addListener(PlatformListener& listener) { m_listeners.push_back(&listener); }
    /// Lets all listeners know something.
    void inform(const std::function<void(PlatformListener&)>& call) const;

    /// Moves to the present: takes the new prices, and does everything that all prices since the last time
    /// cause, in order and each at its price. Throws StorageError when that could not be stored; the new
    /// prices are announced all the same, and the rest happens with the next call.
    void advance();

    /// The same for requests that only read, without announcing the prices. What cannot be stored is left to
    /// advance().
    void catchUp();

    /// Moves to the present, then closes every position and cancels every order. False, and none of them
    /// touched, when a position has no price. Throws StorageError when that cannot be stored.
    [[nodiscard]] bool closeEverything();

    /// Carries out a command, stores what it changed and announces it. Throws ApiError with the broker's
    /// reason when it is refused, StorageError when it cannot be stored; nothing has changed then.
    /// Returns the trade as it is after that.
    Trade execute(const TradeCommand& command);

    [[nodiscard]] TimeMs now() const { return m_clock.now(); }
    [[nodiscard]] const Broker& broker() const { return m_broker; }
    [[nodiscard]] const std::vector<SymbolSpec>& symbols() const { return m_market.symbols(); }
    [[nodiscard]] PriceSource& market() { return m_market; }
    [[nodiscard]] TradeStore& trades() { return m_trades; }
    [[nodiscard]] DrawingStore& drawings() { return m_drawings; }
    /// The prices that were last announced, by position of the symbol.
    [[nodiscard]] const std::vector<SymbolQuote>& quotes() const { return m_quotes; }
    /// The price of a symbol at any moment.
    [[nodiscard]] Quote quoteAt(std::size_t symbol, TimeMs moment) const
    {
        return m_market.quote(symbol, moment);
    }
    /// Decimals of a symbol's prices; 5 for one that is no longer traded.
    [[nodiscard]] int digits(std::string_view symbol) const;

    [[nodiscard]] bool owns(std::string_view userId, std::string_view accountId) const;
    [[nodiscard]] std::vector<Account> accountsOf(std::string_view userId) const;

private:
    void playTo(TimeMs now);
    void playTo(TimeMs now, std::span<const SymbolQuote> present);
    bool show(std::span<const SymbolQuote> quotes, TimeMs now);
    [[nodiscard]] CommandResult carryOut(const TradeCommand& command, TimeMs now);
    [[nodiscard]] Trade tradeAfter(const CommandResult& result) const;
    void store(const ChangeSet& changes, TimeMs now);
    void announce(const ChangeSet& changes, TimeMs now);
    void tell(const OrdersChanged& orders);
    void tell(const AccountUpdated& update);

    Database& m_database;
    PriceSource& m_market;
    const Clock& m_clock;
    TradeStore m_trades;
    DrawingStore m_drawings;
    std::map<std::string, std::string, std::less<>> m_owners;
    std::vector<SymbolQuote> m_quotes;
    Broker m_broker;
    TimeMs m_playedTo; ///< everything up to here has happened
    std::vector<PlatformListener*> m_listeners;
};

} // namespace practice
