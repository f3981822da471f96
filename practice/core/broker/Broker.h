#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/IdSource.h"
#include "practice/core/broker/Ledger.h"
#include "practice/core/broker/PriceBoard.h"
#include "practice/core/broker/Requests.h"
#include "practice/core/market/PriceSource.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace practice {

/// What an account is worth. equity = balance + openProfit, freeMargin = equity - margin.
struct AccountFigures {
    Cents balance = 0;
    Cents openProfit = 0;
    Cents equity = 0;
    Cents margin = 0;
    Cents freeMargin = 0;
    friend bool operator==(const AccountFigures&, const AccountFigures&) = default;
};

/// The matching engine: accounts, positions and orders against a stream of quotes.
///
/// - A buy opens at the ask and closes at the bid, a sell the other way round; nothing fills at any other
/// price. A trigger that a price jumps over fills at the price after the jump, for better or worse.
/// - Commission is charged once, when a position opens; swap for every UTC midnight a position is held over,
/// even while the platform was not running. Both are part of the position's pnl at once and reach the balance
/// with it, when the position closes.
/// - Margin = units x price in USD / leverage, fixed when the position opens. When equity falls to 50 % of
/// the held margin or below, the largest losers are closed one by one until it is above.
/// - An account that a gap takes below zero is set to zero once it has no position left.
/// - An account holds at most mostLiveTrades positions and pending orders together, so that there is always
/// room for an accepted order when it fills.
/// - Plan accounts fail when equity has fallen by 5 % since the UTC day began or to 90 % of the initial
/// balance: everything is closed at once. A plan account that is not funded passes a phase when its balance
/// reaches 110 % of the initial balance and no position is open.
///
/// No clock, no randomness, no threads: time and prices are arguments, ids come from the given source.
/// Commands use the prices last given to onPrices(); `now` may go back, but while an account has a position
/// it does not go back to an earlier day.
class Broker {
public:
    static constexpr std::size_t mostLiveTrades = 500; ///< an account's

    /// `symbols` fixes the positions that SymbolQuote uses. Throws std::invalid_argument for a state that
    /// contradicts itself: an id twice, a trade of an unknown account, a finished trade among the live ones.
    Broker(std::vector<SymbolSpec> symbols, IdSource ids, BrokerState state);

    Broker(const Broker&) = delete; // the books refer to our symbols
    Broker& operator=(const Broker&) = delete;

    /// Each command is checked completely before anything changes.
    [[nodiscard]] CommandResult place(const PlaceRequest& request, TimeMs now);
    [[nodiscard]] CommandResult close(std::string_view tradeId, TimeMs now);
    [[nodiscard]] CommandResult cancel(std::string_view tradeId, TimeMs now);
    [[nodiscard]] CommandResult modify(std::string_view tradeId, const ModifyRequest& request, TimeMs now);

    /// Closes every position and cancels every order, as their traders would. A position without a price
    /// stays.
    [[nodiscard]] ChangeSet closeEverything(TimeMs now);

    /// Cancels every position and every order as if they had never been: nothing is gained, lost or charged.
    /// Needs no prices.
    [[nodiscard]] ChangeSet cancelEverything(TimeMs now);

    /// Begins an account anew: its live trades are cancelled at no cost, the initial balance is back, and so
    /// are status and phase. Needs no prices. Nothing changes when the account is unknown.
    [[nodiscard]] ChangeSet reset(std::string_view accountId, TimeMs now);

    /// Takes new prices (some or all symbols) and does everything they cause. Quotes for unknown positions
    /// and unusable ones (not finite, not above 0, ask below bid) are ignored.
    [[nodiscard]] ChangeSet onPrices(std::span<const SymbolQuote> quotes, TimeMs now);

    /// The symbols, ascending, whose prices can cause anything: those of live trades, and the pairs that turn
    /// their results into USD.
    [[nodiscard]] std::vector<std::size_t> watchedSymbols() const;

    /// Whether nothing can happen while prices stay within these spans, given by position of the symbol.
    /// Holds within a UTC day: a midnight charges swap.
    [[nodiscard]] bool staysQuiet(std::span<const std::optional<PriceSpan>> spans) const;

    /// Takes back the last result, which could not be stored. The prices stay, and what they cause happens
    /// with the next onPrices().
    void undo(const ChangeSet& changes);

    [[nodiscard]] std::vector<Account> accounts() const;
    [[nodiscard]] const Account* account(std::string_view accountId) const; ///< nullptr when unknown
    /// All zeros when the account is unknown.
    [[nodiscard]] AccountFigures figures(std::string_view accountId) const;
    /// Oldest first, with the pnl at the last prices; empty when the account is unknown.
    [[nodiscard]] std::vector<Trade> openTrades(std::string_view accountId) const;
    [[nodiscard]] std::vector<Trade> pendingOrders(std::string_view accountId) const;
    /// A live trade; nullptr when it is finished or never was. Valid until the next change.
    [[nodiscard]] const Trade* trade(std::string_view tradeId) const;
    /// A copy of everything, as restore would need it.
    [[nodiscard]] BrokerState state() const;
    [[nodiscard]] const std::vector<SymbolSpec>& symbols() const { return m_symbols; }

private:
    /// Whether the account may have one more trade.
    [[nodiscard]] std::optional<Refusal> checkAccount(const std::string& accountId) const;
    /// Completes a market order at this quote, unless the margin does not suffice.
    [[nodiscard]] std::optional<Refusal> open(Trade& trade, std::size_t symbol, const Quote& quote) const;
    [[nodiscard]] std::string newId() const;
    [[nodiscard]] CommandResult finish(std::string tradeId);

    std::vector<SymbolSpec> m_symbols;
    IdSource m_ids;
    PriceBoard m_prices;
    Ledger m_ledger;
    bool m_checkAll = true; ///< the next onPrices() checks every symbol, changed or not
};

} // namespace practice
