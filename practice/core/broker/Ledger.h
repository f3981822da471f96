#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/ChangeSet.h"
#include "practice/core/broker/Records.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace practice {

struct LiveTrade;

/// An account with the sums over its live trades.
struct LiveAccount {
    Account record;
    Cents openProfit = 0;           ///< sum of the open positions' pnl
    Cents margin = 0;               ///< sum of the open positions' margin
    std::vector<LiveTrade*> trades; ///< open and pending, oldest first

    [[nodiscard]] Cents equity() const { return record.balance + openProfit; }
    [[nodiscard]] Cents freeMargin() const { return equity() - margin; }
};

/// An open position or a pending order with its account and symbol.
struct LiveTrade {
    Trade record;
    LiveAccount* owner = nullptr;
    std::size_t symbol = 0; ///< position in the symbol list; the list's size when the symbol left it
};

/// Keeps accounts and live trades, indexed by id, account and symbol, and writes down what changes.
///
/// Records are changed only through the functions below, which keep the sums and the indexes right and
/// remember the state before the first change since the last take().
class Ledger {
public:
    /// Keeps a reference: the symbols outlive the ledger. Throws as Broker's constructor does.
    Ledger(const std::vector<SymbolSpec>& symbols, BrokerState state);

    [[nodiscard]] LiveAccount* findAccount(std::string_view id) const;
    [[nodiscard]] LiveTrade* findTrade(std::string_view id) const;
    [[nodiscard]] const std::vector<std::unique_ptr<LiveAccount>>& accounts() const { return m_accounts; }
    [[nodiscard]] const std::vector<LiveTrade*>& openOf(std::size_t symbol) const;
    [[nodiscard]] const std::vector<LiveTrade*>& pendingOf(std::size_t symbol) const;
    [[nodiscard]] BrokerState state() const;

    /// For changes of the record itself.
    Account& change(LiveAccount& account);
    /// For changes that leave status, createdAt, pnl and margin alone.
    Trade& change(LiveTrade& trade);
    LiveTrade& add(Trade trade);
    /// Puts `record`, which has the same id and is Open or Pending, in the trade's place.
    void replace(LiveTrade& trade, Trade record);
    /// Puts `record`, which is Closed or Cancelled, on the list of changes; the live trade is gone then.
    void finish(LiveTrade& trade, Trade record);
    /// Puts `record`, which is Closed and was never live, on the list of changes.
    void addFinished(Trade record);
    /// A new value at a new price: not a change worth storing.
    void revalue(LiveTrade& trade, Cents pnl);
    void emit(BrokerEvent event) { m_events.push_back(std::move(event)); }

    /// What changed since the last take().
    [[nodiscard]] ChangeSet take();
    /// Goes back to the state before `changes`, which must be the last set that take() gave.
    void undo(const ChangeSet& changes);

private:
    void remember(const Trade& trade, bool isNew);
    void index(LiveTrade& trade);
    void unindex(LiveTrade& trade);
    LiveTrade& insert(Trade trade);
    void erase(LiveTrade& trade);

    const std::vector<SymbolSpec>& m_symbols;
    std::vector<std::unique_ptr<LiveAccount>> m_accounts;
    std::unordered_map<std::string, LiveAccount*> m_accountById;
    std::unordered_map<std::string, std::unique_ptr<LiveTrade>> m_tradeById;
    std::vector<std::vector<LiveTrade*>> m_open;    ///< by symbol, oldest first
    std::vector<std::vector<LiveTrade*>> m_pending; ///< by symbol, oldest first

    std::vector<Account> m_accountsBefore;
    std::vector<Trade> m_tradesBefore;
    std::vector<std::string> m_touched; ///< ids of changed trades in the order of their first change
    std::unordered_set<std::string> m_touchedSet;
    std::unordered_map<std::string, Trade> m_finished;
    std::vector<BrokerEvent> m_events;
};

} // namespace practice
